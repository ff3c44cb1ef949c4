// vmiHPunkt: the turned ellipse round the point and the profile height at a
// node's elliptical distance from it.
#include "grid/vmiHPunkt.h"

#include "contour/vmiPolylineGridMap.h"
#include "curves/m03DVector.h"
#include "curves/m03SplineCurve.h"
#include "curves/m0BspCurve.h"
#include "grid/vmiBaseGrid.h"
#include "grid/vmiInsideNodes.h"
#include "grid/vmiProfileSearch.h"

#include <cmath>
#include <memory>

namespace {

// Each profile is one quartic Bezier segment over five control points.
constexpr int profile_points = 5;
// The ellipse is sampled at this many points, the last repeating the first.
constexpr int outline_points = 40;
// The outline spline is approximated this closely before it is mapped.
constexpr double outline_tolerance = 0.2;

m0BspCurve* profile_curve(const double* xs, const double* ys)
{
    auto* pts = new m03DVector(profile_points);
    if (pts->get_point_array() == nullptr) {
        delete pts;
        return nullptr;
    }
    for (int q = 0; q < profile_points; q++)
        pts->set_point(q, m03DPoint(xs[q], ys[q], 0.0));
    return new m0BspCurve(pts, profile_points);
}

}  // namespace

vmiHPunkt::vmiHPunkt(vmiBaseGrid* grid, const double& alpha, const double& x, const double& y,
                     double* xm1, double* ym1, double* xm2, double* ym2)
    : grid_(grid), xm1_(xm1), ym1_(ym1), xm2_(xm2), ym2_(ym2)
{
    init_curves(alpha, x, y);
}

// Each of the four arrays is freed once, by its own holder.
vmiHPunkt::~vmiHPunkt() = default;

// ---------------------------------------------------------------------------
// Curves

void vmiHPunkt::init_curves(const double& alpha, const double& x, const double& y)
{
    // Without all four profile arrays there is no ellipse, and the point
    // changes nothing.
    if (!xm1_ || !ym1_ || !xm2_ || !ym2_)
        return;
    centre_ = m03DPoint(x, y, 0.0);
    two_pi_ = 2.0 * std::acos(-1.0);
    const double a = two_pi_ - alpha;
    axis_1_ = m03DPoint(std::cos(a), std::sin(a), 0.0);
    axis_2_ = m03DPoint(-std::sin(a), std::cos(a), 0.0);

    profile_1_.reset(profile_curve(xm1_.get(), ym1_.get()));
    profile_2_.reset(profile_curve(xm2_.get(), ym2_.get()));
    r1_ = xm1_[4];
    r2_ = xm2_[4];

    auto* outline = new m03DVector(outline_points);
    if (outline->get_point_array() == nullptr || !profile_1_) {
        delete outline;
        return;
    }
    const double step = two_pi_ / (outline_points - 1);
    for (int k = 0; k < outline_points; k++) {
        const double theta = k * step;
        outline->set_point(k, axis_1_ * (r1_ * std::cos(theta)) + axis_2_ * (r2_ * std::sin(theta)) +
                                  centre_);
    }
    auto spline = std::make_unique<m03SplineCurve>(outline);
    bound_curve_.reset(spline->bsp_curve());
    // Without its B-spline form (storage it could not get) there is nothing to map.
    if (!bound_curve_)
        return;
    std::unique_ptr<m03DVector> polyline(bound_curve_->approximate(outline_tolerance));
    grid_map_ = std::make_unique<vmiPolylineGridMap>(grid_, polyline.get());
}

double vmiHPunkt::x_y_dist(m0BspCurve* curve, const double& t)
{
    const m03DPoint p = curve->point(t);
    return std::sqrt(p.x() * p.x() + p.y() * p.y());
}

// ---------------------------------------------------------------------------
// Heights

double vmiHPunkt::height(m0BspCurve* profile, const double& d, long long* evaluations)
{
    long long ignored = 0;
    long long& made = evaluations ? *evaluations : ignored;
    // The point's profile is read at an absolute distance and ends within 0.1
    // of either end, unlike the relative ends of the pad and the line.
    ++made;
    if (d <= 0.1)
        return profile->point(0.0).y();
    const double x_end = profile->point(1.0).x();
    if (d >= x_end - 0.1) {
        ++made;
        return profile->point(1.0).y();
    }
    return point_profile_search.height(*profile, d, x_end, &made);
}

double vmiHPunkt::height(const int& i, const int& j, long long* evaluations)
{
    const m03DPoint d(i * grid_->d_x() - centre_.x(), j * grid_->d_y() - centre_.y(), 0.0 - 0.0);
    const double u = d.scal_mult(axis_1_) / r1_;
    const double v = d.scal_mult(axis_2_) / r2_;
    const double rho = std::sqrt(u * u + v * v);
    // Only the first profile gives the height; the second one's shape never
    // enters it, its width r2 only stretches the distance across the ellipse.
    return height(profile_1_.get(), rho * r1_, evaluations);
}

// ---------------------------------------------------------------------------
// Applying the point

void vmiHPunkt::build_HPunkt(const int& mode)
{
    combine_inside_nodes(grid_, grid_map_.get(), mode,
                         [this](int i, int j, long long& e) { return height(i, j, &e); });
}
