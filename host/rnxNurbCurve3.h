#pragma once
// rnxNurbCurve3: the geometry kernel's non-uniform rational B-spline curve in
// 3-D, as a translator hands it to the host.
//
// A curve of n control points and order k (degree k - 1) holds n points, n + k
// knots and, once any weight has been set, n weights; a curve whose weights
// were never set is polynomial (every weight 1). It is made with its sizes and
// filled slot by slot:
//
//     rnxCurvePtr3 c = std::make_shared<rnxNurbCurve3>(n, 4);
//     for (int i = 0; i < n; ++i) c->set_point(i, giPoint3(x[i], y[i], z[i]));
//     for (int i = 0; i < n + 4; ++i) c->set_knot(i, knots[i]);
//     if (!c->is_valid()) ...   // the host refuses the curve
//
// Nothing here throws or reports: sizes outside the bounds below, or storage
// that cannot be had, give an empty curve (no points, order 0), which is not
// valid; a slot index outside the curve is ignored by the setters and reads as
// the default (origin, knot 0.0, weight 1.0) through the getters.
#include <memory>
#include <vector>

#include "host/giPoint3.h"

class rnxNurbCurve3 {
public:
    // Largest order a curve may have (degree 31); larger requests give an empty curve.
    static constexpr int max_order = 32;
    // Largest number of control points a curve may have; more give an empty
    // curve rather than an allocation the size of whatever count was asked for.
    static constexpr int max_points = 1 << 24;

    // n control points (all at the origin), order k, n + k knots (all 0.0), no
    // weights. A negative or too large n or k gives an empty curve.
    rnxNurbCurve3(int n, int order);

    int num_points() const { return static_cast<int>(points_.size()); }
    int order() const { return order_; }
    int degree() const { return order_ - 1; }
    int num_knots() const { return static_cast<int>(knots_.size()); }

    void set_point(int i, const giPoint3& p);
    // The first weight set gives every other control point the weight 1.0.
    void set_weight(int i, double w);
    void set_knot(int i, double k);

    giPoint3 point(int i) const;
    double weight(int i) const;
    double knot(int i) const;
    // True once any weight has been set: the curve is then rational.
    bool has_weights() const { return !weights_.empty(); }
    const std::vector<giPoint3>& points() const { return points_; }
    const std::vector<double>& knots() const { return knots_; }
    // Empty when no weight was set.
    const std::vector<double>& weights() const { return weights_; }

    // Non-zero when the kernel accepts the curve: order at least 2, at least
    // `order` control points, n + order finite knots that never decrease, and,
    // when weights were set, every weight finite and positive.
    int is_valid() const;

    // A kernel drops here what it derived from the knots for evaluation; call
    // it after changing knots. The reference curve derives nothing ahead of
    // time, so this does nothing, but callers written for a real kernel call it.
    void cancel_segments() {}

    // The point at parameter t, clamped into the curve's domain
    // [knot(order - 1), knot(n)]; (0, 0, 0) for a curve that is not valid.
    giPoint3 evaluate(double t) const;

private:
    int order_ = 0;
    std::vector<giPoint3> points_;
    std::vector<double> knots_;
    std::vector<double> weights_;
};

// The host's shared handle to a curve: a translator fills one, the host keeps it.
using rnxCurvePtr3 = std::shared_ptr<rnxNurbCurve3>;
