#include "grid/vmiBaseGrid.h"

#include "curves/m03DVector.h"
#include "tests/support/testGeometry.h"
#include "tests/support/testGrid.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <vector>

namespace {

constexpr double E = vmiBaseGrid::empty_z;

void expect_grid_safe_when_empty(vmiBaseGrid& g)
{
    int crossings[] = {2, 1, 3};
    m03DPoint pts[] = {{1.0, 1.0, 5.0}};
    g.fill_row(0, 1.0);
    g.fill_rect_x(0, 5, 1.0);
    g.fill_rect_y(0, 5, 1.0);
    g.fill_row(crossings, 0, E, 0.2);
    g.fill_row1(crossings, 0, 1.0, 1);
    g.fill_row2(&g, crossings, 0);
    g.fill_colm2(&g, crossings, 0);
    g.height_limit(1.0);
    g.offset(1.0, 1.0);
    g.merge(pts, 1);
    g.merge1(pts, 1);
    g.merge(g);
    EXPECT_EQ(g.everage_height(0, 0, 2), 0.0);
    expect_point(g.point(0, 0), 0.0, 0.0, E);
}

}  // namespace

// ---------------------------------------------------------------------------
// Construction and access

TEST(vmiBaseGrid, NewGrid_NodesHoldPositionAndEmptyHeight)
{
    vmiBaseGrid g(3, 2, 2.0, 5.0);
    ASSERT_EQ(g.x_size(), 3);
    ASSERT_EQ(g.y_size(), 2);
    ASSERT_NE(g.points_array(), nullptr);
    expect_point(g.point(2, 1), 4.0, 5.0, E);
    // Row-major by y: node (2, 1) is element 1 * 3 + 2.
    expect_point(g.points_array()[5], 4.0, 5.0, E);
}

TEST(vmiBaseGrid, Box_OfEmptyGridReachesOneSpacingBeyondLastNode)
{
    vmiBaseGrid g(3, 2, 2.0, 5.0);
    giBox3 b = g.box();
    ASSERT_TRUE(b.is_valid());
    EXPECT_EQ(b.min(), giPoint3(0.0, 0.0, E));
    // x_size * d_x = 6, not (x_size - 1) * d_x = 4: kept as designed.
    EXPECT_EQ(b.max(), giPoint3(6.0, 10.0, E));
}

TEST(vmiBaseGrid, Box_SpansOnlyNodesAboveEmptyMarker)
{
    vmiBaseGrid g(4, 4, 1.0, 1.0);
    g.set_z(1, 1, 3.0);
    g.set_z(2, 3, -5.0);
    giBox3 b = g.box();
    EXPECT_EQ(b.min(), giPoint3(1.0, 1.0, -5.0));
    EXPECT_EQ(b.max(), giPoint3(2.0, 3.0, 3.0));
}

TEST(vmiBaseGrid, Box_TakesEveryNodeAboveEmptyMarkerEvenBelowValidThreshold)
{
    // The box counts a node above empty_z, not only above valid_z: a node at
    // valid_z is in it, one at empty_z is not.
    vmiBaseGrid g(4, 4, 1.0, 1.0);
    g.set_z(1, 1, 3.0);
    g.set_z(2, 3, vmiBaseGrid::valid_z);
    g.set_z(3, 0, vmiBaseGrid::empty_z);
    giBox3 b = g.box();
    EXPECT_EQ(b.min(), giPoint3(1.0, 1.0, vmiBaseGrid::valid_z));
    EXPECT_EQ(b.max(), giPoint3(2.0, 3.0, 3.0));
}

TEST(vmiBaseGrid, Box_NodeJustAboveEmptyMarkerCounts)
{
    vmiBaseGrid g(4, 4, 1.0, 1.0);
    const double just_above = std::nextafter(vmiBaseGrid::empty_z, 0.0);
    g.set_z(2, 1, just_above);
    giBox3 b = g.box();
    EXPECT_EQ(b.min(), giPoint3(2.0, 1.0, just_above));
    EXPECT_EQ(b.max(), giPoint3(2.0, 1.0, just_above));
}

TEST(vmiBaseGrid, Merge_RoundsAPointToItsNodeFromTheOriginNotFromTheFirstNode)
{
    // The nodes sit at (10 + i, 20 + j); a point at (1, 2) still lands on node
    // (1, 2), as if the first node stood at (0, 0).
    vmiBaseGrid g(4, 4, 1.0, 1.0);
    g.offset(10.0, 20.0);
    m03DPoint p(1.0, 2.0, 5.0);
    g.merge(&p, 1);
    expect_point(g.point(1, 2), 11.0, 22.0, 5.0);
}

TEST(vmiBaseGrid, Merge1_RoundsAPointToItsNodeFromTheOriginNotFromTheFirstNode)
{
    vmiBaseGrid g(4, 4, 1.0, 1.0);
    g.offset(10.0, 20.0);
    m03DPoint p(1.0, 2.0, 5.0);
    g.merge1(&p, 1);
    expect_point(g.point(1, 2), 11.0, 22.0, 5.0);
    EXPECT_EQ(g.point(2, 2).z(), 5.0);  // an empty neighbour filled too
}

TEST(vmiBaseGrid, Point_OutsideGridReturnsFallback)
{
    vmiBaseGrid g(3, 2, 1.0, 1.0);
    expect_point(g.point(-1, 0), 0.0, 0.0, E);
    expect_point(g.point(3, 0), 0.0, 0.0, E);
    expect_point(g.point(0, -1), 0.0, 0.0, E);
    expect_point(g.point(0, 2), 0.0, 0.0, E);
}

TEST(vmiBaseGrid, Point_SetOutsideGridChangesNothing)
{
    vmiBaseGrid g(3, 2, 1.0, 1.0);
    vmiBaseGrid before(g);
    g.point(3, 0, m03DPoint(7.0, 7.0, 7.0));
    g.point(-1, 1, m03DPoint(7.0, 7.0, 7.0));
    for (int j = 0; j < 2; j++)
        for (int i = 0; i < 3; i++)
            EXPECT_TRUE(g.point(i, j) == before.point(i, j));
    expect_point(g.point(3, 0), 0.0, 0.0, E);
}

TEST(vmiBaseGrid, CopyConstructor_CopiesSizesAndNodes)
{
    vmiBaseGrid g(3, 2, 2.0, 5.0);
    g.set_z(1, 1, 4.5);
    vmiBaseGrid c(g);
    EXPECT_EQ(c.x_size(), 3);
    EXPECT_EQ(c.y_size(), 2);
    EXPECT_EQ(c.d_x(), 2.0);
    EXPECT_EQ(c.d_y(), 5.0);
    EXPECT_NE(c.points_array(), g.points_array());
    expect_point(c.point(1, 1), 2.0, 5.0, 4.5);
    expect_point(c.point(2, 0), 4.0, 0.0, E);
}

TEST(vmiBaseGrid, AdoptingConstructor_UsesArrayWithoutCopy)
{
    auto* pts = new m03DPoint[6];
    pts[5] = m03DPoint(9.0, 8.0, 7.0);
    vmiBaseGrid g(pts, 3, 2, 1.0, 1.0);
    EXPECT_EQ(g.points_array(), pts);
    expect_point(g.point(2, 1), 9.0, 8.0, 7.0);
    expect_point(g.point(0, 0), 0.0, 0.0, 0.0);
}

TEST(vmiBaseGrid, AdoptingConstructor_NullArrayMakesEmptyGrid)
{
    vmiBaseGrid g(nullptr, 3, 2, 1.0, 1.0);
    EXPECT_EQ(g.x_size(), 0);
    EXPECT_EQ(g.y_size(), 0);
    expect_grid_safe_when_empty(g);
}

TEST(vmiBaseGrid, SizingConstructor_BeyondMaxNodesAllocatesNothing)
{
    // 2^12 x 2^12 = 2^24 nodes, past the bound.
    vmiBaseGrid g(1 << 12, 1 << 12, 1.0, 1.0);
    EXPECT_EQ(g.points_array(), nullptr);
    EXPECT_EQ(g.x_size(), 0);
    EXPECT_EQ(g.y_size(), 0);
    EXPECT_EQ(g.d_x(), 1.0);
    expect_grid_safe_when_empty(g);
    EXPECT_FALSE(vmiBaseGrid::size_allowed(1 << 12, 1 << 12));
    EXPECT_TRUE(vmiBaseGrid::size_allowed(1 << 11, 1 << 10));
    EXPECT_FALSE(vmiBaseGrid::size_allowed(1 << 11, (1 << 10) + 1));
}

TEST(vmiBaseGrid, SizingConstructor_OverflowingProductAllocatesNothing)
{
    vmiBaseGrid g(1 << 30, 1 << 30, 1.0, 1.0);
    EXPECT_EQ(g.points_array(), nullptr);
    EXPECT_EQ(g.x_size(), 0);
    EXPECT_FALSE(vmiBaseGrid::size_allowed(1LL << 30, 1LL << 30));
}

TEST(vmiBaseGrid, SizingConstructor_NegativeSizeMakesEmptyGrid)
{
    vmiBaseGrid g(-3, 4, 1.0, 1.0);
    EXPECT_EQ(g.points_array(), nullptr);
    EXPECT_EQ(g.x_size(), 0);
    EXPECT_EQ(g.y_size(), 0);
    expect_grid_safe_when_empty(g);
    vmiBaseGrid copy(g);
    EXPECT_EQ(copy.points_array(), nullptr);
    EXPECT_EQ(copy.x_size(), 0);
}

TEST(vmiBaseGrid, SizeAllowed_BoundsEachSizeOnItsOwn)
{
    // No nodes at all, yet a row of 2^30 would make every row loop spin.
    EXPECT_FALSE(vmiBaseGrid::size_allowed(1LL << 30, 0));
    EXPECT_FALSE(vmiBaseGrid::size_allowed(0, vmiBaseGrid::max_nodes + 1));
    EXPECT_TRUE(vmiBaseGrid::size_allowed(vmiBaseGrid::max_nodes, 1));
    EXPECT_TRUE(vmiBaseGrid::size_allowed(0, 0));
}

TEST(vmiBaseGrid, Point_SizeEnlargedThroughReferenceStaysInsideArray)
{
    vmiBaseGrid g(2, 2, 1.0, 1.0);
    g.x_size() = 1000;
    g.y_size() = 1000;
    expect_point(g.point(999, 999), 0.0, 0.0, E);
    g.point(500, 500, m03DPoint(1.0, 1.0, 1.0));
    expect_point(g.point(500, 500), 0.0, 0.0, E);
    // Row 0 now claims 1000 nodes; only the four the array holds are written.
    g.fill_row(0, 1.0);
    for (int k = 0; k < 4; k++)
        EXPECT_EQ(g.points_array()[k].z(), 1.0);
    g.height_limit(0.5);
    EXPECT_EQ(g.points_array()[3].z(), 0.5);
}

// ---------------------------------------------------------------------------
// Rounding

TEST(vmiBaseGrid, Intf_ExactHalfRoundsDown)
{
    EXPECT_EQ(vmiBaseGrid::intf(2.5), 2);
    EXPECT_EQ(vmiBaseGrid::intf(2.51), 3);
    EXPECT_EQ(vmiBaseGrid::intf(2.0), 2);
}

TEST(vmiBaseGrid, Intf_NegativeValuesStepUpByOne)
{
    // Truncation toward zero, then + 1 for a dropped fraction above a half,
    // whatever the sign: -1.7 gives 0, not -2.
    EXPECT_EQ(vmiBaseGrid::intf(-1.7), 0);
    EXPECT_EQ(vmiBaseGrid::intf(-0.4), 0);
    EXPECT_EQ(vmiBaseGrid::intf(-1.2), -1);
    EXPECT_EQ(vmiBaseGrid::intf(-2.7), -1);
}

TEST(vmiBaseGrid, Intf_NaNAndHugeValuesLandOnBound)
{
    EXPECT_EQ(vmiBaseGrid::intf(std::numeric_limits<double>::quiet_NaN()), -vmiBaseGrid::intf_bound);
    EXPECT_EQ(vmiBaseGrid::intf(1e300), vmiBaseGrid::intf_bound);
    EXPECT_EQ(vmiBaseGrid::intf(-1e300), -vmiBaseGrid::intf_bound);
    EXPECT_EQ(vmiBaseGrid::intf(std::numeric_limits<double>::infinity()), vmiBaseGrid::intf_bound);
}

// ---------------------------------------------------------------------------
// Setters and bulk operations

TEST(vmiBaseGrid, SetZ_KeepsPositionChangesHeight)
{
    vmiBaseGrid g(3, 3, 2.0, 2.0);
    g.set_z(1, 2, 4.0);
    expect_point(g.point(1, 2), 2.0, 4.0, 4.0);
    g.set_z(5, 5, 4.0);
    expect_point(g.point(5, 5), 0.0, 0.0, E);
}

TEST(vmiBaseGrid, SetZIfEmpty_WritesOnlyEmptyNodes)
{
    vmiBaseGrid g(3, 3, 1.0, 1.0);
    g.set_z_if_empty(1, 1, 4.0);
    g.set_z_if_empty(1, 1, 6.0);
    EXPECT_EQ(g.point(1, 1).z(), 4.0);
    g.set_z(2, 2, -10001.0);
    g.set_z_if_empty(2, 2, 1.0);
    EXPECT_EQ(g.point(2, 2).z(), 1.0);
}

TEST(vmiBaseGrid, SetZIfLess_KeepsLargerHeight)
{
    vmiBaseGrid g(3, 3, 1.0, 1.0);
    g.set_z(1, 1, 4.0);
    g.set_z_if_less(1, 1, 3.0);
    EXPECT_EQ(g.point(1, 1).z(), 4.0);
    g.set_z_if_less(1, 1, 5.0);
    EXPECT_EQ(g.point(1, 1).z(), 5.0);
}

TEST(vmiBaseGrid, HeightLimit_CapsHighNodesKeepsLowAndEmpty)
{
    vmiBaseGrid g(3, 1, 1.0, 1.0);
    g.set_z(0, 0, 3.0);
    g.set_z(1, 0, 7.0);
    g.height_limit(5.0);
    EXPECT_EQ(row_z(g, 0), (std::vector<double>{3.0, 5.0, E}));
}

TEST(vmiBaseGrid, Offset_MovesXYKeepsHeight)
{
    vmiBaseGrid g(2, 2, 1.0, 1.0);
    g.set_z(1, 1, 2.0);
    g.offset(10.0, -3.0);
    expect_point(g.point(1, 1), 11.0, -2.0, 2.0);
    expect_point(g.point(0, 0), 10.0, -3.0, E);
}

TEST(vmiBaseGrid, Merge_EmptyPointHasNoEffect)
{
    vmiBaseGrid g(3, 3, 1.0, 1.0);
    m03DPoint p(1.0, 1.0, E);
    g.merge(&p, 1);
    EXPECT_EQ(g.point(1, 1).z(), E);
    // Just above the marker counts.
    m03DPoint q(1.0, 1.0, -9999.0);
    g.merge(&q, 1);
    EXPECT_EQ(g.point(1, 1).z(), -9999.0);
}

TEST(vmiBaseGrid, Merge_LowerPointHasNoEffect)
{
    vmiBaseGrid g(3, 3, 1.0, 1.0);
    g.set_z(1, 1, 5.0);
    m03DPoint p(1.2, 0.9, 2.0);
    g.merge(&p, 1);
    EXPECT_EQ(g.point(1, 1).z(), 5.0);
    m03DPoint q(1.2, 0.9, 6.0);
    g.merge(&q, 1);
    expect_point(g.point(1, 1), 1.0, 1.0, 6.0);
}

TEST(vmiBaseGrid, Merge1_LowerPointReplacesNodeAndFillsEmptyNeighbours)
{
    vmiBaseGrid g(4, 4, 1.0, 1.0);
    g.set_z(1, 1, 5.0);
    g.set_z(2, 2, 9.0);
    m03DPoint p(1.2, 0.9, 2.0);
    g.merge1(&p, 1);
    EXPECT_EQ(g.point(1, 1).z(), 2.0);
    // The eight neighbours: empty ones take 2, the filled one keeps 9.
    EXPECT_EQ(g.point(2, 2).z(), 9.0);
    for (auto [i, j] : {std::pair{0, 0}, {1, 0}, {2, 0}, {0, 1}, {2, 1}, {0, 2}, {1, 2}})
        EXPECT_EQ(g.point(i, j).z(), 2.0) << i << "," << j;
    EXPECT_EQ(g.point(3, 3).z(), E);
}

TEST(vmiBaseGrid, Merge1_LaterPointOverwritesCentreButNotFilledNeighbour)
{
    vmiBaseGrid g(4, 4, 1.0, 1.0);
    m03DPoint pts[] = {{1.0, 1.0, 3.0}, {2.0, 1.0, 4.0}};
    g.merge1(pts, 2);
    EXPECT_EQ(g.point(1, 1).z(), 3.0);  // not empty when the second point comes
    EXPECT_EQ(g.point(2, 1).z(), 4.0);  // centre of the second point
    EXPECT_EQ(g.point(3, 1).z(), 4.0);  // reached first by the second point
    // The corner point lies outside the grid: neighbours there are skipped.
    m03DPoint corner(0.0, 0.0, 8.0);
    g.merge1(&corner, 1);
    EXPECT_EQ(g.point(0, 0).z(), 8.0);
    expect_point(g.point(-1, -1), 0.0, 0.0, E);
}

TEST(vmiBaseGrid, Merge1_IgnoresPointsAtOrBelowMinus1000)
{
    vmiBaseGrid g(3, 3, 1.0, 1.0);
    m03DPoint p(1.0, 1.0, vmiBaseGrid::valid_z);
    g.merge1(&p, 1);
    EXPECT_EQ(g.point(1, 1).z(), E);
    g.merge1(nullptr, 3);
    g.merge1(&p, 0);
}

TEST(vmiBaseGrid, MergeGrid_TakesHigherNodesOfOther)
{
    vmiBaseGrid g(3, 3, 1.0, 1.0);
    vmiBaseGrid o(3, 3, 1.0, 1.0);
    g.set_z(0, 0, 4.0);
    o.set_z(0, 0, 2.0);
    o.set_z(2, 1, 6.0);
    g.merge(o);
    EXPECT_EQ(g.point(0, 0).z(), 4.0);
    EXPECT_EQ(g.point(2, 1).z(), 6.0);
    EXPECT_EQ(g.point(1, 1).z(), E);
}

TEST(vmiBaseGrid, Middle_ReturnsFirstPointForAnySecond)
{
    vmiBaseGrid g(1, 1, 1.0, 1.0);
    m03DPoint a(1.5, -2.25, 3.0);
    expect_point(g.middle(a, m03DPoint(100.0, 200.0, 300.0)), 1.5, -2.25, 3.0);
    expect_point(g.middle(a, m03DPoint(-1.0, 0.0, E)), 1.5, -2.25, 3.0);
}

TEST(vmiBaseGrid, GetXMinMax_RoundsEachPoint)
{
    vmiBaseGrid g(10, 10, 2.0, 4.0);
    m03DVector v(3);
    v.set_point(0, m03DPoint(5.0, 8.0, 0.0));   // 2.5 -> 2 ; 2 -> 2
    v.set_point(1, m03DPoint(13.1, 2.1, 0.0));  // 6.55 -> 7 ; 0.525 -> 1
    v.set_point(2, m03DPoint(-3.4, 30.0, 0.0)); // -1.7 -> 0 ; 7.5 -> 7
    int lo = 0, hi = 0;
    g.get_x_min_max(&v, lo, hi);
    EXPECT_EQ(lo, 0);
    EXPECT_EQ(hi, 7);
    g.get_y_min_max(&v, lo, hi);
    EXPECT_EQ(lo, 1);
    EXPECT_EQ(hi, 7);
}

TEST(vmiBaseGrid, GetMinMax_EmptyVectorLeavesStartValues)
{
    vmiBaseGrid g(10, 10, 1.0, 1.0);
    m03DVector v(0);
    int lo = 0, hi = 0;
    g.get_x_min_max(&v, lo, hi);
    EXPECT_EQ(lo, 100000);
    EXPECT_EQ(hi, -100000);
    g.get_y_min_max(nullptr, lo, hi);
    EXPECT_EQ(lo, 100000);
    EXPECT_EQ(hi, -100000);
}

// ---------------------------------------------------------------------------
// Row and column primitives

TEST(vmiBaseGrid, FillRow_WholeRowTakesHeight)
{
    auto g = flat_grid(4, 3, 1.0);
    g->fill_row(1, 7.0);
    EXPECT_EQ(row_z(*g, 1), (std::vector<double>(4, 7.0)));
    EXPECT_EQ(row_z(*g, 0), (std::vector<double>(4, 1.0)));
    expect_point(g->point(2, 1), 2.0, 1.0, 7.0);
    g->fill_row(3, 7.0);  // outside: nothing
}

TEST(vmiBaseGrid, FillRectX_ClampsAndFillsColumnsOfEveryRow)
{
    auto g = flat_grid(5, 2, 1.0);
    g->fill_rect_x(3, 99, 2.0);
    g->fill_rect_x(-4, 1, 3.0);
    for (int j = 0; j < 2; j++)
        EXPECT_EQ(row_z(*g, j), (std::vector<double>{3.0, 1.0, 1.0, 2.0, 2.0}));
    g->fill_rect_x(4, 2, 9.0);  // a > b: nothing
    EXPECT_EQ(row_z(*g, 0), (std::vector<double>{3.0, 1.0, 1.0, 2.0, 2.0}));
}

TEST(vmiBaseGrid, FillRectY_ClampsAndFillsWholeRows)
{
    auto g = flat_grid(2, 5, 1.0);
    g->fill_rect_y(3, 99, 2.0);
    g->fill_rect_y(-4, 1, 3.0);
    g->fill_rect_y(2, 1, 9.0);  // a > b: nothing
    EXPECT_EQ(column_z(*g, 0), (std::vector<double>{3.0, 1.0, 1.0, 2.0, 2.0}));
    EXPECT_EQ(column_z(*g, 1), (std::vector<double>{3.0, 1.0, 1.0, 2.0, 2.0}));
}

TEST(vmiBaseGrid, FillRowSegment_InsideWidenedRightFillsOnlyEmpty)
{
    auto g = flat_grid(8, 1, E);
    g->set_z(3, 0, 5.0);
    g->set_z(4, 0, vmiBaseGrid::valid_z);  // counts as empty here
    int inside = 1;
    g->fill_row(inside, 0, 2, 4, 0.0, 0.2);
    EXPECT_EQ(inside, 0);
    EXPECT_EQ(row_z(*g, 0), (std::vector<double>{E, E, 0.2, 5.0, 0.2, E, E, E}));
}

TEST(vmiBaseGrid, FillRowSegment_OutsideWidenedLeftUnlessAtZero)
{
    auto g = flat_grid(8, 1, 1.0);
    int inside = 0;
    g->fill_row(inside, 0, 4, 6, 9.0, 0.2);
    EXPECT_EQ(inside, 1);
    EXPECT_EQ(row_z(*g, 0), (std::vector<double>{1, 1, 1, 9, 9, 9, 1, 1}));
    inside = 0;
    g->fill_row(inside, 0, 0, 2, 7.0, 0.2);
    EXPECT_EQ(row_z(*g, 0), (std::vector<double>{7, 7, 1, 9, 9, 9, 1, 1}));
}

TEST(vmiBaseGrid, FillRow_OutsideStretchWidenedLeftOverwritesInside)
{
    vmiBaseGrid g(10, 1, 1.0, 1.0);
    g.set_z(4, 0, 8.0);
    int crossings[] = {2, 3, 6};
    g.fill_row(crossings, 0, -1.0, 0.2);
    // 0...2 outside, 3...6 inside (empty ones to 0.2), then 5...9 outside.
    EXPECT_EQ(row_z(g, 0), (std::vector<double>{-1, -1, -1, 0.2, 8, -1, -1, -1, -1, -1}));
}

TEST(vmiBaseGrid, FillRow_NullOrEmptyListChangesNothing)
{
    auto g = flat_grid(4, 1, 1.0);
    g->fill_row(nullptr, 0, 5.0, 5.0);
    int none[] = {0};
    g->fill_row(none, 0, 5.0, 5.0);
    EXPECT_EQ(row_z(*g, 0), (std::vector<double>(4, 1.0)));
}

TEST(vmiBaseGrid, FillRow1_ModesWriteOnlyInsideIntervals)
{
    int crossings[] = {4, 1, 3, 5, 7};
    auto g = flat_grid(9, 3, 2.0);
    g->set_z(2, 0, 0.5);
    g->fill_row1(crossings, 0, 1.0, 3);  // lowest of node and z
    EXPECT_EQ(row_z(*g, 0), (std::vector<double>{2, 1, 0.5, 2, 2, 1, 1, 2, 2}));
    g->fill_row1(crossings, 1, 4.0, 1);  // set
    EXPECT_EQ(row_z(*g, 1), (std::vector<double>{2, 4, 4, 2, 2, 4, 4, 2, 2}));
    g->fill_row1(crossings, 2, 0.5, 0);  // add
    EXPECT_EQ(row_z(*g, 2), (std::vector<double>{2, 2.5, 2.5, 2, 2, 2.5, 2.5, 2, 2}));
}

TEST(vmiBaseGrid, FillRow1_SingleCrossingChangesNothing)
{
    int crossings[] = {1, 2};
    auto g = flat_grid(4, 1, 2.0);
    g->fill_row1(crossings, 0, 9.0, 1);
    g->fill_row1(nullptr, 0, 9.0, 1);
    EXPECT_EQ(row_z(*g, 0), (std::vector<double>(4, 2.0)));
}
