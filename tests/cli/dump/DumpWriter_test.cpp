// The dump of hand-built translator trees: the exact JSON of a small tree
// walked as a host walks it, the document around it, the rules for colours,
// failures, non-finite numbers and names that are not UTF-8, and the summary
// form: every geometry array as {count, min, max, sha256}, the digest taken of
// the bytes the text names (float64 and int32 little-endian, one byte per
// colour component), built here independently.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "archive/vmiObjAttr.h"
#include "archive/vmiObjCloud.h"
#include "archive/vmiObjGrid.h"
#include "archive/vmiObjPoly.h"
#include "archive/vmiObjSpline.h"
#include "archive/vmiObject.h"
#include "cli/Sha256.h"
#include "cli/dump/DumpSink.h"
#include "cli/dump/DumpWriter.h"
#include "cli/JsonWriter.h"
#include "curves/m03DPoint.h"
#include "curves/m03DVector.h"
#include "host/qorabsContext.h"
#include "translate/vmiGroupTranslator.h"

namespace {

using object_ptr = std::unique_ptr<vmiObject>;

object_ptr grid(const char* name, int n)
{
    auto* pts = new m03DPoint[4]{{0, 0, 1}, {1, 0, 1}, {0, 1, 1}, {1, 1, 1}};
    return std::make_unique<vmiObject>(new vmiObjGrid(utString(name), pts, n, n, 1.0, 1.0));
}

object_ptr polyline(const char* name, const std::vector<m03DPoint>& points)
{
    auto* v = new m03DVector(static_cast<int>(points.size()));
    for (std::size_t k = 0; k < points.size(); ++k) v->set_point(static_cast<int>(k), points[k]);
    return std::make_unique<vmiObject>(new vmiObjPoly(utString(name), v));
}

object_ptr spline(const char* name)
{
    auto* v = new m03DVector(2);
    v->set_point(0, m03DPoint(0, 0, 0));
    v->set_point(1, m03DPoint(4, 0, 0));
    return std::make_unique<vmiObject>(new vmiObjSpline(utString(name), v));
}

object_ptr cloud(const char* name)
{
    auto* p = new m03DPoint[2]{{1, 2, 3}, {-4.5, 0.25, 1e-300}};
    // The second colour has bits above its 24: each component keeps its low byte.
    auto* c = new int[2]{0x0A0B0C, 0x1FF0080};
    return std::make_unique<vmiObject>(new vmiObjCloud(utString(name), p, c, 2));
}

void set(vmiObject& o, int level, const char* layer, int colour)
{
    o.level(level);
    o.layer_name(utString(layer));
    o.attributes()->colour(colour);
}

// The records behind a small tree: "Data Base" (moved by (12.5, -3, 0))
// holding "Leaf", which holds a coloured triangle block, a grid too small to
// triangulate, a polyline (with weights), a one-point polyline (a failed
// curve), a spline (no weights) and a point cloud.
struct SmallTree {
    qorabsContext context;
    std::vector<object_ptr> objects;
    std::shared_ptr<vmiGroupTranslator> root;

    SmallTree()
    {
        objects.push_back(grid("scan", 2));
        set(*objects.back(), 10, "L", 3);
        objects.push_back(grid("tiny", 1));
        objects.push_back(polyline("line", {m03DPoint(0, 0, 0), m03DPoint(1, 2, 3)}));
        set(*objects.back(), 20, "outline", 6);
        objects.push_back(polyline("dot", {m03DPoint(5, 5, 5)}));
        objects.push_back(spline("outline"));
        objects.push_back(cloud("image"));
        // A cloud's record colour is never handed over.
        set(*objects.back(), 0, "", 5);
        giXform3 moved;
        moved.premultiply_translation(giVector3(12.5, -3.0, 0.0));
        root = vmiGroupTranslator::make(utString("Data Base"), moved, context);
        auto leaf = vmiGroupTranslator::make(utString("Leaf"), giXform3(), context);
        for (object_ptr& o : objects) leaf->add_object(o.get());
        root->add_translator(leaf);
    }
};

std::string item_json(const DumpItem& item, bool pretty, bool summary = false)
{
    std::ostringstream out;
    JsonWriter w(out, pretty);
    DumpWriter(summary, !pretty).write_item(w, item);
    w.finish();
    return out.str();
}

// The walk of one translator, as a host runs it.
std::unique_ptr<DumpSink> walk(qorabsTranslator& t)
{
    auto sink = std::make_unique<DumpSink>();
    t.process(*sink, nullptr);
    return sink;
}

const double not_a_number = std::numeric_limits<double>::quiet_NaN();
const double infinity = std::numeric_limits<double>::infinity();

static_assert(std::endian::native == std::endian::little, "the expected bytes are copied as the machine holds them");

std::string f64_bytes(const std::vector<double>& v)
{
    std::string b(v.size() * 8, '\0');
    if (!v.empty()) std::memcpy(b.data(), v.data(), b.size());
    return b;
}

std::string i32_bytes(const std::vector<std::int32_t>& v)
{
    std::string b(v.size() * 4, '\0');
    if (!v.empty()) std::memcpy(b.data(), v.data(), b.size());
    return b;
}

std::string summary_json(const DumpItem& item)
{
    std::ostringstream out;
    JsonWriter w(out, false);
    DumpWriter(true, true).write_item(w, item);
    w.finish();
    return out.str();
}

std::string digest(int count, const std::string& min, const std::string& max, const std::string& bytes)
{
    return R"({"count":)" + std::to_string(count) + R"(,"min":)" + min + R"(,"max":)" + max +
           R"(,"sha256":")" + Sha256::hex(bytes) + "\"}";
}

} // namespace

TEST(DumpWriter, SmallTree_ExactCompactText)
{
    SmallTree tree;
    const std::unique_ptr<DumpSink> sink = walk(*tree.root);
    ASSERT_EQ(sink->top().size(), 1u);
    // The spline's inner control points are the spline's own arithmetic; the
    // dump writes them as they read back.
    const DumpItem& outline = *sink->top()[0]->children[0]->children[4];
    ASSERT_TRUE(outline.nurb);
    const std::string p1 = json_number(outline.nurb->points()[1].x());
    const std::string p2 = json_number(outline.nurb->points()[2].x());
    const std::string expected =
        R"({"type":"group","name":"Data Base","mangled":"Data Base",)"
        R"("xform":[1.0,0.0,0.0,12.5,0.0,1.0,0.0,-3.0,0.0,0.0,1.0,0.0],"children":[)"
        R"({"type":"group","name":"Leaf","mangled":"Data Base_Leaf",)"
        R"("xform":[1.0,0.0,0.0,0.0,0.0,1.0,0.0,0.0,0.0,0.0,1.0,0.0],"children":[)"
        R"({"type":"triblock","name":"scan","mangled":"Leaf_scan","layer":{"level":10,"name":"L"},)"
        R"("colour":3,"status":0,"vertices":[[0.0,0.0,1.0],[1.0,0.0,1.0],[0.0,1.0,1.0],[1.0,1.0,1.0]],)"
        R"("triangles":[[0,1,2],[1,3,2]]},)"
        R"({"type":"triblock","name":"tiny","mangled":"Leaf_tiny","layer":{"level":0,"name":""},)"
        R"("status":1,"vertices":[],"triangles":[]},)"
        R"({"type":"curve","name":"line","mangled":"Leaf_line","layer":{"level":20,"name":"outline"},)"
        R"("colour":6,"status":0,"order":2,"points":[[0.0,0.0,0.0],[1.0,2.0,3.0]],"weights":[1.0,1.0],)"
        R"("knots":[0.0,0.0,1.0,1.0]},)"
        R"({"type":"curve","name":"dot","mangled":"Leaf_dot","layer":{"level":0,"name":""},)"
        R"("status":1,"order":0,"points":[],"weights":null,"knots":[]},)"
        R"({"type":"curve","name":"outline","mangled":"Leaf_outline","layer":{"level":0,"name":""},)"
        R"("status":0,"order":4,"points":[[0.0,0.0,0.0],[)" + p1 + R"(,0.0,0.0],[)" + p2 +
        R"(,0.0,0.0],[4.0,0.0,0.0]],"weights":null,"knots":[0.0,0.0,0.0,0.0,1.0,1.0,1.0,1.0]},)"
        R"({"type":"pointcloud","name":"image","mangled":"Leaf_image","layer":{"level":0,"name":""},)"
        R"("points":[[1.0,2.0,3.0],[-4.5,0.25,1e-300]],"colours":[[10,11,12],[255,0,128]]}]}]})"
        "\n";
    EXPECT_EQ(item_json(*sink->top()[0], false), expected);
}

TEST(DumpWriter, Triblock_PrettyTextIndentsByTwoSpacesWithTriplesOnOneLine)
{
    SmallTree tree;
    const std::unique_ptr<DumpSink> sink = walk(*tree.root);
    const std::string expected = "{\n"
                                 "  \"type\": \"triblock\",\n"
                                 "  \"name\": \"scan\",\n"
                                 "  \"mangled\": \"Leaf_scan\",\n"
                                 "  \"layer\": {\"level\": 10, \"name\": \"L\"},\n"
                                 "  \"colour\": 3,\n"
                                 "  \"status\": 0,\n"
                                 "  \"vertices\": [\n"
                                 "    [0.0, 0.0, 1.0],\n"
                                 "    [1.0, 0.0, 1.0],\n"
                                 "    [0.0, 1.0, 1.0],\n"
                                 "    [1.0, 1.0, 1.0]\n"
                                 "  ],\n"
                                 "  \"triangles\": [\n"
                                 "    [0, 1, 2],\n"
                                 "    [1, 3, 2]\n"
                                 "  ]\n"
                                 "}\n";
    EXPECT_EQ(item_json(*sink->top()[0]->children[0]->children[0], true), expected);
}

TEST(DumpWriter, Colour_KeyAbsentWhenTheTranslatorSetNone)
{
    object_ptr o = grid("plain", 2);
    qorabsContext context;
    auto g = vmiGroupTranslator::make(utString("G"), giXform3(), context);
    g->add_object(o.get());
    const std::string text = item_json(*walk(*g)->top()[0], false);
    EXPECT_EQ(text.find("\"colour\""), std::string::npos);
    EXPECT_NE(text.find(R"("layer":{"level":0,"name":""},"status":0)"), std::string::npos);
}

TEST(DumpWriter, PointCloud_NeverShowsAColourEvenWhenTheAttributeIsSet)
{
    DumpSink sink;
    qorabsAttributeSet attrs;
    qorabsColour* c = nullptr;
    ASSERT_TRUE(attrs.check_out(COLOUR, c));
    *c = qorabsColour(4);
    sink.pointcloud(attrs, utString("p"), annPointCloudData());
    EXPECT_EQ(item_json(*sink.top()[0], false),
              R"({"type":"pointcloud","name":"","mangled":"p","layer":null,"points":[],"colours":[]})"
              "\n");
}

TEST(DumpWriter, FailedTriblock_ShowsEmptyArraysWhateverTheBlockHeld)
{
    giTriBlock block;
    block.features().ensure<giNodeXYZ>()->add(giPoint3(1, 2, 3));
    block.features().ensure<giTriArr>()->add(giTriangle(0, 0, 0));
    DumpSink sink;
    sink.triblock(qorabsAttributeSet(), utString("t"), qorabsTranslationStatus(1), block);
    EXPECT_EQ(item_json(*sink.top()[0], false),
              R"({"type":"triblock","name":"","mangled":"t","layer":null,"status":1,"vertices":[],"triangles":[]})"
              "\n");
}

TEST(DumpWriter, FailedCurve_OrderZeroNoPointsWeightsNullEvenWhenACurveCame)
{
    auto c = std::make_shared<rnxNurbCurve3>(2, 2);
    c->set_weight(0, 2.0);
    DumpSink sink;
    sink.curve(qorabsAttributeSet(), utString("c"), qorabsTranslationStatus(1), c);
    EXPECT_EQ(item_json(*sink.top()[0], false),
              R"({"type":"curve","name":"","mangled":"c","layer":null,"status":1,"order":0,"points":[],)"
              R"("weights":null,"knots":[]})"
              "\n");
}

TEST(DumpWriter, NonFiniteCoordinates_WrittenAsTheirStrings)
{
    object_ptr o = polyline("odd", {m03DPoint(not_a_number, infinity, -infinity), m03DPoint(0.1, -0.0, 1e21)});
    qorabsContext context;
    auto g = vmiGroupTranslator::make(utString("G"), giXform3(), context);
    g->add_object(o.get());
    const std::string text = item_json(*walk(*g)->top()[0], false);
    EXPECT_NE(text.find(R"("points":[["NaN","Infinity","-Infinity"],[0.1,-0.0,1e+21]])"), std::string::npos)
        << text;
}

TEST(DumpWriter, NamesNotUtf8_EachStrayByteAsItsOwnEscapeAndCarriageReturnKept)
{
    // A Latin-1 group name with a carriage return, and a layer name in UTF-8.
    object_ptr o = grid("scan", 2);
    set(*o, 10, "Fu\xc3\x9f", 0);
    qorabsContext context;
    auto g = vmiGroupTranslator::make(utString("Kn\xf6" "chel\r"), giXform3(), context);
    g->add_object(o.get());
    const std::string text = item_json(*walk(*g)->top()[0], false);
    EXPECT_EQ(text.rfind(R"({"type":"group","name":"Kn\u00f6chel\r","mangled":"Kn\u00f6chel\r",)", 0), 0u)
        << text;
    EXPECT_NE(text.find("\"mangled\":\"Kn\\u00f6chel\\r_scan\""), std::string::npos) << text;
    EXPECT_NE(text.find("\"layer\":{\"level\":10,\"name\":\"Fu\xc3\x9f\"}"), std::string::npos) << text;
}

namespace {

DumpDocument document(const std::vector<std::unique_ptr<DumpItem>>* top, int result)
{
    DumpDocument doc;
    doc.identity.library_name = "velmora2rnx";
    doc.identity.format_name = "Velmora";
    doc.identity.option = "VELMORA";
    doc.identity.file_filter = "Velmora Files (*.vlm)|*.vlm";
    doc.identity.database_number = 145;
    doc.identity.translator_category = "FOOTWEAR";
    doc.identity.file_types = {317};
    doc.options = {{"vmiOptProcessScanData", 0}, {"vmiOptProcessImageData", 1}, {"vmiOptProcessOrthoticData", 1}};
    doc.result = result;
    doc.top = top;
    return doc;
}

} // namespace

TEST(DumpWriter, Document_KeysInOrderWithTheRootLast)
{
    DumpSink sink;
    qorabsAttributeSet attrs;
    qorabsName* name = nullptr;
    ASSERT_TRUE(attrs.check_out(NAME, name));
    *name = qorabsName(utString("Data Base"), 0);
    sink.begin_group(attrs, utString("Data Base"), giXform3());
    sink.end_group();
    std::ostringstream out;
    DumpWriter(false, false).write(out, document(&sink.top(), 1));
    EXPECT_EQ(out.str(), "{\n"
                         "  \"format\": \"velmora-dump\",\n"
                         "  \"version\": 1,\n"
                         "  \"library\": {\n"
                         "    \"library_name\": \"velmora2rnx\",\n"
                         "    \"format_name\": \"Velmora\",\n"
                         "    \"option\": \"VELMORA\",\n"
                         "    \"file_filter\": \"Velmora Files (*.vlm)|*.vlm\",\n"
                         "    \"database_number\": 145,\n"
                         "    \"translator_category\": \"FOOTWEAR\",\n"
                         "    \"file_types\": [317],\n"
                         "    \"extensions\": []\n"
                         "  },\n"
                         "  \"options\": {\n"
                         "    \"vmiOptProcessScanData\": 0,\n"
                         "    \"vmiOptProcessImageData\": 1,\n"
                         "    \"vmiOptProcessOrthoticData\": 1\n"
                         "  },\n"
                         "  \"result\": 1,\n"
                         "  \"translators\": 1,\n"
                         "  \"root\": {\n"
                         "    \"type\": \"group\",\n"
                         "    \"name\": \"Data Base\",\n"
                         "    \"mangled\": \"Data Base\",\n"
                         "    \"xform\": [1.0, 0.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 0.0, 1.0, 0.0],\n"
                         "    \"children\": []\n"
                         "  }\n"
                         "}\n");
}

TEST(DumpWriter, Document_NothingImportedHasResultZeroNoTranslatorsAndNullRoot)
{
    std::ostringstream out;
    DumpWriter(false, true).write(out, document(nullptr, 0));
    const std::string text = out.str();
    EXPECT_NE(text.find(R"("result":0,"translators":0,"root":null})"), std::string::npos) << text;
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1);
}

TEST(DumpWriter, Document_MissingIdentityStringsAndCategoryAreNull)
{
    DumpDocument doc;
    std::ostringstream out;
    DumpWriter(false, true).write(out, doc);
    EXPECT_NE(out.str().find(R"("library":{"library_name":null,"format_name":null,"option":null,)"
                             R"("file_filter":null,"database_number":0,"translator_category":null,)"
                             R"("file_types":[],"extensions":[]})"),
              std::string::npos)
        << out.str();
}

TEST(DumpWriter, SummaryTriblock_VerticesAsFloat64TriplesTrianglesAsInt32)
{
    DumpItem t;
    t.kind = DumpItem::triblock;
    t.points = {giPoint3(1.5, -2, 0), giPoint3(-3, 4, 0.125), giPoint3(0, 0, 9)};
    t.triangles = {giTriangle(0, 1, 2), giTriangle(2, 1, -7)};
    const std::string expected =
        R"({"type":"triblock","name":"","mangled":"","layer":null,"status":0,"vertices":)" +
        digest(3, "[-3.0,-2.0,0.0]", "[1.5,4.0,9.0]", f64_bytes({1.5, -2, 0, -3, 4, 0.125, 0, 0, 9})) +
        R"(,"triangles":)" + digest(2, "[0,1,-7]", "[2,1,2]", i32_bytes({0, 1, 2, 2, 1, -7})) + "}\n";
    EXPECT_EQ(summary_json(t), expected);
}

TEST(DumpWriter, SummaryPointCloud_ColoursOneBytePerComponent)
{
    DumpItem p;
    p.kind = DumpItem::pointcloud;
    p.points = {giPoint3(1, 2, 3)};
    p.colours = {giColour(0x10, 0xFF, 0, 0x55), giColour(0x20, 0x01, 0x80, 0)};
    const std::string colour_bytes("\x10\xFF\x00\x20\x01\x80", 6);
    const std::string expected =
        R"({"type":"pointcloud","name":"","mangled":"","layer":null,"points":)" +
        digest(1, "[1.0,2.0,3.0]", "[1.0,2.0,3.0]", f64_bytes({1, 2, 3})) + R"(,"colours":)" +
        digest(2, "[16,1,0]", "[32,255,128]", colour_bytes) + "}\n";
    EXPECT_EQ(summary_json(p), expected);
}

TEST(DumpWriter, SummaryCurve_KnotsAndWeightsAsSingleNumbers)
{
    auto c = std::make_shared<rnxNurbCurve3>(2, 2);
    c->set_point(0, giPoint3(0, 0, 0));
    c->set_point(1, giPoint3(1, 1, 1));
    const std::vector<double> knots = {0, 0, 1, 1};
    for (int i = 0; i < 4; ++i) c->set_knot(i, knots[static_cast<std::size_t>(i)]);
    c->set_weight(1, 0.5);
    DumpItem item;
    item.kind = DumpItem::curve;
    item.nurb = c;
    const std::string expected =
        R"({"type":"curve","name":"","mangled":"","layer":null,"status":0,"order":2,"points":)" +
        digest(2, "[0.0,0.0,0.0]", "[1.0,1.0,1.0]", f64_bytes({0, 0, 0, 1, 1, 1})) + R"(,"weights":)" +
        digest(2, "0.5", "1.0", f64_bytes({1.0, 0.5})) + R"(,"knots":)" +
        digest(4, "0.0", "1.0", f64_bytes(knots)) + "}\n";
    EXPECT_EQ(summary_json(item), expected);
}

TEST(DumpWriter, SummaryCurve_WeightsStayNullWhenNoneWasSet)
{
    DumpItem item;
    item.kind = DumpItem::curve;
    item.nurb = std::make_shared<rnxNurbCurve3>(4, 4);
    const std::string text = summary_json(item);
    EXPECT_NE(text.find(R"("weights":null,"knots":{"count":8,)"), std::string::npos) << text;
}

TEST(DumpWriter, SummaryFailedCurve_EmptyDigestsWithNullBoundsAndWeightsNull)
{
    DumpItem item;
    item.kind = DumpItem::curve;
    item.status = 1;
    const std::string expected =
        R"({"type":"curve","name":"","mangled":"","layer":null,"status":1,"order":0,"points":)" +
        digest(0, "null", "null", "") + R"(,"weights":null,"knots":)" + digest(0, "null", "null", "") + "}\n";
    EXPECT_EQ(summary_json(item), expected);
}

TEST(DumpWriter, SummaryMinMax_OverFiniteValuesOnlyAComponentWithNoneIsNull)
{
    DumpItem p;
    p.kind = DumpItem::pointcloud;
    p.points = {giPoint3(not_a_number, 1, infinity), giPoint3(not_a_number, -2, 5), giPoint3(-infinity, 0, 6)};
    const std::string bytes =
        f64_bytes({not_a_number, 1, infinity, not_a_number, -2, 5, -infinity, 0, 6});
    const std::string text = summary_json(p);
    EXPECT_NE(text.find(R"("points":)" + digest(3, "[null,-2.0,5.0]", "[null,1.0,6.0]", bytes)), std::string::npos)
        << text;
}

TEST(DumpWriter, SummaryKnots_NoFiniteValueGivesNullBounds)
{
    auto c = std::make_shared<rnxNurbCurve3>(1, 2);
    for (int i = 0; i < 3; ++i) c->set_knot(i, not_a_number);
    DumpItem item;
    item.kind = DumpItem::curve;
    item.nurb = c;
    const std::string text = summary_json(item);
    EXPECT_NE(text.find(R"("knots":)" + digest(3, "null", "null", f64_bytes({not_a_number, not_a_number, not_a_number}))),
              std::string::npos)
        << text;
}

TEST(DumpWriter, SummaryGroup_PlacementAndNamesStayAsTheyAre)
{
    DumpItem g;
    g.kind = DumpItem::group;
    g.name = "G";
    g.mangled = "G";
    auto child = std::make_unique<DumpItem>();
    child->kind = DumpItem::pointcloud;
    g.children.push_back(std::move(child));
    EXPECT_EQ(summary_json(g),
              R"({"type":"group","name":"G","mangled":"G","xform":[1.0,0.0,0.0,0.0,0.0,1.0,0.0,0.0,0.0,0.0,1.0,0.0],)"
              R"("children":[{"type":"pointcloud","name":"","mangled":"","layer":null,"points":)" +
                  digest(0, "null", "null", "") + R"(,"colours":)" + digest(0, "null", "null", "") + "}]}\n");
}
