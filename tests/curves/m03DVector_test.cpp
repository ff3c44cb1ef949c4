#include "curves/m03DVector.h"
#include "tests/support/testGeometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <initializer_list>
#include <limits>
#include <memory>
#include <vector>

namespace {

void expect_points(const m03DVector& v, std::initializer_list<m03DPoint> want)
{
    ASSERT_EQ(v.size(), static_cast<int>(want.size()));
    int i = 0;
    for (const m03DPoint& p : want) {
        SCOPED_TRACE(i);
        expect_point(v.point(i++), p.x(), p.y(), p.z());
    }
}

}  // namespace

TEST(m03DVector, Constructor_PointsStartAtOrigin)
{
    m03DVector v(3);
    ASSERT_EQ(v.size(), 3);
    ASSERT_NE(v.get_point_array(), nullptr);
    for (int i = 0; i < 3; i++)
        expect_point(v.point(i), 0.0, 0.0, 0.0);
}

TEST(m03DVector, Constructor_NegativeCountMakesEmptyVector)
{
    m03DVector v(-5);
    EXPECT_EQ(v.size(), 0);
    EXPECT_EQ(v.get_point_array(), nullptr);
    EXPECT_EQ(v.length(), 0.0);
    m03DPoint q(1.0, 1.0, 1.0);
    expect_point(v.min_dist_point(q), 0.0, 0.0, 0.0);
    expect_point(v.point(0.5), 0.0, 0.0, 0.0);
}

TEST(m03DVector, Constructor_ZeroCountHasNoStorage)
{
    m03DVector v(0);
    EXPECT_EQ(v.size(), 0);
    EXPECT_EQ(v.get_point_array(), nullptr);
}

TEST(m03DVector, CopyFromPointer_IsDeep)
{
    auto v = polyline({{1, 2, 3}, {4, 5, 6}});
    m03DVector copy(v.get());
    v->point(0) = m03DPoint(9, 9, 9);
    EXPECT_NE(copy.get_point_array(), v->get_point_array());
    expect_points(copy, {{1, 2, 3}, {4, 5, 6}});
}

TEST(m03DVector, CopyFromEmpty_IsEmpty)
{
    m03DVector empty(0);
    m03DVector copy(&empty);
    EXPECT_EQ(copy.size(), 0);
    EXPECT_EQ(copy.get_point_array(), nullptr);
}

TEST(m03DVector, SizeReference_RewritesCount)
{
    m03DVector v(4);
    v.size() = 2;
    EXPECT_EQ(v.size(), 2);
}

TEST(m03DVector, SetSize_NeitherReallocatesNorClears)
{
    auto v = polyline({{1, 0, 0}, {2, 0, 0}, {3, 0, 0}});
    m03DPoint* storage = v->get_point_array();
    v->set_size(1);
    v->set_size(3);
    EXPECT_EQ(v->get_point_array(), storage);
    expect_points(*v, {{1, 0, 0}, {2, 0, 0}, {3, 0, 0}});
}

TEST(m03DVector, PointAndSetPoint_ReachTheSameSlot)
{
    m03DVector v(2);
    v.set_point(1, m03DPoint(7, 8, 9));
    expect_point(v.point(1), 7, 8, 9);
    v.point(0) = m03DPoint(1, 1, 1);
    expect_point(v.get_point_array()[0], 1, 1, 1);
}

TEST(m03DVector, PointAtParameter_InterpolatesInsideASegment)
{
    auto v = polyline({{0, 0, 0}, {2, 0, 0}, {2, 4, 0}});
    expect_point(v->point(0.25), 0.5, 0.0, 0.0);
    expect_point(v->point(1.5), 2.0, 2.0, 0.0);
    expect_point(v->point(1.0), 2.0, 0.0, 0.0);
}

TEST(m03DVector, PointAtParameter_2Point5OnThreePointsIsLastPoint)
{
    auto v = polyline({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}});
    expect_point(v->point(2.5), 1, 1, 0);
    expect_point(v->point(2.0), 1, 1, 0);
}

TEST(m03DVector, PointAtParameter_MinusHalfExtendsFirstSegmentBackwards)
{
    auto v = polyline({{1, 1, 0}, {3, 2, 0}, {3, 5, 0}});
    // point(0) - 0.5 * (point(1) - point(0)): before the first point, kept as designed.
    expect_point(v->point(-0.5), 0.0, 0.5, 0.0);
}

TEST(m03DVector, PointAtParameter_MinusOnePointFiveIsFirstPoint)
{
    auto v = polyline({{1, 1, 0}, {3, 2, 0}, {3, 5, 0}});
    expect_point(v->point(-1.5), 1, 1, 0);
    expect_point(v->point(-1.0), 1, 1, 0);
}

TEST(m03DVector, PointAtParameter_HugeOrNaNParameterIsAnEndPoint)
{
    auto v = polyline({{1, 1, 0}, {3, 2, 0}});
    expect_point(v->point(1e300), 3, 2, 0);
    expect_point(v->point(-1e300), 1, 1, 0);
    expect_point(v->point(std::numeric_limits<double>::quiet_NaN()), 3, 2, 0);
}

TEST(m03DVector, Length_SumsSegmentLengths)
{
    auto v = polyline({{0, 0, 0}, {3, 4, 0}, {3, 4, 12}});
    EXPECT_EQ(v->length(), 17.0);
}

TEST(m03DVector, Length_FewerThanTwoPointsIsZero)
{
    auto v = polyline({{5, 5, 5}});
    EXPECT_EQ(v->length(), 0.0);
}

TEST(m03DVector, MinDistPoint_SinglePointIsThatPoint)
{
    auto v = polyline({{5, 6, 7}});
    m03DPoint q(0, 0, 0);
    expect_point(v->min_dist_point(q), 5, 6, 7);
}

TEST(m03DVector, MinDistPoint_ProjectsOntoNearestSegment)
{
    auto v = polyline({{0, 0, 0}, {4, 0, 0}, {4, 4, 0}});
    m03DPoint q(5, 3, 0);
    expect_point(v->min_dist_point(q), 4, 3, 0);
    m03DPoint r(1, -2, 0);
    expect_point(v->min_dist_point(r), 1, 0, 0);
    m03DPoint beyond(4, 9, 0);
    expect_point(v->min_dist_point(beyond), 4, 4, 0);
}

TEST(m03DVector, MinDistPoint_TieKeepsEarlierSegment)
{
    // The origin is exactly 1 from the start of the first segment and from the end
    // of the last one.
    auto v = polyline({{-1, 0, 0}, {-3, 0, 0}, {-3, 5, 0}, {1, 5, 0}, {1, 0, 0}});
    m03DPoint q(0, 0, 0);
    expect_point(v->min_dist_point(q), -1, 0, 0);
}

TEST(m03DVector, MinDistPoint_ZeroLengthSegmentOffersItsStart)
{
    auto v = polyline({{0, 0, 0}, {0, 0, 0}});
    m03DPoint q(1, 1, 1);
    expect_point(v->min_dist_point(q), 0, 0, 0);
}

TEST(m03DVector, Offset_AddsToEveryPoint)
{
    auto v = polyline({{0, 0, 0}, {1, 2, 3}});
    v->offset(m03DPoint(1, -1, 0.5));
    expect_points(*v, {{1, -1, 0.5}, {2, 1, 3.5}});
}

TEST(m03DVector, Reverse_OddCountKeepsMiddle)
{
    auto v = polyline({{1, 0, 0}, {2, 0, 0}, {3, 0, 0}});
    v->reverse();
    expect_points(*v, {{3, 0, 0}, {2, 0, 0}, {1, 0, 0}});
}

TEST(m03DVector, Reverse_EvenCountSwapsAll)
{
    auto v = polyline({{1, 0, 0}, {2, 0, 0}, {3, 0, 0}, {4, 0, 0}});
    v->reverse();
    expect_points(*v, {{4, 0, 0}, {3, 0, 0}, {2, 0, 0}, {1, 0, 0}});
}

TEST(m03DVector, DeletePoint_ShiftsLaterPointsDownInPlace)
{
    auto v = polyline({{1, 0, 0}, {2, 0, 0}, {3, 0, 0}});
    m03DPoint* storage = v->get_point_array();
    v->delete_point(1);
    EXPECT_EQ(v->get_point_array(), storage);
    expect_points(*v, {{1, 0, 0}, {3, 0, 0}});
}

TEST(m03DVector, DeletePoint_IndexPastEndOrNegativeIsIgnored)
{
    auto v = polyline({{1, 0, 0}, {2, 0, 0}});
    v->delete_point(2);
    v->delete_point(-1);
    expect_points(*v, {{1, 0, 0}, {2, 0, 0}});
    m03DVector empty(0);
    empty.delete_point(0);
    EXPECT_EQ(empty.size(), 0);
}

TEST(m03DVector, DeleteCoincide_DropsPointsWithin1e5OfLastKept)
{
    auto v = polyline({{0, 0, 0}, {0, 0, 1e-6}, {0, 0, 2e-5}});
    v->delete_coincide();
    expect_points(*v, {{0, 0, 0}, {0, 0, 2e-5}});
}

TEST(m03DVector, DeleteCoincide_ComparesWithLastKeptNotWithPredecessor)
{
    // Each step is 6e-6, but the third point is 1.2e-5 from the kept first one.
    auto v = polyline({{0, 0, 0}, {6e-6, 0, 0}, {1.2e-5, 0, 0}});
    v->delete_coincide();
    expect_points(*v, {{0, 0, 0}, {1.2e-5, 0, 0}});
}

TEST(m03DVector, DeleteCoincide_ClosedPolylineKeepsDistinctClosingPoint)
{
    // The first point is never compared with the last.
    auto v = polyline({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 0, 0}});
    v->delete_coincide();
    expect_points(*v, {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 0, 0}});
}

TEST(m03DVector, DeleteCoincide_EmptyVectorIsLeftAlone)
{
    m03DVector v(0);
    v.delete_coincide();
    EXPECT_EQ(v.size(), 0);
    EXPECT_EQ(v.get_point_array(), nullptr);
}

TEST(m03DVector, Limit_SameSegmentLeavesExactlyAAndB)
{
    auto v = polyline({{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}});
    m03DPoint a(2, 0, 0);
    m03DPoint b(7, 0, 0);
    v->limit(a, b);
    expect_points(*v, {{2, 0, 0}, {7, 0, 0}});
}

TEST(m03DVector, Limit_KeepsPointsStrictlyBetweenTheTwoSegments)
{
    auto v = polyline({{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}});
    m03DPoint a(5, 0, 0);
    m03DPoint b(5, 10, 0);
    v->limit(a, b);
    expect_points(*v, {{5, 0, 0}, {10, 0, 0}, {10, 10, 0}, {5, 10, 0}});
}

TEST(m03DVector, Limit_OpenPolylineBBeforeAGivesReversedPiece)
{
    auto v = polyline({{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}});
    m03DPoint a(5, 10, 0);
    m03DPoint b(5, 0, 0);
    v->limit(a, b);
    expect_points(*v, {{5, 10, 0}, {10, 10, 0}, {10, 0, 0}, {5, 0, 0}});
}

TEST(m03DVector, Limit_ClosedAcrossSeamCopiesBothFirstAndLastPoint)
{
    // A closed square; a lies on its last segment, b on its first.
    auto v = polyline({{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}, {0, 0, 0}});
    m03DPoint a(0, 5, 0);
    m03DPoint b(5, 0, 0);
    v->limit(a, b);
    // The seam point appears twice: kept as designed.
    expect_points(*v, {{0, 5, 0}, {0, 0, 0}, {0, 0, 0}, {5, 0, 0}});
}

TEST(m03DVector, Limit_ClosedWithoutWrapTrimsInPlace)
{
    auto v = polyline({{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}, {0, 0, 0}});
    m03DPoint a(5, 0, 0);
    m03DPoint b(10, 5, 0);
    v->limit(a, b);
    expect_points(*v, {{5, 0, 0}, {10, 0, 0}, {10, 5, 0}});
}

TEST(m03DVector, Limit_CoincidentEndsChangeNothing)
{
    auto v = polyline({{0, 0, 0}, {10, 0, 0}, {10, 10, 0}});
    m03DPoint a(5, 0, 0);
    m03DPoint b(5, 0, 5e-7);
    v->limit(a, b);
    expect_points(*v, {{0, 0, 0}, {10, 0, 0}, {10, 10, 0}});
}

TEST(m03DVector, Limit_TwoPointsBecomeAAndB)
{
    auto v = polyline({{0, 0, 0}, {10, 0, 0}});
    m03DPoint a(8, 0, 0);
    m03DPoint b(1, 0, 0);
    v->limit(a, b);
    expect_points(*v, {{8, 0, 0}, {1, 0, 0}});
}

TEST(m03DVector, Limit_FewerThanTwoPointsIsLeftAlone)
{
    auto v = polyline({{3, 3, 3}});
    m03DPoint a(0, 0, 0);
    m03DPoint b(1, 0, 0);
    v->limit(a, b);
    expect_points(*v, {{3, 3, 3}});
    m03DVector empty(0);
    empty.limit(a, b);
    EXPECT_EQ(empty.size(), 0);
}
