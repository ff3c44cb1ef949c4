# `velmora report`: the demo's report opened from file:// in headless
# Chromium, driven by the npm package playwright-core (installed into the
# build folder on first use). Skipped only where Chromium is not installed.
if(TARGET velmora2rnx AND TARGET make_demo_archive AND velmora_system_python)
  add_test(NAME report_demo_opens_in_chromium
           COMMAND ${velmora_system_python} ${CMAKE_CURRENT_LIST_DIR}/report_browser.py
                   $<TARGET_FILE:velmora> $<TARGET_FILE:make_demo_archive> ${CMAKE_BINARY_DIR}/report-browser
                   ${CMAKE_BINARY_DIR}/npm-report)
  set_tests_properties(report_demo_opens_in_chromium PROPERTIES TIMEOUT 400 SKIP_RETURN_CODE 77)
endif()

if(TARGET ReportCommand_test AND TARGET velmora2rnx)
  add_dependencies(ReportCommand_test velmora2rnx)
endif()
