// The summary form of the dump: every geometry array as {count, min, max,
// sha256}, the digest taken of the bytes the text names (float64 and int32
// little-endian, one byte per colour component), built here independently.
#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "cli/DumpSink.h"
#include "cli/DumpWriter.h"
#include "cli/JsonWriter.h"
#include "cli/Sha256.h"

namespace {

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

const double not_a_number = std::numeric_limits<double>::quiet_NaN();
const double infinity = std::numeric_limits<double>::infinity();

} // namespace

TEST(DumpSummary, Triblock_VerticesAsFloat64TriplesTrianglesAsInt32)
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

TEST(DumpSummary, PointCloud_ColoursOneBytePerComponent)
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

TEST(DumpSummary, Curve_KnotsAndWeightsAsSingleNumbers)
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

TEST(DumpSummary, Curve_WeightsStayNullWhenNoneWasSet)
{
    DumpItem item;
    item.kind = DumpItem::curve;
    item.nurb = std::make_shared<rnxNurbCurve3>(4, 4);
    const std::string text = summary_json(item);
    EXPECT_NE(text.find(R"("weights":null,"knots":{"count":8,)"), std::string::npos) << text;
}

TEST(DumpSummary, FailedCurve_EmptyDigestsWithNullBoundsAndWeightsNull)
{
    DumpItem item;
    item.kind = DumpItem::curve;
    item.status = 1;
    const std::string expected =
        R"({"type":"curve","name":"","mangled":"","layer":null,"status":1,"order":0,"points":)" +
        digest(0, "null", "null", "") + R"(,"weights":null,"knots":)" + digest(0, "null", "null", "") + "}\n";
    EXPECT_EQ(summary_json(item), expected);
}

TEST(DumpSummary, MinMax_OverFiniteValuesOnlyAComponentWithNoneIsNull)
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

TEST(DumpSummary, Knots_NoFiniteValueGivesNullBounds)
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

TEST(DumpSummary, Group_PlacementAndNamesStayAsTheyAre)
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
