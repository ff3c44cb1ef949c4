# `velmora convert`: its scene, writers, collector and command link the
# command line's library; the external checks read the files it writes with
# other tools (assimp, the glTF validator).
foreach(t ConvertScene_test ConvertWriters_test ConvertCollector_test ConvertCommand_test)
  if(TARGET ${t})
    target_link_libraries(${t} PRIVATE velmora_cli)
  endif()
endforeach()
