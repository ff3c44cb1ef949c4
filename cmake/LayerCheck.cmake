# Included by the top-level CMakeLists.txt once the layers (velmora_layers, in
# order from the bottom) and the plug-in are declared.
#
# <layer>_downhill: the layer's objects as a shared library that may leave no
# symbol undefined and links only the _downhill libraries of every layer below
# it. A call up into a higher layer, or one that skips its link, fails here.
set(velmora_downhill "")
foreach(layer ${velmora_layers} velmora2rnx)
  add_library(${layer}_downhill SHARED EXCLUDE_FROM_ALL $<TARGET_OBJECTS:${layer}>)
  get_target_property(external ${layer} VELMORA_EXTERNAL)
  if(NOT external)
    set(external qorabs)
  endif()
  target_link_libraries(${layer}_downhill PRIVATE ${velmora_downhill} ${external})
  target_link_options(${layer}_downhill PRIVATE -Wl,--no-undefined)
  set_target_properties(${layer}_downhill PROPERTIES LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/layers)
  list(APPEND velmora_downhill ${layer}_downhill)
endforeach()
add_custom_target(velmora_layer_check DEPENDS ${velmora_downhill})

# The declared links, as CMake holds them after the whole configuration, one
# line a library from the bottom up: "name|links". cmake/CheckLayerLinks.cmake
# refuses any link that is not to a layer below or to an outside library.
set(lines "")
foreach(layer ${velmora_layers} velmora2rnx)
  string(APPEND lines "${layer}|$<JOIN:$<TARGET_PROPERTY:${layer},LINK_LIBRARIES>,;>\n")
endforeach()
file(GENERATE OUTPUT ${CMAKE_BINARY_DIR}/layers.txt CONTENT "${lines}")
