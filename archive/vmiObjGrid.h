#pragma once
// vmiObjGrid: a height grid handed to the host as a triangle block. The record
// owns its grid.
#include "archive/vmiObjAttr.h"
#include "host/giBox3.h"

class m03DPoint;
class vmiBaseGrid;

class vmiObjGrid : public vmiObjAttr {
public:
    // Builds a grid that adopts points (new m03DPoint[nx * ny]) without a copy.
    vmiObjGrid(utString name, m03DPoint* points, const int& nx, const int& ny, const double& dx,
               const double& dy);
    // Takes ownership of grid (may be null).
    vmiObjGrid(utString name, vmiBaseGrid* grid);
    ~vmiObjGrid();
    vmiObjGrid(const vmiObjGrid&) = delete;
    vmiObjGrid& operator=(const vmiObjGrid&) = delete;

    vmiBaseGrid* grid() { return grid_; }
    // Forwarded to the grid; 0 (or null) when there is none.
    int x_size() const;
    int y_size() const;
    double d_x() const;
    double d_y() const;
    m03DPoint* points_array();
    // The grid's own box (valid nodes); an invalid box without a grid.
    giBox3 box();

private:
    vmiBaseGrid* grid_ = nullptr;
};
