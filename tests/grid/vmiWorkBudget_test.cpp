// The work budget of a design's height sections: units are counted up to the
// limit, and the first charge past it spends the budget for good.
#include <gtest/gtest.h>

#include <climits>

#include "grid/vmiBaseGrid.h"
#include "grid/vmiWorkBudget.h"

TEST(vmiWorkBudget, ChargesUpToExactlyTheLimitAndOnePastSpendsIt)
{
    vmiWorkBudget b(100);
    EXPECT_TRUE(b.charge(60));
    EXPECT_TRUE(b.charge(40));
    EXPECT_FALSE(b.spent());
    EXPECT_EQ(b.used(), 100);
    EXPECT_FALSE(b.charge(1));
    EXPECT_TRUE(b.spent());
    EXPECT_EQ(b.used(), 101);
}

TEST(vmiWorkBudget, OnceSpentEveryChargeFailsEvenOfNothing)
{
    vmiWorkBudget b(10);
    EXPECT_FALSE(b.charge(11));
    EXPECT_FALSE(b.charge(0));
    EXPECT_TRUE(b.spent());
}

TEST(vmiWorkBudget, NegativeChargesCountAsNothingAndHugeOnesSaturate)
{
    vmiWorkBudget b(10);
    EXPECT_TRUE(b.charge(-5));
    EXPECT_EQ(b.used(), 0);
    EXPECT_FALSE(b.charge(LLONG_MAX));
    EXPECT_FALSE(b.charge(LLONG_MAX));
    EXPECT_EQ(b.used(), LLONG_MAX);
}

TEST(vmiWorkBudget, DefaultLimitIsTheDesignBound)
{
    EXPECT_EQ(vmiWorkBudget().limit(), vmiWorkBudget::max_design_work);
    // A whole pass over the largest grid fits the budget many times over.
    EXPECT_GE(vmiWorkBudget::max_design_work / vmiBaseGrid::max_nodes, 64);
}

TEST(vmiBaseGrid, GridWithoutBudgetChargesNothingAndOneWithItCharges)
{
    vmiBaseGrid g(4, 4, 1.0, 1.0);
    EXPECT_TRUE(g.charge(1LL << 40));
    vmiWorkBudget b(5);
    g.set_budget(&b);
    EXPECT_TRUE(g.charge(5));
    EXPECT_FALSE(g.charge(1));
    // A copy starts without the budget.
    vmiBaseGrid copy(g);
    EXPECT_EQ(copy.budget(), nullptr);
}

TEST(vmiBaseGrid, SmoothingPassTheBudgetCannotTakeLeavesTheGridAsItIs)
{
    vmiBaseGrid g(20, 20, 1.0, 1.0);
    for (int j = 0; j < 20; ++j)
        for (int i = 0; i < 20; ++i)
            g.set_z(i, j, i == 10 && j == 10 ? 10.0 : 0.0);
    // Radius 2 reads 3 x 3 nodes round each of the 400.
    vmiWorkBudget short_by_one(400 * 9 - 1);
    g.set_budget(&short_by_one);
    g.do_smoothing(2);
    EXPECT_EQ(g.point(10, 10).z(), 10.0);
    EXPECT_TRUE(short_by_one.spent());
    vmiWorkBudget enough(400 * 9);
    g.set_budget(&enough);
    g.do_smoothing(2);
    EXPECT_LT(g.point(10, 10).z(), 10.0);
    EXPECT_FALSE(enough.spent());
}
