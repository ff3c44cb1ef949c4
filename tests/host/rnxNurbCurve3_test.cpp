// rnxNurbCurve3: the host's NURBS curve, its slots, validity and evaluation.
#include "host/rnxNurbCurve3.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

// A valid clamped curve of n points and order k on [0, 1], points on y = x^2.
rnxNurbCurve3 clamped(int n, int k)
{
    rnxNurbCurve3 c(n, k);
    for (int i = 0; i < n; ++i)
        c.set_point(i, giPoint3(i, i * i, 0.5 * i));
    int inner = n - k;
    for (int i = 0; i < n + k; ++i) {
        double v = i < k ? 0.0 : (i >= n ? 1.0 : static_cast<double>(i - k + 1) / (inner + 1));
        c.set_knot(i, v);
    }
    return c;
}

const double not_a_number = std::numeric_limits<double>::quiet_NaN();
const double infinity = std::numeric_limits<double>::infinity();

}  // namespace

TEST(rnxNurbCurve3, NewCurve_SizesAndDefaults)
{
    rnxNurbCurve3 c(5, 3);
    EXPECT_EQ(c.num_points(), 5);
    EXPECT_EQ(c.order(), 3);
    EXPECT_EQ(c.degree(), 2);
    EXPECT_EQ(c.num_knots(), 8);
    EXPECT_FALSE(c.has_weights());
    EXPECT_TRUE(c.weights().empty());
    for (int i = 0; i < 5; ++i) {
        EXPECT_TRUE(c.point(i) == giPoint3());
        EXPECT_EQ(c.weight(i), 1.0);
    }
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(c.knot(i), 0.0);
}

TEST(rnxNurbCurve3, Setters_StoreEachSlot)
{
    rnxNurbCurve3 c(2, 2);
    c.set_point(1, giPoint3(1, 2, 3));
    c.set_knot(3, 7.5);
    EXPECT_TRUE(c.point(1) == giPoint3(1, 2, 3));
    EXPECT_EQ(c.knot(3), 7.5);
    EXPECT_EQ(c.knots().size(), 4u);
    EXPECT_EQ(c.points().size(), 2u);
}

TEST(rnxNurbCurve3, FirstWeight_MakesCurveRationalWithOtherWeightsOne)
{
    rnxNurbCurve3 c(3, 2);
    c.set_weight(1, 2.5);
    EXPECT_TRUE(c.has_weights());
    ASSERT_EQ(c.weights().size(), 3u);
    EXPECT_EQ(c.weight(0), 1.0);
    EXPECT_EQ(c.weight(1), 2.5);
    EXPECT_EQ(c.weight(2), 1.0);
}

TEST(rnxNurbCurve3, OutOfRangeSlots_IgnoredBySettersDefaultFromGetters)
{
    rnxNurbCurve3 c(2, 2);
    c.set_point(-1, giPoint3(9, 9, 9));
    c.set_point(2, giPoint3(9, 9, 9));
    c.set_knot(-1, 5.0);
    c.set_knot(4, 5.0);
    c.set_weight(2, 3.0);
    c.set_weight(-7, 3.0);
    EXPECT_FALSE(c.has_weights());
    EXPECT_TRUE(c.point(0) == giPoint3());
    EXPECT_TRUE(c.point(1) == giPoint3());
    EXPECT_TRUE(c.point(2) == giPoint3());
    EXPECT_EQ(c.knot(4), 0.0);
    EXPECT_EQ(c.knot(-1), 0.0);
    EXPECT_EQ(c.weight(5), 1.0);
}

TEST(rnxNurbCurve3, ClampedCubic_IsValid)
{
    EXPECT_EQ(clamped(4, 4).is_valid(), 1);
    EXPECT_EQ(clamped(7, 4).is_valid(), 1);
    EXPECT_EQ(clamped(2, 2).is_valid(), 1);
}

TEST(rnxNurbCurve3, OrderBelowTwo_NotValid)
{
    rnxNurbCurve3 c1(3, 1);
    c1.set_knot(3, 1.0);
    EXPECT_EQ(c1.is_valid(), 0);
    rnxNurbCurve3 c0(3, 0);
    EXPECT_EQ(c0.is_valid(), 0);
}

TEST(rnxNurbCurve3, FewerPointsThanOrder_NotValid)
{
    rnxNurbCurve3 c(3, 4);
    for (int i = 4; i < 7; ++i)
        c.set_knot(i, 1.0);
    EXPECT_EQ(c.is_valid(), 0);
}

TEST(rnxNurbCurve3, DecreasingKnot_NotValid)
{
    rnxNurbCurve3 c = clamped(6, 4);
    c.set_knot(5, 0.1);
    c.set_knot(4, 0.2);
    EXPECT_EQ(c.is_valid(), 0);
}

TEST(rnxNurbCurve3, NonFiniteKnot_NotValid)
{
    for (double bad : {not_a_number, infinity, -infinity}) {
        rnxNurbCurve3 c = clamped(6, 4);
        c.set_knot(9, bad);
        EXPECT_EQ(c.is_valid(), 0) << bad;
        rnxNurbCurve3 d = clamped(6, 4);
        d.set_knot(0, bad);
        EXPECT_EQ(d.is_valid(), 0) << bad;
    }
}

TEST(rnxNurbCurve3, NonPositiveOrNonFiniteWeight_NotValid)
{
    for (double bad : {0.0, -1.0, -0.0, not_a_number, infinity}) {
        rnxNurbCurve3 c = clamped(5, 3);
        c.set_weight(2, bad);
        EXPECT_EQ(c.is_valid(), 0) << bad;
    }
    rnxNurbCurve3 ok = clamped(5, 3);
    ok.set_weight(2, 0.25);
    EXPECT_EQ(ok.is_valid(), 1);
}

TEST(rnxNurbCurve3, NegativeCounts_GiveEmptyCurveNotValid)
{
    rnxNurbCurve3 a(-1, 4);
    EXPECT_EQ(a.num_points(), 0);
    EXPECT_EQ(a.num_knots(), 0);
    EXPECT_EQ(a.order(), 0);
    EXPECT_EQ(a.is_valid(), 0);
    rnxNurbCurve3 b(5, -3);
    EXPECT_EQ(b.num_points(), 0);
    EXPECT_EQ(b.order(), 0);
    EXPECT_EQ(b.is_valid(), 0);
}

TEST(rnxNurbCurve3, MoreThanMaxPoints_GivesEmptyCurve)
{
    rnxNurbCurve3 c(rnxNurbCurve3::max_points + 1, 4);
    EXPECT_EQ(c.num_points(), 0);
    EXPECT_EQ(c.num_knots(), 0);
    EXPECT_EQ(c.is_valid(), 0);
    rnxNurbCurve3 huge(std::numeric_limits<int>::max(), std::numeric_limits<int>::max());
    EXPECT_EQ(huge.num_points(), 0);
}

TEST(rnxNurbCurve3, OrderAboveMaxOrder_GivesEmptyCurve)
{
    rnxNurbCurve3 c(rnxNurbCurve3::max_order + 5, rnxNurbCurve3::max_order + 1);
    EXPECT_EQ(c.num_points(), 0);
    EXPECT_EQ(c.order(), 0);
    EXPECT_EQ(c.is_valid(), 0);
}

TEST(rnxNurbCurve3, MaxOrder_ValidAndEvaluatesEnds)
{
    const int k = rnxNurbCurve3::max_order;
    rnxNurbCurve3 c = clamped(k, k);
    ASSERT_EQ(c.is_valid(), 1);
    EXPECT_TRUE(c.evaluate(0.0) == c.point(0));
    giPoint3 end = c.evaluate(1.0);
    EXPECT_NEAR(end.x(), k - 1, 1e-9);
    EXPECT_NEAR(end.y(), (k - 1) * (k - 1), 1e-6);
}

TEST(rnxNurbCurve3, EvaluateOrderTwo_IsThePolyline)
{
    rnxNurbCurve3 c(3, 2);
    c.set_point(0, giPoint3(0, 0, 0));
    c.set_point(1, giPoint3(2, 0, 0));
    c.set_point(2, giPoint3(2, 4, 0));
    double knots[] = {0, 0, 0.5, 1, 1};
    for (int i = 0; i < 5; ++i)
        c.set_knot(i, knots[i]);
    giPoint3 a = c.evaluate(0.25), b = c.evaluate(0.75), e = c.evaluate(1.0);
    EXPECT_DOUBLE_EQ(a.x(), 1.0);
    EXPECT_DOUBLE_EQ(b.y(), 2.0);
    EXPECT_TRUE(e == giPoint3(2, 4, 0));
}

TEST(rnxNurbCurve3, EvaluateRationalQuadratic_QuarterCircle)
{
    rnxNurbCurve3 c(3, 3);
    c.set_point(0, giPoint3(1, 0, 0));
    c.set_point(1, giPoint3(1, 1, 0));
    c.set_point(2, giPoint3(0, 1, 0));
    c.set_weight(1, std::sqrt(0.5));
    for (int i = 3; i < 6; ++i)
        c.set_knot(i, 1.0);
    ASSERT_EQ(c.is_valid(), 1);
    for (int k = 0; k <= 10; ++k) {
        giPoint3 p = c.evaluate(k / 10.0);
        EXPECT_NEAR(p.x() * p.x() + p.y() * p.y(), 1.0, 1e-14) << k;
    }
}

TEST(rnxNurbCurve3, EvaluateOutsideDomain_ClampedToEnds)
{
    rnxNurbCurve3 c = clamped(5, 4);
    EXPECT_TRUE(c.evaluate(-3.0) == c.evaluate(0.0));
    EXPECT_TRUE(c.evaluate(4.0) == c.evaluate(1.0));
    EXPECT_TRUE(c.evaluate(not_a_number) == c.evaluate(0.0));
}

TEST(rnxNurbCurve3, EvaluateInvalidCurve_GivesOrigin)
{
    rnxNurbCurve3 c(3, 5);
    c.set_point(0, giPoint3(1, 1, 1));
    EXPECT_TRUE(c.evaluate(0.5) == giPoint3());
}

TEST(rnxNurbCurve3, CurvePtr_SharesOneCurve)
{
    rnxCurvePtr3 a = std::make_shared<rnxNurbCurve3>(2, 2);
    rnxCurvePtr3 b = a;
    b->set_point(1, giPoint3(4, 5, 6));
    EXPECT_TRUE(a->point(1) == giPoint3(4, 5, 6));
    EXPECT_EQ(a.use_count(), 2);
    rnxCurvePtr3 empty;
    EXPECT_FALSE(empty);
}
