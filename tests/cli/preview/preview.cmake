# `velmora preview`: the demo archive's pictures read back with zlib alone and
# checked against `velmora dump`.
find_package(Python3 COMPONENTS Interpreter)
if(TARGET velmora2rnx AND TARGET make_demo_archive)
  # /usr/bin/python3 first: the test needs nothing but zlib, but the one on
  # PATH may be another build.
  find_program(velmora_system_python NAMES python3 PATHS /usr/bin NO_DEFAULT_PATH)
  if(NOT velmora_system_python)
    set(velmora_system_python ${Python3_EXECUTABLE})
  endif()
  if(velmora_system_python)
    add_test(NAME preview_demo_pictures_match_the_dump
             COMMAND ${velmora_system_python} ${CMAKE_CURRENT_LIST_DIR}/preview_pictures.py
                     $<TARGET_FILE:velmora> $<TARGET_FILE:make_demo_archive> ${CMAKE_BINARY_DIR}/preview-demo)
    set_tests_properties(preview_demo_pictures_match_the_dump PROPERTIES TIMEOUT 300)
  endif()
endif()

# The command's own test runs the plug-in from build/lib.
if(TARGET PreviewCommand_test AND TARGET velmora2rnx)
  add_dependencies(PreviewCommand_test velmora2rnx)
endif()
