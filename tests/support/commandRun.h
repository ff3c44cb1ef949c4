#pragma once
// commandRun: runs a command line through the shell and keeps what it
// printed on each stream and its exit status, for the tests that run the
// built programs end to end.
#include <string>
#include <vector>

namespace vlm {

struct command_result {
    int status = -1;  // the exit status; -1 when the command did not exit
    std::string out;
    std::string err;
};

// Runs program with args, each quoted for the shell, after the environment
// settings env ("NAME=value ...") when given.
command_result run_command(const std::string& program, const std::vector<std::string>& args,
                           const std::string& env = {});

}  // namespace vlm
