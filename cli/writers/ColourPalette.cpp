#include "cli/writers/ColourPalette.h"

namespace {

constexpr ColourPalette::Rgb table[ColourPalette::size] = {
    {192, 192, 192}, {255, 0, 0},     {255, 255, 0}, {0, 255, 0},   {0, 255, 255},
    {0, 0, 255},     {255, 0, 255},   {255, 255, 255}, {128, 128, 128}, {192, 192, 192},
};

} // namespace

ColourPalette::Rgb ColourPalette::colour(int index)
{
    return known(index) ? table[index] : fallback;
}
