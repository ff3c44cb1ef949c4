// vmiHTorsion: the torsion of the insole surface. The height rises along the
// axis from 0 at its start to `value` at its end and falls off across the axis
// towards side line A (on the side the cross direction points to) or side
// line B (on the other).
#include "grid/vmiHTorsion.h"

#include "contour/vmiPolylineGridMap.h"
#include "grid/vmiBaseGrid.h"

#include <cmath>

vmiHTorsion::vmiHTorsion(vmiBaseGrid* grid, m03DVector* outline, m03DPoint A1, m03DPoint A2,
                         m03DPoint B1, m03DPoint B2, m03DPoint D1, m03DPoint D2,
                         m03DPoint axis_start, m03DPoint axis_end, const double& value)
    : grid_map_(std::make_unique<vmiPolylineGridMap>(grid, outline)),
      grid_(grid),
      a1_(A1),
      a2_(A2),
      b1_(B1),
      b2_(B2),
      axis_start_(axis_start),
      axis_end_(axis_end),
      d1_(D1),
      d2_(D2),
      value_(value),
      half_pi_(std::acos(-1.0) * 0.5)
{
    direction_ = (d2_ - d1_).single();
    axis_length_ = (axis_end_ - axis_start_).module();
    if (grid_ == nullptr)
        return;
    // Side A is absent when it lies beyond the far grid edge, measured with
    // y_size * d_y rather than the last row's y; side B when it is marked with
    // y = -1.0. The two tests differ on purpose.
    const double far_edge = grid_->y_size() * grid_->d_y();
    side_a_open_ = (a1_.y() > far_edge && a2_.y() > far_edge) ? 1 : 0;
    side_b_open_ = (b1_.y() == -1.0 && b2_.y() == -1.0) ? 1 : 0;
}

vmiHTorsion::~vmiHTorsion() = default;

double vmiHTorsion::lines_intersect(m03DPoint a0, m03DPoint a1, m03DPoint b0, m03DPoint b1,
                                    m03DPoint& x)
{
    // Parallel lines divide by zero; the non-finite parameter goes on into x.
    const m03DPoint d1 = a1 - a0;
    const m03DPoint d2 = b1 - b0;
    const double t = (d1.y() * a0.x() - d1.x() * a0.y() + d1.x() * b0.y() - d1.y() * b0.x()) /
                     (d2.x() * d1.y() - d2.y() * d1.x());
    x = b0 + d2 * t;
    return t;
}

double vmiHTorsion::height(const int& mode, const int& i, const int& j)
{
    const m03DPoint p(i * grid_->d_x(), j * grid_->d_y(), 0.0);
    const m03DPoint q = p + direction_;
    // X: where the cross line through the node meets the axis.
    m03DPoint X;
    lines_intersect(axis_start_, axis_end_, p, q, X);
    const bool on_side_a = direction_.scal_mult(p - X) >= 0.0;
    // Y: where the same cross line meets the side line of the node's side.
    m03DPoint Y;
    if (on_side_a)
        lines_intersect(a1_, a2_, p, q, Y);
    else
        lines_intersect(b1_, b2_, p, q, Y);
    const double base = (axis_start_ - X).module() * value_ / axis_length_;
    if ((on_side_a && side_a_open_) || (!on_side_a && side_b_open_))
        return base;
    // 1 on the axis, 0 on the side line.
    const double f = 1.0 - (p - X).module() / (Y - X).module();
    if (mode == 0)
        return base * f;
    return base * std::sin(f * half_pi_);
}

void vmiHTorsion::build_HTorsion(const int& mode)
{
    if (grid_map_ == nullptr || grid_ == nullptr)
        return;
    // The map clamps its rows and crossings into the grid it was built over;
    // an empty map reports y_min above y_max and the loop does not run.
    for (int j = grid_map_->y_min(); j <= grid_map_->y_max(); j++) {
        const int* c = grid_map_->get_y_intersections(j);
        // Only a plain stretch is twisted: rows crossed once, or three times and
        // more, stay as they are.
        if (c == nullptr || c[0] != 2)
            continue;
        for (int i = c[1]; i < c[2]; i++) {
            const double z = grid_->point(i, j).z();
            if (z > vmiBaseGrid::valid_z)
                grid_->set_z(i, j, z + height(mode, i, j));
        }
    }
}
