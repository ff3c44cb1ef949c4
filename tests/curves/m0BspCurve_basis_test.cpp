// m0BspCurve basis functions: the tables the curve uses give the bits of the
// plain Cox-de Boor recursion, on random curves, parameters and derivative
// orders, hostile knot vectors included.
#include "curves/m0BspCurve.h"
#include "tests/support/testGeometry.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <random>
#include <vector>

class m0BspCurveTestAccess {
public:
    static double table_basis(const double* knots, int m, int order, double t, int i, int der)
    {
        return m0BspCurve::single_basis(knots, m, order, t, i, der);
    }
    static void span(const double* knots, int m, int order, double t, int first, int max_der,
                     double values[][m0BspCurve::max_order])
    {
        m0BspCurve::span_table(knots, m, order, t, first, max_der, values);
    }
    static double first(const double* knots, int m, int order, double t, int i)
    {
        return m0BspCurve::get_base_function_first_der(knots, m, order, t, i);
    }
    static double second(const double* knots, int m, int order, double t, int i)
    {
        return m0BspCurve::get_base_function_second_der(knots, m, order, t, i);
    }
    static double third(const double* knots, int m, int order, double t, int i)
    {
        return m0BspCurve::get_base_function_third_der(knots, m, order, t, i);
    }
};

namespace {

using Access = m0BspCurveTestAccess;

struct RandomCurve {
    int degree = 0;
    std::vector<double> knots;
    std::vector<m03DPoint> cps;
    std::vector<double> weights;
};

// Clamped or not, with runs of equal knots, sometimes with weights, and now
// and then hostile: unsorted knots or arrays of the wrong length.
RandomCurve random_curve(std::mt19937_64& rng)
{
    std::uniform_int_distribution<int> degree_of(0, 5);
    std::uniform_int_distribution<int> extra(0, 8);
    std::uniform_int_distribution<int> coin(0, 3);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    RandomCurve c;
    c.degree = degree_of(rng);
    const int order = c.degree + 1;
    const int n = order + extra(rng);
    const int m = n + order;
    const bool clamped = coin(rng) != 0;
    double u = std::uniform_real_distribution<double>(-2.0, 2.0)(rng);
    for (int i = 0; i < m; i++) {
        const bool repeat = (clamped && (i < order || i >= n)) || (i > 0 && coin(rng) == 0);
        if (i > 0 && !repeat)
            u += 0.05 + unit(rng);
        c.knots.push_back(u);
    }
    for (int i = 0; i < n; i++)
        c.cps.emplace_back(unit(rng) * 10 - 5, unit(rng) * 10 - 5, unit(rng) * 10 - 5);
    if (coin(rng) >= 2)
        for (int i = 0; i < n; i++)
            c.weights.push_back(0.2 + 3.0 * unit(rng));
    const int hostile = std::uniform_int_distribution<int>(0, 9)(rng);
    if (hostile == 0)
        std::shuffle(c.knots.begin(), c.knots.end(), rng);
    else if (hostile == 1)
        c.knots.resize(std::max(1, m - 1 - coin(rng)));
    else if (hostile == 2 && !c.weights.empty())
        c.weights.resize(n / 2);
    return c;
}

m0BspCurve* build(const RandomCurve& rc)
{
    auto* c = new m0BspCurve();
    c->set_degree(rc.degree);
    auto* knots = new m01DVector(static_cast<int>(rc.knots.size()));
    for (size_t i = 0; i < rc.knots.size(); i++)
        knots->set_point(static_cast<int>(i), rc.knots[i]);
    auto* cps = new m03DVector(static_cast<int>(rc.cps.size()));
    for (size_t i = 0; i < rc.cps.size(); i++)
        cps->set_point(static_cast<int>(i), rc.cps[i]);
    c->set_knot_vector(knots);
    c->set_cpnt_vector(cps);
    if (!rc.weights.empty()) {
        auto* w = new m01DVector(static_cast<int>(rc.weights.size()));
        for (size_t i = 0; i < rc.weights.size(); i++)
            w->set_point(static_cast<int>(i), rc.weights[i]);
        c->set_weight_vector(w);
    }
    return c;
}

// Parameters inside and around the knot range, the knots themselves included.
std::vector<double> parameters(const RandomCurve& rc, std::mt19937_64& rng, int count)
{
    const double lo = *std::min_element(rc.knots.begin(), rc.knots.end());
    const double hi = *std::max_element(rc.knots.begin(), rc.knots.end());
    std::uniform_real_distribution<double> around(lo - 0.3 * (hi - lo) - 0.1, hi + 0.3 * (hi - lo) + 0.1);
    std::vector<double> ts(rc.knots.begin(), rc.knots.end());
    for (int i = 0; i < count; i++)
        ts.push_back(around(rng));
    return ts;
}

}  // namespace

TEST(m0BspCurve, Basis_TableEqualsRecursionBitForBit_RandomKnotsParametersAndDerivatives)
{
    std::mt19937_64 rng(20261122);
    long compared = 0;
    long nonzero = 0;
    for (int curve = 0; curve < 400; curve++) {
        const RandomCurve rc = random_curve(rng);
        const int m = static_cast<int>(rc.knots.size());
        for (double t : parameters(rc, rng, 12)) {
            for (int order = 1; order <= rc.degree + 2; order++) {
                for (int i = -2; i <= m + 1; i++) {
                    for (int d = 0; d <= m0BspCurve::max_derivative; d++) {
                        const double fast = Access::table_basis(rc.knots.data(), m, order, t, i, d);
                        const double ref = m0BspCurve::basis_reference(rc.knots.data(), m, order, t, i, d);
                        ASSERT_TRUE(same_bits(fast, ref)) << "order " << order << " i " << i << " d " << d
                                                          << " t " << t << ": " << fast << " vs " << ref;
                        compared++;
                        nonzero += fast != 0.0;
                    }
                }
            }
        }
    }
    // The comparison means something only if most values are not trivially 0.
    EXPECT_GT(compared, 500000);
    EXPECT_GT(nonzero, compared / 20);
    std::printf("basis values compared bit for bit: %ld (%ld non-zero)\n", compared, nonzero);
}

TEST(m0BspCurve, Basis_SpanTableEqualsRecursionBitForBit_WellFormedSpansKnotsOnTheParameter)
{
    // Clamped, non-decreasing knots with runs, and parameters on the knots
    // themselves, just beside them and inside: the spans where only the band
    // of non-zero entries is computed, with its zero products and dropped terms.
    std::mt19937_64 rng(99);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    long compared = 0;
    for (int curve = 0; curve < 600; curve++) {
        const int order = 1 + static_cast<int>(unit(rng) * 6);
        const int n = order + static_cast<int>(unit(rng) * 8);
        std::vector<double> k(order, -1.0 + unit(rng));
        double u = k[0];
        while (static_cast<int>(k.size()) < n) {
            if (unit(rng) < 0.6)
                u += unit(rng) < 0.2 ? 1e-9 : unit(rng);
            k.push_back(u);
        }
        u += 0.5;
        k.insert(k.end(), order, u);
        const int m = static_cast<int>(k.size());
        std::vector<double> ts;
        for (double v : k) {
            ts.push_back(v);
            ts.push_back(std::nextafter(v, 1e300));
            ts.push_back(std::nextafter(v, -1e300));
        }
        for (int i = 0; i < 10; i++)
            ts.push_back(k.front() + (k.back() - k.front()) * unit(rng));
        for (double t : ts) {
            for (int j = order - 1; j <= m - order; j++) {
                double values[m0BspCurve::max_derivative + 1][m0BspCurve::max_order];
                const int first = j - (order - 1);
                Access::span(k.data(), m, order, t, first, m0BspCurve::max_derivative, values);
                for (int c = 0; c < order; c++) {
                    for (int d = 0; d <= m0BspCurve::max_derivative; d++) {
                        const double ref = m0BspCurve::basis_reference(k.data(), m, order, t, first + c, d);
                        ASSERT_TRUE(same_bits(values[d][c], ref))
                            << "order " << order << " span " << j << " c " << c << " d " << d << " t " << t
                            << ": " << values[d][c] << " vs " << ref;
                        compared++;
                    }
                }
            }
        }
    }
    EXPECT_GT(compared, 500000);
}

TEST(m0BspCurve, Basis_NamedDerivativeFunctions_AreTableEntriesOfTheirOrder)
{
    std::mt19937_64 rng(7);
    for (int curve = 0; curve < 50; curve++) {
        const RandomCurve rc = random_curve(rng);
        const int m = static_cast<int>(rc.knots.size());
        const int order = rc.degree + 1;
        for (double t : parameters(rc, rng, 5)) {
            for (int i = 0; i < m; i++) {
                const double* k = rc.knots.data();
                EXPECT_TRUE(same_bits(m0BspCurve::get_base_function(k, m, order, t, i),
                                      m0BspCurve::basis_reference(k, m, order, t, i, 0)));
                EXPECT_TRUE(same_bits(Access::first(k, m, order, t, i), m0BspCurve::basis_reference(k, m, order, t, i, 1)));
                EXPECT_TRUE(same_bits(Access::second(k, m, order, t, i), m0BspCurve::basis_reference(k, m, order, t, i, 2)));
                EXPECT_TRUE(same_bits(Access::third(k, m, order, t, i), m0BspCurve::basis_reference(k, m, order, t, i, 3)));
            }
        }
    }
}

TEST(m0BspCurve, Basis_CurveWithTablesEqualsCurveWithRecursionBitForBit)
{
    std::mt19937_64 rng(4242);
    long compared = 0;
    for (int curve = 0; curve < 400; curve++) {
        const RandomCurve rc = random_curve(rng);
        m0BspCurve* fast = build(rc);
        m0BspCurve* ref = build(rc);
        ref->set_basis_method(m0BspCurve::BasisMethod::recursion);
        for (int closed = 0; closed <= 1; closed++) {
            fast->set_closed(closed);
            ref->set_closed(closed);
            for (double t : parameters(rc, rng, 10)) {
                ASSERT_TRUE(same_bits(fast->point(t), ref->point(t))) << t;
                ASSERT_TRUE(same_bits(fast->first_der(t), ref->first_der(t))) << t;
                ASSERT_TRUE(same_bits(fast->second_der(t), ref->second_der(t))) << t;
                ASSERT_TRUE(same_bits(fast->third_der(t), ref->third_der(t))) << t;
                compared += 4;
            }
        }
        delete fast;
        delete ref;
    }
    EXPECT_GT(compared, 20000);
}

TEST(m0BspCurve, Basis_PartitionOfUnity_ClampedCurveInsideItsRange)
{
    // A sanity check of the values themselves: the basis functions of a span
    // sum to 1 and their derivatives to 0.
    const std::vector<double> k = {0, 0, 0, 0, 0.2, 0.2, 0.6, 1, 1, 1, 1};
    for (double t = 0.0; t <= 1.0; t += 0.01) {
        double sum = 0.0;
        double dsum = 0.0;
        for (int i = 0; i < 7; i++) {
            sum += m0BspCurve::get_base_function(k.data(), 11, 4, t, i);
            dsum += m0BspCurve::basis_reference(k.data(), 11, 4, t, i, 1);
        }
        EXPECT_NEAR(sum, 1.0, 1e-14) << t;
        EXPECT_NEAR(dsum, 0.0, 1e-12) << t;
    }
}

TEST(m0BspCurve, Basis_OrderOne_LastKnotClosesTheLastNonEmptySpan)
{
    const std::vector<double> k = {0, 0, 0.5, 1, 1};
    // At the last knot every order-1 function whose right knot is the last one is 1.
    EXPECT_EQ(m0BspCurve::get_base_function(k.data(), 5, 1, 1.0, 2), 1.0);
    EXPECT_EQ(m0BspCurve::get_base_function(k.data(), 5, 1, 1.0, 3), 1.0);
    EXPECT_EQ(m0BspCurve::get_base_function(k.data(), 5, 1, 1.0, 1), 0.0);
    EXPECT_EQ(m0BspCurve::get_base_function(k.data(), 5, 1, 0.5, 2), 1.0);
    EXPECT_EQ(m0BspCurve::get_base_function(k.data(), 5, 1, 0.5, 1), 0.0);
    // An index without its knots behind it does not exist.
    EXPECT_EQ(m0BspCurve::get_base_function(k.data(), 5, 1, 1.0, 4), 0.0);
    EXPECT_EQ(m0BspCurve::get_base_function(k.data(), 5, 2, 0.7, -1), 0.0);
    EXPECT_EQ(m0BspCurve::get_base_function(nullptr, 5, 2, 0.7, 0), 0.0);
}
