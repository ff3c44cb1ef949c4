// rnxNurbCurve3: storage, validity and evaluation of the kernel's NURBS curve.
#include "host/rnxNurbCurve3.h"

#include <array>
#include <cmath>
#include <new>

rnxNurbCurve3::rnxNurbCurve3(int n, int order)
{
    if (n < 0 || order < 0 || n > max_points || order > max_order)
        return;
    try {
        points_.resize(static_cast<std::size_t>(n));
        knots_.assign(static_cast<std::size_t>(n) + static_cast<std::size_t>(order), 0.0);
        order_ = order;
    } catch (const std::bad_alloc&) {
        // No storage: the curve stays empty and is not valid.
        points_.clear();
        points_.shrink_to_fit();
        knots_.clear();
        knots_.shrink_to_fit();
        order_ = 0;
    }
}

void rnxNurbCurve3::set_point(int i, const giPoint3& p)
{
    if (i >= 0 && i < num_points())
        points_[static_cast<std::size_t>(i)] = p;
}

void rnxNurbCurve3::set_weight(int i, double w)
{
    if (i < 0 || i >= num_points())
        return;
    if (weights_.empty()) {
        try {
            weights_.assign(points_.size(), 1.0);
        } catch (const std::bad_alloc&) {
            return;
        }
    }
    weights_[static_cast<std::size_t>(i)] = w;
}

void rnxNurbCurve3::set_knot(int i, double k)
{
    if (i >= 0 && i < num_knots())
        knots_[static_cast<std::size_t>(i)] = k;
}

giPoint3 rnxNurbCurve3::point(int i) const
{
    if (i < 0 || i >= num_points())
        return giPoint3();
    return points_[static_cast<std::size_t>(i)];
}

double rnxNurbCurve3::weight(int i) const
{
    if (weights_.empty() || i < 0 || i >= num_points())
        return 1.0;
    return weights_[static_cast<std::size_t>(i)];
}

double rnxNurbCurve3::knot(int i) const
{
    if (i < 0 || i >= num_knots())
        return 0.0;
    return knots_[static_cast<std::size_t>(i)];
}

int rnxNurbCurve3::is_valid() const
{
    const int n = num_points();
    if (order_ < 2 || n < order_ || num_knots() != n + order_)
        return 0;
    for (int i = 0; i < num_knots(); ++i) {
        if (!std::isfinite(knots_[i]) || (i > 0 && knots_[i] < knots_[i - 1]))
            return 0;
    }
    for (double w : weights_) {
        if (!std::isfinite(w) || !(w > 0.0))
            return 0;
    }
    return 1;
}

giPoint3 rnxNurbCurve3::evaluate(double t) const
{
    if (!is_valid())
        return giPoint3();
    const int n = num_points();
    const int p = order_ - 1;
    const double lo = knots_[p], hi = knots_[n];
    if (!(t > lo))
        t = lo;
    if (t > hi)
        t = hi;
    // The span that holds t: knot[k] <= t < knot[k + 1]; at the domain's end the
    // last non-empty span.
    int k = p;
    for (int j = p; j <= n - 1; ++j) {
        if (knots_[j] < knots_[j + 1] && knots_[j] <= t)
            k = j;
    }
    // de Boor's algorithm on the homogeneous points (w x, w y, w z, w).
    std::array<std::array<double, 4>, max_order> d{};
    for (int j = 0; j <= p; ++j) {
        const giPoint3& q = points_[static_cast<std::size_t>(k - p + j)];
        double w = weight(k - p + j);
        d[j] = {q.x() * w, q.y() * w, q.z() * w, w};
    }
    for (int r = 1; r <= p; ++r) {
        for (int j = p; j >= r; --j) {
            int i = k - p + j;
            double den = knots_[i + p - r + 1] - knots_[i];
            double a = den == 0.0 ? 0.0 : (t - knots_[i]) / den;
            for (int c = 0; c < 4; ++c)
                d[j][c] = (1.0 - a) * d[j - 1][c] + a * d[j][c];
        }
    }
    double w = d[p][3];
    return giPoint3(d[p][0] / w, d[p][1] / w, d[p][2] / w);
}
