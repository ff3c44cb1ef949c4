#pragma once
// DumpCommand: `velmora dump [--summary] [--compact] [--option NAME=0|1]...
// [--select PATTERN]... [--only KIND]... FILE.vlm`. Imports the archive through the plug-in as a host does (see
// PluginLoader.h) and prints what the host received as the canonical JSON
// dump (see dump/DumpWriter.h).
#include <ostream>
#include <string>
#include <vector>

#include "cli/Selection.h"

namespace CLI {
class App;
}

class DumpCommand {
public:
    std::string file;
    // NAME=0|1, each as given; a later one overrides an earlier.
    std::vector<std::string> options;
    bool summary = false;
    bool compact = false;
    // --select and --only: the objects kept in the tree.
    Selection selection;
    // The plug-in to load; empty for PluginLoader::library_path().
    std::string library;

    // Registers the subcommand "dump" with its options, help and footer;
    // app.got_subcommand("dump") then says to call run().
    static CLI::App* add_to(CLI::App& app, DumpCommand& command);

    // Exit status: 0 dumped, 1 dumped but the import produced nothing, 3 the
    // file could not be read or the plug-in could not be loaded (nothing is
    // printed then); wrong usage is refused while parsing. Diagnostics go to
    // err, one line naming the file and the reason.
    int run(std::ostream& out, std::ostream& err) const;
};
