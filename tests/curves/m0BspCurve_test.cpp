// m0BspCurve: construction, evaluation, tangents, normal, projection, reversal.
#include "curves/m0BspCurve.h"
#include "tests/support/testGeometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <vector>

namespace {

void expect_near(const m03DPoint& a, const m03DPoint& b, double tol)
{
    EXPECT_NEAR(a.x(), b.x(), tol);
    EXPECT_NEAR(a.y(), b.y(), tol);
    EXPECT_NEAR(a.z(), b.z(), tol);
}

const std::vector<m03DPoint> seven_points = {{0, 0, 0}, {1, 2, 0}, {2, 3, 1}, {3, 1, 2},
                                       {4, -1, 1}, {5, 0, 0}, {6, 2, -1}};
const std::vector<m03DPoint> four_points = {{0, 0, 0}, {1, 2, 0}, {3, 2, 1}, {4, 0, 0}};

}  // namespace

TEST(m0BspCurve, DefaultConstructor_EmptyWithFlagsAndCountsZero)
{
    m0BspCurve c;
    EXPECT_EQ(c.knot_vector(), nullptr);
    EXPECT_EQ(c.cpnt_vector(), nullptr);
    EXPECT_EQ(c.weight_vector(), nullptr);
    EXPECT_EQ(c.closed(), 0);
    EXPECT_EQ(c.extended(), 0);
    EXPECT_EQ(c.degree(), 0);
    EXPECT_EQ(c.no_of_cpnt(), 0);
    // Nothing to evaluate: the origin, no read of absent arrays.
    EXPECT_TRUE(same_bits(c.point(0.5), m03DPoint()));
    EXPECT_TRUE(same_bits(c.first_der(0.5), m03DPoint()));
}

TEST(m0BspCurve, Construct_SevenPointsOrderFour_KnotsInRunsAndPointAtHalfIsFourthControlPoint)
{
    m0BspCurve c(points_of(seven_points), 4);
    ASSERT_NE(c.knot_vector(), nullptr);
    const std::vector<double> expected = {0, 0, 0, 0, 0.5, 0.5, 0.5, 1, 1, 1, 1};
    ASSERT_EQ(c.knot_vector()->size(), 11);
    for (int i = 0; i < 11; i++)
        EXPECT_EQ(c.knot_vector()->point(i), expected[i]) << i;
    EXPECT_EQ(c.degree(), 3);
    EXPECT_EQ(c.weight_vector(), nullptr);
    EXPECT_EQ(c.no_of_cpnt(), 0);
    EXPECT_TRUE(c.point(0.5) == seven_points[3]);
}

TEST(m0BspCurve, Construct_FourPointsOrderFour_PointAtOneIsLastControlPointExactly)
{
    m0BspCurve c(points_of(four_points), 4);
    const std::vector<double> expected = {0, 0, 0, 0, 1, 1, 1, 1};
    ASSERT_EQ(c.knot_vector()->size(), 8);
    for (int i = 0; i < 8; i++)
        EXPECT_EQ(c.knot_vector()->point(i), expected[i]);
    EXPECT_TRUE(same_bits(c.point(1.0), four_points[3]));
    EXPECT_TRUE(same_bits(c.point(0.0), four_points[0]));
}

TEST(m0BspCurve, Construct_TenPointsOrderFour_ThreeBezierPiecesAtThirds)
{
    std::vector<m03DPoint> pts;
    for (int i = 0; i < 10; i++)
        pts.emplace_back(i, i * i, 0);
    m0BspCurve c(points_of(pts), 4);
    const std::vector<double> expected = {0, 0, 0, 0, 1.0 / 3, 1.0 / 3, 1.0 / 3, 2.0 / 3, 2.0 / 3, 2.0 / 3,
                                          1, 1, 1, 1};
    ASSERT_EQ(c.knot_vector()->size(), 14);
    for (int i = 0; i < 14; i++)
        EXPECT_EQ(c.knot_vector()->point(i), expected[i]) << i;
}

TEST(m0BspCurve, Construct_NullPointsOrOrderBelowTwoOrAboveBound_StaysEmpty)
{
    m0BspCurve none(nullptr, 4);
    EXPECT_EQ(none.cpnt_vector(), nullptr);
    EXPECT_EQ(none.knot_vector(), nullptr);
    // The points are taken over and released (the leak checker watches).
    m0BspCurve order_one(points_of(four_points), 1);
    EXPECT_EQ(order_one.cpnt_vector(), nullptr);
    EXPECT_EQ(order_one.knot_vector(), nullptr);
    m0BspCurve too_high(points_of(four_points), m0BspCurve::max_order + 1);
    EXPECT_EQ(too_high.cpnt_vector(), nullptr);
    EXPECT_EQ(too_high.knot_vector(), nullptr);
    m0BspCurve highest(points_of(std::vector<m03DPoint>(m0BspCurve::max_order)), m0BspCurve::max_order);
    EXPECT_NE(highest.knot_vector(), nullptr);
}

TEST(m0BspCurve, Construct_FewerPointsThanOrder_OnesOverwriteZerosAndEvaluationStaysInside)
{
    m0BspCurve c(points_of({{0, 0, 0}, {1, 1, 0}}), 4);
    const std::vector<double> expected = {0, 0, 1, 1, 1, 1};
    ASSERT_EQ(c.knot_vector()->size(), 6);
    for (int i = 0; i < 6; i++)
        EXPECT_EQ(c.knot_vector()->point(i), expected[i]);
    const m03DPoint p = c.point(0.5);
    EXPECT_TRUE(std::isfinite(p.x()) && std::isfinite(p.y()));
}

TEST(m0BspCurve, CopyConstructor_DeepCopyKeepsFlagsAndWeights)
{
    m0BspCurve* src = make_curve(2, {0, 0, 0, 1, 1, 1}, {{0, 0, 0}, {1, 1, 0}, {2, 0, 0}}, {1, 0.5, 1});
    src->set_closed(1);
    src->set_extended(1);
    src->set_no_of_cpnt(3);
    m0BspCurve copy(src);
    EXPECT_EQ(copy.degree(), 2);
    EXPECT_EQ(copy.no_of_cpnt(), 3);
    EXPECT_EQ(copy.closed(), 1);
    EXPECT_EQ(copy.extended(), 1);
    ASSERT_NE(copy.weight_vector(), nullptr);
    EXPECT_NE(copy.weight_vector(), src->weight_vector());
    EXPECT_NE(copy.knot_vector(), src->knot_vector());
    EXPECT_NE(copy.cpnt_vector(), src->cpnt_vector());
    const m03DPoint before = copy.point(0.3);
    src->cpnt_vector()->point(1) = m03DPoint(5, 5, 5);
    src->weight_vector()->point(1) = 3.0;
    delete src;
    EXPECT_TRUE(same_bits(copy.point(0.3), before));
    m0BspCurve from_null(static_cast<m0BspCurve*>(nullptr));
    EXPECT_EQ(from_null.knot_vector(), nullptr);
}

TEST(m0BspCurve, Setters_ReplacingAVectorReleasesTheOldOneAndSamePointerIsKept)
{
    m0BspCurve c;
    m01DVector* knots = values_of({0, 0, 1, 1});
    c.set_knot_vector(knots);
    c.set_knot_vector(knots);
    EXPECT_EQ(c.knot_vector(), knots);
    c.set_knot_vector(values_of({0, 0, 2, 2}));
    c.set_cpnt_vector(points_of({{0, 0, 0}, {1, 0, 0}}));
    c.set_cpnt_vector(points_of({{0, 0, 0}, {2, 0, 0}}));
    c.set_weight_vector(values_of({1, 1}));
    c.set_weight_vector(nullptr);
    c.set_degree(1);
    EXPECT_EQ(c.weight_vector(), nullptr);
    EXPECT_TRUE(c.point(1.0) == m03DPoint(1, 0, 0));
}

TEST(m0BspCurve, Point_BeforeStart_ContinuesStraightFromFirstPointAtStartSpeed)
{
    // P0 at the origin keeps the measured speed exact to rounding.
    m0BspCurve c(points_of(four_points), 4);
    const m03DPoint p = c.point(-0.1);
    const m03DPoint dir = (four_points[0] - four_points[1]).single();
    // A cubic Bezier piece on [0, 1] starts with speed 3·|P1 - P0|.
    const double speed = 3.0 * (four_points[1] - four_points[0]).module();
    expect_near(p, four_points[0] + dir * (0.1 * speed), 1e-9);
    EXPECT_NEAR((p - four_points[0]).vect_mult(dir).module(), 0.0, 1e-15);
}

TEST(m0BspCurve, Point_BeyondEnd_ContinuesStraightFromLastPointAtEndSpeed)
{
    // Knots on [-1, 0] and the last point at the origin keep the probe and the
    // measured speed exact to rounding.
    std::vector<m03DPoint> pts = {{4, 0, 0}, {3, 2, 1}, {1, 2, 0}, {0, 0, 0}};
    m0BspCurve* c = make_curve(3, {-1, -1, -1, -1, 0, 0, 0, 0}, pts);
    const m03DPoint p = c->point(0.2);
    const m03DPoint dir = (pts[3] - pts[2]).single();
    const double speed = 3.0 * (pts[3] - pts[2]).module();
    expect_near(p, pts[3] + dir * (0.2 * speed), 1e-9);
    EXPECT_NEAR((p - pts[3]).vect_mult(dir).module(), 0.0, 1e-15);
    delete c;
}

TEST(m0BspCurve, Point_WithinEndSnap_GivesEndControlPoints)
{
    m0BspCurve c(points_of(four_points), 4);
    EXPECT_TRUE(same_bits(c.point(-5e-15), four_points[0]));
    EXPECT_TRUE(same_bits(c.point(1.0 + 5e-15), four_points[3]));
}

TEST(m0BspCurve, Point_KnotRangeShorterThanProbeStep_ContinuationIsTheEndPoint)
{
    // The speed probe would land beyond the other end and continue back again.
    m0BspCurve* c = make_curve(1, {0, 0, 5e-14, 5e-14}, {{0, 0, 0}, {1, 0, 0}});
    EXPECT_TRUE(same_bits(c->point(-1.0), m03DPoint(0, 0, 0)));
    EXPECT_TRUE(same_bits(c->point(2.0), m03DPoint(1, 0, 0)));
    delete c;
    // A knot range running backwards has no probe either.
    m0BspCurve* back = make_curve(1, {1, 1, 0, 0}, {{0, 0, 0}, {1, 0, 0}});
    EXPECT_TRUE(same_bits(back->point(0.5), m03DPoint(0, 0, 0)));
    EXPECT_TRUE(same_bits(back->point(2.0), m03DPoint(1, 0, 0)));
    delete back;
}

TEST(m0BspCurve, Point_SingleControlPoint_ContinuationStaysAtIt)
{
    m0BspCurve* c = make_curve(0, {0, 1}, {{2, 3, 4}});
    EXPECT_TRUE(c->point(-1.0) == m03DPoint(2, 3, 4));
    EXPECT_TRUE(c->point(0.5) == m03DPoint(2, 3, 4));
    EXPECT_TRUE(c->point(3.0) == m03DPoint(2, 3, 4));
    delete c;
}

TEST(m0BspCurve, Point_ClosedCurve_WrapsParameterIntoKnotRange)
{
    m0BspCurve c(points_of(seven_points), 4);
    c.set_closed(1);
    EXPECT_TRUE(same_bits(c.point(1.25), c.point(0.25)));
    EXPECT_TRUE(same_bits(c.first_der(-0.75), c.first_der(0.25)));
    EXPECT_TRUE(same_bits(c.second_der(2.25), c.second_der(0.25)));
}

TEST(m0BspCurve, Point_ClosedCurveFarOutside_WrapsInOneStepAfterBoundedTurns)
{
    m0BspCurve c(points_of(seven_points), 4);
    c.set_closed(1);
    // A million periods away: stepping period by period would be slow, and at
    // 1e300 it would never end.
    EXPECT_TRUE(same_bits(c.point(1e6 + 0.25), c.point(0.25)));
    EXPECT_TRUE(same_bits(c.point(-1e6 + 0.25), c.point(0.25)));
    const m03DPoint far = c.point(1e300);
    EXPECT_TRUE(std::isfinite(far.x()));
    // A closed curve with no period cannot wrap: no endless loop either.
    m0BspCurve* flat = make_curve(1, {0, 0, 0, 0}, {{0, 0, 0}, {1, 0, 0}});
    flat->set_closed(1);
    (void)flat->point(5.0);
    (void)flat->first_der(-5.0);
    delete flat;
}

TEST(m0BspCurve, FirstDer_BeyondEndOfOpenCurve_ClampedToLastKnot)
{
    m0BspCurve c(points_of(seven_points), 4);
    EXPECT_TRUE(same_bits(c.first_der(1.7), c.first_der(1.0)));
    EXPECT_TRUE(same_bits(c.first_der(-0.3), c.first_der(0.0)));
    EXPECT_TRUE(same_bits(c.third_der(1.7), c.third_der(1.0)));
}

TEST(m0BspCurve, Derivatives_CubicBezier_MatchBernsteinForm)
{
    m0BspCurve c(points_of(four_points), 4);
    const double t = 0.3;
    const double s = 1 - t;
    const m03DPoint d1 = (four_points[1] - four_points[0]) * (3 * s * s) + (four_points[2] - four_points[1]) * (6 * s * t) +
                         (four_points[3] - four_points[2]) * (3 * t * t);
    const m03DPoint d2 = (four_points[2] - four_points[1] * 2.0 + four_points[0]) * (6 * s) +
                         (four_points[3] - four_points[2] * 2.0 + four_points[1]) * (6 * t);
    const m03DPoint d3 = (four_points[3] - four_points[2] * 3.0 + four_points[1] * 3.0 - four_points[0]) * 6.0;
    expect_near(c.first_der(t), d1, 1e-12);
    expect_near(c.second_der(t), d2, 1e-12);
    expect_near(c.third_der(t), d3, 1e-12);
}

TEST(m0BspCurve, Derivatives_WithoutWeights_FormWFromUnitWeights)
{
    // W, W', W'', W''' are the sums with every weight 1, not a fixed 1 and 0s:
    // the curve without weights gives the bits of the same curve with unit weights.
    m0BspCurve* plain = make_curve(3, {0, 0, 0, 0, 0.3, 0.7, 1, 1, 1, 1}, {{0, 0, 0}, {1, 2, 0}, {2, 3, 1},
                                                                       {3, 1, 2}, {4, -1, 1}, {5, 0, 0}});
    m0BspCurve unit(plain);
    unit.set_weight_vector(values_of({1, 1, 1, 1, 1, 1}));
    for (double t = 0.0; t <= 1.0; t += 0.01) {
        EXPECT_TRUE(same_bits(plain->first_der(t), unit.first_der(t))) << t;
        EXPECT_TRUE(same_bits(plain->second_der(t), unit.second_der(t))) << t;
        EXPECT_TRUE(same_bits(plain->third_der(t), unit.third_der(t))) << t;
    }
    delete plain;
}

TEST(m0BspCurve, Point_WithoutWeights_IsSumOfBasisTimesControlPoints)
{
    // W is fixed at 1 in point(): no division by the sum of the basis functions.
    const std::vector<double> knots = {0, 0, 0, 0, 0.3, 0.7, 1, 1, 1, 1};
    const std::vector<m03DPoint> cps = {{0, 0, 0}, {1, 2, 0}, {2, 3, 1}, {3, 1, 2}, {4, -1, 1}, {5, 0, 0}};
    m0BspCurve* c = make_curve(3, knots, cps);
    for (double t = 0.01; t < 1.0; t += 0.0123) {
        const int j = c->get_knot_interval(t);
        m03DPoint a;
        for (int i = j - 3; i <= j; i++) {
            const double n = m0BspCurve::get_base_function(knots.data(), 10, 4, t, i);
            if (n != 0.0)
                a += cps[i] * n;
        }
        EXPECT_TRUE(same_bits(c->point(t), a)) << t;
    }
    delete c;
}

TEST(m0BspCurve, Derivatives_RationalQuarterCircle_TangentAndCurvatureOfUnitCircle)
{
    const double w = std::sqrt(0.5);
    m0BspCurve* c = make_curve(2, {0, 0, 0, 1, 1, 1}, {{1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, {1, w, 1});
    for (double t = 0.05; t < 1.0; t += 0.1) {
        const m03DPoint p = c->point(t);
        EXPECT_NEAR(p.module(), 1.0, 1e-14);
        const m03DPoint d1 = c->first_der(t);
        const m03DPoint d2 = c->second_der(t);
        EXPECT_NEAR(d1.scal_mult(p), 0.0, 1e-13);
        // Curvature |d1 x d2| / |d1|^3 of the unit circle is 1.
        EXPECT_NEAR(d1.vect_mult(d2).module() / std::pow(d1.module(), 3), 1.0, 1e-12);
        // The third derivative against a central difference of the second.
        const double h = 1e-5;
        const m03DPoint fd = (c->second_der(t + h) - c->second_der(t - h)) / (2 * h);
        expect_near(c->third_der(t), fd, 1e-4 * (1.0 + fd.module()));
    }
    delete c;
}

TEST(m0BspCurve, Tang_IsUnitFirstDerivativeAndTang0UnitForwardDifference)
{
    m0BspCurve c(points_of(seven_points), 4);
    const m03DPoint d = c.first_der(0.3);
    EXPECT_TRUE(same_bits(c.tang(0.3), d.single()));
    EXPECT_NEAR(c.tang(0.3).module(), 1.0, 1e-15);
    expect_near(c.tang0(0.3), c.tang(0.3), 1e-6);
    m0BspCurve* still = make_curve(1, {0, 0, 1, 1}, {{1, 1, 1}, {1, 1, 1}});
    EXPECT_TRUE(same_bits(still->tang0(0.5), m03DPoint()));
    EXPECT_TRUE(same_bits(still->tang(0.5), m03DPoint()));
    delete still;
}

TEST(m0BspCurve, Normal_StraightCurve_UnitVectorPerpendicularToIt)
{
    m0BspCurve* c = make_curve(1, {0, 0, 1, 1}, {{0, 0, 0}, {0, 4, 0}});
    const m03DPoint n = c->normal(0.5);
    EXPECT_NEAR(n.module(), 1.0, 1e-15);
    EXPECT_EQ(n.scal_mult(m03DPoint(0, 1, 0)), 0.0);
    delete c;
}

TEST(m0BspCurve, Normal_StraightCurveAlongX_IsUnitOfAcrossY)
{
    m0BspCurve* c = make_curve(1, {0, 0, 1, 1}, {{0, 0, 0}, {3, 0, 0}});
    const m03DPoint a = (c->point(0.49) - c->point(0.5)).single();
    EXPECT_TRUE(same_bits(c->normal(0.5), a.vect_mult(m03DPoint(0, 1, 0)).single()));
    EXPECT_TRUE(c->normal(0.5) == m03DPoint(0, 0, -1));
    delete c;
}

TEST(m0BspCurve, Normal_PlanarCurve_PerpendicularToItsPlane)
{
    m0BspCurve c(points_of({{0, 0, 0}, {1, 2, 0}, {3, 2, 0}, {4, 0, 0}}), 4);
    const m03DPoint n = c.normal(0.4);
    EXPECT_NEAR(std::fabs(n.z()), 1.0, 1e-12);
}

TEST(m0BspCurve, GetKnotInterval_ClampedKnots_SpanStartingAtOrBeforeT)
{
    m0BspCurve c(points_of(seven_points), 4);
    EXPECT_EQ(c.get_knot_interval(0.0), 3);
    EXPECT_EQ(c.get_knot_interval(0.25), 3);
    EXPECT_EQ(c.get_knot_interval(0.5), 6);  // a t on a knot belongs to the span starting there
    EXPECT_EQ(c.get_knot_interval(0.75), 6);
    EXPECT_EQ(c.get_knot_interval(1.0), 6);  // the last knot: the last non-empty span
}

TEST(m0BspCurve, GetKnotInterval_FirstProbeHalfTheWidth_SearchCanEndBelowDegree)
{
    // Uniform knots 0 .. 10, degree 3: lo = 3, hi = 7, first probe knot 2 (not
    // 5), which lets the search settle in span 2.
    std::vector<double> knots;
    for (int i = 0; i <= 10; i++)
        knots.push_back(i);
    std::vector<m03DPoint> cps;
    for (int i = 0; i < 7; i++)
        cps.emplace_back(i, i % 2, 0);
    m0BspCurve* c = make_curve(3, knots, cps);
    EXPECT_EQ(c->get_knot_interval(2.5), 2);
    EXPECT_EQ(c->get_knot_interval(3.5), 3);
    EXPECT_EQ(c->get_knot_interval(6.5), 6);
    // Span 2 reaches down to basis index -1, which does not exist and
    // contributes nothing: the point is the sum over indices 0 .. 2.
    m03DPoint expected;
    for (int i = 0; i <= 2; i++)
        expected += cps[i] * m0BspCurve::get_base_function(knots.data(), 11, 4, 2.5, i);
    EXPECT_TRUE(same_bits(c->point(2.5), expected));
    delete c;
}

TEST(m0BspCurve, Evaluation_ArraysShorterThanTheCurveNeeds_MissingIndicesContributeNothing)
{
    // Six knots for a cubic with four control points (eight wanted), and two
    // weights for four points: everything reads inside the arrays.
    m0BspCurve* c = make_curve(3, {0, 0, 0, 1, 1, 1}, {{0, 0, 0}, {1, 2, 0}, {3, 2, 1}, {4, 0, 0}}, {1, 2});
    for (double t = -0.5; t <= 1.5; t += 0.05) {
        (void)c->point(t);
        (void)c->third_der(t);
    }
    (void)c->projection(m03DPoint(1, 1, 1));
    delete c->approximate(0.01);
    delete c;
    // More knots than control points: spans past the last point contribute nothing.
    m0BspCurve* few = make_curve(1, {0, 0, 1, 2, 3, 3}, {{0, 0, 0}, {1, 0, 0}});
    const m03DPoint p = few->point(2.5);
    EXPECT_TRUE(p == m03DPoint(0, 0, 0));
    delete few;
}

TEST(m0BspCurve, Evaluation_DegreeOutsideBound_GivesOrigin)
{
    std::vector<double> knots(2 * m0BspCurve::max_order + 2, 0.0);
    for (size_t i = knots.size() / 2; i < knots.size(); i++)
        knots[i] = 1.0;
    std::vector<m03DPoint> cps(m0BspCurve::max_order + 1, m03DPoint(1, 1, 1));
    m0BspCurve* c = make_curve(m0BspCurve::max_order, knots, cps);
    EXPECT_TRUE(same_bits(c->point(0.5), m03DPoint()));
    EXPECT_TRUE(same_bits(c->second_der(0.5), m03DPoint()));
    // One order lower is evaluated: a curve of equal points is that point.
    c->set_degree(m0BspCurve::max_order - 1);
    c->knot_vector()->set_size(2 * m0BspCurve::max_order);
    c->knot_vector()->point(m0BspCurve::max_order) = 1.0;
    c->cpnt_vector()->set_size(m0BspCurve::max_order);
    expect_near(c->point(0.5), m03DPoint(1, 1, 1), 1e-12);
    c->set_degree(-1);
    EXPECT_TRUE(same_bits(c->point(0.5), m03DPoint()));
    EXPECT_EQ(c->get_knot_interval(0.5), -1);
    delete c;
    EXPECT_EQ(m0BspCurve::get_base_function(knots.data(), 4, 0, 0.5, 0), 0.0);
    EXPECT_EQ(m0BspCurve::get_base_function(knots.data(), 4, m0BspCurve::max_order + 1, 0.5, 0), 0.0);
}

TEST(m0BspCurve, Projection_PointOnCurve_ReturnsItsParameter)
{
    m0BspCurve c(points_of(seven_points), 4);
    for (double t = 0.05; t < 1.0; t += 0.1) {
        const double found = c.projection(c.point(t));
        EXPECT_NEAR(found, t, 1e-5) << t;
        EXPECT_NEAR((c.min_dist_point(c.point(t)) - c.point(t)).module(), 0.0, 1e-5);
    }
}

TEST(m0BspCurve, Projection_BeyondEndOfOpenCurve_ReturnsLastKnotOrAboveWhenExtended)
{
    m0BspCurve c(points_of(four_points), 4);
    const m03DPoint beyond = four_points[3] + (four_points[3] - four_points[2]).single() * 2.0;
    EXPECT_DOUBLE_EQ(c.projection(beyond), 1.0);
    c.set_extended(1);
    const double t = c.projection(beyond);
    EXPECT_GT(t, 1.0);
    // The straight continuation passes through the point.
    EXPECT_NEAR((c.point(t) - beyond).module(), 0.0, 1e-5);
}

TEST(m0BspCurve, Projection_EndsMeet_SearchesTwoHalves)
{
    // A closed square-ish loop whose ends coincide: the whole-range chord is
    // empty, so the range is split.
    m0BspCurve c(points_of({{0, 0, 0}, {4, 0, 0}, {4, 4, 0}, {0, 4, 0}, {-2, 2, 0}, {-2, 0, 0}, {0, 0, 0}}), 4);
    for (double t = 0.1; t < 1.0; t += 0.2) {
        const m03DPoint q = c.point(t) + m03DPoint(0, 0, 0.5);
        EXPECT_NEAR((c.point(c.projection(q)) - c.point(t)).module(), 0.0, 1e-4) << t;
    }
}

TEST(m0BspCurve, Projection_HalvingNoLongerMoves_StopsAndAnswersNearby)
{
    // Knots near 1e12 are 1.2e-4 apart while the curve is 1e6 long: the
    // range stops shrinking long before the chord is short.
    const double u = 1e12;
    m0BspCurve* c = make_curve(1, {u, u, u + 1, u + 1}, {{0, 0, 0}, {1e6, 0, 0}});
    const double t = c->projection(m03DPoint(3e5, 1, 0));
    EXPECT_GE(t, u);
    EXPECT_LE(t, u + 1);
    EXPECT_NEAR(c->point(t).x(), 3e5, 200.0);
    delete c;
}

TEST(m0BspCurve, Reverse_PointOfReversedEqualsPointAtMirroredParameter)
{
    const std::vector<double> knots = {0, 0, 0, 0, 0.2, 0.55, 0.55, 1.5, 1.5, 1.5, 1.5};
    m0BspCurve* c = make_curve(3, knots, {{0, 0, 0}, {1, 2, 0}, {2, 3, 1}, {3, 1, 2}, {4, -1, 1}, {5, 0, 0},
                                          {6, 2, -1}},
                               {1, 2, 0.5, 1, 3, 1, 1});
    m0BspCurve before(c);
    c->reverse();
    EXPECT_EQ(c->knot_vector()->point(0), 0.0);
    EXPECT_EQ(c->knot_vector()->point(10), 1.5);
    EXPECT_EQ(c->weight_vector()->point(1), 1.0);
    EXPECT_EQ(c->weight_vector()->point(5), 2.0);
    for (double t = 0.0; t <= 1.5; t += 0.03)
        expect_near(c->point(t), before.point(1.5 - t), 1e-12);
    delete c;
}
