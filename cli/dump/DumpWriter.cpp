#include "cli/dump/DumpWriter.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <optional>

#include "cli/JsonWriter.h"
#include "cli/dump/ArrayDigest.h"

namespace {

// Null for an empty array; a single value for width 1, else a triple whose
// components without a finite value are null.
void bound(JsonWriter& w, const ArrayDigest& d, const std::array<std::optional<double>, 3>& b)
{
    auto value = [&](const std::optional<double>& v) {
        if (!v) w.null();
        else if (d.integers) w.integer(static_cast<std::int64_t>(*v));
        else w.number(*v);
    };
    if (d.count == 0) {
        w.null();
        return;
    }
    if (d.width == 1) {
        value(b[0]);
        return;
    }
    w.begin_array(true);
    for (int k = 0; k < d.width; ++k) value(b[k]);
    w.end_array();
}

void write_digest(JsonWriter& w, const ArrayDigest& d)
{
    w.begin_object();
    w.key("count").integer(static_cast<std::int64_t>(d.count));
    w.key("min");
    bound(w, d, d.lo);
    w.key("max");
    bound(w, d, d.hi);
    w.key("sha256").string(d.sha256);
    w.end_object();
}

void optional_string(JsonWriter& w, const std::optional<std::string>& s)
{
    if (s) w.string(*s);
    else w.null();
}

} // namespace

void DumpWriter::points(JsonWriter& w, const std::vector<giPoint3>& v, const std::optional<ArrayDigest>& taken) const
{
    if (summary_) {
        write_digest(w, taken ? *taken : ArrayDigest::of(v));
        return;
    }
    w.begin_array();
    for (const giPoint3& p : v) w.triple(p.x(), p.y(), p.z());
    w.end_array();
}

void DumpWriter::triangles(JsonWriter& w, const std::vector<giTriangle>& v,
                           const std::optional<ArrayDigest>& taken) const
{
    if (summary_) {
        write_digest(w, taken ? *taken : ArrayDigest::of(v));
        return;
    }
    w.begin_array();
    for (const giTriangle& t : v) w.triple(std::int64_t{t.a()}, std::int64_t{t.b()}, std::int64_t{t.c()});
    w.end_array();
}

void DumpWriter::colours(JsonWriter& w, const std::vector<giColour>& v, const std::optional<ArrayDigest>& taken) const
{
    if (summary_) {
        write_digest(w, taken ? *taken : ArrayDigest::of(v));
        return;
    }
    w.begin_array();
    for (const giColour& c : v) w.triple(std::int64_t{c.r()}, std::int64_t{c.g()}, std::int64_t{c.b()});
    w.end_array();
}

void DumpWriter::values(JsonWriter& w, const std::vector<double>& v) const
{
    if (summary_) {
        write_digest(w, ArrayDigest::of(v));
        return;
    }
    w.begin_array();
    for (double x : v) w.number(x);
    w.end_array();
}

void DumpWriter::write_head(JsonWriter& w, const DumpItem& item, const char* type) const
{
    w.begin_object();
    w.key("type").string(type);
    w.key("name").string(item.name);
    w.key("mangled").string(item.mangled);
    if (item.kind == DumpItem::group) return;
    w.key("layer");
    if (item.has_layer) {
        w.begin_object(true);
        w.key("level").integer(item.level);
        w.key("name").string(item.layer_name);
        w.end_object();
    } else {
        w.null();
    }
    // A point cloud has no colour attribute to show.
    if (item.has_colour && item.kind != DumpItem::pointcloud) w.key("colour").integer(item.colour);
}

void DumpWriter::write_group(JsonWriter& w, const DumpItem& item) const
{
    write_head(w, item, "group");
    w.key("xform").begin_array(true);
    for (int k = 0; k < giXform3::size; ++k) w.number(item.xform.data()[k]);
    w.end_array();
    w.key("children").begin_array();
    for (const std::unique_ptr<DumpItem>& child : item.children) write_item(w, *child);
    w.end_array();
    w.end_object();
}

void DumpWriter::write_triblock(JsonWriter& w, const DumpItem& item) const
{
    static const std::vector<giPoint3> no_points;
    static const std::vector<giTriangle> no_triangles;
    const bool ok = item.status == 0;
    write_head(w, item, "triblock");
    w.key("status").integer(item.status);
    static const std::optional<ArrayDigest> none;
    w.key("vertices");
    points(w, ok ? item.points : no_points, ok ? item.points_digest : none);
    w.key("triangles");
    triangles(w, ok ? item.triangles : no_triangles, ok ? item.triangles_digest : none);
    w.end_object();
}

void DumpWriter::write_curve(JsonWriter& w, const DumpItem& item) const
{
    static const std::vector<giPoint3> no_points;
    static const std::vector<double> no_values;
    // A failed curve, or a null one, shows as order 0 with nothing in it.
    const rnxNurbCurve3* c = item.status == 0 ? item.nurb.get() : nullptr;
    write_head(w, item, "curve");
    w.key("status").integer(item.status);
    w.key("order").integer(c ? c->order() : 0);
    w.key("points");
    points(w, c ? c->points() : no_points, std::nullopt);
    w.key("weights");
    if (c && c->has_weights()) values(w, c->weights());
    else w.null();
    w.key("knots");
    values(w, c ? c->knots() : no_values);
    w.end_object();
}

void DumpWriter::write_pointcloud(JsonWriter& w, const DumpItem& item) const
{
    write_head(w, item, "pointcloud");
    w.key("points");
    points(w, item.points, item.points_digest);
    w.key("colours");
    colours(w, item.colours, item.colours_digest);
    w.end_object();
}

void DumpWriter::write_item(JsonWriter& w, const DumpItem& item) const
{
    switch (item.kind) {
    case DumpItem::group: write_group(w, item); break;
    case DumpItem::triblock: write_triblock(w, item); break;
    case DumpItem::curve: write_curve(w, item); break;
    case DumpItem::pointcloud: write_pointcloud(w, item); break;
    }
}

void DumpWriter::write_identity(JsonWriter& w, const PluginIdentity& id) const
{
    w.begin_object();
    w.key("library_name");
    optional_string(w, id.library_name);
    w.key("format_name");
    optional_string(w, id.format_name);
    w.key("option");
    optional_string(w, id.option);
    w.key("file_filter");
    optional_string(w, id.file_filter);
    w.key("database_number").integer(id.database_number);
    w.key("translator_category");
    optional_string(w, id.translator_category);
    w.key("file_types").begin_array(true);
    for (int t : id.file_types) w.integer(t);
    w.end_array();
    w.key("extensions").begin_array(true);
    for (const std::string& e : id.extensions) w.string(e);
    w.end_array();
    w.end_object();
}

void DumpWriter::write(std::ostream& out, const DumpDocument& doc) const
{
    JsonWriter w(out, !compact_);
    w.begin_object();
    w.key("format").string(format);
    w.key("version").integer(version);
    w.key("library");
    write_identity(w, doc.identity);
    w.key("options").begin_object();
    for (const auto& [name, value] : doc.options) w.key(name).integer(value);
    w.end_object();
    w.key("result").integer(doc.result);
    const std::size_t n = doc.top ? doc.top->size() : 0;
    w.key("translators").integer(static_cast<std::int64_t>(n));
    w.key("root");
    if (n > 0) write_item(w, *doc.top->front());
    else w.null();
    w.finish();
}
