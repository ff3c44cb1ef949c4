# `velmora dump`: its sink, writer and command link the command line's
# library; the command's own test runs build/bin/velmora, which loads the
# plug-in from build/lib.
foreach(t DumpTree_test DumpSummary_test DumpCommand_test)
  if(TARGET ${t})
    target_link_libraries(${t} PRIVATE velmora_cli)
  endif()
endforeach()
if(TARGET DumpCommand_test)
  add_dependencies(DumpCommand_test velmora velmora2rnx)
endif()
