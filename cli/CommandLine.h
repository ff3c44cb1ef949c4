#pragma once
// CommandLine: the velmora command's options and commands. main() hands it the
// arguments; tests call it with string streams.
#include <ostream>

class CommandLine {
public:
    // Parses the arguments, runs the command and returns the exit status (see
    // cli/ExitCode.h). Help and version go to out; every diagnostic is one line
    // on err.
    static int run(int argc, const char* const* argv, std::ostream& out, std::ostream& err);
};
