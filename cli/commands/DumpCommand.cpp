#include "cli/commands/DumpCommand.h"

#include <CLI/CLI.hpp>

#include "cli/CommandInputs.h"
#include "cli/dump/DumpSink.h"
#include "cli/dump/DumpWriter.h"
#include "cli/ExitCode.h"
#include "cli/PluginLoader.h"
#include "cli/ReadDiagnosis.h"
#include "host/qorResourceTable.h"
#include "host/utBoolcoResourceKey.h"

namespace {

bool holds_geometry(const std::vector<std::unique_ptr<DumpItem>>& items)
{
    for (const std::unique_ptr<DumpItem>& item : items)
        if (item->kind != DumpItem::group || holds_geometry(item->children))
            return true;
    return false;
}

const char* help_footer()
{
    return "Prints one JSON document (format \"velmora-dump\", version 1): the plug-in's identity,\n"
           "the options in force, what read_input returned (\"result\"), how many translators it\n"
           "handed over and the whole tree they deliver, every group with its name, mangled name\n"
           "and placement, every triangle block, curve (as NURBS) and point cloud with its\n"
           "attributes and geometry. Numbers read back exactly; NaN and the infinities are the\n"
           "strings \"NaN\", \"Infinity\", \"-Infinity\"; bytes that are not UTF-8 are \\u00XX.\n"
           "--summary replaces each geometry array by {count, min, max, sha256}.\n"
           "--select and --only keep the tree's groups and only the objects selected.\n"
           "The plug-in is bin/../lib/libvelmora2rnx.so next to velmora, or the file that\n"
           "VELMORA_PLUGIN names.\n"
           "Exit status: 0 dumped; 1 the import produced nothing (the dump is printed with\n"
           "\"result\": 0 and \"root\": null); 2 wrong usage; 3 the file could not be read or\n"
           "the plug-in could not be loaded.";
}

// Each option with the value the host's table holds after the read: the
// values the read looked up.
std::vector<std::pair<std::string, int>> options_in_force()
{
    std::vector<std::pair<std::string, int>> in_force;
    qorResourceTable* table = qor_resource_table_inquire();
    for (const std::string& name : PluginLoader::option_names()) {
        const utBoolcoResourceKey key{utString(name)};
        in_force.emplace_back(name, table ? (table->bool_value(key, 1) ? 1 : 0) : 1);
    }
    return in_force;
}

} // namespace

CLI::App* DumpCommand::add_to(CLI::App& app, DumpCommand& command)
{
    CLI::App* cmd = app.add_subcommand(
        "dump", "Import an archive through the plug-in and print, as JSON, exactly what the host "
                "received: the library's identity, the result and the whole translator tree");
    cmd->add_flag("--summary", command.summary,
                  "Replace each geometry array by its count, per-component min and max, and SHA-256");
    cmd->add_flag("--compact", command.compact, "Print the document on one line");
    CommandInputs::add_plugin_option(*cmd, command.options);
    Selection::add_options(*cmd, command.selection);
    cmd->add_option("file", command.file, "The archive to import")->required()->type_name("FILE.vlm");
    cmd->footer(help_footer());
    return cmd;
}

int DumpCommand::run(std::ostream& out, std::ostream& err) const
{
    if (const std::string why = CommandInputs::unreadable_file(file); !why.empty()) {
        CommandInputs::report(err, "dump", file, why);
        return exit_unreadable;
    }
    PluginLoader plugin(library);
    DumpDocument doc;
    // Asked before the read, as a host asks before it reads.
    doc.identity = plugin.identity();
    DumpSink sink(summary);
    const PluginLoader::Outcome outcome = plugin.import_archive(file, CommandInputs::plugin_options(options), sink);
    sink.finish();
    if (outcome == PluginLoader::no_library) {
        CommandInputs::report(err, "dump", plugin.path(), plugin.reason());
        return exit_unreadable;
    }
    doc.options = options_in_force();
    doc.result = outcome == PluginLoader::imported ? 1 : 0;
    const bool imported_geometry = holds_geometry(sink.top());
    if (selection.active()) selection.apply(sink.top());
    doc.top = &sink.top();
    DumpWriter(summary, compact).write(out, doc);
    if (outcome == PluginLoader::nothing_imported) {
        CommandInputs::report(err, "dump", file, nothing_imported(file));
        return exit_nothing_imported;
    }
    // Groups alone still count as an import; why their records were skipped
    // (a bound, an option) is said all the same.
    if (!imported_geometry) {
        if (const std::string why = no_geometry_imported(file); !why.empty())
            err << "velmora dump: " << file << ": " << why << '\n';
    } else if (selection.active() && !holds_geometry(sink.top())) {
        CommandInputs::report(err, "dump", file, "nothing selected: no object matches --select and --only");
    }
    return exit_success;
}
