// The file writers of `velmora convert` on a scene built by hand: what each
// format keeps of names, hierarchy, placements and colours. The glTF files are
// read back with tinygltf's own loader.
#include <gtest/gtest.h>
#include <tiny_gltf.h>

#include <cstdint>
#include <cstring>
#include <sstream>

#include "cli/GltfWriter.h"
#include "cli/ObjWriter.h"
#include "cli/PlyWriter.h"
#include "cli/StlWriter.h"
#include "tests/cli/SampleScene.h"

namespace {

std::vector<std::string> lines_starting(const std::string& text, const std::string& prefix)
{
    std::vector<std::string> out;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        if (line.rfind(prefix, 0) == 0) out.push_back(line);
    return out;
}

template <class T>
T read_at(const std::string& bytes, std::size_t offset)
{
    T v{};
    std::memcpy(&v, bytes.data() + offset, sizeof(T));
    return v;
}

std::string written(std::string (*write)(const Scene&, double, std::ostream&), const Scene& s, double scale)
{
    std::ostringstream out;
    EXPECT_EQ(write(s, scale, out), "");
    return out.str();
}

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

TEST(ObjWriter, Write_NamesEachItemByItsMangledNameInItsGroupPath)
{
    const std::string obj = written(ObjWriter::write, sample_scene::scene(), 1.0);
    EXPECT_EQ(lines_starting(obj, "g "),
              (std::vector<std::string>{"g VelmScan(A)_SCAN_(LEFT)_1", "g VelmScan(A)_PCIM_2",
                                        "g PCS_models(B)_sole~4", "g PCS_models(B)_LIMIT"}));
    EXPECT_EQ(lines_starting(obj, "# in "),
              (std::vector<std::string>{"# in Data_Base/VelmScan(A)", "# in Data_Base/VelmScan(A)",
                                        "# in Data_Base/PCS_models(B)", "# in Data_Base/PCS_models(B)"}));
}

TEST(ObjWriter, Write_FlattensPlacementsAndColoursVerticesByPalette)
{
    const std::string obj = written(ObjWriter::write, sample_scene::scene(), 1.0);
    const std::vector<std::string> v = lines_starting(obj, "v ");
    // 4 mesh vertices, 3 points, 2 * 16 + 1 spline samples, 3 polyline points.
    ASSERT_EQ(v.size(), 4u + 3u + 33u + 3u);
    // (10, 0, 1) moved by (100, 200, 0); colour index 3 is green.
    EXPECT_EQ(v[1], "v 110 200 1 0 1 0");
    // Point colours are the cloud's own: (0, 128, 0) at the point (1, 0, -5).
    EXPECT_EQ(v[5], "v 101 200 -5 0 0.5019607843137255 0");
    // The polyline's (5, 5, 0) turned a quarter, raised by 5, moved by 100;
    // without a colour index it is the palette's light grey.
    const std::string grey = "0.7529411764705882";
    EXPECT_EQ(v[41], "v 95 5 5 " + grey + ' ' + grey + ' ' + grey);
}

TEST(ObjWriter, Write_FacesLinesAndPointsCountVerticesAcrossItems)
{
    const std::string obj = written(ObjWriter::write, sample_scene::scene(), 1.0);
    EXPECT_EQ(lines_starting(obj, "f "), (std::vector<std::string>{"f 1 2 3", "f 2 4 3"}));
    EXPECT_EQ(lines_starting(obj, "p "), (std::vector<std::string>{"p 5 6 7"}));
    const std::vector<std::string> l = lines_starting(obj, "l ");
    ASSERT_EQ(l.size(), 2u);
    EXPECT_EQ(l[1], "l 41 42 43");
    EXPECT_EQ(l[0].rfind("l 8 9 ", 0), 0u);
}

TEST(ObjWriter, Write_SplitsLargeCloudsIntoShortPointLines)
{
    Scene s;
    ScenePointCloud c = sample_scene::cloud();
    c.points.resize(ObjWriter::points_per_line + 1);
    s.top.add(c);
    const std::string obj = written(ObjWriter::write, s, 1.0);
    const std::vector<std::string> p = lines_starting(obj, "p ");
    ASSERT_EQ(p.size(), 2u);
    EXPECT_EQ(p[1], "p " + std::to_string(ObjWriter::points_per_line + 1));
}

TEST(ObjWriter, Token_ReplacesSpacesAndControlBytesAndNamesTheUnnamed)
{
    EXPECT_EQ(ObjWriter::token("PCS models(B)\r\tx"), "PCS_models(B)__x");
    EXPECT_EQ(ObjWriter::token(""), "unnamed");
    EXPECT_EQ(ObjWriter::token("caf\xE9"), "caf\xE9");
}

TEST(ObjWriter, Write_LeavesOutAMeshWithABadIndexButKeepsTheCount)
{
    Scene s;
    SceneMesh bad = sample_scene::mesh();
    bad.triangles.push_back({0, 1, 9});
    s.top.add(bad);
    s.top.add(sample_scene::mesh());
    const std::string obj = written(ObjWriter::write, s, 1.0);
    EXPECT_EQ(lines_starting(obj, "v ").size(), 4u);
    EXPECT_EQ(lines_starting(obj, "f "), (std::vector<std::string>{"f 1 2 3", "f 2 4 3"}));
}

TEST(PlyWriter, Write_HeaderCountsVerticesFacesAndEdgesAndNamesItems)
{
    const std::string ply = written(PlyWriter::write, sample_scene::scene(), 1.0);
    EXPECT_EQ(ply.rfind("ply\nformat binary_little_endian 1.0\n", 0), 0u);
    EXPECT_NE(ply.find("element vertex 43\n"), std::string::npos);
    EXPECT_NE(ply.find("element face 2\n"), std::string::npos);
    // 32 segments of the spline, 2 of the polyline.
    EXPECT_NE(ply.find("element edge 34\n"), std::string::npos);
    EXPECT_NE(ply.find("comment object VelmScan(A)_PCIM_2 in Data_Base/VelmScan(A): vertices 4 count 3,"),
              std::string::npos);
    EXPECT_NE(ply.find("property uchar red\nproperty uchar green\nproperty uchar blue\n"), std::string::npos);
}

TEST(PlyWriter, Write_BodyHoldsPlacedVerticesColoursAndOffsetIndices)
{
    const std::string ply = written(PlyWriter::write, sample_scene::scene(), 1.0);
    const std::size_t body = ply.find("end_header\n") + 11;
    const std::size_t vertex = 3 * 8 + 3;
    // Vertex 1: the mesh's (10, 0, 1) moved by (100, 200, 0), green.
    EXPECT_EQ(read_at<double>(ply, body + vertex + 0), 110.0);
    EXPECT_EQ(read_at<double>(ply, body + vertex + 8), 200.0);
    EXPECT_EQ(read_at<double>(ply, body + vertex + 16), 1.0);
    EXPECT_EQ(read_at<std::uint8_t>(ply, body + vertex + 24), 0);
    EXPECT_EQ(read_at<std::uint8_t>(ply, body + vertex + 25), 255);
    // Vertex 6: the cloud's third point keeps its own grey.
    EXPECT_EQ(read_at<std::uint8_t>(ply, body + 6 * vertex + 24), 240);
    const std::size_t faces = body + 43 * vertex;
    EXPECT_EQ(read_at<std::uint8_t>(ply, faces), 3);
    EXPECT_EQ(read_at<std::int32_t>(ply, faces + 1 + 13 + 4), 3);
    // The first edge joins the spline's first two samples, vertices 7 and 8.
    const std::size_t edges = faces + 2 * 13;
    EXPECT_EQ(read_at<std::int32_t>(ply, edges), 7);
    EXPECT_EQ(read_at<std::int32_t>(ply, edges + 4), 8);
    EXPECT_EQ(ply.size(), edges + 34 * 8);
}

TEST(StlWriter, Write_HoldsOnlyTheMeshesTrianglesPlacedAndScaled)
{
    const std::string stl = written(StlWriter::write, sample_scene::scene(), 0.001);
    ASSERT_EQ(stl.size(), StlWriter::header_size + 4 + 2 * 50);
    EXPECT_EQ(stl.rfind("solid", 0), std::string::npos);
    EXPECT_EQ(stl.rfind("velmora convert: sample", 0), 0u);
    EXPECT_EQ(read_at<std::uint32_t>(stl, 80), 2u);
    // Triangle 0: normal +z, first vertex (0, 0, 1) at (0.1, 0.2, 0.001).
    EXPECT_EQ(read_at<float>(stl, 84 + 8), 1.0f);
    EXPECT_EQ(read_at<float>(stl, 84 + 12), static_cast<float>(0.1));
    EXPECT_EQ(read_at<float>(stl, 84 + 16), static_cast<float>(0.2));
    EXPECT_EQ(read_at<float>(stl, 84 + 20), static_cast<float>(0.001));
    EXPECT_EQ(read_at<std::uint16_t>(stl, 84 + 48), 0u);
}

TEST(StlWriter, Normal_IsZeroForATriangleWithoutArea)
{
    EXPECT_EQ(StlWriter::normal({0, 0, 0}, {1, 1, 1}, {2, 2, 2}), (ScenePoint{0, 0, 0}));
    EXPECT_EQ(StlWriter::normal({0, 0, 0}, {0, 2, 0}, {2, 0, 0}), (ScenePoint{0, 0, -1}));
}

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
