#pragma once
// The nodes a modifier sets: on every row of its outline's map, the intervals
// between consecutive crossings alternate inside and outside, starting inside,
// and each inside interval runs from its opening crossing node up to, but not
// including, its closing one.
#include "contour/vmiPolylineGridMap.h"
#include "grid/vmiBaseGrid.h"
#include "grid/vmiWorkBudget.h"

// Calls visit(i, j) for every inside node, row by row from the map's y_min to
// its y_max, each row from left to right.
template <class Visit>
void for_each_inside_node(vmiPolylineGridMap& map, Visit visit)
{
    for (int j = map.y_min(); j <= map.y_max(); j++) {
        const int* c = map.get_y_intersections(j);
        if (c == nullptr || c[0] <= 1)
            continue;
        for (int k = 1; k < c[0]; k += 2)
            for (int i = c[k]; i < c[k + 1]; i++)
                visit(i, j);
    }
}

// The work units of setting one node whose height took `evaluations` curve
// evaluations.
inline long long node_work(const long long& evaluations)
{
    return 1 + evaluations * vmiWorkBudget::evaluation_units;
}

// How the line and the point combine a node's height z with their own v:
// mode 1 keeps the larger, 0 adds, any other replaces.
inline double combine_height(const int& mode, const double& z, const double& v)
{
    if (mode == 1)
        return v > z ? v : z;
    if (mode == 0)
        return z + v;
    return v;
}

// The line and the point: every inside node takes height(i, j, evaluations)
// combined with its own by mode, and keeps its x and y; height adds the curve
// evaluations it made to evaluations. A grid without nodes is left alone. Each
// node is charged to the grid's budget; once it is spent the nodes left keep
// their heights.
template <class Height>
void combine_inside_nodes(vmiBaseGrid* grid, vmiPolylineGridMap* map, const int& mode,
                          Height height)
{
    if (!map || grid == nullptr || grid->x_size() < 1 || grid->y_size() < 1)
        return;
    bool spent = false;
    for_each_inside_node(*map, [&](int i, int j) {
        if (spent)
            return;
        long long evaluations = 0;
        const double v = height(i, j, evaluations);
        if (!grid->charge(node_work(evaluations))) {
            spent = true;
            return;
        }
        m03DPoint node = grid->point(i, j);
        node.set_z(combine_height(mode, node.z(), v));
        grid->point(i, j, node);
    });
}
