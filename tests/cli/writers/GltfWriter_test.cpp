// GltfWriter on a scene built by hand: what the file keeps of names,
// hierarchy, placements and colours, read back with tinygltf's own loader.
#include "cli/writers/GltfWriter.h"

#include <gtest/gtest.h>
#include <tiny_gltf.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <sstream>

#include "tests/cli/writers/SampleScene.h"

namespace {

tinygltf::Model load_glb(const std::string& bytes)
{
    tinygltf::TinyGLTF loader;
    tinygltf::Model m;
    std::string err, warn;
    const bool ok = loader.LoadBinaryFromMemory(&m, &err, &warn,
                                                reinterpret_cast<const unsigned char*>(bytes.data()),
                                                static_cast<unsigned>(bytes.size()));
    EXPECT_TRUE(ok) << err;
    return m;
}

std::string glb(const Scene& s, double scale)
{
    std::ostringstream out;
    EXPECT_EQ(GltfWriter::write(s, scale, true, out), "");
    return out.str();
}

// The node of that name, or null.
const tinygltf::Node* node(const tinygltf::Model& m, const std::string& name)
{
    for (const tinygltf::Node& n : m.nodes)
        if (n.name == name) return &n;
    return nullptr;
}

// The floats of accessor a, all components in order.
std::vector<float> floats(const tinygltf::Model& m, int a)
{
    const tinygltf::Accessor& acc = m.accessors[static_cast<std::size_t>(a)];
    const tinygltf::BufferView& v = m.bufferViews[static_cast<std::size_t>(acc.bufferView)];
    const unsigned char* p = m.buffers[0].data.data() + v.byteOffset + acc.byteOffset;
    std::vector<float> f(acc.count * 3);
    std::memcpy(f.data(), p, f.size() * sizeof(float));
    return f;
}

} // namespace

TEST(GltfWriter, Write_RootScalesMillimetresToMetresAndHoldsTheGroupTree)
{
    const tinygltf::Model m = load_glb(glb(sample_scene::scene(), GltfWriter::millimetres_to_metres));
    ASSERT_EQ(m.scenes.size(), 1u);
    ASSERT_EQ(m.scenes[0].nodes.size(), 1u);
    const tinygltf::Node& root = m.nodes[static_cast<std::size_t>(m.scenes[0].nodes[0])];
    EXPECT_EQ(root.name, "sample");
    EXPECT_EQ(root.scale, (std::vector<double>{0.001, 0.001, 0.001}));
    ASSERT_EQ(root.children.size(), 1u);
    const tinygltf::Node& base = m.nodes[static_cast<std::size_t>(root.children[0])];
    EXPECT_EQ(base.name, "Data Base");
    EXPECT_EQ(base.translation, (std::vector<double>{100, 0, 0}));
    ASSERT_EQ(base.children.size(), 2u);
    EXPECT_EQ(m.nodes[static_cast<std::size_t>(base.children[0])].name, "VelmScan(A)");
    EXPECT_EQ(m.nodes[static_cast<std::size_t>(base.children[1])].name, "PCS models(B)");
}

TEST(GltfWriter, Write_TurnedGroupCarriesAColumnOrderMatrix)
{
    const tinygltf::Model m = load_glb(glb(sample_scene::scene(), 1.0));
    const tinygltf::Node* models = node(m, "PCS models(B)");
    ASSERT_NE(models, nullptr);
    EXPECT_EQ(models->matrix, (std::vector<double>{0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 5, 1}));
    EXPECT_TRUE(models->translation.empty());
}

TEST(GltfWriter, Write_ScaleOneLeavesTheRootUnscaled)
{
    const tinygltf::Model m = load_glb(glb(sample_scene::scene(), 1.0));
    EXPECT_TRUE(m.nodes[static_cast<std::size_t>(m.scenes[0].nodes[0])].scale.empty());
}

TEST(GltfWriter, Write_MeshIsTrianglesWithThePaletteMaterialOfItsColourIndex)
{
    const tinygltf::Model m = load_glb(glb(sample_scene::scene(), 1.0));
    const tinygltf::Node* n = node(m, "SCAN_(LEFT)_1");
    ASSERT_NE(n, nullptr);
    const tinygltf::Primitive& p = m.meshes[static_cast<std::size_t>(n->mesh)].primitives.at(0);
    EXPECT_EQ(p.mode, TINYGLTF_MODE_TRIANGLES);
    EXPECT_EQ(m.accessors[static_cast<std::size_t>(p.indices)].count, 6u);
    const std::vector<float> pos = floats(m, p.attributes.at("POSITION"));
    EXPECT_EQ(pos, (std::vector<float>{0, 0, 1, 10, 0, 1, 0, 10, 1, 10, 10, 2}));
    const tinygltf::Material& mat = m.materials[static_cast<std::size_t>(p.material)];
    EXPECT_EQ(mat.name, "colour 3");
    EXPECT_EQ(mat.pbrMetallicRoughness.baseColorFactor, (std::vector<double>{0, 1, 0, 1}));
    EXPECT_EQ(n->extras.Get("mangled").Get<std::string>(), "VelmScan(A)_SCAN_(LEFT)_1");
    EXPECT_EQ(n->extras.Get("layer").Get<std::string>(), "SCAN");
    EXPECT_EQ(n->extras.Get("level").Get<int>(), 10);
    EXPECT_EQ(n->extras.Get("colour").Get<int>(), 3);
}

TEST(GltfWriter, Write_CurvesAreSampledLineStrips)
{
    const tinygltf::Model m = load_glb(glb(sample_scene::scene(), 1.0));
    const tinygltf::Node* spline = node(m, "sole~4");
    const tinygltf::Node* poly = node(m, "LIMIT");
    ASSERT_TRUE(spline && poly);
    const tinygltf::Primitive& ps = m.meshes[static_cast<std::size_t>(spline->mesh)].primitives.at(0);
    EXPECT_EQ(ps.mode, TINYGLTF_MODE_LINE_STRIP);
    EXPECT_EQ(m.accessors[static_cast<std::size_t>(ps.attributes.at("POSITION"))].count, 33u);
    EXPECT_EQ(m.materials[static_cast<std::size_t>(ps.material)].name, "colour 6");
    const tinygltf::Primitive& pp = m.meshes[static_cast<std::size_t>(poly->mesh)].primitives.at(0);
    EXPECT_EQ(floats(m, pp.attributes.at("POSITION")), (std::vector<float>{0, 0, 0, 5, 5, 0, 10, 0, 0}));
    EXPECT_EQ(m.materials[static_cast<std::size_t>(pp.material)].name, "no colour");
    EXPECT_FALSE(poly->extras.Has("colour"));
}

TEST(GltfWriter, Write_CloudIsPointsWithNormalisedByteColours)
{
    const tinygltf::Model m = load_glb(glb(sample_scene::scene(), 1.0));
    const tinygltf::Node* n = node(m, "PCIM_2");
    ASSERT_NE(n, nullptr);
    const tinygltf::Primitive& p = m.meshes[static_cast<std::size_t>(n->mesh)].primitives.at(0);
    EXPECT_EQ(p.mode, TINYGLTF_MODE_POINTS);
    const tinygltf::Accessor& c = m.accessors[static_cast<std::size_t>(p.attributes.at("COLOR_0"))];
    EXPECT_EQ(c.componentType, TINYGLTF_COMPONENT_TYPE_UNSIGNED_BYTE);
    EXPECT_EQ(c.type, TINYGLTF_TYPE_VEC3);
    EXPECT_TRUE(c.normalized);
    const tinygltf::BufferView& v = m.bufferViews[static_cast<std::size_t>(c.bufferView)];
    EXPECT_EQ(v.byteStride, 4u);
    EXPECT_EQ(v.byteOffset % 4, 0u);
    const unsigned char* b = m.buffers[0].data.data() + v.byteOffset;
    EXPECT_EQ(std::vector<int>(b, b + 12), (std::vector<int>{255, 0, 0, 0, 0, 128, 0, 0, 240, 240, 240, 0}));
}

TEST(GltfWriter, Write_TextFormEmbedsTheBufferAndReadsBack)
{
    std::ostringstream out;
    ASSERT_EQ(GltfWriter::write(sample_scene::scene(), 0.001, false, out), "");
    EXPECT_NE(out.str().find("data:application/octet-stream;base64,"), std::string::npos);
    tinygltf::TinyGLTF loader;
    tinygltf::Model m;
    std::string err, warn;
    ASSERT_TRUE(loader.LoadASCIIFromString(&m, &err, &warn, out.str().data(),
                                           static_cast<unsigned>(out.str().size()), ""))
        << err;
    EXPECT_NE(node(m, "sole~4"), nullptr);
}

TEST(GltfWriter, Write_SceneWithoutItemsHasNoBuffer)
{
    Scene s;
    s.top.name = "empty";
    const tinygltf::Model m = load_glb(glb(s, 0.001));
    EXPECT_TRUE(m.buffers.empty());
    EXPECT_EQ(m.nodes.size(), 1u);
}

TEST(GltfWriter, Write_ItemsWithoutGeometryBecomeBareNodes)
{
    Scene s;
    SceneMesh bad = sample_scene::mesh();
    bad.triangles = {{0, 1, 7}};
    s.top.add(bad);
    ScenePointCloud none = sample_scene::cloud();
    none.points.clear();
    s.top.add(none);
    const tinygltf::Model m = load_glb(glb(s, 1.0));
    EXPECT_TRUE(m.meshes.empty());
    EXPECT_EQ(m.nodes.size(), 3u);
}

TEST(GltfWriter, Utf8_KeepsValidTextAndReadsOtherBytesAsLatin1)
{
    EXPECT_EQ(GltfWriter::utf8("Fu\xC3\x9F"), "Fu\xC3\x9F");
    EXPECT_EQ(GltfWriter::utf8("caf\xE9"), "caf\xC3\xA9");
    // A cut sequence, an overlong '/', a surrogate and a byte past U+10FFFF.
    EXPECT_EQ(GltfWriter::utf8("\xE2\x82"), "\xC3\xA2\xC2\x82");
    EXPECT_EQ(GltfWriter::utf8("\xC0\xAF"), "\xC3\x80\xC2\xAF");
    EXPECT_EQ(GltfWriter::utf8("\xED\xA0\x80"), "\xC3\xAD\xC2\xA0\xC2\x80");
    EXPECT_EQ(GltfWriter::utf8("\xF4\x90\x80\x80").size(), 8u);
    EXPECT_EQ(GltfWriter::utf8(std::string("a\0b", 3)), std::string("a\0b", 3));
}

TEST(GltfWriter, Write_NamesThatAreNotUtf8StillMakeAValidFile)
{
    Scene s = sample_scene::scene();
    s.top.groups[0].name = "Base \xFF\xFE";
    const tinygltf::Model m = load_glb(glb(s, 1.0));
    EXPECT_NE(node(m, "Base \xC3\xBF\xC3\xBE"), nullptr);
}

TEST(GltfWriter, Write_RootTurnsZUpToYUpUnlessZIsKept)
{
    const tinygltf::Model m = load_glb(glb(sample_scene::scene(), 0.001));
    const tinygltf::Node& root = m.nodes[static_cast<std::size_t>(m.scenes[0].nodes[0])];
    ASSERT_EQ(root.rotation.size(), 4u);
    // A quarter turn about x, by the right hand: (0, 0, 1) goes to (0, 1, 0).
    const double x = root.rotation[0], w = root.rotation[3];
    EXPECT_DOUBLE_EQ(x, -std::sqrt(0.5));
    EXPECT_EQ(root.rotation[1], 0.0);
    EXPECT_EQ(root.rotation[2], 0.0);
    EXPECT_DOUBLE_EQ(w, std::sqrt(0.5));
    // The z axis turned by q = (x, 0, 0, w) is (0, -2 w x, 1 - 2 x x).
    const double zy = -2.0 * w * x, zz = 1.0 - 2.0 * x * x;
    EXPECT_NEAR(zy, 1.0, 1e-15);
    EXPECT_NEAR(zz, 0.0, 1e-15);
    EXPECT_EQ(root.scale, (std::vector<double>{0.001, 0.001, 0.001}));

    std::ostringstream out;
    ASSERT_EQ(GltfWriter::write(sample_scene::scene(), 0.001, true, out, false), "");
    const tinygltf::Model kept = load_glb(out.str());
    EXPECT_TRUE(kept.nodes[static_cast<std::size_t>(kept.scenes[0].nodes[0])].rotation.empty());
    EXPECT_EQ(kept.asset.extras.Get("up").Get<std::string>(), "z");
    EXPECT_EQ(m.asset.extras.Get("up").Get<std::string>(), "y");
}

TEST(GltfWriter, VertexNormals_AreUnitAreaWeightedMeansAndUpWhereNoAreaIs)
{
    SceneMesh mesh;
    // Two triangles meet at vertex 0: a large one in the plane z = 0 (normal
    // +z, area 50) and a small one in the plane x = 0 (normal +x, area 0.5).
    mesh.vertices = {{0, 0, 0}, {10, 0, 0}, {0, 10, 0}, {0, 1, 0}, {0, 0, 1}, {5, 5, 5}};
    mesh.triangles = {{0, 1, 2}, {0, 3, 4}};
    const auto n = GltfWriter::vertex_normals(mesh);
    ASSERT_EQ(n.size(), 6u);
    EXPECT_EQ(n[1], (std::array<float, 3>{0.0f, 0.0f, 1.0f}));
    EXPECT_EQ(n[3], (std::array<float, 3>{1.0f, 0.0f, 0.0f}));
    // (0.5 * 2, 0, 50 * 2) made unit: the large triangle weighs 100 times more.
    const double len = std::sqrt(1.0 + 100.0 * 100.0);
    EXPECT_FLOAT_EQ(n[0][0], static_cast<float>(1.0 / len));
    EXPECT_FLOAT_EQ(n[0][2], static_cast<float>(100.0 / len));
    // Vertex 5 is in no triangle.
    EXPECT_EQ(n[5], (std::array<float, 3>{0.0f, 0.0f, 1.0f}));
}

TEST(GltfWriter, Write_MeshesCarryUnitNormalsBesideTheirPositions)
{
    const tinygltf::Model m = load_glb(glb(sample_scene::scene(), 1.0));
    int meshes = 0;
    for (const tinygltf::Mesh& mesh : m.meshes) {
        const tinygltf::Primitive& p = mesh.primitives.at(0);
        if (p.mode != TINYGLTF_MODE_TRIANGLES) {
            EXPECT_EQ(p.attributes.count("NORMAL"), 0u);
            continue;
        }
        ++meshes;
        ASSERT_EQ(p.attributes.count("NORMAL"), 1u);
        const std::vector<float> n = floats(m, p.attributes.at("NORMAL"));
        EXPECT_EQ(n.size(), floats(m, p.attributes.at("POSITION")).size());
        for (std::size_t k = 0; k < n.size(); k += 3)
            EXPECT_NEAR(n[k] * n[k] + n[k + 1] * n[k + 1] + n[k + 2] * n[k + 2], 1.0, 1e-6);
    }
    EXPECT_EQ(meshes, 1);
}

TEST(GltfWriter, UniqueNames_SuffixOnlyTheSecondAndLaterOfASharedName)
{
    EXPECT_EQ(GltfWriter::unique_names({"a", "b", "a", "a"}),
              (std::vector<std::string>{"a", "b", "a (2)", "a (3)"}));
    // A suffixed name never takes one a sibling already has.
    EXPECT_EQ(GltfWriter::unique_names({"a", "a (2)", "a"}), (std::vector<std::string>{"a", "a (2)", "a (3)"}));
    EXPECT_EQ(GltfWriter::unique_names({"caf\xE9", "caf\xC3\xA9"}),
              (std::vector<std::string>{"caf\xC3\xA9", "caf\xC3\xA9 (2)"}));
}

TEST(GltfWriter, Write_SiblingsOfOneNameGetSuffixesAndKeepTheirNameInExtras)
{
    Scene s = sample_scene::scene();
    SceneGroup twin;
    twin.name = "Data Base";
    twin.mangled = "sample_Data Base";
    s.top.add(twin);
    const tinygltf::Model m = load_glb(glb(s, 1.0));
    const tinygltf::Node& root = m.nodes[static_cast<std::size_t>(m.scenes[0].nodes[0])];
    ASSERT_EQ(root.children.size(), 2u);
    EXPECT_EQ(m.nodes[static_cast<std::size_t>(root.children[0])].name, "Data Base");
    const tinygltf::Node& second = m.nodes[static_cast<std::size_t>(root.children[1])];
    EXPECT_EQ(second.name, "Data Base (2)");
    EXPECT_EQ(second.extras.Get("name").Get<std::string>(), "Data Base");
    EXPECT_FALSE(m.nodes[static_cast<std::size_t>(root.children[0])].extras.Has("name"));
}

TEST(GltfWriter, Write_AssetExtrasNameTheArchiveAndTheImportOptions)
{
    Scene s = sample_scene::scene();
    s.archive = "Fu\xDF.vlm";
    s.options = {{"vmiOptProcessScanData", 1}, {"vmiOptProcessImageData", 0}};
    const tinygltf::Model m = load_glb(glb(s, 1.0));
    EXPECT_EQ(m.asset.extras.Get("archive").Get<std::string>(), "Fu\xC3\x9F.vlm");
    const tinygltf::Value& o = m.asset.extras.Get("import_options");
    EXPECT_EQ(o.Get("vmiOptProcessScanData").GetNumberAsInt(), 1);
    EXPECT_EQ(o.Get("vmiOptProcessImageData").GetNumberAsInt(), 0);
}
