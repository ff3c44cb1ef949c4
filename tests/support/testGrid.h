#pragma once
// Grids for the suites over the height grid and its operations.
#include <memory>
#include <vector>

#include "grid/vmiBaseGrid.h"

// A grid of x_size x y_size nodes, spacing 1, all heights z.
inline std::unique_ptr<vmiBaseGrid> flat_grid(int x_size, int y_size, double z)
{
    auto g = std::make_unique<vmiBaseGrid>(x_size, y_size, 1.0, 1.0);
    for (int j = 0; j < y_size; j++)
        for (int i = 0; i < x_size; i++)
            g->set_z(i, j, z);
    return g;
}

// The heights of row j, from column 0 on.
inline std::vector<double> row_z(vmiBaseGrid& g, int j)
{
    std::vector<double> z;
    for (int i = 0; i < g.x_size(); i++)
        z.push_back(g.point(i, j).z());
    return z;
}

// The heights of column i, from row 0 on.
inline std::vector<double> column_z(vmiBaseGrid& g, int i)
{
    std::vector<double> z;
    for (int j = 0; j < g.y_size(); j++)
        z.push_back(g.point(i, j).z());
    return z;
}

// Every node's height, row by row.
inline std::vector<double> all_z(vmiBaseGrid& g)
{
    std::vector<double> z;
    for (int j = 0; j < g.y_size(); j++)
        for (int i = 0; i < g.x_size(); i++)
            z.push_back(g.point(i, j).z());
    return z;
}
