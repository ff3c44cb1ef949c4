#include "cli/writers/StlWriter.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

#include "cli/Utf8.h"

static_assert(std::endian::native == std::endian::little, "STL is written little-endian byte for byte");

namespace {

template <class T>
void put(std::ostream& out, T v)
{
    char b[sizeof(T)];
    std::memcpy(b, &v, sizeof(T));
    out.write(b, sizeof(T));
}

void put_point(std::ostream& out, const ScenePoint& p)
{
    for (double x : p) put(out, static_cast<float>(x));
}

} // namespace

ScenePoint StlWriter::normal(const ScenePoint& a, const ScenePoint& b, const ScenePoint& c)
{
    const ScenePoint u{b[0] - a[0], b[1] - a[1], b[2] - a[2]};
    const ScenePoint v{c[0] - a[0], c[1] - a[1], c[2] - a[2]};
    const ScenePoint n{u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2], u[0] * v[1] - u[1] * v[0]};
    const double len = std::sqrt(n[0] * n[0] + n[1] * n[1] + n[2] * n[2]);
    if (!(len > 0.0) || !std::isfinite(len)) return {0.0, 0.0, 0.0};
    return {n[0] / len, n[1] / len, n[2] / len};
}

std::string StlWriter::write(const Scene& scene, double scale, std::ostream& out)
{
    const std::vector<ScenePlacedItem> items = scene.placed_items(scale);
    std::uint64_t count = 0;
    for (const ScenePlacedItem& it : items)
        if (it.mesh && it.mesh->is_valid()) count += it.mesh->triangles.size();
    if (count > std::numeric_limits<std::uint32_t>::max()) return "too many triangles for binary STL";
    // A header that began with "solid" would pass for ASCII STL with some readers.
    std::string head = "velmora convert: " + Utf8::from_bytes(scene.top.name);
    // Cut only between characters, so the header stays valid UTF-8.
    std::size_t keep = 0;
    for (std::size_t len; keep < head.size() && (len = Utf8::sequence_length(head, keep)) > 0 &&
                          keep + len <= header_size;)
        keep += len;
    head.resize(keep);
    head.resize(header_size, ' ');
    out.write(head.data(), static_cast<std::streamsize>(header_size));
    put(out, static_cast<std::uint32_t>(count));
    for (const ScenePlacedItem& it : items) {
        if (!it.mesh || !it.mesh->is_valid()) continue;
        std::vector<ScenePoint> v;
        v.reserve(it.mesh->vertices.size());
        for (const ScenePoint& p : it.mesh->vertices) v.push_back(scene_apply(it.world, p));
        for (const auto& t : it.mesh->triangles) {
            put_point(out, normal(v[t[0]], v[t[1]], v[t[2]]));
            put_point(out, v[t[0]]);
            put_point(out, v[t[1]]);
            put_point(out, v[t[2]]);
            put(out, std::uint16_t{0});
        }
    }
    if (!out) return "cannot write the STL data";
    return {};
}
