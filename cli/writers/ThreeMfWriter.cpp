#include "cli/writers/ThreeMfWriter.h"

#include <zip.h>

#include <charconv>
#include <cstdint>
#include <ctime>
#include <map>
#include <memory>
#include <vector>

#include "cli/writers/ColourPalette.h"
#include "cli/writers/GltfWriter.h"

namespace {

bool repeats_a_vertex(const std::array<std::uint32_t, 3>& t)
{
    return t[0] == t[1] || t[1] == t[2] || t[0] == t[2];
}

const char* const content_types =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<Types xmlns=\"http://schemas.openxmlformats.org/package/2006/content-types\">\n"
    " <Default Extension=\"rels\" ContentType=\"application/vnd.openxmlformats-package.relationships+xml\"/>\n"
    " <Default Extension=\"model\" ContentType=\"application/vnd.ms-package.3dmanufacturing-3dmodel+xml\"/>\n"
    "</Types>\n";

const char* const relationships =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">\n"
    " <Relationship Target=\"/3D/3dmodel.model\" Id=\"rel0\" "
    "Type=\"http://schemas.microsoft.com/3dmanufacturing/2013/01/3dmodel\"/>\n"
    "</Relationships>\n";

// The date every part carries: the same scene, the same bytes.
constexpr std::time_t fixed_date = 315532800;  // 1980-01-01, the first a ZIP date can hold

void number(std::string& s, double v)
{
    char b[32];
    const auto r = std::to_chars(b, b + sizeof b, v);
    s.append(b, r.ptr);
}

void attribute_text(std::string& s, const std::string& text)
{
    for (char c : text) {
        switch (c) {
        case '&': s += "&amp;"; break;
        case '<': s += "&lt;"; break;
        case '>': s += "&gt;"; break;
        case '"': s += "&quot;"; break;
        default:
            // XML 1.0 has no place for the other control characters.
            if (static_cast<unsigned char>(c) < 0x20) s += ' ';
            else s += c;
        }
    }
}

std::string hex_colour(const ColourPalette::Rgb& c)
{
    static const char digits[] = "0123456789ABCDEF";
    std::string s = "#";
    for (std::uint8_t v : c) {
        s += digits[v >> 4];
        s += digits[v & 15];
    }
    return s + "FF";
}

struct ZipDelete {
    void operator()(zip_source_t* s) const { zip_source_free(s); }
};

} // namespace

std::size_t ThreeMfWriter::printable_triangles(const SceneMesh& mesh)
{
    if (!mesh.is_valid()) return 0;
    std::size_t n = 0;
    for (const auto& t : mesh.triangles) n += repeats_a_vertex(t) ? 0 : 1;
    return n;
}

std::string ThreeMfWriter::model(const Scene& scene, double scale)
{
    std::vector<ScenePlacedItem> meshes;
    for (ScenePlacedItem& it : scene.placed_items(scale))
        if (it.mesh && printable_triangles(*it.mesh) > 0) meshes.push_back(std::move(it));
    // The material group is resource 1, the objects 2 on: numbers without a
    // gap, which some readers (assimp's) need.
    std::map<int, int> material;
    std::vector<int> order;
    for (const ScenePlacedItem& it : meshes) {
        const int key = ColourPalette::known(it.mesh->info.colour) ? it.mesh->info.colour : SceneItemInfo::no_colour;
        if (material.emplace(key, static_cast<int>(order.size())).second) order.push_back(key);
    }
    std::string s =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<model unit=\"millimeter\" xml:lang=\"en-US\" "
        "xmlns=\"http://schemas.microsoft.com/3dmanufacturing/core/2015/02\">\n"
        " <metadata name=\"Application\">velmora convert</metadata>\n"
        " <resources>\n";
    if (!order.empty()) {
        s += "  <basematerials id=\"1\">\n";
        for (int key : order) {
            s += "   <base name=\"";
            s += key == SceneItemInfo::no_colour ? "no colour" : "colour " + std::to_string(key);
            s += "\" displaycolor=\"" + hex_colour(ColourPalette::colour(key)) + "\"/>\n";
        }
        s += "  </basematerials>\n";
    }
    for (std::size_t k = 0; k < meshes.size(); ++k) {
        const ScenePlacedItem& it = meshes[k];
        const SceneMesh& m = *it.mesh;
        const int key = ColourPalette::known(m.info.colour) ? m.info.colour : SceneItemInfo::no_colour;
        s += "  <object id=\"" + std::to_string(k + 2) + "\" type=\"model\" name=\"";
        attribute_text(s, GltfWriter::utf8(m.info.name.empty() ? m.info.mangled : m.info.name));
        s += "\" pid=\"1\" pindex=\"" + std::to_string(material[key]) + "\">\n   <mesh>\n    <vertices>\n";
        for (const ScenePoint& p : m.vertices) {
            const ScenePoint q = scene_apply(it.world, p);
            s += "     <vertex x=\"";
            number(s, q[0]);
            s += "\" y=\"";
            number(s, q[1]);
            s += "\" z=\"";
            number(s, q[2]);
            s += "\"/>\n";
        }
        s += "    </vertices>\n    <triangles>\n";
        for (const auto& t : m.triangles) {
            if (repeats_a_vertex(t)) continue;
            s += "     <triangle v1=\"" + std::to_string(t[0]) + "\" v2=\"" + std::to_string(t[1]) + "\" v3=\"" +
                 std::to_string(t[2]) + "\"/>\n";
        }
        s += "    </triangles>\n   </mesh>\n  </object>\n";
    }
    s += " </resources>\n <build>\n";
    for (std::size_t k = 0; k < meshes.size(); ++k) s += "  <item objectid=\"" + std::to_string(k + 2) + "\"/>\n";
    s += " </build>\n</model>\n";
    return s;
}

std::string ThreeMfWriter::write(const Scene& scene, double scale, std::ostream& out)
{
    const std::string parts[3][2] = {
        {"[Content_Types].xml", content_types}, {"_rels/.rels", relationships}, {model_part, model(scene, scale)}};
    zip_error_t error;
    zip_error_init(&error);
    std::unique_ptr<zip_source_t, ZipDelete> buffer(zip_source_buffer_create(nullptr, 0, 0, &error));
    if (!buffer) return "cannot make the package in memory";
    // The buffer outlives the archive written into it.
    zip_source_keep(buffer.get());
    zip_t* za = zip_open_from_source(buffer.get(), ZIP_TRUNCATE, &error);
    if (!za) {
        const std::string why = zip_error_strerror(&error);
        zip_error_fini(&error);
        return "cannot make the package: " + why;
    }
    for (const auto& part : parts) {
        zip_source_t* data = zip_source_buffer(za, part[1].data(), part[1].size(), 0);
        const zip_int64_t index = data ? zip_file_add(za, part[0].c_str(), data, ZIP_FL_ENC_UTF_8) : -1;
        if (index < 0) {
            if (data) zip_source_free(data);
            const std::string why = zip_strerror(za);
            zip_discard(za);
            return "cannot add " + part[0] + ": " + why;
        }
        zip_set_file_compression(za, static_cast<zip_uint64_t>(index), ZIP_CM_DEFLATE, 0);
        zip_file_set_mtime(za, static_cast<zip_uint64_t>(index), fixed_date, 0);
    }
    if (zip_close(za) != 0) {
        const std::string why = zip_strerror(za);
        zip_discard(za);
        return "cannot write the package: " + why;
    }
    zip_source_t* src = buffer.get();
    if (zip_source_open(src) != 0) return "cannot read the package back";
    std::vector<char> bytes;
    char chunk[1 << 16];
    zip_int64_t got = 0;
    while ((got = zip_source_read(src, chunk, sizeof chunk)) > 0) bytes.insert(bytes.end(), chunk, chunk + got);
    zip_source_close(src);
    if (got < 0) return "cannot read the package back";
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!out) return "cannot write the 3MF package";
    return {};
}
