#include "cli/dump/DumpWriter.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <optional>

#include "cli/JsonWriter.h"
#include "cli/Sha256.h"

namespace {

// The digest of one geometry array: its element count, the least and
// greatest finite value of each component, and the SHA-256 of its bytes.
class Digest {
public:
    // width: components per element (3 for triples, 1 for knots and
    // weights); integers: components are written as integers.
    Digest(int width, bool integers) : width_(width), integers_(integers), lo_(width), hi_(width) {}

    // One element's components (width of them) and its bytes.
    void add(const double* c, const unsigned char* bytes, std::size_t n)
    {
        ++count_;
        for (int k = 0; k < width_; ++k) {
            if (!std::isfinite(c[k])) continue;
            if (!lo_[k] || c[k] < *lo_[k]) lo_[k] = c[k];
            if (!hi_[k] || c[k] > *hi_[k]) hi_[k] = c[k];
        }
        sha_.update(bytes, n);
    }

    void write(JsonWriter& w)
    {
        w.begin_object();
        w.key("count").integer(static_cast<std::int64_t>(count_));
        w.key("min");
        bound(w, lo_);
        w.key("max");
        bound(w, hi_);
        const std::array<std::uint8_t, 32> d = sha_.finish();
        static const char hex[] = "0123456789abcdef";
        std::string text;
        for (std::uint8_t b : d) {
            text += hex[b >> 4];
            text += hex[b & 15];
        }
        w.key("sha256").string(text);
        w.end_object();
    }

private:
    void value(JsonWriter& w, const std::optional<double>& v) const
    {
        if (!v) w.null();
        else if (integers_) w.integer(static_cast<std::int64_t>(*v));
        else w.number(*v);
    }
    // Null for an empty array; a single value for width 1, else a triple
    // whose components without a finite value are null.
    void bound(JsonWriter& w, const std::vector<std::optional<double>>& b) const
    {
        if (count_ == 0) {
            w.null();
            return;
        }
        if (width_ == 1) {
            value(w, b[0]);
            return;
        }
        w.begin_array(true);
        for (const std::optional<double>& v : b) value(w, v);
        w.end_array();
    }

    int width_;
    bool integers_;
    std::size_t count_ = 0;
    std::vector<std::optional<double>> lo_, hi_;
    Sha256 sha_;
};

// Little-endian bytes, whatever the machine's order.
void put_le(unsigned char* p, std::uint64_t v, int n)
{
    for (int i = 0; i < n; ++i) p[i] = static_cast<unsigned char>(v >> (8 * i));
}

void put_f64(unsigned char* p, double v) { put_le(p, std::bit_cast<std::uint64_t>(v), 8); }

void put_i32(unsigned char* p, int v) { put_le(p, static_cast<std::uint32_t>(v), 4); }

void optional_string(JsonWriter& w, const std::optional<std::string>& s)
{
    if (s) w.string(*s);
    else w.null();
}

} // namespace

void DumpWriter::points(JsonWriter& w, const std::vector<giPoint3>& v) const
{
    if (summary_) {
        Digest d(3, false);
        for (const giPoint3& p : v) {
            const double c[3] = {p.x(), p.y(), p.z()};
            unsigned char b[24];
            for (int k = 0; k < 3; ++k) put_f64(b + 8 * k, c[k]);
            d.add(c, b, sizeof b);
        }
        d.write(w);
        return;
    }
    w.begin_array();
    for (const giPoint3& p : v) w.begin_array(true).number(p.x()).number(p.y()).number(p.z()).end_array();
    w.end_array();
}

void DumpWriter::triangles(JsonWriter& w, const std::vector<giTriangle>& v) const
{
    if (summary_) {
        Digest d(3, true);
        for (const giTriangle& t : v) {
            const int i[3] = {t.a(), t.b(), t.c()};
            const double c[3] = {double(i[0]), double(i[1]), double(i[2])};
            unsigned char b[12];
            for (int k = 0; k < 3; ++k) put_i32(b + 4 * k, i[k]);
            d.add(c, b, sizeof b);
        }
        d.write(w);
        return;
    }
    w.begin_array();
    for (const giTriangle& t : v) w.begin_array(true).integer(t.a()).integer(t.b()).integer(t.c()).end_array();
    w.end_array();
}

void DumpWriter::colours(JsonWriter& w, const std::vector<giColour>& v) const
{
    if (summary_) {
        Digest d(3, true);
        for (const giColour& col : v) {
            const double c[3] = {double(col.r()), double(col.g()), double(col.b())};
            const unsigned char b[3] = {static_cast<unsigned char>(col.r()), static_cast<unsigned char>(col.g()),
                                        static_cast<unsigned char>(col.b())};
            d.add(c, b, sizeof b);
        }
        d.write(w);
        return;
    }
    w.begin_array();
    for (const giColour& c : v) w.begin_array(true).integer(c.r()).integer(c.g()).integer(c.b()).end_array();
    w.end_array();
}

void DumpWriter::values(JsonWriter& w, const std::vector<double>& v) const
{
    if (summary_) {
        Digest d(1, false);
        for (double x : v) {
            unsigned char b[8];
            put_f64(b, x);
            d.add(&x, b, sizeof b);
        }
        d.write(w);
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
    w.key("vertices");
    points(w, ok ? item.points : no_points);
    w.key("triangles");
    triangles(w, ok ? item.triangles : no_triangles);
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
    points(w, c ? c->points() : no_points);
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
    points(w, item.points);
    w.key("colours");
    colours(w, item.colours);
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
