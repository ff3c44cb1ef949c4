// Contour geometry: polylines, piecewise Bezier curves, placement matrices,
// crossings and extents.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>

#include "contour/vmiVelmcontur.h"
#include "curves/m01DVector.h"
#include "curves/m03DVector.h"
#include "curves/m0BspCurve.h"
#include "grid/vmiBaseGrid.h"
#include "tests/support/testGeometry.h"

namespace {

// Placement parameters: angle (degrees), translation, factors.
void params(double* p, double angle, double tx, double ty, double tz, double fx, double fy,
            double fz)
{
    for (int i = 0; i < 12; ++i)
        p[i] = 0.0;
    p[2] = angle;
    p[3] = tx;
    p[4] = ty;
    p[5] = tz;
    p[6] = fx;
    p[9] = 1.0;
    p[7] = fy;
    p[10] = 1.0;
    p[8] = fz;
}

}  // namespace

TEST(vmiVelmcontur, Geometry_CreateBspCurve_SevenPointsOrderFourGiveElevenKnots)
{
    m03DVector* pts = new m03DVector(7);
    for (int i = 0; i < 7; ++i)
        pts->set_point(i, m03DPoint(i, i * i, 0));
    std::unique_ptr<m0BspCurve> c(vmiVelmcontur::create_bsp_curve(pts, 4));
    ASSERT_NE(c, nullptr);
    EXPECT_EQ(c->degree(), 3);
    EXPECT_EQ(c->cpnt_vector(), pts);  // the points themselves, no copy
    m01DVector* k = c->knot_vector();
    ASSERT_NE(k, nullptr);
    ASSERT_EQ(k->size(), 11);
    const double expected[11] = {0, 0, 0, 0, 0.5, 0.5, 0.5, 1, 1, 1, 1};
    for (int i = 0; i < 11; ++i)
        EXPECT_EQ(k->point(i), expected[i]) << i;
}

TEST(vmiVelmcontur, Geometry_CreateBspCurve_OrderOneOrNullVectorGiveNull)
{
    auto pts = polyline({{0, 0, 0}, {1, 0, 0}});
    EXPECT_EQ(vmiVelmcontur::create_bsp_curve(pts.get(), 1), nullptr);
    EXPECT_EQ(vmiVelmcontur::create_bsp_curve(nullptr, 4), nullptr);
    m03DVector empty(0);
    EXPECT_EQ(vmiVelmcontur::create_bsp_curve(&empty, 4), nullptr);
}

TEST(vmiVelmcontur, Geometry_CreatePolyline0_CountZeroGivesNullEvenWithArrays)
{
    double x[2] = {1, 2}, y[2] = {3, 4};
    EXPECT_EQ(vmiVelmcontur::create_polyline0(x, y, nullptr, 0), nullptr);
    EXPECT_EQ(vmiVelmcontur::create_polyline0(x, nullptr, nullptr, 2), nullptr);
    EXPECT_EQ(vmiVelmcontur::create_polyline0(nullptr, y, nullptr, 2), nullptr);
}

TEST(vmiVelmcontur, Geometry_CreatePolyline0_TakesZWhereGivenElseZero)
{
    double x[2] = {1, 2}, y[2] = {3, 4}, z[2] = {5, 6};
    std::unique_ptr<m03DVector> flat(vmiVelmcontur::create_polyline0(x, y, nullptr, 2));
    ASSERT_NE(flat, nullptr);
    ASSERT_EQ(flat->size(), 2);
    EXPECT_TRUE(flat->point(1) == m03DPoint(2, 4, 0));
    std::unique_ptr<m03DVector> lifted(vmiVelmcontur::create_polyline0(x, y, z, 2));
    EXPECT_TRUE(lifted->point(0) == m03DPoint(1, 3, 5));
    std::unique_ptr<m03DPoint[]> raw(vmiVelmcontur::create_polyline(x, y, z, 2));
    ASSERT_NE(raw, nullptr);
    EXPECT_TRUE(raw[1] == m03DPoint(2, 4, 6));
    EXPECT_EQ(vmiVelmcontur::create_polyline(x, y, z, 0), nullptr);
}

TEST(vmiVelmcontur, Geometry_Transform0_NullMatrixLeavesThePoint)
{
    m03DPoint p(1.5, -2.5, 3.25);
    EXPECT_TRUE(vmiVelmcontur::transform0(p, nullptr) == p);
    EXPECT_TRUE(vmiVelmcontur::transform(p, nullptr) == p);
    auto v = polyline({{1, 2, 3}});
    vmiVelmcontur::transform0(v.get(), nullptr);
    EXPECT_TRUE(v->point(0) == m03DPoint(1, 2, 3));
}

TEST(vmiVelmcontur, Geometry_CreateTransform_Angle90PutsTheXAxisOntoY)
{
    double p[12];
    params(p, 90.0, 0, 0, 0, 2.0, 3.0, 1.0);
    std::unique_ptr<double[]> m(vmiVelmcontur::create_transform(p));
    ASSERT_NE(m, nullptr);
    const double half_pi = std::acos(0.0);
    EXPECT_EQ(m[0], std::cos(half_pi) * 2.0 * 1.0);
    EXPECT_GT(m[0], 0.0);
    EXPECT_LT(m[0], 1e-15);
    EXPECT_EQ(m[4], 2.0);
    EXPECT_EQ(m[1], std::cos(half_pi + half_pi) * 3.0 * 1.0);
    EXPECT_EQ(m[1], -3.0);
}

TEST(vmiVelmcontur, Geometry_CreateTransform_EntriesFollowTheParameters)
{
    double p[12];
    params(p, 30.0, 4.0, 5.0, 6.0, 2.0, 3.0, 7.0);
    p[9] = 0.5;
    p[10] = 4.0;
    std::unique_ptr<double[]> m(vmiVelmcontur::create_transform(p));
    const double a = 30.0 * std::acos(0.0) / 90.0;
    const double half_pi = std::acos(0.0);
    EXPECT_EQ(m[0], std::cos(a) * 2.0 * 0.5);
    EXPECT_EQ(m[1], std::cos(a + half_pi) * 3.0 * 4.0);
    EXPECT_EQ(m[2], 0.0);
    EXPECT_EQ(m[3], 4.0);
    EXPECT_EQ(m[4], std::sin(a) * 2.0 * 0.5);
    EXPECT_EQ(m[5], std::sin(a + half_pi) * 3.0 * 4.0);
    EXPECT_EQ(m[6], 0.0);
    EXPECT_EQ(m[7], 5.0);
    EXPECT_EQ(m[8], 0.0);
    EXPECT_EQ(m[9], 0.0);
    EXPECT_EQ(m[10], 7.0);
    EXPECT_EQ(m[11], 6.0);
    EXPECT_EQ(vmiVelmcontur::create_transform(nullptr), nullptr);
}

TEST(vmiVelmcontur, Geometry_Transform0AppliesRowsTransformTheTransposeWithTheSameShift)
{
    double m[12] = {1, 2, 3, 10, 4, 5, 6, 20, 7, 8, 9, 30};
    m03DPoint p(1, 1, 1);
    m03DPoint a = vmiVelmcontur::transform0(p, m);
    EXPECT_TRUE(a == m03DPoint(16, 35, 54));
    m03DPoint b = vmiVelmcontur::transform(p, m);
    EXPECT_TRUE(b == m03DPoint(22, 35, 48));
    m03DPoint pts[2] = {{1, 1, 1}, {0, 0, 0}};
    vmiVelmcontur::transform0(pts, 2, m);
    EXPECT_TRUE(pts[0] == a);
    EXPECT_TRUE(pts[1] == m03DPoint(10, 20, 30));
    auto v = polyline({{1, 1, 1}});
    vmiVelmcontur::transform(v.get(), m);
    EXPECT_TRUE(v->point(0) == b);
}

TEST(vmiVelmcontur, Geometry_LinesIntersect_XAxisWithVerticalSegmentAtHalf)
{
    m03DPoint r;
    double t = vmiVelmcontur::lines_intersect({0, 0, 0}, {1, 0, 0}, {0.5, -1, 0}, {0.5, 1, 0}, r);
    EXPECT_EQ(t, 0.5);
    EXPECT_TRUE(r == m03DPoint(0.5, 0, 0));
}

TEST(vmiVelmcontur, Geometry_LinesIntersect_InterpolatesZAlongTheSecondLine)
{
    m03DPoint r;
    double t = vmiVelmcontur::lines_intersect({0, 0, 0}, {1, 0, 0}, {2, -1, 0}, {2, 3, 8}, r);
    EXPECT_EQ(t, 0.25);
    EXPECT_TRUE(r == m03DPoint(2, 0, 2));
}

TEST(vmiVelmcontur, Geometry_LinesIntersect_ParallelLinesGiveAParameterOutsideEveryRange)
{
    m03DPoint r;
    double t = vmiVelmcontur::lines_intersect({0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0}, r);
    EXPECT_FALSE(t >= 0.0 && t <= 1.0);
}

TEST(vmiVelmcontur, Geometry_GetMinMaxXIntersect_LineThatMissesGivesStartValues)
{
    auto poly = polyline({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}});
    m03DPoint lo, hi;
    vmiVelmcontur::get_min_max_x_intersect({-5, 10, 0}, {5, 10, 0}, poly.get(), lo, hi);
    EXPECT_TRUE(lo == m03DPoint(1e10, 0, 0));
    EXPECT_TRUE(hi == m03DPoint(-1e10, 0, 0));
}

TEST(vmiVelmcontur, Geometry_GetMinMaxXIntersect_FindsLeftmostAndRightmostCrossings)
{
    // A square from x 2 to 6, y 0 to 4, closed; the line y = 1 crosses it at
    // x 2 and x 6.
    auto poly = polyline({{2, 0, 0}, {6, 0, 0}, {6, 4, 0}, {2, 4, 0}, {2, 0, 0}});
    m03DPoint lo, hi;
    vmiVelmcontur::get_min_max_x_intersect({-1, 1, 0}, {10, 1, 0}, poly.get(), lo, hi);
    EXPECT_TRUE(lo == m03DPoint(2, 1, 0));
    EXPECT_TRUE(hi == m03DPoint(6, 1, 0));
}

TEST(vmiVelmcontur, Geometry_GetMinMaxXIntersect_EqualXKeepsTheEarlierCrossing)
{
    // The vertical line x = 3 crosses the square's bottom side (the first
    // segment) at (3, 0) and its top side (the third) at (3, 4): on equal x
    // both the least and the greatest stay the earlier crossing.
    auto poly = polyline({{2, 0, 0}, {6, 0, 0}, {6, 4, 0}, {2, 4, 0}, {2, 0, 0}});
    m03DPoint lo, hi;
    vmiVelmcontur::get_min_max_x_intersect({3, -1, 0}, {3, 10, 0}, poly.get(), lo, hi);
    EXPECT_TRUE(lo == m03DPoint(3, 0, 0));
    EXPECT_TRUE(hi == m03DPoint(3, 0, 0));
}

TEST(vmiVelmcontur, Geometry_GetYMinMax_RowsOfThePolylineTruncated)
{
    vmiBaseGrid grid(10, 10, 1.0, 2.0);
    auto poly = polyline({{0, 3.9, 0}, {0, 9.1, 0}, {0, 5.0, 0}});
    int lo = -1, hi = -1;
    vmiVelmcontur::get_y_min_max(&grid, poly.get(), lo, hi);
    EXPECT_EQ(lo, 1);
    EXPECT_EQ(hi, 4);
    vmiVelmcontur::get_y_min_max(nullptr, poly.get(), lo, hi);
    EXPECT_EQ(lo, 0);
    EXPECT_EQ(hi, 0);
    m03DVector empty(0);
    vmiVelmcontur::get_y_min_max(&grid, &empty, lo, hi);
    EXPECT_EQ(lo, 100000);
    EXPECT_EQ(hi, -100000);
}

TEST(vmiVelmcontur, Geometry_Middle_IsTheMeanOfThePoints)
{
    auto poly = polyline({{0, 0, 0}, {2, 4, 6}, {4, 2, 0}});
    EXPECT_TRUE(vmiVelmcontur::middle(poly.get()) == m03DPoint(2, 2, 2));
}
