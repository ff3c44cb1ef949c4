#include "grid/vmiHPline.h"

#include "curves/m01DVector.h"
#include "curves/m03DVector.h"
#include "curves/m0BspCurve.h"
#include "grid/vmiBaseGrid.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <vector>

// Reaches the line's private steps for the tests.
struct vmiHPlineProbe {
    static m0BspCurve* create_bsp_curve(vmiHPline& l, m03DVector* pts, int order)
    {
        return l.create_bsp_curve(pts, order);
    }
    static int get_param_interval(vmiHPline& l, double t) { return l.get_param_interval(t); }
    static double height(vmiHPline& l, int i, int j) { return l.height(i, j); }
    static double height(vmiHPline& l, m0BspCurve* profile, double s) { return l.height(profile, s); }
    static m0BspCurve* profile(vmiHPline& l, int k) { return l.profiles_[k].get(); }
    static m01DVector* params(vmiHPline& l) { return l.params_.get(); }
};

namespace {

using Probe = vmiHPlineProbe;
constexpr double E = vmiBaseGrid::empty_z;

// The stations of a line and five (distance, height) control values per station.
struct LineData {
    std::vector<double> x, y, px, pz;
    int n() const { return static_cast<int>(x.size()); }
    void station(double sx, double sy, std::vector<double> xs, std::vector<double> zs)
    {
        x.push_back(sx);
        y.push_back(sy);
        px.insert(px.end(), xs.begin(), xs.end());
        pz.insert(pz.end(), zs.begin(), zs.end());
    }
    std::unique_ptr<vmiHPline> make(vmiBaseGrid* g)
    {
        return std::make_unique<vmiHPline>(g, n(), x.data(), y.data(), px.data(), pz.data());
    }
};

// A cross-section whose x grows as w u^4 and whose height as h0 + 4 u along its
// parameter u: read at a parameter it gives h0 + 4 u, searched along x it gives
// h0 + 4 (x / w)^(1/4), so the two readings differ everywhere inside.
const std::vector<double> quartic_x(double w)
{
    return {0.0, 0.0, 0.0, 0.0, w};
}
const std::vector<double> rising(double h0)
{
    return {h0, h0 + 1.0, h0 + 2.0, h0 + 3.0, h0 + 4.0};
}
// A cross-section of width w, straight in x and flat at height h.
const std::vector<double> even_x(double w)
{
    return {0.0, w * 0.25, w * 0.5, w * 0.75, w};
}
const std::vector<double> flat(double h)
{
    return {h, h, h, h, h};
}

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
    if (a.x_size() != b.x_size() || a.y_size() != b.y_size())
        return false;
    for (int j = 0; j < a.y_size(); j++)
        for (int i = 0; i < a.x_size(); i++)
            if (!(a.point(i, j) == b.point(i, j)))
                return false;
    return true;
}

int changed_nodes(vmiBaseGrid& g, vmiBaseGrid& before)
{
    int count = 0;
    for (int j = 0; j < g.y_size(); j++)
        for (int i = 0; i < g.x_size(); i++)
            if (!(g.point(i, j) == before.point(i, j)))
                count++;
    return count;
}

// A straight line along y = 10 from x = 10 to x = 20, flat cross-sections of
// height h and width 3.
LineData straight_flat_line(double h)
{
    LineData d;
    d.station(10.0, 10.0, even_x(3.0), flat(h));
    d.station(20.0, 10.0, even_x(3.0), flat(h));
    return d;
}

}  // namespace

// ---------------------------------------------------------------------------
// Curves

TEST(vmiHPline, InitCurves_OutlineRunsAlongOneSideRoundBothCapsAndCloses)
{
    auto g = grid();
    LineData d;
    d.station(10.0, 10.0, even_x(4.0), flat(1.0));
    d.station(20.0, 10.0, even_x(2.0), flat(1.0));
    auto line = d.make(g.get());
    ASSERT_NE(line->bound_curve(), nullptr);
    m03DVector* cp = line->bound_curve()->cpnt_vector();
    // The spline's B-spline form passes through its points at every third
    // control point: 2n + 3 = 7 outline points, 6 segments.
    ASSERT_EQ(cp->size(), 3 * 6 + 1);
    // Left of the direction of travel (+y) at the start's width 4 and the
    // end's width 2, the end cap one width beyond the end, the right side back,
    // the start cap one width before the start, and the first point again.
    const double expected[7][2] = {{10, 14}, {20, 12}, {22, 10}, {20, 8}, {10, 6}, {6, 10}, {10, 14}};
    for (int k = 0; k < 7; k++) {
        EXPECT_NEAR(cp->point(3 * k).x(), expected[k][0], 1e-9) << k;
        EXPECT_NEAR(cp->point(3 * k).y(), expected[k][1], 1e-9) << k;
        EXPECT_EQ(cp->point(3 * k).z(), 0.0) << k;
    }
}

TEST(vmiHPline, InitCurves_OutlineOfThreeStationsHasNinePoints)
{
    auto g = grid();
    LineData d;
    d.station(5.0, 5.0, even_x(1.0), flat(1.0));
    d.station(12.0, 9.0, even_x(1.0), flat(1.0));
    d.station(20.0, 6.0, even_x(1.0), flat(1.0));
    auto line = d.make(g.get());
    ASSERT_NE(line->bound_curve(), nullptr);
    EXPECT_EQ(line->bound_curve()->cpnt_vector()->size(), 3 * (2 * 3 + 2) + 1);
    // The centre line passes through the stations.
    m03DVector* centre = line->main_curve()->cpnt_vector();
    ASSERT_EQ(centre->size(), 3 * 2 + 1);
    EXPECT_NEAR(centre->point(3).x(), 12.0, 1e-12);
    EXPECT_NEAR(centre->point(3).y(), 9.0, 1e-12);
}

TEST(vmiHPline, InitCurves_ProfilesAreQuarticBeziersOverTheFiveValuesOfTheirStation)
{
    auto g = grid();
    LineData d;
    d.station(10.0, 10.0, {0.0, 1.0, 2.0, 3.0, 4.0}, {5.0, 6.0, 7.0, 8.0, 9.0});
    d.station(20.0, 10.0, {0.0, 2.0, 4.0, 6.0, 8.0}, {1.0, 1.5, 2.0, 2.5, 3.0});
    auto line = d.make(g.get());
    for (int k = 0; k < 2; k++) {
        m0BspCurve* p = Probe::profile(*line, k);
        ASSERT_NE(p, nullptr);
        EXPECT_EQ(p->degree(), 4);
        ASSERT_EQ(p->cpnt_vector()->size(), 5);
        for (int q = 0; q < 5; q++) {
            EXPECT_EQ(p->cpnt_vector()->point(q).x(), d.px[5 * k + q]);
            EXPECT_EQ(p->cpnt_vector()->point(q).y(), d.pz[5 * k + q]);
        }
    }
    // The station parameters are the centre line's: 0 at the start, 1 at the end.
    m01DVector* params = Probe::params(*line);
    ASSERT_EQ(params->size(), 2);
    EXPECT_EQ(params->point(0), 0.0);
    EXPECT_EQ(params->point(1), 1.0);
}

TEST(vmiHPline, CreateBspCurve_FivePointsMakeOneQuarticSegment)
{
    auto g = grid();
    LineData d = straight_flat_line(1.0);
    auto line = d.make(g.get());
    auto* pts = new m03DVector(5);
    for (int q = 0; q < 5; q++)
        pts->set_point(q, m03DPoint(q, 2.0 * q, 0.0));
    std::unique_ptr<m0BspCurve> c(Probe::create_bsp_curve(*line, pts, 5));
    ASSERT_NE(c, nullptr);
    EXPECT_EQ(c->cpnt_vector(), pts);  // adopted, not copied
    EXPECT_EQ(c->degree(), 4);
    EXPECT_EQ(c->no_of_cpnt(), 5);
    const std::vector<double> knots = {0, 0, 0, 0, 0, 1, 1, 1, 1, 1};
    ASSERT_EQ(c->knot_vector()->size(), 10);
    for (int q = 0; q < 10; q++)
        EXPECT_EQ(c->knot_vector()->point(q), knots[q]) << q;
}

TEST(vmiHPline, CreateBspCurve_InnerKnotsComeInRunsOfOrderLessOne)
{
    auto g = grid();
    LineData d = straight_flat_line(1.0);
    auto line = d.make(g.get());
    // m = 9, k = 5: knots 5 ... 8 are ((q - 5) div 4 + 1) / ((9 - 5) div 4 + 1) = 1/2.
    std::unique_ptr<m0BspCurve> c(Probe::create_bsp_curve(*line, new m03DVector(9), 5));
    ASSERT_NE(c, nullptr);
    const std::vector<double> knots = {0, 0, 0, 0, 0, 0.5, 0.5, 0.5, 0.5, 1, 1, 1, 1, 1};
    ASSERT_EQ(c->knot_vector()->size(), 14);
    for (int q = 0; q < 14; q++)
        EXPECT_EQ(c->knot_vector()->point(q), knots[q]) << q;
    // m = 7, k = 3: runs of two, ((q - 3) div 2 + 1) / ((7 - 3) div 2 + 1) = 1/3, 1/3, 2/3, 2/3.
    std::unique_ptr<m0BspCurve> c3(Probe::create_bsp_curve(*line, new m03DVector(7), 3));
    ASSERT_NE(c3, nullptr);
    EXPECT_EQ(c3->degree(), 2);
    const std::vector<double> knots3 = {0, 0, 0, 1.0 / 3, 1.0 / 3, 2.0 / 3, 2.0 / 3, 1, 1, 1};
    ASSERT_EQ(c3->knot_vector()->size(), 10);
    for (int q = 0; q < 10; q++)
        EXPECT_EQ(c3->knot_vector()->point(q), knots3[q]) << q;
}

TEST(vmiHPline, CreateBspCurve_NullPointsOrOrderBelowTwoGiveNoCurve)
{
    auto g = grid();
    LineData d = straight_flat_line(1.0);
    auto line = d.make(g.get());
    EXPECT_EQ(Probe::create_bsp_curve(*line, nullptr, 5), nullptr);
    // The points are adopted even when no curve comes of them (a leak would
    // show under the sanitizer).
    EXPECT_EQ(Probe::create_bsp_curve(*line, new m03DVector(5), 1), nullptr);
    EXPECT_EQ(Probe::create_bsp_curve(*line, new m03DVector(5), m0BspCurve::max_order + 1), nullptr);
}

// ---------------------------------------------------------------------------
// Station interval

TEST(vmiHPline, GetParamInterval_BisectsToTheStationAtOrBelowT)
{
    auto g = grid();
    LineData d;
    for (int k = 0; k < 5; k++)
        d.station(2.0 + 4.0 * k, 10.0, even_x(1.0), flat(1.0));
    auto line = d.make(g.get());
    // Equal station spacing: parameters 0, 0.25, 0.5, 0.75, 1.
    m01DVector* params = Probe::params(*line);
    ASSERT_EQ(params->size(), 5);
    EXPECT_EQ(params->point(1), 0.25);
    EXPECT_EQ(Probe::get_param_interval(*line, 0.1), 0);
    EXPECT_EQ(Probe::get_param_interval(*line, 0.25), 1);  // equal goes up
    EXPECT_EQ(Probe::get_param_interval(*line, 0.3), 1);
    EXPECT_EQ(Probe::get_param_interval(*line, 0.6), 2);
    EXPECT_EQ(Probe::get_param_interval(*line, 0.99), 3);
    // Never the last station: an interval always has a station after it.
    EXPECT_EQ(Probe::get_param_interval(*line, 1.0), 3);
    EXPECT_EQ(Probe::get_param_interval(*line, 7.0), 3);
    EXPECT_EQ(Probe::get_param_interval(*line, -1.0), 0);
}

TEST(vmiHPline, GetParamInterval_TwoStationsAlwaysGiveTheFirstInterval)
{
    auto g = grid();
    LineData d = straight_flat_line(1.0);
    auto line = d.make(g.get());
    EXPECT_EQ(Probe::get_param_interval(*line, 0.9), 0);
    EXPECT_EQ(Probe::get_param_interval(*line, 5.0), 0);
}

TEST(vmiHPline, GetParamInterval_ThreeStationsBisectOnce)
{
    auto g = grid();
    LineData d;
    d.station(5.0, 10.0, even_x(1.0), flat(1.0));
    d.station(10.0, 10.0, even_x(1.0), flat(1.0));
    d.station(15.0, 10.0, even_x(1.0), flat(1.0));
    auto line = d.make(g.get());
    EXPECT_EQ(Probe::get_param_interval(*line, 0.4), 0);
    EXPECT_EQ(Probe::get_param_interval(*line, 0.6), 1);
}

// ---------------------------------------------------------------------------
// Cross-section search

TEST(vmiHPline, ProfileHeight_EndsAtRelativeRadiiOneTenMillionthAndPointNineNineNineNineNine)
{
    auto g = grid();
    LineData d = straight_flat_line(1.0);
    auto line = d.make(g.get());
    auto* pts = new m03DVector(5);
    for (int q = 0; q < 5; q++)
        pts->set_point(q, m03DPoint(quartic_x(10.0)[q], rising(3.0)[q], 0.0));
    std::unique_ptr<m0BspCurve> p(new m0BspCurve(pts, 5));
    EXPECT_EQ(Probe::height(*line, p.get(), 1e-7), 3.0);
    EXPECT_EQ(Probe::height(*line, p.get(), 0.0), 3.0);
    EXPECT_EQ(Probe::height(*line, p.get(), 0.999991), 7.0);
    // Just inside either end the search runs and lands elsewhere.
    EXPECT_GT(Probe::height(*line, p.get(), 2e-7), 3.0);
    EXPECT_LT(Probe::height(*line, p.get(), 0.99999), 7.0);
}

TEST(vmiHPline, ProfileHeight_StopsWithinFiveHundredthsOfTheTarget)
{
    auto g = grid();
    LineData d = straight_flat_line(1.0);
    auto line = d.make(g.get());
    // x = 10 u, height 4 u. Target x 5.1: u = 0.5, 0.75, 0.625, 0.5625, 0.53125,
    // 0.515625, 0.5078125, where x = 5.078125 lies within 0.05: height 2.03125.
    // (The pad's stop of 0.01 would go on to 2.0390625.)
    auto* pts = new m03DVector(5);
    for (int q = 0; q < 5; q++)
        pts->set_point(q, m03DPoint(even_x(10.0)[q], rising(0.0)[q], 0.0));
    std::unique_ptr<m0BspCurve> p(new m0BspCurve(pts, 5));
    EXPECT_DOUBLE_EQ(Probe::height(*line, p.get(), 0.51), 2.03125);
}

TEST(vmiHPline, ProfileHeight_EndsWhenTheIntervalIsATenthOverTheWidth)
{
    auto g = grid();
    LineData d = straight_flat_line(1.0);
    auto line = d.make(g.get());
    // x = u^4, height 4 u, target x 0.9: u = 0.5, 0.75, 0.875, 0.9375, 0.96875;
    // the interval is then 1/16 <= 0.1 / 1 and the search ends at height 3.875.
    // (The point's 0.2 would end at 0.9375, height 3.75; the pad's 0.01 go on.)
    auto* pts = new m03DVector(5);
    for (int q = 0; q < 5; q++)
        pts->set_point(q, m03DPoint(quartic_x(1.0)[q], rising(0.0)[q], 0.0));
    std::unique_ptr<m0BspCurve> p(new m0BspCurve(pts, 5));
    EXPECT_DOUBLE_EQ(Probe::height(*line, p.get(), 0.9), 3.875);
}

// ---------------------------------------------------------------------------
// Heights along the line

TEST(vmiHPline, Height_BeforeTheFirstStationReadsItsProfileAtSAsAParameter)
{
    auto g = grid();
    LineData d;
    d.station(10.0, 10.0, quartic_x(4.0), rising(0.0));
    d.station(20.0, 10.0, quartic_x(8.0), rising(10.0));
    auto line = d.make(g.get());
    // Node (8, 10) projects onto the start (t = 0), r = 2, s = 2 / 4: the
    // profile read at parameter 0.5 gives 4 * 0.5 = 2, not the 3.36 of a search
    // for x = 2.
    EXPECT_DOUBLE_EQ(Probe::height(*line, 8, 10), 2.0);
    // Off the line's axis too: node (8, 9), r = sqrt(5), s = sqrt(5) / 4,
    // height sqrt(5).
    EXPECT_NEAR(Probe::height(*line, 8, 9), std::sqrt(5.0), 1e-12);
}

TEST(vmiHPline, Height_BeyondTheLastStationReadsTheLastProfileAtSAsAParameter)
{
    auto g = grid();
    LineData d;
    d.station(10.0, 10.0, quartic_x(4.0), rising(0.0));
    d.station(20.0, 10.0, quartic_x(8.0), rising(10.0));
    auto line = d.make(g.get());
    // Node (23, 10): t = 1, r = 3, s = 3 / 8, last profile at parameter 0.375:
    // 10 + 4 * 0.375 = 11.5 (a search for x = 3 would give about 13.1).
    EXPECT_DOUBLE_EQ(Probe::height(*line, 23, 10), 11.5);
}

TEST(vmiHPline, Height_BetweenStationsSearchesBothProfilesAndBlends)
{
    auto g = grid();
    LineData d;
    d.station(10.0, 10.0, even_x(4.0), rising(0.0));
    d.station(20.0, 10.0, even_x(4.0), rising(0.0));
    auto line = d.make(g.get());
    // Equal profiles, x = 4 u, height 4 u: node (15, 12) lies 2 from the line,
    // s = 0.5, and the search stops at once at u = 0.5 (x = 2): height 2.
    EXPECT_DOUBLE_EQ(Probe::height(*line, 15, 12), 2.0);
}

TEST(vmiHPline, Height_NodeOnTheCentreLineBlendsTheStartHeights)
{
    auto g = grid();
    LineData d;
    d.station(10.0, 10.0, even_x(4.0), {2.0, 50.0, 50.0, 50.0, 50.0});
    d.station(20.0, 10.0, even_x(4.0), {6.0, 90.0, 90.0, 90.0, 90.0});
    auto line = d.make(g.get());
    // r = 0 at the middle (t near 1/2): the start heights 2 and 6 blend to 4;
    // any s above 1e-7 would climb towards 50 and 90.
    EXPECT_NEAR(Probe::height(*line, 15, 10), 4.0, 1e-5);
    // A quarter along, the blend leans to the first station; the curve's
    // parameter is not its arc length, so only the order is checked.
    const double quarter = Probe::height(*line, 12, 10);
    EXPECT_GT(quarter, 2.0);
    EXPECT_LT(quarter, 4.0);
}

TEST(vmiHPline, Height_WidthBlendsBetweenStations)
{
    auto g = grid();
    LineData d;
    // Widths 2 and 6, both flat in x with height 4 u: in the middle the width
    // is near 4, so a node 2 from the line sits at s near 0.5, height near 2.
    d.station(10.0, 10.0, even_x(2.0), rising(0.0));
    d.station(20.0, 10.0, even_x(6.0), rising(0.0));
    auto line = d.make(g.get());
    EXPECT_NEAR(Probe::height(*line, 15, 12), 2.0, 0.05);
}

// ---------------------------------------------------------------------------
// Applying the line

TEST(vmiHPline, Build_InsideNodesTakeTheCrossSectionOutsideNodesStay)
{
    auto g = grid();
    LineData d;
    d.station(10.0, 10.0, quartic_x(4.0), rising(0.0));
    d.station(20.0, 10.0, quartic_x(8.0), rising(10.0));
    auto line = d.make(g.get());
    line->build_HPlinie(2);
    // Row 10 runs from the start cap (x = 6) to the end cap (x = 28).
    EXPECT_DOUBLE_EQ(g->point(8, 10).z(), 2.0);
    EXPECT_DOUBLE_EQ(g->point(23, 10).z(), 11.5);
    EXPECT_EQ(g->point(8, 10).x(), 8.0);
    EXPECT_EQ(g->point(8, 10).y(), 10.0);
    // Far from the line nothing changes.
    EXPECT_EQ(g->point(2, 2).z(), E);
    EXPECT_EQ(g->point(29, 10).z(), E);
    EXPECT_EQ(g->point(15, 19).z(), E);
}

TEST(vmiHPline, Build_ModeOneNeverLowersANode)
{
    auto g = grid(-5.0);
    for (int i = 0; i < 30; i += 2)
        g->set_z(i, 10, 100.0);
    vmiBaseGrid before(*g);
    LineData d = straight_flat_line(3.0);
    auto line = d.make(g.get());
    line->build_HPlinie(1);
    int raised = 0;
    for (int j = 0; j < 20; j++)
        for (int i = 0; i < 30; i++) {
            const double z = g->point(i, j).z();
            const double was = before.point(i, j).z();
            EXPECT_GE(z, was) << i << "," << j;
            if (z != was) {
                EXPECT_DOUBLE_EQ(z, 3.0) << i << "," << j;
                raised++;
            }
        }
    EXPECT_GT(raised, 20);
    EXPECT_EQ(g->point(14, 10).z(), 100.0);
    EXPECT_DOUBLE_EQ(g->point(15, 10).z(), 3.0);
}

TEST(vmiHPline, Build_ModeZeroOnAnEmptyNodeAddsToTheEmptyHeight)
{
    auto g = grid();
    LineData d = straight_flat_line(3.0);
    auto line = d.make(g.get());
    line->build_HPlinie(0);
    EXPECT_DOUBLE_EQ(g->point(15, 10).z(), E + 3.0);
    EXPECT_DOUBLE_EQ(g->point(12, 11).z(), E + 3.0);
    // Still empty enough for every test against valid_z.
    EXPECT_LT(g->point(15, 10).z(), vmiBaseGrid::valid_z);
}

TEST(vmiHPline, Build_ModeZeroAddsOnValidNodes)
{
    auto g = grid(1.5);
    LineData d = straight_flat_line(3.0);
    auto line = d.make(g.get());
    line->build_HPlinie(0);
    EXPECT_DOUBLE_EQ(g->point(15, 10).z(), 4.5);
    EXPECT_EQ(g->point(15, 18).z(), 1.5);
}

TEST(vmiHPline, Build_OtherModesReplace)
{
    for (int mode : {2, 3, -1, 7}) {
        auto g = grid(100.0);
        LineData d = straight_flat_line(3.0);
        auto line = d.make(g.get());
        line->build_HPlinie(mode);
        EXPECT_DOUBLE_EQ(g->point(15, 10).z(), 3.0) << mode;
        EXPECT_DOUBLE_EQ(g->point(15, 12).z(), 3.0) << mode;
        EXPECT_EQ(g->point(15, 18).z(), 100.0) << mode;
    }
}

TEST(vmiHPline, Build_ClosingCrossingNodeOfARowIsNotTaken)
{
    auto g = grid();
    LineData d = straight_flat_line(3.0);
    auto line = d.make(g.get());
    line->build_HPlinie(2);
    // Row 10 of the outline runs from the start cap at x = 7 to the end cap at
    // x = 23: the first crossing node is taken, the last one is not.
    EXPECT_DOUBLE_EQ(g->point(7, 10).z(), 3.0);
    EXPECT_DOUBLE_EQ(g->point(22, 10).z(), 3.0);
    EXPECT_EQ(g->point(23, 10).z(), E);
    EXPECT_EQ(g->point(6, 10).z(), E);
}

TEST(vmiHPline, Build_TwiceAppliesTwice)
{
    auto g = grid(0.0);
    LineData d = straight_flat_line(3.0);
    auto line = d.make(g.get());
    line->build_HPlinie(0);
    line->build_HPlinie(0);
    EXPECT_DOUBLE_EQ(g->point(15, 10).z(), 6.0);
}

// ---------------------------------------------------------------------------
// Input the line cannot be built from

TEST(vmiHPline, Build_AnyNullArrayLeavesTheGridUnchanged)
{
    for (int missing = 0; missing < 4; missing++) {
        auto g = grid(1.0);
        vmiBaseGrid before(*g);
        LineData d = straight_flat_line(3.0);
        double* x = missing == 0 ? nullptr : d.x.data();
        double* y = missing == 1 ? nullptr : d.y.data();
        double* px = missing == 2 ? nullptr : d.px.data();
        double* pz = missing == 3 ? nullptr : d.pz.data();
        vmiHPline line(g.get(), 2, x, y, px, pz);
        EXPECT_EQ(line.main_curve(), nullptr) << missing;
        EXPECT_EQ(line.bound_curve(), nullptr) << missing;
        line.build_HPlinie(2);
        EXPECT_TRUE(same_grid(*g, before)) << missing;
    }
}

TEST(vmiHPline, Build_FewerThanTwoStationsLeaveTheGridUnchanged)
{
    for (int n : {1, 0, -3}) {
        auto g = grid(1.0);
        vmiBaseGrid before(*g);
        LineData d = straight_flat_line(3.0);
        vmiHPline line(g.get(), n, d.x.data(), d.y.data(), d.px.data(), d.pz.data());
        EXPECT_EQ(line.main_curve(), nullptr) << n;
        line.build_HPlinie(2);
        EXPECT_TRUE(same_grid(*g, before)) << n;
    }
}

TEST(vmiHPline, MaxStations_ALineAtTheBoundIsBuilt)
{
    // Stations one unit apart along y = 300000, cross-sections 200000 wide
    // and flat at 1, over an 8 x 8 grid of spacing 100000: the outline has
    // 2n + 3 points, exactly the segments the outline spline can convert.
    const int n = vmiHPline::max_stations;
    ASSERT_EQ(2LL * n + 2, m03SplineCurve::max_bsp_segments);
    const size_t values = 5 * static_cast<size_t>(n);
    std::vector<double> x(n), y(n, 300000.0), px(values), pz(values, 1.0);
    for (int k = 0; k < n; k++) {
        x[k] = k;
        for (int q = 0; q < 5; q++)
            px[5 * static_cast<size_t>(k) + q] = 50000.0 * q;
    }
    vmiBaseGrid g(8, 8, 100000.0, 100000.0);
    vmiHPline line(&g, n, x.data(), y.data(), px.data(), pz.data());
    ASSERT_NE(line.main_curve(), nullptr);
    ASSERT_NE(line.bound_curve(), nullptr);
    line.build_HPlinie(2);
    EXPECT_DOUBLE_EQ(g.point(3, 3).z(), 1.0);
}

TEST(vmiHPline, MaxStations_OneMoreStationLeavesTheGridUnchanged)
{
    const int n = vmiHPline::max_stations + 1;
    const size_t values = 5 * static_cast<size_t>(n);
    std::vector<double> x(n), y(n, 3.0), px(values, 1.0), pz(values, 1.0);
    for (int k = 0; k < n; k++)
        x[k] = k;
    vmiBaseGrid g(8, 8, 1.0, 1.0);
    vmiBaseGrid before(g);
    vmiHPline line(&g, n, x.data(), y.data(), px.data(), pz.data());
    EXPECT_EQ(line.main_curve(), nullptr);
    EXPECT_EQ(line.bound_curve(), nullptr);
    line.build_HPlinie(2);
    EXPECT_TRUE(same_grid(g, before));
}

TEST(vmiHPline, Build_GridWithoutNodesOrNoGridIsLeftAlone)
{
    LineData d = straight_flat_line(3.0);
    for (auto [xs, ys] : {std::pair{0, 20}, std::pair{30, 0}}) {
        vmiBaseGrid g(xs, ys, 1.0, 1.0);
        auto line = d.make(&g);
        line->build_HPlinie(2);
        EXPECT_EQ(g.x_size(), xs);
        EXPECT_EQ(g.y_size(), ys);
    }
    auto line = d.make(nullptr);
    line->build_HPlinie(2);  // nothing to write into, nothing happens
    EXPECT_NE(line->main_curve(), nullptr);
}

TEST(vmiHPline, Build_TwoOrThreeCoincidentStationsGiveNoCentreLine)
{
    // All stations on one spot close on themselves, and a closed list of fewer
    // than four points has no B-spline form.
    for (int n : {2, 3}) {
        auto g = grid(1.0);
        vmiBaseGrid before(*g);
        LineData d;
        for (int k = 0; k < n; k++)
            d.station(10.0, 10.0, even_x(3.0), flat(2.0));
        auto line = d.make(g.get());
        EXPECT_EQ(line->main_curve(), nullptr) << n;
        EXPECT_EQ(line->bound_curve(), nullptr) << n;
        line->build_HPlinie(2);
        EXPECT_TRUE(same_grid(*g, before)) << n;
    }
}

TEST(vmiHPline, Build_CoincidentStationsChangeNothing)
{
    // Four on one spot, and two of three on one spot: the parameters divide by
    // a zero chord and the curves are not finite, which no node comes of.
    LineData four;
    for (int k = 0; k < 4; k++)
        four.station(10.0, 10.0, even_x(3.0), flat(2.0));
    LineData pair;
    pair.station(10.0, 10.0, even_x(3.0), flat(2.0));
    pair.station(10.0, 10.0, even_x(3.0), flat(2.0));
    pair.station(20.0, 10.0, even_x(3.0), flat(2.0));
    for (LineData* d : {&four, &pair}) {
        auto g = grid(1.0);
        vmiBaseGrid before(*g);
        auto line = d->make(g.get());
        line->build_HPlinie(2);
        EXPECT_TRUE(same_grid(*g, before)) << d->n();
    }
}

TEST(vmiHPline, Build_ZeroWidthProfilesChangeNothing)
{
    // The outline collapses onto the centre line.
    auto g = grid(1.0);
    vmiBaseGrid before(*g);
    LineData d;
    d.station(10.0, 10.0, flat(0.0), flat(2.0));
    d.station(20.0, 10.0, flat(0.0), flat(2.0));
    auto line = d.make(g.get());
    line->build_HPlinie(2);
    EXPECT_TRUE(same_grid(*g, before));
}

TEST(vmiHPline, Build_NotFiniteStationChangesNothing)
{
    auto g = grid(1.0);
    vmiBaseGrid before(*g);
    LineData d = straight_flat_line(3.0);
    d.station(25.0, 10.0, even_x(3.0), flat(3.0));
    d.x[1] = std::numeric_limits<double>::quiet_NaN();
    auto line = d.make(g.get());
    line->build_HPlinie(2);
    EXPECT_EQ(changed_nodes(*g, before), 0);
}

TEST(vmiHPline, Ownership_ArraysStayTheCallers)
{
    LineData d = straight_flat_line(3.0);
    const LineData copy = d;
    {
        auto g = grid();
        auto line = d.make(g.get());
        line->build_HPlinie(2);
    }
    // Read after the line is gone: still there and unchanged.
    EXPECT_EQ(d.x, copy.x);
    EXPECT_EQ(d.y, copy.y);
    EXPECT_EQ(d.px, copy.px);
    EXPECT_EQ(d.pz, copy.pz);
}
