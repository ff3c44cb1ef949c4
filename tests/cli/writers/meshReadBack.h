#pragma once
// meshReadBack: what the STEP and IGES tests of `--meshes` compare a file
// read back with: the triangle blocks of `velmora dump` on a small scan, each
// vertex placed in the world by the groups around it.
#include <BRep_Tool.hxx>
#include <TopExp.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_IndexedMapOfShape.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Vertex.hxx>
#include <gp_Pnt.hxx>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "tests/cli/writers/occtReadBack.h"
#include "tests/support/vlmWriter.h"

namespace exact {

struct DumpMesh {
    std::string mangled;
    std::vector<ScenePoint> vertices;  // placed in the world
    std::size_t triangles = 0;
};

inline void collect_meshes(const nlohmann::json& item, const ScenePlacement& world, std::vector<DumpMesh>& out)
{
    if (item["type"] == "group") {
        ScenePlacement x{};
        for (int i = 0; i < 12; ++i) x[static_cast<std::size_t>(i)] = item["xform"][i].get<double>();
        const ScenePlacement inner = scene_compose(world, x);
        for (const auto& c : item["children"]) collect_meshes(c, inner, out);
        return;
    }
    if (item["type"] != "triblock" || item["status"] != 0) return;
    DumpMesh m;
    m.mangled = item["mangled"].get<std::string>();
    for (const auto& p : item["vertices"]) m.vertices.push_back(scene_apply(world, point_of(p)));
    m.triangles = item["triangles"].size();
    out.push_back(std::move(m));
}

// A scan of nx x ny nodes, 2 by 3 mm, every node present and no two in a
// row at one height, so that every triangle has a plane.
inline std::string small_scan_archive(const std::string& name, int nx, int ny)
{
    vlm::height_grid g;
    g.nx = nx;
    g.ny = ny;
    g.dx = 2.0f;
    g.dy = 3.0f;
    g.dz = 0.25f;
    for (int k = 0; k < nx * ny; ++k) g.codes.push_back(static_cast<std::uint16_t>(100 + (k * 7) % 13));
    vlm::archive a;
    a.add("VLM00005.dat", vlm::chunk_chain(vlm::grid_entry(g), 100));
    vlm::catalogue c;
    c.header("Velmora").separator().level1("Miller", "Anna").level2("2024-03-01", "Visit");
    c.level3(1, 1, 0, 101, "20240301", "scan", "", 5);
    a.add("00000.vlk", c.text());
    const std::string path = std::string(VELMORA_BINARY_DIR) + "/exact-curves/" + name;
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    EXPECT_TRUE(a.write(path));
    return path;
}

inline std::vector<DumpMesh> dump_meshes(const std::string& archive)
{
    const vlm::command_result r = vlm::run_command(velmora(), {"dump", archive});
    EXPECT_EQ(r.status, 0) << r.err;
    std::vector<DumpMesh> out;
    if (r.status == 0) collect_meshes(nlohmann::json::parse(r.out)["root"], scene_identity(), out);
    return out;
}

// Every mesh of the dump comes back from file as a shape of its name with one
// face per triangle, whose vertices are the mesh's, placed: each vertex read
// stands on one of the mesh's and each of the mesh's has one standing on it.
// With shared, the faces share their vertices (STEP keeps the shell's
// topology; IGES writes every face with vertices of its own).
template <class Reader>
void expect_meshes_as_faces(const std::string& file, const std::vector<DumpMesh>& meshes, bool shared)
{
    const std::vector<Named> shapes = read_named<Reader>(file);
    for (const DumpMesh& m : meshes) {
        const Named* found = nullptr;
        for (const Named& n : shapes)
            if (n.name == m.mangled) found = &n;
        ASSERT_NE(found, nullptr) << m.mangled;
        int faces = 0;
        for (TopExp_Explorer e(found->shape, TopAbs_FACE); e.More(); e.Next()) ++faces;
        EXPECT_EQ(static_cast<std::size_t>(faces), m.triangles) << m.mangled;
        TopTools_IndexedMapOfShape vertices;
        TopExp::MapShapes(found->shape, TopAbs_VERTEX, vertices);
        if (shared) {
            EXPECT_EQ(static_cast<std::size_t>(vertices.Extent()), m.vertices.size()) << m.mangled;
        }
        std::vector<bool> met(m.vertices.size(), false);
        for (int i = 1; i <= vertices.Extent(); ++i) {
            const gp_Pnt p = BRep_Tool::Pnt(TopoDS::Vertex(vertices(i)));
            double nearest = 1e300;
            for (std::size_t k = 0; k < m.vertices.size(); ++k) {
                const ScenePoint& q = m.vertices[k];
                const double d = std::hypot(p.X() - q[0], p.Y() - q[1], p.Z() - q[2]);
                if (d < 1e-9) met[k] = true;
                nearest = std::min(nearest, d);
            }
            EXPECT_LT(nearest, 1e-9) << m.mangled << " vertex " << i;
        }
        EXPECT_EQ(std::count(met.begin(), met.end(), false), 0) << m.mangled;
    }
}

// `convert --meshes` of a small scan to a file ending in ext reads back with
// Reader as the dump's block, one face per triangle.
template <class Reader>
void expect_scan_meshes_read_back(const std::string& ext, bool shared)
{
    const std::string archive = small_scan_archive("meshes_" + ext + ".vlm", 6, 4);
    const std::vector<DumpMesh> meshes = dump_meshes(archive);
    ASSERT_EQ(meshes.size(), 1u);
    // 5 x 3 cells of two triangles.
    EXPECT_EQ(meshes[0].triangles, 30u);
    const std::string file = convert(archive, "meshes." + ext, {"--meshes"});
    expect_meshes_as_faces<Reader>(file, meshes, shared);
}

// Without --meshes a scan alone gives nothing to write in ext: exit 3, no file.
inline void expect_scan_alone_refused(const std::string& ext)
{
    const std::string archive = small_scan_archive("no_meshes_" + ext + ".vlm", 6, 4);
    const vlm::command_result r = vlm::run_command(velmora(), {"convert", archive, "-o", archive + "." + ext});
    EXPECT_EQ(r.status, 3) << r.err;
    EXPECT_FALSE(std::filesystem::exists(archive + "." + ext));
}

}  // namespace exact
