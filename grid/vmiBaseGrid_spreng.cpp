// Spring and foot-model operations of vmiBaseGrid: heights changed column by
// column or row by row over the whole grid, without an enclosed outline. Empty
// nodes are changed too; a lifted empty node stays below valid_z.
#include "grid/vmiBaseGrid.h"

#include "contour/vmiPolylineGridMap.h"
#include "curves/m0BspCurve.h"

namespace {

// A grid without nodes has nothing to change, and one whose sizes were written
// beyond size_allowed through the size references would only make the loops
// run for nothing (or, for the lengthwise spring, divide by a zero row count).
bool has_nodes(vmiBaseGrid& g)
{
    return g.x_size() >= 1 && g.y_size() >= 1 && vmiBaseGrid::size_allowed(g.x_size(), g.y_size());
}

}  // namespace

void vmiBaseGrid::proc_HSpreng(m03DVector* line, const double& z1, const double& z2)
{
    if (line == nullptr || !has_nodes(*this))
        return;
    vmiPolylineGridMap map(this, line);
    for (int i = 0; i < x_size_; i++) {
        const int* c = map.get_x_intersections(i);
        if (c == nullptr || (c[0] != 1 && c[0] != 2))
            continue;
        const int c1 = c[1];
        // Crossed once, the column steps from z1 to z2; crossed twice, it
        // blends linearly across the band.
        const int c2 = c[0] == 2 ? c[2] : c1;
        for (int j = 0; j < c1; j++)
            set_z(i, j, point(i, j).z() + z1);
        for (int j = c1; j < c2; j++) {
            const double f = static_cast<double>(j - c1) / static_cast<double>(c2 - c1);
            set_z(i, j, point(i, j).z() + (1.0 - f) * z1 + f * z2);
        }
        for (int j = c2; j < y_size_; j++)
            set_z(i, j, point(i, j).z() + z2);
    }
}

void vmiBaseGrid::proc_HSprenglinie(m0BspCurve* curve)
{
    if (curve == nullptr || !has_nodes(*this))
        return;
    for (int j = 0; j < y_size_; j++) {
        // The parameter runs over j / y_size, so the last row stays short of 1.
        const double t = static_cast<double>(j) / static_cast<double>(y_size_);
        const double h = curve->point(t).y();
        for (int i = 0; i < x_size_; i++)
            set_z(i, j, point(i, j).z() + h);
    }
}

void vmiBaseGrid::build_HFFootMod(m03DVector* line, const double& minz, const double& height)
{
    if (line == nullptr || !has_nodes(*this))
        return;
    vmiPolylineGridMap map(this, line);
    // A minz below valid_z marks "not given".
    const bool has_minz = minz >= valid_z;
    // The last column of the line (x_max) is left out, unlike the other
    // column loops of the grid: kept as designed.
    for (int i = map.x_min(); i < map.x_max(); i++) {
        const int* c = map.get_x_intersections(i);
        if (c == nullptr || c[0] != 1)
            continue;
        const int cross = c[1];
        if (has_minz)
            for (int j = 0; j < cross; j++)
                set_z(i, j, point(i, j).z() + minz - height);
        for (int j = cross; j < y_size_; j++)
            set_z(i, j, has_minz ? minz : height);
    }
}
