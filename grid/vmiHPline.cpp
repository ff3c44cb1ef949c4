// vmiHPline: the centre line and its outline, and the heights of the
// cross-sections interpolated along the line.
#include "grid/vmiHPline.h"

#include "contour/vmiPolylineGridMap.h"
#include "curves/m01DVector.h"
#include "curves/m03DVector.h"
#include "curves/m03SplineCurve.h"
#include "curves/m0BspCurve.h"
#include "curves/m0HalvingPoints.h"
#include "grid/vmiBaseGrid.h"
#include "grid/vmiInsideNodes.h"
#include "grid/vmiProfileSearch.h"

#include <algorithm>
#include <memory>

namespace {

// Every cross-section is one quartic Bezier segment over five control points.
constexpr int profile_points = 5;
// The outline spline is approximated this closely before it is mapped.
constexpr double outline_tolerance = 0.5;

}  // namespace

vmiHPline::vmiHPline(vmiBaseGrid* grid, const int& n, double* x, double* y, double* px, double* pz)
    : n_(n), grid_(grid)
{
    init_curves(n, x, y, px, pz);
}

vmiHPline::~vmiHPline() = default;

// ---------------------------------------------------------------------------
// Curves

m0BspCurve* vmiHPline::create_bsp_curve(m03DVector* pts, const int& order)
{
    // The curve adopts pts; where no curve comes of them they are freed here.
    std::unique_ptr<m03DVector> owned(pts);
    if (pts == nullptr || order < 2 || order > m0BspCurve::max_order)
        return nullptr;
    const int k = order;
    const int m = pts->size() < 0 ? 0 : pts->size();
    auto knots = std::make_unique<m01DVector>(k + m);
    if (knots->get_data_pointer() == nullptr)
        return nullptr;
    int q = 0;
    for (; q < k; q++)
        knots->set_point(q, 0.0);
    // Inner knots come in runs of order - 1 equal values, evenly spaced.
    for (; q < m; q++)
        knots->set_point(q, static_cast<double>((q - k) / (k - 1) + 1) /
                                static_cast<double>((m - k) / (k - 1) + 1));
    for (; q < k + m; q++)
        knots->set_point(q, 1.0);
    auto* curve = new m0BspCurve();
    curve->set_degree(k - 1);
    curve->set_no_of_cpnt(m);
    curve->set_cpnt_vector(owned.release());
    curve->set_knot_vector(knots.release());
    return curve;
}

void vmiHPline::init_curves(const int& n, double* x, double* y, double* px, double* pz)
{
    if (x == nullptr || y == nullptr || px == nullptr || pz == nullptr || n < 2 || n > max_stations)
        return;

    auto stations = new m03DVector(n);
    if (stations->get_point_array() == nullptr) {
        delete stations;
        return;
    }
    for (int k = 0; k < n; k++)
        stations->set_point(k, m03DPoint(x[k], y[k], 0.0));
    auto spline = std::make_unique<m03SplineCurve>(stations);
    main_curve_.reset(spline->bsp_curve());

    profiles_ = std::make_unique<std::unique_ptr<m0BspCurve>[]>(n);
    for (int k = 0; k < n; k++) {
        auto* pts = new m03DVector(profile_points);
        if (pts->get_point_array() == nullptr) {
            delete pts;
            continue;
        }
        for (int q = 0; q < profile_points; q++)
            pts->set_point(q, m03DPoint(px[profile_points * k + q], pz[profile_points * k + q], 0.0));
        profiles_[k].reset(create_bsp_curve(pts, profile_points));
    }

    if (spline->params_vector() != nullptr)
        params_ = std::make_unique<m01DVector>(spline->params_vector());

    // Without a centre line (stations all on one spot close on themselves, and
    // fewer than four such have no B-spline form), a parameter per station or
    // a cross-section at every station there is no outline: the line changes
    // nothing.
    if (!main_curve_ || !params_ || params_->size() != n || params_->get_data_pointer() == nullptr)
        return;
    for (int k = 0; k < n; k++)
        if (!profiles_[k])
            return;

    // One side from the first station to the last, round the end cap, back
    // along the other side, round the start cap and closed.
    auto outline = new m03DVector(2 * n + 3);
    if (outline->get_point_array() == nullptr) {
        delete outline;
        return;
    }
    const m03DPoint up(0.0, 0.0, 1.0);
    for (int k = 0; k < n; k++) {
        const double t = params_->point(k);
        const m03DPoint P = main_curve_->point(t);
        const m03DPoint T = main_curve_->tang(t);
        const m03DPoint N = (T * up).single();
        const double w = profile_end(*profiles_[k], 1).x();
        outline->set_point(k, P - N * w);
        outline->set_point(2 * n - k, P + N * w);
        if (k == 0) {
            outline->set_point(2 * n + 1, P - T * w);
            outline->set_point(2 * n + 2, outline->point(0));
        }
        if (k == n - 1)
            outline->set_point(n, P + T * w);
    }
    spline.reset();
    auto outline_spline = std::make_unique<m03SplineCurve>(outline);
    bound_curve_.reset(outline_spline->bsp_curve());
    // Without its B-spline form (storage it could not get) there is nothing to map.
    if (!bound_curve_)
        return;
    std::unique_ptr<m03DVector> polyline(bound_curve_->approximate(outline_tolerance));
    grid_map_ = std::make_unique<vmiPolylineGridMap>(grid_, polyline.get());

    main_kept_ = std::make_unique<m0HalvingPoints>(*main_curve_, projection_kept_levels);
    profile_kept_.resize(std::min(n, max_kept_profiles));
    for (std::size_t k = 0; k < profile_kept_.size(); k++)
        profile_kept_[k] = std::make_unique<m0HalvingPoints>(*profiles_[k], vmiProfileSearch::kept_levels);
}

// ---------------------------------------------------------------------------
// Heights

int vmiHPline::get_param_interval(const double& t)
{
    const int m = params_ ? params_->size() : 0;
    if (m - 1 < 2)
        return 0;
    int hi = m - 1, lo = 0, mid = hi / 2;
    do {
        if (params_->point(mid) > t)
            hi = mid;
        else
            lo = mid;
        mid = (hi + lo) / 2;
    } while (hi - lo > 1);
    return lo;
}

double vmiHPline::height(m0BspCurve* profile, const double& s, long long* evaluations)
{
    return relative_profile_height(line_profile_search, *profile, s, evaluations);
}

double vmiHPline::station_height(int k, const double& s, long long* evaluations)
{
    m0HalvingPoints* kept = k < static_cast<int>(profile_kept_.size()) ? profile_kept_[k].get() : nullptr;
    return relative_profile_height(line_profile_search, *profiles_[k], s, evaluations, kept);
}

double vmiHPline::profile_width(int k)
{
    m0HalvingPoints* kept = k < static_cast<int>(profile_kept_.size()) ? profile_kept_[k].get() : nullptr;
    return profile_end(*profiles_[k], 1, kept).x();
}

double vmiHPline::height(const int& i, const int& j, long long* evaluations)
{
    long long ignored = 0;
    long long& made = evaluations ? *evaluations : ignored;
    const m03DPoint p(i * grid_->d_x(), j * grid_->d_y(), 0.0);
    const double t = main_kept_ ? main_curve_->projection(p, *main_kept_, &made) : main_curve_->projection(p, &made);
    const m03DPoint q = main_curve_->point(t);
    ++made;
    const double r = (p - q).module();
    // Before the first and beyond the last station the end cross-section is
    // read at s as a curve parameter, not searched along its x: kept as
    // designed, the ends round off differently from the inside.
    if (t <= 0.0) {
        const double s = r / profile_width(0);
        made += 2;
        return profiles_[0]->point(s).y();
    }
    if (t >= 1.0) {
        const double s = r / profile_width(n_ - 1);
        made += 2;
        return profiles_[n_ - 1]->point(s).y();
    }
    const int k = get_param_interval(t);
    const double f = (t - params_->point(k)) / (params_->point(k + 1) - params_->point(k));
    const double w = (1.0 - f) * profile_width(k) + f * profile_width(k + 1);
    const double s = r / w;
    made += 2;
    return station_height(k + 1, s, &made) * f + station_height(k, s, &made) * (1.0 - f);
}

// ---------------------------------------------------------------------------
// Applying the line

void vmiHPline::build_HPlinie(const int& mode)
{
    combine_inside_nodes(grid_, grid_map_.get(), mode,
                         [this](int i, int j, long long& e) { return height(i, j, &e); });
}
