#pragma once
// DumpWriter: the canonical dump of an import as JSON (format
// "velmora-dump", version 1): the library's identity, the options in force,
// what read_input answered, and the tree of items the walk delivered with
// every attribute and piece of geometry. In the summary form each geometry
// array becomes a digest {"count", "min", "max", "sha256"} so that large
// imports compare cheaply.
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "cli/dump/ArrayDigest.h"
#include "cli/dump/DumpSink.h"
#include "cli/PluginIdentity.h"

class JsonWriter;

struct DumpDocument {
    PluginIdentity identity;
    // Each option's name and the value in force during the read.
    std::vector<std::pair<std::string, int>> options;
    // What read_input answered: 1 or 0.
    int result = 0;
    // The items the walk delivered at the top, one per translator; the first
    // is the root. Not owned; null for none.
    const std::vector<std::unique_ptr<DumpItem>>* top = nullptr;
};

class DumpWriter {
public:
    static constexpr const char* format = "velmora-dump";
    static constexpr int version = 1;

    // summary: digests in place of geometry arrays; compact: one line.
    DumpWriter(bool summary, bool compact) : summary_(summary), compact_(compact) {}

    // The whole document, ended by a line feed.
    void write(std::ostream& out, const DumpDocument& doc) const;
    // One item (GROUP, TRIBLOCK, CURVE or POINTCLOUD) with everything below it.
    void write_item(JsonWriter& w, const DumpItem& item) const;

private:
    void write_identity(JsonWriter& w, const PluginIdentity& id) const;
    void write_head(JsonWriter& w, const DumpItem& item, const char* type) const;
    void write_group(JsonWriter& w, const DumpItem& item) const;
    void write_triblock(JsonWriter& w, const DumpItem& item) const;
    void write_curve(JsonWriter& w, const DumpItem& item) const;
    void write_pointcloud(JsonWriter& w, const DumpItem& item) const;

    // In a summary, the digest the sink took during the walk when it took
    // one (taken), else the digest of v.
    void points(JsonWriter& w, const std::vector<giPoint3>& v, const std::optional<ArrayDigest>& taken) const;
    void triangles(JsonWriter& w, const std::vector<giTriangle>& v, const std::optional<ArrayDigest>& taken) const;
    void colours(JsonWriter& w, const std::vector<giColour>& v, const std::optional<ArrayDigest>& taken) const;
    void values(JsonWriter& w, const std::vector<double>& v) const;

    bool summary_;
    bool compact_;
};
