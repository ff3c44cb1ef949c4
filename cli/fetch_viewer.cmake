# Installs the 3D viewer that `velmora report` copies into every report: the
# npm package @google/model-viewer, whose classic-script build runs from
# file:// with three.js inside it. Run at build time with
#   cmake -DPREFIX=<npm prefix> -DOUT=<file to write> -DVERSION=<version> -P fetch_viewer.cmake
# A machine without npm or without the registry still builds: the report then
# says that its 3D view is missing.
if(EXISTS "${OUT}")
  return()
endif()
find_program(npm_program npm)
if(NOT npm_program)
  message(WARNING "npm not found: velmora report will have no 3D view (install nodejs and npm)")
  return()
endif()
set(package "@google/model-viewer@${VERSION}")
# Few and short retries: an offline build should not wait minutes for npm.
execute_process(COMMAND ${npm_program} install --no-audit --no-fund --no-save --fetch-retries=1
                        --fetch-timeout=30000 --prefix "${PREFIX}" ${package}
                RESULT_VARIABLE rc OUTPUT_VARIABLE log ERROR_VARIABLE log)
set(built "${PREFIX}/node_modules/@google/model-viewer/dist/model-viewer-umd.min.js")
if(NOT rc EQUAL 0 OR NOT EXISTS "${built}")
  message(WARNING "npm install ${package} failed: velmora report will have no 3D view\n${log}")
  return()
endif()
get_filename_component(out_dir "${OUT}" DIRECTORY)
file(MAKE_DIRECTORY "${out_dir}")
file(COPY_FILE "${built}" "${OUT}")
