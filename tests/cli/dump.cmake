# `velmora dump`: the command's own test runs build/bin/velmora, which loads
# the plug-in from build/lib.
if(TARGET DumpCommand_test)
  add_dependencies(DumpCommand_test velmora velmora2rnx)
endif()
