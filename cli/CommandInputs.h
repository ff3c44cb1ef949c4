#pragma once
// CommandInputs: what the commands check of what a user hands them, and the
// one form of every message they print. The plug-in option and the scale are
// checked while the arguments are parsed, so a bad value is wrong usage
// before anything is read; the file checks come when a command runs, because
// an unreadable file is not wrong usage.
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace CLI {
class App;
class Option;
}

class CommandInputs {
public:
    // Registers --option NAME=0|1 (repeatable; a later one overrides an
    // earlier) on cmd, collecting each setting as given into options.
    static CLI::Option* add_plugin_option(CLI::App& cmd, std::vector<std::string>& options);
    // Why a setting of --option is refused ("TEXT: expected ..."), or empty
    // when text is NAME=0|1 with NAME one of the plug-in's options.
    static std::string plugin_option_error(const std::string& text);
    // The accepted settings as (NAME, 0 or 1), in the order given.
    static std::vector<std::pair<std::string, int>> plugin_options(const std::vector<std::string>& texts);

    // Why a --scale is refused ("TEXT: expected ..."), or empty when text is
    // a finite number above 0.
    static std::string scale_error(const std::string& text);

    // Why the file at path cannot be read ("no such file", "is a directory",
    // "not a regular file", "cannot open: ..."), or empty when it is a regular
    // file that opens for reading.
    static std::string unreadable_file(const std::string& path);

    // One diagnostic line in the form every command uses:
    // "velmora COMMAND: SUBJECT: reason", the subject being the file (or the
    // option) the reason is about.
    static void report(std::ostream& err, const std::string& command, const std::string& subject,
                       const std::string& reason);
};
