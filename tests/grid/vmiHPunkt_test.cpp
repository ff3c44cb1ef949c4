#include "grid/vmiHPunkt.h"

#include "curves/m03DVector.h"
#include "curves/m0BspCurve.h"
#include "grid/vmiBaseGrid.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <memory>

// Reaches the point's private steps for the tests.
struct vmiHPunktProbe {
    static double height(vmiHPunkt& p, int i, int j) { return p.height(i, j); }
    static double height(vmiHPunkt& p, m0BspCurve* profile, double d) { return p.height(profile, d); }
    static double x_y_dist(vmiHPunkt& p, m0BspCurve* curve, double t) { return p.x_y_dist(curve, t); }
    static const m03DPoint& axis_1(vmiHPunkt& p) { return p.axis_1_; }
    static const m03DPoint& axis_2(vmiHPunkt& p) { return p.axis_2_; }
    static m0BspCurve* profile_1(vmiHPunkt& p) { return p.profile_1_.get(); }
    static m0BspCurve* profile_2(vmiHPunkt& p) { return p.profile_2_.get(); }
    static double r1(vmiHPunkt& p) { return p.r1_; }
    static double r2(vmiHPunkt& p) { return p.r2_; }
};

namespace {

using Probe = vmiHPunktProbe;
using Five = std::array<double, 5>;
constexpr double E = vmiBaseGrid::empty_z;

// The section's values of one point; make() hands over fresh copies of the
// four arrays, as the section reader does.
struct PointData {
    double alpha = 0.0;
    double x = 15.0;
    double y = 10.0;
    Five xm1 = {0.0, 1.0, 2.0, 3.0, 4.0};
    Five ym1 = {4.0, 3.0, 2.0, 1.0, 0.0};
    Five xm2 = {0.0, 2.0, 4.0, 6.0, 8.0};
    Five ym2 = {1.0, 1.0, 1.0, 1.0, 1.0};

    static double* copy(const Five& v) { return new double[5]{v[0], v[1], v[2], v[3], v[4]}; }
    std::unique_ptr<vmiHPunkt> make(vmiBaseGrid* g) const
    {
        return std::make_unique<vmiHPunkt>(g, alpha, x, y, copy(xm1), copy(ym1), copy(xm2), copy(ym2));
    }
};

// A 30 x 20 grid of spacing 1, every node at z.
std::unique_ptr<vmiBaseGrid> grid(double z = E)
{
    auto g = std::make_unique<vmiBaseGrid>(30, 20, 1.0, 1.0);
    for (int j = 0; j < 20; j++)
        for (int i = 0; i < 30; i++)
            g->set_z(i, j, z);
    return g;
}

bool same_grid(vmiBaseGrid& a, vmiBaseGrid& b)
{
    for (int j = 0; j < a.y_size(); j++)
        for (int i = 0; i < a.x_size(); i++)
            if (!(a.point(i, j) == b.point(i, j)))
                return false;
    return a.x_size() == b.x_size() && a.y_size() == b.y_size();
}

// A profile curve over five (x, y) control values.
std::unique_ptr<m0BspCurve> profile(const Five& xs, const Five& ys)
{
    auto* pts = new m03DVector(5);
    for (int q = 0; q < 5; q++)
        pts->set_point(q, m03DPoint(xs[q], ys[q], 0.0));
    return std::make_unique<m0BspCurve>(pts, 5);
}

}  // namespace

// ---------------------------------------------------------------------------
// Curves

TEST(vmiHPunkt, InitCurves_AlphaZeroPutsTheFirstAxisAlongX)
{
    auto g = grid();
    PointData d;
    auto p = d.make(g.get());
    // a = 2 pi: (cos a, sin a) is (1, 0) up to the rounding of 2 pi.
    EXPECT_EQ(Probe::axis_1(*p).x(), 1.0);
    EXPECT_NEAR(Probe::axis_1(*p).y(), 0.0, 1e-15);
    EXPECT_NE(Probe::axis_1(*p).y(), 0.0);
    EXPECT_NEAR(Probe::axis_2(*p).x(), 0.0, 1e-15);
    EXPECT_EQ(Probe::axis_2(*p).y(), 1.0);
    EXPECT_EQ(Probe::r1(*p), 4.0);
    EXPECT_EQ(Probe::r2(*p), 8.0);
    // So r1 runs along x and r2 along y: 3 along x and 6 along y are both at
    // three quarters of the way to the ellipse, profile-1 distance 3.
    EXPECT_EQ(Probe::height(*p, 18, 10), Probe::height(*p, 15, 16));
    EXPECT_NE(Probe::height(*p, 18, 10), Probe::height(*p, 15, 13));
}

TEST(vmiHPunkt, InitCurves_AlphaIsTurnedTheOtherWay)
{
    auto g = grid();
    PointData d;
    d.alpha = std::acos(-1.0) / 2;  // a = 3 pi / 2: the first axis points along -y
    auto p = d.make(g.get());
    EXPECT_NEAR(Probe::axis_1(*p).x(), 0.0, 1e-15);
    EXPECT_NEAR(Probe::axis_1(*p).y(), -1.0, 1e-15);
    EXPECT_NEAR(Probe::axis_2(*p).x(), 1.0, 1e-15);
    EXPECT_NEAR(Probe::axis_2(*p).y(), 0.0, 1e-15);
    // 3 along y, 6 along x: profile-1 distance 3 both.
    EXPECT_NEAR(Probe::height(*p, 15, 13), Probe::height(*p, 21, 10), 1e-12);
}

TEST(vmiHPunkt, InitCurves_OutlineIsTheEllipseSampledAtFortyPointsAndClosed)
{
    auto g = grid();
    PointData d;
    auto p = d.make(g.get());
    ASSERT_NE(p->bound_curve(), nullptr);
    m03DVector* cp = p->bound_curve()->cpnt_vector();
    // The B-spline form passes through the 40 points at every third control point.
    ASSERT_EQ(cp->size(), 3 * 39 + 1);
    EXPECT_NEAR(cp->point(0).x(), 19.0, 1e-12);
    EXPECT_NEAR(cp->point(0).y(), 10.0, 1e-12);
    const double step = 2.0 * std::acos(-1.0) / 39;
    for (int k = 0; k < 40; k++) {
        const m03DPoint& q = cp->point(3 * k);
        const double u = (q.x() - 15.0) / 4.0, v = (q.y() - 10.0) / 8.0;
        EXPECT_NEAR(u * u + v * v, 1.0, 1e-12) << k;
        EXPECT_NEAR(q.x(), 15.0 + 4.0 * std::cos(k * step), 1e-12) << k;
        EXPECT_NEAR(q.y(), 10.0 + 8.0 * std::sin(k * step), 1e-12) << k;
    }
    EXPECT_NEAR(cp->point(3 * 39).x(), cp->point(0).x(), 1e-12);
    EXPECT_NEAR(cp->point(3 * 39).y(), cp->point(0).y(), 1e-12);
}

TEST(vmiHPunkt, InitCurves_BothProfilesAreBuiltOverTheirFiveValues)
{
    auto g = grid();
    PointData d;
    auto p = d.make(g.get());
    for (m0BspCurve* c : {Probe::profile_1(*p), Probe::profile_2(*p)}) {
        ASSERT_NE(c, nullptr);
        EXPECT_EQ(c->degree(), 4);
        EXPECT_EQ(c->cpnt_vector()->size(), 5);
    }
    EXPECT_EQ(Probe::profile_1(*p)->cpnt_vector()->point(2).y(), 2.0);
    EXPECT_EQ(Probe::profile_2(*p)->cpnt_vector()->point(3).x(), 6.0);
}

TEST(vmiHPunkt, XYDist_IsTheDistanceOfACurvePointFromTheOrigin)
{
    auto g = grid();
    PointData d;
    auto p = d.make(g.get());
    auto c = profile({0.0, 1.0, 2.0, 3.0, 3.0}, {0.0, 1.0, 2.0, 3.0, 4.0});
    EXPECT_DOUBLE_EQ(Probe::x_y_dist(*p, c.get(), 1.0), 5.0);
    EXPECT_DOUBLE_EQ(Probe::x_y_dist(*p, c.get(), 0.0), 0.0);
}

// ---------------------------------------------------------------------------
// Profile search

TEST(vmiHPunkt, ProfileHeight_EndsAreATenthFromEitherEndInAbsoluteUnits)
{
    auto g = grid();
    PointData d;
    auto p = d.make(g.get());
    auto c = profile({0.0, 0.0, 0.0, 0.0, 10.0}, {3.0, 4.0, 5.0, 6.0, 7.0});
    EXPECT_EQ(Probe::height(*p, c.get(), 0.1), 3.0);
    EXPECT_EQ(Probe::height(*p, c.get(), -2.0), 3.0);
    EXPECT_EQ(Probe::height(*p, c.get(), 9.95), 7.0);
    EXPECT_EQ(Probe::height(*p, c.get(), 12.0), 7.0);
    // Past 0.1 and short of 9.9 the search runs: x = 10 u^4 for u < 1 is
    // nowhere near the ends' heights.
    const double near_start = Probe::height(*p, c.get(), 0.11);
    EXPECT_GT(near_start, 3.0);
    EXPECT_LT(Probe::height(*p, c.get(), 9.85), 7.0);
}

TEST(vmiHPunkt, ProfileHeight_SearchEndsWhenTheIntervalIsTwoTenthsOverTheWidth)
{
    auto g = grid();
    PointData d;
    auto p = d.make(g.get());
    // x = 10 u^4, height 4 u, target 5: u = 0.5, 0.75, 0.875, 0.8125, 0.84375,
    // 0.828125, 0.8359375, and the interval 1/64 is within 0.2 / 10: height
    // 3.34375. (The line's 0.1 / 10 would go one step on, to 3.359375.)
    auto c = profile({0.0, 0.0, 0.0, 0.0, 10.0}, {0.0, 1.0, 2.0, 3.0, 4.0});
    EXPECT_DOUBLE_EQ(Probe::height(*p, c.get(), 5.0), 3.34375);
}

TEST(vmiHPunkt, ProfileHeight_SearchStopsWithinFiveHundredths)
{
    auto g = grid();
    PointData d;
    auto p = d.make(g.get());
    // x = 10 u, height 4 u, target 5.04: x = 5 at u = 0.5 is within 0.05.
    auto c = profile({0.0, 2.5, 5.0, 7.5, 10.0}, {0.0, 1.0, 2.0, 3.0, 4.0});
    EXPECT_DOUBLE_EQ(Probe::height(*p, c.get(), 5.04), 2.0);
    EXPECT_NE(Probe::height(*p, c.get(), 5.06), 2.0);
}

// ---------------------------------------------------------------------------
// Heights round the point

TEST(vmiHPunkt, Height_NodeAtTheCentreTakesTheProfilesStartHeight)
{
    auto g = grid();
    PointData d;
    d.x = 15.05;  // node (15, 10) lies 0.05 from the centre
    d.ym1 = {2.5, 9.0, 9.0, 9.0, 9.0};
    auto p = d.make(g.get());
    EXPECT_EQ(Probe::height(*p, 15, 10), 2.5);
    p->build_HPunkt(2);
    EXPECT_EQ(g->point(15, 10).z(), 2.5);
}

TEST(vmiHPunkt, Height_NodeWithinATenthOfTheEllipseTakesTheEndHeight)
{
    auto g = grid();
    PointData d;
    d.x = 15.05;
    d.ym1 = {9.0, 9.0, 9.0, 9.0, 1.25};
    auto p = d.make(g.get());
    // Node (19, 10): 3.95 along the first axis, within 0.1 of r1 = 4.
    EXPECT_EQ(Probe::height(*p, 19, 10), 1.25);
    // Node (18, 10): 2.95, searched, on the way to 1.25 from 9.
    const double inside = Probe::height(*p, 18, 10);
    EXPECT_GT(inside, 1.25);
    EXPECT_LT(inside, 9.0);
}

TEST(vmiHPunkt, Height_EllipticalDistanceScalesTheSecondAxisToTheFirst)
{
    auto g = grid();
    PointData d;
    // x = 4 u, height 4 u: the search stops at once at u = 0.5 when the
    // distance is 2 (x = 2).
    d.ym1 = {0.0, 1.0, 2.0, 3.0, 4.0};
    auto p = d.make(g.get());
    // 4 along the second axis (r2 = 8) is half way: profile-1 distance 2.
    EXPECT_DOUBLE_EQ(Probe::height(*p, 15, 14), 2.0);
    EXPECT_DOUBLE_EQ(Probe::height(*p, 17, 10), 2.0);
}

TEST(vmiHPunkt, Height_SecondProfileShapeNeverEntersOnlyItsWidth)
{
    PointData a;
    PointData b = a;
    b.xm2 = {0.0, 7.0, 1.0, 0.5, 8.0};  // the same width 8
    b.ym2 = {-40.0, 90.0, 3.0, -7.0, 55.0};
    auto ga = grid(0.5);
    auto gb = grid(0.5);
    vmiBaseGrid before(*ga);
    auto pa = a.make(ga.get());
    auto pb = b.make(gb.get());
    pa->build_HPunkt(2);
    pb->build_HPunkt(2);
    EXPECT_FALSE(same_grid(*ga, before));
    EXPECT_TRUE(same_grid(*ga, *gb));
}

TEST(vmiHPunkt, Height_SecondProfileWidthChangesTheEllipseAndTheDistance)
{
    PointData a;
    PointData b = a;
    a.ym1 = {0.0, 1.0, 2.0, 3.0, 4.0};
    b.ym1 = a.ym1;
    b.xm2[4] = 4.0;
    auto ga = grid(0.5);
    auto gb = grid(0.5);
    auto pa = a.make(ga.get());
    auto pb = b.make(gb.get());
    // 4 along y: half way to r2 = 8 (profile-1 distance 2, height 2), all the
    // way to r2 = 4 (distance 4, the end height 4).
    EXPECT_DOUBLE_EQ(Probe::height(*pa, 15, 14), 2.0);
    EXPECT_EQ(Probe::height(*pb, 15, 14), 4.0);
    const m03DVector* ca = pa->bound_curve()->cpnt_vector();
    const m03DVector* cb = pb->bound_curve()->cpnt_vector();
    // Point 10 of 40 lies near the top of the ellipse: y = 10 + r2 sin(10 * 2pi / 39).
    const double s = std::sin(10 * 2.0 * std::acos(-1.0) / 39);
    EXPECT_NEAR(ca->point(30).y(), 10.0 + 8.0 * s, 1e-12);
    EXPECT_NEAR(cb->point(30).y(), 10.0 + 4.0 * s, 1e-12);
    pa->build_HPunkt(2);
    pb->build_HPunkt(2);
    // Row 16 lies inside the taller ellipse only.
    EXPECT_NE(ga->point(15, 16).z(), 0.5);
    EXPECT_EQ(gb->point(15, 16).z(), 0.5);
}

// ---------------------------------------------------------------------------
// Applying the point

TEST(vmiHPunkt, Build_ModeOneNeverLowersANode)
{
    auto g = grid(1.0);
    g->set_z(15, 10, 100.0);
    g->set_z(14, 11, -3.0);
    vmiBaseGrid before(*g);
    PointData d;
    auto p = d.make(g.get());
    p->build_HPunkt(1);
    int raised = 0;
    for (int j = 0; j < 20; j++)
        for (int i = 0; i < 30; i++) {
            EXPECT_GE(g->point(i, j).z(), before.point(i, j).z()) << i << "," << j;
            if (g->point(i, j).z() != before.point(i, j).z())
                raised++;
        }
    EXPECT_GT(raised, 10);
    EXPECT_EQ(g->point(15, 10).z(), 100.0);
    EXPECT_EQ(g->point(14, 11).z(), Probe::height(*p, 14, 11));
}

TEST(vmiHPunkt, Build_ModeZeroOnAnEmptyNodeAddsToTheEmptyHeight)
{
    auto g = grid();
    PointData d;
    auto p = d.make(g.get());
    p->build_HPunkt(0);
    // The centre's start height 4 on the empty height.
    EXPECT_EQ(g->point(15, 10).z(), E + 4.0);
    EXPECT_LT(g->point(15, 10).z(), vmiBaseGrid::valid_z);
}

TEST(vmiHPunkt, Build_OtherModesReplaceAndNodesKeepXY)
{
    for (int mode : {2, 3, -4}) {
        auto g = grid(50.0);
        PointData d;
        auto p = d.make(g.get());
        p->build_HPunkt(mode);
        EXPECT_EQ(g->point(15, 10).z(), 4.0) << mode;
        EXPECT_EQ(g->point(15, 10).x(), 15.0) << mode;
        EXPECT_EQ(g->point(15, 10).y(), 10.0) << mode;
        EXPECT_EQ(g->point(2, 2).z(), 50.0) << mode;
        EXPECT_EQ(g->point(15, 19).z(), 50.0) << mode;
    }
}

TEST(vmiHPunkt, Build_ClosingCrossingNodeOfARowIsNotTaken)
{
    auto g = grid();
    PointData d;
    auto p = d.make(g.get());
    p->build_HPunkt(2);
    // Row 10 crosses the ellipse at x = 11 and x = 19.
    EXPECT_EQ(g->point(11, 10).z(), 0.0);
    EXPECT_EQ(g->point(18, 10).z(), Probe::height(*p, 18, 10));
    EXPECT_EQ(g->point(19, 10).z(), E);
    EXPECT_EQ(g->point(10, 10).z(), E);
}

// ---------------------------------------------------------------------------
// Input the point cannot be built from

TEST(vmiHPunkt, Build_AnyNullArrayLeavesTheGridUnchanged)
{
    for (int missing = 0; missing < 4; missing++) {
        auto g = grid(1.0);
        vmiBaseGrid before(*g);
        PointData d;
        // The arrays that are there are still owned and freed (the sanitizer
        // would report a leak).
        double* xm1 = missing == 0 ? nullptr : PointData::copy(d.xm1);
        double* ym1 = missing == 1 ? nullptr : PointData::copy(d.ym1);
        double* xm2 = missing == 2 ? nullptr : PointData::copy(d.xm2);
        double* ym2 = missing == 3 ? nullptr : PointData::copy(d.ym2);
        vmiHPunkt p(g.get(), d.alpha, d.x, d.y, xm1, ym1, xm2, ym2);
        EXPECT_EQ(p.bound_curve(), nullptr) << missing;
        p.build_HPunkt(2);
        EXPECT_TRUE(same_grid(*g, before)) << missing;
    }
}

TEST(vmiHPunkt, Build_GridWithoutNodesOrNoGridIsLeftAlone)
{
    PointData d;
    for (auto [xs, ys] : {std::pair{0, 20}, std::pair{30, 0}}) {
        vmiBaseGrid g(xs, ys, 1.0, 1.0);
        auto p = d.make(&g);
        p->build_HPunkt(2);
        EXPECT_EQ(g.x_size(), xs);
        EXPECT_EQ(g.y_size(), ys);
    }
    auto p = d.make(nullptr);
    p->build_HPunkt(2);  // nothing to write into, nothing happens
    EXPECT_NE(p->bound_curve(), nullptr);
}

TEST(vmiHPunkt, Build_BothHalfAxesZeroChangeNothing)
{
    auto g = grid(1.0);
    vmiBaseGrid before(*g);
    PointData d;
    d.xm1[4] = 0.0;
    d.xm2[4] = 0.0;
    auto p = d.make(g.get());
    p->build_HPunkt(2);
    EXPECT_TRUE(same_grid(*g, before));
}

TEST(vmiHPunkt, Build_ZeroHalfAxisAlongTheGridChangesNothing)
{
    // The ellipse folds onto a segment along a grid row or column.
    for (int which = 0; which < 2; which++) {
        auto g = grid(1.0);
        vmiBaseGrid before(*g);
        PointData d;
        (which == 0 ? d.xm1 : d.xm2)[4] = 0.0;
        auto p = d.make(g.get());
        p->build_HPunkt(2);
        EXPECT_TRUE(same_grid(*g, before)) << which;
    }
}

TEST(vmiHPunkt, Build_ZeroFirstHalfAxisTurnedGivesTheProfilesMiddleHeight)
{
    // Turned, the folded ellipse still crosses some rows twice. There the
    // distance along the first axis is divided by r1 = 0 and multiplied back
    // by it (not a number), which ends no profile search and reads the
    // profile at its middle: height 2 of 4, 3, 2, 1, 0.
    auto g = grid(1.0);
    PointData d;
    d.alpha = 1.0;
    d.x = 15.3;
    d.y = 10.2;
    d.xm1[4] = 0.0;
    d.xm2[4] = 7.0;
    auto p = d.make(g.get());
    p->build_HPunkt(2);
    int written = 0;
    for (int j = 0; j < 20; j++)
        for (int i = 0; i < 30; i++)
            if (g->point(i, j).z() != 1.0) {
                EXPECT_EQ(g->point(i, j).z(), 2.0) << i << "," << j;
                written++;
            }
    EXPECT_GT(written, 0);
}

TEST(vmiHPunkt, Build_NotFiniteAngleChangesNothing)
{
    auto g = grid(1.0);
    vmiBaseGrid before(*g);
    PointData d;
    d.alpha = std::numeric_limits<double>::quiet_NaN();
    auto p = d.make(g.get());
    p->build_HPunkt(2);
    EXPECT_TRUE(same_grid(*g, before));
}
