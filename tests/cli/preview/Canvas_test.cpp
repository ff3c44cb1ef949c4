// Canvas: pixels, clipped drawing and shrinking.
#include "cli/preview/Canvas.h"

#include <gtest/gtest.h>

#include <limits>

namespace {
constexpr CanvasRgb white{255, 255, 255};
constexpr CanvasRgb red{255, 0, 0};
}

TEST(Canvas, Construct_SizeBelowOneIsEmpty)
{
    EXPECT_TRUE(Canvas(0, 5, white).empty());
    EXPECT_TRUE(Canvas(5, -1, white).bytes().empty());
    EXPECT_EQ(Canvas(2, 3, white).bytes().size(), 18u);
}

TEST(Canvas, Set_OutsideIsIgnoredAndGetGivesBlack)
{
    Canvas c(2, 2, white);
    c.set(-1, 0, red);
    c.set(2, 1, red);
    EXPECT_EQ(c.get(5, 5), (CanvasRgb{0, 0, 0}));
    for (std::uint8_t b : c.bytes()) EXPECT_EQ(b, 255);
}

TEST(Canvas, Line_IncludesBothEndsAndClipsFarEnds)
{
    Canvas c(10, 10, white);
    c.line(1, 1, 4, 1, red);
    for (int x = 0; x < 10; ++x) EXPECT_EQ(c.get(x, 1), x >= 1 && x <= 4 ? red : white) << x;
    // A line from far away across the picture is drawn where it crosses,
    // and costs the picture's size, not its length.
    Canvas d(10, 10, white);
    d.line(-1e12, 5, 1e12, 5, red);
    for (int x = 0; x < 10; ++x) EXPECT_EQ(d.get(x, 5), red) << x;
    d.line(0, std::numeric_limits<double>::infinity(), 3, 3, {0, 0, 0});
    EXPECT_EQ(d.get(3, 3), white);
}

TEST(Canvas, ShrunkTo_AveragesTheCoveredPixelsAndKeepsProportions)
{
    Canvas c(4, 2, white);
    c.set(0, 0, {0, 0, 0});
    c.set(1, 0, {0, 0, 0});
    const Canvas s = c.shrunk_to(2, 2);
    ASSERT_EQ(s.width(), 2);
    ASSERT_EQ(s.height(), 1);
    // Two black and two white pixels: 127.5 rounds to 128.
    EXPECT_EQ(s.get(0, 0), (CanvasRgb{128, 128, 128}));
    EXPECT_EQ(s.get(1, 0), white);
    EXPECT_EQ(c.shrunk_to(10, 10).bytes(), c.bytes());
}
