// m03SplineCurve: chord-length parameters, the two tangent solvers, Hermite
// evaluation and the exact conversion to a cubic B-spline.
#include "curves/m03SplineCurve.h"

#include <algorithm>
#include <cmath>
#include <new>

#include "curves/m0BspCurve.h"
#include "host/giPoint3.h"
#include "host/rnxNurbCurve3.h"

namespace {

// Last and first points closer than this make the spline a closed loop.
constexpr double closed_dist = 1e-7;
// The division-free sweeps keep every row between these magnitudes.
constexpr double row_too_big = 1e8;
constexpr double row_too_small = 1e-10;
constexpr double row_boost = 1e10;
// A closed loop needs three distinct points and the closing one for its row layout.
constexpr int min_closed_points = 4;
// Cubic Bernstein values at 1/3 (8/27, 4/9, 2/9, 1/27); at 2/3 the same, mirrored.
constexpr double bern0 = 8.0 / 27.0;
constexpr double bern1 = 4.0 / 9.0;
constexpr double bern2 = 2.0 / 9.0;
constexpr double bern3 = 1.0 / 27.0;

// The tridiagonal (open) or bordered tridiagonal (closed) system, one row per
// unknown: below, diagonal, above and, for the closed loop, the coefficient of
// the last unknown. Storage is zeroed; ok() is false when it could not be had.
struct Band {
    explicit Band(int n)
        : below(new (std::nothrow) double[n]()), diag(new (std::nothrow) double[n]()),
          above(new (std::nothrow) double[n]()), last(new (std::nothrow) double[n]())
    {
    }
    bool ok() const { return below && diag && above && last; }
    std::unique_ptr<double[]> below, diag, above, last;
};

// A new point vector of n points with storage, or null.
std::unique_ptr<m03DVector> new_points(int n)
{
    std::unique_ptr<m03DVector> v(new (std::nothrow) m03DVector(n));
    if (v && n > 0 && v->get_point_array() == nullptr)
        v.reset();
    return v;
}

// True when v holds n > 0 values with storage.
bool has_points(m03DVector* v)
{
    return v != nullptr && v->size() > 0 && v->get_point_array() != nullptr;
}
bool has_values(m01DVector* v)
{
    return v != nullptr && v->size() > 0 && v->get_data_pointer() != nullptr;
}

// Right side of the interior equation at point i:
// 3 (hL^2 (Pi+1 - Pi) + hR^2 (Pi - Pi-1)) / (hL hR).
m03DPoint interior_rhs(m03DVector* pts, int i, double hL, double hR)
{
    m03DPoint right = pts->point(i + 1) - pts->point(i);
    m03DPoint left = pts->point(i) - pts->point(i - 1);
    return (right * (hL * hL) + left * (hR * hR)) * 3.0 / (hL * hR);
}

// Fills row i of the interior equation
// hR Ti-1 + 2 (hL + hR) Ti + hL Ti+1 = interior_rhs.
void interior_row(Band& band, m03DPoint* rhs, m03DVector* pts, m01DVector* params, int i)
{
    double hL = params->point(i) - params->point(i - 1);
    double hR = params->point(i + 1) - params->point(i);
    band.below[i] = hR;
    band.diag[i] = 2.0 * (hL + hR);
    band.above[i] = hL;
    rhs[i] = interior_rhs(pts, i, hL, hR);
}

// Ti = Ri / d; a zero diagonal leaves the tangent zero.
m03DPoint divide_row(const m03DPoint& r, double d)
{
    if (d == 0.0)
        return m03DPoint();
    return r / d;
}

// Open system, forward sweep: row i loses its below-entry, scaled by the
// previous pivot instead of divided by it.
void open_forward(Band& band, m03DPoint* rhs, int n)
{
    for (int i = 1; i <= n - 2; ++i) {
        double bp = band.diag[i - 1], cp = band.above[i - 1];
        double a = band.below[i], b = band.diag[i], c = band.above[i];
        band.below[i] = 0.0;
        band.diag[i] = b * bp - a * cp;
        band.above[i] = c * bp;
        rhs[i] = rhs[i] * bp - rhs[i - 1] * a;
        double d = std::fabs(band.diag[i]), u = std::fabs(band.above[i]);
        double big = std::max(d, u), small = std::min(d, u);
        if (big > row_too_big) {
            band.diag[i] /= big;
            band.above[i] /= big;
            rhs[i] /= big;
        }
        if (small < row_too_small) {
            band.diag[i] *= row_boost;
            band.above[i] *= row_boost;
            rhs[i] *= row_boost;
        }
    }
}

// Open system, backward sweep: row i loses its above-entry against row i+1.
void open_backward(Band& band, m03DPoint* rhs, int n)
{
    for (int i = n - 2; i >= 1; --i) {
        double bn = band.diag[i + 1], c = band.above[i];
        band.above[i] = 0.0;
        band.diag[i] = band.diag[i] * bn;
        rhs[i] = rhs[i] * bn - rhs[i + 1] * c;
        double d = std::fabs(band.diag[i]);
        if (d > row_too_big) {
            band.diag[i] /= d;
            rhs[i] /= d;
        } else if (d < row_too_small) {
            band.diag[i] *= row_boost;
            rhs[i] *= row_boost;
        }
    }
}

// Closed system, forward rescaling: by the largest of the row's three entries
// (the open sweep tests the smallest for boosting; this one the largest, as designed).
void closed_rescale_forward(Band& band, m03DPoint* rhs, int i)
{
    double big = std::max({std::fabs(band.diag[i]), std::fabs(band.above[i]), std::fabs(band.last[i])});
    if (big > row_too_big) {
        band.diag[i] /= big;
        band.above[i] /= big;
        band.last[i] /= big;
        rhs[i] /= big;
    } else if (big < row_too_small) {
        band.diag[i] *= row_boost;
        band.above[i] *= row_boost;
        band.last[i] *= row_boost;
        rhs[i] *= row_boost;
    }
}

// Closed system, backward rescaling of a row holding only its diagonal and its
// last-column entry.
void closed_rescale_backward(Band& band, m03DPoint* rhs, int i)
{
    double d = std::fabs(band.diag[i]), l = std::fabs(band.last[i]);
    double big = std::max(d, l), small = std::min(d, l);
    if (big > row_too_big) {
        band.diag[i] /= big;
        band.last[i] /= big;
        rhs[i] /= big;
    }
    if (small < row_too_small) {
        band.diag[i] *= row_boost;
        band.last[i] *= row_boost;
        rhs[i] *= row_boost;
    }
}

// Closed system, forward sweep over rows 1 to m-1 (m = n - 1 unknowns
// T0 ... Tm-1). Rows up to m-3 carry the last column; row m-2 meets it on its
// above-entry (Tm-1 is its right neighbour) and keeps it there; row m-1 holds
// its T0 coefficient in its above-entry and is scaled like the rest of the row.
void closed_forward(Band& band, m03DPoint* rhs, int m)
{
    for (int i = 1; i <= m - 1; ++i) {
        double bp = band.diag[i - 1], cp = band.above[i - 1], lp = band.last[i - 1];
        double a = band.below[i], b = band.diag[i], c = band.above[i];
        band.below[i] = 0.0;
        band.diag[i] = b * bp - a * cp;
        if (i <= m - 3)
            band.last[i] = -a * lp;
        if (i == m - 2)
            band.above[i] = c * bp - a * lp;
        else
            band.above[i] = c * bp;
        rhs[i] = rhs[i] * bp - rhs[i - 1] * a;
        closed_rescale_forward(band, rhs, i);
    }
    // Row m-2's above-entry is its coefficient of the last unknown.
    band.last[m - 2] = band.above[m - 2];
    band.above[m - 2] = 0.0;
}

// Closed system, backward sweep from row m-3 to row 0: each row keeps only its
// diagonal and its last-column entry.
void closed_backward(Band& band, m03DPoint* rhs, int m)
{
    for (int i = m - 3; i >= 0; --i) {
        double dn = band.diag[i + 1], ln = band.last[i + 1], c = band.above[i];
        band.above[i] = 0.0;
        band.diag[i] = band.diag[i] * dn;
        band.last[i] = band.last[i] * dn - c * ln;
        rhs[i] = rhs[i] * dn - rhs[i + 1] * c;
        closed_rescale_backward(band, rhs, i);
    }
}

// Closed system, back substitution: row m-1 loses its T0 coefficient against
// row 0, gives Tm-1, and every other row is scaled by row m-1's diagonal before
// its last column is removed. A zero diagonal gives a zero tangent.
void closed_solve(Band& band, m03DPoint* rhs, m03DPoint* t, int m)
{
    double c = band.above[m - 1];
    double dm = band.diag[0] * band.diag[m - 1] - c * band.last[0];
    m03DPoint rm = rhs[m - 1] * band.diag[0] - rhs[0] * c;
    t[m - 1] = divide_row(rm, dm);
    for (int i = 0; i <= m - 2; ++i)
        t[i] = divide_row(rhs[i] * dm - rm * band.last[i], band.diag[i] * dm);
}

// Replaces the two inner control points of the Bezier piece starting at cp[k],
// which hold the curve's points at 1/3 and 2/3, by the control points that make
// the piece pass through them (Cramer's rule on the two Bernstein equations).
void bezier_inner_points(m03DPoint* cp, int k)
{
    const m03DPoint& a = cp[k];
    const m03DPoint& b = cp[k + 3];
    m03DPoint r1 = cp[k + 1] - a * bern0 - b * bern3;
    m03DPoint r2 = cp[k + 2] - a * bern3 - b * bern0;
    double det = bern1 * bern1 - bern2 * bern2;
    cp[k + 1] = (r1 * bern1 - r2 * bern2) / det;
    cp[k + 2] = (r2 * bern1 - r1 * bern2) / det;
}

}  // namespace

m03SplineCurve::m03SplineCurve() = default;

m03SplineCurve::m03SplineCurve(m03DVector* pts)
    : points_(pts)
{
    if (pts == nullptr)
        return;
    params_.reset(build_params(pts));
    if (!has_points(pts) || params_ == nullptr)
        return;
    int n = pts->size();
    if ((pts->point(n - 1) - pts->point(0)).module() > closed_dist) {
        // One third of the end chords, not scaled by the parameter steps: this
        // sets the shape of the end segments and is kept as designed.
        m03DPoint t_start = (pts->point(1) - pts->point(0)) / 3.0;
        m03DPoint t_end = (pts->point(n - 1) - pts->point(n - 2)) / 3.0;
        tangents_.reset(build_tangents(t_start, t_end, pts, params_.get()));
    } else {
        tangents_.reset(build_tangents(pts, params_.get()));
    }
}

m03SplineCurve::m03SplineCurve(m03DVector* pts, m01DVector* params, m03DPoint t_start, m03DPoint t_end)
    : points_(pts), params_(params)
{
    tangents_.reset(build_tangents(t_start, t_end, pts, params));
}

m03SplineCurve::~m03SplineCurve() = default;

m01DVector* m03SplineCurve::build_params(m03DVector* pts)
{
    if (pts == nullptr)
        return nullptr;
    int n = std::max(pts->size(), 0);
    if (n > 0 && pts->get_point_array() == nullptr)
        return nullptr;
    m01DVector* params = new (std::nothrow) m01DVector(n);
    if (params == nullptr || n == 0)
        return params;
    if (params->get_data_pointer() == nullptr) {
        delete params;
        return nullptr;
    }
    double total = 0.0;
    for (int i = 0; i + 1 < n; ++i)
        total += (pts->point(i + 1) - pts->point(i)).module();
    // No guard for a zero total (all points coincident): callers remove
    // coincident points before building a spline.
    double run = 0.0;
    params->set_point(0, 0.0);
    for (int i = 1; i < n; ++i) {
        run += (pts->point(i) - pts->point(i - 1)).module();
        params->set_point(i, run / total);
    }
    return params;
}

m03DVector* m03SplineCurve::build_tangents(const m03DPoint& t_start, const m03DPoint& t_end, m03DVector* pts,
                                           m01DVector* params)
{
    if (!has_points(pts) || !has_values(params) || params->size() != pts->size())
        return nullptr;
    int n = pts->size();
    // A single point has no segment to carry tangents.
    if (n < 2)
        return nullptr;
    std::unique_ptr<m03DVector> tangents = new_points(n);
    Band band(n);
    if (!tangents || !band.ok())
        return nullptr;
    m03DPoint* rhs = tangents->get_point_array();
    band.diag[0] = 1.0;
    rhs[0] = t_start;
    band.diag[n - 1] = 1.0;
    rhs[n - 1] = t_end;
    for (int i = 1; i <= n - 2; ++i)
        interior_row(band, rhs, pts, params, i);
    open_forward(band, rhs, n);
    open_backward(band, rhs, n);
    for (int i = 1; i <= n - 2; ++i)
        rhs[i] = divide_row(rhs[i], band.diag[i]);
    return tangents.release();
}

m03DVector* m03SplineCurve::build_tangents(m03DVector* pts, m01DVector* params)
{
    if (!has_points(pts) || !has_values(params) || params->size() != pts->size())
        return nullptr;
    int n = pts->size();
    // Fewer points have no tangents (and so no B-spline form).
    if (n < min_closed_points)
        return nullptr;
    int m = n - 1;  // unknowns T0 ... Tn-2; Tn-1 = T0
    std::unique_ptr<m03DVector> tangents = new_points(n);
    std::unique_ptr<m03DVector> rhs_vector = new_points(m);
    Band band(m);
    if (!tangents || !rhs_vector || !band.ok())
        return nullptr;
    m03DPoint* rhs = rhs_vector->get_point_array();
    // Row 0: the interior equation at the seam divided by h0.
    double h0 = params->point(1) - params->point(0);
    double hN = params->point(n - 1) - params->point(n - 2);
    double r = hN / h0;
    band.diag[0] = 2.0 * (r + 1.0);
    band.above[0] = r;
    band.last[0] = 1.0;
    rhs[0] = (pts->point(1) - pts->point(0)) * (3.0 * hN) / (h0 * h0)
             - (pts->point(n - 2) - pts->point(n - 1)) * 3.0 / hN;
    for (int i = 1; i <= m - 1; ++i)
        interior_row(band, rhs, pts, params, i);
    // The last row couples to T0 with hN, its below-entry, not with
    // u(n-2) - u(n-3): kept as designed (no difference for even parameters).
    band.above[m - 1] = band.below[m - 1];
    closed_forward(band, rhs, m);
    closed_backward(band, rhs, m);
    closed_solve(band, rhs, tangents->get_point_array(), m);
    tangents->set_point(n - 1, tangents->point(0));
    return tangents.release();
}

int m03SplineCurve::count() const
{
    if (!points_ || !params_ || points_->size() <= 0 || params_->size() != points_->size())
        return 0;
    if (points_->get_point_array() == nullptr || params_->get_data_pointer() == nullptr)
        return 0;
    if (tangents_ && (tangents_->size() != points_->size() || tangents_->get_point_array() == nullptr))
        return 0;
    return points_->size();
}

int m03SplineCurve::find_segment(const double& u) const
{
    const m01DVector& p = *params_;
    int n = p.size();
    if (u > p.point(n - 1))
        return n - 2;
    if (u <= p.point(0) || n - 1 < 2)
        return 0;
    // A u equal to a point's parameter falls in the segment that ends there.
    int lo = 0, hi = n - 1, mid = hi / 2;
    while (hi - lo > 1) {
        if (p.point(mid) >= u)
            hi = mid;
        else
            lo = mid;
        mid = (lo + hi) / 2;
    }
    return lo;
}

m03DPoint m03SplineCurve::point(m03DPoint& p0, m03DPoint& p1, m03DPoint& t0, m03DPoint& t1, const double& h,
                                const double& tau)
{
    m03DPoint c3 = (p0 - p1) * 2.0 / (h * h * h) + (t0 + t1) / (h * h);
    m03DPoint c2 = (p1 - p0) * 3.0 / (h * h) - (t0 * 2.0 + t1) / h;
    return p0 + (t0 + (c2 + c3 * tau) * tau) * tau;
}

m03DPoint m03SplineCurve::point(const int& s, const double& tau)
{
    int n = count();
    if (s < 0 || s > n - 2)
        return m03DPoint();
    double h = params_->point(s + 1) - params_->point(s);
    m03DPoint& p0 = points_->point(s);
    m03DPoint& p1 = points_->point(s + 1);
    if (!tangents_) {
        double f = tau / h;
        return p0 * (1.0 - f) + p1 * f;
    }
    return point(p0, p1, tangents_->point(s), tangents_->point(s + 1), h, tau);
}

m03DPoint m03SplineCurve::point0(double u)
{
    int n = count();
    if (n == 0)
        return m03DPoint();
    if (n == 1)
        return points_->point(0);
    int s = find_segment(u);
    return point(s, u - params_->point(s));
}

m03DPoint m03SplineCurve::point(double t)
{
    if (count() == 0)
        return m03DPoint();
    double u0 = params_->point(0);
    double u = u0 + (params_->point(params_->size() - 1) - u0) * t;
    return point0(u);
}

void m03SplineCurve::reverse()
{
    if (has_points(points_.get()))
        points_->reverse();
    if (has_points(tangents_.get())) {
        tangents_->reverse();
        for (int i = 0; i < tangents_->size(); ++i)
            tangents_->point(i) *= -1.0;
    }
    if (has_values(params_.get())) {
        double ulast = params_->point(params_->size() - 1);
        params_->reverse();
        for (int i = 0; i < params_->size(); ++i)
            params_->set_point(i, ulast - params_->point(i));
    }
}

void m03SplineCurve::reparam_knot(m01DVector* knots, const double& a, const double& b)
{
    if (!has_values(knots))
        return;
    int n = knots->size();
    double first = knots->point(0), last = knots->point(n - 1);
    double lo = std::min(a, b), hi = std::max(a, b);
    for (int i = 0; i < n; ++i)
        knots->set_point(i, (knots->point(i) - first) / (last - first) * (hi - lo) + lo);
}

m0BspCurve* m03SplineCurve::bsp_curve()
{
    int n = count();
    if (n < 2 || !tangents_ || n - 1 > max_bsp_segments)
        return nullptr;
    const int segments = n - 1;
    const int m = 3 * segments + 1;
    std::unique_ptr<m03DVector> cpnts = new_points(m);
    std::unique_ptr<m01DVector> knots(new (std::nothrow) m01DVector(m + 4));
    if (!cpnts || !knots || knots->get_data_pointer() == nullptr)
        return nullptr;
    // Control point 3s + j sits at parameter us + j d; the knots only read those
    // at segment ends, which are the spline's own parameters.
    m03DPoint* cp = cpnts->get_point_array();
    const m01DVector& u = *params_;
    cp[0] = points_->point(0);
    for (int s = 0; s < segments; ++s) {
        double d = (u.point(s + 1) - u.point(s)) / 3.0;
        cp[3 * s + 1] = point(s, d);
        cp[3 * s + 2] = point(s, 2.0 * d);
        cp[3 * s + 3] = points_->point(s + 1);
    }
    for (int i = 0; i < 4; ++i)
        knots->set_point(i, 0.0);
    for (int i = 4; i <= m - 1; ++i)
        knots->set_point(i, (u.point((i - 4) / 3 + 1) - u.point(0)) / (u.point(segments) - u.point(0)));
    for (int i = m; i < m + 4; ++i)
        knots->set_point(i, 1.0);
    reparam_knot(knots.get(), u.point(0), u.point(segments));
    for (int s = 0; s < segments; ++s)
        bezier_inner_points(cp, 3 * s);
    m0BspCurve* curve = new (std::nothrow) m0BspCurve();
    if (curve == nullptr)
        return nullptr;
    curve->set_degree(3);
    curve->set_no_of_cpnt(m);
    curve->set_cpnt_vector(cpnts.release());
    curve->set_knot_vector(knots.release());
    return curve;
}

m03DVector* m03SplineCurve::approximate(const double& tol)
{
    std::unique_ptr<m0BspCurve> curve(bsp_curve());
    if (!curve)
        return nullptr;
    return curve->approximate(tol);
}

rnxNurbCurve3* m03SplineCurve::rnxNurbCurve()
{
    std::unique_ptr<m0BspCurve> c(bsp_curve());
    if (!c)
        return nullptr;
    const int n = c->no_of_cpnt();
    const int order = c->degree() + 1;
    rnxNurbCurve3* host = new (std::nothrow) rnxNurbCurve3(n, order);
    if (host == nullptr)
        return nullptr;
    m03DVector* cp = c->cpnt_vector();
    m01DVector* knots = c->knot_vector();
    m01DVector* weights = c->weight_vector();
    for (int i = 0; i < n; ++i) {
        const m03DPoint& q = cp->point(i);
        host->set_point(i, giPoint3(q.x(), q.y(), q.z()));
        if (weights != nullptr)
            host->set_weight(i, weights->point(i));
        host->set_knot(i, knots->point(i));
    }
    for (int i = n; i < n + order; ++i)
        host->set_knot(i, knots->point(i));
    return host;
}
