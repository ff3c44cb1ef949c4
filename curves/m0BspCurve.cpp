// m0BspCurve: construction, ownership, the parameter range and reversal.
#include "curves/m0BspCurve.h"

#include <cmath>

namespace {

// A parameter more than this many periods outside a closed curve's knot range
// is not stepped back period by period (that could take for ever); it is
// wrapped in one step with the floating-point remainder instead.
constexpr int max_wrap_turns = 64;

}  // namespace

m0BspCurve::m0BspCurve() = default;

m0BspCurve::m0BspCurve(m03DVector* cpnts, const int& order)
{
    if (cpnts == nullptr)
        return;
    // The curve owns cpnts from here on, also when it stays empty.
    if (order < 2 || order > max_order) {
        delete cpnts;
        return;
    }
    const int n = cpnts->size() < 0 ? 0 : cpnts->size();
    const int k = order;
    const int p = k - 1;
    cpnt_vector_ = cpnts;
    degree_ = p;
    knot_vector_ = new m01DVector(n + k);
    double* knots = knot_vector_->get_data_pointer();
    if (knots == nullptr)
        return;
    for (int i = 0; i < k; i++)
        knots[i] = 0.0;
    // Interior knots come in runs of p equal values, evenly spaced in [0, 1]:
    // a chain of Bezier pieces joined at equal parameter steps.
    const int joints = (n - k) / p;
    for (int i = k; i < n; i++)
        knots[i] = static_cast<double>((i - k) / p + 1) / static_cast<double>(joints + 1);
    // With fewer points than the order the ones overwrite some of the zeros.
    for (int i = n; i < n + k; i++)
        knots[i] = 1.0;
}

m0BspCurve::m0BspCurve(m0BspCurve* other)
{
    if (other == nullptr)
        return;
    degree_ = other->degree_;
    no_of_cpnt_ = other->no_of_cpnt_;
    if (other->knot_vector_ != nullptr)
        knot_vector_ = new m01DVector(other->knot_vector_);
    if (other->cpnt_vector_ != nullptr)
        cpnt_vector_ = new m03DVector(other->cpnt_vector_);
    if (other->weight_vector_ != nullptr)
        weight_vector_ = new m01DVector(other->weight_vector_);
    closed_ = other->closed_;
    extended_ = other->extended_;
    basis_method_ = other->basis_method_;
}

m0BspCurve::~m0BspCurve()
{
    delete knot_vector_;
    delete cpnt_vector_;
    delete weight_vector_;
}

void m0BspCurve::set_cpnt_vector(m03DVector* v)
{
    if (v != cpnt_vector_)
        delete cpnt_vector_;
    cpnt_vector_ = v;
}

void m0BspCurve::set_knot_vector(m01DVector* v)
{
    if (v != knot_vector_)
        delete knot_vector_;
    knot_vector_ = v;
}

void m0BspCurve::set_weight_vector(m01DVector* v)
{
    if (v != weight_vector_)
        delete weight_vector_;
    weight_vector_ = v;
}

int m0BspCurve::knot_count() const
{
    if (knot_vector_ == nullptr || knot_vector_->get_data_pointer() == nullptr)
        return 0;
    return knot_vector_->size() < 0 ? 0 : knot_vector_->size();
}

int m0BspCurve::cpnt_count() const
{
    if (cpnt_vector_ == nullptr || cpnt_vector_->get_point_array() == nullptr)
        return 0;
    return cpnt_vector_->size() < 0 ? 0 : cpnt_vector_->size();
}

int m0BspCurve::weight_count() const
{
    if (weight_vector_ == nullptr || weight_vector_->get_data_pointer() == nullptr)
        return 0;
    return weight_vector_->size() < 0 ? 0 : weight_vector_->size();
}

int m0BspCurve::evaluable() const
{
    return knot_count() > 0 && cpnt_count() > 0 && degree_ >= 0 && degree_ < max_order;
}

double m0BspCurve::wrapped(double t) const
{
    const double* knots = knot_vector_->get_data_pointer();
    const double u0 = knots[0];
    const double u1 = knots[knot_count() - 1];
    const double period = u1 - u0;
    // Without a positive period there is nothing to wrap into.
    if (!(period > 0.0))
        return t;
    int turns = 0;
    while (t < u0 && turns < max_wrap_turns) {
        t += period;
        turns++;
    }
    while (t > u1 && turns < max_wrap_turns) {
        t -= period;
        turns++;
    }
    if (t < u0 || t > u1) {
        t = u0 + std::fmod(t - u0, period);
        if (t < u0)
            t += period;
        if (t > u1)
            t = u1;
    }
    return t;
}

double m0BspCurve::clamped(double t) const
{
    const double* knots = knot_vector_->get_data_pointer();
    const double u0 = knots[0];
    const double u1 = knots[knot_count() - 1];
    if (t < u0)
        t = u0;
    if (t > u1)
        t = u1;
    return t;
}

void m0BspCurve::reverse()
{
    if (cpnt_vector_ != nullptr)
        cpnt_vector_->reverse();
    if (weight_vector_ != nullptr)
        weight_vector_->reverse();
    const int m = knot_count();
    if (m == 0)
        return;
    knot_vector_->reverse();
    double* knots = knot_vector_->get_data_pointer();
    // After the reversal the former last knot stands first.
    const double last = knots[0];
    for (int i = 0; i < m; i++)
        knots[i] = last - knots[i];
}
