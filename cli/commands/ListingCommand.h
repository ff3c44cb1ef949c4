#pragma once
// ListingCommand: `velmora inspect [--json] FILE.vlm`. Reads the archive with
// vmiFile::read and an ArchiveListing listening, then prints the listing as a
// table or as the JSON document "velmora-inspect".
#include <ostream>
#include <string>

namespace CLI {
class App;
}
class ArchiveListing;

class ListingCommand {
public:
    std::string file;
    bool json = false;

    // Registers the subcommand "inspect" with its options, help and footer;
    // app.got_subcommand("inspect") then says to call run().
    static CLI::App* add_to(CLI::App& app, ListingCommand& command);

    // Exit status: 0 listed (an archive without a catalogue included), 3 the
    // file could not be read (missing, not a regular file, not a ZIP).
    // Diagnostics go to err, one line naming the file and the reason.
    int run(std::ostream& out, std::ostream& err) const;

    static void write_json(const ArchiveListing& listing, std::ostream& out);
    static void write_table(const std::string& file, const ArchiveListing& listing, std::ostream& out);
};
