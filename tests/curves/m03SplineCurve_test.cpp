// m03SplineCurve: parameters, the open and closed tangent rules, Hermite
// evaluation, the segment search, reversal, and the exact B-spline and host forms.
#include "curves/m03SplineCurve.h"
#include "curves/m0BspCurve.h"
#include "host/rnxNurbCurve3.h"
#include "tests/support/testGeometry.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <vector>

namespace {

using Pts = std::vector<m03DPoint>;

double dist(const m03DPoint& a, const m03DPoint& b) { return (a - b).module(); }

// The larger of the two, and NaN as soon as either is NaN (std::max would drop it).
double worse(double worst, double v)
{
    if (std::isnan(worst) || std::isnan(v))
        return std::numeric_limits<double>::quiet_NaN();
    return v <= worst ? worst : v;
}

void expect_same(const m03DPoint& a, const m03DPoint& b)
{
    EXPECT_EQ(a.x(), b.x());
    EXPECT_EQ(a.y(), b.y());
    EXPECT_EQ(a.z(), b.z());
}

// Dense reference: Gaussian elimination with partial pivoting on an m x m
// system with point right sides.
std::vector<m03DPoint> dense_solve(std::vector<std::vector<double>> a, std::vector<m03DPoint> r)
{
    const int m = static_cast<int>(r.size());
    for (int k = 0; k < m; ++k) {
        int piv = k;
        for (int i = k + 1; i < m; ++i)
            if (std::fabs(a[i][k]) > std::fabs(a[piv][k]))
                piv = i;
        std::swap(a[k], a[piv]);
        std::swap(r[k], r[piv]);
        for (int i = k + 1; i < m; ++i) {
            double f = a[i][k] / a[k][k];
            for (int j = k; j < m; ++j)
                a[i][j] -= f * a[k][j];
            r[i] -= r[k] * f;
        }
    }
    std::vector<m03DPoint> x(m);
    for (int i = m - 1; i >= 0; --i) {
        m03DPoint s = r[i];
        for (int j = i + 1; j < m; ++j)
            s -= x[j] * a[i][j];
        x[i] = s / a[i][i];
    }
    return x;
}

m03DPoint interior_rhs(const Pts& p, int i, double hL, double hR)
{
    return ((p[i + 1] - p[i]) * (hL * hL) + (p[i] - p[i - 1]) * (hR * hR)) * 3.0 / (hL * hR);
}

// Reference tangents of an open spline from a dense solve of the same equations.
std::vector<m03DPoint> dense_open(const Pts& p, const std::vector<double>& u, m03DPoint ts, m03DPoint te)
{
    const int n = static_cast<int>(p.size());
    std::vector<std::vector<double>> a(n, std::vector<double>(n, 0.0));
    std::vector<m03DPoint> r(n);
    a[0][0] = 1.0;
    r[0] = ts;
    a[n - 1][n - 1] = 1.0;
    r[n - 1] = te;
    for (int i = 1; i <= n - 2; ++i) {
        double hL = u[i] - u[i - 1], hR = u[i + 1] - u[i];
        a[i][i - 1] = hR;
        a[i][i] = 2.0 * (hL + hR);
        a[i][i + 1] = hL;
        r[i] = interior_rhs(p, i, hL, hR);
    }
    return dense_solve(a, r);
}

// Reference tangents T0 ... Tn-2 of a closed spline. With last_row_uses_hN the
// last row couples to T0 with hN (the designed rule); otherwise with
// u(n-2) - u(n-3) (the textbook periodic spline).
std::vector<m03DPoint> dense_closed(const Pts& p, const std::vector<double>& u, bool last_row_uses_hN)
{
    const int n = static_cast<int>(p.size());
    const int m = n - 1;
    std::vector<std::vector<double>> a(m, std::vector<double>(m, 0.0));
    std::vector<m03DPoint> r(m);
    double h0 = u[1] - u[0], hN = u[n - 1] - u[n - 2];
    a[0][0] = 2.0 * (hN / h0 + 1.0);
    a[0][1] = hN / h0;
    a[0][m - 1] += 1.0;
    r[0] = (p[1] - p[0]) * (3.0 * hN) / (h0 * h0) - (p[n - 2] - p[n - 1]) * 3.0 / hN;
    for (int i = 1; i <= m - 1; ++i) {
        double hL = u[i] - u[i - 1], hR = u[i + 1] - u[i];
        a[i][i - 1] += hR;
        a[i][i] += 2.0 * (hL + hR);
        int right = (i + 1) % m;
        a[i][right] += (i == m - 1 && last_row_uses_hN) ? hN : hL;
        r[i] = interior_rhs(p, i, hL, hR);
    }
    return dense_solve(a, r);
}

std::vector<double> chord_params(const Pts& p)
{
    std::vector<double> u(p.size(), 0.0);
    double total = 0.0;
    for (size_t i = 1; i < p.size(); ++i)
        total += dist(p[i], p[i - 1]);
    double run = 0.0;
    for (size_t i = 1; i < p.size(); ++i) {
        run += dist(p[i], p[i - 1]);
        u[i] = run / total;
    }
    return u;
}

// Uneven open test data in 3-D.
Pts wavy_points(int n)
{
    Pts p;
    for (int i = 0; i < n; ++i) {
        double s = i + 0.37 * std::sin(1.3 * i);
        p.emplace_back(s, std::cos(0.7 * i) * (1.0 + 0.5 * (i % 3)), 0.2 * i * std::sin(0.4 * i));
    }
    return p;
}

// The closed system swept as the spline sweeps it, with the forward rescaling
// rule chosen: by the largest of a row's three entries (the spline's rule) or,
// as the open sweep does, boosting when the smallest is tiny. Tangents
// T0 ... Tm-1 for the parameters u.
std::vector<m03DPoint> swept_closed(const Pts& p, const std::vector<double>& u, bool by_largest)
{
    const double too_big = 1e8, too_small = 1e-10, boost = 1e10;
    const int n = static_cast<int>(p.size());
    const int m = n - 1;
    std::vector<double> below(m, 0.0), diag(m, 0.0), above(m, 0.0), last(m, 0.0);
    std::vector<m03DPoint> r(m);
    double h0 = u[1] - u[0], hN = u[n - 1] - u[n - 2];
    double q = hN / h0;
    diag[0] = 2.0 * (q + 1.0);
    above[0] = q;
    last[0] = 1.0;
    r[0] = (p[1] - p[0]) * (3.0 * hN) / (h0 * h0) - (p[n - 2] - p[n - 1]) * 3.0 / hN;
    for (int i = 1; i <= m - 1; ++i) {
        double hL = u[i] - u[i - 1], hR = u[i + 1] - u[i];
        below[i] = hR;
        diag[i] = 2.0 * (hL + hR);
        above[i] = hL;
        r[i] = interior_rhs(p, i, hL, hR);
    }
    above[m - 1] = below[m - 1];
    for (int i = 1; i <= m - 1; ++i) {
        double bp = diag[i - 1], cp = above[i - 1], lp = last[i - 1];
        double a = below[i], b = diag[i], c = above[i];
        below[i] = 0.0;
        diag[i] = b * bp - a * cp;
        if (i <= m - 3)
            last[i] = -a * lp;
        above[i] = i == m - 2 ? c * bp - a * lp : c * bp;
        r[i] = r[i] * bp - r[i - 1] * a;
        double big = std::max({std::fabs(diag[i]), std::fabs(above[i]), std::fabs(last[i])});
        double small = std::min({std::fabs(diag[i]), std::fabs(above[i]), std::fabs(last[i])});
        if (big > too_big) {
            diag[i] /= big;
            above[i] /= big;
            last[i] /= big;
            r[i] /= big;
        } else if ((by_largest ? big : small) < too_small) {
            diag[i] *= boost;
            above[i] *= boost;
            last[i] *= boost;
            r[i] *= boost;
        }
    }
    last[m - 2] = above[m - 2];
    above[m - 2] = 0.0;
    for (int i = m - 3; i >= 0; --i) {
        double dn = diag[i + 1], ln = last[i + 1], c = above[i];
        above[i] = 0.0;
        diag[i] = diag[i] * dn;
        last[i] = last[i] * dn - c * ln;
        r[i] = r[i] * dn - r[i + 1] * c;
        double d = std::fabs(diag[i]), l = std::fabs(last[i]);
        double big = std::max(d, l), small = std::min(d, l);
        if (big > too_big) {
            diag[i] /= big;
            last[i] /= big;
            r[i] /= big;
        }
        if (small < too_small) {
            diag[i] *= boost;
            last[i] *= boost;
            r[i] *= boost;
        }
    }
    auto divide = [](const m03DPoint& v, double d) { return d == 0.0 ? m03DPoint() : v / d; };
    std::vector<m03DPoint> t(m);
    double c = above[m - 1];
    double dm = diag[0] * diag[m - 1] - c * last[0];
    m03DPoint rm = r[m - 1] * diag[0] - r[0] * c;
    t[m - 1] = divide(rm, dm);
    for (int i = 0; i <= m - 2; ++i)
        t[i] = divide(r[i] * dm - rm * last[i], diag[i] * dm);
    return t;
}

}  // namespace

TEST(m03SplineCurve, ChordLengthParams_NormalisedAccumulatedChords)
{
    m03SplineCurve s(points_of({{0, 0, 0}, {3, 4, 0}, {3, 4, 5}, {3, 4, 15}}));
    m01DVector* u = s.params_vector();
    ASSERT_NE(u, nullptr);
    ASSERT_EQ(u->size(), 4);
    EXPECT_EQ(u->point(0), 0.0);
    EXPECT_EQ(u->point(1), 5.0 / 20.0);
    EXPECT_EQ(u->point(2), 10.0 / 20.0);
    EXPECT_EQ(u->point(3), 1.0);
}

TEST(m03SplineCurve, TwoPoints_CubicWithThirdChordTangentsAndChordMidpointAtHalf)
{
    m03DPoint p0(1, 2, 3), p1(4, -2, 9);
    m03SplineCurve s(points_of({p0, p1}));
    ASSERT_NE(s.tangents_vector(), nullptr);
    expect_same(s.tangents_vector()->point(0), (p1 - p0) / 3.0);
    expect_same(s.tangents_vector()->point(1), (p1 - p0) / 3.0);
    m03DPoint mid = (p0 + p1) * 0.5;
    EXPECT_LT(dist(s.point(0.5), mid), 1e-14);
    // A cubic, not the chord: at a quarter the end tangents (a third of the chord
    // against a chord length of 1 in the parameter) pull the point towards P0.
    m03DPoint quarter = s.point(0.25);
    double along = (quarter - p0).scal_mult(p1 - p0) / (p1 - p0).module2();
    // Hermite basis at 1/4: h01 + (h10 + h11) / 3 = 10/64 + (9/64 - 3/64) / 3.
    EXPECT_NEAR(along, 0.1875, 1e-14);
}

TEST(m03SplineCurve, OpenEndTangents_OneThirdOfEndChordsNotScaledByParameterSteps)
{
    // Uneven chords: a tangent scaled by the parameter step would be chord / h, far
    // larger than chord / 3.
    Pts p = {{0, 0, 0}, {1, 0, 0}, {1, 5, 0}, {1, 5, 2}};
    m03SplineCurve s(points_of(p));
    ASSERT_NE(s.tangents_vector(), nullptr);
    expect_same(s.tangents_vector()->point(0), (p[1] - p[0]) / 3.0);
    expect_same(s.tangents_vector()->point(3), (p[3] - p[2]) / 3.0);
}

TEST(m03SplineCurve, CollinearEvenPoints_TangentsParallelAndCurveStaysOnLine)
{
    m03DPoint dir(1, 2, -2);
    Pts p;
    for (int i = 0; i < 6; ++i)
        p.push_back(m03DPoint(1, 1, 1) + dir * i);
    m03SplineCurve s(points_of(p));
    ASSERT_NE(s.tangents_vector(), nullptr);
    for (int i = 0; i < 6; ++i)
        EXPECT_LT((s.tangents_vector()->point(i) * dir).module(), 1e-12) << i;
    for (int k = 0; k <= 40; ++k) {
        m03DPoint q = s.point(k / 40.0);
        EXPECT_LT(((q - p[0]) * dir).module(), 1e-12) << k;
    }
}

TEST(m03SplineCurve, OpenTangents_SatisfyInteriorEquationsLikeDenseSolve)
{
    Pts p = wavy_points(9);
    std::vector<double> u = chord_params(p);
    m03SplineCurve s(points_of(p));
    std::vector<m03DPoint> ref = dense_open(p, u, (p[1] - p[0]) / 3.0, (p[8] - p[7]) / 3.0);
    for (int i = 0; i < 9; ++i)
        EXPECT_LT(dist(s.tangents_vector()->point(i), ref[i]), 1e-12) << i;
}

TEST(m03SplineCurve, LongOpenSpline_RescaledDivisionFreeSweepMatchesDenseSolve)
{
    // Without rescaling, products of 500 pivots of about 1e-2 underflow to zero.
    Pts p = wavy_points(500);
    std::vector<double> u = chord_params(p);
    m03SplineCurve s(points_of(p));
    std::vector<m03DPoint> ref = dense_open(p, u, (p[1] - p[0]) / 3.0, (p[499] - p[498]) / 3.0);
    double worst = 0.0;
    for (int i = 0; i < 500; ++i)
        worst = worse(worst, dist(s.tangents_vector()->point(i), ref[i]) / (1.0 + ref[i].module()));
    EXPECT_LT(worst, 1e-10);
}

TEST(m03SplineCurve, LongOpenSplineOnWideParams_RescaledSweepMatchesDenseSolve)
{
    // Parameter steps near 1000: without the division by the row's largest entry
    // the products of 300 pivots overflow.
    Pts p = wavy_points(300);
    std::vector<double> u;
    for (int i = 0; i < 300; ++i)
        u.push_back(1000.0 * i + 300.0 * std::sin(0.9 * i));
    m03DPoint ts(1, 0.5, 0), te(-0.2, 1, 3);
    m03SplineCurve s(points_of(p), values_of(u), ts, te);
    ASSERT_NE(s.tangents_vector(), nullptr);
    std::vector<m03DPoint> ref = dense_open(p, u, ts, te);
    double worst = 0.0;
    for (int i = 0; i < 300; ++i)
        worst = worse(worst, dist(s.tangents_vector()->point(i), ref[i]) / (1e-3 + ref[i].module()));
    EXPECT_LT(worst, 1e-10);
}

TEST(m03SplineCurve, OpenZeroDiagonal_GivesZeroTangent)
{
    // Parameters 0, 1, 0: the middle row's diagonal 2 (hL + hR) is exactly 0.
    m03DPoint ts(1, 2, 3), te(-1, 0, 4);
    m03SplineCurve s(points_of({{0, 0, 0}, {1, 0, 0}, {2, 1, 0}}), values_of({0.0, 1.0, 0.0}), ts, te);
    ASSERT_NE(s.tangents_vector(), nullptr);
    expect_same(s.tangents_vector()->point(0), ts);
    expect_same(s.tangents_vector()->point(1), m03DPoint(0, 0, 0));
    expect_same(s.tangents_vector()->point(2), te);
}

TEST(m03SplineCurve, GivenParamsAndEndTangents_UsedAsGiven)
{
    Pts p = wavy_points(5);
    std::vector<double> u = {0.0, 0.5, 1.25, 2.0, 4.0};
    m03DPoint ts(0.5, 0.1, -1), te(2, 2, 2);
    m03SplineCurve s(points_of(p), values_of(u), ts, te);
    std::vector<m03DPoint> ref = dense_open(p, u, ts, te);
    for (int i = 0; i < 5; ++i)
        EXPECT_LT(dist(s.tangents_vector()->point(i), ref[i]), 1e-12) << i;
    EXPECT_EQ(s.params_vector()->point(4), 4.0);
    EXPECT_LT(dist(s.point0(1.25), p[2]), 1e-12);
}

TEST(m03SplineCurve, ClosedSquare_TangentsEqualLengthParallelToNeighbourDiagonal)
{
    Pts p = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 0}};
    m03SplineCurve s(points_of(p));
    m03DVector* t = s.tangents_vector();
    ASSERT_NE(t, nullptr);
    ASSERT_EQ(t->size(), 5);
    expect_same(t->point(4), t->point(0));
    double len = t->point(0).module();
    EXPECT_GT(len, 0.1);
    for (int i = 0; i < 4; ++i) {
        m03DPoint diag = p[(i + 1) % 4] - p[(i + 3) % 4];
        EXPECT_NEAR(t->point(i).module(), len, 1e-12) << i;
        EXPECT_LT((t->point(i) * diag).module(), 1e-12) << i;
        EXPECT_GT(t->point(i).scal_mult(diag), 0.0) << i;
    }
    // Periodic: the curve passes every corner and closes.
    for (int i = 0; i <= 4; ++i)
        EXPECT_LT(dist(s.point(i / 4.0), p[i]), 1e-12) << i;
}

TEST(m03SplineCurve, ClosedLongerLastSegment_LastRowCouplesToT0WithHN)
{
    // Last segment (length 3) longer than the one before it (length 1).
    Pts p = {{0, 0, 0}, {2, 0, 0.5}, {3, 1, 0}, {3, 2, 0.3}, {2.2, 2.6, 0}, {0, 0, 0}};
    std::vector<double> u = chord_params(p);
    ASSERT_GT(u[5] - u[4], u[4] - u[3]);
    m03SplineCurve s(points_of(p));
    ASSERT_NE(s.tangents_vector(), nullptr);
    std::vector<m03DPoint> designed = dense_closed(p, u, true);
    std::vector<m03DPoint> textbook = dense_closed(p, u, false);
    double off_textbook = 0.0;
    for (int i = 0; i < 5; ++i) {
        EXPECT_LT(dist(s.tangents_vector()->point(i), designed[i]), 1e-12) << i;
        off_textbook = worse(off_textbook, dist(s.tangents_vector()->point(i), textbook[i]));
    }
    EXPECT_GT(off_textbook, 1e-3);
    expect_same(s.tangents_vector()->point(5), s.tangents_vector()->point(0));
}

TEST(m03SplineCurve, ClosedFourPoints_SmallestLoopSolvedLikeDenseSolve)
{
    Pts p = {{0, 0, 0}, {2, 0, 1}, {0.5, 1.5, 0}, {0, 0, 0}};
    std::vector<double> u = chord_params(p);
    m03SplineCurve s(points_of(p));
    ASSERT_NE(s.tangents_vector(), nullptr);
    std::vector<m03DPoint> ref = dense_closed(p, u, true);
    for (int i = 0; i < 3; ++i)
        EXPECT_LT(dist(s.tangents_vector()->point(i), ref[i]), 1e-12) << i;
}

TEST(m03SplineCurve, LongClosedSpline_RescaledSweepsMatchDenseSolve)
{
    Pts p;
    for (int i = 0; i < 400; ++i) {
        double a = 2.0 * M_PI * i / 400.0;
        p.emplace_back((2.0 + 0.3 * std::sin(5 * a)) * std::cos(a), (1.0 + 0.2 * std::cos(3 * a)) * std::sin(a),
                       0.1 * std::sin(7 * a));
    }
    p.push_back(p[0]);
    std::vector<double> u = chord_params(p);
    m03SplineCurve s(points_of(p));
    ASSERT_NE(s.tangents_vector(), nullptr);
    std::vector<m03DPoint> ref = dense_closed(p, u, true);
    double worst = 0.0;
    for (int i = 0; i < 400; ++i)
        worst = worse(worst, dist(s.tangents_vector()->point(i), ref[i]) / (1.0 + ref[i].module()));
    EXPECT_LT(worst, 1e-10);
}

TEST(m03SplineCurve, LongClosedSpline_ForwardSweepRescalesByTheLargestEntryOfARow)
{
    // On a long loop the last column fades below 1e-10 while the diagonal
    // stays large: a row is boosted only when its largest entry is tiny, not
    // its smallest, and the tangents hold the rounding of that rule, bit for
    // bit.
    Pts p;
    for (int i = 0; i < 120; ++i) {
        double a = 2.0 * M_PI * i / 120.0;
        p.emplace_back((2.0 + 0.3 * std::sin(5 * a)) * std::cos(a), (1.0 + 0.2 * std::cos(3 * a)) * std::sin(a),
                       0.1 * std::sin(7 * a));
    }
    p.push_back(p[0]);
    m03SplineCurve s(points_of(p));
    ASSERT_NE(s.tangents_vector(), nullptr);
    m01DVector* params = s.params_vector();
    std::vector<double> u(params->get_data_pointer(), params->get_data_pointer() + params->size());
    std::vector<m03DPoint> by_largest = swept_closed(p, u, true);
    std::vector<m03DPoint> by_smallest = swept_closed(p, u, false);
    int differ = 0;
    for (int i = 0; i < 120; ++i)
        differ += !same_bits(by_largest[i], by_smallest[i]);
    ASSERT_GT(differ, 0) << "the loop does not tell the two rules apart";
    for (int i = 0; i < 120; ++i)
        EXPECT_TRUE(same_bits(s.tangents_vector()->point(i), by_largest[i])) << i;
}

TEST(m03SplineCurve, ClosedWithThreePoints_NoTangentsNoBsplineAndEvaluatesAsPolyline)
{
    m03SplineCurve s(points_of({{0, 0, 0}, {2, 0, 0}, {0, 0, 0}}));
    EXPECT_EQ(s.tangents_vector(), nullptr);
    EXPECT_EQ(s.bsp_curve(), nullptr);
    EXPECT_EQ(s.approximate(0.01), nullptr);
    EXPECT_EQ(s.rnxNurbCurve(), nullptr);
    expect_same(s.point(0.25), m03DPoint(1, 0, 0));
}

TEST(m03SplineCurve, ClosedCoincidentPoints_ZeroDiagonalGivesZeroTangents)
{
    // Three coincident points inside the loop make two parameter steps of 0: the
    // rows between them have a zero diagonal, and their tangents are zero instead
    // of the 0/0 of their right sides.
    m03SplineCurve s(points_of({{0, 0, 0}, {1, 0, 0}, {1, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 0}}));
    ASSERT_NE(s.tangents_vector(), nullptr);
    bool any_zero = false;
    for (int i = 0; i < 6; ++i) {
        const m03DPoint& t = s.tangents_vector()->point(i);
        if (t.x() == 0.0 && t.y() == 0.0 && t.z() == 0.0)
            any_zero = true;
    }
    EXPECT_TRUE(any_zero);
}

TEST(m03SplineCurve, WithoutTangents_EvaluatesAsPolylineThroughPoints)
{
    // A closed loop of three points has no tangents; it runs to (4, 2, 0) and back.
    m03SplineCurve loop(points_of({{0, 0, 0}, {4, 2, 0}, {0, 0, 0}}));
    ASSERT_EQ(loop.tangents_vector(), nullptr);
    for (int k = 0; k <= 8; ++k) {
        double t = k / 8.0;
        m03DPoint expect = t <= 0.5 ? m03DPoint(4, 2, 0) * (t / 0.5) : m03DPoint(4, 2, 0) * ((1.0 - t) / 0.5);
        EXPECT_LT(dist(loop.point(t), expect), 1e-14) << k;
    }
}

TEST(m03SplineCurve, HermiteSegment_MatchesCubicHermiteBasis)
{
    Pts p = wavy_points(5);
    m03SplineCurve s(points_of(p));
    m01DVector* u = s.params_vector();
    m03DVector* t = s.tangents_vector();
    for (int seg = 0; seg < 4; ++seg) {
        double h = u->point(seg + 1) - u->point(seg);
        for (int k = 0; k <= 5; ++k) {
            double x = k / 5.0, tau = x * h;
            double h00 = 2 * x * x * x - 3 * x * x + 1, h10 = x * x * x - 2 * x * x + x;
            double h01 = -2 * x * x * x + 3 * x * x, h11 = x * x * x - x * x;
            m03DPoint ref = p[seg] * h00 + t->point(seg) * (h10 * h) + p[seg + 1] * h01 + t->point(seg + 1) * (h11 * h);
            EXPECT_LT(dist(s.point(seg, tau), ref), 1e-12) << seg << " " << k;
        }
        expect_same(s.point(seg, 0.0), p[seg]);
    }
}

TEST(m03SplineCurve, SegmentOutOfRange_GivesOrigin)
{
    m03SplineCurve s(points_of(wavy_points(4)));
    expect_same(s.point(-1, 0.1), m03DPoint());
    expect_same(s.point(3, 0.1), m03DPoint());
    expect_same(s.point(std::numeric_limits<int>::max(), 0.1), m03DPoint());
}

TEST(m03SplineCurve, PointAtOne_IsLastPoint)
{
    Pts p = wavy_points(7);
    m03SplineCurve s(points_of(p));
    EXPECT_LT(dist(s.point(1.0), p[6]), 1e-13);
    expect_same(s.point(0.0), p[0]);
}

TEST(m03SplineCurve, Point0AtPointParameter_EvaluatedOnSegmentThatEndsThere)
{
    // Find data where the end of segment s and the start of segment s + 1 differ in
    // the last bits, so that the tie is visible.
    Pts p = wavy_points(7);
    m03SplineCurve s(points_of(p));
    m01DVector* u = s.params_vector();
    int checked = 0;
    for (int i = 1; i <= 5; ++i) {
        m03DPoint end_of_previous = s.point(i - 1, u->point(i) - u->point(i - 1));
        m03DPoint start_of_next = s.point(i, 0.0);
        expect_same(s.point0(u->point(i)), end_of_previous);
        if (!(end_of_previous == start_of_next))
            ++checked;
        EXPECT_LT(dist(s.point0(u->point(i)), p[i]), 1e-13);
    }
    EXPECT_GT(checked, 0);
    expect_same(s.point0(u->point(1)), s.point(0, u->point(1) - u->point(0)));
}

TEST(m03SplineCurve, PointOfFraction_MapsOntoParameterRange)
{
    Pts p = wavy_points(5);
    m03SplineCurve s(points_of(p), values_of({2.0, 2.5, 3.0, 4.0, 6.0}), m03DPoint(1, 0, 0), m03DPoint(0, 1, 0));
    for (int k = 0; k <= 10; ++k) {
        double t = k / 10.0;
        expect_same(s.point(t), s.point0(2.0 + (6.0 - 2.0) * t));
    }
}

TEST(m03SplineCurve, OutsideRange_ExtrapolatesEndSegmentCubics)
{
    Pts p = wavy_points(5);
    m03SplineCurve s(points_of(p));
    m01DVector* u = s.params_vector();
    expect_same(s.point0(-0.2), s.point(0, -0.2));
    expect_same(s.point0(1.3), s.point(3, 1.3 - u->point(3)));
    expect_same(s.point(1.5), s.point(3, 1.5 - u->point(3)));
}

TEST(m03SplineCurve, Reverse_PointAtTEqualsPointAtOneMinusTBefore)
{
    Pts p = wavy_points(8);
    m03SplineCurve before(points_of(p));
    m03SplineCurve after(points_of(p));
    after.reverse();
    EXPECT_EQ(after.params_vector()->point(0), 0.0);
    EXPECT_EQ(after.params_vector()->point(7), 1.0);
    for (int k = 0; k <= 20; ++k) {
        double t = k / 20.0;
        EXPECT_LT(dist(after.point(t), before.point(1.0 - t)), 1e-12) << k;
    }
    expect_same(after.tangents_vector()->point(0), before.tangents_vector()->point(7) * -1.0);
}

TEST(m03SplineCurve, NullPoints_EverythingAbsent)
{
    m03SplineCurve s(static_cast<m03DVector*>(nullptr));
    EXPECT_EQ(s.points_vector(), nullptr);
    EXPECT_EQ(s.params_vector(), nullptr);
    EXPECT_EQ(s.tangents_vector(), nullptr);
    expect_same(s.point(0.5), m03DPoint());
    expect_same(s.point0(0.5), m03DPoint());
    EXPECT_EQ(s.bsp_curve(), nullptr);
    s.reverse();
    m03SplineCurve d;
    expect_same(d.point(0.5), m03DPoint());
    EXPECT_EQ(d.rnxNurbCurve(), nullptr);
}

TEST(m03SplineCurve, NoPoints_EvaluatesToOriginAndHasNoBspline)
{
    m03SplineCurve s(new m03DVector(0));
    EXPECT_EQ(s.tangents_vector(), nullptr);
    expect_same(s.point(0.5), m03DPoint());
    expect_same(s.point0(-3.0), m03DPoint());
    EXPECT_EQ(s.bsp_curve(), nullptr);
    s.reverse();
    expect_same(s.point(0.0), m03DPoint());
}

TEST(m03SplineCurve, OnePoint_EvaluatesToThatPointAndHasNoBspline)
{
    m03SplineCurve s(points_of({{1, 2, 3}}));
    EXPECT_EQ(s.tangents_vector(), nullptr);
    expect_same(s.point(0.5), m03DPoint(1, 2, 3));
    expect_same(s.point0(7.0), m03DPoint(1, 2, 3));
    EXPECT_EQ(s.bsp_curve(), nullptr);
    EXPECT_EQ(s.approximate(0.1), nullptr);
    s.reverse();
    expect_same(s.point(1.0), m03DPoint(1, 2, 3));
}

TEST(m03SplineCurve, ParamsOfOtherSize_NoTangentsAndEvaluatesToOrigin)
{
    m03SplineCurve s(points_of(wavy_points(4)), values_of({0.0, 1.0}), m03DPoint(), m03DPoint());
    EXPECT_EQ(s.tangents_vector(), nullptr);
    expect_same(s.point(0.5), m03DPoint());
    EXPECT_EQ(s.bsp_curve(), nullptr);
    m03SplineCurve n(points_of(wavy_points(4)), nullptr, m03DPoint(), m03DPoint());
    expect_same(n.point(0.5), m03DPoint());
    EXPECT_EQ(n.rnxNurbCurve(), nullptr);
}

TEST(m03SplineCurve, AllPointsCoincident_NoCrashAndHostCurveNotValid)
{
    // Zero total chord: the parameters are 0/0, which is left unguarded; what
    // comes out must still be safe to evaluate and must not pass as a curve.
    m03SplineCurve s(points_of({{1, 1, 1}, {1, 1, 1}, {1, 1, 1}, {1, 1, 1}}));
    (void)s.point(0.3);
    (void)s.point0(0.7);
    std::unique_ptr<rnxNurbCurve3> c(s.rnxNurbCurve());
    if (c) {
        EXPECT_EQ(c->is_valid(), 0);
    }
}

TEST(m03SplineCurve, NaNCoordinates_NoCrashAndHostCurveNotValid)
{
    double nan = std::numeric_limits<double>::quiet_NaN();
    for (int where = 0; where < 5; ++where) {
        Pts p = wavy_points(5);
        p[where].set_y(nan);
        m03SplineCurve s(points_of(p));
        (void)s.point(0.5);
        (void)s.point0(nan);
        std::unique_ptr<rnxNurbCurve3> c(s.rnxNurbCurve());
        if (c) {
            EXPECT_EQ(c->is_valid(), 0) << where;
        }
    }
}

TEST(m03SplineCurve, NaNParameter_EvaluatesWithoutLeavingSegments)
{
    m03SplineCurve s(points_of(wavy_points(6)));
    m03DPoint q = s.point0(std::numeric_limits<double>::quiet_NaN());
    EXPECT_TRUE(std::isnan(q.x()));
    (void)s.point(std::numeric_limits<double>::infinity());
    (void)s.point(-std::numeric_limits<double>::infinity());
}

TEST(m03SplineCurve, BspCurveOnThreePoints_SevenControlPointsKnotsAndTracesSpline)
{
    Pts p = {{0, 0, 0}, {1, 2, 0.5}, {4, 2.5, -1}};
    m03SplineCurve s(points_of(p));
    std::unique_ptr<m0BspCurve> c(s.bsp_curve());
    ASSERT_NE(c, nullptr);
    double u1 = s.params_vector()->point(1);
    EXPECT_EQ(c->degree(), 3);
    EXPECT_EQ(c->no_of_cpnt(), 7);
    EXPECT_EQ(c->weight_vector(), nullptr);
    EXPECT_EQ(c->closed(), 0);
    EXPECT_EQ(c->extended(), 0);
    ASSERT_EQ(c->cpnt_vector()->size(), 7);
    std::vector<double> expect = {0, 0, 0, 0, u1, u1, u1, 1, 1, 1, 1};
    ASSERT_EQ(c->knot_vector()->size(), 11);
    for (int i = 0; i < 11; ++i)
        EXPECT_EQ(c->knot_vector()->point(i), expect[i]) << i;
    for (int i = 0; i < 3; ++i)
        expect_same(c->cpnt_vector()->point(3 * i), p[i]);
    for (int k = 0; k <= 50; ++k) {
        double u = k / 50.0;
        EXPECT_LT(dist(c->point(u), s.point0(u)), 1e-12) << u;
    }
}

TEST(m03SplineCurve, BspCurve_TracesLongerSplineExactly)
{
    Pts p = wavy_points(12);
    m03SplineCurve s(points_of(p));
    std::unique_ptr<m0BspCurve> c(s.bsp_curve());
    ASSERT_NE(c, nullptr);
    EXPECT_EQ(c->no_of_cpnt(), 34);
    EXPECT_EQ(c->knot_vector()->size(), 38);
    for (int k = 0; k <= 200; ++k) {
        double u = k / 200.0;
        EXPECT_LT(dist(c->point(u), s.point0(u)), 1e-11) << u;
    }
}

TEST(m03SplineCurve, BspKnots_MappedOntoParameterRangeLowToHigh)
{
    Pts p = wavy_points(3);
    m03SplineCurve s(points_of(p), values_of({2.0, 3.0, 5.0}), m03DPoint(1, 0, 0), m03DPoint(0, 0, 1));
    std::unique_ptr<m0BspCurve> c(s.bsp_curve());
    ASSERT_NE(c, nullptr);
    std::vector<double> expect = {2, 2, 2, 2, 3, 3, 3, 5, 5, 5, 5};
    for (int i = 0; i < 11; ++i)
        EXPECT_EQ(c->knot_vector()->point(i), expect[i]) << i;
    for (int k = 0; k <= 30; ++k) {
        double u = 2.0 + 3.0 * k / 30.0;
        EXPECT_LT(dist(c->point(u), s.point0(u)), 1e-11) << u;
    }
    // Decreasing parameters still give knots from the lower to the higher end.
    m03SplineCurve d(points_of(p), values_of({1.0, 0.5, 0.0}), m03DPoint(1, 0, 0), m03DPoint(0, 0, 1));
    std::unique_ptr<m0BspCurve> e(d.bsp_curve());
    ASSERT_NE(e, nullptr);
    std::vector<double> mapped = {0, 0, 0, 0, 0.5, 0.5, 0.5, 1, 1, 1, 1};
    for (int i = 0; i < 11; ++i)
        EXPECT_EQ(e->knot_vector()->point(i), mapped[i]) << i;
}

TEST(m03SplineCurve, BspCurve_ClosedSplineClosesWithOpenFlags)
{
    Pts p = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 0}};
    m03SplineCurve s(points_of(p));
    std::unique_ptr<m0BspCurve> c(s.bsp_curve());
    ASSERT_NE(c, nullptr);
    EXPECT_EQ(c->closed(), 0);
    EXPECT_EQ(c->no_of_cpnt(), 13);
    expect_same(c->cpnt_vector()->point(12), p[0]);
    for (int k = 0; k <= 40; ++k)
        EXPECT_LT(dist(c->point(k / 40.0), s.point0(k / 40.0)), 1e-12) << k;
}

TEST(m03SplineCurve, BspCurve_MoreThanMaxSegmentsGivesNull)
{
    const int n = m03SplineCurve::max_bsp_segments + 2;
    auto* pts = new m03DVector(n);
    for (int i = 0; i < n; ++i)
        pts->set_point(i, m03DPoint(i, (i % 2) * 0.5, 0));
    m03SplineCurve s(pts);
    ASSERT_NE(s.tangents_vector(), nullptr);
    EXPECT_EQ(s.bsp_curve(), nullptr);
    EXPECT_EQ(s.approximate(0.1), nullptr);
    EXPECT_EQ(s.rnxNurbCurve(), nullptr);
}

TEST(m03SplineCurve, BspCurve_MaxSegmentsStillConverted)
{
    const int n = m03SplineCurve::max_bsp_segments + 1;
    auto* pts = new m03DVector(n);
    for (int i = 0; i < n; ++i)
        pts->set_point(i, m03DPoint(i, (i % 2) * 0.5, 0));
    m03SplineCurve s(pts);
    std::unique_ptr<m0BspCurve> c(s.bsp_curve());
    ASSERT_NE(c, nullptr);
    EXPECT_EQ(c->no_of_cpnt(), 3 * m03SplineCurve::max_bsp_segments + 1);
    EXPECT_EQ(c->knot_vector()->size(), 3 * m03SplineCurve::max_bsp_segments + 5);
}

TEST(m03SplineCurve, Approximate_PolylineOnSplineFromStartToEnd)
{
    Pts p = wavy_points(6);
    m03SplineCurve s(points_of(p));
    std::unique_ptr<m03DVector> poly(s.approximate(0.001));
    ASSERT_NE(poly, nullptr);
    ASSERT_GE(poly->size(), 10);
    expect_same(poly->point(0), p[0]);
    EXPECT_LT(dist(poly->point(poly->size() - 1), p[5]), 1e-12);
    // Every point lies on the spline: the nearest of many samples is close.
    std::vector<m03DPoint> dense;
    for (int k = 0; k <= 20000; ++k)
        dense.push_back(s.point(k / 20000.0));
    for (int i = 0; i < poly->size(); ++i) {
        double best = 1e99;
        for (const m03DPoint& q : dense)
            best = std::min(best, dist(q, poly->point(i)));
        EXPECT_LT(best, 2e-3) << i;
    }
}

TEST(m03SplineCurve, RnxNurbCurve_CubicFromBsplineFormWithoutWeights)
{
    Pts p = wavy_points(5);
    m03SplineCurve s(points_of(p));
    std::unique_ptr<m0BspCurve> c(s.bsp_curve());
    std::unique_ptr<rnxNurbCurve3> h(s.rnxNurbCurve());
    ASSERT_NE(c, nullptr);
    ASSERT_NE(h, nullptr);
    EXPECT_EQ(h->order(), 4);
    EXPECT_EQ(h->num_points(), 13);
    EXPECT_EQ(h->num_knots(), 17);
    EXPECT_FALSE(h->has_weights());
    EXPECT_EQ(h->is_valid(), 1);
    for (int i = 0; i < 13; ++i) {
        const m03DPoint& q = c->cpnt_vector()->point(i);
        EXPECT_TRUE(h->point(i) == giPoint3(q.x(), q.y(), q.z())) << i;
    }
    for (int i = 0; i < 17; ++i)
        EXPECT_EQ(h->knot(i), c->knot_vector()->point(i)) << i;
    for (int k = 0; k <= 40; ++k) {
        m03DPoint q = s.point(k / 40.0);
        giPoint3 g = h->evaluate(k / 40.0);
        EXPECT_LT(dist(q, m03DPoint(g.x(), g.y(), g.z())), 1e-12) << k;
    }
}
