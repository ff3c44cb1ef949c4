// The grid's own flat pad: an outline raised (or lowered, or cut) by one
// height, then smoothed.
#include "grid/vmiBaseGrid.h"

#include "contour/vmiPolylineGridMap.h"

namespace {

// This pad is always smoothed: with the given radius when it asks for more
// than a 1 x 1 neighbourhood, else wider for a replaced pad than for others.
int pelotte_smoothing_radius(const int& mode, const int& smooth)
{
    if (smooth > 1)
        return smooth;
    return mode == 1 ? 4 : 2;
}

}  // namespace

void vmiBaseGrid::build_pelotte(m03DVector* outline, const double& z, const int& mode,
                                const int& smooth)
{
    if (x_size_ < 1 || y_size_ < 1)
        return;
    vmiPolylineGridMap map(this, outline);
    // The map's last row is not visited, unlike the pad modifier's: kept as
    // designed.
    for (int j = map.y_min(); j < map.y_max(); j++) {
        int* c = map.get_y_intersections(j);
        if (c != nullptr && c[0] > 1)
            fill_row1(c, j, z, mode);
    }
    do_smoothing(pelotte_smoothing_radius(mode, smooth), map);
}
