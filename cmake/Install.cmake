# What `cmake --install` puts under the prefix:
#
#   bin/velmora                           RUNPATH $ORIGIN/../lib
#   lib/libvelmora2rnx.so, libqorabs.so   RUNPATH $ORIGIN
#   lib/libvelmora_cad.so                 the STEP, IGES and DXF writers velmora loads
#   include/velmora2rnx/host/*.h          the host framework's headers
#   lib/cmake/velmora2rnx/                find_package(velmora2rnx): velmora2rnx::qorabs
#                                         and velmora2rnx_PLUGIN, the plug-in's path
#   lib/pkgconfig/velmora2rnx.pc          pkg-config: -lqorabs, variable plugin
#
# The libraries go to lib/ whatever the platform's habit (not
# lib/<multiarch>): velmora finds the plug-in at <bin>/../lib, and the
# RUNPATHs are relative, so the tree works wherever it is unpacked.
include(CMakePackageConfigHelpers)

set(velmora_install_lib lib)
set(velmora_install_include include/velmora2rnx)
set(velmora_install_cmake ${velmora_install_lib}/cmake/velmora2rnx)

set_target_properties(velmora PROPERTIES INSTALL_RPATH "$ORIGIN/../${velmora_install_lib}")
set_target_properties(velmora2rnx qorabs PROPERTIES INSTALL_RPATH "$ORIGIN")

install(TARGETS velmora RUNTIME DESTINATION bin)
install(TARGETS velmora2rnx LIBRARY DESTINATION ${velmora_install_lib})
install(TARGETS velmora_cad_module LIBRARY DESTINATION ${velmora_install_lib})
install(TARGETS qorabs EXPORT velmora2rnxTargets LIBRARY DESTINATION ${velmora_install_lib})
install(DIRECTORY ${CMAKE_SOURCE_DIR}/host/ DESTINATION ${velmora_install_include}/host
        FILES_MATCHING PATTERN "*.h")
install(EXPORT velmora2rnxTargets NAMESPACE velmora2rnx:: DESTINATION ${velmora_install_cmake})

set(VELMORA_PLUGIN_FILE ${velmora_install_lib}/libvelmora2rnx.so)
configure_package_config_file(${CMAKE_SOURCE_DIR}/cmake/velmora2rnxConfig.cmake.in
  ${CMAKE_BINARY_DIR}/velmora2rnxConfig.cmake
  INSTALL_DESTINATION ${velmora_install_cmake}
  PATH_VARS VELMORA_PLUGIN_FILE)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/velmora2rnxConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_BINARY_DIR}/velmora2rnxConfig.cmake ${CMAKE_BINARY_DIR}/velmora2rnxConfigVersion.cmake
        DESTINATION ${velmora_install_cmake})

configure_file(${CMAKE_SOURCE_DIR}/cmake/velmora2rnx.pc.in ${CMAKE_BINARY_DIR}/velmora2rnx.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/velmora2rnx.pc DESTINATION ${velmora_install_lib}/pkgconfig)

# cpack -G DEB: one package with the command, both libraries and the headers;
# dpkg-shlibdeps finds the Debian packages the binaries need.
set(CPACK_PACKAGE_NAME velmora2rnx)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "velmora2rnx developers <velmora2rnx@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Import plug-in and command line for Velmora orthotics archives")
set(CPACK_PACKAGE_DESCRIPTION
    "libvelmora2rnx.so reads Velmora orthotics design archives (.vlm) for a CAD host; libqorabs.so and its headers are the host framework it loads into; velmora inspects, dumps and converts archives to glTF, OBJ, PLY, STL and 3MF.")
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# libqorabs.so comes with the package itself.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_BINARY_DIR}/lib)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
include(CPack)
