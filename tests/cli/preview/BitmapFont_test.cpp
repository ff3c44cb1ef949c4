// BitmapFont: glyphs, what is drawn for other bytes, widths and drawing.
#include "cli/preview/BitmapFont.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

namespace {

std::vector<std::uint8_t> rows(char c)
{
    const std::uint8_t* g = BitmapFont::glyph(c);
    return {g, g + BitmapFont::glyph_height};
}

} // namespace

TEST(BitmapFont, Glyph_EveryPrintableCharacterButSpaceIsDistinctAndInked)
{
    std::set<std::string> seen;
    for (char c = '!'; c <= '~'; ++c) {
        const std::vector<std::uint8_t> g = rows(c);
        bool inked = false;
        for (std::uint8_t r : g) {
            inked = inked || r != 0;
            EXPECT_EQ(r & ~0x1Fu, 0u) << c;
        }
        EXPECT_TRUE(inked) << c;
        EXPECT_TRUE(seen.insert(std::string(g.begin(), g.end())).second) << "glyph of '" << c << "' repeats another";
    }
    EXPECT_EQ(rows(' '), std::vector<std::uint8_t>(BitmapFont::glyph_height, 0));
}

TEST(BitmapFont, Printable_OtherCharactersBecomeOneQuestionMarkEach)
{
    // "Mü" in UTF-8 (one character of two bytes), a lone 0xFC, a tab.
    EXPECT_EQ(BitmapFont::printable("M\xC3\xBC" "\xFC\tx"), "M???x");
    EXPECT_EQ(rows('\x01'), rows('?'));
}

TEST(BitmapFont, Width_CountsGlyphsWithoutTheLastSpace)
{
    EXPECT_EQ(BitmapFont::width(""), 0);
    EXPECT_EQ(BitmapFont::width("a"), BitmapFont::glyph_width);
    EXPECT_EQ(BitmapFont::width("mm"), BitmapFont::advance + BitmapFont::glyph_width);
}

TEST(BitmapFont, Draw_SetsTheGlyphsPixelsAndClipsAtTheEdge)
{
    Canvas c(8, 9, {255, 255, 255});
    BitmapFont::draw(c, 1, 1, "-", {0, 0, 0});
    // '-' is the middle row, full width.
    for (int x = 0; x < 8; ++x)
        EXPECT_EQ(c.get(x, 4), (x >= 1 && x <= 5 ? CanvasRgb{0, 0, 0} : CanvasRgb{255, 255, 255})) << x;
    EXPECT_EQ(c.get(1, 3), (CanvasRgb{255, 255, 255}));
    // Far outside: nothing drawn, nothing read out of bounds.
    BitmapFont::draw(c, -1000, 5, "HHHHHHHH", {0, 0, 0});
    BitmapFont::draw(c, 6, 7, "HHHH", {1, 2, 3});
    EXPECT_EQ(c.get(6, 7), (CanvasRgb{1, 2, 3}));
}
