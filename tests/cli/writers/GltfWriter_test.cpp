// GltfWriter on a scene built by hand: what the file keeps of names,
// hierarchy, placements and colours, read back with tinygltf's own loader.
#include "cli/writers/GltfWriter.h"

#include <gtest/gtest.h>
#include <tiny_gltf.h>

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
