// m0HalvingPoints: the kept points of halving searches, and the projections
// that use them giving the bits of the plain ones.
#include "curves/m0HalvingPoints.h"
#include "curves/m0BspCurve.h"
#include "tests/support/testGeometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace {

const std::vector<m03DPoint> seven_points = {{0, 0, 0}, {1, 2, 0}, {2, 3, 1}, {3, 1, 2},
                                             {4, -1, 1}, {5, 0, 0}, {6, 2, -1}};

// Query points around and beyond the curve's control polygon, on a lattice.
std::vector<m03DPoint> queries()
{
    std::vector<m03DPoint> q;
    for (double x = -2.0; x <= 8.0; x += 0.37)
        for (double y = -3.0; y <= 5.0; y += 0.41)
            q.emplace_back(x, y, 0.25 * x - 0.1 * y);
    return q;
}

// Each query projected with kept points and without: the same parameter to
// the bit and the same count of evaluations.
void expect_kept_projections_equal_plain(const m0BspCurve& c, int levels)
{
    m0HalvingPoints kept(c, levels);
    for (const m03DPoint& q : queries()) {
        long long plain_made = 0, kept_made = 0;
        const double plain = c.projection(q, &plain_made);
        const double with_kept = c.projection(q, kept, &kept_made);
        ASSERT_TRUE(same_bits(plain, with_kept)) << q.x() << " " << q.y() << " levels " << levels;
        EXPECT_EQ(plain_made, kept_made);
    }
}

}  // namespace

TEST(m0HalvingPoints, Point_GivesTheCurvesBitsFirstAndWhenKept)
{
    m0BspCurve c(points_of(seven_points), 4);
    m0HalvingPoints kept(c, 4);
    // Node 1 at 0.5, node 2 at 0.25, node 7 at 0.875: computed, then kept.
    for (int round = 0; round < 2; ++round) {
        EXPECT_TRUE(same_bits(kept.point(1, 0.5), c.point(0.5)));
        EXPECT_TRUE(same_bits(kept.point(2, 0.25), c.point(0.25)));
        EXPECT_TRUE(same_bits(kept.point(7, 0.875), c.point(0.875)));
    }
}

TEST(m0HalvingPoints, Point_AnotherParameterAtAKeptNodeIsComputedNotTheKeptOne)
{
    m0BspCurve c(points_of(seven_points), 4);
    m0HalvingPoints kept(c, 4);
    const m03DPoint first = kept.point(3, 0.75);
    ASSERT_TRUE(same_bits(first, c.point(0.75)));
    // The same node asked at another parameter gives that parameter's point,
    // and that one is kept from then on.
    EXPECT_TRUE(same_bits(kept.point(3, 0.7), c.point(0.7)));
    EXPECT_TRUE(same_bits(kept.point(3, 0.7), c.point(0.7)));
    EXPECT_TRUE(same_bits(kept.point(3, 0.75), c.point(0.75)));
}

TEST(m0HalvingPoints, Point_SignedZerosAreTwoParameters)
{
    // A line through the origin along -x: the point at -0.0 has x = +0.0 * -1
    // ... whatever its bits, the kept tree must hand back the bits of the
    // parameter asked for, not those of an equal value kept before.
    m0BspCurve* c = make_curve(1, {-1, -1, 1, 1}, {{1, 0, 0}, {-1, 0, 0}});
    m0HalvingPoints kept(*c, 4);
    const m03DPoint plus = kept.point(1, 0.0);
    const m03DPoint minus = kept.point(1, -0.0);
    EXPECT_TRUE(same_bits(plus, c->point(0.0)));
    EXPECT_TRUE(same_bits(minus, c->point(-0.0)));
    delete c;
}

TEST(m0HalvingPoints, Point_NaNParameterIsComputedAndNeverKept)
{
    m0BspCurve c(points_of(seven_points), 4);
    m0HalvingPoints kept(c, 4);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(same_bits(kept.point(1, nan), c.point(nan)));
    // The node is still unknown: a real parameter there is computed.
    EXPECT_TRUE(same_bits(kept.point(1, 0.5), c.point(0.5)));
    EXPECT_TRUE(same_bits(kept.end(0, nan), c.point(nan)));
}

TEST(m0HalvingPoints, Children_StopAtTheKeptLevels)
{
    m0BspCurve c(points_of(seven_points), 4);
    m0HalvingPoints kept(c, 3);  // nodes 1 .. 7
    EXPECT_EQ(kept.lower(1), 2u);
    EXPECT_EQ(kept.upper(1), 3u);
    EXPECT_EQ(kept.lower(3), 6u);
    EXPECT_EQ(kept.upper(3), 7u);
    // Nodes 4 .. 7 are the last kept level: below them nothing is kept.
    EXPECT_EQ(kept.lower(4), 0u);
    EXPECT_EQ(kept.upper(7), 0u);
    EXPECT_EQ(kept.lower(0), 0u);
    // A node past the kept ones is computed each time.
    EXPECT_TRUE(same_bits(kept.point(9, 0.3), c.point(0.3)));
}

TEST(m0HalvingPoints, Levels_AreClampedIntoZeroToMax)
{
    m0BspCurve c(points_of(seven_points), 4);
    m0HalvingPoints none(c, 0);
    EXPECT_EQ(none.lower(1), 0u);
    EXPECT_TRUE(same_bits(none.point(1, 0.5), c.point(0.5)));
    m0HalvingPoints negative(c, -5);
    EXPECT_EQ(negative.upper(1), 0u);
    m0HalvingPoints most(c, 1000);
    const unsigned last_parent = (1u << (m0HalvingPoints::max_levels - 1)) - 1;
    EXPECT_EQ(most.lower(last_parent), 2 * last_parent);
    EXPECT_EQ(most.lower(last_parent + 1), 0u);
}

TEST(m0HalvingPoints, Projection_OpenCurve_SameBitsAsWithoutAtEveryLevelCount)
{
    m0BspCurve c(points_of(seven_points), 4);
    for (int levels : {0, 1, 3, 8, 14, m0HalvingPoints::max_levels})
        expect_kept_projections_equal_plain(c, levels);
}

TEST(m0HalvingPoints, Projection_ExtendedAndClosedCurves_SameBitsAsWithout)
{
    m0BspCurve extended(points_of(seven_points), 4);
    extended.set_extended(1);
    expect_kept_projections_equal_plain(extended, 12);
    // Ends that meet: the two halves are the root's children.
    m0BspCurve loop(points_of({{0, 0, 0}, {4, 0, 0}, {4, 4, 0}, {0, 4, 0}, {-2, 2, 0}, {-2, 0, 0}, {0, 0, 0}}), 4);
    expect_kept_projections_equal_plain(loop, 12);
    m0BspCurve closed(points_of(seven_points), 4);
    closed.set_closed(1);
    expect_kept_projections_equal_plain(closed, 12);
}

TEST(m0HalvingPoints, Projection_SymmetricCurveMeetsTheMiddleHalfAndStaysExact)
{
    // A query on the axis of a symmetric arch is equally near both chords at
    // the first level: the search takes the middle half, which is no node of
    // the tree, and nothing below is kept from there.
    m0BspCurve c(points_of({{-2, 0, 0}, {-1, 2, 0}, {1, 2, 0}, {2, 0, 0}}), 4);
    m03DPoint p0 = c.point(0.0), pm = c.point(0.5), p1 = c.point(1.0);
    ASSERT_EQ(m03DPoint(0.0, -1.0, 0.0).min_dist(p0, pm), m03DPoint(0.0, -1.0, 0.0).min_dist(pm, p1));
    m0HalvingPoints kept(c, 10);
    for (double y = -3.0; y <= 3.0; y += 0.5) {
        const m03DPoint q(0.0, y, 0.0);
        long long a = 0, b = 0;
        EXPECT_TRUE(same_bits(c.projection(q, &a), c.projection(q, kept, &b))) << y;
        EXPECT_EQ(a, b);
    }
}

TEST(m0HalvingPoints, Projection_PointsKeptForAnotherCurveAreNotUsed)
{
    m0BspCurve c(points_of(seven_points), 4);
    m0BspCurve other(points_of({{0, 0, 0}, {1, 5, 0}, {3, 5, 1}, {4, 0, 0}}), 4);
    m0HalvingPoints kept_for_other(other, 12);
    // Fill the other curve's tree first, then project onto c with it.
    for (const m03DPoint& q : queries())
        (void)other.projection(q, kept_for_other);
    for (const m03DPoint& q : queries())
        ASSERT_TRUE(same_bits(c.projection(q), c.projection(q, kept_for_other)));
}
