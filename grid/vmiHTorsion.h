#pragma once
// vmiHTorsion: a torsion ("HTorsion") of the insole surface. Inside an outline
// it adds a height that grows linearly along the torsion axis (0 at its start,
// `value` at its end) and falls off across the axis towards one of two side
// lines, linearly or along a quarter sine.
#include <memory>

#include "curves/m03DPoint.h"

class m03DVector;
class vmiBaseGrid;
class vmiPolylineGridMap;

class vmiHTorsion {
public:
    // The outline stays the caller's; the points are taken by value in this
    // order: side line A (A1, A2), side line B (B1, B2), the cross direction
    // (D1 to D2), the axis (start, end), and the height at the axis end.
    vmiHTorsion(vmiBaseGrid* grid, m03DVector* outline, m03DPoint A1, m03DPoint A2, m03DPoint B1,
                m03DPoint B2, m03DPoint D1, m03DPoint D2, m03DPoint axis_start,
                m03DPoint axis_end, const double& value);
    ~vmiHTorsion();
    vmiHTorsion(const vmiHTorsion&) = delete;
    vmiHTorsion& operator=(const vmiHTorsion&) = delete;

    // Adds the torsion to every valid node inside the outline: mode 0 falls off
    // linearly across the axis, any other mode along a quarter sine.
    void build_HTorsion(const int& mode);

private:
    friend struct vmiHTorsionProbe;  // the tests reach the private steps

    double height(const int& mode, const int& i, const int& j);
    double lines_intersect(m03DPoint a0, m03DPoint a1, m03DPoint b0, m03DPoint b1, m03DPoint& x);

    std::unique_ptr<vmiPolylineGridMap> grid_map_;
    vmiBaseGrid* grid_ = nullptr;
    m03DPoint a1_, a2_;
    m03DPoint b1_, b2_;
    m03DPoint axis_start_, axis_end_;
    m03DPoint d1_, d2_;
    m03DPoint direction_;
    double value_ = 0.0;
    double half_pi_ = 0.0;
    double axis_length_ = 0.0;
    int side_a_open_ = 0;
    int side_b_open_ = 0;
};
