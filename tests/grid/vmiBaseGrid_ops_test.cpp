#include "grid/vmiBaseGrid.h"

#include "contour/vmiPolylineGridMap.h"
#include "curves/m03DVector.h"
#include "tests/support/testGeometry.h"
#include "tests/support/testGrid.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <vector>

namespace {

constexpr double E = vmiBaseGrid::empty_z;

// A closed rectangle through lattice points (x0, y0) and (x1, y1), spacing 1.
std::unique_ptr<m03DVector> rectangle(double x0, double y0, double x1, double y1)
{
    return polyline({{x0, y0, 0}, {x1, y0, 0}, {x1, y1, 0}, {x0, y1, 0}, {x0, y0, 0}});
}

}  // namespace

// ---------------------------------------------------------------------------
// Smoothing

TEST(vmiBaseGrid, DoSmoothing_RadiusOneLeavesEveryNodeUnchanged)
{
    vmiBaseGrid g(4, 3, 1.0, 1.0);
    for (int j = 0; j < 3; j++)
        for (int i = 0; i < 4; i++)
            if ((i + j) % 3 != 0)
                g.set_z(i, j, 1.0 + i * 0.7 + j * 1.3);
    vmiBaseGrid before(g);
    g.do_smoothing(1);
    for (int j = 0; j < 3; j++)
        for (int i = 0; i < 4; i++)
            EXPECT_TRUE(g.point(i, j) == before.point(i, j)) << i << "," << j;
}

TEST(vmiBaseGrid, DoSmoothing_SingleValidNodeAmongEmptyKeepsHeight)
{
    vmiBaseGrid g(5, 5, 1.0, 1.0);
    g.set_z(2, 2, 7.25);
    g.do_smoothing(2);
    EXPECT_EQ(g.point(2, 2).z(), 7.25);
    EXPECT_EQ(g.point(1, 1).z(), E);  // empty nodes are not smoothed
}

TEST(vmiBaseGrid, DoSmoothing_MeansReadUnsmoothedHeights)
{
    auto g = flat_grid(3, 1, 0.0);
    g->set_z(1, 0, 3.0);
    g->set_z(2, 0, 6.0);
    g->do_smoothing(2);
    // In place, node 1 would see the smoothed node 0 and give 3.5.
    EXPECT_EQ(row_z(*g, 0), (std::vector<double>{1.5, 3.0, 4.5}));
}

TEST(vmiBaseGrid, DoSmoothing_RadiusBeyondReadBoundLeavesGrid)
{
    // 10^6 nodes x 39 x 39 neighbours is more than max_smoothing_reads.
    vmiBaseGrid g(1000, 1000, 1.0, 1.0);
    g.set_z(10, 10, 5.0);
    g.set_z(11, 10, 1.0);
    ASSERT_GT(1000000LL * 39 * 39, vmiBaseGrid::max_smoothing_reads);
    g.do_smoothing(20);
    EXPECT_EQ(g.point(10, 10).z(), 5.0);
    auto outline = rectangle(0, 0, 999, 999);
    vmiPolylineGridMap map(&g, outline.get());
    g.do_smoothing(20, map);
    EXPECT_EQ(g.point(11, 10).z(), 1.0);
    // Within the bound the pass runs.
    vmiBaseGrid small(100, 100, 1.0, 1.0);
    small.set_z(10, 10, 5.0);
    small.set_z(11, 10, 1.0);
    small.do_smoothing(20);
    EXPECT_EQ(small.point(10, 10).z(), 3.0);
}

TEST(vmiBaseGrid, DoSmoothingMap_InsideNodeWithoutValidInsideNeighbourBecomesZero)
{
    auto g = flat_grid(10, 10, E);
    g->set_z(0, 4, 50.0);  // valid, but outside the outline
    auto outline = rectangle(2, 2, 6, 6);
    vmiPolylineGridMap map(g.get(), outline.get());
    g->do_smoothing(2, map);
    EXPECT_EQ(g->point(4, 4).z(), 0.0);
    EXPECT_EQ(g->point(2, 4).z(), 0.0);
    EXPECT_EQ(g->point(1, 4).z(), E);
    EXPECT_EQ(g->point(0, 4).z(), 50.0);
}

TEST(vmiBaseGrid, DoSmoothingMap_IncludesClosingCrossingNode)
{
    // Row crossings [2, 6]: nodes 2 ... 6 are smoothed, node 6 included,
    // though the modifiers stop at 5.
    auto g = flat_grid(10, 10, E);
    auto outline = rectangle(2, 2, 6, 6);
    vmiPolylineGridMap map(g.get(), outline.get());
    g->do_smoothing(2, map);
    EXPECT_EQ(row_z(*g, 4), (std::vector<double>{E, E, 0, 0, 0, 0, 0, E, E, E}));
    EXPECT_EQ(row_z(*g, 7), (std::vector<double>(10, E)));
}

TEST(vmiBaseGrid, DoSmoothing_SumsEachMeanColumnByColumn)
{
    // As everage_height: i outer, j inner. In row order the two 1s would
    // meet first and survive the addition of 1e16.
    vmiBaseGrid g(2, 2, 1.0, 1.0);
    g.set_z(0, 0, 1.0);
    g.set_z(0, 1, 1e16);
    g.set_z(1, 0, 1.0);
    g.set_z(1, 1, 0.0);
    g.do_smoothing(2);
    EXPECT_EQ(g.point(0, 0).z(), 2.5e15);
}

TEST(vmiBaseGrid, DoSmoothingMap_SumsEachMeanColumnByColumnOverInsideNodesOnly)
{
    // Inside the outline (columns and rows 2 ... 6) the window around (2, 2)
    // holds columns 2, 3 and rows 2, 3 of it; row 1 and column 1 lie outside
    // and their heights of 1e300 do not count.
    auto g = flat_grid(10, 10, 1e300);
    g->set_z(2, 2, 1.0);
    g->set_z(2, 3, 1e16);
    g->set_z(3, 2, 1.0);
    g->set_z(3, 3, 0.0);
    auto outline = rectangle(2, 2, 6, 6);
    vmiPolylineGridMap map(g.get(), outline.get());
    EXPECT_EQ(g->everage_height(map, 2, 2, 2), 2.5e15);
    g->do_smoothing(2, map);
    EXPECT_EQ(g->point(2, 2).z(), 2.5e15);
}

TEST(vmiBaseGrid, DoSmoothing_EveryNodeIsItsMeanToTheBitWhereverItsWindowIs)
{
    // Heights that round differently in every order, empty nodes, windows
    // cut by every border and of every radius: each node, in the pass that
    // sets four at a time, is the mean everage_height gives of the heights
    // before the pass.
    for (int r : {1, 2, 3, 4, 6}) {
        vmiBaseGrid g(23, 17, 1.0, 1.0);
        for (int j = 0; j < 17; j++)
            for (int i = 0; i < 23; i++)
                if ((i * 7 + j * 3) % 5 != 0)
                    g.set_z(i, j, std::sin(i * 0.7 + j * 1.3) * std::pow(10.0, (i + 2 * j) % 17 - 8));
        g.set_z(4, 4, -0.0);
        vmiBaseGrid before(g);
        g.do_smoothing(r);
        for (int j = 0; j < 17; j++)
            for (int i = 0; i < 23; i++) {
                const double z = before.point(i, j).z();
                const double expected = z > vmiBaseGrid::valid_z ? before.everage_height(i, j, r) : z;
                ASSERT_TRUE(std::memcmp(&expected, &g.point(i, j).z(), sizeof(double)) == 0)
                    << "r " << r << " node " << i << "," << j;
            }
    }
}

TEST(vmiBaseGrid, DoSmoothingMap_EveryInsideNodeIsItsMeanToTheBit)
{
    for (int r : {1, 2, 3, 5}) {
        auto g = flat_grid(20, 16, 0.0);
        for (int j = 0; j < 16; j++)
            for (int i = 0; i < 20; i++)
                g->set_z(i, j, (i + j) % 6 == 0 ? E : std::cos(i * 1.1 - j * 0.4) * std::pow(10.0, (3 * i + j) % 13 - 6));
        auto outline = rectangle(3, 2, 17, 13);
        vmiPolylineGridMap map(g.get(), outline.get());
        vmiBaseGrid before(*g);
        g->do_smoothing(r, map);
        for (int j = 0; j < 16; j++)
            for (int i = 0; i < 20; i++) {
                const bool inside = map.is_inside_the_cros_map(i, j);
                if (!inside)
                    continue;
                const double expected = before.everage_height(map, i, j, r);
                ASSERT_TRUE(std::memcmp(&expected, &g->point(i, j).z(), sizeof(double)) == 0)
                    << "r " << r << " node " << i << "," << j;
            }
    }
}

TEST(vmiBaseGrid, DoSmoothing_GridWhoseSizesOutgrowItsArrayIsLeftAlone)
{
    vmiBaseGrid g(3, 3, 1.0, 1.0);
    g.set_z(0, 0, 3.0);
    g.set_z(1, 0, 6.0);
    g.y_size() = 2;  // written through the reference: 6 nodes of an array of 9
    g.do_smoothing(2);
    EXPECT_EQ(g.point(0, 0).z(), 3.0);
    EXPECT_EQ(g.point(1, 0).z(), 6.0);
    g.y_size() = 3;
    g.do_smoothing(2);
    EXPECT_EQ(g.point(0, 0).z(), 4.5);
}

TEST(vmiBaseGrid, EverageHeightMap_CountsOnlyNodesInsideOutline)
{
    auto g = flat_grid(10, 10, 100.0);
    for (int j = 2; j <= 6; j++)
        for (int i = 2; i <= 6; i++)
            g->set_z(i, j, 1.0 + (i == 3 ? 1.0 : 0.0));
    auto outline = rectangle(2, 2, 6, 6);
    vmiPolylineGridMap map(g.get(), outline.get());
    // Around (2, 4): columns 1 ... 3, rows 3 ... 5; column 1 lies outside.
    EXPECT_EQ(g->everage_height(map, 2, 4, 2), 1.5);
    EXPECT_EQ(g->everage_height(2, 4, 2), (3 * 100.0 + 3 * 1.0 + 3 * 2.0) / 9);
    EXPECT_EQ(g->everage_height(map, 0, 0, 2), 0.0);
}

// ---------------------------------------------------------------------------
// Lowering, refinement, adding heights

TEST(vmiBaseGrid, DoHAbzug_LowersEmptyNodesToo)
{
    vmiBaseGrid g(2, 1, 1.0, 1.0);
    g.set_z(1, 0, 5.0);
    g.do_HAbzug(2.0);
    EXPECT_EQ(row_z(g, 0), (std::vector<double>{-10002.0, 3.0}));
}

TEST(vmiBaseGrid, Doubled_CopiesNodesIntoTwoByTwoBlocks)
{
    vmiBaseGrid src(2, 2, 2.0, 4.0);
    src.set_z(0, 0, 1.0);
    src.set_z(1, 0, 2.0);
    src.set_z(0, 1, 3.0);
    src.set_z(1, 1, 4.0);
    std::unique_ptr<vmiBaseGrid> g(src.doubled());
    ASSERT_EQ(g->x_size(), 3);
    ASSERT_EQ(g->y_size(), 3);
    EXPECT_EQ(g->d_x(), 1.0);
    EXPECT_EQ(g->d_y(), 2.0);
    // No midpoints: node (1, 0) is a copy of src(0, 0), x and y included.
    expect_point(g->point(0, 0), 0.0, 0.0, 1.0);
    expect_point(g->point(1, 0), 0.0, 0.0, 1.0);
    expect_point(g->point(2, 0), 2.0, 0.0, 2.0);
    for (int j = 1; j <= 2; j++) {
        expect_point(g->point(0, j), 0.0, 4.0, 3.0);
        expect_point(g->point(1, j), 0.0, 4.0, 3.0);
        expect_point(g->point(2, j), 2.0, 4.0, 4.0);
    }
}

TEST(vmiBaseGrid, Doubled_SingleColumnHoldsZeroPoints)
{
    vmiBaseGrid src(1, 2, 1.0, 1.0);
    src.set_z(0, 0, 5.0);
    src.set_z(0, 1, 6.0);
    std::unique_ptr<vmiBaseGrid> g(src.doubled(src));
    ASSERT_EQ(g->x_size(), 1);
    ASSERT_EQ(g->y_size(), 3);
    for (int j = 0; j < 3; j++)
        expect_point(g->point(0, j), 0.0, 0.0, 0.0);
}

TEST(vmiBaseGrid, Doubled_EmptyGridGivesEmptyGrid)
{
    vmiBaseGrid src(-1, 5, 1.0, 1.0);
    std::unique_ptr<vmiBaseGrid> g(src.doubled());
    ASSERT_NE(g, nullptr);
    EXPECT_EQ(g->points_array(), nullptr);
    EXPECT_EQ(g->x_size(), 0);
}

// The heights of a grid, row by row, with the sign of each zero.
std::vector<double> signed_heights(vmiBaseGrid& g)
{
    std::vector<double> z;
    for (int j = 0; j < g.y_size(); j++)
        for (int i = 0; i < g.x_size(); i++) {
            z.push_back(g.point(i, j).z());
            z.push_back(std::signbit(z.back()) ? 1.0 : 0.0);
        }
    return z;
}

TEST(vmiBaseGrid, MergeDoubled_SameAsDoubledShiftedAndMerged)
{
    // Uneven heights, empty nodes, a -0.0 that meets a +0.0 on the same node
    // (the first to arrive stays) and a shift that is no whole number of nodes.
    vmiBaseGrid src(5, 4, 1.5, 2.5);
    for (int j = 0; j < 4; j++)
        for (int i = 0; i < 5; i++)
            if ((i * 3 + j) % 4 != 0)
                src.set_z(i, j, std::sin(i * 1.7 + j * 0.9) * 3.0);
    src.set_z(1, 1, -0.0);
    src.set_z(2, 1, 0.0);
    const double dx = 3.3, dy = -1.2;
    vmiBaseGrid expected(14, 12, 0.75, 1.25);
    std::unique_ptr<vmiBaseGrid> copy(src.doubled());
    copy->offset(dx, dy);
    expected.merge(*copy);
    vmiBaseGrid merged(14, 12, 0.75, 1.25);
    merged.merge_doubled(src, dx, dy);
    EXPECT_EQ(signed_heights(merged), signed_heights(expected));
}

TEST(vmiBaseGrid, MergeDoubled_PointsWhoseMiddlesAreNotThemselvesGiveTheSameAsDoubled)
{
    // The refined nodes are middles of a node with itself, which round away
    // from it for a subnormal coordinate and overflow for one near the
    // largest double: then the four points of a source node are not one, and
    // every one of them must still be put. Heights that tie with opposite
    // zero signs keep the first to come.
    const double tiny = 4.9406564584124654e-324 * 3;  // a subnormal with its last bit set
    const double huge = 1.5e308;
    vmiBaseGrid src(4, 3, 1.0, 1.0);
    for (int j = 0; j < 3; j++)
        for (int i = 0; i < 4; i++)
            src.point(i, j, m03DPoint(i + tiny * (i + j), j - tiny * i, (i + j) % 2 ? tiny * (j + 1) : -0.0));
    src.point(2, 1, m03DPoint(huge, 1.0, 4.0));
    src.point(3, 2, m03DPoint(3.0, 2.0, huge));
    src.point(1, 2, m03DPoint(1.0, 2.0, 0.0));
    for (const auto& shift : {std::pair{0.0, 0.0}, std::pair{0.25, -0.5}}) {
        vmiBaseGrid expected(9, 7, 0.5, 0.5);
        std::unique_ptr<vmiBaseGrid> copy(src.doubled());
        copy->offset(shift.first, shift.second);
        expected.merge(*copy);
        vmiBaseGrid merged(9, 7, 0.5, 0.5);
        merged.merge_doubled(src, shift.first, shift.second);
        EXPECT_EQ(signed_heights(merged), signed_heights(expected));
    }
}

TEST(vmiBaseGrid, MergeDoubled_SingleColumnMergesZeroPoints)
{
    // doubled() of one column holds (0, 0, 0) everywhere: one node at the
    // shifted origin gets height 0.
    vmiBaseGrid src(1, 3, 1.0, 1.0);
    src.set_z(0, 0, 5.0);
    src.set_z(0, 2, 6.0);
    vmiBaseGrid g(4, 4, 1.0, 1.0);
    g.merge_doubled(src, 2.0, 1.0);
    for (int j = 0; j < 4; j++)
        for (int i = 0; i < 4; i++)
            EXPECT_EQ(g.point(i, j).z(), i == 2 && j == 1 ? 0.0 : E) << i << "," << j;
}

TEST(vmiBaseGrid, MergeDoubled_SourceWhoseRefinementIsBeyondBoundMergesNothing)
{
    // Sizes written through the references: the refinement of 2^22 columns
    // would hold about 2^23 columns by 3 rows, beyond max_nodes, for which
    // doubled() gives an empty grid.
    vmiBaseGrid src(2, 2, 1.0, 1.0);
    src.set_z(0, 0, 7.0);
    vmiBaseGrid g(2, 2, 1.0, 1.0);
    src.x_size() = 1 << 22;
    ASSERT_FALSE(vmiBaseGrid::size_allowed(2LL * src.x_size() - 1, 3));
    g.merge_doubled(src, 0.0, 0.0);
    EXPECT_EQ(g.point(0, 0).z(), E);
    // Back at its own size it merges.
    src.x_size() = 2;
    g.merge_doubled(src, 0.0, 0.0);
    EXPECT_EQ(g.point(0, 0).z(), 7.0);
}

TEST(vmiBaseGrid, Drop_AddsPointHeightsToNodes)
{
    vmiBaseGrid g(3, 3, 1.0, 1.0);
    g.set_z(1, 1, 3.0);
    m03DPoint pts[] = {
        {1.2, 0.9, 2.0},   // onto node (1, 1)
        {2.0, 2.0, 1.0},   // onto an empty node: it still adds
        {0.0, 0.0, E},     // an empty point adds nothing
        {3.0, 0.0, 9.0},   // column 3 lies beyond the grid
        {-2.0, 0.0, 9.0},  // negative index: write dropped
    };
    g.drop(pts, 5);
    expect_point(g.point(1, 1), 1.0, 1.0, 5.0);
    EXPECT_EQ(g.point(2, 2).z(), -9999.0);
    EXPECT_EQ(g.point(0, 0).z(), E);
    expect_point(g.point(-2, 0), 0.0, 0.0, E);
    g.drop(nullptr, 3);
    g.drop(pts, 0);
    EXPECT_EQ(g.point(1, 1).z(), 5.0);
}

TEST(vmiBaseGrid, DropGrid_AddsOtherNodesValidHeights)
{
    vmiBaseGrid g(2, 2, 1.0, 1.0);
    vmiBaseGrid o(2, 2, 1.0, 1.0);
    g.set_z(0, 0, 1.0);
    o.set_z(0, 0, 2.5);
    g.drop(o);
    EXPECT_EQ(g.point(0, 0).z(), 3.5);
    EXPECT_EQ(g.point(1, 1).z(), E);
}

// ---------------------------------------------------------------------------
// Trimming

TEST(vmiBaseGrid, CutBoundary_EmptiesOutsideAndFillsEmptyInside)
{
    auto g = flat_grid(20, 8, 1.0);
    g->set_z(13, 3, E);
    auto outline = rectangle(12, 2, 17, 5);
    vmiPolylineGridMap map(g.get(), outline.get());
    g->cut_boundary(map);
    for (int j : {0, 1, 6, 7})
        EXPECT_EQ(row_z(*g, j), (std::vector<double>(20, E))) << "row " << j;
    std::vector<double> inside(20, E);
    for (int i = 12; i <= 15; i++)
        inside[i] = 1.0;
    // The closing stretch is widened left: columns 16 and 17 are emptied.
    EXPECT_EQ(row_z(*g, 2), inside);
    inside[13] = 0.2;
    EXPECT_EQ(row_z(*g, 3), inside);
}

TEST(vmiBaseGrid, CutBoundary_RowWithOneCrossingEmptied)
{
    // A triangle whose apex (4, 4) touches row 4 once.
    auto g = flat_grid(10, 6, 1.0);
    auto outline = polyline({{0, 0, 0}, {4, 4, 0}, {8, 0, 0}, {0, 0, 0}});
    vmiPolylineGridMap map(g.get(), outline.get());
    ASSERT_NE(map.get_y_intersections(4), nullptr);
    ASSERT_EQ(map.get_y_intersections(4)[0], 1);
    g->cut_boundary(map);
    EXPECT_EQ(row_z(*g, 4), (std::vector<double>(10, E)));
    EXPECT_EQ(g->point(4, 2).z(), 1.0);
}

TEST(vmiBaseGrid, CutBoundaryOutline_SameAsWithMap)
{
    auto a = flat_grid(20, 8, 1.0);
    auto b = flat_grid(20, 8, 1.0);
    auto outline = rectangle(12, 2, 17, 5);
    vmiPolylineGridMap map(a.get(), outline.get());
    a->cut_boundary(map);
    b->cut_boundary(outline.get());
    for (int j = 0; j < 8; j++)
        EXPECT_EQ(row_z(*a, j), row_z(*b, j));
}

TEST(vmiBaseGrid, CutBoundaryOutline_NullOutlineEmptiesGrid)
{
    // No outline, no inside: every row lies outside the (start) extremes.
    auto g = flat_grid(4, 3, 1.0);
    g->cut_boundary(static_cast<m03DVector*>(nullptr));
    for (int j = 0; j < 3; j++)
        EXPECT_EQ(row_z(*g, j), (std::vector<double>(4, E)));
}

TEST(vmiBaseGrid, CutBoundary2_FillsGapsWithLocalMeanAndLeavesSourceAlone)
{
    vmiBaseGrid src(12, 7, 1.0, 1.0);
    for (int j = 2; j <= 4; j++)
        for (int i = 3; i <= 7; i++)
            src.set_z(i, j, i + 10.0 * j);
    vmiBaseGrid before(src);
    auto outline = rectangle(1, 1, 9, 5);
    vmiPolylineGridMap map(&src, outline.get());
    std::unique_ptr<vmiBaseGrid> g(src.cut_boundary2(map));
    // Rows: the gap before column 3 and from column 7 on take the means.
    EXPECT_EQ(g->point(1, 2).z(), src.everage_height(3, 2, 2));
    EXPECT_EQ(g->point(2, 3).z(), src.everage_height(3, 3, 2));
    EXPECT_EQ(g->point(8, 3).z(), src.everage_height(7, 3, 2));
    EXPECT_EQ(g->point(0, 3).z(), E);
    EXPECT_EQ(g->point(9, 3).z(), E);
    // Columns go over the rows: row 1 before the first valid row, row 4 from
    // the last valid row on, row 5 emptied.
    EXPECT_EQ(g->point(5, 1).z(), src.everage_height(5, 2, 2));
    EXPECT_EQ(g->point(5, 4).z(), src.everage_height(5, 4, 2));
    EXPECT_EQ(g->point(5, 5).z(), E);
    EXPECT_EQ(g->point(5, 3).z(), 35.0);
    EXPECT_EQ(row_z(*g, 0), (std::vector<double>(12, E)));
    EXPECT_EQ(row_z(*g, 6), (std::vector<double>(12, E)));
    for (int j = 0; j < 7; j++)
        EXPECT_EQ(row_z(src, j), row_z(before, j));
}

// ---------------------------------------------------------------------------
// Local mean and the gaps of a trimmed row or column

TEST(vmiBaseGrid, EverageHeight_MeanOfValidNodesInNeighbourhood)
{
    vmiBaseGrid g(5, 5, 1.0, 1.0);
    g.set_z(1, 1, 1.0);
    g.set_z(2, 2, 2.0);
    g.set_z(3, 3, 6.0);
    g.set_z(2, 1, vmiBaseGrid::valid_z);  // not valid
    EXPECT_EQ(g.everage_height(2, 2, 2), 3.0);
    EXPECT_EQ(g.everage_height(0, 0, 2), 1.0);   // cut at the border
    EXPECT_EQ(g.everage_height(4, 0, 2), 0.0);   // no valid node
    EXPECT_EQ(g.everage_height(2, 2, 1), 2.0);   // the node alone
    EXPECT_EQ(g.everage_height(2, 9, 2), 0.0);   // empty row range
}

TEST(vmiBaseGrid, EverageHeight_SumsColumnByColumn)
{
    // The sum runs i outer, j inner; in row order the two 1s would meet first
    // and survive the addition of 1e16.
    vmiBaseGrid g(2, 2, 1.0, 1.0);
    g.set_z(0, 0, 1.0);
    g.set_z(0, 1, 1e16);
    g.set_z(1, 0, 1.0);
    g.set_z(1, 1, 0.0);
    // Column order: 1 + 1e16 = 1e16, + 1 = 1e16, + 0 -> 2.5e15.
    // Row order: 1 + 1 = 2, + 1e16 = 1e16 + 2 -> 2.5000000000000005e15.
    EXPECT_EQ(g.everage_height(0, 0, 2), 2.5e15);
}

TEST(vmiBaseGrid, FillRow2_FrontGapExclusiveBackGapInclusive)
{
    // Source row: valid heights at 3 ... 6, the outline crosses at 1 and 8.
    vmiBaseGrid src(10, 1, 1.0, 1.0);
    for (int i = 3; i <= 6; i++)
        src.set_z(i, 0, 2.0 * i);
    vmiBaseGrid dst(src);
    for (int i = 0; i < 10; i++)
        dst.set_z(i, 0, 100.0);
    int crossings[] = {2, 1, 8};
    src.fill_row2(&dst, crossings, 0);
    const double front = (6.0 + 8.0) / 2;  // the valid nodes 3 and 4 around node 3
    const double back = (10.0 + 12.0) / 2;  // the valid nodes 5 and 6 around node 6
    EXPECT_EQ(row_z(dst, 0), (std::vector<double>{E, front, front, 100, 100, 100, back, back, E, E}));
    // Written nodes keep the source's x and y.
    expect_point(dst.point(1, 0), 1.0, 0.0, front);
}

TEST(vmiBaseGrid, FillRow2_NoValidNodeOnlyEmptiesOutside)
{
    vmiBaseGrid src(6, 1, 1.0, 1.0);
    vmiBaseGrid dst(6, 1, 1.0, 1.0);
    for (int i = 0; i < 6; i++)
        dst.set_z(i, 0, 1.0);
    int crossings[] = {3, 1, 2, 4};
    src.fill_row2(&dst, crossings, 0);
    EXPECT_EQ(row_z(dst, 0), (std::vector<double>{E, 1, 1, 1, E, E}));
    src.fill_row2(nullptr, crossings, 0);
    src.fill_row2(&dst, nullptr, 0);
}

TEST(vmiBaseGrid, FillColm2_SameAlongColumnUpToYSize)
{
    vmiBaseGrid src(1, 10, 1.0, 1.0);
    for (int j = 3; j <= 6; j++)
        src.set_z(0, j, 2.0 * j);
    vmiBaseGrid dst(src);
    for (int j = 0; j < 10; j++)
        dst.set_z(0, j, 100.0);
    int crossings[] = {2, 1, 8};
    src.fill_colm2(&dst, crossings, 0);
    double front = src.everage_height(0, 3, 2);
    double back = src.everage_height(0, 6, 2);
    EXPECT_EQ(column_z(dst, 0), (std::vector<double>{E, front, front, 100, 100, 100, back, back, E, E}));
    expect_point(dst.point(0, 2), 0.0, 2.0, front);
}

TEST(vmiBaseGrid, FillRow2_CrossingsBeyondGridAreAbsorbed)
{
    vmiBaseGrid src(4, 1, 1.0, 1.0);
    src.set_z(2, 0, 3.0);
    vmiBaseGrid dst(4, 1, 1.0, 1.0);
    int crossings[] = {2, -50, 5000};
    src.fill_row2(&dst, crossings, 0);
    EXPECT_EQ(row_z(dst, 0), (std::vector<double>{3, 3, 3, 3}));
}

TEST(vmiBaseGrid, FillRow2_NodeAtValidThresholdIsAGapAndTheNextAboveIsNot)
{
    // Nodes 1 ... 4 lie between the crossings 1 and 5. Node 1 at exactly
    // valid_z is no surface (though above empty_z): the gap before node 2
    // takes the mean around node 2, (3 + 5) / 2. Just above valid_z, node 1
    // is the first surface node and no gap is written.
    const double thresholds[] = {vmiBaseGrid::valid_z, std::nextafter(vmiBaseGrid::valid_z, 0.0)};
    const double node_1_after[] = {(3.0 + 5.0) / 2, 0.0};
    for (int k = 0; k < 2; k++) {
        vmiBaseGrid src(7, 1, 1.0, 1.0);
        src.set_z(1, 0, thresholds[k]);
        src.set_z(2, 0, 3.0);
        src.set_z(3, 0, 5.0);
        src.set_z(4, 0, 5.0);
        auto dst = flat_grid(7, 1, 0.0);
        int crossings[] = {2, 1, 5};
        src.fill_row2(dst.get(), crossings, 0);
        EXPECT_EQ(dst->point(1, 0).z(), node_1_after[k]) << k;
    }
}

TEST(vmiBaseGrid, FillColm2_NodeAtValidThresholdIsAGapAndTheNextAboveIsNot)
{
    // As along a row, down column 0.
    const double thresholds[] = {vmiBaseGrid::valid_z, std::nextafter(vmiBaseGrid::valid_z, 0.0)};
    const double node_1_after[] = {(3.0 + 5.0) / 2, 0.0};
    for (int k = 0; k < 2; k++) {
        vmiBaseGrid src(1, 7, 1.0, 1.0);
        src.set_z(0, 1, thresholds[k]);
        src.set_z(0, 2, 3.0);
        src.set_z(0, 3, 5.0);
        src.set_z(0, 4, 5.0);
        auto dst = flat_grid(1, 7, 0.0);
        int crossings[] = {2, 1, 5};
        src.fill_colm2(dst.get(), crossings, 0);
        EXPECT_EQ(dst->point(0, 1).z(), node_1_after[k]) << k;
    }
}

TEST(vmiBaseGrid, Drop_RoundsAPointToItsNodeFromTheOriginNotFromTheFirstNode)
{
    // The nodes sit at (10 + i, 20 + j); a point at (1, 2) still lands on node
    // (1, 2), as if the first node stood at (0, 0).
    auto g = flat_grid(4, 4, 1.0);
    g->offset(10.0, 20.0);
    m03DPoint p(1.0, 2.0, 5.0);
    g->drop(&p, 1);
    EXPECT_EQ(g->point(1, 2).z(), 6.0);
    EXPECT_EQ(g->point(1, 2).x(), 11.0);
}

// ---------------------------------------------------------------------------
// Closing the solid

// Rows 2 ... 5 hold a surface at columns 12 ... 15 after trimming to
// closed_solid_outline().
std::unique_ptr<vmiBaseGrid> closed_solid_grid()
{
    auto grid = flat_grid(20, 8, 1.0);
    for (int j = 2; j <= 5; j++)
        for (int i = 12; i <= 17; i++)
            grid->set_z(i, j, 2.0 + j + 0.25 * i);
    return grid;
}

std::unique_ptr<m03DVector> closed_solid_outline()
{
    return rectangle(12, 2, 17, 5);
}

TEST(vmiBaseGrid, MakeClosedSolid_HighRow_WritesWallsAndFloor)
{
    auto grid = closed_solid_grid();
    auto outline = closed_solid_outline();
    grid->make_closed_solid(outline.get());
    const double lz = 2.0 + 2 + 0.25 * 12, rz = 2.0 + 2 + 0.25 * 15;
    expect_point(grid->point(0, 2), 12.0, 2.0, 0.001);
    expect_point(grid->point(1, 2), 12.0, 2.0, lz);
    expect_point(grid->point(4, 2), 15.0, 2.0, 0.001);
    expect_point(grid->point(5, 2), 12.0, 2.0, 0.001);
    expect_point(grid->point(8, 2), 15.0, 2.0, rz);
    expect_point(grid->point(9, 2), 15.0, 2.0, 0.001);
    EXPECT_EQ(grid->point(2, 2).z(), E);
}

TEST(vmiBaseGrid, MakeClosedSolid_RowWithNodeBelowTestHeight_WallsButNoFloor)
{
    auto grid = closed_solid_grid();
    auto outline = closed_solid_outline();
    grid->set_z(13, 3, 0.005);
    grid->make_closed_solid(outline.get());
    EXPECT_EQ(grid->point(0, 3).z(), 0.001);
    EXPECT_GT(grid->point(1, 3).z(), 0.01);
    EXPECT_GT(grid->point(8, 3).z(), 0.01);
    EXPECT_EQ(grid->point(9, 3).z(), 0.001);
    EXPECT_EQ(grid->point(4, 3).z(), E);
    EXPECT_EQ(grid->point(5, 3).z(), E);
}

TEST(vmiBaseGrid, MakeClosedSolid_LowRightEdge_OnlyLeftWall)
{
    auto grid = closed_solid_grid();
    auto outline = closed_solid_outline();
    grid->set_z(15, 4, 0.0);
    grid->make_closed_solid(outline.get());
    EXPECT_EQ(grid->point(0, 4).z(), 0.001);
    EXPECT_EQ(grid->point(1, 4).z(), 2.0 + 4 + 0.25 * 12);
    for (int i : {4, 5, 8, 9})
        EXPECT_EQ(grid->point(i, 4).z(), E) << i;
}

TEST(vmiBaseGrid, MakeClosedSolid_LeftEdgeAtTestHeight_OnlyRightWall)
{
    auto grid = closed_solid_grid();
    auto outline = closed_solid_outline();
    // 0.01 is not above the test height, yet not below it for the floor test.
    grid->set_z(12, 5, 0.01);
    grid->make_closed_solid(outline.get());
    for (int i : {0, 1, 4, 5})
        EXPECT_EQ(grid->point(i, 5).z(), E) << i;
    expect_point(grid->point(8, 5), 15.0, 5.0, 2.0 + 5 + 0.25 * 15);
    expect_point(grid->point(9, 5), 15.0, 5.0, 0.001);
}

TEST(vmiBaseGrid, MakeClosedSolid_EndCapsTakeRightWallOfFirstAndLastRow)
{
    auto grid = closed_solid_grid();
    auto outline = closed_solid_outline();
    grid->make_closed_solid(outline.get());
    expect_point(grid->point(0, 1), 15.0, 2.0, 0.001);
    expect_point(grid->point(1, 1), 15.0, 2.0, 2.0 + 2 + 0.25 * 15);
    expect_point(grid->point(0, 6), 15.0, 5.0, 0.001);
    expect_point(grid->point(1, 6), 15.0, 5.0, 2.0 + 5 + 0.25 * 15);
    EXPECT_EQ(grid->point(0, 0).z(), E);
    EXPECT_EQ(grid->point(0, 7).z(), E);
}

TEST(vmiBaseGrid, MakeClosedSolid_NullOutlineDoesNothing)
{
    auto grid = closed_solid_grid();
    vmiBaseGrid before(*grid);
    grid->make_closed_solid(static_cast<m03DVector*>(nullptr));
    for (int j = 0; j < 8; j++)
        EXPECT_EQ(row_z(*grid, j), row_z(before, j));
}

TEST(vmiBaseGrid, MakeClosedSolid_ScanNeverLooksBelowColumnTen)
{
    auto grid = closed_solid_grid();
    auto outline = closed_solid_outline();
    // An outline reaching column 2: the surface at 2 ... 9 is not taken as the
    // left edge; the scan starts at column 10.
    auto wide = rectangle(2, 2, 17, 5);
    grid->make_closed_solid(wide.get());
    EXPECT_EQ(grid->point(1, 3).x(), 10.0);
    EXPECT_EQ(grid->point(0, 3).z(), 0.001);
}
