// m0BspCurve::approximate and simplify_param_vector: the polyline walked span
// by span with an adaptive step.
#include "curves/m0BspCurve.h"
#include "tests/support/testGeometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <vector>

class m0BspCurveTestAccess {
public:
    static m01DVector* simplify(m01DVector* v) { return m0BspCurve::simplify_param_vector(v); }
};

namespace {

bool contains_bits(const m03DVector& v, const m03DPoint& p)
{
    for (int i = 0; i < v.size(); i++)
        if (same_bits(v.point(i), p))
            return true;
    return false;
}

}  // namespace

TEST(m0BspCurve, Approximate_StraightDegreeOne_GivesStartMiddleEnd)
{
    m0BspCurve* c = make_curve(1, {0, 0, 1, 1}, {{0, 0, 0}, {2, 1, 0}});
    m03DVector* poly = c->approximate(0.0, 1.0, 0.01);
    // The step is at most half the span, so the middle is always a point.
    ASSERT_EQ(poly->size(), 3);
    EXPECT_TRUE(same_bits(poly->point(0), c->point(0.0)));
    EXPECT_TRUE(same_bits(poly->point(1), c->point(0.5)));
    EXPECT_TRUE(same_bits(poly->point(2), c->point(1.0)));
    EXPECT_TRUE(poly->point(1) == m03DPoint(1, 0.5, 0));
    delete poly;
    delete c;
}

TEST(m0BspCurve, Approximate_BezierChain_KnotAtHalfIsAlwaysAPoint)
{
    m0BspCurve c(points_of({{0, 0, 0}, {1, 3, 0}, {2, -3, 1}, {3, 0, 0}, {4, 2, 0}, {5, 5, 2}, {6, 0, 0}}), 4);
    for (double tol : {1.0, 0.1, 0.01, 0.001}) {
        m03DVector* poly = c.approximate(tol);
        EXPECT_TRUE(contains_bits(*poly, c.point(0.0))) << tol;
        EXPECT_TRUE(contains_bits(*poly, c.point(0.5))) << tol;
        EXPECT_TRUE(contains_bits(*poly, c.point(1.0))) << tol;
        EXPECT_GE(poly->size(), 5);
        // Every chord's midpoint lies within tol of the curve's midpoint; the
        // polyline vertices lie on the curve.
        for (int i = 0; i < poly->size(); i++) {
            m03DPoint q = poly->point(i);
            EXPECT_LT((c.min_dist_point(q) - q).module(), 1e-4);
        }
        delete poly;
    }
}

TEST(m0BspCurve, Approximate_EqualStartAndEnd_GivesTwoPoints)
{
    m0BspCurve c(points_of({{0, 0, 0}, {1, 3, 0}, {2, -3, 1}, {3, 0, 0}}), 4);
    m03DVector* poly = c.approximate(0.3, 0.3, 0.01);
    ASSERT_EQ(poly->size(), 2);
    EXPECT_TRUE(same_bits(poly->point(0), c.point(0.3)));
    EXPECT_TRUE(same_bits(poly->point(1), c.point(0.3)));
    delete poly;
}

TEST(m0BspCurve, Approximate_AllSampledPointsCoincide_GivesTwoPoints)
{
    m0BspCurve c(points_of({{1, 2, 3}, {1, 2, 3}, {1, 2, 3}, {1, 2, 3}, {1, 2, 3}, {1, 2, 3}, {1, 2, 3}}), 4);
    m03DVector* poly = c.approximate(0.01);
    ASSERT_EQ(poly->size(), 2);
    EXPECT_TRUE(same_bits(poly->point(0), c.point(0.0)));
    EXPECT_TRUE(same_bits(poly->point(1), c.point(1.0)));
    delete poly;
}

TEST(m0BspCurve, Approximate_RangeWiderThanKnots_FollowsTheStraightContinuations)
{
    // As the foot-model limit curves use it: -0.25 .. 1.25 on a 0 .. 1 curve.
    m0BspCurve c(points_of({{0, 0, 0}, {1, 3, 0}, {2, 3, 0}, {3, 0, 0}}), 4);
    m03DVector* poly = c.approximate(-0.25, 1.25, 0.2);
    ASSERT_GE(poly->size(), 5);
    EXPECT_TRUE(same_bits(poly->point(0), c.point(-0.25)));
    EXPECT_TRUE(same_bits(poly->point(poly->size() - 1), c.point(1.25)));
    EXPECT_TRUE(contains_bits(*poly, c.point(0.0)));
    EXPECT_TRUE(contains_bits(*poly, c.point(1.0)));
    delete poly;
}

TEST(m0BspCurve, Approximate_ToleranceUnreachableInASpan_SpanAbandonedWithoutItsEnd)
{
    // The first piece is a straight, evenly parametrised line; the second
    // bends so hard that no step of 1e-7 or more meets the tolerance.
    const double big = 1e9;
    m0BspCurve c(points_of({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}, {3, big, 0}, {-big, -big, 0},
                            {big, 0, 0}}),
                 4);
    m03DVector* poly = c.approximate(1e-6);
    ASSERT_GE(poly->size(), 3);
    EXPECT_TRUE(same_bits(poly->point(poly->size() - 1), c.point(0.5)));
    EXPECT_FALSE(contains_bits(*poly, c.point(1.0)));
    delete poly;
}

TEST(m0BspCurve, Approximate_StepThatNoLongerMovesTheParameter_AbandonsTheSpan)
{
    // Near 1e12 parameters are 1.2e-4 apart: a step between 1e-7 and that is
    // accepted without moving on. The walk must end all the same.
    const double u = 1e12;
    m0BspCurve* c = make_curve(2, {u, u, u, u + 1, u + 1, u + 1}, {{0, 0, 0}, {0.5, 1, 0}, {1, 0, 0}});
    m03DVector* poly = c->approximate(1e-12);
    EXPECT_GE(poly->size(), 2);
    delete poly;
    delete c;
}

TEST(m0BspCurve, Approximate_MoreRoundsThanTheBound_StopsAtTheBound)
{
    // A zigzag of 600000 straight spans takes two steps each, every one
    // accepted at once: 1.2 million rounds, more than the walk takes. It
    // stops after max_approximation_rounds, every one of which appended a
    // point.
    const int spans = 600000;
    std::vector<double> knots = {0.0};
    std::vector<m03DPoint> cps;
    for (int i = 0; i <= spans; i++) {
        knots.push_back(i);
        cps.emplace_back(i, i % 2, 0);
    }
    knots.push_back(spans);
    m0BspCurve* c = make_curve(1, knots, cps);
    m03DVector* poly = c->approximate(0.1);
    const int rounds = m0BspCurve::max_approximation_rounds;
    ASSERT_LT(rounds, 2 * spans);
    EXPECT_EQ(poly->size(), rounds + 1);
    EXPECT_TRUE(same_bits(poly->point(rounds), c->point(rounds / 2.0)));
    delete poly;
    delete c;
}

TEST(m0BspCurve, Approximate_StepsThatKeepHalving_CountTowardTheBound)
{
    // An arc two million long at a tolerance of 1e-6: every accepted step
    // starts at half the span and halves some twenty times first. The halved
    // tries count as rounds too, so the walk ends after about a twentieth of
    // max_approximation_rounds points rather than after that many points.
    m0BspCurve* c = make_curve(2, {0, 0, 0, 1, 1, 1}, {{0, 0, 0}, {1e6, 1e6, 0}, {2e6, 0, 0}});
    m03DVector* poly = c->approximate(1e-6);
    EXPECT_GT(poly->size(), 1000);
    EXPECT_LT(poly->size(), m0BspCurve::max_approximation_rounds / 8);
    delete poly;
    delete c;
}

TEST(m0BspCurve, Approximate_CurveWithoutKnots_GivesTwoOrigins)
{
    m0BspCurve empty;
    m03DVector* poly = empty.approximate(0.1);
    ASSERT_EQ(poly->size(), 2);
    EXPECT_TRUE(same_bits(poly->point(0), m03DPoint()));
    EXPECT_TRUE(same_bits(poly->point(1), m03DPoint()));
    delete poly;
}

TEST(m0BspCurve, Approximate_SimplifyParamVector_CollapsesRunsOfEqualValues)
{
    m01DVector* in = values_of({0, 0, 0, 1, 1});
    m01DVector* out = m0BspCurveTestAccess::simplify(in);
    ASSERT_EQ(out->size(), 2);
    EXPECT_EQ(out->point(0), 0.0);
    EXPECT_EQ(out->point(1), 1.0);
    EXPECT_EQ(in->size(), 5);
    delete out;
    delete in;
}

TEST(m0BspCurve, Approximate_SimplifyParamVector_EmptyGivesOneValueAndNullGivesNull)
{
    EXPECT_EQ(m0BspCurveTestAccess::simplify(nullptr), nullptr);
    m01DVector empty(0);
    m01DVector* out = m0BspCurveTestAccess::simplify(&empty);
    ASSERT_EQ(out->size(), 1);
    ASSERT_NE(out->get_data_pointer(), nullptr);
    EXPECT_EQ(out->point(0), 0.0);
    delete out;
}
