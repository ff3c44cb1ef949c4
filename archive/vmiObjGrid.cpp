#include "archive/vmiObjGrid.h"

#include <new>

#include "grid/vmiBaseGrid.h"

vmiObjGrid::vmiObjGrid(utString name, m03DPoint* points, const int& nx, const int& ny,
                       const double& dx, const double& dy)
{
    this->name(std::move(name));
    grid_ = new (std::nothrow) vmiBaseGrid(points, nx, ny, dx, dy);
    if (!grid_)
        delete[] points;
}

vmiObjGrid::vmiObjGrid(utString name, vmiBaseGrid* grid) : grid_(grid)
{
    this->name(std::move(name));
}

vmiObjGrid::~vmiObjGrid()
{
    delete grid_;
}

int vmiObjGrid::x_size() const { return grid_ ? grid_->x_size() : 0; }
int vmiObjGrid::y_size() const { return grid_ ? grid_->y_size() : 0; }
double vmiObjGrid::d_x() const { return grid_ ? grid_->d_x() : 0.0; }
double vmiObjGrid::d_y() const { return grid_ ? grid_->d_y() : 0.0; }
m03DPoint* vmiObjGrid::points_array() { return grid_ ? grid_->points_array() : nullptr; }

giBox3 vmiObjGrid::box()
{
    return grid_ ? grid_->box() : giBox3();
}
