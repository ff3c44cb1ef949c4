#include "curves/m03DPoint.h"
#include "tests/support/testGeometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

TEST(m03DPoint, DefaultConstructor_IsOrigin)
{
    m03DPoint p;
    expect_point(p, 0.0, 0.0, 0.0);
}

TEST(m03DPoint, CoordinateConstructor_KeepsCoordinatesInOrder)
{
    expect_point(m03DPoint(1.5, -2.0, 3.25), 1.5, -2.0, 3.25);
}

TEST(m03DPoint, CopyFromReferenceAndFromPointer_CopyAllThree)
{
    m03DPoint p(1.0, 2.0, 3.0);
    m03DPoint byRef(p);
    m03DPoint byPtr(&p);
    expect_point(byRef, 1.0, 2.0, 3.0);
    expect_point(byPtr, 1.0, 2.0, 3.0);
}

TEST(m03DPoint, AssignFromReferenceAndFromPointer_CopyAllThree)
{
    m03DPoint p(4.0, 5.0, 6.0);
    m03DPoint a;
    m03DPoint b;
    a = p;
    b = &p;
    expect_point(a, 4.0, 5.0, 6.0);
    expect_point(b, 4.0, 5.0, 6.0);
}

TEST(m03DPoint, Equality_IsExactWithoutTolerance)
{
    m03DPoint p(1.0, 2.0, 3.0);
    EXPECT_EQ(p == m03DPoint(1.0, 2.0, 3.0), 1);
    EXPECT_EQ(p == m03DPoint(1.0, 2.0, std::nextafter(3.0, 4.0)), 0);
    EXPECT_EQ(p == m03DPoint(1.0, 2.5, 3.0), 0);
    EXPECT_EQ(p == m03DPoint(0.0, 2.0, 3.0), 0);
}

TEST(m03DPoint, SumAndDifference_AreComponentWise)
{
    m03DPoint p(1.0, 2.0, 3.0);
    m03DPoint q(0.5, -1.0, 4.0);
    expect_point(p + q, 1.5, 1.0, 7.0);
    expect_point(p - q, 0.5, 3.0, -1.0);
}

TEST(m03DPoint, ScaleAndDivide_ApplyToEachComponent)
{
    m03DPoint p(1.0, -2.0, 3.0);
    expect_point(p * 2.0, 2.0, -4.0, 6.0);
    expect_point(p / 4.0, 0.25, -0.5, 0.75);
}

TEST(m03DPoint, ProductOfTwoPoints_IsCrossProductNotDot)
{
    m03DPoint x(1.0, 0.0, 0.0);
    m03DPoint y(0.0, 1.0, 0.0);
    expect_point(x * y, 0.0, 0.0, 1.0);
    expect_point(y * x, 0.0, 0.0, -1.0);
}

TEST(m03DPoint, VectMult_FollowsTheComponentFormula)
{
    m03DPoint p(1.0, 2.0, 3.0);
    m03DPoint q(4.0, 5.0, 6.0);
    // (2*6 - 3*5, 3*4 - 1*6, 1*5 - 2*4)
    expect_point(p.vect_mult(q), -3.0, 6.0, -3.0);
}

TEST(m03DPoint, InPlaceOperators_MatchTheirBinaryForms)
{
    m03DPoint p(1.0, 2.0, 3.0);
    p += m03DPoint(1.0, 1.0, 1.0);
    expect_point(p, 2.0, 3.0, 4.0);
    p -= m03DPoint(0.5, 0.5, 0.5);
    expect_point(p, 1.5, 2.5, 3.5);
    p *= 2.0;
    expect_point(p, 3.0, 5.0, 7.0);
    p /= 2.0;
    expect_point(p, 1.5, 2.5, 3.5);
}

TEST(m03DPoint, InPlaceProductWithPoint_BecomesCrossProduct)
{
    m03DPoint p(0.0, 1.0, 0.0);
    p *= m03DPoint(0.0, 0.0, 1.0);
    expect_point(p, 1.0, 0.0, 0.0);
}

TEST(m03DPoint, DivisionByZero_IsNotGuarded)
{
    m03DPoint p = m03DPoint(1.0, -1.0, 0.0) / 0.0;
    EXPECT_TRUE(std::isinf(p.x()) && p.x() > 0.0);
    EXPECT_TRUE(std::isinf(p.y()) && p.y() < 0.0);
    EXPECT_TRUE(std::isnan(p.z()));
}

TEST(m03DPoint, ScalMult_IsDotProduct)
{
    EXPECT_EQ(m03DPoint(1.0, 2.0, 3.0).scal_mult(m03DPoint(4.0, -5.0, 6.0)), 12.0);
}

TEST(m03DPoint, ModuleAndModule2_AreLengthAndSquaredLength)
{
    m03DPoint p(2.0, 3.0, 6.0);
    EXPECT_EQ(p.module2(), 49.0);
    EXPECT_EQ(p.module(), 7.0);
}

TEST(m03DPoint, Single_OfTinyVectorIsOrigin)
{
    expect_point(m03DPoint(1e-31, 0.0, 0.0).single(), 0.0, 0.0, 0.0);
}

TEST(m03DPoint, Single_Of034IsUnitVector)
{
    m03DPoint u = m03DPoint(0.0, 3.0, 4.0).single();
    EXPECT_EQ(u.x(), 0.0);
    EXPECT_DOUBLE_EQ(u.y(), 0.6);
    EXPECT_DOUBLE_EQ(u.z(), 0.8);
}

TEST(m03DPoint, Single_JustAboveThresholdIsNormalised)
{
    m03DPoint u = m03DPoint(2e-30, 0.0, 0.0).single();
    EXPECT_EQ(u.x(), 1.0);
}

TEST(m03DPoint, MinDistPoint_SegmentShorterThan1e10ReturnsFirstEnd)
{
    m03DPoint a(1.0, 1.0, 1.0);
    m03DPoint b(1.0, 1.0, 1.0 + 1e-11);
    expect_point(m03DPoint(5.0, 5.0, 5.0).min_dist_point(a, b), 1.0, 1.0, 1.0);
}

TEST(m03DPoint, MinDistPoint_BeforeStartClampsToStart)
{
    m03DPoint a(0.0, 0.0, 0.0);
    m03DPoint b(2.0, 0.0, 0.0);
    expect_point(m03DPoint(-1.0, 1.0, 0.0).min_dist_point(a, b), 0.0, 0.0, 0.0);
}

TEST(m03DPoint, MinDistPoint_BeyondEndClampsToEnd)
{
    m03DPoint a(0.0, 0.0, 0.0);
    m03DPoint b(2.0, 0.0, 0.0);
    expect_point(m03DPoint(3.0, 1.0, 0.0).min_dist_point(a, b), 2.0, 0.0, 0.0);
}

TEST(m03DPoint, MinDistPoint_InsideProjectsOntoSegment)
{
    m03DPoint a(0.0, 0.0, 0.0);
    m03DPoint b(2.0, 0.0, 0.0);
    expect_point(m03DPoint(0.5, 1.0, 0.0).min_dist_point(a, b), 0.5, 0.0, 0.0);
}

TEST(m03DPoint, MinDist_IsDistanceToClosestPoint)
{
    m03DPoint a(0.0, 0.0, 0.0);
    m03DPoint b(2.0, 0.0, 0.0);
    EXPECT_EQ(m03DPoint(1.0, 3.0, 4.0).min_dist(a, b), 5.0);
    EXPECT_EQ(m03DPoint(5.0, 4.0, 0.0).min_dist(a, b), 5.0);
}

TEST(m03DPoint, AccessorsAndSetters_ReachEachCoordinate)
{
    m03DPoint p;
    p.x() = 1.0;
    p.y() = 2.0;
    p.z() = 3.0;
    expect_point(p, 1.0, 2.0, 3.0);
    p.set_x(-1.0);
    p.set_y(-2.0);
    p.set_z(-3.0);
    expect_point(p, -1.0, -2.0, -3.0);
}

TEST(m03DPoint, Layout_IsThreeDoubles)
{
    static_assert(sizeof(m03DPoint) == 3 * sizeof(double));
    static_assert(!std::is_polymorphic_v<m03DPoint>);
    m03DPoint* arr = new m03DPoint[2];
    expect_point(arr[1], 0.0, 0.0, 0.0);
    delete[] arr;
}
