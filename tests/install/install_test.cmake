# cmake -DBUILD_DIR=... -DSOURCE_DIR=... -DWORK=... -DDEMO_WRITER=... [-DHOST_FLAGS=...] -P install_test.cmake
#
# Installs the build into a fresh prefix, checks the RUNPATHs, builds a host
# against the installed package with find_package and with pkg-config, loads
# the plug-in and imports the demo archive, and converts it with the
# installed velmora, which must find its plug-in by its own location.
function(run what)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "${what} failed (${rc}):\n${out}\n${err}")
  endif()
  set(out "${out}" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE ${WORK})
set(prefix ${WORK}/prefix)
run("cmake --install" ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})

foreach(f bin/velmora lib/libvelmora2rnx.so lib/libqorabs.so include/velmora2rnx/host/qorabsLibInputEx.h
          lib/cmake/velmora2rnx/velmora2rnxConfig.cmake lib/pkgconfig/velmora2rnx.pc)
  if(NOT EXISTS ${prefix}/${f})
    message(FATAL_ERROR "not installed: ${f}")
  endif()
endforeach()
file(READ_ELF ${prefix}/bin/velmora RUNPATH rp)
if(NOT rp STREQUAL "$ORIGIN/../lib")
  message(FATAL_ERROR "bin/velmora: RUNPATH is '${rp}', expected $ORIGIN/../lib")
endif()
foreach(lib libvelmora2rnx.so libqorabs.so)
  file(READ_ELF ${prefix}/lib/${lib} RUNPATH rp)
  if(NOT rp STREQUAL "$ORIGIN")
    message(FATAL_ERROR "lib/${lib}: RUNPATH is '${rp}', expected $ORIGIN")
  endif()
endforeach()

run("make_demo_archive" ${DEMO_WRITER} ${WORK}/demo.vlm)

# The host through find_package.
run("configuring the host" ${CMAKE_COMMAND} -S ${SOURCE_DIR}/tests/install -B ${WORK}/host
    -DCMAKE_PREFIX_PATH=${prefix} "-DCMAKE_CXX_FLAGS=${HOST_FLAGS}" -DCMAKE_EXE_LINKER_FLAGS=${HOST_FLAGS})
run("building the host" ${CMAKE_COMMAND} --build ${WORK}/host)
run("the host importing the demo" ${WORK}/host/host ${WORK}/demo.vlm)
message(STATUS "find_package host: ${out}")
if(NOT out MATCHES "^velmora2rnx: read_input 1, [1-9][0-9]* objects")
  message(FATAL_ERROR "the host printed: ${out}")
endif()

# The same host through pkg-config.
find_program(PKG_CONFIG pkg-config REQUIRED)
set(ENV{PKG_CONFIG_PATH} ${prefix}/lib/pkgconfig)
run("pkg-config" ${PKG_CONFIG} --cflags --libs velmora2rnx)
string(STRIP "${out}" flags)
separate_arguments(flags UNIX_COMMAND "${flags}")
run("pkg-config plugin" ${PKG_CONFIG} --variable=plugin velmora2rnx)
string(STRIP "${out}" plugin)
if(NOT EXISTS ${plugin})
  message(FATAL_ERROR "pkg-config's plugin ${plugin} does not exist")
endif()
separate_arguments(host_flags UNIX_COMMAND "${HOST_FLAGS}")
run("compiling with pkg-config" c++ -std=c++20 ${host_flags} -DVELMORA2RNX_PLUGIN="${plugin}"
    ${SOURCE_DIR}/tests/install/host.cpp ${flags} -ldl -o ${WORK}/host-pc)
run("the pkg-config host importing the demo" ${WORK}/host-pc ${WORK}/demo.vlm)

# The installed command finds its plug-in next to itself.
unset(ENV{VELMORA_PLUGIN})
run("velmora --version" ${prefix}/bin/velmora --version)
if(NOT out MATCHES "^velmora [0-9]+\\.[0-9]+\\.[0-9]+")
  message(FATAL_ERROR "velmora --version printed: ${out}")
endif()
run("installed velmora convert" ${prefix}/bin/velmora convert ${WORK}/demo.vlm -o ${WORK}/demo.stl)
file(SIZE ${WORK}/demo.stl size)
if(size LESS 1000)
  message(FATAL_ERROR "the installed velmora wrote ${size} bytes")
endif()
