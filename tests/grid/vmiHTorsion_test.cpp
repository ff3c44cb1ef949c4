#include "grid/vmiHTorsion.h"

#include "contour/vmiPolylineGridMap.h"
#include "curves/m03DVector.h"
#include "grid/vmiBaseGrid.h"
#include "tests/support/testGeometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <initializer_list>
#include <memory>
#include <utility>

// Reaches the private steps of the torsion.
struct vmiHTorsionProbe {
    static double lines_intersect(vmiHTorsion& t, m03DPoint a0, m03DPoint a1, m03DPoint b0,
                                  m03DPoint b1, m03DPoint& x)
    {
        return t.lines_intersect(a0, a1, b0, b1, x);
    }
    static double height(vmiHTorsion& t, int mode, int i, int j) { return t.height(mode, i, j); }
    static int side_a_open(const vmiHTorsion& t) { return t.side_a_open_; }
    static int side_b_open(const vmiHTorsion& t) { return t.side_b_open_; }
    static const m03DPoint& direction(const vmiHTorsion& t) { return t.direction_; }
    static double axis_length(const vmiHTorsion& t) { return t.axis_length_; }
};

namespace {

using Probe = vmiHTorsionProbe;

constexpr double E = vmiBaseGrid::empty_z;
constexpr int N = 11;           // the test grid is N x N nodes, spacing 1
constexpr double base_z = 1.0;  // every node starts at this height

// Columns 1 ... 9 over every row 0 ... 10: each row is crossed at 1 and 9.
std::unique_ptr<m03DVector> band_outline()
{
    return polyline({{1, 0, 0}, {9, 0, 0}, {9, 10, 0}, {1, 10, 0}, {1, 0, 0}});
}

std::unique_ptr<vmiBaseGrid> flat_grid(double z = base_z)
{
    auto g = std::make_unique<vmiBaseGrid>(N, N, 1.0, 1.0);
    for (int j = 0; j < N; j++)
        for (int i = 0; i < N; i++)
            g->set_z(i, j, z);
    return g;
}

// The torsion of these tests: the axis runs up column 5 from row 0 (height 0)
// to row 10 (height 10), the cross direction is +x, side line A is column 9
// and side line B column 1. A node (i, j) thus has base j, and falls off
// linearly to 0 at column 9 (side A) or column 1 (side B).
struct Geometry {
    m03DPoint A1{9, 0, 0}, A2{9, 10, 0};
    m03DPoint B1{1, 0, 0}, B2{1, 10, 0};
    m03DPoint D1{0, 0, 0}, D2{3, 0, 0};
    m03DPoint axis_start{5, 0, 0}, axis_end{5, 10, 0};
    double value = 10.0;
};

std::unique_ptr<vmiHTorsion> torsion(vmiBaseGrid* g, m03DVector* outline, const Geometry& s)
{
    return std::make_unique<vmiHTorsion>(g, outline, s.A1, s.A2, s.B1, s.B2, s.D1, s.D2,
                                         s.axis_start, s.axis_end, s.value);
}

// Height of the standard geometry at (i, j) with a linear fall-off, by hand:
// the node is |i - 5| away from the axis, and each side line 4 away.
double linear_height(int i, int j)
{
    return j * (1.0 - std::abs(i - 5) / 4.0);
}

void apply(vmiBaseGrid& g, const Geometry& s, int mode)
{
    auto outline = band_outline();
    torsion(&g, outline.get(), s)->build_HTorsion(mode);
}

}  // namespace

// ---------------------------------------------------------------------------
// Construction

TEST(vmiHTorsion, Constructor_DirectionIsUnitAndAxisLengthIsDistance)
{
    auto g = flat_grid();
    auto outline = band_outline();
    Geometry s;
    s.axis_end = m03DPoint(8, 4, 0);  // 3-4-5 triangle from (5, 0)
    auto t = torsion(g.get(), outline.get(), s);
    EXPECT_TRUE(Probe::direction(*t) == m03DPoint(1, 0, 0));
    EXPECT_EQ(Probe::axis_length(*t), 5.0);
}

TEST(vmiHTorsion, Constructor_SideAOpenOnlyBeyondYSizeTimesDy)
{
    // The far edge is y_size * d_y = 11, not the last row's y = 10.
    auto g = flat_grid();
    auto outline = band_outline();
    Geometry s;
    s.A1 = m03DPoint(9, 10.5, 0);
    s.A2 = m03DPoint(9, 10.75, 0);
    EXPECT_EQ(Probe::side_a_open(*torsion(g.get(), outline.get(), s)), 0);
    s.A1 = m03DPoint(9, 11.0, 0);
    s.A2 = m03DPoint(9, 11.5, 0);
    EXPECT_EQ(Probe::side_a_open(*torsion(g.get(), outline.get(), s)), 0);  // must exceed
    s.A1 = m03DPoint(9, 11.25, 0);
    EXPECT_EQ(Probe::side_a_open(*torsion(g.get(), outline.get(), s)), 1);
    s.A2 = m03DPoint(9, 3, 0);
    EXPECT_EQ(Probe::side_a_open(*torsion(g.get(), outline.get(), s)), 0);  // both points
}

TEST(vmiHTorsion, Constructor_SideAFarEdgeScalesWithDy)
{
    vmiBaseGrid g(N, N, 1.0, 2.0);  // far edge 22
    auto outline = band_outline();
    Geometry s;
    s.A1 = m03DPoint(9, 21.5, 0);
    s.A2 = m03DPoint(9, 21.5, 0);
    EXPECT_EQ(Probe::side_a_open(*torsion(&g, outline.get(), s)), 0);
    s.A1 = m03DPoint(9, 22.5, 0);
    s.A2 = m03DPoint(9, 22.5, 0);
    EXPECT_EQ(Probe::side_a_open(*torsion(&g, outline.get(), s)), 1);
}

TEST(vmiHTorsion, Constructor_SideBOpenOnlyWhenBothYAreExactlyMinusOne)
{
    auto g = flat_grid();
    auto outline = band_outline();
    Geometry s;
    s.B1 = m03DPoint(1, -1.0, 0);
    s.B2 = m03DPoint(3, -1.0, 0);
    EXPECT_EQ(Probe::side_b_open(*torsion(g.get(), outline.get(), s)), 1);
    // Below the grid is not enough: the mark is the value -1.0 itself.
    s.B2 = m03DPoint(1, std::nextafter(-1.0, 0.0), 0);
    EXPECT_EQ(Probe::side_b_open(*torsion(g.get(), outline.get(), s)), 0);
    s.B1 = m03DPoint(1, -2.0, 0);
    s.B2 = m03DPoint(3, -2.0, 0);
    EXPECT_EQ(Probe::side_b_open(*torsion(g.get(), outline.get(), s)), 0);
    s.B1 = m03DPoint(1, -1.0, 0);
    s.B2 = m03DPoint(1, 10.0, 0);
    EXPECT_EQ(Probe::side_b_open(*torsion(g.get(), outline.get(), s)), 0);
}

// ---------------------------------------------------------------------------
// Line intersection

TEST(vmiHTorsion, LinesIntersect_ReturnsParameterOnSecondLineAndCarriesZ)
{
    auto g = flat_grid();
    auto outline = band_outline();
    auto t = torsion(g.get(), outline.get(), Geometry{});
    m03DPoint x;
    // The line b runs from (2, 3, 1) by (1, 0, 1) per unit and meets x = 5 at 3.
    double u = Probe::lines_intersect(*t, {5, 0, 0}, {5, 10, 0}, {2, 3, 1}, {3, 3, 2}, x);
    EXPECT_EQ(u, 3.0);
    EXPECT_TRUE(x == m03DPoint(5, 3, 4));
}

TEST(vmiHTorsion, LinesIntersect_KeepsExpandedNumeratorOrder)
{
    // The numerator is summed term by term, d1.y*a0.x - d1.x*a0.y + d1.x*b0.y -
    // d1.y*b0.x, not factored into differences of the points: for these lines
    // the two orders differ in the last bit, and the torsion keeps its own.
    auto g = flat_grid();
    auto outline = band_outline();
    auto t = torsion(g.get(), outline.get(), Geometry{});
    const m03DPoint a0(0.1, 0.7, 0), a1(0.4, 1.9, 0), b0(0.3, 0.2, 0), b1(1.3, 0.25, 0);
    const double d1x = 0.4 - 0.1, d1y = 1.9 - 0.7, d2x = 1.3 - 0.3, d2y = 0.25 - 0.2;
    const double den = d2x * d1y - d2y * d1x;
    double num = d1y * 0.1;
    num -= d1x * 0.7;
    num += d1x * 0.2;
    num -= d1y * 0.3;
    const double expanded = num / den;
    const double factored = (d1y * (0.1 - 0.3) - d1x * (0.7 - 0.2)) / den;
    ASSERT_NE(expanded, factored);
    m03DPoint x;
    const double u = Probe::lines_intersect(*t, a0, a1, b0, b1, x);
    EXPECT_EQ(u, expanded);
    EXPECT_EQ(x.x(), 0.3 + d2x * expanded);
    EXPECT_EQ(x.y(), 0.2 + d2y * expanded);
}

TEST(vmiHTorsion, LinesIntersect_ParallelLinesGiveNonFiniteWithoutCrash)
{
    auto g = flat_grid();
    auto outline = band_outline();
    auto t = torsion(g.get(), outline.get(), Geometry{});
    m03DPoint x;
    double u = Probe::lines_intersect(*t, {0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0}, x);
    EXPECT_FALSE(std::isfinite(u));
    EXPECT_FALSE(std::isfinite(x.x()));
}

// ---------------------------------------------------------------------------
// Height

TEST(vmiHTorsion, Height_NodeOnAxisStartGetsZero)
{
    auto g = flat_grid();
    auto outline = band_outline();
    auto t = torsion(g.get(), outline.get(), Geometry{});
    EXPECT_EQ(Probe::height(*t, 0, 5, 0), 0.0);
    EXPECT_EQ(Probe::height(*t, 1, 5, 0), 0.0);
}

TEST(vmiHTorsion, Height_FootAtAxisEndGetsValueTimesFallOff)
{
    auto g = flat_grid();
    auto outline = band_outline();
    auto t = torsion(g.get(), outline.get(), Geometry{});
    EXPECT_EQ(Probe::height(*t, 0, 5, 10), 10.0);  // on the axis: f = 1
    EXPECT_EQ(Probe::height(*t, 0, 7, 10), 5.0);   // halfway to side A: f = 0.5
    EXPECT_EQ(Probe::height(*t, 0, 2, 10), 2.5);   // one short of side B: f = 0.25
    EXPECT_EQ(Probe::height(*t, 0, 9, 10), 0.0);   // on side A: f = 0
}

TEST(vmiHTorsion, Height_RisesLinearlyAlongTheAxis)
{
    auto g = flat_grid();
    auto outline = band_outline();
    auto t = torsion(g.get(), outline.get(), Geometry{});
    for (int j = 0; j < N; j++)
        EXPECT_EQ(Probe::height(*t, 0, 5, j), j) << j;
}

TEST(vmiHTorsion, Height_SpacingScalesTheNodePosition)
{
    // With d_x = 2 node 3 lies at x = 6, one unit right of the axis at x = 5,
    // and side A at x = 9 is four units away: f = 0.75.
    vmiBaseGrid g(N, N, 2.0, 1.0);
    auto outline = band_outline();
    auto t = torsion(&g, outline.get(), Geometry{});
    EXPECT_EQ(Probe::height(*t, 0, 3, 8), 8 * 0.75);
}

// ---------------------------------------------------------------------------
// Building the torsion

TEST(vmiHTorsion, BuildHTorsion_Mode0AddsLinearFallOffInsideOutline)
{
    auto g = flat_grid();
    apply(*g, Geometry{}, 0);
    for (int j = 0; j < N; j++)
        for (int i = 0; i < N; i++) {
            // Each row is crossed at 1 and 9; nodes 1 ... 8 are twisted.
            const double want = (i >= 1 && i <= 8) ? base_z + linear_height(i, j) : base_z;
            EXPECT_EQ(g->point(i, j).z(), want) << i << "," << j;
        }
    EXPECT_EQ(g->point(7, 4).z(), base_z + 2.0);  // base 4, halfway to side A
    EXPECT_EQ(g->point(3, 8).z(), base_z + 4.0);  // base 8, halfway to side B
}

TEST(vmiHTorsion, BuildHTorsion_NodeOnAxisStartGetsZero)
{
    auto g = flat_grid(3.25);
    apply(*g, Geometry{}, 0);
    EXPECT_EQ(g->point(5, 0).z(), 3.25);
    EXPECT_EQ(g->point(5, 10).z(), 3.25 + 10.0);
}

TEST(vmiHTorsion, BuildHTorsion_NodesKeepTheirXAndY)
{
    auto g = flat_grid();
    apply(*g, Geometry{}, 1);
    EXPECT_EQ(g->point(6, 7).x(), 6.0);
    EXPECT_EQ(g->point(6, 7).y(), 7.0);
}

TEST(vmiHTorsion, BuildHTorsion_Mode1QuarterSineNeverBelowLinear)
{
    auto lin = flat_grid();
    auto sine = flat_grid();
    apply(*lin, Geometry{}, 0);
    apply(*sine, Geometry{}, 1);
    // Halfway to the side line: 4 * sin(pi / 4) = 2 * sqrt(2) against 2.
    EXPECT_NEAR(sine->point(7, 4).z() - base_z, 2.0 * std::sqrt(2.0), 1e-12);
    // A quarter of the way: 4 * sin(3 pi / 8) against 3.
    EXPECT_NEAR(sine->point(6, 4).z() - base_z, 4.0 * 0.92387953251128674, 1e-12);
    EXPECT_EQ(sine->point(5, 4).z(), base_z + 4.0);  // on the axis both give base
    EXPECT_EQ(sine->point(1, 4).z(), base_z);        // on side line B both give 0
    for (int j = 0; j < N; j++)
        for (int i = 0; i < N; i++)
            EXPECT_GE(sine->point(i, j).z(), lin->point(i, j).z()) << i << "," << j;
    EXPECT_GT(sine->point(7, 4).z(), lin->point(7, 4).z());
}

TEST(vmiHTorsion, BuildHTorsion_AnyNonZeroModeIsQuarterSine)
{
    auto one = flat_grid();
    apply(*one, Geometry{}, 1);
    for (int mode : {2, -1, 17}) {
        auto g = flat_grid();
        apply(*g, Geometry{}, mode);
        for (int j = 0; j < N; j++)
            for (int i = 0; i < N; i++)
                EXPECT_EQ(g->point(i, j).z(), one->point(i, j).z())
                    << mode << ": " << i << "," << j;
    }
}

TEST(vmiHTorsion, BuildHTorsion_OpenSideBGetsFullBaseHeight)
{
    Geometry s;
    s.B1 = m03DPoint(1, -1.0, 0);
    s.B2 = m03DPoint(3, -1.0, 0);
    for (int mode : {0, 1}) {
        auto g = flat_grid();
        apply(*g, s, mode);
        for (int j = 0; j < N; j++) {
            for (int i = 1; i < 5; i++)  // side B: unattenuated
                EXPECT_EQ(g->point(i, j).z(), base_z + j) << mode << ": " << i << "," << j;
            // Side A still falls off: halfway, f = 0.5.
            const double f = mode == 0 ? 0.5 : std::sin(std::acos(-1.0) * 0.25);
            EXPECT_EQ(g->point(7, j).z(), base_z + j * f) << mode << ": " << j;
        }
    }
}

TEST(vmiHTorsion, BuildHTorsion_SideBJustAboveMinusOneStillFallsOff)
{
    // B2 one step above -1.0: B is the line x = 1 again, and closed.
    Geometry s;
    s.B1 = m03DPoint(1, -1.0, 0);
    s.B2 = m03DPoint(1, std::nextafter(-1.0, 0.0), 0);
    auto g = flat_grid();
    apply(*g, s, 0);
    EXPECT_EQ(g->point(3, 8).z(), base_z + 4.0);
    EXPECT_EQ(g->point(1, 8).z(), base_z);
}

TEST(vmiHTorsion, BuildHTorsion_OpenSideAGetsFullBaseHeight)
{
    Geometry s;
    s.A1 = m03DPoint(9, 11.25, 0);
    s.A2 = m03DPoint(9, 11.5, 0);
    auto g = flat_grid();
    apply(*g, s, 0);
    for (int i = 5; i <= 8; i++)
        EXPECT_EQ(g->point(i, 6).z(), base_z + 6.0) << i;
    EXPECT_EQ(g->point(3, 6).z(), base_z + 3.0);  // side B still falls off
}

TEST(vmiHTorsion, BuildHTorsion_SideAAtLastRowBeyondIsStillClosed)
{
    // A lies past the last row (y 10.5) but not past y_size * d_y = 11: it is
    // used as a side line, the line x = 9.
    Geometry s;
    s.A1 = m03DPoint(9, 10.5, 0);
    s.A2 = m03DPoint(9, 10.75, 0);
    auto g = flat_grid();
    apply(*g, s, 0);
    EXPECT_EQ(g->point(7, 6).z(), base_z + 3.0);
}

TEST(vmiHTorsion, BuildHTorsion_EmptyAndInvalidNodesStayAsTheyAre)
{
    auto g = flat_grid();
    g->set_z(6, 4, E);
    g->set_z(7, 4, vmiBaseGrid::valid_z);  // not above valid_z
    g->set_z(3, 8, std::nextafter(vmiBaseGrid::valid_z, 0.0));
    apply(*g, Geometry{}, 0);
    EXPECT_EQ(g->point(6, 4).z(), E);
    EXPECT_EQ(g->point(7, 4).z(), vmiBaseGrid::valid_z);
    EXPECT_EQ(g->point(3, 8).z(), std::nextafter(vmiBaseGrid::valid_z, 0.0) + 4.0);
}

TEST(vmiHTorsion, BuildHTorsion_ClosingCrossingNodeIsNotTwisted)
{
    // Rows are crossed at 1 and 9: node 9 closes the stretch and stays.
    Geometry s;
    s.A1 = m03DPoint(10, 0, 0);
    s.A2 = m03DPoint(10, 10, 0);  // so that node 9 would get 0.2 * base
    auto g = flat_grid();
    apply(*g, s, 0);
    EXPECT_EQ(g->point(9, 5).z(), base_z);
    EXPECT_EQ(g->point(8, 5).z(), base_z + 5.0 * 0.4);
}

TEST(vmiHTorsion, BuildHTorsion_RowWithFourCrossingsIsLeftUnchanged)
{
    // A U-shaped outline: rows 5 ... 10 are crossed at 1, 4, 6 and 9.
    auto outline = polyline({{1, 0, 0},
                             {9, 0, 0},
                             {9, 10, 0},
                             {6, 10, 0},
                             {6, 5, 0},
                             {4, 5, 0},
                             {4, 10, 0},
                             {1, 10, 0},
                             {1, 0, 0}});
    auto g = flat_grid();
    vmiPolylineGridMap map(g.get(), outline.get());
    for (int j = 5; j <= 10; j++) {
        const int* c = map.get_y_intersections(j);
        ASSERT_NE(c, nullptr);
        ASSERT_EQ(c[0], 4) << j;
    }
    ASSERT_EQ(map.get_y_intersections(4)[0], 2);
    vmiHTorsion t(g.get(), outline.get(), {9, 0, 0}, {9, 10, 0}, {1, 0, 0}, {1, 10, 0}, {0, 0, 0},
                  {1, 0, 0}, {5, 0, 0}, {5, 10, 0}, 10.0);
    t.build_HTorsion(0);
    for (int j = 5; j <= 10; j++)
        for (int i = 0; i < N; i++)
            EXPECT_EQ(g->point(i, j).z(), base_z) << i << "," << j;
    EXPECT_EQ(g->point(7, 4).z(), base_z + 2.0);  // a plain row below is twisted
}

TEST(vmiHTorsion, BuildHTorsion_RowWithOneCrossingIsLeftUnchanged)
{
    // A diamond: its top and bottom vertices cross rows 10 and 0 once.
    auto outline = polyline({{5, 0, 0}, {10, 5, 0}, {5, 10, 0}, {0, 5, 0}, {5, 0, 0}});
    auto g = flat_grid();
    vmiPolylineGridMap map(g.get(), outline.get());
    ASSERT_EQ(map.get_y_intersections(0)[0], 1);
    ASSERT_EQ(map.get_y_intersections(10)[0], 1);
    Geometry s;
    s.A1 = m03DPoint(11, 0, 0);
    s.A2 = m03DPoint(11, 10, 0);
    auto t = torsion(g.get(), outline.get(), s);
    // Node (5, 10) would rise by 10 if its row were twisted.
    t->build_HTorsion(0);
    for (int i = 0; i < N; i++) {
        EXPECT_EQ(g->point(i, 0).z(), base_z) << i;
        EXPECT_EQ(g->point(i, 10).z(), base_z) << i;
    }
    EXPECT_EQ(g->point(5, 9).z(), base_z + 9.0);
}

TEST(vmiHTorsion, BuildHTorsion_NothingOutsideTheOutlineChanges)
{
    // A small square 3 ... 6 x 3 ... 6: rows 3 ... 6, columns 3 ... 5.
    auto outline = polyline({{3, 3, 0}, {6, 3, 0}, {6, 6, 0}, {3, 6, 0}, {3, 3, 0}});
    auto g = flat_grid();
    torsion(g.get(), outline.get(), Geometry{})->build_HTorsion(0);
    for (int j = 0; j < N; j++)
        for (int i = 0; i < N; i++) {
            const bool inside = j >= 3 && j <= 6 && i >= 3 && i <= 5;
            EXPECT_EQ(g->point(i, j).z(), inside ? base_z + linear_height(i, j) : base_z)
                << i << "," << j;
        }
}

// ---------------------------------------------------------------------------
// Degenerate input: never a crash, non-finite heights as they come

TEST(vmiHTorsion, BuildHTorsion_NullGridDoesNothing)
{
    auto outline = band_outline();
    Geometry s;
    vmiHTorsion t(nullptr, outline.get(), s.A1, s.A2, s.B1, s.B2, s.D1, s.D2, s.axis_start,
                  s.axis_end, s.value);
    t.build_HTorsion(0);
    EXPECT_EQ(Probe::side_a_open(t), 0);
    EXPECT_EQ(Probe::side_b_open(t), 0);
}

TEST(vmiHTorsion, BuildHTorsion_NullOutlineLeavesGridUnchanged)
{
    auto g = flat_grid();
    torsion(g.get(), nullptr, Geometry{})->build_HTorsion(0);
    for (int j = 0; j < N; j++)
        for (int i = 0; i < N; i++)
            EXPECT_EQ(g->point(i, j).z(), base_z);
}

TEST(vmiHTorsion, BuildHTorsion_GridWithoutNodesIsLeftUnchanged)
{
    auto outline = band_outline();
    for (auto [xs, ys] : {std::pair{0, 5}, std::pair{5, 0}, std::pair{0, 0}}) {
        vmiBaseGrid g(xs, ys, 1.0, 1.0);
        torsion(&g, outline.get(), Geometry{})->build_HTorsion(0);
        EXPECT_EQ(g.x_size(), xs);
        EXPECT_EQ(g.y_size(), ys);
        EXPECT_EQ(g.point(0, 0).z(), E);  // the fallback, untouched
    }
}

TEST(vmiHTorsion, BuildHTorsion_EqualCrossPointsGiveNonFiniteHeights)
{
    Geometry s;
    s.D2 = s.D1;  // no cross direction
    auto g = flat_grid();
    g->set_z(4, 4, E);
    apply(*g, s, 0);
    for (int j = 0; j < N; j++)
        for (int i = 1; i <= 8; i++)
            if (!(i == 4 && j == 4)) {
                EXPECT_FALSE(std::isfinite(g->point(i, j).z())) << i << "," << j;
            }
    EXPECT_EQ(g->point(4, 4).z(), E);
    EXPECT_EQ(g->point(0, 4).z(), base_z);
    EXPECT_EQ(g->point(9, 4).z(), base_z);
}

TEST(vmiHTorsion, BuildHTorsion_ZeroAxisLengthGivesNonFiniteHeights)
{
    Geometry s;
    s.axis_end = s.axis_start;
    for (int mode : {0, 1}) {
        auto g = flat_grid();
        apply(*g, s, mode);
        for (int j = 0; j < N; j++)
            for (int i = 1; i <= 8; i++)
                EXPECT_FALSE(std::isfinite(g->point(i, j).z())) << i << "," << j;
        EXPECT_EQ(g->point(10, 3).z(), base_z);
    }
}

TEST(vmiHTorsion, BuildHTorsion_SideLineParallelToCrossDirectionGivesNonFinite)
{
    // Side A along the cross direction: it never meets the cross line.
    Geometry s;
    s.A1 = m03DPoint(0, 10.5, 0);
    s.A2 = m03DPoint(10, 10.5, 0);
    auto g = flat_grid();
    apply(*g, s, 0);
    EXPECT_FALSE(std::isfinite(g->point(7, 4).z()));
    EXPECT_EQ(g->point(3, 4).z(), base_z + linear_height(3, 4));  // side B is sound
}

TEST(vmiHTorsion, BuildHTorsion_SideLineOnTheAxisGivesNonFinite)
{
    // Side A is the axis itself: |Y - X| = 0 for every node.
    Geometry s;
    s.A1 = s.axis_start;
    s.A2 = s.axis_end;
    for (int mode : {0, 1}) {
        auto g = flat_grid();
        apply(*g, s, mode);
        for (int j = 0; j < N; j++)
            for (int i = 5; i <= 8; i++)
                EXPECT_FALSE(std::isfinite(g->point(i, j).z())) << mode << ": " << i << "," << j;
        // Side B is sound: base 4, halfway to column 1.
        if (mode == 0)
            EXPECT_EQ(g->point(3, 4).z(), base_z + 2.0);
        else
            EXPECT_NEAR(g->point(3, 4).z(), base_z + 2.0 * std::sqrt(2.0), 1e-12);
    }
}
