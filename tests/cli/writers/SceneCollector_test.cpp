// SceneCollector: the scene a host builds from the walk of a translator tree,
// here a tree made by hand from the library's group translators over object
// records, walked with process() exactly as a host does.
#include "cli/writers/SceneCollector.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>

#include "archive/vmiObjAttr.h"
#include "archive/vmiObjCloud.h"
#include "archive/vmiObjGrid.h"
#include "archive/vmiObjPoly.h"
#include "archive/vmiObjSpline.h"
#include "archive/vmiObject.h"
#include "curves/m03DPoint.h"
#include "curves/m03DVector.h"
#include "host/qorabsContext.h"
#include "translate/vmiGroupTranslator.h"

namespace {

std::unique_ptr<vmiObject> grid_object(const char* name, double z, int colour)
{
    auto* pts = new m03DPoint[4]{{0, 0, z}, {1, 0, z}, {0, 1, z}, {1, 1, z}};
    auto o = std::make_unique<vmiObject>(new vmiObjGrid(utString(name), pts, 2, 2, 1.0, 1.0));
    o->level(10);
    o->layer_name(utString("SCAN"));
    o->attributes()->colour(colour);
    return o;
}

std::unique_ptr<vmiObject> poly_object(const char* name)
{
    auto* v = new m03DVector(3);
    for (int k = 0; k < 3; k++) v->set_point(k, m03DPoint(k, 2.0 * k, 0));
    auto o = std::make_unique<vmiObject>(new vmiObjPoly(utString(name), v));
    o->level(20);
    o->layer_name(utString("ORTHOTICS_DATA"));
    o->attributes()->colour(6);
    return o;
}

std::unique_ptr<vmiObject> spline_object(const char* name)
{
    auto* v = new m03DVector(4);
    for (int k = 0; k < 4; k++) v->set_point(k, m03DPoint(10.0 * k, 3.0 * (k % 2), 0));
    return std::make_unique<vmiObject>(new vmiObjSpline(utString(name), v));
}

std::unique_ptr<vmiObject> cloud_object(const char* name)
{
    auto* p = new m03DPoint[2]{{1, 2, 3}, {4, 5, 6}};
    auto* c = new int[2]{0x0000FF, 0x102030};
    return std::make_unique<vmiObject>(new vmiObjCloud(utString(name), p, c, 2));
}

giXform3 moved(double x, double y, double z)
{
    giXform3 m;
    m.premultiply_translation(giVector3(x, y, z));
    return m;
}

// Data Base (moved by (5, 0, 0))
//   VelmScan(A) (moved by (0, 7, 0)): a grid with colour 3, a cloud
//   PCS models(B): a polyline, a spline, a grid with every height missing
struct Tree {
    qorabsContext context;
    std::unique_ptr<vmiObject> scan = grid_object("SCAN_(LEFT)_1", 1.0, 3);
    std::unique_ptr<vmiObject> image = cloud_object("PCIM_2");
    std::unique_ptr<vmiObject> poly = poly_object("LIMIT~1");
    std::unique_ptr<vmiObject> spline = spline_object("sole~4");
    std::unique_ptr<vmiObject> empty = grid_object("EMPTY", -10000.0, 0);
    std::shared_ptr<vmiGroupTranslator> root;

    Tree()
    {
        root = vmiGroupTranslator::make(utString("Data Base"), moved(5, 0, 0), context);
        auto a = vmiGroupTranslator::make(utString("VelmScan(A)"), moved(0, 7, 0), context);
        auto b = vmiGroupTranslator::make(utString("PCS models(B)"), giXform3(), context);
        a->add_object(scan.get());
        a->add_object(image.get());
        b->add_object(poly.get());
        b->add_object(spline.get());
        b->add_object(empty.get());
        root->add_translator(a);
        root->add_translator(b);
    }
};

} // namespace

TEST(SceneCollector, Walk_BuildsTheGroupTreeWithNamesAndPlacements)
{
    Tree t;
    SceneCollector c("demo");
    t.root->process(c, nullptr);
    const Scene& s = c.scene();
    EXPECT_EQ(s.top.name, "demo");
    ASSERT_EQ(s.top.groups.size(), 1u);
    const SceneGroup& base = s.top.groups[0];
    EXPECT_EQ(base.name, "Data Base");
    EXPECT_EQ(base.mangled, "Data Base");
    EXPECT_EQ(base.placement[3], 5.0);
    ASSERT_EQ(base.groups.size(), 2u);
    EXPECT_EQ(base.groups[0].name, "VelmScan(A)");
    EXPECT_EQ(base.groups[0].mangled, "Data Base_VelmScan(A)");
    EXPECT_EQ(base.groups[0].placement[7], 7.0);
    EXPECT_EQ(base.groups[1].name, "PCS models(B)");
    EXPECT_EQ(base.groups[1].placement, scene_identity());
}

TEST(SceneCollector, Walk_TriangleBlockBecomesAMeshWithItsAttributes)
{
    Tree t;
    SceneCollector c("demo");
    t.root->process(c, nullptr);
    const SceneGroup& a = c.scene().top.groups[0].groups[0];
    ASSERT_EQ(a.meshes.size(), 1u);
    const SceneMesh& m = a.meshes[0];
    EXPECT_EQ(m.info.name, "SCAN_(LEFT)_1");
    EXPECT_EQ(m.info.mangled, "VelmScan(A)_SCAN_(LEFT)_1");
    EXPECT_EQ(m.info.layer, "SCAN");
    EXPECT_EQ(m.info.level, 10);
    EXPECT_EQ(m.info.colour, 3);
    EXPECT_EQ(m.vertices, (std::vector<ScenePoint>{{0, 0, 1}, {1, 0, 1}, {0, 1, 1}, {1, 1, 1}}));
    EXPECT_EQ(m.triangles, (std::vector<std::array<std::uint32_t, 3>>{{0, 1, 2}, {1, 3, 2}}));
}

TEST(SceneCollector, Walk_PointCloudKeepsItsColoursAndHasNoColourIndex)
{
    Tree t;
    SceneCollector c("demo");
    t.root->process(c, nullptr);
    const SceneGroup& a = c.scene().top.groups[0].groups[0];
    ASSERT_EQ(a.clouds.size(), 1u);
    const ScenePointCloud& p = a.clouds[0];
    EXPECT_EQ(p.info.mangled, "VelmScan(A)_PCIM_2");
    EXPECT_EQ(p.info.colour, SceneItemInfo::no_colour);
    EXPECT_EQ(p.points, (std::vector<ScenePoint>{{1, 2, 3}, {4, 5, 6}}));
    EXPECT_EQ(p.colours, (std::vector<std::array<std::uint8_t, 3>>{{0, 0, 255}, {0x10, 0x20, 0x30}}));
    ASSERT_EQ(a.members.size(), 2u);
    EXPECT_EQ(a.members[0].kind, SceneMember::mesh);
    EXPECT_EQ(a.members[1].kind, SceneMember::cloud);
}

TEST(SceneCollector, Walk_CurvesKeepTheirNurbsForm)
{
    Tree t;
    SceneCollector c("demo");
    t.root->process(c, nullptr);
    const SceneGroup& b = c.scene().top.groups[0].groups[1];
    ASSERT_EQ(b.curves.size(), 2u);
    const SceneCurve& poly = b.curves[0];
    EXPECT_EQ(poly.info.mangled, "PCS models(B)_LIMIT~1");
    EXPECT_EQ(poly.info.colour, 6);
    EXPECT_EQ(poly.info.level, 20);
    EXPECT_EQ(poly.order, 2);
    EXPECT_EQ(poly.knots, (std::vector<double>{0, 0, 0.5, 1, 1}));
    EXPECT_EQ(poly.weights, (std::vector<double>{1, 1, 1}));
    EXPECT_EQ(poly.sample(), (std::vector<ScenePoint>{{0, 0, 0}, {1, 2, 0}, {2, 4, 0}}));
    const SceneCurve& spline = b.curves[1];
    EXPECT_EQ(spline.info.name, "sole~4");
    EXPECT_TRUE(spline.is_valid());
    EXPECT_EQ(spline.knots.size(), spline.points.size() + static_cast<std::size_t>(spline.order));
}

TEST(SceneCollector, Walk_FailedConversionIsLeftOutAndCounted)
{
    Tree t;
    SceneCollector c("demo");
    t.root->process(c, nullptr);
    const SceneGroup& b = c.scene().top.groups[0].groups[1];
    EXPECT_TRUE(b.meshes.empty());
    EXPECT_EQ(b.members.size(), 2u);
    EXPECT_EQ(c.skipped_items(), 1u);
    EXPECT_EQ(c.scene().num_items(), 4u);
}

TEST(SceneCollector, Triblock_TriangleNamingAMissingVertexIsDropped)
{
    giTriBlock block;
    auto* v = new giNodeXYZ;
    auto* tri = new giTriArr;
    v->add(giPoint3(0, 0, 0));
    v->add(giPoint3(1, 0, 0));
    v->add(giPoint3(0, 1, 0));
    tri->add(giTriangle(0, 1, 2));
    tri->add(giTriangle(0, 1, 3));
    tri->add(giTriangle(-1, 1, 2));
    block.features().insert(std::unique_ptr<giFeature>(v));
    block.features().insert(std::unique_ptr<giFeature>(tri));
    SceneCollector c("x");
    c.triblock(qorabsAttributeSet(), utString("t"), qorabsTranslationStatus(), block);
    ASSERT_EQ(c.scene().top.meshes.size(), 1u);
    EXPECT_EQ(c.scene().top.meshes[0].triangles.size(), 1u);
    EXPECT_EQ(c.dropped_triangles(), 2u);
}

TEST(SceneCollector, Pointcloud_EmptyCloudIsLeftOutAndShortColoursAreWhite)
{
    SceneCollector c("x");
    c.pointcloud(qorabsAttributeSet(), utString("none"), annPointCloudData());
    EXPECT_EQ(c.skipped_items(), 1u);
    annPointCloudData d;
    auto* p = new giNodeXYZ;
    p->add(giPoint3(1, 1, 1));
    p->add(giPoint3(2, 2, 2));
    auto* k = new annColArr;
    k->add(giColour(1, 2, 3, 0));
    d.features().insert(std::unique_ptr<giFeature>(p));
    d.features().insert(std::unique_ptr<giFeature>(k));
    c.pointcloud(qorabsAttributeSet(), utString("cloud"), d);
    ASSERT_EQ(c.scene().top.clouds.size(), 1u);
    EXPECT_EQ(c.scene().top.clouds[0].colours,
              (std::vector<std::array<std::uint8_t, 3>>{{1, 2, 3}, {255, 255, 255}}));
}

TEST(SceneCollector, EndGroup_UnmatchedEndKeepsTheTopOpen)
{
    SceneCollector c("x");
    c.end_group();
    c.pointcloud(qorabsAttributeSet(), utString("none"), annPointCloudData());
    c.curve(qorabsAttributeSet(), utString("c"), qorabsTranslationStatus(qorabsTranslationStatus::failure),
            rnxCurvePtr3());
    c.curve(qorabsAttributeSet(), utString("c"), qorabsTranslationStatus(), rnxCurvePtr3());
    EXPECT_EQ(c.skipped_items(), 3u);
    EXPECT_TRUE(c.scene().top.members.empty());
}

TEST(SceneCollector, Triblock_VertexWithoutFinitePositionDropsItsTrianglesAndStandsAtTheOrigin)
{
    giTriBlock block;
    auto* v = new giNodeXYZ;
    auto* tri = new giTriArr;
    v->add(giPoint3(0, 0, 0));
    v->add(giPoint3(1, 0, 0));
    v->add(giPoint3(0, 1, 0));
    v->add(giPoint3(1, 1, std::numeric_limits<double>::infinity()));
    tri->add(giTriangle(0, 1, 2));
    tri->add(giTriangle(1, 3, 2));
    block.features().insert(std::unique_ptr<giFeature>(v));
    block.features().insert(std::unique_ptr<giFeature>(tri));
    SceneCollector c("x");
    c.triblock(qorabsAttributeSet(), utString("t"), qorabsTranslationStatus(), block);
    ASSERT_EQ(c.scene().top.meshes.size(), 1u);
    const SceneMesh& m = c.scene().top.meshes[0];
    EXPECT_EQ(m.triangles, (std::vector<std::array<std::uint32_t, 3>>{{0, 1, 2}}));
    EXPECT_EQ(m.vertices[3], (ScenePoint{0, 0, 0}));
    EXPECT_EQ(c.dropped_triangles(), 1u);
}

TEST(SceneCollector, Pointcloud_PointWithoutFinitePositionIsDroppedWithItsColour)
{
    annPointCloudData d;
    auto* p = new giNodeXYZ;
    p->add(giPoint3(std::nan(""), 0, 0));
    p->add(giPoint3(2, 2, 2));
    auto* k = new annColArr;
    k->add(giColour(1, 2, 3, 0));
    k->add(giColour(4, 5, 6, 0));
    d.features().insert(std::unique_ptr<giFeature>(p));
    d.features().insert(std::unique_ptr<giFeature>(k));
    SceneCollector c("x");
    c.pointcloud(qorabsAttributeSet(), utString("cloud"), d);
    ASSERT_EQ(c.scene().top.clouds.size(), 1u);
    EXPECT_EQ(c.scene().top.clouds[0].points, (std::vector<ScenePoint>{{2, 2, 2}}));
    EXPECT_EQ(c.scene().top.clouds[0].colours, (std::vector<std::array<std::uint8_t, 3>>{{4, 5, 6}}));
    EXPECT_EQ(c.dropped_points(), 1u);
}

TEST(SceneCollector, Pointcloud_CloudOfOnlyNonFinitePointsIsLeftOut)
{
    annPointCloudData d;
    auto* p = new giNodeXYZ;
    p->add(giPoint3(0, -std::numeric_limits<double>::infinity(), 0));
    d.features().insert(std::unique_ptr<giFeature>(p));
    SceneCollector c("x");
    c.pointcloud(qorabsAttributeSet(), utString("cloud"), d);
    EXPECT_TRUE(c.scene().top.clouds.empty());
    EXPECT_EQ(c.skipped_items(), 1u);
}
