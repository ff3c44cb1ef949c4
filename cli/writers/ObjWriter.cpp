#include "cli/writers/ObjWriter.h"

#include <array>
#include <cstdint>

#include "cli/Utf8.h"
#include "cli/writers/ColourPalette.h"
#include "cli/writers/SceneText.h"

namespace {

using Rgb = std::array<std::uint8_t, 3>;

std::string path_token(const std::vector<std::string>& path, const std::string& top)
{
    if (path.empty()) return ObjWriter::token(top);
    std::string s;
    for (const std::string& p : path) {
        if (!s.empty()) s += '/';
        s += ObjWriter::token(p);
    }
    return s;
}

void vertex(std::ostream& out, const ScenePoint& p, const Rgb& c)
{
    out << "v " << SceneText::number(static_cast<float>(p[0])) << ' ' << SceneText::number(static_cast<float>(p[1]))
        << ' ' << SceneText::number(static_cast<float>(p[2])) << ' ' << SceneText::fraction(c[0]) << ' '
        << SceneText::fraction(c[1]) << ' ' << SceneText::fraction(c[2]) << '\n';
}

// Writes the item's vertices and elements; next is the 1-based number of the
// item's first vertex and is moved past its last.
void item(std::ostream& out, const ScenePlacedItem& it, std::size_t& next)
{
    const std::size_t base = next;
    if (it.mesh) {
        if (!it.mesh->is_valid()) return;
        const Rgb c = ColourPalette::colour(it.mesh->info.colour);
        for (const ScenePoint& p : it.mesh->vertices) vertex(out, scene_apply(it.world, p), c);
        for (const auto& t : it.mesh->triangles)
            out << "f " << base + t[0] << ' ' << base + t[1] << ' ' << base + t[2] << '\n';
        next += it.mesh->vertices.size();
    } else if (it.curve) {
        const Rgb c = ColourPalette::colour(it.curve->info.colour);
        const std::vector<ScenePoint> line = it.curve->sample();
        if (line.size() < 2) return;
        for (const ScenePoint& p : line) vertex(out, scene_apply(it.world, p), c);
        out << 'l';
        for (std::size_t k = 0; k < line.size(); ++k) out << ' ' << base + k;
        out << '\n';
        next += line.size();
    } else {
        const ScenePointCloud& cloud = *it.cloud;
        for (std::size_t k = 0; k < cloud.points.size(); ++k)
            vertex(out, scene_apply(it.world, cloud.points[k]), cloud.colour(k));
        for (std::size_t k = 0; k < cloud.points.size(); k += ObjWriter::points_per_line) {
            out << 'p';
            for (std::size_t j = k; j < cloud.points.size() && j < k + ObjWriter::points_per_line; ++j)
                out << ' ' << base + j;
            out << '\n';
        }
        next += cloud.points.size();
    }
}

} // namespace

std::string ObjWriter::token(const std::string& name)
{
    if (name.empty()) return "unnamed";
    std::string s = Utf8::from_bytes(name);
    for (char& c : s) {
        const unsigned char u = static_cast<unsigned char>(c);
        if (u <= 0x20 || u == 0x7F) c = '_';
    }
    return s;
}

std::string ObjWriter::write(const Scene& scene, double scale, std::ostream& out)
{
    out << "# " << token(scene.top.name) << ", written by velmora convert\n"
        << "# coordinates: millimetres times " << SceneText::number(scale)
        << "; vertex colours r g b after x y z\n";
    std::size_t next = 1;
    for (const ScenePlacedItem& it : scene.placed_items(scale)) {
        // OBJ has no nesting: the group carries the host's flat (mangled)
        // name, a comment the path of groups it sits in.
        out << "# in " << path_token(it.path, scene.top.name) << '\n'
            << "g " << token(it.info().mangled) << '\n';
        item(out, it, next);
    }
    if (!out) return "cannot write the OBJ text";
    return {};
}
