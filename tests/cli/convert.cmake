# `velmora convert`: the external checks read the files it writes with other
# tools (assimp, the glTF validator).

# The hand-built sample scene in every output format, for the external checks.
add_executable(write_sample_scene ${CMAKE_CURRENT_SOURCE_DIR}/writers/write_sample_scene.cpp)
target_link_libraries(write_sample_scene PRIVATE velmora_cli)

# Other makers' readers on the written files. Until the import runs end to
# end they read the sample scene; `--convert $<TARGET_FILE:velmora> ARCHIVE`
# in place of `--sample ...` makes them read a converted archive.
find_package(Python3 COMPONENTS Interpreter)
if(Python3_Interpreter_FOUND)
  set(convert_external ${Python3_EXECUTABLE} ${CMAKE_CURRENT_SOURCE_DIR}/convert_external.py)
  add_test(NAME convert_assimp_reads_every_format
           COMMAND ${convert_external} assimp ${CMAKE_BINARY_DIR}/convert-external/assimp
                   --sample $<TARGET_FILE:write_sample_scene>)
  add_test(NAME convert_gltf_validator_reports_no_errors
           COMMAND ${convert_external} validator ${CMAKE_BINARY_DIR}/convert-external/validator
                   ${CMAKE_BINARY_DIR}/npm --sample $<TARGET_FILE:write_sample_scene>)
  set_tests_properties(convert_assimp_reads_every_format convert_gltf_validator_reports_no_errors
                       PROPERTIES TIMEOUT 300)
  set_tests_properties(convert_gltf_validator_reports_no_errors PROPERTIES SKIP_RETURN_CODE 77)
endif()

# A stand-in plug-in for the command's tests, loaded with dlopen as the real one.
add_library(convert_test_plugin SHARED ${CMAKE_CURRENT_SOURCE_DIR}/convert_test_plugin.cpp)
target_link_libraries(convert_test_plugin PRIVATE vmi_core)
if(TARGET ConvertCommand_test)
  add_dependencies(ConvertCommand_test convert_test_plugin velmora)
  if(TARGET velmora2rnx)
    add_dependencies(ConvertCommand_test velmora2rnx)
  endif()
  target_compile_definitions(ConvertCommand_test PRIVATE
    CONVERT_TEST_PLUGIN="$<TARGET_FILE:convert_test_plugin>")
endif()
if(TARGET PluginLoader_test)
  add_dependencies(PluginLoader_test convert_test_plugin)
  target_compile_definitions(PluginLoader_test PRIVATE CONVERT_TEST_PLUGIN="$<TARGET_FILE:convert_test_plugin>")
endif()

# Once the plug-in is built (target velmora2rnx, build/lib/libvelmora2rnx.so),
# the same readers check the demo archive converted end to end.
if(Python3_Interpreter_FOUND AND TARGET velmora2rnx AND TARGET make_demo_archive)
  set(convert_demo --demo $<TARGET_FILE:velmora> $<TARGET_FILE:make_demo_archive>)
  add_test(NAME convert_assimp_reads_the_converted_demo
           COMMAND ${convert_external} assimp ${CMAKE_BINARY_DIR}/convert-external/demo-assimp ${convert_demo})
  add_test(NAME convert_gltf_validator_passes_the_converted_demo
           COMMAND ${convert_external} validator ${CMAKE_BINARY_DIR}/convert-external/demo-validator
                   ${CMAKE_BINARY_DIR}/npm ${convert_demo})
  set_tests_properties(convert_assimp_reads_the_converted_demo convert_gltf_validator_passes_the_converted_demo
                       PROPERTIES TIMEOUT 300)
  set_tests_properties(convert_gltf_validator_passes_the_converted_demo PROPERTIES SKIP_RETURN_CODE 77)
endif()

# Closed insoles checked by admesh, and the demo's OBJ, PLY and STL read by
# meshio against the dump's counts. Both need Debian's python3 (numpy,
# meshio), which is /usr/bin/python3 whatever python3 comes first on PATH.
if(EXISTS /usr/bin/python3)
  set(system_python /usr/bin/python3)
else()
  set(system_python ${Python3_EXECUTABLE})
endif()
if(system_python AND TARGET velmora2rnx AND TARGET make_demo_archive)
  add_test(NAME convert_admesh_finds_every_demo_insole_closed
           COMMAND ${system_python} ${CMAKE_CURRENT_SOURCE_DIR}/convert_solid_admesh.py
                   $<TARGET_FILE:velmora> $<TARGET_FILE:make_demo_archive> ${CMAKE_BINARY_DIR}/convert-external/admesh)
  add_test(NAME convert_meshio_reads_the_dumps_counts
           COMMAND ${system_python} ${CMAKE_CURRENT_SOURCE_DIR}/convert_meshio.py
                   $<TARGET_FILE:velmora> $<TARGET_FILE:make_demo_archive> ${CMAKE_BINARY_DIR}/convert-external/meshio)
  set_tests_properties(convert_admesh_finds_every_demo_insole_closed convert_meshio_reads_the_dumps_counts
                       PROPERTIES TIMEOUT 300)
endif()
# The exact-curve writers' suites run velmora on the demo archive.
foreach(t StepWriter_test IgesWriter_test DxfWriter_test)
  if(TARGET ${t})
    add_dependencies(${t} velmora velmora2rnx)
  endif()
endforeach()
