#include "contour/vmiPolylineGridMap.h"

#include "curves/m03DVector.h"
#include "grid/vmiBaseGrid.h"
#include "tests/support/testGeometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <initializer_list>
#include <limits>
#include <memory>
#include <utility>
#include <vector>

// Reaches the map's private members for the tests.
struct vmiPolylineGridMapProbe {
    // Replaces the row lists by the given (row, column) crossings and cleans them up.
    static void set_rows(vmiPolylineGridMap& m, std::vector<std::pair<int, int>> crossings)
    {
        m.row_pairs_ = std::move(crossings);
        m.add(m.row_pairs_, m.row_at_);
    }
    static void set_columns(vmiPolylineGridMap& m, std::vector<std::pair<int, int>> crossings)
    {
        m.column_pairs_ = std::move(crossings);
        m.add(m.column_pairs_, m.column_at_);
    }
    static void check_y_collisions(vmiPolylineGridMap& m) { m.check_y_collisions(); }
    static int check_in_x(vmiPolylineGridMap& m, int i, int j) { return m.check_in_x(i, j); }
    static int check_in_y(vmiPolylineGridMap& m, int j, int i) { return m.check_in_y(j, i); }
    static int pix_dist(int e, const int* list) { return vmiPolylineGridMap::pix_dist(e, list); }
    static int intf(double v) { return vmiPolylineGridMap::intf(v); }
    static int project_count(vmiPolylineGridMap& m, m03DVector* outline)
    {
        std::unique_ptr<m03DVector> lattice = m.project(outline);
        return lattice ? lattice->size() : -1;
    }
};

namespace {

using Probe = vmiPolylineGridMapProbe;

std::vector<int> list_of(const int* list)
{
    if (list == nullptr)
        return {};
    return std::vector<int>(list + 1, list + 1 + list[0]);
}

void expect_no_crossing(vmiPolylineGridMap& m, int x_size, int y_size)
{
    for (int i = 0; i < x_size; i++)
        EXPECT_EQ(m.get_x_intersections(i), nullptr) << "column " << i;
    for (int j = 0; j < y_size; j++)
        EXPECT_EQ(m.get_y_intersections(j), nullptr) << "row " << j;
}

// n points running (0, 0), (999, 999), (0, 999), (999, 0), (0, 0), ...
std::unique_ptr<m03DVector> corner_zigzag(int n)
{
    static const m03DPoint corners[4] = {{0, 0, 0}, {999, 999, 0}, {0, 999, 0}, {999, 0, 0}};
    auto v = std::make_unique<m03DVector>(n);
    for (int k = 0; k < n; k++)
        v->set_point(k, corners[k % 4]);
    return v;
}

// Columns plus rows the segments of v step through, ignoring end-point extras.
long long steps_at_least(m03DVector& v)
{
    long long steps = 0;
    for (int k = 0; k + 1 < v.size(); k++)
        steps += std::llabs(std::llround(v.point(k + 1).x() - v.point(k).x())) +
                 std::llabs(std::llround(v.point(k + 1).y() - v.point(k).y()));
    return steps;
}

void expect_start_extremes(vmiPolylineGridMap& m)
{
    EXPECT_EQ(m.x_min(), 100000);
    EXPECT_EQ(m.x_max(), -100000);
    EXPECT_EQ(m.y_min(), 100000);
    EXPECT_EQ(m.y_max(), -100000);
}

}  // namespace

TEST(vmiPolylineGridMap, Rectangle_EveryRowHoldsBothSides)
{
    // Spacings 2 and 3: the rectangle spans 10 columns and 20 rows of cells.
    vmiBaseGrid grid(15, 25, 2.0, 3.0);
    auto outline = polyline({{0, 0, 0}, {20, 0, 0}, {20, 60, 0}, {0, 60, 0}, {0, 0, 0}});
    vmiPolylineGridMap map(&grid, outline.get());
    for (int j = 0; j <= 20; j++)
        EXPECT_EQ(list_of(map.get_y_intersections(j)), (std::vector<int>{0, 10})) << "row " << j;
    for (int i = 0; i <= 10; i++)
        EXPECT_EQ(list_of(map.get_x_intersections(i)), (std::vector<int>{0, 20})) << "column " << i;
    EXPECT_EQ(map.get_y_intersections(21), nullptr);
    EXPECT_EQ(map.get_x_intersections(11), nullptr);
    EXPECT_TRUE(map.is_inside_the_cros_map(5, 7));
    EXPECT_FALSE(map.is_inside_the_cros_map(11, 7));
    // Both ends of an inside interval count.
    EXPECT_TRUE(map.is_inside_the_cros_map(0, 7));
    EXPECT_TRUE(map.is_inside_the_cros_map(10, 7));
    EXPECT_FALSE(map.is_inside_the_cros_map(5, 22));
    EXPECT_EQ(map.x_min(), 0);
    EXPECT_EQ(map.x_max(), 10);
    EXPECT_EQ(map.y_min(), 0);
    EXPECT_EQ(map.y_max(), 20);
}

TEST(vmiPolylineGridMap, OutlineBeyondGrid_ClampedToBorderColumnsAndRows)
{
    vmiBaseGrid grid(5, 6, 1.0, 1.0);
    auto outline = polyline({{-10, -10, 0}, {100, -10, 0}, {100, 100, 0}, {-10, 100, 0}, {-10, -10, 0}});
    vmiPolylineGridMap map(&grid, outline.get());
    EXPECT_EQ(map.x_min(), 0);
    EXPECT_EQ(map.x_max(), 4);
    EXPECT_EQ(map.y_min(), 0);
    EXPECT_EQ(map.y_max(), 5);
    for (int j = 0; j < 6; j++)
        EXPECT_EQ(list_of(map.get_y_intersections(j)), (std::vector<int>{0, 4})) << "row " << j;
}

TEST(vmiPolylineGridMap, Projection_HalfCellRoundsDownAboveHalfUp)
{
    vmiBaseGrid grid(10, 10, 2.0, 2.0);
    auto half = polyline({{0, 0, 0}, {7.0, 0, 0}});  // 3.5 cells
    vmiPolylineGridMap a(&grid, half.get());
    EXPECT_EQ(a.x_max(), 3);
    auto above = polyline({{0, 0, 0}, {7.02, 0, 0}});  // 3.51 cells
    vmiPolylineGridMap b(&grid, above.get());
    EXPECT_EQ(b.x_max(), 4);
    EXPECT_EQ(list_of(b.get_y_intersections(0)), (std::vector<int>{0, 4}));
}

TEST(vmiPolylineGridMap, CheckYCollisions_ThirdCrossingFarFromNeighboursRemoved)
{
    vmiBaseGrid grid(10, 3, 1.0, 1.0);
    vmiPolylineGridMap map(&grid, nullptr);
    Probe::set_rows(map, {{0, 2}, {0, 8}, {1, 2}, {1, 5}, {1, 8}, {2, 2}, {2, 8}});
    Probe::check_y_collisions(map);
    EXPECT_EQ(list_of(map.get_y_intersections(1)), (std::vector<int>{2, 8}));
    EXPECT_EQ(list_of(map.get_y_intersections(0)), (std::vector<int>{2, 8}));
}

TEST(vmiPolylineGridMap, CheckYCollisions_EqualSumsRemoveEarlierEntry)
{
    vmiBaseGrid grid(10, 3, 1.0, 1.0);
    vmiPolylineGridMap map(&grid, nullptr);
    Probe::set_rows(map, {{0, 5}, {1, 1}, {1, 5}, {1, 9}, {2, 5}});
    Probe::check_y_collisions(map);
    EXPECT_EQ(list_of(map.get_y_intersections(1)), (std::vector<int>{5, 9}));
}

TEST(vmiPolylineGridMap, CheckYCollisions_MissingNeighbourRowFavoursNoEntry)
{
    // Row 0 has no list: only row 2 decides, and 6 lies farthest from it.
    vmiBaseGrid grid(10, 3, 1.0, 1.0);
    vmiPolylineGridMap map(&grid, nullptr);
    Probe::set_rows(map, {{1, 1}, {1, 2}, {1, 6}, {2, 1}, {2, 2}});
    Probe::check_y_collisions(map);
    EXPECT_EQ(list_of(map.get_y_intersections(1)), (std::vector<int>{1, 2}));
}

TEST(vmiPolylineGridMap, CheckYCollisions_FirstAndLastRowsLeftAlone)
{
    vmiBaseGrid grid(10, 3, 1.0, 1.0);
    vmiPolylineGridMap map(&grid, nullptr);
    Probe::set_rows(map, {{0, 1}, {0, 5}, {0, 9}, {1, 1}, {1, 9}, {2, 1}, {2, 4}, {2, 9}});
    Probe::check_y_collisions(map);
    EXPECT_EQ(list_of(map.get_y_intersections(0)), (std::vector<int>{1, 5, 9}));
    EXPECT_EQ(list_of(map.get_y_intersections(2)), (std::vector<int>{1, 4, 9}));
}

TEST(vmiPolylineGridMap, PixDist_NearestValueEmptyListFarMissingListZero)
{
    int list[] = {3, 2, 7, 20};
    EXPECT_EQ(Probe::pix_dist(9, list), 2);
    EXPECT_EQ(Probe::pix_dist(-1, list), 3);
    int empty[] = {0};
    EXPECT_EQ(Probe::pix_dist(9, empty), 10000000);
    EXPECT_EQ(Probe::pix_dist(9, nullptr), 0);
}

TEST(vmiPolylineGridMap, GetIntersections_OutsideGridReturnsNull)
{
    vmiBaseGrid grid(5, 6, 1.0, 1.0);
    auto outline = polyline({{0, 0, 0}, {4, 0, 0}, {4, 5, 0}, {0, 5, 0}, {0, 0, 0}});
    vmiPolylineGridMap map(&grid, outline.get());
    ASSERT_NE(map.get_y_intersections(0), nullptr);
    ASSERT_NE(map.get_y_intersections(5), nullptr);
    EXPECT_EQ(map.get_y_intersections(-1), nullptr);
    EXPECT_EQ(map.get_y_intersections(6), nullptr);
    EXPECT_EQ(map.get_x_intersections(-1), nullptr);
    EXPECT_EQ(map.get_x_intersections(5), nullptr);
    EXPECT_FALSE(map.is_inside_the_cros_map(2, -1));
    EXPECT_FALSE(map.is_inside_the_cros_map(2, 6));
}

TEST(vmiPolylineGridMap, Extremes_StartValuesOnlyWhenNothingProjected)
{
    vmiBaseGrid grid(5, 5, 1.0, 1.0);
    vmiPolylineGridMap none(&grid, nullptr);
    expect_start_extremes(none);
    auto one = polyline({{2, 2, 0}});
    vmiPolylineGridMap single(&grid, one.get());
    expect_start_extremes(single);
    expect_no_crossing(single, 5, 5);
    // Two points are projected even when they fall on one lattice point.
    auto two = polyline({{2, 3, 0}, {2, 3, 0}});
    vmiPolylineGridMap pair(&grid, two.get());
    EXPECT_EQ(pair.x_min(), 2);
    EXPECT_EQ(pair.x_max(), 2);
    EXPECT_EQ(pair.y_min(), 3);
    EXPECT_EQ(pair.y_max(), 3);
    expect_no_crossing(pair, 5, 5);  // a segment of zero length adds nothing
}

TEST(vmiPolylineGridMap, NullGrid_MakesEmptyMap)
{
    auto outline = polyline({{0, 0, 0}, {4, 0, 0}, {4, 5, 0}});
    vmiPolylineGridMap map(nullptr, outline.get());
    EXPECT_EQ(map.get_y_intersections(0), nullptr);
    EXPECT_FALSE(map.is_inside_the_cros_map(0, 0));
    expect_start_extremes(map);
}

TEST(vmiPolylineGridMap, Crossing_ProductBeforeDivision)
{
    // From (0, 0) to (14, 29): at column 7, (7 * 29) / 14 = 14.5 exactly, which
    // rounds down to 14; 7 * (29 / 14) would give 14.500000000000002 and 15.
    vmiBaseGrid grid(15, 30, 1.0, 1.0);
    auto outline = polyline({{0, 0, 0}, {14, 29, 0}});
    vmiPolylineGridMap map(&grid, outline.get());
    EXPECT_EQ(list_of(map.get_x_intersections(7)), (std::vector<int>{14}));
    // The end column is left out: the vertex belongs to the next segment.
    EXPECT_EQ(map.get_x_intersections(14), nullptr);
    EXPECT_EQ(list_of(map.get_x_intersections(0)), (std::vector<int>{0}));
}

TEST(vmiPolylineGridMap, VerticalAndHorizontalSegments_AddBothEnds)
{
    vmiBaseGrid grid(10, 10, 1.0, 1.0);
    auto vertical = polyline({{3, 2, 0}, {3, 7, 0}});
    vmiPolylineGridMap v(&grid, vertical.get());
    EXPECT_EQ(list_of(v.get_x_intersections(3)), (std::vector<int>{2, 7}));
    auto horizontal = polyline({{6, 4, 0}, {1, 4, 0}});
    vmiPolylineGridMap h(&grid, horizontal.get());
    EXPECT_EQ(list_of(h.get_y_intersections(4)), (std::vector<int>{1, 6}));
    // Stepping right to left: columns 6 ... 2, the end column 1 left out.
    EXPECT_EQ(h.get_x_intersections(1), nullptr);
    EXPECT_EQ(list_of(h.get_x_intersections(2)), (std::vector<int>{4}));
}

TEST(vmiPolylineGridMap, Project_StraightRunsAndRepeatsCollapse)
{
    vmiBaseGrid grid(10, 10, 1.0, 1.0);
    vmiPolylineGridMap map(&grid, nullptr);
    auto run = polyline({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}, {3, 0, 0}, {3, 3, 0}, {0, 3, 0}});
    EXPECT_EQ(Probe::project_count(map, run.get()), 4);
    auto repeated = polyline({{0, 0, 0}, {0.2, 0.1, 0}, {5, 5, 0}});
    EXPECT_EQ(Probe::project_count(map, repeated.get()), 2);
    auto one = polyline({{1, 1, 0}});
    EXPECT_EQ(Probe::project_count(map, one.get()), -1);
    EXPECT_EQ(Probe::project_count(map, nullptr), -1);
}

TEST(vmiPolylineGridMap, IsInside_OddLastEntryPairsWithNothing)
{
    vmiBaseGrid grid(10, 3, 1.0, 1.0);
    vmiPolylineGridMap map(&grid, nullptr);
    Probe::set_rows(map, {{0, 1}, {0, 3}, {0, 6}});
    EXPECT_TRUE(map.is_inside_the_cros_map(2, 0));
    EXPECT_FALSE(map.is_inside_the_cros_map(4, 0));
    EXPECT_FALSE(map.is_inside_the_cros_map(6, 0));
    EXPECT_FALSE(map.is_inside_the_cros_map(7, 0));
    EXPECT_FALSE(map.is_inside_the_cros_map(2, 1));  // no list: outside
}

TEST(vmiPolylineGridMap, CheckInX_FindsRowInColumnList)
{
    vmiBaseGrid grid(10, 10, 1.0, 1.0);
    vmiPolylineGridMap map(&grid, nullptr);
    Probe::set_columns(map, {{2, 4}, {2, 7}});
    EXPECT_TRUE(Probe::check_in_x(map, 2, 7));
    EXPECT_FALSE(Probe::check_in_x(map, 2, 5));
    EXPECT_FALSE(Probe::check_in_x(map, 3, 7));
}

TEST(vmiPolylineGridMap, CheckInY_SearchesRowIListNotRowJ)
{
    vmiBaseGrid grid(10, 10, 1.0, 1.0);
    vmiPolylineGridMap map(&grid, nullptr);
    // Row 1 holds 5; row 5 holds 5; row 3 holds 8.
    Probe::set_rows(map, {{1, 5}, {5, 5}, {3, 8}});
    // check_in_y(1, 5): row 1 has a list, then 5 is looked for in row 5.
    EXPECT_TRUE(Probe::check_in_y(map, 1, 5));
    // check_in_y(3, 8): row 3 holds 8, but row 8 has no list: false.
    EXPECT_FALSE(Probe::check_in_y(map, 3, 8));
    // check_in_y(2, 5): row 2 has no list at all.
    EXPECT_FALSE(Probe::check_in_y(map, 2, 5));
}

TEST(vmiPolylineGridMap, Intf_SameRoundingAsGrid)
{
    EXPECT_EQ(Probe::intf(3.5), 3);
    EXPECT_EQ(Probe::intf(3.51), 4);
    EXPECT_EQ(Probe::intf(-2.7), -1);
}

TEST(vmiPolylineGridMap, HostileOutline_NaNAndHugeCoordinatesLandOnBorder)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    vmiBaseGrid grid(8, 8, 1.0, 1.0);
    auto outline = polyline({{nan, nan, 0}, {1e300, -1e300, 0}, {1e300, 1e300, nan}, {nan, 1e300, 0}, {nan, nan, 0}});
    vmiPolylineGridMap map(&grid, outline.get());
    EXPECT_EQ(map.x_min(), 0);
    EXPECT_EQ(map.x_max(), 7);
    EXPECT_EQ(map.y_min(), 0);
    EXPECT_EQ(map.y_max(), 7);
    EXPECT_EQ(list_of(map.get_y_intersections(4)), (std::vector<int>{0, 7}));
}

TEST(vmiPolylineGridMap, HostileOutline_ZeroSpacingDoesNotCrash)
{
    vmiBaseGrid grid(8, 8, 0.0, 0.0);
    auto outline = polyline({{0, 0, 0}, {3, 0, 0}, {3, -3, 0}, {0, 0, 0}});
    vmiPolylineGridMap map(&grid, outline.get());
    EXPECT_GE(map.x_min(), 0);
    EXPECT_LE(map.x_max(), 7);
}

TEST(vmiPolylineGridMap, HostileOutline_MoreStepsThanBoundGivesEmptyMap)
{
    // Corner to corner across a 1000 x 1000 grid: 2000 segments step through
    // about 3 million columns and rows, beyond max_map_steps.
    vmiBaseGrid grid(1000, 1000, 1.0, 1.0);
    std::unique_ptr<m03DVector> zigzag = corner_zigzag(2001);
    ASSERT_GT(steps_at_least(*zigzag), vmiPolylineGridMap::max_map_steps);
    vmiPolylineGridMap map(&grid, zigzag.get());
    expect_no_crossing(map, 1000, 1000);
    expect_start_extremes(map);
}

TEST(vmiPolylineGridMap, HostileOutline_WithinStepBoundIsMapped)
{
    // Half as many segments stay within the bound and are mapped: row 500 is
    // crossed by both diagonals, at 500 and at 999 - 500.
    vmiBaseGrid grid(1000, 1000, 1.0, 1.0);
    std::unique_ptr<m03DVector> zigzag = corner_zigzag(1001);
    ASSERT_LT(steps_at_least(*zigzag) + 2 * 1000, vmiPolylineGridMap::max_map_steps);
    vmiPolylineGridMap map(&grid, zigzag.get());
    EXPECT_EQ(list_of(map.get_y_intersections(500)), (std::vector<int>{499, 500}));
    EXPECT_EQ(map.x_min(), 0);
    EXPECT_EQ(map.x_max(), 999);
}
