#pragma once
// ColourPalette: the RGB colours `velmora convert` gives a mesh or a curve by
// the colour index the host received with it (the COLOUR attribute), so that
// colour survives a file format that knows colours but no indices.
//
//   index  colour       the archive uses it for
//   0      light grey   (no colour)
//   1      red
//   2      yellow
//   3      green        the finished insole model
//   4      cyan
//   5      blue
//   6      magenta      outlines of the insole
//   7      white
//   8      dark grey
//   9      light grey
//
// An item without an index, or with one outside the table, is light grey.
#include <array>
#include <cstdint>

class ColourPalette {
public:
    using Rgb = std::array<std::uint8_t, 3>;

    // The number of indices the table holds (0 to size - 1).
    static constexpr int size = 10;
    // The colour of an item without an index or with an unknown one.
    static constexpr Rgb fallback = {192, 192, 192};

    static Rgb colour(int index);
    // True when index names an entry of the table.
    static bool known(int index) { return index >= 0 && index < size; }
};
