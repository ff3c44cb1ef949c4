#include "cli/commands/ListingCommand.h"

#include <CLI/CLI.hpp>

#include <algorithm>

#include "archive/vmiFile.h"
#include "cli/ArchiveListing.h"
#include "cli/CommandInputs.h"
#include "cli/ExitCode.h"
#include "cli/JsonWriter.h"
#include "host/qozUnZip.h"

namespace {

// Why the file cannot be listed, or empty when it can: a file any command
// can read that the unzip service takes as a ZIP archive.
std::string unlistable(const std::string& file)
{
    if (std::string why = CommandInputs::unreadable_file(file); !why.empty()) return why;
    qozUnZip unzip;
    if (!unzip.open(utString(file))) return "not a ZIP archive";
    return {};
}

const char* kind_name(vmiEntryKind type)
{
    return type == vmiEntryKind::data ? "data" : type == vmiEntryKind::catalogue ? "catalogue" : "other";
}

const char* chain_name(vmiChainEnd end)
{
    switch (end) {
    case vmiChainEnd::end: return "end";
    case vmiChainEnd::limit: return "limit";
    case vmiChainEnd::budget: return "budget";
    case vmiChainEnd::negative_size: return "negative_size";
    case vmiChainEnd::cut_short: return "cut_short";
    case vmiChainEnd::bad_stream: return "bad_stream";
    }
    return "end";
}

void write_optional(JsonWriter& w, const std::optional<std::string>& s)
{
    if (s) w.string(*s);
    else w.null();
}

void write_entry(JsonWriter& w, const ListedEntry& e)
{
    w.begin_object(true);
    w.key("name").string(e.name);
    w.key("kind").string(kind_name(e.type));
    w.key("number").integer(e.number);
    // The unzip service gives -1 when the archive does not declare a size.
    w.key("stored_size");
    if (e.stored_size >= 0) w.integer(e.stored_size);
    else w.null();
    w.key("size");
    if (e.size) w.integer(*e.size);
    else w.null();
    w.key("chunks").integer(e.chunks);
    // Why the chunk chain ended; only a data entry has one.
    w.key("chain");
    if (e.type == vmiEntryKind::data) w.string(chain_name(e.chain));
    else w.null();
    w.key("magic");
    write_optional(w, e.magic);
    w.key("sha256");
    write_optional(w, e.sha256);
    w.end_object();
}

void write_record(JsonWriter& w, const ListedRecord& r)
{
    w.begin_object(true);
    w.key("level").integer(r.level);
    if (r.level != 3) {
        w.key("name0").string(r.name0);
        w.key("name1").string(r.name1);
        w.end_object();
        return;
    }
    w.key("type1").integer(r.type1);
    w.key("indx").integer(r.indx);
    w.key("ref_indx").integer(r.ref_indx);
    w.key("type2").integer(r.type2);
    w.key("date").string(r.date);
    w.key("name1").string(r.name1);
    w.key("comment").string(r.comment);
    w.key("data_indx").integer(r.data_indx);
    w.key("data");
    if (!r.data_found) w.string("missing");
    else write_optional(w, r.data_magic);
    w.end_object();
}

void write_catalogue(JsonWriter& w, const ListedCatalogue& c)
{
    w.begin_object();
    w.key("entry").string(c.entry);
    w.key("number").integer(c.number);
    w.key("size").integer(c.size);
    w.key("found").boolean(c.found);
    w.key("separator").boolean(c.separator);
    w.key("records").begin_array();
    for (const ListedRecord& r : c.records) write_record(w, r);
    w.end_array();
    w.end_object();
}

} // namespace

CLI::App* ListingCommand::add_to(CLI::App& app, ListingCommand& command)
{
    CLI::App* cmd = app.add_subcommand(
        "inspect", "List what an archive holds before any interpretation: every ZIP entry, "
                   "every catalogue record and the data entry each record names");
    cmd->add_flag("--json", command.json, "Print the listing as JSON (format \"velmora-inspect\")");
    cmd->add_option("file", command.file, "The archive to list")->required()->type_name("FILE.vlm");
    cmd->footer("Exit status: 0 listed, 2 wrong usage, 3 the file could not be read.");
    return cmd;
}

int ListingCommand::run(std::ostream& out, std::ostream& err) const
{
    if (const std::string why = unlistable(file); !why.empty()) {
        CommandInputs::report(err, "inspect", file, why);
        return exit_unreadable;
    }
    ArchiveListing listing(file);
    {
        vmiFile reader;
        reader.set_observer(&listing);
        // The result (whether a node tree came out) is the import's business;
        // the listing shows the archive whatever it holds.
        (void)reader.read(utString(file));
    }
    if (json) write_json(listing, out);
    else write_table(file, listing, out);
    out.flush();
    return exit_success;
}

void ListingCommand::write_json(const ArchiveListing& listing, std::ostream& out)
{
    JsonWriter w(out);
    w.begin_object();
    w.key("format").string("velmora-inspect");
    w.key("version").integer(1);
    w.key("entries").begin_array();
    for (const ListedEntry& e : listing.entries()) write_entry(w, e);
    w.end_array();
    w.key("catalogues").begin_array();
    for (const ListedCatalogue& c : listing.catalogues()) write_catalogue(w, c);
    w.end_array();
    w.key("reasons").begin_array();
    for (const std::string& r : listing.reasons()) w.string(r);
    w.end_array();
    w.end_object();
    w.finish();
}

namespace {

// Width of a cell on a terminal: UTF-8 continuation bytes take no column.
std::size_t display_width(const std::string& s)
{
    std::size_t n = 0;
    for (char c : s) n += (static_cast<unsigned char>(c) & 0xC0) != 0x80;
    return n;
}

// A table cell per column, right-aligned for numbers.
struct Column {
    std::string title;
    bool right;
};

void write_rows(const std::vector<Column>& columns, const std::vector<std::vector<std::string>>& rows,
                std::ostream& out)
{
    std::vector<std::size_t> width(columns.size());
    for (std::size_t c = 0; c < columns.size(); ++c) {
        width[c] = display_width(columns[c].title);
        for (const auto& row : rows) width[c] = std::max(width[c], display_width(row[c]));
    }
    const auto line = [&](const std::vector<std::string>& cells) {
        std::string text = " ";
        for (std::size_t c = 0; c < cells.size(); ++c) {
            const std::string pad(width[c] - display_width(cells[c]), ' ');
            text += ' ';
            text += columns[c].right ? pad + cells[c] : cells[c] + pad;
        }
        while (!text.empty() && text.back() == ' ') text.pop_back();
        out << text << '\n';
    };
    std::vector<std::string> titles;
    for (const Column& c : columns) titles.push_back(c.title);
    line(titles);
    for (const auto& row : rows) line(row);
}

std::string or_dash(const std::optional<std::string>& s) { return s ? *s : "-"; }

void write_entry_table(const ArchiveListing& listing, std::ostream& out)
{
    out << "entries: " << listing.entries().size() << '\n';
    if (listing.entries().empty()) return;
    const std::vector<Column> columns = {{"name", false},  {"kind", false},  {"number", true},
                                         {"stored", true}, {"size", true},   {"chunks", true},
                                         {"chain", false}, {"magic", false}, {"sha256", false}};
    std::vector<std::vector<std::string>> rows;
    for (const ListedEntry& e : listing.entries()) {
        // The name is quoted as JSON quotes it, so that every byte shows.
        rows.push_back({json_string(e.name), kind_name(e.type), std::to_string(e.number),
                        e.stored_size >= 0 ? std::to_string(e.stored_size) : "-",
                        e.size ? std::to_string(*e.size) : "-", std::to_string(e.chunks),
                        e.type == vmiEntryKind::data ? chain_name(e.chain) : "-",
                        or_dash(e.magic), e.sha256 ? e.sha256->substr(0, 16) : "-"});
    }
    write_rows(columns, rows, out);
}

std::string record_line(const ListedRecord& r)
{
    std::string s = "level " + std::to_string(r.level) + ": ";
    if (r.level != 3) return s + "name0 " + json_string(r.name0) + ", name1 " + json_string(r.name1);
    s += "type1 " + std::to_string(r.type1) + ", indx " + std::to_string(r.indx) + ", ref_indx " +
         std::to_string(r.ref_indx) + ", type2 " + std::to_string(r.type2) + ", date " + json_string(r.date) +
         ", name1 " + json_string(r.name1) + ", comment " + json_string(r.comment) + ", data_indx " +
         std::to_string(r.data_indx) + ", data ";
    if (!r.data_found) return s + "missing";
    return s + (r.data_magic ? *r.data_magic : "(shorter than 4 bytes)");
}

void write_catalogue_table(const ListedCatalogue& c, std::ostream& out)
{
    out << "catalogue " << json_string(c.entry) << ": number " << c.number << ", " << c.size << " bytes, "
        << (c.found ? "found" : "not found") << ", "
        << (c.separator ? "separator line met" : "no separator line") << ", " << c.records.size()
        << " records\n";
    for (const ListedRecord& r : c.records) out << "  " << record_line(r) << '\n';
}

} // namespace

void ListingCommand::write_table(const std::string& file, const ArchiveListing& listing, std::ostream& out)
{
    out << "archive: " << file << '\n';
    write_entry_table(listing, out);
    out << "catalogues: " << listing.catalogues().size() << '\n';
    for (const ListedCatalogue& c : listing.catalogues()) write_catalogue_table(c, out);
    out << "reasons: " << listing.reasons().size() << '\n';
    for (const std::string& r : listing.reasons()) out << "  " << json_string(r) << '\n';
}
