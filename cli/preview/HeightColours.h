#pragma once
// HeightColours: how a height map shows heights. The range from the lowest
// to the highest height is cut into `levels` equal steps, and each level has
// one colour on a ramp from dark blue (lowest) through light blue, green and
// yellow to red (highest). The legend's colour bar shows every level, one
// pixel row each, so any pixel of a map can be read back on the bar.
//
// The ramp holds neither white, grey, black nor magenta, so the background,
// the text and the outlines never pass for a height.
#include <array>
#include <cstdint>

#include "cli/preview/Canvas.h"

class HeightColours {
public:
    static constexpr int levels = 256;
    // The ramp's colours at levels 0, 64, 128, 192 and 256 (the last one is
    // reached by no level; the top level is a step below it).
    static constexpr int stops = 5;
    static constexpr int stop_spacing = 64;
    static constexpr std::array<CanvasRgb, stops> stop_colours = {{
        {0, 0, 160}, {0, 160, 255}, {0, 200, 80}, {255, 220, 0}, {200, 0, 0},
    }};

    // The level of height z between lo and hi: (z - lo) / (hi - lo) of the
    // way up, times levels - 1, rounded to the nearest level and kept within
    // 0 .. levels - 1. A range of no width (or not finite) puts every height
    // on level 0.
    static int level(double z, double lo, double hi);
    // Level k's colour: between two stops, each channel the rounded mix
    // (a (64 - f) + b f + 32) / 64 of the stops below (a) and above (b), f
    // being how far past the lower stop k lies.
    static CanvasRgb colour(int level);
    static CanvasRgb colour(double z, double lo, double hi) { return colour(level(z, lo, hi)); }
};
