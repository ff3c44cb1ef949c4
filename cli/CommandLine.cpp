#include "cli/CommandLine.h"

#include <CLI/CLI.hpp>
#include <string>

#include "cli/commands/ConvertCommand.h"
#include "cli/commands/DumpCommand.h"
#include "cli/commands/ListingCommand.h"
#include "cli/commands/PreviewCommand.h"
#include "cli/commands/ReportCommand.h"
#include "cli/ExitCode.h"

#ifndef VELMORA_VERSION
#define VELMORA_VERSION "unknown"
#endif

namespace {

// CLI11 may put a line break into a message; a diagnostic stays on one line.
std::string one_line(std::string s)
{
    for (char& c : s)
        if (c == '\n' || c == '\r') c = ' ';
    while (!s.empty() && s.back() == ' ') s.pop_back();
    return s;
}

// A refused value: every check of these commands says "VALUE: reason", and
// CLI11 puts the option's name and ": " before it; the line reads
// "--option VALUE: reason", as the user typed them.
std::string checked_value(const std::string& what)
{
    std::string line = one_line(what);
    if (const std::size_t colon = line.find(": "); colon != std::string::npos) line.replace(colon, 2, " ");
    return line;
}

// The command word, when the first argument is one (not an option).
std::string command_word(int argc, const char* const* argv)
{
    if (argc < 2 || argv[1] == nullptr || argv[1][0] == '-') return {};
    return argv[1];
}

} // namespace

int CommandLine::run(int argc, const char* const* argv, std::ostream& out, std::ostream& err)
{
    CLI::App app("velmora: the command-line host of the Velmora archive importer", "velmora");
    app.set_version_flag("--version", std::string("velmora ") + VELMORA_VERSION);
    app.require_subcommand(1);
    app.footer("Exit status: 0 success, 1 the import produced nothing, 2 wrong usage, 3 a file "
               "could not be read or written.");
    ListingCommand inspect;
    ListingCommand::add_to(app, inspect);
    ConvertCommand convert;
    ConvertCommand::add_to(app, convert);
    DumpCommand dump;
    DumpCommand::add_to(app, dump);
    PreviewCommand preview;
    PreviewCommand::add_to(app, preview);
    ReportCommand report;
    ReportCommand::add_to(app, report);
    // CLI11 would call an unknown word an unexpected argument; name it instead.
    const std::string word = command_word(argc, argv);
    if (!word.empty() && word != "inspect" && word != "convert" && word != "dump" && word != "preview" &&
        word != "report") {
        err << "velmora: " << word << ": unknown command (see velmora --help)\n";
        return exit_usage;
    }
    // A message about a command's arguments names the command.
    const std::string speaker = word.empty() ? "velmora" : "velmora " + word;
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& e) {
        return app.exit(e, out, err);
    } catch (const CLI::ValidationError& e) {
        err << speaker << ": " << checked_value(e.what()) << '\n';
        return exit_usage;
    } catch (const CLI::ParseError& e) {
        err << speaker << ": " << one_line(e.what()) << " (see velmora --help)\n";
        return exit_usage;
    }
    if (app.got_subcommand("inspect")) return inspect.run(out, err);
    if (app.got_subcommand("convert")) return convert.run(out, err);
    if (app.got_subcommand("dump")) return dump.run(out, err);
    if (app.got_subcommand("preview")) return preview.run(out, err);
    if (app.got_subcommand("report")) return report.run(out, err);
    return exit_usage;
}
