#include "grid/vmiProfileSearch.h"

#include <cmath>
#include <memory>

#include <gtest/gtest.h>

#include "tests/support/testGeometry.h"

namespace {

// A straight profile from (0, 0) to (x_end, 1): its height is its parameter.
std::unique_ptr<m0BspCurve> straight_profile(double x_end)
{
    return std::unique_ptr<m0BspCurve>(make_curve(1, {0, 0, 1, 1}, {{0, 0, 0}, {x_end, 1, 0}}));
}

} // namespace

TEST(vmiProfileSearch, Height_StopsWhereTheXIsNearTheTarget)
{
    const auto profile = straight_profile(20.0);
    const double h = pelotte_profile_search.height(*profile, 5.0, 20.0);
    EXPECT_NEAR(profile->point(h).x(), 5.0, pelotte_profile_search.stop);
    EXPECT_NEAR(h, 0.25, pelotte_profile_search.stop / 20.0);
}

TEST(vmiProfileSearch, Height_ProfileAtTheLargestCoordinateIsNotCutShort)
{
    // x_end at the largest coordinate a design may hold: the search ends on
    // its own interval (tolerance / x_end), well before max_steps.
    const double x_end = 1.0e6;
    const auto profile = straight_profile(x_end);
    const double target = 123.456;
    const double h = line_profile_search.height(*profile, target, x_end);
    EXPECT_LT(std::fabs(profile->point(h).x() - target), line_profile_search.stop);
}

TEST(vmiProfileSearch, Height_HugeProfileStopsAfterMaxSteps)
{
    // x_end = 1e300 makes the interval 1e-302, and the target near u = 1e-200
    // lies far below anything max_steps halvings reach from [0, 1]: the
    // search ends at max_steps with u between 2^-(max_steps + 1) and
    // 2^-(max_steps - 1), not at the 1075th step where u would reach it.
    const double x_end = 1.0e300;
    const auto profile = straight_profile(x_end);
    const double h = pelotte_profile_search.height(*profile, 1.0e100, x_end);
    EXPECT_GE(h, std::ldexp(1.0, -(vmiProfileSearch::max_steps + 1)));
    EXPECT_LE(h, std::ldexp(1.0, -(vmiProfileSearch::max_steps - 1)));
}

TEST(vmiProfileSearch, Height_ProfileEndingAtNegativeXEnds)
{
    // A negative x_end makes the interval negative: only max_steps ends it.
    const auto profile = straight_profile(-10.0);
    const double h = point_profile_search.height(*profile, 1.0, -10.0);
    // x falls with u and never reaches the target above it, so every step
    // moves toward u = 1, which the search reaches and keeps.
    EXPECT_NEAR(h, 1.0, 1e-15);
}

TEST(vmiProfileSearch, RelativeProfileHeight_EndsGiveTheProfilesEndHeights)
{
    const auto profile = straight_profile(8.0);
    EXPECT_EQ(relative_profile_height(pelotte_profile_search, *profile, 0.0), 0.0);
    EXPECT_EQ(relative_profile_height(pelotte_profile_search, *profile, 1e-7), 0.0);
    EXPECT_EQ(relative_profile_height(pelotte_profile_search, *profile, 0.999995), 1.0);
    EXPECT_NEAR(relative_profile_height(pelotte_profile_search, *profile, 0.5), 0.5, 0.01 / 8.0);
}
