#include "grid/vmiHPelotte.h"

#include "contour/vmiPolylineGridMap.h"
#include "curves/m01DVector.h"
#include "curves/m03DVector.h"
#include "curves/m03SplineCurve.h"
#include "curves/m0BspCurve.h"
#include "grid/vmiBaseGrid.h"
#include "tests/support/testGeometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <initializer_list>
#include <limits>
#include <memory>
#include <vector>

// Reaches the pad's private steps and members for the tests.
struct vmiHPelotteProbe {
    static void init_curves(vmiHPelotte& p) { p.init_curves(); }
    static void init_angles(vmiHPelotte& p) { p.init_angles(); }
    static m0BspCurve* create_bsp_curve(vmiHPelotte& p, m03DVector* pts, int order)
    {
        return p.create_bsp_curve(pts, order);
    }
    static double angle(vmiHPelotte& p, m03DPoint q) { return p.angle(q); }
    static m03DPoint point_on_bound(vmiHPelotte& p, double t) { return p.get_point_on_bound(t); }
    static double height(vmiHPelotte& p, int mode, int i, int j) { return p.height(mode, i, j); }
    static double profile_height(vmiHPelotte& p, double s) { return p.height(p.profile_.get(), s); }

    static m0BspCurve* profile(vmiHPelotte& p) { return p.profile_.get(); }
    static m01DVector* angles(vmiHPelotte& p) { return p.angles_.get(); }
    static m03DVector* polyline(vmiHPelotte& p) { return p.boundary_polyline_.get(); }
    static vmiPolylineGridMap* map(vmiHPelotte& p) { return p.grid_map_.get(); }
    static m0BspCurve* boundary_curve(vmiHPelotte& p) { return p.boundary_curve_.get(); }
    static double two_pi(vmiHPelotte& p) { return p.two_pi_; }
    static double start_angle(vmiHPelotte& p) { return p.start_angle_; }
    static const m03DPoint& centre(vmiHPelotte& p) { return p.centre_; }
    static const m03DPoint& axis_1(vmiHPelotte& p) { return p.axis_1_; }
    static const m03DPoint& axis_2(vmiHPelotte& p) { return p.axis_2_; }

    static void set_h(vmiHPelotte& p, double h) { p.h_ = h; }
    // The pieces angle() and get_point_on_bound() read, set by hand.
    static void set_frame(vmiHPelotte& p, m03DPoint centre)
    {
        p.centre_ = centre;
        p.axis_1_ = m03DPoint(1.0, 0.0, 0.0);
        p.axis_2_ = m03DPoint(0.0, 1.0, 0.0);
        p.two_pi_ = 2.0 * std::acos(-1.0);
    }
    static void set_polyline(vmiHPelotte& p, m03DVector* v) { p.boundary_polyline_.reset(v); }
    static void set_angles(vmiHPelotte& p, m01DVector* v, double start)
    {
        p.angles_.reset(v);
        p.start_angle_ = start;
    }
};

namespace {

using Probe = vmiHPelotteProbe;

const double pi = std::acos(-1.0);
const double two_pi = 2.0 * std::acos(-1.0);

double* array(std::initializer_list<double> values)
{
    auto* a = new double[values.size()];
    int k = 0;
    for (double v : values)
        a[k++] = v;
    return a;
}

double* copy_array(const std::vector<double>& values)
{
    auto* a = new double[values.size()];
    for (size_t k = 0; k < values.size(); k++)
        a[k] = values[k];
    return a;
}

m01DVector* values(std::initializer_list<double> vs)
{
    auto* v = new m01DVector(static_cast<int>(vs.size()));
    int i = 0;
    for (double x : vs)
        v->point(i++) = x;
    return v;
}

std::unique_ptr<vmiBaseGrid> grid_of(int x_size, int y_size, double (*z)(int, int))
{
    auto g = std::make_unique<vmiBaseGrid>(x_size, y_size, 1.0, 1.0);
    for (int j = 0; j < y_size; j++)
        for (int i = 0; i < x_size; i++)
            g->set_z(i, j, z(i, j));
    return g;
}

std::unique_ptr<vmiBaseGrid> flat_grid(int x_size, int y_size, double z)
{
    auto g = std::make_unique<vmiBaseGrid>(x_size, y_size, 1.0, 1.0);
    for (int j = 0; j < y_size; j++)
        for (int i = 0; i < x_size; i++)
            g->set_z(i, j, z);
    return g;
}

// A closed outline of `count` points on a circle (the first repeated at the end).
struct Outline {
    std::vector<double> xs, ys;
};

Outline circle(double cx, double cy, double radius, int count)
{
    Outline o;
    for (int k = 0; k <= count; k++) {
        double a = two_pi * (k % count) / count;
        o.xs.push_back(cx + radius * std::cos(a));
        o.ys.push_back(cy + radius * std::sin(a));
    }
    return o;
}

// The grid's centre, and the pad's outline round it of radius 8.
constexpr int grid_n = 31;
constexpr double cx = 15.0;
constexpr double cy = 15.0;
constexpr double pad_radius = 8.0;

// Profile arrays that make the profile the straight line from (0, h) to (1, 0):
// its control points are equally spaced on it, so x = u and y = h (1 - u).
const std::vector<double> linear_xb = {0.75, 0.5, 0.25};
const std::vector<double> linear_yb = {0.25, 0.5, 0.75};
const std::vector<double> default_xb = {0.5, 0.5, 0.5};
const std::vector<double> default_yb = {0.0, 0.5, 1.0};

// A pad on g round (xm, ym) with the circle outline and the given profile arrays
// (copied to the length of the outline; an empty vector hands over null).
std::unique_ptr<vmiHPelotte> make_pad(vmiBaseGrid* g, const std::vector<double>& xb,
                                      const std::vector<double>& yb, double xm = cx,
                                      double ym = cy)
{
    Outline o = circle(cx, cy, pad_radius, 16);
    const int n = static_cast<int>(o.xs.size());
    auto padded = [n](const std::vector<double>& v) -> double* {
        if (v.empty())
            return nullptr;
        std::vector<double> w(static_cast<size_t>(n), 0.0);
        for (size_t k = 0; k < v.size(); k++)
            w[k] = v[k];
        return copy_array(w);
    };
    return std::make_unique<vmiHPelotte>(g, n, copy_array(o.xs), copy_array(o.ys), padded(xb),
                                         padded(yb), xm, ym);
}

double dist(int i, int j, double x, double y)
{
    return std::hypot(i - x, j - y);
}

void expect_same_grid(vmiBaseGrid& a, vmiBaseGrid& b)
{
    ASSERT_EQ(a.x_size(), b.x_size());
    ASSERT_EQ(a.y_size(), b.y_size());
    for (int j = 0; j < a.y_size(); j++)
        for (int i = 0; i < a.x_size(); i++)
            ASSERT_TRUE(a.point(i, j) == b.point(i, j)) << i << "," << j;
}

bool same_grid(vmiBaseGrid& a, vmiBaseGrid& b)
{
    for (int j = 0; j < a.y_size(); j++)
        for (int i = 0; i < a.x_size(); i++)
            if (!(a.point(i, j) == b.point(i, j)))
                return false;
    return true;
}

double uneven(int i, int j)
{
    return ((i * 7 + j * 3) % 5) * 0.4;
}

}  // namespace

// ---------------------------------------------------------------------------
// Pads that leave the grid as it is

TEST(vmiHPelotte, BuildHPelotte_NullXsLeavesGridUnchanged)
{
    auto g = grid_of(grid_n, grid_n, uneven);
    vmiBaseGrid before(*g);
    Outline o = circle(cx, cy, pad_radius, 16);
    vmiHPelotte pad(g.get(), 17, nullptr, copy_array(o.ys), nullptr, nullptr, cx, cy);
    pad.build_HPelotte(1, 5.0, 3);
    expect_same_grid(*g, before);
    EXPECT_EQ(Probe::map(pad), nullptr);
}

TEST(vmiHPelotte, BuildHPelotte_NullYsLeavesGridUnchanged)
{
    auto g = grid_of(grid_n, grid_n, uneven);
    vmiBaseGrid before(*g);
    Outline o = circle(cx, cy, pad_radius, 16);
    vmiHPelotte pad(g.get(), 17, copy_array(o.xs), nullptr, nullptr, nullptr, cx, cy);
    pad.build_HPelotte(1, 5.0, 3);
    expect_same_grid(*g, before);
    EXPECT_EQ(Probe::map(pad), nullptr);
}

TEST(vmiHPelotte, BuildHPelotte_FewerThanTwoOutlinePointsLeaveGridUnchanged)
{
    for (int n : {1, 0, -3}) {
        auto g = grid_of(grid_n, grid_n, uneven);
        vmiBaseGrid before(*g);
        vmiHPelotte pad(g.get(), n, array({cx}), array({cy}), array({0.1}), array({0.2}), cx, cy);
        pad.build_HPelotte(1, 5.0, 3);
        expect_same_grid(*g, before);
        EXPECT_EQ(Probe::map(pad), nullptr) << n;
    }
}

TEST(vmiHPelotte, BuildHPelotte_NullGridDoesNothing)
{
    auto pad = make_pad(nullptr, linear_xb, linear_yb);
    pad->build_HPelotte(0, 5.0, 3);
    EXPECT_EQ(Probe::map(*pad), nullptr);
    EXPECT_EQ(Probe::boundary_curve(*pad), nullptr);
}

TEST(vmiHPelotte, BuildHPelotte_GridWithoutColumnsOrRowsLeftUnchanged)
{
    for (bool columns : {true, false}) {
        auto g = grid_of(grid_n, grid_n, uneven);
        vmiBaseGrid before(*g);
        (columns ? g->x_size() : g->y_size()) = 0;
        auto pad = make_pad(g.get(), linear_xb, linear_yb);
        pad->build_HPelotte(1, 5.0, 3);
        EXPECT_EQ(Probe::map(*pad), nullptr);
        (columns ? g->x_size() : g->y_size()) = grid_n;
        expect_same_grid(*g, before);
    }
}

TEST(vmiHPelotte, BuildHPelotte_OutlineWithoutBsplineFormLeavesGridUnchanged)
{
    // A closed list of three points (two distinct and the closing one) has no
    // tangents, so its spline has no B-spline form.
    auto g = grid_of(grid_n, grid_n, uneven);
    vmiBaseGrid before(*g);
    vmiHPelotte pad(g.get(), 3, array({5.0, 25.0, 5.0}), array({5.0, 25.0, 5.0}), nullptr, nullptr,
                    cx, cy);
    pad.build_HPelotte(1, 5.0, 3);
    EXPECT_EQ(Probe::boundary_curve(pad), nullptr);
    EXPECT_EQ(Probe::polyline(pad), nullptr);
    EXPECT_EQ(Probe::map(pad), nullptr);
    expect_same_grid(*g, before);
}

TEST(vmiHPelotte, BuildHPelotte_AllCoincidentOutlineLeavesGridUnchanged)
{
    for (int n : {2, 3, 6}) {
        auto g = grid_of(grid_n, grid_n, uneven);
        vmiBaseGrid before(*g);
        std::vector<double> xs(static_cast<size_t>(n), 12.0), ys(static_cast<size_t>(n), 14.0);
        vmiHPelotte pad(g.get(), n, copy_array(xs), copy_array(ys), copy_array(xs),
                        copy_array(ys), 12.0, 14.0);
        pad.build_HPelotte(0, 5.0, 3);
        expect_same_grid(*g, before);
    }
}

// ---------------------------------------------------------------------------
// Flat pads

TEST(vmiHPelotte, BuildHPelotte_FlatPadRisesByHInside)
{
    auto g = flat_grid(grid_n, grid_n, 1.0);
    auto pad = make_pad(g.get(), default_xb, default_yb);
    pad->build_HPelotte(0, 2.5, 0);
    EXPECT_EQ(Probe::profile(*pad), nullptr);
    EXPECT_EQ(Probe::angles(*pad), nullptr);
    int raised = 0;
    for (int j = 0; j < grid_n; j++)
        for (int i = 0; i < grid_n; i++) {
            const double z = g->point(i, j).z();
            const double r = dist(i, j, cx, cy);
            if (r <= pad_radius - 1.5) {
                EXPECT_EQ(z, 3.5) << i << "," << j;
            } else if (r >= pad_radius + 1.5) {
                EXPECT_EQ(z, 1.0) << i << "," << j;
            } else {
                EXPECT_TRUE(z == 1.0 || z == 3.5) << i << "," << j;
            }
            raised += z == 3.5;
        }
    // Roughly the area of the circle.
    EXPECT_GT(raised, 150);
    EXPECT_LT(raised, 250);
}

TEST(vmiHPelotte, BuildHPelotte_FirstAndLastMapRowsAreBothRaised)
{
    // Unlike the grid's own flat pad, the modifier visits the map's last row too.
    auto g = flat_grid(grid_n, grid_n, 1.0);
    auto pad = make_pad(g.get(), default_xb, default_yb);
    pad->build_HPelotte(0, 2.5, 0);
    vmiPolylineGridMap* map = Probe::map(*pad);
    ASSERT_NE(map, nullptr);
    for (int j : {map->y_min(), map->y_max()}) {
        const int* c = map->get_y_intersections(j);
        ASSERT_NE(c, nullptr) << j;
        ASSERT_GE(c[0], 2) << j;
        for (int i = 0; i < grid_n; i++)
            EXPECT_EQ(g->point(i, j).z(), i >= c[1] && i < c[2] ? 3.5 : 1.0) << i << "," << j;
    }
}

TEST(vmiHPelotte, BuildHPelotte_NullProfileArraysMakeFlatPad)
{
    for (int absent : {0, 1}) {
        auto g = flat_grid(grid_n, grid_n, 0.0);
        auto pad = absent == 0 ? make_pad(g.get(), {}, linear_yb)
                               : make_pad(g.get(), linear_xb, {});
        pad->build_HPelotte(0, 2.0, 0);
        EXPECT_EQ(Probe::profile(*pad), nullptr);
        EXPECT_EQ(g->point(15, 15).z(), 2.0);
        EXPECT_EQ(g->point(20, 15).z(), 2.0);  // the linear profile would give about 0.75
        EXPECT_EQ(g->point(15, 10).z(), 2.0);
    }
}

TEST(vmiHPelotte, InitCurves_ProfileArraysShorterThanThreeMakeFlatPad)
{
    // Two outline points come with two profile values each: too few for a profile.
    auto g = flat_grid(grid_n, grid_n, 0.0);
    vmiHPelotte pad(g.get(), 2, array({5.0, 25.0}), array({5.0, 20.0}), array({0.3, 0.6}),
                    array({0.2, 0.4}), cx, cy);
    Probe::set_h(pad, 2.0);
    Probe::init_curves(pad);
    ASSERT_NE(Probe::map(pad), nullptr);
    EXPECT_EQ(Probe::profile(pad), nullptr);
    EXPECT_EQ(Probe::angles(pad), nullptr);
}

TEST(vmiHPelotte, InitCurves_FlatShortcutOnlyOnExactDefaultProfile)
{
    auto g = flat_grid(grid_n, grid_n, 0.0);
    for (int k = 0; k < 6; k++) {
        std::vector<double> xb = default_xb, yb = default_yb;
        double& v = k < 3 ? xb[static_cast<size_t>(k)] : yb[static_cast<size_t>(k - 3)];
        v = std::nextafter(v, 2.0);
        auto pad = make_pad(g.get(), xb, yb);
        Probe::set_h(*pad, 2.0);
        Probe::init_curves(*pad);
        EXPECT_NE(Probe::profile(*pad), nullptr) << k;
        EXPECT_NE(Probe::angles(*pad), nullptr) << k;
    }
}

TEST(vmiHPelotte, BuildHPelotte_NearDefaultProfileFollowsItsProfile)
{
    auto g = flat_grid(grid_n, grid_n, 0.0);
    std::vector<double> yb = default_yb;
    yb[2] = std::nextafter(1.0, 2.0);
    auto pad = make_pad(g.get(), default_xb, yb);
    pad->build_HPelotte(0, 2.0, 0);
    EXPECT_EQ(g->point(15, 15).z(), 2.0);  // the centre stands at the top
    // Half-way out, this profile (control points at x = 0.5) is well below the top.
    EXPECT_LT(g->point(19, 15).z(), 1.9);
    EXPECT_GT(g->point(19, 15).z(), 0.0);
}

// ---------------------------------------------------------------------------
// Modes

TEST(vmiHPelotte, BuildHPelotte_Mode2KeepsTheLargerHeight)
{
    auto g = grid_of(grid_n, grid_n, [](int i, int) { return (i - 15) * 0.25; });
    auto pad = make_pad(g.get(), linear_xb, linear_yb);
    pad->build_HPelotte(2, 1.0, 0);
    for (int j = 0; j < grid_n; j++)
        for (int i = 0; i < grid_n; i++) {
            const double before = (i - 15) * 0.25;
            const double r = dist(i, j, cx, cy);
            if (r <= pad_radius - 1.5) {
                EXPECT_EQ(g->point(i, j).z(), before > 1.0 ? before : 1.0) << i << "," << j;
            } else if (r >= pad_radius + 1.5) {
                EXPECT_EQ(g->point(i, j).z(), before) << i << "," << j;
            }
        }
}

TEST(vmiHPelotte, BuildHPelotte_Mode3KeepsTheSmallerHeight)
{
    auto g = grid_of(grid_n, grid_n, [](int i, int) { return (i - 15) * 0.25; });
    auto pad = make_pad(g.get(), linear_xb, linear_yb);
    pad->build_HPelotte(3, 1.0, 0);
    for (int j = 0; j < grid_n; j++)
        for (int i = 0; i < grid_n; i++) {
            const double before = (i - 15) * 0.25;
            const double r = dist(i, j, cx, cy);
            if (r <= pad_radius - 1.5) {
                EXPECT_EQ(g->point(i, j).z(), before < 1.0 ? before : 1.0) << i << "," << j;
            } else if (r >= pad_radius + 1.5) {
                EXPECT_EQ(g->point(i, j).z(), before) << i << "," << j;
            }
        }
}

TEST(vmiHPelotte, BuildHPelotte_ReplacingModesGiveHWhateverTheProfile)
{
    for (int mode : {1, 4, 7}) {
        auto g = grid_of(grid_n, grid_n, uneven);
        auto pad = make_pad(g.get(), linear_xb, linear_yb);
        pad->build_HPelotte(mode, 1.75, 0);
        ASSERT_NE(Probe::profile(*pad), nullptr);
        for (int j = 0; j < grid_n; j++)
            for (int i = 0; i < grid_n; i++) {
                const double r = dist(i, j, cx, cy);
                if (r <= pad_radius - 1.5) {
                    EXPECT_EQ(g->point(i, j).z(), 1.75) << mode << ": " << i << "," << j;
                } else if (r >= pad_radius + 1.5) {
                    EXPECT_EQ(g->point(i, j).z(), uneven(i, j)) << mode << ": " << i << "," << j;
                }
            }
    }
}

TEST(vmiHPelotte, Height_ModesAboveZeroGiveHWhateverTheProfile)
{
    auto g = flat_grid(grid_n, grid_n, 0.0);
    auto pad = make_pad(g.get(), linear_xb, linear_yb);
    Probe::set_h(*pad, 3.0);
    Probe::init_curves(*pad);
    ASSERT_NE(Probe::profile(*pad), nullptr);
    for (int mode : {1, 2, 3, 9})
        for (int i : {15, 18, 21, 30})
            EXPECT_EQ(Probe::height(*pad, mode, i, 15), 3.0) << mode << ": " << i;
    EXPECT_LT(Probe::height(*pad, 0, 21, 15), 3.0);
}

TEST(vmiHPelotte, BuildHPelotte_NegativeModeReplacesWithTheProfileHeight)
{
    // Only modes from 1 up take the flat height; a negative mode replaces the
    // node with the profile's height.
    auto g = flat_grid(grid_n, grid_n, 10.0);
    auto pad = make_pad(g.get(), linear_xb, linear_yb);
    pad->build_HPelotte(-1, 4.0, 0);
    EXPECT_EQ(g->point(15, 15).z(), 4.0);
    for (int d : {2, 4, 6})
        EXPECT_NEAR(g->point(15 + d, 15).z(), 4.0 * (1.0 - d / pad_radius), 0.12) << d;
}

// ---------------------------------------------------------------------------
// The radial profile

TEST(vmiHPelotte, BuildHPelotte_Mode0AddsTheRadialProfile)
{
    auto g = flat_grid(grid_n, grid_n, 1.0);
    auto pad = make_pad(g.get(), linear_xb, linear_yb);
    pad->build_HPelotte(0, 4.0, 0);
    EXPECT_EQ(g->point(15, 15).z(), 5.0);
    // The linear profile falls by h over the radius; the outline polyline and
    // the profile search are each a little off it.
    for (int d : {2, 4, 6}) {
        const double expected = 1.0 + 4.0 * (1.0 - d / pad_radius);
        EXPECT_NEAR(g->point(15 + d, 15).z(), expected, 0.12) << d;
        EXPECT_NEAR(g->point(15 - d, 15).z(), expected, 0.12) << d;
        EXPECT_NEAR(g->point(15, 15 + d).z(), expected, 0.12) << d;
        EXPECT_NEAR(g->point(15, 15 - d).z(), expected, 0.12) << d;
    }
    EXPECT_EQ(g->point(15 + 10, 15).z(), 1.0);
}

TEST(vmiHPelotte, Height_NodeWithinHalfOfTheCentreGetsH)
{
    auto g = flat_grid(grid_n, grid_n, 0.0);
    auto pad = make_pad(g.get(), linear_xb, linear_yb, 15.3, 15.0);
    Probe::set_h(*pad, 2.0);
    Probe::init_curves(*pad);
    ASSERT_NE(Probe::profile(*pad), nullptr);
    EXPECT_EQ(Probe::height(*pad, 0, 15, 15), 2.0);  // 0.3 from the centre
    EXPECT_LT(Probe::height(*pad, 0, 16, 15), 2.0);  // 0.7 from the centre
}

TEST(vmiHPelotte, Height_NodeExactlyHalfFromTheCentreFollowsTheProfile)
{
    auto g = flat_grid(grid_n, grid_n, 0.0);
    auto pad = make_pad(g.get(), linear_xb, linear_yb, 15.5, 15.0);
    Probe::set_h(*pad, 2.0);
    Probe::init_curves(*pad);
    const double z = Probe::height(*pad, 0, 15, 15);
    EXPECT_LT(z, 2.0);
    EXPECT_NEAR(z, 2.0 * (1.0 - 0.5 / pad_radius), 0.03);
}

TEST(vmiHPelotte, Height_NodeBeyondTheOutlineGetsTheProfileEndHeight)
{
    auto g = flat_grid(grid_n, grid_n, 0.0);
    auto pad = make_pad(g.get(), linear_xb, linear_yb);
    Probe::set_h(*pad, 2.0);
    Probe::init_curves(*pad);
    EXPECT_EQ(Probe::height(*pad, 0, 25, 15), 0.0);
    EXPECT_EQ(Probe::height(*pad, 0, 15, 27), 0.0);
    EXPECT_EQ(Probe::height(*pad, 0, 4, 4), 0.0);
}

TEST(vmiHPelotte, ProfileHeight_AboveEndThresholdGivesTheEndHeight)
{
    auto g = flat_grid(grid_n, grid_n, 0.0);
    auto pad = make_pad(g.get(), linear_xb, linear_yb);
    Probe::set_h(*pad, 2.0);
    Probe::init_curves(*pad);
    EXPECT_EQ(Probe::profile_height(*pad, 0.999991), 0.0);
    EXPECT_EQ(Probe::profile_height(*pad, 1.0), 0.0);
    EXPECT_EQ(Probe::profile_height(*pad, 7.5), 0.0);
    // At the threshold itself the profile is searched, and stops short of its end.
    EXPECT_GT(Probe::profile_height(*pad, 0.99999), 0.0);
}

TEST(vmiHPelotte, ProfileHeight_TinyRadiusGivesTheStartHeight)
{
    auto g = flat_grid(grid_n, grid_n, 0.0);
    auto pad = make_pad(g.get(), linear_xb, linear_yb);
    Probe::set_h(*pad, 2.0);
    Probe::init_curves(*pad);
    EXPECT_EQ(Probe::profile_height(*pad, 0.0), 2.0);
    EXPECT_EQ(Probe::profile_height(*pad, 1e-7), 2.0);
    EXPECT_LT(Probe::profile_height(*pad, 2e-7), 2.0);
}

TEST(vmiHPelotte, ProfileHeight_LinearProfileStopsWhereTheBisectionComesWithin001)
{
    // Target 0.3: u runs 0.5, 0.25, 0.375, 0.3125, 0.28125, 0.296875, the first
    // within 0.01 of it; the linear profile's height there is h (1 - u).
    auto g = flat_grid(grid_n, grid_n, 0.0);
    auto pad = make_pad(g.get(), linear_xb, linear_yb);
    Probe::set_h(*pad, 2.0);
    Probe::init_curves(*pad);
    EXPECT_NEAR(Probe::profile_height(*pad, 0.3), 2.0 * (1.0 - 0.296875), 1e-12);
    EXPECT_NEAR(Probe::profile_height(*pad, 0.5), 1.0, 1e-12);
}

TEST(vmiHPelotte, ProfileHeight_WithoutProfileIsH)
{
    auto g = flat_grid(grid_n, grid_n, 0.0);
    auto pad = make_pad(g.get(), default_xb, default_yb);
    Probe::set_h(*pad, 2.0);
    Probe::init_curves(*pad);
    ASSERT_EQ(Probe::profile(*pad), nullptr);
    EXPECT_EQ(Probe::profile_height(*pad, 0.4), 2.0);
    EXPECT_EQ(Probe::height(*pad, 0, 20, 15), 2.0);
}

// ---------------------------------------------------------------------------
// Angles and the boundary

TEST(vmiHPelotte, Angle_PointStraightAlongPlusXIsTwoPiNotZero)
{
    vmiHPelotte pad(nullptr, 0, nullptr, nullptr, nullptr, nullptr, 0.0, 0.0);
    Probe::set_frame(pad, m03DPoint(2.0, 3.0, 0.0));
    EXPECT_EQ(Probe::angle(pad, m03DPoint(5.0, 3.0, 0.0)), two_pi);
}

TEST(vmiHPelotte, Angle_RunsCounterClockwiseFromPlusX)
{
    vmiHPelotte pad(nullptr, 0, nullptr, nullptr, nullptr, nullptr, 0.0, 0.0);
    Probe::set_frame(pad, m03DPoint(0.0, 0.0, 0.0));
    EXPECT_EQ(Probe::angle(pad, m03DPoint(0.0, 3.0, 0.0)), std::acos(0.0));
    EXPECT_EQ(Probe::angle(pad, m03DPoint(-3.0, 0.0, 0.0)), pi);
    EXPECT_EQ(Probe::angle(pad, m03DPoint(0.0, -3.0, 0.0)), two_pi - std::acos(0.0));
    EXPECT_NEAR(Probe::angle(pad, m03DPoint(1.0, -1.0, 0.0)), 1.75 * pi, 1e-15);
    EXPECT_NEAR(Probe::angle(pad, m03DPoint(-1.0, 1.0, 0.0)), 0.75 * pi, 1e-15);
}

TEST(vmiHPelotte, Angle_PointNearerThanOneTenthIsZero)
{
    vmiHPelotte pad(nullptr, 0, nullptr, nullptr, nullptr, nullptr, 0.0, 0.0);
    Probe::set_frame(pad, m03DPoint(0.0, 0.0, 0.0));
    EXPECT_EQ(Probe::angle(pad, m03DPoint(0.0, 0.0999, 0.0)), 0.0);
    EXPECT_EQ(Probe::angle(pad, m03DPoint(-0.05, -0.05, 0.0)), 0.0);
    EXPECT_EQ(Probe::angle(pad, m03DPoint(0.0, 0.1, 0.0)), std::acos(0.0));
}

TEST(vmiHPelotte, InitAngles_RiseOnceRoundFromTheStartAngle)
{
    // From +x (two_pi, not 0), counter-clockwise: every later angle lies below
    // the start and is taken one turn on; the last repeats the first a turn on.
    vmiHPelotte pad(nullptr, 0, nullptr, nullptr, nullptr, nullptr, 0.0, 0.0);
    Probe::set_frame(pad, m03DPoint(0.0, 0.0, 0.0));
    Probe::set_polyline(pad, points_of({{4, 0, 0}, {0, 4, 0}, {-4, 0, 0}, {0, -4, 0}, {4, 0, 0}}));
    Probe::init_angles(pad);
    m01DVector* a = Probe::angles(pad);
    ASSERT_NE(a, nullptr);
    ASSERT_EQ(a->size(), 5);
    EXPECT_EQ(Probe::start_angle(pad), two_pi);
    EXPECT_EQ(a->point(0), two_pi);
    EXPECT_EQ(a->point(1), std::acos(0.0) + two_pi);
    EXPECT_EQ(a->point(2), pi + two_pi);
    EXPECT_EQ(a->point(3), (two_pi - std::acos(0.0)) + two_pi);
    EXPECT_EQ(a->point(4), two_pi + two_pi);
}

TEST(vmiHPelotte, InitAngles_AngleAboveTheStartStaysAsItIs)
{
    vmiHPelotte pad(nullptr, 0, nullptr, nullptr, nullptr, nullptr, 0.0, 0.0);
    Probe::set_frame(pad, m03DPoint(0.0, 0.0, 0.0));
    Probe::set_polyline(pad, points_of({{0, 4, 0}, {-4, 0, 0}, {0, -4, 0}, {4, 0, 0}, {0, 4, 0}}));
    Probe::init_angles(pad);
    m01DVector* a = Probe::angles(pad);
    ASSERT_NE(a, nullptr);
    EXPECT_EQ(a->point(0), std::acos(0.0));
    EXPECT_EQ(a->point(1), pi);
    EXPECT_EQ(a->point(2), two_pi - std::acos(0.0));
    EXPECT_EQ(a->point(3), two_pi);
    EXPECT_EQ(a->point(4), std::acos(0.0) + two_pi);
}

TEST(vmiHPelotte, InitAngles_AngleEqualToTheStartIsNotTurnedOn)
{
    // Only an angle below the start is taken one turn on.
    vmiHPelotte pad(nullptr, 0, nullptr, nullptr, nullptr, nullptr, 0.0, 0.0);
    Probe::set_frame(pad, m03DPoint(0.0, 0.0, 0.0));
    Probe::set_polyline(pad, points_of({{0, 4, 0}, {0, 9, 0}, {4, 0, 0}, {0, 4, 0}}));
    Probe::init_angles(pad);
    m01DVector* a = Probe::angles(pad);
    ASSERT_NE(a, nullptr);
    EXPECT_EQ(a->point(1), std::acos(0.0));
    EXPECT_EQ(a->point(2), two_pi);
}

TEST(vmiHPelotte, InitAngles_OnePointPolylineGivesOneAngleAndNoneGivesNoAngles)
{
    vmiHPelotte pad(nullptr, 0, nullptr, nullptr, nullptr, nullptr, 0.0, 0.0);
    Probe::set_frame(pad, m03DPoint(0.0, 0.0, 0.0));
    Probe::set_polyline(pad, points_of({{0, 4, 0}}));
    Probe::init_angles(pad);
    ASSERT_NE(Probe::angles(pad), nullptr);
    ASSERT_EQ(Probe::angles(pad)->size(), 1);
    EXPECT_EQ(Probe::angles(pad)->point(0), std::acos(0.0) + two_pi);

    Probe::set_polyline(pad, new m03DVector(0));
    Probe::init_angles(pad);
    EXPECT_EQ(Probe::angles(pad), nullptr);
    Probe::set_polyline(pad, nullptr);
    Probe::init_angles(pad);
    EXPECT_EQ(Probe::angles(pad), nullptr);
}

TEST(vmiHPelotte, GetPointOnBound_InterpolatesBetweenTheBracketingAngles)
{
    vmiHPelotte pad(nullptr, 0, nullptr, nullptr, nullptr, nullptr, 0.0, 0.0);
    Probe::set_frame(pad, m03DPoint(0.0, 0.0, 0.0));
    // The last point differs from the first, so that it shows which end is taken.
    Probe::set_polyline(
        pad, points_of({{10, 0, 0}, {0, 10, 0}, {-10, 0, 0}, {0, -10, 0}, {9, 1, 0}}));
    Probe::set_angles(pad, values({0.5, 1.5, 2.5, 3.5, 0.5 + two_pi}), 0.5);
    m03DPoint p = Probe::point_on_bound(pad, 1.0);
    EXPECT_EQ(p.x(), 5.0);
    EXPECT_EQ(p.y(), 5.0);
    p = Probe::point_on_bound(pad, 3.25);
    EXPECT_EQ(p.x(), -2.5);
    EXPECT_EQ(p.y(), -7.5);
    // The start angle itself is not taken one turn on.
    p = Probe::point_on_bound(pad, 0.5);
    EXPECT_TRUE(p == m03DPoint(10.0, 0.0, 0.0));
    // Below the start angle the search looks one turn on, on the last segment.
    const double t = 0.2 + two_pi;
    const double s = (t - 3.5) / ((0.5 + two_pi) - 3.5);
    p = Probe::point_on_bound(pad, 0.2);
    EXPECT_NEAR(p.x(), 9.0 * s, 1e-12);
    EXPECT_NEAR(p.y(), -10.0 * (1 - s) + 1.0 * s, 1e-12);
}

TEST(vmiHPelotte, GetPointOnBound_TwoAnglesAlwaysUseTheFirstSegment)
{
    vmiHPelotte pad(nullptr, 0, nullptr, nullptr, nullptr, nullptr, 0.0, 0.0);
    Probe::set_frame(pad, m03DPoint(0.0, 0.0, 0.0));
    Probe::set_polyline(pad, points_of({{2, 0, 0}, {4, 0, 0}}));
    Probe::set_angles(pad, values({1.0, 2.0}), 1.0);
    m03DPoint p = Probe::point_on_bound(pad, 3.5);  // beyond the segment: extended
    EXPECT_EQ(p.x(), 2.0 * (1 - 2.5) + 4.0 * 2.5);
}

TEST(vmiHPelotte, GetPointOnBound_TooFewAnglesGiveTheCentre)
{
    vmiHPelotte pad(nullptr, 0, nullptr, nullptr, nullptr, nullptr, 0.0, 0.0);
    Probe::set_frame(pad, m03DPoint(3.0, 4.0, 0.0));
    Probe::set_polyline(pad, points_of({{10, 0, 0}}));
    Probe::set_angles(pad, values({1.0}), 1.0);
    EXPECT_TRUE(Probe::point_on_bound(pad, 1.5) == m03DPoint(3.0, 4.0, 0.0));
    // Angles without a polyline as long as them, or none at all.
    Probe::set_angles(pad, values({1.0, 2.0, 3.0}), 1.0);
    EXPECT_TRUE(Probe::point_on_bound(pad, 1.5) == m03DPoint(3.0, 4.0, 0.0));
    Probe::set_angles(pad, nullptr, 1.0);
    EXPECT_TRUE(Probe::point_on_bound(pad, 1.5) == m03DPoint(3.0, 4.0, 0.0));
}

TEST(vmiHPelotte, GetPointOnBound_EqualAnglesGiveANonFinitePointInBounds)
{
    vmiHPelotte pad(nullptr, 0, nullptr, nullptr, nullptr, nullptr, 0.0, 0.0);
    Probe::set_frame(pad, m03DPoint(0.0, 0.0, 0.0));
    Probe::set_polyline(pad, points_of({{2, 0, 0}, {4, 0, 0}, {5, 0, 0}}));
    Probe::set_angles(pad, values({1.0, 1.0, 1.0}), 1.0);
    m03DPoint p = Probe::point_on_bound(pad, 1.0);
    EXPECT_FALSE(std::isfinite(p.x()));
}

TEST(vmiHPelotte, Height_ZeroBoundaryRadiusGivesTheEndHeight)
{
    // A boundary through the centre puts the node beyond it: the end height 0,
    // which in mode 0 leaves the node as it is.
    auto g = flat_grid(grid_n, grid_n, 0.0);
    auto pad = make_pad(g.get(), linear_xb, linear_yb);
    Probe::set_h(*pad, 2.0);
    Probe::init_curves(*pad);
    ASSERT_NE(Probe::profile(*pad), nullptr);
    Probe::set_polyline(*pad, points_of({{cx, cy, 0}, {cx, cy, 0}}));
    Probe::set_angles(*pad, values({0.0, two_pi}), 0.0);
    EXPECT_EQ(Probe::height(*pad, 0, 18, 15), 0.0);
    EXPECT_EQ(Probe::height(*pad, 0, 12, 11), 0.0);
}

TEST(vmiHPelotte, Height_TooFewAnglesGiveTheEndHeight)
{
    auto g = flat_grid(grid_n, grid_n, 0.0);
    auto pad = make_pad(g.get(), linear_xb, linear_yb);
    Probe::set_h(*pad, 2.0);
    Probe::init_curves(*pad);
    Probe::set_polyline(*pad, points_of({{cx + 8, cy, 0}}));
    Probe::set_angles(*pad, values({two_pi}), two_pi);
    EXPECT_EQ(Probe::height(*pad, 0, 18, 15), 0.0);
    EXPECT_EQ(Probe::height(*pad, 0, 15, 15), 2.0);  // the centre still stands at the top
}

// ---------------------------------------------------------------------------
// Curves, map and profile

TEST(vmiHPelotte, InitCurves_PolylineIsTheReversedApproximationOfTheOutlineSpline)
{
    auto g = flat_grid(grid_n, grid_n, 0.0);
    auto pad = make_pad(g.get(), linear_xb, linear_yb);
    Probe::set_h(*pad, 2.0);
    Probe::init_curves(*pad);
    ASSERT_NE(Probe::polyline(*pad), nullptr);

    Outline o = circle(cx, cy, pad_radius, 16);
    const int n = static_cast<int>(o.xs.size());
    auto* pts = new m03DVector(n);
    for (int k = 0; k < n; k++)
        pts->set_point(k, m03DPoint(o.xs[static_cast<size_t>(k)], o.ys[static_cast<size_t>(k)],
                                    0.0));
    m03SplineCurve spline(pts);
    std::unique_ptr<m03DVector> expected(spline.approximate(0.1));
    ASSERT_NE(expected, nullptr);
    m03DVector* got = Probe::polyline(*pad);
    ASSERT_EQ(got->size(), expected->size());
    const int m = got->size();
    for (int k = 0; k < m; k++)
        EXPECT_TRUE(got->point(k) == expected->point(m - 1 - k)) << k;

    // The map is laid from the polyline before it is reversed.
    vmiPolylineGridMap map(g.get(), expected.get());
    vmiPolylineGridMap* built = Probe::map(*pad);
    ASSERT_NE(built, nullptr);
    EXPECT_EQ(built->y_min(), map.y_min());
    EXPECT_EQ(built->y_max(), map.y_max());
    for (int j = 0; j < grid_n; j++) {
        const int* a = built->get_y_intersections(j);
        const int* b = map.get_y_intersections(j);
        ASSERT_EQ(a == nullptr, b == nullptr) << j;
        if (a == nullptr)
            continue;
        ASSERT_EQ(a[0], b[0]) << j;
        for (int k = 1; k <= a[0]; k++)
            EXPECT_EQ(a[k], b[k]) << j;
    }
}

TEST(vmiHPelotte, InitCurves_SetsCentreAxesAndTwoPi)
{
    auto g = flat_grid(grid_n, grid_n, 0.0);
    auto pad = make_pad(g.get(), default_xb, default_yb, 14.25, 16.5);
    Probe::init_curves(*pad);
    EXPECT_TRUE(Probe::centre(*pad) == m03DPoint(14.25, 16.5, 0.0));
    EXPECT_TRUE(Probe::axis_1(*pad) == m03DPoint(1.0, 0.0, 0.0));
    EXPECT_TRUE(Probe::axis_2(*pad) == m03DPoint(0.0, 1.0, 0.0));
    EXPECT_EQ(Probe::two_pi(*pad), 2.0 * std::acos(-1.0));
}

TEST(vmiHPelotte, InitCurves_AnglesFollowThePolylineAndCloseOneTurnOn)
{
    auto g = flat_grid(grid_n, grid_n, 0.0);
    auto pad = make_pad(g.get(), linear_xb, linear_yb);
    Probe::set_h(*pad, 2.0);
    Probe::init_curves(*pad);
    m01DVector* a = Probe::angles(*pad);
    m03DVector* poly = Probe::polyline(*pad);
    ASSERT_NE(a, nullptr);
    ASSERT_EQ(a->size(), poly->size());
    const int m = a->size();
    EXPECT_EQ(Probe::start_angle(*pad), a->point(0));
    EXPECT_EQ(a->point(m - 1), a->point(0) + two_pi);
    for (int k = 1; k < m; k++) {
        EXPECT_GE(a->point(k), a->point(0)) << k;
        EXPECT_LE(a->point(k), a->point(0) + two_pi) << k;
    }
}

TEST(vmiHPelotte, InitCurves_ProfileIsOneQuarticSegmentThroughTheControlPointsInOrder)
{
    auto g = flat_grid(grid_n, grid_n, 0.0);
    auto pad = make_pad(g.get(), {0.6, 0.4, 0.2}, {0.1, 0.3, 0.7});
    Probe::set_h(*pad, 2.0);
    Probe::init_curves(*pad);
    m0BspCurve* p = Probe::profile(*pad);
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(p->degree(), 4);
    ASSERT_EQ(p->cpnt_vector()->size(), 5);
    EXPECT_TRUE(p->cpnt_vector()->point(0) == m03DPoint(0.0, 2.0, 0.0));
    EXPECT_TRUE(p->cpnt_vector()->point(1) == m03DPoint(0.2, 0.7 * 2.0, 0.0));
    EXPECT_TRUE(p->cpnt_vector()->point(2) == m03DPoint(0.4, 0.3 * 2.0, 0.0));
    EXPECT_TRUE(p->cpnt_vector()->point(3) == m03DPoint(0.6, 0.1 * 2.0, 0.0));
    EXPECT_TRUE(p->cpnt_vector()->point(4) == m03DPoint(1.0, 0.0, 0.0));
    ASSERT_EQ(p->knot_vector()->size(), 10);
    for (int q = 0; q < 10; q++)
        EXPECT_EQ(p->knot_vector()->point(q), q < 5 ? 0.0 : 1.0) << q;
}

TEST(vmiHPelotte, CreateBspCurve_NullPointsOrOrderBelowTwoGiveNull)
{
    vmiHPelotte pad(nullptr, 0, nullptr, nullptr, nullptr, nullptr, 0.0, 0.0);
    EXPECT_EQ(Probe::create_bsp_curve(pad, nullptr, 4), nullptr);
    // The points are released with the curve not made.
    EXPECT_EQ(Probe::create_bsp_curve(pad, points_of({{0, 0, 0}, {1, 0, 0}}), 1), nullptr);
    EXPECT_EQ(Probe::create_bsp_curve(pad, points_of({{0, 0, 0}, {1, 0, 0}}), -5), nullptr);
}

TEST(vmiHPelotte, CreateBspCurve_SevenPointsOfOrderFourJoinTwoBezierSegments)
{
    vmiHPelotte pad(nullptr, 0, nullptr, nullptr, nullptr, nullptr, 0.0, 0.0);
    m03DVector* pts = points_of(
        {{0, 0, 0}, {1, 1, 0}, {2, 1, 0}, {3, 0, 0}, {4, -1, 0}, {5, -1, 0}, {6, 0, 0}});
    std::unique_ptr<m0BspCurve> c(Probe::create_bsp_curve(pad, pts, 4));
    ASSERT_NE(c, nullptr);
    EXPECT_EQ(c->degree(), 3);
    EXPECT_EQ(c->cpnt_vector(), pts);
    const std::vector<double> knots = {0, 0, 0, 0, 0.5, 0.5, 0.5, 1, 1, 1, 1};
    ASSERT_EQ(c->knot_vector()->size(), 11);
    for (int q = 0; q < 11; q++)
        EXPECT_EQ(c->knot_vector()->point(q), knots[static_cast<size_t>(q)]) << q;
    EXPECT_TRUE(c->point(0.5) == m03DPoint(3.0, 0.0, 0.0));
}

TEST(vmiHPelotte, CreateBspCurve_FewerPointsThanTheOrderEndInOnes)
{
    vmiHPelotte pad(nullptr, 0, nullptr, nullptr, nullptr, nullptr, 0.0, 0.0);
    std::unique_ptr<m0BspCurve> c(
        Probe::create_bsp_curve(pad, points_of({{0, 0, 0}, {1, 1, 0}, {2, 0, 0}}), 5));
    ASSERT_NE(c, nullptr);
    const std::vector<double> knots = {0, 0, 0, 0, 0, 1, 1, 1};
    ASSERT_EQ(c->knot_vector()->size(), 8);
    for (int q = 0; q < 8; q++)
        EXPECT_EQ(c->knot_vector()->point(q), knots[static_cast<size_t>(q)]) << q;
}

TEST(vmiHPelotte, CreateBspCurve_OrderAboveTheCurvesMaximumGivesNull)
{
    vmiHPelotte pad(nullptr, 0, nullptr, nullptr, nullptr, nullptr, 0.0, 0.0);
    const int top = m0BspCurve::max_order;
    std::unique_ptr<m0BspCurve> c(Probe::create_bsp_curve(pad, new m03DVector(top), top));
    ASSERT_NE(c, nullptr);
    EXPECT_EQ(c->knot_vector()->size(), 2 * top);
    EXPECT_EQ(Probe::create_bsp_curve(pad, new m03DVector(top + 1), top + 1), nullptr);
}

// ---------------------------------------------------------------------------
// Smoothing after the pad

namespace {

struct Built {
    std::unique_ptr<vmiBaseGrid> grid;
    std::unique_ptr<vmiHPelotte> pad;
};

Built build(int mode, double h, int smooth)
{
    Built b{grid_of(grid_n, grid_n, uneven), nullptr};
    b.pad = make_pad(b.grid.get(), linear_xb, linear_yb);
    b.pad->build_HPelotte(mode, h, smooth);
    return b;
}

// The pad built without smoothing, then smoothed once with radius r (0: not).
std::unique_ptr<vmiBaseGrid> smoothed(int mode, double h, int r)
{
    Built b = build(mode, h, 0);
    if (r > 0)
        b.grid->do_smoothing(r, *Probe::map(*b.pad));
    return std::move(b.grid);
}

}  // namespace

TEST(vmiHPelotte, BuildHPelotte_UnsmoothedPadKeepsEveryHeightItWrote)
{
    // The baseline of the smoothing tests: smooth 0 writes the heights only.
    Built b = build(1, 3.0, 0);
    for (int j = 0; j < grid_n; j++)
        for (int i = 0; i < grid_n; i++) {
            const double z = b.grid->point(i, j).z();
            EXPECT_TRUE(z == 3.0 || z == uneven(i, j)) << i << "," << j;
        }
}

TEST(vmiHPelotte, BuildHPelotte_SmoothMinusOneSelectsTheRadiusByMode)
{
    struct Case {
        int mode;
        int r;
    };
    for (Case c : {Case{0, 2}, Case{1, 4}, Case{2, 0}, Case{3, 0}, Case{5, 0}}) {
        Built b = build(c.mode, 3.0, -1);
        auto expected = smoothed(c.mode, 3.0, c.r);
        expect_same_grid(*b.grid, *expected);
        // The radii are told apart: each choice gives a different grid.
        for (int other : {0, 2, 3, 4})
            if (other != c.r) {
                auto wrong = smoothed(c.mode, 3.0, other);
                EXPECT_FALSE(same_grid(*b.grid, *wrong)) << c.mode << " " << other;
            }
    }
}

TEST(vmiHPelotte, BuildHPelotte_SmoothOneZeroOrOtherNegativeDoesNotSmooth)
{
    for (int smooth : {1, 0, -2, -100})
        for (int mode : {0, 1}) {
            Built b = build(mode, 3.0, smooth);
            auto expected = smoothed(mode, 3.0, 0);
            expect_same_grid(*b.grid, *expected);
            auto wrong = smoothed(mode, 3.0, 2);
            EXPECT_FALSE(same_grid(*b.grid, *wrong)) << smooth << " " << mode;
        }
}

TEST(vmiHPelotte, BuildHPelotte_SmoothAboveOneIsTheNeighbourhoodParameter)
{
    // smooth 3: one pass over a 5 x 5 neighbourhood, in every mode.
    for (int mode : {0, 1, 2, 3}) {
        Built b = build(mode, 3.0, 3);
        auto expected = smoothed(mode, 3.0, 3);
        expect_same_grid(*b.grid, *expected);
        for (int other : {0, 2, 4}) {
            auto wrong = smoothed(mode, 3.0, other);
            EXPECT_FALSE(same_grid(*b.grid, *wrong)) << mode << " " << other;
        }
    }
    Built b = build(0, 3.0, 2);
    expect_same_grid(*b.grid, *smoothed(0, 3.0, 2));
}
