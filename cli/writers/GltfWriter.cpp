#include "cli/writers/GltfWriter.h"

#include <tiny_gltf.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <map>
#include <set>

#include "cli/Utf8.h"
#include "cli/writers/ColourPalette.h"

namespace {

// The largest buffer a binary glTF can count (its chunk lengths are 32 bits),
// less room for the header and the text.
constexpr std::size_t max_buffer_bytes = (std::size_t(1) << 32) - (std::size_t(1) << 24);

tinygltf::Value text(const std::string& bytes)
{
    return tinygltf::Value(GltfWriter::utf8(bytes));
}

class ModelBuilder {
public:
    explicit ModelBuilder(tinygltf::Model& m) : m_(m) { m_.buffers.emplace_back(); }

    int group_node(const SceneGroup& g, bool top, double scale, bool y_up, const std::string& name);
    bool too_large() const { return too_large_; }
    // The buffer's room for every view of g, taken before the views are
    // written, so that a large buffer is not copied as it grows.
    void reserve(const SceneGroup& g);

private:
    int item_node(const SceneItemInfo& info, int mesh, const std::string& name);
    int mesh(const SceneMesh& mesh);
    int curve(const SceneCurve& curve);
    int cloud(const ScenePointCloud& cloud);
    int primitive_mesh(tinygltf::Primitive p, const std::string& name);
    int positions(const std::vector<ScenePoint>& points);
    int view(const void* bytes, std::size_t n, std::size_t stride, int target);
    // A new view of n bytes at the buffer's end, for the caller to fill:
    // where they go, or null when the buffer cannot take them (the view then
    // holds none). Written in place, the floats need no array of their own.
    unsigned char* room(std::size_t n, std::size_t stride, int target, int& index);
    int accessor(int view, int component, int type, std::size_t count, bool normalized);
    int material(int colour);

    tinygltf::Model& m_;
    std::map<int, int> materials_;
    bool too_large_ = false;
};

// Bytes of one view, with the padding before the next.
std::size_t view_bytes(std::size_t n) { return (n + 3) & ~std::size_t(3); }

std::size_t buffer_bytes(const SceneGroup& g)
{
    std::size_t n = 0;
    for (const SceneGroup& sub : g.groups) n += buffer_bytes(sub);
    for (const SceneMesh& mesh : g.meshes)
        if (mesh.is_valid())
            // Positions, normals and triangles.
            n += 2 * view_bytes(mesh.vertices.size() * 3 * sizeof(float)) +
                 view_bytes(mesh.triangles.size() * sizeof(mesh.triangles[0]));
    for (const SceneCurve& curve : g.curves) n += view_bytes(curve.sample().size() * 3 * sizeof(float));
    for (const ScenePointCloud& cloud : g.clouds)
        if (!cloud.points.empty()) n += view_bytes(cloud.points.size() * 3 * sizeof(float)) + cloud.points.size() * 4;
    return n;
}

void ModelBuilder::reserve(const SceneGroup& g)
{
    const std::size_t n = buffer_bytes(g);
    // Beyond what a buffer may hold, the views report it as they come.
    if (n <= max_buffer_bytes) m_.buffers[0].data.reserve(n);
}

int ModelBuilder::view(const void* bytes, std::size_t n, std::size_t stride, int target)
{
    int index = -1;
    if (unsigned char* at = room(n, stride, target, index)) std::memcpy(at, bytes, n);
    return index;
}

unsigned char* ModelBuilder::room(std::size_t n, std::size_t stride, int target, int& index)
{
    std::vector<unsigned char>& data = m_.buffers[0].data;
    if (data.size() + n + 3 > max_buffer_bytes) {
        too_large_ = true;
        n = 0;
    }
    // Every view starts on a 4-byte boundary, as vertex attributes must.
    data.resize((data.size() + 3) & ~std::size_t(3), 0);
    tinygltf::BufferView v;
    v.buffer = 0;
    v.byteOffset = data.size();
    v.byteLength = n;
    v.byteStride = stride;
    v.target = target;
    data.resize(data.size() + n);
    m_.bufferViews.push_back(v);
    index = static_cast<int>(m_.bufferViews.size()) - 1;
    return n > 0 ? data.data() + v.byteOffset : nullptr;
}

int ModelBuilder::accessor(int view, int component, int type, std::size_t count, bool normalized)
{
    tinygltf::Accessor a;
    a.bufferView = view;
    a.byteOffset = 0;
    a.componentType = component;
    a.type = type;
    a.count = count;
    a.normalized = normalized;
    m_.accessors.push_back(a);
    return static_cast<int>(m_.accessors.size()) - 1;
}

int ModelBuilder::positions(const std::vector<ScenePoint>& points)
{
    std::vector<double> lo(3, std::numeric_limits<double>::infinity());
    std::vector<double> hi(3, -std::numeric_limits<double>::infinity());
    int v = -1;
    unsigned char* at = room(points.size() * 3 * sizeof(float), 0, TINYGLTF_TARGET_ARRAY_BUFFER, v);
    for (const ScenePoint& p : points) {
        for (int c = 0; c < 3; ++c) {
            const float f = static_cast<float>(p[c]);
            if (at) {
                std::memcpy(at, &f, sizeof f);
                at += sizeof f;
            }
            lo[c] = std::min(lo[c], static_cast<double>(f));
            hi[c] = std::max(hi[c], static_cast<double>(f));
        }
    }
    const int a = accessor(v, TINYGLTF_COMPONENT_TYPE_FLOAT, TINYGLTF_TYPE_VEC3, points.size(), false);
    m_.accessors[static_cast<std::size_t>(a)].minValues = lo;
    m_.accessors[static_cast<std::size_t>(a)].maxValues = hi;
    return a;
}

int ModelBuilder::material(int colour)
{
    const int key = ColourPalette::known(colour) ? colour : SceneItemInfo::no_colour;
    if (auto it = materials_.find(key); it != materials_.end()) return it->second;
    const ColourPalette::Rgb c = ColourPalette::colour(key);
    tinygltf::Material mat;
    mat.name = key == SceneItemInfo::no_colour ? "no colour" : "colour " + std::to_string(key);
    mat.pbrMetallicRoughness.baseColorFactor = {c[0] / 255.0, c[1] / 255.0, c[2] / 255.0, 1.0};
    mat.pbrMetallicRoughness.metallicFactor = 0.0;
    mat.pbrMetallicRoughness.roughnessFactor = 1.0;
    mat.doubleSided = true;
    m_.materials.push_back(mat);
    const int index = static_cast<int>(m_.materials.size()) - 1;
    materials_[key] = index;
    return index;
}

int ModelBuilder::primitive_mesh(tinygltf::Primitive p, const std::string& name)
{
    tinygltf::Mesh mesh;
    mesh.name = GltfWriter::utf8(name);
    mesh.primitives.push_back(std::move(p));
    m_.meshes.push_back(std::move(mesh));
    return static_cast<int>(m_.meshes.size()) - 1;
}

int ModelBuilder::mesh(const SceneMesh& mesh)
{
    // glTF allows no empty accessor: an item without geometry is a bare node.
    if (!mesh.is_valid()) return -1;
    tinygltf::Primitive p;
    p.mode = TINYGLTF_MODE_TRIANGLES;
    p.attributes["POSITION"] = positions(mesh.vertices);
    int normals = -1;
    if (unsigned char* at = room(mesh.vertices.size() * 3 * sizeof(float), 0, TINYGLTF_TARGET_ARRAY_BUFFER, normals))
        GltfWriter::vertex_normals(mesh, at);
    p.attributes["NORMAL"] =
        accessor(normals, TINYGLTF_COMPONENT_TYPE_FLOAT, TINYGLTF_TYPE_VEC3, mesh.vertices.size(), false);
    const int v = view(mesh.triangles.data(), mesh.triangles.size() * sizeof(mesh.triangles[0]), 0,
                       TINYGLTF_TARGET_ELEMENT_ARRAY_BUFFER);
    p.indices = accessor(v, TINYGLTF_COMPONENT_TYPE_UNSIGNED_INT, TINYGLTF_TYPE_SCALAR,
                         mesh.triangles.size() * 3, false);
    p.material = material(mesh.info.colour);
    return primitive_mesh(std::move(p), mesh.info.name);
}

int ModelBuilder::curve(const SceneCurve& curve)
{
    const std::vector<ScenePoint> line = curve.sample();
    if (line.size() < 2) return -1;
    tinygltf::Primitive p;
    p.mode = TINYGLTF_MODE_LINE_STRIP;
    p.attributes["POSITION"] = positions(line);
    p.material = material(curve.info.colour);
    return primitive_mesh(std::move(p), curve.info.name);
}

int ModelBuilder::cloud(const ScenePointCloud& cloud)
{
    if (cloud.points.empty()) return -1;
    tinygltf::Primitive p;
    p.mode = TINYGLTF_MODE_POINTS;
    p.attributes["POSITION"] = positions(cloud.points);
    // Colours as normalised bytes, each padded to 4 so that every element
    // starts on a 4-byte boundary.
    int v = -1;
    if (unsigned char* at = room(cloud.points.size() * 4, 4, TINYGLTF_TARGET_ARRAY_BUFFER, v)) {
        for (std::size_t k = 0; k < cloud.points.size(); ++k, at += 4) {
            const auto c = cloud.colour(k);
            at[0] = c[0];
            at[1] = c[1];
            at[2] = c[2];
            at[3] = 0;
        }
    }
    p.attributes["COLOR_0"] =
        accessor(v, TINYGLTF_COMPONENT_TYPE_UNSIGNED_BYTE, TINYGLTF_TYPE_VEC3, cloud.points.size(), true);
    return primitive_mesh(std::move(p), cloud.info.name);
}

int ModelBuilder::item_node(const SceneItemInfo& info, int mesh, const std::string& name)
{
    tinygltf::Node n;
    n.name = name;
    n.mesh = mesh;
    tinygltf::Value::Object extras{{"mangled", text(info.mangled)},
                                   {"layer", text(info.layer)},
                                   {"level", tinygltf::Value(info.level)}};
    if (name != GltfWriter::utf8(info.name)) extras["name"] = text(info.name);
    if (info.colour != SceneItemInfo::no_colour) extras["colour"] = tinygltf::Value(info.colour);
    n.extras = tinygltf::Value(extras);
    m_.nodes.push_back(std::move(n));
    return static_cast<int>(m_.nodes.size()) - 1;
}

void place(tinygltf::Node& n, const ScenePlacement& m)
{
    const bool turns = m[0] != 1.0 || m[1] != 0.0 || m[2] != 0.0 || m[4] != 0.0 || m[5] != 1.0 ||
                       m[6] != 0.0 || m[8] != 0.0 || m[9] != 0.0 || m[10] != 1.0;
    if (turns) {
        // glTF's matrix is 4 x 4 in column order.
        n.matrix = {m[0], m[4], m[8], 0.0, m[1], m[5], m[9], 0.0,
                    m[2], m[6], m[10], 0.0, m[3], m[7], m[11], 1.0};
    } else if (m[3] != 0.0 || m[7] != 0.0 || m[11] != 0.0) {
        n.translation = {m[3], m[7], m[11]};
    }
}

int ModelBuilder::group_node(const SceneGroup& g, bool top, double scale, bool y_up, const std::string& name)
{
    std::vector<std::string> given;
    for (const SceneMember& member : g.members) {
        switch (member.kind) {
        case SceneMember::group: given.push_back(g.groups[member.index].name); break;
        case SceneMember::mesh: given.push_back(g.meshes[member.index].info.name); break;
        case SceneMember::curve: given.push_back(g.curves[member.index].info.name); break;
        case SceneMember::cloud: given.push_back(g.clouds[member.index].info.name); break;
        }
    }
    const std::vector<std::string> names = GltfWriter::unique_names(given);
    std::vector<int> children;
    for (std::size_t k = 0; k < g.members.size(); ++k) {
        const SceneMember& member = g.members[k];
        switch (member.kind) {
        case SceneMember::group:
            children.push_back(group_node(g.groups[member.index], false, scale, y_up, names[k]));
            break;
        case SceneMember::mesh: {
            const SceneMesh& x = g.meshes[member.index];
            children.push_back(item_node(x.info, mesh(x), names[k]));
            break;
        }
        case SceneMember::curve: {
            const SceneCurve& x = g.curves[member.index];
            children.push_back(item_node(x.info, curve(x), names[k]));
            break;
        }
        case SceneMember::cloud: {
            const ScenePointCloud& x = g.clouds[member.index];
            children.push_back(item_node(x.info, cloud(x), names[k]));
            break;
        }
        }
    }
    tinygltf::Node n;
    n.name = name;
    n.children = std::move(children);
    place(n, g.placement);
    if (top && scale != 1.0) n.scale = {scale, scale, scale};
    // A quarter turn about x: the archive's z becomes glTF's y.
    if (top && y_up) n.rotation = {-std::sqrt(0.5), 0.0, 0.0, std::sqrt(0.5)};
    if (!top) {
        tinygltf::Value::Object extras{{"mangled", text(g.mangled)}};
        if (name != GltfWriter::utf8(g.name)) extras["name"] = text(g.name);
        n.extras = tinygltf::Value(extras);
    }
    m_.nodes.push_back(std::move(n));
    return static_cast<int>(m_.nodes.size()) - 1;
}

} // namespace

std::string GltfWriter::utf8(const std::string& bytes)
{
    return Utf8::from_bytes(bytes);
}

std::vector<std::array<float, 3>> GltfWriter::vertex_normals(const SceneMesh& mesh)
{
    std::vector<std::array<float, 3>> out(mesh.vertices.size());
    vertex_normals(mesh, reinterpret_cast<unsigned char*>(out.data()));
    return out;
}

void GltfWriter::vertex_normals(const SceneMesh& mesh, unsigned char* out)
{
    std::vector<std::array<double, 3>> sum(mesh.vertices.size(), {0.0, 0.0, 0.0});
    for (const auto& t : mesh.triangles) {
        if (t[0] >= sum.size() || t[1] >= sum.size() || t[2] >= sum.size()) continue;
        const ScenePoint& a = mesh.vertices[t[0]];
        const ScenePoint& b = mesh.vertices[t[1]];
        const ScenePoint& c = mesh.vertices[t[2]];
        const double u[3] = {b[0] - a[0], b[1] - a[1], b[2] - a[2]};
        const double v[3] = {c[0] - a[0], c[1] - a[1], c[2] - a[2]};
        // The cross product's length is twice the triangle's area: its
        // weight comes with it.
        const double n[3] = {u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2], u[0] * v[1] - u[1] * v[0]};
        for (std::uint32_t i : t)
            for (int k = 0; k < 3; ++k) sum[i][static_cast<std::size_t>(k)] += n[k];
    }
    for (const auto& n : sum) {
        const double len = std::sqrt(n[0] * n[0] + n[1] * n[1] + n[2] * n[2]);
        float f[3] = {0.0f, 0.0f, 1.0f};
        if (len > 0.0 && std::isfinite(len))
            for (int k = 0; k < 3; ++k) f[k] = static_cast<float>(n[static_cast<std::size_t>(k)] / len);
        std::memcpy(out, f, sizeof f);
        out += sizeof f;
    }
}

std::vector<std::string> GltfWriter::unique_names(const std::vector<std::string>& names)
{
    std::vector<std::string> out;
    std::set<std::string> taken;
    for (const std::string& n : names) taken.insert(utf8(n));
    std::map<std::string, int> seen;
    for (const std::string& given : names) {
        const std::string n = utf8(given);
        int& count = seen[n];
        if (++count == 1) {
            out.push_back(n);
            continue;
        }
        // The next number whose name no sibling has.
        std::string candidate;
        do candidate = n + " (" + std::to_string(count++) + ")";
        while (taken.count(candidate) > 0);
        --count;
        taken.insert(candidate);
        out.push_back(candidate);
    }
    return out;
}

std::string GltfWriter::write(const Scene& scene, double scale, bool binary, std::ostream& out)
{
    return write(scene, scale, binary, out, true);
}

std::string GltfWriter::write(const Scene& scene, double scale, bool binary, std::ostream& out, bool y_up)
{
    tinygltf::Model m;
    m.asset.version = "2.0";
    m.asset.generator = "velmora convert";
    tinygltf::Value::Object options;
    for (const auto& [name, value] : scene.options) options[utf8(name)] = tinygltf::Value(value);
    m.asset.extras = tinygltf::Value(tinygltf::Value::Object{{"archive", text(scene.archive)},
                                                             {"import_options", tinygltf::Value(options)},
                                                             {"up", tinygltf::Value(std::string(y_up ? "y" : "z"))}});
    ModelBuilder builder(m);
    builder.reserve(scene.top);
    const int root = builder.group_node(scene.top, true, scale, y_up, utf8(scene.top.name));
    if (builder.too_large()) return "the geometry is too large for one glTF buffer";
    tinygltf::Scene s;
    s.name = utf8(scene.top.name);
    s.nodes.push_back(root);
    m.scenes.push_back(s);
    m.defaultScene = 0;
    // A buffer of no bytes is not allowed; a scene without geometry has none.
    if (m.buffers[0].data.empty()) m.buffers.clear();
    try {
        tinygltf::TinyGLTF gltf;
        if (!gltf.WriteGltfSceneToStream(&m, out, !binary, binary) || !out)
            return binary ? "cannot write the binary glTF" : "cannot write the glTF text";
    } catch (const std::exception& e) {
        return std::string("cannot write the glTF: ") + e.what();
    }
    return {};
}
