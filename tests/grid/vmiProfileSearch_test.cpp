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

namespace {

// A curved profile (a quartic over five points, as the line's and the pad's
// cross-sections are): its parameter is far from its x.
std::unique_ptr<m0BspCurve> curved_profile()
{
    return std::unique_ptr<m0BspCurve>(make_curve(
        4, {0, 0, 0, 0, 0, 1, 1, 1, 1, 1}, {{0, 3, 0}, {2, 3.5, 0}, {9, 1, 0}, {14, 0.2, 0}, {25, 0, 0}}));
}

} // namespace

TEST(vmiProfileSearch, Height_WithKeptPoints_SameBitsAndEvaluationsAsWithout)
{
    const auto profile = curved_profile();
    for (const vmiProfileSearch* search : {&pelotte_profile_search, &line_profile_search, &point_profile_search}) {
        m0HalvingPoints kept(*profile, vmiProfileSearch::kept_levels);
        // Twice over the targets: the second round reads the kept points.
        for (int round = 0; round < 2; ++round) {
            for (double target = -1.0; target <= 26.0; target += 0.013) {
                long long plain_made = 0, kept_made = 0;
                const double plain = search->height(*profile, target, 25.0, &plain_made);
                const double with_kept = search->height(*profile, target, 25.0, &kept_made, &kept);
                ASSERT_TRUE(same_bits(plain, with_kept)) << target;
                ASSERT_EQ(plain_made, kept_made) << target;
            }
        }
    }
}

TEST(vmiProfileSearch, RelativeProfileHeight_WithKeptPoints_SameBitsAsWithout)
{
    const auto profile = curved_profile();
    m0HalvingPoints kept(*profile, vmiProfileSearch::kept_levels);
    for (double s = -0.1; s <= 1.1; s += 0.0007) {
        long long plain_made = 0, kept_made = 0;
        const double plain = relative_profile_height(line_profile_search, *profile, s, &plain_made);
        const double with_kept = relative_profile_height(line_profile_search, *profile, s, &kept_made, &kept);
        ASSERT_TRUE(same_bits(plain, with_kept)) << s;
        ASSERT_EQ(plain_made, kept_made) << s;
    }
    EXPECT_TRUE(same_bits(profile_end(*profile, 1, &kept), profile->point(1.0)));
    EXPECT_TRUE(same_bits(profile_end(*profile, 0, &kept), profile->point(0.0)));
}

TEST(vmiProfileSearch, Height_PointsKeptForAnotherProfileAreNotUsed)
{
    const auto profile = curved_profile();
    const auto other = straight_profile(25.0);
    m0HalvingPoints kept_for_other(*other, vmiProfileSearch::kept_levels);
    for (double target = 0.5; target < 25.0; target += 0.5)
        (void)line_profile_search.height(*other, target, 25.0, nullptr, &kept_for_other);
    for (double target = 0.5; target < 25.0; target += 0.5)
        ASSERT_TRUE(same_bits(line_profile_search.height(*profile, target, 25.0),
                              line_profile_search.height(*profile, target, 25.0, nullptr, &kept_for_other)))
            << target;
    EXPECT_TRUE(same_bits(profile_end(*profile, 1, &kept_for_other), profile->point(1.0)));
}
