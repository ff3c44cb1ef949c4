// The 3MF package read back with Debian's lib3mf: objects with names, unit,
// vertices placed in millimetres, base-material colours, and the triangles a
// 3MF mesh may hold.
#include "cli/writers/ThreeMfWriter.h"

#include <Model/COM/NMR_DLLInterfaces.h>
#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "cli/writers/ColourPalette.h"
#include "tests/cli/writers/SampleScene.h"

namespace {

using namespace NMR;

struct Release {
    void operator()(PLib3MFBase* p) const { lib3mf_release(p); }
};
using Handle = std::unique_ptr<PLib3MFBase, Release>;

struct ReadObject {
    std::string name;
    std::vector<MODELMESHVERTEX> vertices;
    std::vector<MODELMESHTRIANGLE> triangles;
    DWORD material_group = 0, material_index = 0;
};

struct ReadPackage {
    bool ok = false;
    DWORD unit = 0;
    std::vector<ReadObject> objects;
    // The display colour of each base material of the first group.
    std::vector<std::array<BYTE, 4>> colours;
    std::vector<std::string> material_names;
};

ReadPackage read_back(const std::string& bytes)
{
    ReadPackage p;
    PLib3MFModel* m = nullptr;
    if (lib3mf_createmodel(&m) != LIB3MF_OK) return p;
    Handle model(m);
    PLib3MFModelReader* r = nullptr;
    if (lib3mf_model_queryreader(m, "3mf", &r) != LIB3MF_OK) return p;
    Handle reader(r);
    std::vector<BYTE> buf(bytes.begin(), bytes.end());
    if (lib3mf_reader_readfrombuffer(r, buf.data(), buf.size()) != LIB3MF_OK) return p;
    lib3mf_model_getunit(m, &p.unit);
    PLib3MFModelResourceIterator* it = nullptr;
    if (lib3mf_model_getmeshobjects(m, &it) != LIB3MF_OK) return p;
    Handle iterator(it);
    BOOL more = 0;
    while (lib3mf_resourceiterator_movenext(it, &more) == LIB3MF_OK && more) {
        PLib3MFModelResource* res = nullptr;
        lib3mf_resourceiterator_getcurrent(it, &res);
        Handle object(res);
        ReadObject o;
        char name[256] = {};
        ULONG needed = 0;
        DWORD got = 0;
        lib3mf_object_getnameutf8(res, name, sizeof name, &needed);
        o.name = name;
        DWORD nv = 0, nt = 0;
        lib3mf_meshobject_getvertexcount(res, &nv);
        lib3mf_meshobject_gettrianglecount(res, &nt);
        o.vertices.resize(nv);
        o.triangles.resize(nt);
        lib3mf_meshobject_getvertices(res, o.vertices.data(), nv, &got);
        lib3mf_meshobject_gettriangleindices(res, o.triangles.data(), nt, &got);
        PLib3MFDefaultPropertyHandler* h = nullptr;
        if (lib3mf_object_createdefaultpropertyhandler(res, &h) == LIB3MF_OK) {
            Handle handler(h);
            lib3mf_defaultpropertyhandler_getbasematerial(h, &o.material_group, &o.material_index);
        }
        p.objects.push_back(std::move(o));
    }
    PLib3MFModelResourceIterator* mi = nullptr;
    if (lib3mf_model_getbasematerials(m, &mi) == LIB3MF_OK) {
        Handle materials(mi);
        if (lib3mf_resourceiterator_movenext(mi, &more) == LIB3MF_OK && more) {
            PLib3MFModelResource* g = nullptr;
            lib3mf_resourceiterator_getcurrent(mi, &g);
            Handle group(g);
            DWORD count = 0;
            lib3mf_basematerial_getcount(g, &count);
            for (DWORD k = 0; k < count; ++k) {
                std::array<BYTE, 4> c{};
                lib3mf_basematerial_getdisplaycolor(g, k, &c[0], &c[1], &c[2], &c[3]);
                p.colours.push_back(c);
                char name[64] = {};
                ULONG needed = 0;
                lib3mf_basematerial_getnameutf8(g, k, name, sizeof name, &needed);
                p.material_names.push_back(name);
            }
        }
    }
    p.ok = true;
    return p;
}

std::string written(const Scene& s, double scale = 1.0)
{
    return sample_scene::written(ThreeMfWriter::write, s, scale);
}

} // namespace

TEST(ThreeMfWriter, SampleScene_ReadsBackAsOneNamedMeshInMillimetres)
{
    const std::string bytes = written(sample_scene::scene());
    ASSERT_FALSE(bytes.empty());
    const ReadPackage p = read_back(bytes);
    ASSERT_TRUE(p.ok);
    EXPECT_EQ(p.unit, static_cast<DWORD>(MODELUNIT_MILLIMETER));
    // The curves and the cloud have no place in the package.
    ASSERT_EQ(p.objects.size(), 1u);
    EXPECT_EQ(p.objects[0].name, "SCAN_(LEFT)_1");
    ASSERT_EQ(p.objects[0].vertices.size(), 4u);
    ASSERT_EQ(p.objects[0].triangles.size(), 2u);
    // (10, 10, 2) moved by (100, 0, 0) and (0, 200, 0).
    EXPECT_FLOAT_EQ(p.objects[0].vertices[3].m_fPosition[0], 110.0f);
    EXPECT_FLOAT_EQ(p.objects[0].vertices[3].m_fPosition[1], 210.0f);
    EXPECT_FLOAT_EQ(p.objects[0].vertices[3].m_fPosition[2], 2.0f);
    EXPECT_EQ(p.objects[0].triangles[1].m_nIndices[0], 1u);
    EXPECT_EQ(p.objects[0].triangles[1].m_nIndices[1], 3u);
    EXPECT_EQ(p.objects[0].triangles[1].m_nIndices[2], 2u);
}

TEST(ThreeMfWriter, Colour_IsTheBaseMaterialOfThePaletteEntryOpaque)
{
    const ReadPackage p = read_back(written(sample_scene::scene()));
    ASSERT_TRUE(p.ok);
    ASSERT_EQ(p.colours.size(), 1u);
    const ColourPalette::Rgb green = ColourPalette::colour(3);
    EXPECT_EQ(p.colours[0], (std::array<BYTE, 4>{green[0], green[1], green[2], 255}));
    EXPECT_EQ(p.material_names[0], "colour 3");
    ASSERT_EQ(p.objects.size(), 1u);
    EXPECT_EQ(p.objects[0].material_index, 0u);
}

TEST(ThreeMfWriter, MeshesOfDifferentColours_EachTakeTheirMaterial)
{
    Scene s;
    s.top.name = "two";
    SceneMesh a = sample_scene::mesh();
    SceneMesh b = sample_scene::mesh();
    b.info.name = "FINISH_MODEL~1";
    b.info.colour = 42;  // no palette entry: the fallback
    s.top.add(std::move(a));
    s.top.add(std::move(b));
    const ReadPackage p = read_back(written(s));
    ASSERT_EQ(p.objects.size(), 2u);
    EXPECT_EQ(p.objects[1].name, "FINISH_MODEL~1");
    ASSERT_EQ(p.material_names, (std::vector<std::string>{"colour 3", "no colour"}));
    EXPECT_EQ(p.objects[0].material_index, 0u);
    EXPECT_EQ(p.objects[1].material_index, 1u);
    EXPECT_EQ(p.objects[0].material_group, p.objects[1].material_group);
}

TEST(ThreeMfWriter, TriangleRepeatingAVertex_IsLeftOut)
{
    Scene s;
    SceneMesh m = sample_scene::mesh();
    m.triangles.push_back({2, 2, 3});
    s.top.add(m);
    EXPECT_EQ(ThreeMfWriter::printable_triangles(m), 2u);
    const ReadPackage p = read_back(written(s));
    ASSERT_EQ(p.objects.size(), 1u);
    EXPECT_EQ(p.objects[0].triangles.size(), 2u);
}

TEST(ThreeMfWriter, MeshOfOnlyDegenerateTriangles_IsNotAnObject)
{
    Scene s;
    SceneMesh m = sample_scene::mesh();
    m.triangles = {{0, 0, 1}, {3, 2, 3}};
    s.top.add(m);
    EXPECT_EQ(ThreeMfWriter::printable_triangles(m), 0u);
    const ReadPackage p = read_back(written(s));
    ASSERT_TRUE(p.ok);
    EXPECT_TRUE(p.objects.empty());
}

TEST(ThreeMfWriter, Scale_MultipliesCoordinatesAndTheUnitStays)
{
    const ReadPackage p = read_back(written(sample_scene::scene(), 0.5));
    ASSERT_EQ(p.objects.size(), 1u);
    EXPECT_EQ(p.unit, static_cast<DWORD>(MODELUNIT_MILLIMETER));
    EXPECT_FLOAT_EQ(p.objects[0].vertices[3].m_fPosition[0], 55.0f);
}

TEST(ThreeMfWriter, NameWithMarkupAndBytesOutsideUtf8_ReadsBackEscaped)
{
    Scene s;
    SceneMesh m = sample_scene::mesh();
    m.info.name = "a<b>&\"c\" \xE4";
    s.top.add(m);
    const ReadPackage p = read_back(written(s));
    ASSERT_EQ(p.objects.size(), 1u);
    EXPECT_EQ(p.objects[0].name, "a<b>&\"c\" \xC3\xA4");
}

TEST(ThreeMfWriter, SameScene_GivesTheSameBytes)
{
    EXPECT_EQ(written(sample_scene::scene()), written(sample_scene::scene()));
}

TEST(ThreeMfWriter, Model_HoldsTheCorePartsNamespaceAndUnit)
{
    const std::string model = ThreeMfWriter::model(sample_scene::scene(), 1.0);
    EXPECT_NE(model.find("xmlns=\"http://schemas.microsoft.com/3dmanufacturing/core/2015/02\""), std::string::npos);
    EXPECT_NE(model.find("unit=\"millimeter\""), std::string::npos);
    // The material group first and the objects after it without a gap.
    EXPECT_LT(model.find("<basematerials id=\"1\">"), model.find("<object id=\"2\""));
    EXPECT_NE(model.find("<item objectid=\"2\"/>"), std::string::npos);
}
