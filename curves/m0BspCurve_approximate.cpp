// m0BspCurve: the polyline approximation, walked knot span by knot span with
// an adaptive step.
#include "curves/m0BspCurve.h"

#include <vector>

namespace {

// A step shorter than this abandons the rest of its span: the tolerance cannot
// be met there, and the walk goes on with the next span.
constexpr double min_step = 1e-7;
// A point is not appended when its squared distance to the previous one is
// not above this.
constexpr double min_segment2 = 1e-15;

}  // namespace

m01DVector* m0BspCurve::simplify_param_vector(m01DVector* v)
{
    if (v == nullptr)
        return nullptr;
    const int n = v->get_data_pointer() != nullptr && v->size() > 0 ? v->size() : 0;
    // Room for one value at least: an empty input gives a list of size 1 (its
    // value 0.0 here); callers never pass one.
    m01DVector* out = new m01DVector(n > 0 ? n : 1);
    if (out->get_data_pointer() == nullptr) {
        out->set_size(0);
        return out;
    }
    for (int j = 0; j < n; j++)
        out->point(j) = v->point(j);
    int k = 0;
    for (int j = 1; j < n; j++) {
        if (out->point(k) != out->point(j)) {
            k = k + 1;
            out->point(k) = out->point(j);
        }
    }
    out->set_size(k + 1);
    return out;
}

int m0BspCurve::approximate_span(double a, double b, double tol, m03DPoint& prev,
                                 std::vector<m03DPoint>& out, int& steps) const
{
    const double h = (b - a) * 0.5;
    double step = h;
    m03DPoint mid = point(a + step * 0.5);
    m03DPoint end = point(a + step);
    while (b > a) {
        if (++steps > max_approximation_rounds)
            return 0;
        if (step == 0.0) {
            // A step was just accepted: start the next one as long as allowed.
            step = b - a;
            if (step > h)
                step = h;
            mid = point(a + step * 0.5);
            end = point(a + step);
        } else if (step < h) {
            // The step was just halved: the former midpoint is the new end.
            end = mid;
            mid = point(a + step * 0.5);
        }
        // Too short a step, or one that no longer moves a: the rest of the span
        // stays unsampled, b included.
        if (step < min_step || !(a + step > a))
            return 1;
        const double deviation = ((prev + end) / 2.0 - mid).module();
        if (deviation <= tol) {
            if ((end - prev).module2() > min_segment2)
                out.push_back(end);
            a = a + step;
            prev = end;
            step = 0.0;
        } else {
            step = step * 0.5;
        }
    }
    return 1;
}

m03DVector* m0BspCurve::approximate(const double& t_start, const double& t_end, const double& tol) const
{
    std::vector<m03DPoint> pts;
    m01DVector* params = simplify_param_vector(knot_vector_);
    if (params != nullptr && evaluable()) {
        params->limit_params(t_start, t_end);
        m03DPoint prev;
        int steps = 0;
        for (int s = 0; s + 1 < params->size(); s++) {
            const double a = params->point(s);
            if (s == 0) {
                pts.push_back(point(a));
                prev = point(a);
            }
            if (!approximate_span(a, params->point(s + 1), tol, prev, pts, steps))
                break;
        }
    }
    delete params;
    if (pts.size() < 3) {
        m03DVector* two = new m03DVector(2);
        if (two->get_point_array() != nullptr) {
            two->set_point(0, point(t_start));
            two->set_point(1, point(t_end));
        }
        return two;
    }
    m03DVector* result = new m03DVector(static_cast<int>(pts.size()));
    if (result->get_point_array() != nullptr) {
        for (int i = 0; i < static_cast<int>(pts.size()); i++)
            result->set_point(i, pts[i]);
    }
    return result;
}

m03DVector* m0BspCurve::approximate(const double& tol) const
{
    const int m = knot_count();
    if (m == 0)
        return approximate(0.0, 0.0, tol);
    // A degree beyond the knots takes the outermost knots instead.
    int first = degree_ < 0 ? 0 : degree_;
    int last = m - degree_ - 1;
    if (first > m - 1)
        first = m - 1;
    if (last < 0)
        last = 0;
    if (last > m - 1)
        last = m - 1;
    return approximate(knot_vector_->point(first), knot_vector_->point(last), tol);
}
