#include "cli/preview/HeightColours.h"

#include <cmath>

int HeightColours::level(double z, double lo, double hi)
{
    const double range = hi - lo;
    if (!std::isfinite(range) || !(range > 0.0) || !std::isfinite(z)) return 0;
    const double t = (z - lo) / range * static_cast<double>(levels - 1);
    if (!(t > 0.0)) return 0;
    if (t >= static_cast<double>(levels - 1)) return levels - 1;
    return static_cast<int>(std::floor(t + 0.5));
}

CanvasRgb HeightColours::colour(int level)
{
    if (level < 0) level = 0;
    if (level > levels - 1) level = levels - 1;
    const int s = level / stop_spacing, f = level % stop_spacing;
    const CanvasRgb& a = stop_colours[static_cast<std::size_t>(s)];
    const CanvasRgb& b = stop_colours[static_cast<std::size_t>(s + 1)];
    CanvasRgb c{};
    for (std::size_t k = 0; k < 3; ++k)
        c[k] = static_cast<std::uint8_t>((a[k] * (stop_spacing - f) + b[k] * f + stop_spacing / 2) / stop_spacing);
    return c;
}
