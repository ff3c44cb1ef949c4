#pragma once
// commandLineRun: runs the velmora command line in this process, as main()
// does, and keeps its exit status and what it printed on each stream.
#include <sstream>
#include <string>
#include <vector>

#include "cli/CommandLine.h"

namespace cli_test {

struct RunResult {
    int status;
    std::string out;
    std::string err;
};

// `velmora ARGS...`: args without the program's name.
inline RunResult velmora(std::vector<std::string> args)
{
    args.insert(args.begin(), "velmora");
    std::vector<const char*> argv;
    for (const std::string& a : args) argv.push_back(a.c_str());
    std::ostringstream out, err;
    const int status = CommandLine::run(static_cast<int>(argv.size()), argv.data(), out, err);
    return {status, out.str(), err.str()};
}

} // namespace cli_test
