// m0BspCurve: the knot-span search and the Cox-de Boor basis functions with
// their derivatives.
//
// The basis functions are defined by a recursion over the order. The curve
// computes them with a triangular table instead: every value N(q, r) of the
// recursion is computed once, by the same expression on the same inputs, so
// the table and the recursion give the same bits (a test holds them to it);
// the table only avoids recomputing shared sub-values.
#include "curves/m0BspCurve.h"

namespace {

// A basis function N(i, order) reads the knots i .. i + order: an index
// without all of them behind it does not exist and contributes nothing.
inline bool basis_exists(int nknots, int order, int i)
{
    return i >= 0 && i + order <= nknots - 1;
}

// N(q, 1). The last knot closes the last non-empty span, so that the curve
// reaches its end point.
inline double step_value(const double* knots, int nknots, double t, int q)
{
    const double last = knots[nknots - 1];
    if (knots[q + 1] == last && t == last)
        return 1.0;
    if (t == last)
        return 0.0;
    return (knots[q] <= t && t < knots[q + 1]) ? 1.0 : 0.0;
}

// N(i, order) from N(i, order - 1) and N(i + 1, order - 1). A zero denominator
// (by exact comparison) drops its term.
inline double raise_value(const double* knots, int order, double t, int i, double lower_i,
                          double lower_next)
{
    const double a = knots[i + order - 1] - knots[i];
    const double b = knots[i + order] - knots[i + 1];
    double left = 0.0;
    double right = 0.0;
    if (a != 0.0)
        left = (t - knots[i]) * lower_i / a;
    if (b != 0.0)
        right = (knots[i + order] - t) * lower_next / b;
    return left + right;
}

// The d-th derivative of N(i, order) from the (d-1)-th derivatives of
// N(i, order - 1) and N(i + 1, order - 1).
inline double raise_derivative(const double* knots, int order, int i, double lower_i,
                               double lower_next)
{
    const double a = knots[i + order - 1] - knots[i];
    const double b = knots[i + order] - knots[i + 1];
    const double k1 = static_cast<double>(order - 1);
    double left = 0.0;
    double right = 0.0;
    if (a != 0.0)
        left = k1 * lower_i / a;
    if (b != 0.0)
        right = k1 * lower_next / b;
    return left - right;
}

inline bool order_in_range(int order)
{
    return order >= 1 && order <= m0BspCurve::kMaxOrder;
}

}  // namespace

int m0BspCurve::get_knot_interval(const double& t) const
{
    const int m = knot_count();
    const int p = degree_;
    int lo = p;
    int hi = m - p - 1;
    // A negative degree would put the probes outside the knots.
    if (hi - lo < 2 || p < 0)
        return lo;
    const double* knots = knot_vector_->get_data_pointer();
    // The first probe is half the width of the range, not its middle: kept as
    // designed. With clamped knots it changes nothing; with others it decides
    // where the search may end (possibly in a span below the degree).
    int mid = (hi - lo) / 2;
    do {
        if (knots[mid] > t)
            hi = mid;
        else
            lo = mid;
        mid = lo + (hi - lo) / 2;  // (hi + lo) / 2 without overflow; both are >= 0
    } while (hi - lo > 1);
    return lo;
}

double m0BspCurve::basis_reference(const double* knots, const int& nknots, int order,
                                   const double& t, int i, int der)
{
    if (knots == nullptr || !order_in_range(order) || !basis_exists(nknots, order, i) || der < 0)
        return 0.0;
    if (order == 1)
        return der > 0 ? 0.0 : step_value(knots, nknots, t, i);
    if (der == 0)
        return raise_value(knots, order, t, i, basis_reference(knots, nknots, order - 1, t, i, 0),
                           basis_reference(knots, nknots, order - 1, t, i + 1, 0));
    return raise_derivative(knots, order, i,
                            basis_reference(knots, nknots, order - 1, t, i, der - 1),
                            basis_reference(knots, nknots, order - 1, t, i + 1, der - 1));
}

void m0BspCurve::basis_table(const double* knots, int nknots, int order, double t, int first,
                             int count, int max_der, double values[][kMaxOrder])
{
    // level[r][c] = N(first + c, r); order r needs count + order - r entries.
    double level[kMaxOrder + 1][2 * kMaxOrder];
    const int base_width = count + order - 1;
    for (int c = 0; c < base_width; c++) {
        const int q = first + c;
        level[1][c] = basis_exists(nknots, 1, q) ? step_value(knots, nknots, t, q) : 0.0;
    }
    for (int r = 2; r <= order; r++) {
        const int width = count + order - r;
        for (int c = 0; c < width; c++) {
            const int q = first + c;
            level[r][c] = basis_exists(nknots, r, q)
                              ? raise_value(knots, r, t, q, level[r - 1][c], level[r - 1][c + 1])
                              : 0.0;
        }
    }
    for (int c = 0; c < count; c++)
        values[0][c] = level[order][c];

    // The d-th derivative at order r needs the (d - (order - r))-th one below:
    // plain values down to order order - d, zero at order 1 when d >= order.
    for (int d = 1; d <= max_der; d++) {
        double der[2 * kMaxOrder];
        int start = order - d;
        if (start >= 1) {
            for (int c = 0; c < count + d; c++)
                der[c] = level[start][c];
        } else {
            start = 1;
            for (int c = 0; c < base_width; c++)
                der[c] = 0.0;
        }
        for (int r = start + 1; r <= order; r++) {
            const int width = count + order - r;
            // In place: entry c reads c and c + 1 of the order below, and c + 1
            // is not yet overwritten.
            for (int c = 0; c < width; c++) {
                const int q = first + c;
                der[c] = basis_exists(nknots, r, q)
                             ? raise_derivative(knots, r, q, der[c], der[c + 1])
                             : 0.0;
            }
        }
        for (int c = 0; c < count; c++)
            values[d][c] = der[c];
    }
}

double m0BspCurve::single_basis(const double* knots, int nknots, int order, double t, int i, int der)
{
    if (knots == nullptr || !order_in_range(order) || der < 0 || der > kMaxDerivative
        || !basis_exists(nknots, order, i))
        return 0.0;
    double values[kMaxDerivative + 1][kMaxOrder];
    basis_table(knots, nknots, order, t, i, 1, der, values);
    return values[der][0];
}

double m0BspCurve::get_base_function(const double* knots, const int& nknots, int order,
                                     const double& t, int i)
{
    return single_basis(knots, nknots, order, t, i, 0);
}

double m0BspCurve::get_base_function_first_der(const double* knots, const int& nknots, int order,
                                               const double& t, int i)
{
    return single_basis(knots, nknots, order, t, i, 1);
}

double m0BspCurve::get_base_function_second_der(const double* knots, const int& nknots, int order,
                                                const double& t, int i)
{
    return single_basis(knots, nknots, order, t, i, 2);
}

double m0BspCurve::get_base_function_third_der(const double* knots, const int& nknots, int order,
                                               const double& t, int i)
{
    return single_basis(knots, nknots, order, t, i, 3);
}
