// m0BspCurve: points, derivatives, tangents and the normal.
#include "curves/m0BspCurve.h"

#include <cmath>

namespace {

// point() at a parameter within this of an end of an open curve's knot range
// is that end's control point.
constexpr double end_snap = 1e-14;
// The speed at an end, for the straight continuation beyond it, is measured
// over this parameter step. A knot range not longer than the step has no
// point to measure with: the continuation is then the end point itself.
constexpr double continuation_probe = 1e-13;
// Parameter step of tang0() and the length below which it gives no direction.
constexpr double tang0_step = 1e-7;
constexpr double tang0_min_length = 1e-15;
// Parameter step of normal() to either side: absolute, whatever the knot range.
constexpr double normal_step = 0.01;

}  // namespace

void m0BspCurve::span_sums(double t, int max_der, m03DPoint* a, double* w) const
{
    for (int d = 0; d <= max_der; d++) {
        a[d] = m03DPoint();
        w[d] = 0.0;
    }
    const int order = degree_ + 1;
    const int m = knot_count();
    const int ncp = cpnt_count();
    const int nw = weight_count();
    const double* knots = knot_vector_->get_data_pointer();
    const m03DPoint* cp = cpnt_vector_->get_point_array();
    const double* weights = weight_vector_ != nullptr ? weight_vector_->get_data_pointer() : nullptr;
    const int first = get_knot_interval(t) - degree_;

    double values[max_derivative + 1][max_order];
    if (basis_method_ == BasisMethod::table) {
        span_table(knots, m, order, t, first, max_der, values);
    } else {
        for (int c = 0; c < order; c++)
            for (int d = 0; d <= max_der; d++)
                values[d][c] = basis_reference(knots, m, order, t, first + c, d);
    }

    for (int c = 0; c < order; c++) {
        const int i = first + c;
        // Only a basis function with its knots, control point and weight
        // behind it contributes.
        if (i < 0 || i + order > m - 1 || i >= ncp || (weights != nullptr && i >= nw))
            continue;
        const double wi = weights != nullptr ? weights[i] : 1.0;
        for (int d = 0; d <= max_der; d++) {
            const double n = values[d][c];
            if (n == 0.0)
                continue;
            const double wn = wi * n;
            a[d] += cp[i] * wn;
            w[d] += wn;
        }
    }
}

m03DPoint m0BspCurve::interior_point(double t) const
{
    m03DPoint a[1];
    double w[1];
    span_sums(t, 0, a, w);
    // Without weights the sum of the basis functions is taken as exactly 1.
    const double weight = weight_vector_ != nullptr ? w[0] : 1.0;
    return a[0] / weight;
}

m03DPoint m0BspCurve::continue_before(double t) const
{
    const double u0 = knot_vector_->point(0);
    const double u1 = knot_vector_->point(knot_count() - 1);
    const m03DPoint& p0 = cpnt_vector_->point(0);
    if (std::fabs(t - u0) < end_snap)
        return p0;
    const double probe = u0 + continuation_probe;
    if (!(probe < u1))
        return p0;
    // probe lies in [u0, u1): point() answers it without continuing again.
    const m03DPoint q = point(probe);
    const double speed = (q - p0).module() / continuation_probe;
    const m03DPoint dir = cpnt_count() >= 2 ? (p0 - cpnt_vector_->point(1)).single() : m03DPoint();
    return p0 + dir * (u0 - t) * speed;
}

m03DPoint m0BspCurve::continue_after(double t) const
{
    const int n = cpnt_count();
    const double u0 = knot_vector_->point(0);
    const double u1 = knot_vector_->point(knot_count() - 1);
    const m03DPoint& pn = cpnt_vector_->point(n - 1);
    if (std::fabs(t - u1) < end_snap)
        return pn;
    const double probe = u1 - continuation_probe;
    if (!(probe > u0))
        return pn;
    const m03DPoint q = point(probe);
    const double speed = (q - pn).module() / continuation_probe;
    const m03DPoint dir = n >= 2 ? (pn - cpnt_vector_->point(n - 2)).single() : m03DPoint();
    return pn + dir * (t - u1) * speed;
}

m03DPoint m0BspCurve::point(double t) const
{
    if (!evaluable())
        return m03DPoint();
    if (closed_)
        return interior_point(wrapped(t));
    if (t <= knot_vector_->point(0))
        return continue_before(t);
    if (t >= knot_vector_->point(knot_count() - 1))
        return continue_after(t);
    return interior_point(t);
}

// The exact derivatives of the rational curve A / W, with every weight 1 when
// the curve has none (W is then the sum of the basis functions, not a fixed 1).
// Products are formed left to right as written: 2·A′·W·W′ is ((2·A′)·W)·W′,
// W² is W·W, W³ is (W·W)·W.
m03DPoint m0BspCurve::derivative(double t, int der) const
{
    if (!evaluable())
        return m03DPoint();
    t = closed_ ? wrapped(t) : clamped(t);
    m03DPoint a[max_derivative + 1];
    double w[max_derivative + 1];
    span_sums(t, der, a, w);
    const double W = w[0];
    const double W2 = W * W;
    const double W3 = W2 * W;
    if (der == 1)
        return (a[1] * W - a[0] * w[1]) / W2;
    if (der == 2)
        return (a[2] * W2 - a[1] * 2.0 * W * w[1] + a[0] * (2.0 * (w[1] * w[1]) - W * w[2])) / W3;
    // (A‴·W³ − 3·A″·W′·W² − A′·(3·W″·W² − 6·W′²·W) − A·(W‴·W² − 6·W′·W″·W + 6·W′³)) / W⁴
    const double d1 = w[1];
    const m03DPoint t1 = a[3] * W3;
    const m03DPoint t2 = a[2] * 3.0 * d1 * W2;
    const m03DPoint t3 = a[1] * (3.0 * w[2] * W2 - 6.0 * (d1 * d1) * W);
    const m03DPoint t4 = a[0] * (w[3] * W2 - 6.0 * d1 * w[2] * W + 6.0 * (d1 * d1 * d1));
    return (t1 - t2 - t3 - t4) / (W3 * W);
}

m03DPoint m0BspCurve::first_der(double t) const
{
    return derivative(t, 1);
}

m03DPoint m0BspCurve::second_der(double t) const
{
    return derivative(t, 2);
}

m03DPoint m0BspCurve::third_der(double t) const
{
    return derivative(t, 3);
}

m03DPoint m0BspCurve::tang(const double& t) const
{
    return first_der(t).single();
}

m03DPoint m0BspCurve::tang0(const double& t) const
{
    const m03DPoint d = point(t + tang0_step) - point(t);
    if (d.module() < tang0_min_length)
        return m03DPoint();
    return d.single();
}

m03DPoint m0BspCurve::normal(const double& t) const
{
    const m03DPoint c = point(t);
    const m03DPoint a = (point(t - normal_step) - c).single();
    const m03DPoint b = (point(t + normal_step) - c).single();
    m03DPoint n = a * b;
    // A straight piece spans no plane: any direction across it will do.
    if (n.module() == 0.0)
        n = a * m03DPoint(1.0, 0.0, 0.0);
    if (n.module() == 0.0)
        n = (a * m03DPoint(0.0, 1.0, 0.0)).single();
    return n.single();
}
