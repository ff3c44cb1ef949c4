// The pad modifier: a closed outline round a centre, raised by a radial height
// profile that runs from the pad's height at the centre to zero at the outline.
#include "grid/vmiHPelotte.h"

#include "contour/vmiPolylineGridMap.h"
#include "curves/m01DVector.h"
#include "curves/m03DVector.h"
#include "curves/m03SplineCurve.h"
#include "curves/m0BspCurve.h"
#include "grid/vmiBaseGrid.h"
#include "grid/vmiInsideNodes.h"
#include "grid/vmiProfileSearch.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <new>

namespace {

// The outline spline is laid over the grid as a polyline within this distance.
constexpr double boundary_tolerance = 0.1;
// A point nearer the centre than this has no direction: its angle is 0.
constexpr double angle_radius = 0.1;
// A node nearer the centre than this stands at the top of the profile.
constexpr double top_radius = 0.5;
// The profile takes three control points from each of xb and yb.
constexpr int profile_values = 3;
// The profile is one quartic Bezier segment over five control points.
constexpr int profile_order = 5;

// xb = (0.5, 0.5, 0.5) and yb = (0, 0.5, 1) are the section's untouched
// defaults: such a pad is flat, whatever the profile would have made of them.
bool default_profile(const double* xb, const double* yb)
{
    return xb[0] == 0.5 && xb[1] == 0.5 && xb[2] == 0.5 && yb[0] == 0.0 && yb[1] == 0.5 &&
           yb[2] == 1.0;
}

// The neighbourhood parameter of the pass that follows the pad; 0 for none.
// -1 picks by mode: a replaced pad is smoothed wider than an added one, and
// the max and min pads are left as they are.
int smoothing_radius(const int& mode, const int& smooth)
{
    if (smooth > 1)
        return smooth;
    if (smooth == -1) {
        if (mode == 1)
            return 4;
        if (mode == 0)
            return 2;
    }
    return 0;
}

}  // namespace

vmiHPelotte::vmiHPelotte(vmiBaseGrid* grid, const int& n, double* xs, double* ys, double* xb,
                         double* yb, double xm, double ym)
    : n_(n), grid_(grid), xs_(xs), ys_(ys), xb_(xb), yb_(yb), xm_(xm), ym_(ym),
      centre_(0.0, 0.0, 0.0), axis_1_(0.0, 0.0, 0.0), axis_2_(0.0, 0.0, 0.0)
{
}

// The members own the curves, the map and the four arrays.
vmiHPelotte::~vmiHPelotte() = default;

void vmiHPelotte::init_curves()
{
    // Without a grid to lay it on, or without an outline of two points at
    // least, the pad has no map and leaves the grid as it is.
    if (grid_ == nullptr || grid_->x_size() < 1 || grid_->y_size() < 1)
        return;
    if (xs_ == nullptr || ys_ == nullptr || n_ < 2)
        return;
    auto* outline = new (std::nothrow) m03DVector(n_);
    if (outline == nullptr)
        return;
    if (outline->get_point_array() == nullptr) {
        delete outline;
        return;
    }
    for (int k = 0; k < n_; k++)
        outline->set_point(k, m03DPoint(xs_[k], ys_[k], 0.0));
    {
        m03SplineCurve spline(outline);
        boundary_curve_.reset(spline.bsp_curve());
    }
    // A spline with no B-spline form (a closed list of fewer than four points)
    // gives no boundary.
    if (!boundary_curve_)
        return;
    boundary_polyline_.reset(boundary_curve_->approximate(boundary_tolerance));
    if (boundary_polyline_ && boundary_polyline_->get_point_array() == nullptr)
        boundary_polyline_.reset();
    if (!boundary_polyline_)
        return;
    grid_map_.reset(new (std::nothrow) vmiPolylineGridMap(grid_, boundary_polyline_.get()));
    if (!grid_map_)
        return;
    // The map is laid from the polyline as approximated; the angles then run
    // along it reversed.
    boundary_polyline_->reverse();
    centre_ = m03DPoint(xm_, ym_, 0.0);
    axis_1_ = m03DPoint(1.0, 0.0, 0.0);
    axis_2_ = m03DPoint(0.0, 1.0, 0.0);
    two_pi_ = 2.0 * std::acos(-1.0);
    // Absent profile arrays, or arrays too short to hold three values, make a
    // flat pad like the defaults do.
    if (xb_ == nullptr || yb_ == nullptr || n_ < profile_values)
        return;
    if (default_profile(xb_.get(), yb_.get()))
        return;
    auto* points = new (std::nothrow) m03DVector(profile_order);
    if (points == nullptr)
        return;
    if (points->get_point_array() == nullptr) {
        delete points;
        return;
    }
    points->set_point(0, m03DPoint(0.0, h_, 0.0));
    points->set_point(1, m03DPoint(xb_[2], yb_[2] * h_, 0.0));
    points->set_point(2, m03DPoint(xb_[1], yb_[1] * h_, 0.0));
    points->set_point(3, m03DPoint(xb_[0], yb_[0] * h_, 0.0));
    points->set_point(4, m03DPoint(1.0, 0.0, 0.0));
    profile_.reset(create_bsp_curve(points, profile_order));
    init_angles();
}

void vmiHPelotte::init_angles()
{
    angles_.reset();
    if (!boundary_polyline_ || boundary_polyline_->get_point_array() == nullptr)
        return;
    const int m = boundary_polyline_->size();
    if (m < 1)
        return;
    angles_.reset(new (std::nothrow) m01DVector(m));
    if (!angles_ || angles_->get_data_pointer() == nullptr) {
        angles_.reset();
        return;
    }
    for (int k = 0; k < m; k++) {
        double a = angle(boundary_polyline_->point(k));
        if (k == 0)
            start_angle_ = a;
        else if (start_angle_ > a)
            a = a + two_pi_;
        angles_->point(k) = a;
    }
    // The polyline is closed: its last point repeats the first, one turn on.
    angles_->point(m - 1) = angles_->point(0) + two_pi_;
}

m0BspCurve* vmiHPelotte::create_bsp_curve(m03DVector* pts, const int& order)
{
    // The curve adopts pts; a curve not made releases them. An order the curve
    // cannot evaluate would only ask for a longer knot vector.
    if (pts == nullptr)
        return nullptr;
    if (order < 2 || order > m0BspCurve::max_order) {
        delete pts;
        return nullptr;
    }
    const int k = order;
    const int m = std::max(pts->size(), 0);
    if (m > INT_MAX - k) {
        delete pts;
        return nullptr;
    }
    auto* knots = new (std::nothrow) m01DVector(k + m);
    if (knots == nullptr || knots->get_data_pointer() == nullptr) {
        delete knots;
        delete pts;
        return nullptr;
    }
    auto* curve = new (std::nothrow) m0BspCurve();
    if (curve == nullptr) {
        delete knots;
        delete pts;
        return nullptr;
    }
    // Inner knots in runs of k - 1 equal values: Bezier segments joined at
    // equal parameter steps.
    int q = 0;
    for (; q < k; q++)
        knots->point(q) = 0.0;
    for (; q < m; q++)
        knots->point(q) = static_cast<double>((q - k) / (k - 1) + 1) /
                          static_cast<double>((m - k) / (k - 1) + 1);
    for (; q < k + m; q++)
        knots->point(q) = 1.0;
    curve->set_degree(k - 1);
    curve->set_no_of_cpnt(m);
    curve->set_cpnt_vector(pts);
    curve->set_knot_vector(knots);
    return curve;
}

double vmiHPelotte::angle(m03DPoint p)
{
    m03DPoint d = p - centre_;
    double r = d.module();
    if (r < angle_radius)
        return 0.0;
    m03DPoint u = d / r;
    double a = std::acos(u.scal_mult(axis_1_));
    // A point straight along +x lies on the lower branch and gets two_pi, not
    // 0: kept as designed.
    if (u.scal_mult(axis_2_) > 0)
        return a;
    return two_pi_ - a;
}

m03DPoint vmiHPelotte::get_point_on_bound(double t)
{
    // Fewer than two angles (or a polyline shorter than them) leave nothing to
    // interpolate: the boundary counts as collapsed onto the centre.
    if (!angles_ || !boundary_polyline_)
        return centre_;
    const int m = angles_->size();
    if (m < 2 || boundary_polyline_->size() < m || boundary_polyline_->get_point_array() == nullptr)
        return centre_;
    if (start_angle_ > t)
        t = t + two_pi_;
    int lo = 0;
    int hi = m - 1;
    int mid = hi / 2;
    while (hi - lo > 1) {
        if (angles_->point(mid) > t)
            hi = mid;
        else
            lo = mid;
        mid = (hi + lo) / 2;
    }
    double s = (t - angles_->point(lo)) / (angles_->point(lo + 1) - angles_->point(lo));
    return boundary_polyline_->point(lo) * (1 - s) + boundary_polyline_->point(lo + 1) * s;
}

double vmiHPelotte::height(const int& mode, const int& i, const int& j, long long* evaluations)
{
    if (mode >= 1 || !profile_)
        return h_;
    m03DPoint p(i * grid_->d_x(), j * grid_->d_y(), 0.0);
    double r = (p - centre_).module();
    if (r < top_radius)
        return h_;
    m03DPoint b = get_point_on_bound(angle(p));
    double R = (b - centre_).module();
    // A boundary on the centre (R = 0) puts every node beyond it, at the
    // profile's end height.
    double s = r / R;
    return height(profile_.get(), s, evaluations);
}

double vmiHPelotte::height(m0BspCurve* profile, const double& s, long long* evaluations)
{
    // Without a profile the pad is flat.
    if (profile == nullptr)
        return h_;
    return relative_profile_height(pelotte_profile_search, *profile, s, evaluations);
}

void vmiHPelotte::build_HPelotte(const int& mode, const double& height, const int& smooth)
{
    h_ = height;
    init_curves();
    if (!grid_map_)
        return;
    // Each node is charged to the grid's budget; once it is spent the nodes
    // left keep their heights and the pad is not smoothed.
    bool spent = false;
    for_each_inside_node(*grid_map_, [&](int i, int j) {
        if (spent)
            return;
        long long evaluations = 0;
        const double v = this->height(mode, i, j, &evaluations);
        if (!grid_->charge(node_work(evaluations))) {
            spent = true;
            return;
        }
        const double z = grid_->point(i, j).z();
        double nz;
        if (mode == 0)
            nz = z + v;  // the only mode the radial profile shapes
        else if (mode == 2)
            nz = std::max(z, v);
        else if (mode == 3)
            nz = std::min(z, v);
        else
            nz = v;
        grid_->set_z(i, j, nz);
    });
    const int r = smoothing_radius(mode, smooth);
    if (r > 0 && !spent)
        grid_->do_smoothing(r, *grid_map_);
}
