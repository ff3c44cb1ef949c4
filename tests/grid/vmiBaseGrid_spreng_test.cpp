#include "grid/vmiBaseGrid.h"

#include "contour/vmiPolylineGridMap.h"
#include "curves/m03DVector.h"
#include "curves/m0BspCurve.h"
#include "tests/support/testGeometry.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <initializer_list>
#include <memory>
#include <utility>

namespace {

constexpr double E = vmiBaseGrid::empty_z;

std::unique_ptr<vmiBaseGrid> flat_grid(int x_size, int y_size, double z)
{
    auto g = std::make_unique<vmiBaseGrid>(x_size, y_size, 1.0, 1.0);
    for (int j = 0; j < y_size; j++)
        for (int i = 0; i < x_size; i++)
            g->set_z(i, j, z);
    return g;
}

// A band between rows 4 and 8 over the whole width: every column of an 11-wide
// grid is crossed at 4 and 8.
std::unique_ptr<m03DVector> band_4_8()
{
    return polyline({{0, 4, 0}, {10, 4, 0}, {10, 8, 0}, {0, 8, 0}, {0, 4, 0}});
}

// A line along row 5 that turns back at its end, so that every column 0 ... 10,
// the last (x_max) included, is crossed once at row 5.
std::unique_ptr<m03DVector> line_row_5()
{
    return polyline({{0, 5, 0}, {10, 5, 0}, {9, 7, 0}});
}

// Heights set node by node, so that a changed node cannot hide.
std::unique_ptr<vmiBaseGrid> varied_grid(int x_size, int y_size)
{
    auto g = std::make_unique<vmiBaseGrid>(x_size, y_size, 1.0, 1.0);
    for (int j = 0; j < y_size; j++)
        for (int i = 0; i < x_size; i++)
            g->set_z(i, j, 0.5 + i + 0.25 * j);
    return g;
}

void expect_same_heights(vmiBaseGrid& g, vmiBaseGrid& before)
{
    for (int j = 0; j < before.y_size(); j++)
        for (int i = 0; i < before.x_size(); i++)
            EXPECT_EQ(g.point(i, j).z(), before.point(i, j).z()) << i << "," << j;
}

}  // namespace

// ---------------------------------------------------------------------------
// Spring over a band

TEST(vmiBaseGrid, ProcHSpreng_BandFromZeroToThreeRisesLinearly)
{
    auto g = flat_grid(11, 12, 0.0);
    auto line = band_4_8();
    g->proc_HSpreng(line.get(), 0.0, 3.0);
    for (int i = 0; i < 11; i++) {
        for (int j = 0; j <= 3; j++)
            EXPECT_EQ(g->point(i, j).z(), 0.0) << i << "," << j;
        EXPECT_EQ(g->point(i, 6).z(), 1.5) << i;
        for (int j = 8; j < 12; j++)
            EXPECT_EQ(g->point(i, j).z(), 3.0) << i << "," << j;
    }
}

TEST(vmiBaseGrid, ProcHSpreng_BandAddsZ1BlendThenZ2)
{
    auto g = flat_grid(11, 12, 1.0);
    auto line = band_4_8();
    g->proc_HSpreng(line.get(), 2.0, 6.0);
    // Before the band z1, across it (1 - f) z1 + f z2 with f = (j - 4) / 4, after it z2.
    const double want[12] = {3, 3, 3, 3, 3, 4, 5, 6, 7, 7, 7, 7};
    for (int i = 0; i < 11; i++)
        for (int j = 0; j < 12; j++)
            EXPECT_EQ(g->point(i, j).z(), want[j]) << i << "," << j;
    EXPECT_EQ(g->point(3, 6).x(), 3.0);
    EXPECT_EQ(g->point(3, 6).y(), 6.0);
}

TEST(vmiBaseGrid, ProcHSpreng_BlendAddsTermByTerm)
{
    // z + (1 - f) z1 + f z2 is summed from the left: at f = 0.25 these values
    // give 0.75, where adding the blended lift at once would give one bit less.
    auto g = flat_grid(11, 12, 0.1);
    auto line = band_4_8();
    g->proc_HSpreng(line.get(), 0.1, 2.3);
    ASSERT_NE(0.1 + (0.75 * 0.1 + 0.25 * 2.3), 0.75);
    EXPECT_EQ(g->point(2, 5).z(), 0.75);
}

TEST(vmiBaseGrid, ProcHSpreng_SingleCrossingStepsFromZ1ToZ2)
{
    auto g = flat_grid(11, 12, 0.0);
    auto line = polyline({{0, 5, 0}, {10, 5, 0}});
    g->proc_HSpreng(line.get(), 2.0, 5.0);
    for (int i = 0; i < 10; i++)
        for (int j = 0; j < 12; j++)
            EXPECT_EQ(g->point(i, j).z(), j < 5 ? 2.0 : 5.0) << i << "," << j;
    // The line's last column holds no crossing and is left as it is.
    for (int j = 0; j < 12; j++)
        EXPECT_EQ(g->point(10, j).z(), 0.0) << j;
}

TEST(vmiBaseGrid, ProcHSpreng_ColumnWithThreeCrossingsIsUnchanged)
{
    // Columns 0 ... 3 are crossed at 2, 6 and 9; column 4 at 2 and 6.
    auto line = polyline({{0, 2, 0}, {4, 2, 0}, {4, 6, 0}, {0, 6, 0}, {0, 9, 0}, {4, 9, 0}});
    auto g = flat_grid(11, 12, 0.0);
    vmiPolylineGridMap map(g.get(), line.get());
    for (int i = 0; i <= 3; i++)
        ASSERT_EQ(map.get_x_intersections(i)[0], 3) << i;
    ASSERT_EQ(map.get_x_intersections(4)[0], 2);
    g->proc_HSpreng(line.get(), 1.0, 4.0);
    for (int i = 0; i <= 3; i++)
        for (int j = 0; j < 12; j++)
            EXPECT_EQ(g->point(i, j).z(), 0.0) << i << "," << j;
    EXPECT_EQ(g->point(4, 0).z(), 1.0);
    EXPECT_EQ(g->point(4, 11).z(), 4.0);
    for (int j = 0; j < 12; j++)
        EXPECT_EQ(g->point(7, j).z(), 0.0) << j;  // beyond the line: no list
}

TEST(vmiBaseGrid, ProcHSpreng_EmptyNodeIsLiftedAndStaysEmpty)
{
    auto g = flat_grid(11, 12, 0.0);
    g->set_z(3, 1, E);
    g->set_z(3, 10, E);
    auto line = band_4_8();
    g->proc_HSpreng(line.get(), 2.0, 0.5);
    EXPECT_EQ(g->point(3, 1).z(), -9998.0);
    EXPECT_LE(g->point(3, 1).z(), vmiBaseGrid::valid_z);
    EXPECT_EQ(g->point(3, 10).z(), -9999.5);
}

TEST(vmiBaseGrid, ProcHSpreng_NullLineLeavesGridUnchanged)
{
    auto g = varied_grid(5, 6);
    vmiBaseGrid before(*g);
    g->proc_HSpreng(nullptr, 1.0, 2.0);
    expect_same_heights(*g, before);
}

// ---------------------------------------------------------------------------
// Spring along the length

TEST(vmiBaseGrid, ProcHSprenglinie_FourRowsEvaluateAtQuarterSteps)
{
    // A quadratic piece whose y is t * t: the rows rise by the squares of
    // 0, 0.25, 0.5 and 0.75 (the last row stays short of t = 1).
    auto cp = polyline({{0, 0, 0}, {0.5, 0, 0}, {1, 1, 0}});
    m0BspCurve curve(cp.release(), 3);
    auto g = flat_grid(3, 4, 1.0);
    g->proc_HSprenglinie(&curve);
    const double lift[4] = {0.0, 0.0625, 0.25, 0.5625};
    for (int j = 0; j < 4; j++)
        for (int i = 0; i < 3; i++) {
            EXPECT_DOUBLE_EQ(g->point(i, j).z(), 1.0 + lift[j]) << i << "," << j;
            EXPECT_EQ(g->point(i, j).x(), i);
            EXPECT_EQ(g->point(i, j).y(), j);
        }
}

TEST(vmiBaseGrid, ProcHSprenglinie_EmptyNodesAreLiftedToo)
{
    auto cp = polyline({{0, 2, 0}, {1, 2, 0}});  // y = 2 for every t
    m0BspCurve curve(cp.release(), 2);
    vmiBaseGrid g(2, 3, 1.0, 1.0);
    g.proc_HSprenglinie(&curve);
    for (int j = 0; j < 3; j++)
        for (int i = 0; i < 2; i++)
            EXPECT_EQ(g.point(i, j).z(), E + 2.0) << i << "," << j;
}

TEST(vmiBaseGrid, ProcHSprenglinie_NullCurveLeavesGridUnchanged)
{
    auto g = varied_grid(5, 6);
    vmiBaseGrid before(*g);
    g->proc_HSprenglinie(nullptr);
    expect_same_heights(*g, before);
}

TEST(vmiBaseGrid, ProcHSprenglinie_GridWithoutRowsIsLeftUnchanged)
{
    // No row to divide by: nothing is evaluated or written.
    auto cp = polyline({{0, 2, 0}, {1, 2, 0}});
    m0BspCurve curve(cp.release(), 2);
    for (auto [xs, ys] : {std::pair{3, 0}, std::pair{0, 3}, std::pair{0, 0}}) {
        vmiBaseGrid g(xs, ys, 1.0, 1.0);
        g.proc_HSprenglinie(&curve);
        EXPECT_EQ(g.x_size(), xs);
        EXPECT_EQ(g.y_size(), ys);
        EXPECT_EQ(g.point(0, 0).z(), E);  // the fallback, untouched
    }
}

// ---------------------------------------------------------------------------
// Foot model

TEST(vmiBaseGrid, BuildHFFootMod_WithMinzShiftsBelowAndFlattensFromCrossing)
{
    auto g = flat_grid(11, 12, 2.0);
    auto line = line_row_5();
    g->build_HFFootMod(line.get(), 1.0, 0.25);
    for (int i = 0; i < 10; i++)
        for (int j = 0; j < 12; j++)
            EXPECT_EQ(g->point(i, j).z(), j < 5 ? 2.75 : 1.0) << i << "," << j;
    EXPECT_EQ(g->point(4, 7).x(), 4.0);
    EXPECT_EQ(g->point(4, 7).y(), 7.0);
}

TEST(vmiBaseGrid, BuildHFFootMod_ShiftAddsMinzThenSubtractsHeight)
{
    // z + minz - height from the left: -0.49999999999999994 for these values,
    // where z + (minz - height) would give -0.5.
    auto g = flat_grid(11, 12, 0.1);
    auto line = line_row_5();
    g->build_HFFootMod(line.get(), 0.1, 0.7);
    ASSERT_NE(0.1 + (0.1 - 0.7), -0.49999999999999994);
    EXPECT_EQ(g->point(3, 2).z(), -0.49999999999999994);
}

TEST(vmiBaseGrid, BuildHFFootMod_MinzNotGivenSetsOnlyFromCrossingToHeight)
{
    auto g = varied_grid(11, 12);
    vmiBaseGrid before(*g);
    auto line = line_row_5();
    g->build_HFFootMod(line.get(), -2000.0, 0.75);
    for (int i = 0; i < 10; i++)
        for (int j = 0; j < 12; j++)
            EXPECT_EQ(g->point(i, j).z(), j < 5 ? before.point(i, j).z() : 0.75) << i << "," << j;
}

TEST(vmiBaseGrid, BuildHFFootMod_MinzAtValidZCountsAsGiven)
{
    auto g = flat_grid(11, 12, 2.0);
    auto line = line_row_5();
    g->build_HFFootMod(line.get(), vmiBaseGrid::valid_z, 0.5);
    EXPECT_EQ(g->point(3, 2).z(), 2.0 + vmiBaseGrid::valid_z - 0.5);
    EXPECT_EQ(g->point(3, 7).z(), vmiBaseGrid::valid_z);

    auto h = flat_grid(11, 12, 2.0);
    h->build_HFFootMod(line.get(), std::nextafter(vmiBaseGrid::valid_z, -1e9), 0.5);
    EXPECT_EQ(h->point(3, 2).z(), 2.0);
    EXPECT_EQ(h->point(3, 7).z(), 0.5);
}

TEST(vmiBaseGrid, BuildHFFootMod_LastColumnOfLineIsLeftOut)
{
    auto g = flat_grid(11, 12, 2.0);
    auto line = line_row_5();
    vmiPolylineGridMap map(g.get(), line.get());
    ASSERT_EQ(map.x_min(), 0);
    ASSERT_EQ(map.x_max(), 10);
    ASSERT_EQ(map.get_x_intersections(10)[0], 1);
    ASSERT_EQ(map.get_x_intersections(0)[0], 1);
    g->build_HFFootMod(line.get(), 1.0, 0.25);
    EXPECT_EQ(g->point(0, 7).z(), 1.0);  // x_min is included
    for (int j = 0; j < 12; j++)
        EXPECT_EQ(g->point(10, j).z(), 2.0) << j;
}

TEST(vmiBaseGrid, BuildHFFootMod_ColumnRangeStartsAtXMin)
{
    // The line starts at column 3: columns before it hold no crossing and stay.
    auto g = flat_grid(11, 12, 2.0);
    auto line = polyline({{3, 5, 0}, {10, 5, 0}, {9, 7, 0}});
    g->build_HFFootMod(line.get(), -2000.0, 0.5);
    for (int i = 0; i < 3; i++)
        EXPECT_EQ(g->point(i, 8).z(), 2.0) << i;
    for (int i = 3; i < 10; i++)
        EXPECT_EQ(g->point(i, 8).z(), 0.5) << i;
}

TEST(vmiBaseGrid, BuildHFFootMod_ColumnWithTwoCrossingsIsUnchanged)
{
    auto g = varied_grid(11, 12);
    vmiBaseGrid before(*g);
    auto line = band_4_8();
    g->build_HFFootMod(line.get(), 1.0, 0.25);
    expect_same_heights(*g, before);
}

TEST(vmiBaseGrid, BuildHFFootMod_EmptyNodesAreChanged)
{
    auto g = flat_grid(11, 12, 2.0);
    g->set_z(4, 1, E);
    g->set_z(4, 9, E);
    auto line = line_row_5();
    g->build_HFFootMod(line.get(), 1.0, 0.25);
    EXPECT_EQ(g->point(4, 1).z(), E + 0.75);
    EXPECT_EQ(g->point(4, 9).z(), 1.0);
}

TEST(vmiBaseGrid, BuildHFFootMod_NullLineLeavesGridUnchanged)
{
    auto g = varied_grid(5, 6);
    vmiBaseGrid before(*g);
    g->build_HFFootMod(nullptr, 1.0, 0.25);
    expect_same_heights(*g, before);
}

// ---------------------------------------------------------------------------
// Grids without nodes, or with sizes written beyond what they hold

TEST(vmiBaseGrid, SprengOperations_GridWithoutNodesIsLeftUnchanged)
{
    auto line = line_row_5();
    auto cp = polyline({{0, 2, 0}, {1, 2, 0}});
    m0BspCurve curve(cp.release(), 2);
    for (auto [xs, ys] : {std::pair{4, 0}, std::pair{0, 4}}) {
        vmiBaseGrid g(xs, ys, 1.0, 1.0);
        g.proc_HSpreng(line.get(), 1.0, 2.0);
        g.proc_HSprenglinie(&curve);
        g.build_HFFootMod(line.get(), 1.0, 0.25);
        EXPECT_EQ(g.x_size(), xs);
        EXPECT_EQ(g.y_size(), ys);
        EXPECT_EQ(g.point(0, 0).z(), E);
    }
}

TEST(vmiBaseGrid, SprengOperations_SizesBeyondMaxNodesLeaveGridUnchanged)
{
    // Sizes written through the references, far beyond the nodes held: the
    // loops would run about 2^62 times; the operations return at once instead.
    auto g = varied_grid(5, 6);
    vmiBaseGrid before(*g);
    auto line = line_row_5();
    auto cp = polyline({{0, 2, 0}, {1, 2, 0}});
    m0BspCurve curve(cp.release(), 2);
    g->x_size() = INT_MAX;
    g->y_size() = INT_MAX;
    g->proc_HSpreng(line.get(), 1.0, 2.0);
    g->proc_HSprenglinie(&curve);
    g->build_HFFootMod(line.get(), 1.0, 0.25);
    g->x_size() = 5;
    g->y_size() = 6;
    expect_same_heights(*g, before);
}
