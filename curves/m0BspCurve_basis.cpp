// m0BspCurve: the knot-span search and the Cox-de Boor basis functions with
// their derivatives.
//
// The basis functions are defined by a recursion over the order. The curve
// computes them with a triangular table instead: every value N(q, r) of the
// recursion is computed once, by the same expression on the same inputs, so
// the table and the recursion give the same bits (a test holds them to it);
// the table only avoids recomputing shared sub-values.
#include "curves/m0BspCurve.h"

#include <cmath>

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
    return order >= 1 && order <= m0BspCurve::max_order;
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

namespace {

// The table rows for orders 1 .. order: level[r][c] = N(first + c, r), with
// count + order - r entries at order r. Unchecked, every entry is known to
// have its knots (the usual case inside a curve); checked, an entry without
// them is 0.
template <bool checked>
void fill_levels(const double* knots, int nknots, int order, double t, int first, int count,
                 double level[][2 * m0BspCurve::max_order])
{
    const int base_width = count + order - 1;
    for (int c = 0; c < base_width; c++) {
        const int q = first + c;
        level[1][c] = (!checked || basis_exists(nknots, 1, q)) ? step_value(knots, nknots, t, q) : 0.0;
    }
    for (int r = 2; r <= order; r++) {
        const int width = count + order - r;
        const double* lower = level[r - 1];
        double* row = level[r];
        for (int c = 0; c < width; c++) {
            const int q = first + c;
            row[c] = (!checked || basis_exists(nknots, r, q))
                         ? raise_value(knots, r, t, q, lower[c], lower[c + 1])
                         : 0.0;
        }
    }
}

// der[c] holds the (d - (order - start))-th derivatives at order start; raises
// them to the d-th derivatives at order order. In place: entry c reads c and
// c + 1 of the order below, and c + 1 is not yet overwritten.
template <bool checked>
void raise_derivatives(const double* knots, int nknots, int order, int first, int count, int start,
                       double* der)
{
    for (int r = start + 1; r <= order; r++) {
        const int width = count + order - r;
        for (int c = 0; c < width; c++) {
            const int q = first + c;
            der[c] = (!checked || basis_exists(nknots, r, q)) ? raise_derivative(knots, r, q, der[c], der[c + 1])
                                                              : 0.0;
        }
    }
}

}  // namespace

void m0BspCurve::basis_table(const double* knots, int nknots, int order, double t, int first,
                             int count, int max_der, double values[][max_order])
{
    double level[max_order + 1][2 * max_order];
    // The widest row, order 1, reaches knot first + count + order - 1.
    const bool checked = first < 0 || first + count + order - 1 > nknots - 1;
    if (checked)
        fill_levels<true>(knots, nknots, order, t, first, count, level);
    else
        fill_levels<false>(knots, nknots, order, t, first, count, level);
    for (int c = 0; c < count; c++)
        values[0][c] = level[order][c];

    // The d-th derivative at order r needs the (d - (order - r))-th one below:
    // plain values down to order order - d, zero at order 1 when d >= order.
    for (int d = 1; d <= max_der; d++) {
        double der[2 * max_order];
        int start = order - d;
        if (start >= 1) {
            for (int c = 0; c < count + d; c++)
                der[c] = level[start][c];
        } else {
            start = 1;
            for (int c = 0; c < count + order - 1; c++)
                der[c] = 0.0;
        }
        if (checked)
            raise_derivatives<true>(knots, nknots, order, first, count, start, der);
        else
            raise_derivatives<false>(knots, nknots, order, first, count, start, der);
        for (int c = 0; c < count; c++)
            values[d][c] = der[c];
    }
}

namespace {

// The banded table applies when the span's knots first .. first + 2p + 1 all
// exist, are finite and never decrease, and t lies inside span first + p
// (not on the last knot). Then the order-1 row is 1 at the span and +0.0
// elsewhere, and every entry of order r outside the band of the r functions
// ending at the span is +0.0 as well: its two lower entries are +0.0, the
// factors (t - knot) and (knot - t) have the signs their side of the span
// gives them, the denominators are positive, and the two signed zeros add up
// to +0.0. So are the derivatives there. Only the band is computed, each entry
// by the recursion's own expression; at the band's edges the term over an
// outside entry is that +0.0.
bool band_applies(const double* knots, int nknots, int order, double t, int first)
{
    const int p = order - 1;
    const int last = first + 2 * p + 1;
    if (first < 0 || last > nknots - 1)
        return false;
    const int j = first + p;
    if (!(knots[j] <= t && t < knots[j + 1]) || t == knots[nknots - 1])
        return false;
    for (int q = first; q < last; q++)
        if (!(knots[q] <= knots[q + 1]))
            return false;
    return std::isfinite(knots[last] - knots[first]) && std::isfinite(t - knots[first])
           && std::isfinite(knots[last] - t);
}

// Band edges: N(q, r) whose lower-left entry lies outside the band (its left
// term is +0.0), and whose lower-right one does (its right term is +0.0).
inline double raise_value_right_only(const double* knots, int order, double t, int i, double lower_next)
{
    const double b = knots[i + order] - knots[i + 1];
    double right = 0.0;
    if (b != 0.0)
        right = (knots[i + order] - t) * lower_next / b;
    return 0.0 + right;
}

inline double raise_value_left_only(const double* knots, int order, double t, int i, double lower_i)
{
    const double a = knots[i + order - 1] - knots[i];
    double left = 0.0;
    if (a != 0.0)
        left = (t - knots[i]) * lower_i / a;
    return left + 0.0;
}

inline double raise_derivative_right_only(const double* knots, int order, int i, double lower_next)
{
    const double b = knots[i + order] - knots[i + 1];
    double right = 0.0;
    if (b != 0.0)
        right = static_cast<double>(order - 1) * lower_next / b;
    return 0.0 - right;
}

inline double raise_derivative_left_only(const double* knots, int order, int i, double lower_i)
{
    const double a = knots[i + order - 1] - knots[i];
    double left = 0.0;
    if (a != 0.0)
        left = static_cast<double>(order - 1) * lower_i / a;
    return left - 0.0;
}

// One row of the band: entries c = lo .. p of order r (function first + c)
// from the row below, whose entries lo and p + 1 lie outside its band.
template <bool derivative>
void raise_band(const double* knots, int r, double t, int first, int p, const double* lower, double* row)
{
    // r >= 2: the band has two edges at least.
    const int lo = p - r + 1;
    for (int c = lo; c <= p; c++) {
        const int q = first + c;
        if (derivative)
            row[c] = c == lo ? raise_derivative_right_only(knots, r, q, lower[c + 1])
                   : c == p  ? raise_derivative_left_only(knots, r, q, lower[c])
                             : raise_derivative(knots, r, q, lower[c], lower[c + 1]);
        else
            row[c] = c == lo ? raise_value_right_only(knots, r, t, q, lower[c + 1])
                   : c == p  ? raise_value_left_only(knots, r, t, q, lower[c])
                             : raise_value(knots, r, t, q, lower[c], lower[c + 1]);
    }
}

}  // namespace

void m0BspCurve::span_table(const double* knots, int nknots, int order, double t, int first, int max_der,
                            double values[][max_order])
{
    if (!band_applies(knots, nknots, order, t, first)) {
        basis_table(knots, nknots, order, t, first, order, max_der, values);
        return;
    }
    const int p = order - 1;
    // level[r][c] = N(first + c, r) for c in the band p - r + 1 .. p.
    double level[max_order + 1][max_order];
    level[1][p] = 1.0;
    for (int r = 2; r <= order; r++)
        raise_band<false>(knots, r, t, first, p, level[r - 1], level[r]);
    for (int c = 0; c <= p; c++)
        values[0][c] = level[order][c];
    for (int d = 1; d <= max_der; d++) {
        double der[max_order];
        int start = order - d;
        if (start >= 1) {
            for (int c = p - start + 1; c <= p; c++)
                der[c] = level[start][c];
        } else {
            // d >= order: the zero derivatives of order 1 stay +0.0 all the way up.
            for (int c = 0; c <= p; c++)
                values[d][c] = 0.0;
            continue;
        }
        for (int r = start + 1; r <= order; r++) {
            double row[max_order];
            raise_band<true>(knots, r, t, first, p, der, row);
            for (int c = p - r + 1; c <= p; c++)
                der[c] = row[c];
        }
        for (int c = 0; c <= p; c++)
            values[d][c] = der[c];
    }
}

double m0BspCurve::single_basis(const double* knots, int nknots, int order, double t, int i, int der)
{
    if (knots == nullptr || !order_in_range(order) || der < 0 || der > max_derivative
        || !basis_exists(nknots, order, i))
        return 0.0;
    double values[max_derivative + 1][max_order];
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
