#include "grid/vmiBaseGrid.h"

#include "contour/vmiPolylineGridMap.h"
#include "curves/m03DVector.h"
#include "tests/support/testGeometry.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
#include <memory>

namespace {

constexpr int grid_n = 16;

// The pad's outline: a closed rectangle through lattice points, columns 2 ... 12
// and rows 3 ... 13. Its map crosses rows 3 ... 13 at columns 2 and 12.
std::unique_ptr<m03DVector> pad_outline()
{
    return polyline({{2, 3, 0}, {12, 3, 0}, {12, 13, 0}, {2, 13, 0}, {2, 3, 0}});
}

double uneven(int i, int j)
{
    return ((i * 7 + j * 3) % 5) * 0.4;
}

std::unique_ptr<vmiBaseGrid> grid_of(double (*z)(int, int))
{
    auto g = std::make_unique<vmiBaseGrid>(grid_n, grid_n, 1.0, 1.0);
    for (int j = 0; j < grid_n; j++)
        for (int i = 0; i < grid_n; i++)
            g->set_z(i, j, z(i, j));
    return g;
}

std::unique_ptr<vmiBaseGrid> flat_grid(double z)
{
    auto g = std::make_unique<vmiBaseGrid>(grid_n, grid_n, 1.0, 1.0);
    for (int j = 0; j < grid_n; j++)
        for (int i = 0; i < grid_n; i++)
            g->set_z(i, j, z);
    return g;
}

// What the pad writes by hand: rows 3 ... 12 (the last map row, 13, is not
// visited), columns 2 ... 11 (the closing crossing stays), then one smoothing
// pass of radius r over the outline.
void expected_pad(vmiBaseGrid& g, double z, int mode, int r)
{
    for (int j = 3; j <= 12; j++)
        for (int i = 2; i <= 11; i++) {
            const double zn = g.point(i, j).z();
            if (mode == 3)
                g.set_z(i, j, std::min(zn, z));
            else if (mode == 1)
                g.set_z(i, j, z);
            else
                g.set_z(i, j, zn + z);
        }
    auto outline = pad_outline();
    vmiPolylineGridMap map(&g, outline.get());
    g.do_smoothing(r, map);
}

void expect_same_grid(vmiBaseGrid& a, vmiBaseGrid& b)
{
    for (int j = 0; j < grid_n; j++)
        for (int i = 0; i < grid_n; i++)
            ASSERT_TRUE(a.point(i, j) == b.point(i, j)) << i << "," << j;
}

bool same_grid(vmiBaseGrid& a, vmiBaseGrid& b)
{
    for (int j = 0; j < grid_n; j++)
        for (int i = 0; i < grid_n; i++)
            if (!(a.point(i, j) == b.point(i, j)))
                return false;
    return true;
}

// build_pelotte on the uneven grid against the hand-made pad of radius r, and
// not against the other radii.
void expect_pad_smoothed_with(double z, int mode, int smooth, int r)
{
    auto g = grid_of(uneven);
    auto outline = pad_outline();
    g->build_pelotte(outline.get(), z, mode, smooth);
    for (int radius : {2, 3, 4, 5}) {
        auto expected = grid_of(uneven);
        expected_pad(*expected, z, mode, radius);
        if (radius == r)
            expect_same_grid(*g, *expected);
        else
            EXPECT_FALSE(same_grid(*g, *expected)) << "radius " << radius;
    }
}

}  // namespace

TEST(vmiBaseGrid, BuildPelotte_FlatPadOnFlatGridRisesByExactlyZInside)
{
    auto g = flat_grid(1.0);
    auto outline = pad_outline();
    g->build_pelotte(outline.get(), 2.0, 0, 0);
    // Nodes whose 3 x 3 neighbourhood lies in the raised stretch stay raised
    // through the smoothing; nodes outside the outline are not touched.
    for (int j = 4; j <= 11; j++)
        for (int i = 3; i <= 10; i++)
            EXPECT_EQ(g->point(i, j).z(), 3.0) << i << "," << j;
    for (int j = 0; j < grid_n; j++)
        for (int i = 0; i < grid_n; i++)
            if (i < 2 || i > 12 || j < 3 || j > 13) {
                EXPECT_EQ(g->point(i, j).z(), 1.0) << i << "," << j;
            }
}

TEST(vmiBaseGrid, BuildPelotte_LastMapRowIsNotVisited)
{
    // Row 13 keeps 1.0 and is smoothed with row 12 only (row 14 lies outside):
    // (3 x 3.0 + 3 x 1.0) / 6 = 2.0. Row 3, the first, is raised: 3.0 with row 4.
    auto g = flat_grid(1.0);
    auto outline = pad_outline();
    g->build_pelotte(outline.get(), 2.0, 0, 0);
    EXPECT_EQ(g->point(5, 13).z(), 2.0);
    EXPECT_EQ(g->point(5, 3).z(), 3.0);
    auto expected = flat_grid(1.0);
    expected_pad(*expected, 2.0, 0, 2);
    expect_same_grid(*g, *expected);
}

TEST(vmiBaseGrid, BuildPelotte_Mode2AddsAndStillSmoothsWithRadiusTwo)
{
    // Mode 2 is not a maximum here: every mode but 1 and 3 adds.
    auto g = flat_grid(1.0);
    auto outline = pad_outline();
    g->build_pelotte(outline.get(), 2.0, 2, 0);
    EXPECT_EQ(g->point(6, 7).z(), 3.0);
    expect_pad_smoothed_with(2.0, 2, 0, 2);
}

TEST(vmiBaseGrid, BuildPelotte_Mode3KeepsTheSmaller)
{
    auto g = flat_grid(5.0);
    auto outline = pad_outline();
    g->build_pelotte(outline.get(), 2.0, 3, 0);
    EXPECT_EQ(g->point(6, 7).z(), 2.0);
    EXPECT_EQ(g->point(14, 7).z(), 5.0);
    expect_pad_smoothed_with(0.9, 3, 0, 2);
}

TEST(vmiBaseGrid, BuildPelotte_Mode1ReplacesAndSmoothsWithRadiusFour)
{
    auto g = flat_grid(5.0);
    auto outline = pad_outline();
    g->build_pelotte(outline.get(), 2.0, 1, 1);
    EXPECT_EQ(g->point(7, 8).z(), 2.0);
    expect_pad_smoothed_with(2.0, 1, 1, 4);
    expect_pad_smoothed_with(2.0, 1, 0, 4);
    expect_pad_smoothed_with(2.0, 1, -1, 4);
}

TEST(vmiBaseGrid, BuildPelotte_SmoothAboveOneIsTheRadius)
{
    expect_pad_smoothed_with(2.0, 0, 3, 3);
    expect_pad_smoothed_with(2.0, 1, 3, 3);
    expect_pad_smoothed_with(2.0, 3, 5, 5);
    expect_pad_smoothed_with(2.0, 0, 2, 2);
    expect_pad_smoothed_with(2.0, 1, 2, 2);
}

TEST(vmiBaseGrid, BuildPelotte_SmoothOneOrBelowGivesRadiusTwoOutsideMode1)
{
    for (int smooth : {1, 0, -1, -7})
        for (int mode : {0, 2, 3})
            expect_pad_smoothed_with(2.0, mode, smooth, 2);
}

TEST(vmiBaseGrid, BuildPelotte_GridWithoutColumnsOrRowsLeftUnchanged)
{
    for (bool columns : {true, false}) {
        auto g = grid_of(uneven);
        (columns ? g->x_size() : g->y_size()) = 0;
        auto outline = pad_outline();
        g->build_pelotte(outline.get(), 2.0, 1, 3);
        (columns ? g->x_size() : g->y_size()) = grid_n;
        auto before = grid_of(uneven);
        expect_same_grid(*g, *before);
    }
    vmiBaseGrid empty(0, 0, 1.0, 1.0);
    auto outline = pad_outline();
    empty.build_pelotte(outline.get(), 2.0, 1, 3);
    EXPECT_EQ(empty.x_size(), 0);
    EXPECT_EQ(empty.y_size(), 0);
}

TEST(vmiBaseGrid, BuildPelotte_NoOutlineLeavesGridUnchanged)
{
    auto before = grid_of(uneven);
    auto g = grid_of(uneven);
    g->build_pelotte(nullptr, 2.0, 1, 3);
    expect_same_grid(*g, *before);
    auto one = polyline({{5, 5, 0}});
    g->build_pelotte(one.get(), 2.0, 1, 3);
    expect_same_grid(*g, *before);
}
