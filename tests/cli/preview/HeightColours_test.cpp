// HeightColours: the levels heights fall on and the ramp's colours.
#include "cli/preview/HeightColours.h"

#include <gtest/gtest.h>

#include <limits>
#include <set>

TEST(HeightColours, Level_EndsOfTheRangeAreTheFirstAndLastLevel)
{
    EXPECT_EQ(HeightColours::level(1.0, 1.0, 21.0), 0);
    EXPECT_EQ(HeightColours::level(21.0, 1.0, 21.0), HeightColours::levels - 1);
    // Half way: 127.5 rounds up.
    EXPECT_EQ(HeightColours::level(11.0, 1.0, 21.0), 128);
}

TEST(HeightColours, Level_OutsideTheRangeIsClamped)
{
    EXPECT_EQ(HeightColours::level(-50.0, 1.0, 21.0), 0);
    EXPECT_EQ(HeightColours::level(50.0, 1.0, 21.0), HeightColours::levels - 1);
}

TEST(HeightColours, Level_RangeOfNoWidthOrNotFinitePutsEveryHeightOnLevelZero)
{
    EXPECT_EQ(HeightColours::level(3.0, 3.0, 3.0), 0);
    EXPECT_EQ(HeightColours::level(3.0, 0.0, std::numeric_limits<double>::infinity()), 0);
    EXPECT_EQ(HeightColours::level(std::numeric_limits<double>::quiet_NaN(), 0.0, 1.0), 0);
}

TEST(HeightColours, Colour_StopsAreExactAtTheirLevels)
{
    EXPECT_EQ(HeightColours::colour(0), (CanvasRgb{0, 0, 160}));
    EXPECT_EQ(HeightColours::colour(64), (CanvasRgb{0, 160, 255}));
    EXPECT_EQ(HeightColours::colour(128), (CanvasRgb{0, 200, 80}));
    EXPECT_EQ(HeightColours::colour(192), (CanvasRgb{255, 220, 0}));
    // Between stops: (a (64 - f) + b f + 32) / 64, here f = 32 between the
    // last two: red (255 + 200 + 1) / 2, green (220 + 0 + 1) / 2.
    EXPECT_EQ(HeightColours::colour(224), (CanvasRgb{228, 110, 0}));
}

TEST(HeightColours, Colour_NoLevelIsWhiteGreyBlackOrMagenta)
{
    for (int k = 0; k < HeightColours::levels; ++k) {
        const CanvasRgb c = HeightColours::colour(k);
        EXPECT_FALSE(c[0] == c[1] && c[1] == c[2]) << "level " << k;
        EXPECT_NE(c, (CanvasRgb{255, 0, 255})) << "level " << k;
    }
}

TEST(HeightColours, Colour_LevelsOutsideTheRampTakeItsEnds)
{
    EXPECT_EQ(HeightColours::colour(-3), HeightColours::colour(0));
    EXPECT_EQ(HeightColours::colour(1000), HeightColours::colour(HeightColours::levels - 1));
}
