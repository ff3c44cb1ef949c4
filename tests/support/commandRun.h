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

// One run of a program measured on its own: its standard output is thrown
// away (only its cost counts), its standard error kept.
struct measured_run {
    int status = -1;        // the exit status; -1 when it did not exit
    int signal = 0;         // the signal that ended it, else 0
    bool killed = false;    // still running after the patience given, so killed
    double seconds = 0.0;   // wall-clock time from start to end
    // Processor time the program spent (user and system): what its work
    // cost, whatever else the machine was doing meanwhile.
    double cpu_seconds = 0.0;
    long max_rss_kb = 0;    // peak resident memory (the child's own ru_maxrss)
    std::string err;
};

// Runs program with args directly (no shell in between, so that the memory
// measured is the program's alone), killing it after patience_seconds.
measured_run run_measured(const std::string& program, const std::vector<std::string>& args,
                          double patience_seconds);

}  // namespace vlm
