#pragma once
// BitmapFont: the preview pictures' one typeface, 5 x 7 pixels a glyph on a
// 6 x 9 cell, for the printable ASCII characters. Names in an archive are
// bytes in no declared encoding: any other character (a valid UTF-8 sequence
// counting as one, any other byte on its own) is drawn as '?'.
#include <cstdint>
#include <string>
#include <string_view>

#include "cli/preview/Canvas.h"

class BitmapFont {
public:
    static constexpr int glyph_width = 5;
    static constexpr int glyph_height = 7;
    // A glyph and the space after it, and a line and the space under it.
    static constexpr int advance = 6;
    static constexpr int line_height = 9;

    // The 7 rows of c's glyph, top first, each in its low 5 bits (bit 4 the
    // leftmost pixel); '?' for a character outside printable ASCII.
    static const std::uint8_t* glyph(char c);
    // The characters text is drawn as: printable ASCII kept, every other
    // character '?'.
    static std::string printable(std::string_view text);
    // Width in pixels of text as drawn (no space after the last glyph).
    static int width(std::string_view text);
    // Draws text with its first glyph's top left pixel at (x, y).
    static void draw(Canvas& canvas, int x, int y, std::string_view text, CanvasRgb colour);
};
