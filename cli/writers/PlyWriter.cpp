#include "cli/writers/PlyWriter.h"

#include <bit>
#include <cstring>
#include <limits>
#include <vector>

#include "cli/writers/ColourPalette.h"
#include "cli/writers/ObjWriter.h"
#include "cli/writers/SceneText.h"

static_assert(std::endian::native == std::endian::little, "PLY is written little-endian byte for byte");

namespace {

struct Vertex {
    ScenePoint p;
    std::array<std::uint8_t, 3> c;
};

// The whole file's elements, gathered before the header that counts them.
struct Elements {
    std::vector<Vertex> vertices;
    std::vector<std::array<std::uint64_t, 3>> faces;
    std::vector<std::array<std::uint64_t, 2>> edges;
    std::vector<std::string> comments;
};

void gather(const ScenePlacedItem& it, bool curves, Elements& e)
{
    const std::uint64_t base = e.vertices.size();
    const std::size_t faces = e.faces.size(), edges = e.edges.size();
    if (it.mesh && !it.mesh->is_valid()) {
        // Left out, but still named among the comments.
    } else if (it.mesh) {
        const auto c = ColourPalette::colour(it.mesh->info.colour);
        for (const ScenePoint& p : it.mesh->vertices) e.vertices.push_back({scene_apply(it.world, p), c});
        for (const auto& t : it.mesh->triangles) e.faces.push_back({base + t[0], base + t[1], base + t[2]});
    } else if (it.curve && !curves) {
        // Left out, but still named among the comments.
    } else if (it.curve) {
        const auto c = ColourPalette::colour(it.curve->info.colour);
        const std::vector<ScenePoint> line = it.curve->sample();
        for (const ScenePoint& p : line) e.vertices.push_back({scene_apply(it.world, p), c});
        for (std::uint64_t k = 1; k < line.size(); ++k) e.edges.push_back({base + k - 1, base + k});
    } else {
        for (std::size_t k = 0; k < it.cloud->points.size(); ++k)
            e.vertices.push_back({scene_apply(it.world, it.cloud->points[k]), it.cloud->colour(k)});
    }
    std::string path;
    for (const std::string& p : it.path) {
        if (!path.empty()) path += '/';
        path += ObjWriter::token(p);
    }
    e.comments.push_back(ObjWriter::token(it.info().mangled) + " in " + (path.empty() ? "/" : path) +
                         ": vertices " + std::to_string(base) + " count " +
                         std::to_string(e.vertices.size() - base) + ", faces " + std::to_string(faces) +
                         " count " + std::to_string(e.faces.size() - faces) + ", edges " +
                         std::to_string(edges) + " count " + std::to_string(e.edges.size() - edges));
}

template <class T>
void put(std::ostream& out, T v)
{
    char b[sizeof(T)];
    std::memcpy(b, &v, sizeof(T));
    out.write(b, sizeof(T));
}

void header(std::ostream& out, const Scene& scene, double scale, bool curves, const Elements& e)
{
    out << "ply\nformat binary_little_endian 1.0\n"
        << "comment " << ObjWriter::token(scene.top.name) << ", written by velmora convert\n"
        << "comment coordinates: millimetres times " << SceneText::number(scale) << '\n';
    for (const std::string& c : e.comments) out << "comment object " << c << '\n';
    out << "element vertex " << e.vertices.size() << '\n'
        << "property float x\nproperty float y\nproperty float z\n"
        << "property uchar red\nproperty uchar green\nproperty uchar blue\n"
        << "element face " << e.faces.size() << '\n'
        << "property list uchar int vertex_indices\n";
    if (curves) out << "element edge " << e.edges.size() << '\n' << "property int vertex1\nproperty int vertex2\n";
    out << "end_header\n";
}

} // namespace

std::string PlyWriter::write(const Scene& scene, double scale, std::ostream& out)
{
    return write(scene, scale, out, false);
}

std::string PlyWriter::write(const Scene& scene, double scale, std::ostream& out, bool curves)
{
    Elements e;
    for (const ScenePlacedItem& it : scene.placed_items(scale)) gather(it, curves, e);
    if (e.vertices.size() > static_cast<std::uint64_t>(std::numeric_limits<std::int32_t>::max()))
        return "too many vertices for PLY's int indices";
    header(out, scene, scale, curves, e);
    for (const Vertex& v : e.vertices) {
        for (double x : v.p) put(out, static_cast<float>(x));
        for (std::uint8_t c : v.c) put(out, c);
    }
    for (const auto& f : e.faces) {
        put(out, std::uint8_t{3});
        for (std::uint64_t i : f) put(out, static_cast<std::int32_t>(i));
    }
    for (const auto& g : e.edges)
        for (std::uint64_t i : g) put(out, static_cast<std::int32_t>(i));
    if (!out) return "cannot write the PLY data";
    return {};
}
