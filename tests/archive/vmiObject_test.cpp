// Object records and the vmiObject handle: types, forwarding, boxes, ownership.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>

#include "archive/vmiObjCloud.h"
#include "archive/vmiObjGrid.h"
#include "archive/vmiObjPoly.h"
#include "archive/vmiObjSpline.h"
#include "archive/vmiObject.h"
#include "curves/m03DVector.h"
#include "grid/vmiBaseGrid.h"
#include "host/rnxNurbCurve3.h"
#include "tests/support/testGeometry.h"

TEST(vmiObjSpline, FromNullVector_HasNoSplineNoApproximationInvalidBoxAndNurbLeavesPointer)
{
    vmiObjSpline s(utString("none"), nullptr);
    EXPECT_EQ(s.spline(), nullptr);
    EXPECT_EQ(s.approximation(), nullptr);
    EXPECT_FALSE(s.box().is_valid());
    auto marker = std::make_shared<rnxNurbCurve3>(2, 2);
    rnxCurvePtr3 c = marker;
    s.nurb(c);
    EXPECT_EQ(c.get(), marker.get());
    EXPECT_EQ(s.name(), utString("none"));
}

TEST(vmiObjSpline, FromEmptyVector_HasNoSplineNoApproximationInvalidBoxAndNurbLeavesPointer)
{
    vmiObjSpline s(utString("empty"), new m03DVector(0));
    EXPECT_EQ(s.spline(), nullptr);
    EXPECT_EQ(s.approximation(), nullptr);
    EXPECT_FALSE(s.box().is_valid());
    rnxCurvePtr3 c;
    s.nurb(c);
    EXPECT_EQ(c, nullptr);
}

TEST(vmiObjSpline, FromPoints_KeepsApproximationThroughEndsAndBoxOfIt)
{
    vmiObjSpline s(utString("arc"), polyline({{0, 0, 0}, {10, 5, 0}, {20, 0, 0}}).release());
    ASSERT_NE(s.spline(), nullptr);
    ASSERT_NE(s.approximation(), nullptr);
    m03DVector* a = s.approximation();
    ASSERT_GE(a->size(), 3);
    EXPECT_DOUBLE_EQ(a->point(0).x(), 0.0);
    EXPECT_DOUBLE_EQ(a->point(a->size() - 1).x(), 20.0);
    giBox3 box = s.box();
    ASSERT_TRUE(box.is_valid());
    EXPECT_DOUBLE_EQ(box.min().x(), 0.0);
    EXPECT_DOUBLE_EQ(box.max().x(), 20.0);
    EXPECT_GE(box.max().y(), 5.0);
    rnxCurvePtr3 c;
    s.nurb(c);
    ASSERT_NE(c, nullptr);
    EXPECT_EQ(c->order(), 4);
    EXPECT_EQ(c->num_points(), 7);
}

namespace {

// A closed outline of 33 points on a circle of radius r around the origin.
m03DVector* circle_outline(double r)
{
    const int n = 33;
    auto* v = new m03DVector(n);
    for (int i = 0; i < n; i++) {
        const double a = i == n - 1 ? 0.0 : 2.0 * std::acos(-1.0) * i / (n - 1);
        v->set_point(i, m03DPoint(r * std::cos(a), r * std::sin(a), 0.0));
    }
    return v;
}

// The largest distance of a chord's midpoint inside the circle of radius r.
double largest_sagitta(m03DVector& outline, double r)
{
    double most = 0.0;
    for (int k = 0; k + 1 < outline.size(); k++) {
        const m03DPoint m = (outline.point(k) + outline.point(k + 1)) / 2.0;
        most = std::max(most, r - std::sqrt(m.x() * m.x() + m.y() * m.y()));
    }
    return most;
}

}  // namespace

TEST(vmiObjSpline, Approximation_HalvesASpanStepOnlyWhenItsChordLeavesTheCurveByMoreThanHalfAUnit)
{
    // The walk takes two steps per knot span while each chord's midpoint stays
    // within half a unit of the curve. On a circle of radius 405 such a chord
    // lies 0.489 inside it: 32 spans, 65 points.
    vmiObjSpline within(utString("r405"), circle_outline(405.0));
    ASSERT_NE(within.approximation(), nullptr);
    EXPECT_EQ(within.approximation()->size(), 65);
    EXPECT_GT(largest_sagitta(*within.approximation(), 405.0), 0.48);
    EXPECT_LE(largest_sagitta(*within.approximation(), 405.0), 0.5);
    // Radius 420: 0.507, beyond half a unit, so every step is halved.
    vmiObjSpline beyond(utString("r420"), circle_outline(420.0));
    ASSERT_NE(beyond.approximation(), nullptr);
    EXPECT_EQ(beyond.approximation()->size(), 129);
    EXPECT_LT(largest_sagitta(*beyond.approximation(), 420.0), 0.13);
}

TEST(vmiObject, Wrap_NullRecordGivesNoHandle)
{
    EXPECT_EQ(vmiObject::wrap(static_cast<vmiObjGrid*>(nullptr)), nullptr);
    EXPECT_EQ(vmiObject::wrap(static_cast<vmiObjPoly*>(nullptr)), nullptr);
    EXPECT_EQ(vmiObject::wrap(static_cast<vmiObjCloud*>(nullptr)), nullptr);
    EXPECT_EQ(vmiObject::wrap(static_cast<vmiObjSpline*>(nullptr)), nullptr);
}

TEST(vmiObject, Wrap_HandleOwnsTheRecordUnderItsType)
{
    auto* poly = new vmiObjPoly(utString("p"), polyline({{0, 0, 0}, {1, 0, 0}}).release());
    std::unique_ptr<vmiObject> o(vmiObject::wrap(poly));
    ASSERT_NE(o, nullptr);
    EXPECT_EQ(o->type(), vmiObject::polyline_type);
    EXPECT_EQ(o->polyline(), poly);
    auto* grid = new vmiObjGrid(utString("g"), new vmiBaseGrid(2, 2, 1.0, 1.0));
    std::unique_ptr<vmiObject> g(vmiObject::wrap(grid));
    ASSERT_NE(g, nullptr);
    EXPECT_EQ(g->grid(), grid);
}

TEST(vmiObject, SettersOnObjectWithoutRecordDoNothing)
{
    vmiObject o(static_cast<vmiObjPoly*>(nullptr));
    EXPECT_EQ(o.type(), 2);
    o.name(utString("n"));
    o.layer_name(utString("l"));
    o.level(7);
    EXPECT_TRUE(o.name().empty());
    EXPECT_TRUE(o.layer_name().empty());
    EXPECT_EQ(o.level(), 0);
    EXPECT_EQ(o.polyline(), nullptr);
    EXPECT_FALSE(o.box().is_valid());
}

TEST(vmiObject, SettersOnObjectOfUnknownTypeDoNothing)
{
    vmiObject o;
    EXPECT_NE(o.type(), 1);
    EXPECT_NE(o.type(), 2);
    EXPECT_NE(o.type(), 3);
    EXPECT_NE(o.type(), 5);
    o.name(utString("n"));
    o.layer_name(utString("l"));
    o.level(7);
    EXPECT_TRUE(o.name().empty());
    EXPECT_TRUE(o.layer_name().empty());
    EXPECT_EQ(o.level(), 0);
    EXPECT_EQ(o.attributes(), nullptr);
    EXPECT_FALSE(o.box().is_valid());
}

TEST(vmiObject, SettersForwardToRecordAttributes)
{
    vmiObjPoly* p = new vmiObjPoly(utString("a"), polyline({{0, 0, 0}}).release());
    vmiObject o(p);
    o.name(utString("b"));
    o.layer_name(utString("L"));
    o.level(20);
    EXPECT_EQ(p->name(), utString("b"));
    EXPECT_EQ(p->layer_name(), utString("L"));
    EXPECT_EQ(p->level(), 20);
    EXPECT_EQ(o.name(), utString("b"));
    EXPECT_EQ(o.level(), 20);
    EXPECT_EQ(o.data_offset(), 0);
}

TEST(vmiObject, GridOnPolylineObjectAndEachOtherMismatchReturnNull)
{
    vmiObject grid(new vmiObjGrid(utString("g"), new vmiBaseGrid(2, 2, 1.0, 1.0)));
    vmiObject poly(new vmiObjPoly(utString("p"), polyline({{0, 0, 0}}).release()));
    vmiObject cloud(new vmiObjCloud(utString("c"), new m03DPoint[1], new int[1]{5}, 1));
    vmiObject spline(new vmiObjSpline(utString("s"), nullptr));
    EXPECT_EQ(grid.type(), 1);
    EXPECT_EQ(poly.type(), 2);
    EXPECT_EQ(cloud.type(), 3);
    EXPECT_EQ(spline.type(), 5);

    EXPECT_NE(grid.grid(), nullptr);
    EXPECT_EQ(grid.polyline(), nullptr);
    EXPECT_EQ(grid.cloud(), nullptr);
    EXPECT_EQ(grid.spline(), nullptr);

    EXPECT_EQ(poly.grid(), nullptr);
    EXPECT_NE(poly.polyline(), nullptr);
    EXPECT_EQ(poly.cloud(), nullptr);
    EXPECT_EQ(poly.spline(), nullptr);

    EXPECT_EQ(cloud.grid(), nullptr);
    EXPECT_EQ(cloud.polyline(), nullptr);
    EXPECT_NE(cloud.cloud(), nullptr);
    EXPECT_EQ(cloud.spline(), nullptr);

    EXPECT_EQ(spline.grid(), nullptr);
    EXPECT_EQ(spline.polyline(), nullptr);
    EXPECT_EQ(spline.cloud(), nullptr);
    EXPECT_NE(spline.spline(), nullptr);
}

TEST(vmiObjGrid, ForwardsGeometryAndBoxToItsGrid)
{
    m03DPoint* pts = new m03DPoint[6];
    for (int j = 0; j < 2; ++j)
        for (int i = 0; i < 3; ++i)
            pts[j * 3 + i] = m03DPoint(i * 2.0, j * 5.0, 1.0 + i + j);
    vmiObjGrid g(utString("scan"), pts, 3, 2, 2.0, 5.0);
    EXPECT_EQ(g.x_size(), 3);
    EXPECT_EQ(g.y_size(), 2);
    EXPECT_EQ(g.d_x(), 2.0);
    EXPECT_EQ(g.d_y(), 5.0);
    EXPECT_EQ(g.points_array(), pts);
    giBox3 box = g.box();
    EXPECT_EQ(box.min(), giPoint3(0, 0, 1));
    EXPECT_EQ(box.max(), giPoint3(4, 5, 4));
}

TEST(vmiObjGrid, WithoutGridAnswersZeroAndInvalidBox)
{
    vmiObjGrid g(utString("none"), static_cast<vmiBaseGrid*>(nullptr));
    EXPECT_EQ(g.x_size(), 0);
    EXPECT_EQ(g.points_array(), nullptr);
    EXPECT_FALSE(g.box().is_valid());
}

TEST(vmiObjPoly, BoxIsBoundingBoxOfPoints)
{
    vmiObject o(new vmiObjPoly(utString("p"), polyline({{1, -2, 3}, {-4, 5, 0}}).release()));
    giBox3 box = o.box();
    EXPECT_EQ(box.min(), giPoint3(-4, -2, 0));
    EXPECT_EQ(box.max(), giPoint3(1, 5, 3));
}

TEST(vmiObjCloud, BoxAndArraysOfCloud)
{
    m03DPoint* pts = new m03DPoint[2]{{1, 1, 1}, {3, -1, 2}};
    int* colours = new int[2]{0x102030, 0x405060};
    vmiObjCloud c(utString("img"), pts, colours, 2);
    EXPECT_EQ(c.size(), 2);
    EXPECT_TRUE(c.has_points());
    EXPECT_EQ(c.point(1).x(), 3.0);
    EXPECT_EQ(c.point(1).y(), -1.0);
    EXPECT_EQ(c.point_colour(1), 0x405060);
    EXPECT_EQ(c.box().min(), giPoint3(1, -1, 1));
    EXPECT_EQ(c.box().max(), giPoint3(3, 1, 2));
}

TEST(vmiObjCloud, AttributeColourStaysApartFromThePointColours)
{
    vmiObjCloud c(utString("img"), new m03DPoint[1]{{1, 2, 3}}, new int[1]{0x102030}, 1);
    c.colour(5);
    EXPECT_EQ(c.colour(), 5);
    EXPECT_EQ(c.point_colour(0), 0x102030);
}

TEST(vmiObjCloud, CloudWithoutColoursReadsBlack)
{
    vmiObjCloud c(utString("img"), new m03DPoint[1]{{1, 2, 3}}, nullptr, 1);
    EXPECT_EQ(c.point_colour(0), 0);
    vmiObjCloud none(utString("none"), nullptr, nullptr, 3);
    EXPECT_FALSE(none.has_points());
}

TEST(vmiObjCloud, ScanImageMakesItsPointsAndColoursFromItsGreyBytes)
{
    // 3 x 2 pixels row by row; each coordinate a single precision product.
    vmiObjCloud c(utString("img"), new std::uint8_t[6]{0, 1, 2, 3, 4, 255}, 3, 2, 0.1f, 0.3f, -5.0);
    ASSERT_EQ(c.size(), 6);
    EXPECT_TRUE(c.has_points());
    for (int k = 0; k < 6; ++k) {
        const m03DPoint p = c.point(k);
        EXPECT_EQ(p.x(), static_cast<double>(static_cast<float>(k % 3) * 0.1f));
        EXPECT_EQ(p.y(), static_cast<double>(static_cast<float>(k / 3) * 0.3f));
        EXPECT_EQ(p.z(), -5.0);
    }
    EXPECT_EQ(c.point_colour(4), 0x00040404);
    EXPECT_EQ(c.point_colour(5), 0x00FFFFFF);
    EXPECT_EQ(c.box().min(), giPoint3(0, 0, -5));
    EXPECT_EQ(c.box().max(),
              giPoint3(static_cast<double>(2 * 0.1f), static_cast<double>(0.3f), -5));
}

TEST(vmiObjCloud, ScanImageWithoutPixelsHasNoPointsAndNoBox)
{
    vmiObjCloud c(utString("img"), new std::uint8_t[0], 0, 5, 1.0f, 1.0f, -5.0);
    EXPECT_EQ(c.size(), 0);
    EXPECT_FALSE(c.box().is_valid());
}

TEST(vmiObjAttr, DefaultsAreZeroAndEmpty)
{
    vmiObjPoly p(utString("n"), nullptr);
    EXPECT_EQ(p.level(), 0);
    EXPECT_EQ(p.colour(), 0);
    EXPECT_TRUE(p.layer_name().empty());
    EXPECT_FALSE(p.box().is_valid());
}
