#include "grid/vmiBaseGrid.h"
#include "grid/vmiGridMemory.h"
#include "grid/vmiPointBox.h"

#include "curves/m03DVector.h"
#include "grid/vmiWorkBudget.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>

int vmiBaseGrid::clamp_index(long long v, int limit)
{
    return static_cast<int>(std::clamp<long long>(v, 0, std::max(limit, 0)));
}

// ---------------------------------------------------------------------------
// Construction

bool vmiBaseGrid::charge(long long n)
{
    return budget_ == nullptr || budget_->charge(n);
}

vmiBaseGrid::vmiBaseGrid(vmiBaseGrid& other)
    : x_size_(other.x_size_), y_size_(other.y_size_), d_x_(other.d_x_), d_y_(other.d_y_)
{
    if (other.points_ == nullptr) {
        make_empty();
        return;
    }
    if (!allocate())
        return;
    // The nodes lie alike in both arrays: one copy when the other array
    // holds them all.
    if (other.capacity_ >= capacity_) {
        std::memcpy(static_cast<void*>(points_), other.points_, static_cast<std::size_t>(capacity_) * sizeof(m03DPoint));
        return;
    }
    // Row by row, as both arrays lie.
    for (int j = 0; j < y_size_; j++)
        for (int i = 0; i < x_size_; i++)
            point(i, j, other.point(i, j));
}

vmiBaseGrid::vmiBaseGrid(const int& x_size, const int& y_size, const double& d_x, const double& d_y)
    : x_size_(x_size), y_size_(y_size), d_x_(d_x), d_y_(d_y)
{
    if (!allocate())
        return;
    for (int j = 0; j < y_size_; j++)
        for (int i = 0; i < x_size_; i++)
            point(i, j, m03DPoint(i * d_x_, j * d_y_, empty_z));
}

vmiBaseGrid::vmiBaseGrid(m03DPoint* points, const int& x_size, const int& y_size, const double& d_x,
                         const double& d_y)
    : points_(points), x_size_(x_size), y_size_(y_size), d_x_(d_x), d_y_(d_y)
{
    // The array is ours from here on, even when its sizes cannot be trusted.
    if (points_ == nullptr || !size_allowed(x_size_, y_size_)) {
        x_size_ = 0;
        y_size_ = 0;
        return;
    }
    capacity_ = static_cast<long long>(x_size_) * y_size_;
}

vmiBaseGrid::vmiBaseGrid(m03DPoint* points, long long held, const int& x_size, const int& y_size,
                         const double& d_x, const double& d_y)
    : points_(points), x_size_(x_size), y_size_(y_size), d_x_(d_x), d_y_(d_y), held_(points ? held : 0)
{
    if (points_ == nullptr || !size_allowed(x_size_, y_size_)
        || static_cast<long long>(x_size_) * y_size_ > held_) {
        make_empty();
        return;
    }
    capacity_ = static_cast<long long>(x_size_) * y_size_;
}

vmiBaseGrid::~vmiBaseGrid()
{
    // An array of this grid's own goes back for another grid while an
    // import runs; an adopted one (held_ 0) is freed.
    vmiGridMemory::give(points_, held_);
}

// Allocates x_size * y_size nodes; a size beyond the bound or a failed
// allocation leaves the grid empty (0 x 0) and gives false.
bool vmiBaseGrid::allocate()
{
    if (!size_allowed(x_size_, y_size_)) {
        make_empty();
        return false;
    }
    const long long n = static_cast<long long>(x_size_) * y_size_;
    points_ = vmiGridMemory::take(n, &held_);
    if (points_ == nullptr) {
        make_empty();
        return false;
    }
    capacity_ = n;
    return true;
}

void vmiBaseGrid::make_empty()
{
    vmiGridMemory::give(points_, held_);
    points_ = nullptr;
    held_ = 0;
    capacity_ = 0;
    x_size_ = 0;
    y_size_ = 0;
}

// ---------------------------------------------------------------------------
// Node access

void vmiBaseGrid::set_z_if_empty(const int& i, const int& j, const double& z)
{
    if (point(i, j).z() <= empty_z)
        set_z(i, j, z);
}

void vmiBaseGrid::set_z_if_less(const int& i, const int& j, const double& z)
{
    if (z > point(i, j).z())
        set_z(i, j, z);
}

giBox3 vmiBaseGrid::box()
{
    if (points_ != nullptr) {
        vmiPointBox gathered;
        for (long long k = 0; k < capacity_; k++) {
            const m03DPoint& p = points_[k];
            if (p.z() > empty_z)
                gathered.take(p.x(), p.y(), p.z());
        }
        if (gathered.complete())
            return gathered.box();
    }
    // No height at all, or a coordinate that is never a number: the host's
    // box merged node by node.
    giBox3 b;
    if (points_ != nullptr) {
        for (long long k = 0; k < capacity_; k++) {
            const m03DPoint& p = points_[k];
            if (p.z() > empty_z)
                b.merge(giPoint3(p.x(), p.y(), p.z()));
        }
    }
    if (b.is_valid())
        return b;
    // No height at all: the box of the grid's extent, whose far corner is
    // x_size * d_x (one spacing beyond the last node), kept as designed.
    b.merge(giPoint3(0.0, 0.0, empty_z));
    b.merge(giPoint3(x_size_ * d_x_, y_size_ * d_y_, empty_z));
    return b;
}

// ---------------------------------------------------------------------------
// Bulk operations

void vmiBaseGrid::height_limit(const double& h)
{
    if (points_ == nullptr || capacity_ < 1)
        return;
    for (long long k = 0; k < capacity_; k++)
        if (points_[k].z() > h)
            points_[k].set_z(h);
}

void vmiBaseGrid::offset(const double& dx, const double& dy)
{
    if (points_ == nullptr)
        return;
    for (long long k = 0; k < capacity_; k++) {
        points_[k].set_x(points_[k].x() + dx);
        points_[k].set_y(points_[k].y() + dy);
    }
}

void vmiBaseGrid::merge(m03DPoint* pts, const int& n)
{
    each_point_at_node(pts, n, empty_z, [this](int i, int j, double z) { set_z_if_less(i, j, z); });
}

int vmiBaseGrid::held_nodes(const vmiBaseGrid& other)
{
    long long n = std::min(static_cast<long long>(other.x_size_) * other.y_size_, other.capacity_);
    return static_cast<int>(std::max(n, 0LL));
}

void vmiBaseGrid::merge(vmiBaseGrid& other)
{
    merge(other.points_array(), held_nodes(other));
}

void vmiBaseGrid::merge1(m03DPoint* pts, const int& n)
{
    // Neighbours in the order they are tried: only the first point to reach an
    // empty neighbour fills it.
    static constexpr int around[8][2] = {{1, 0},  {0, 1},  {1, 1},  {-1, 0},
                                         {-1, -1}, {0, -1}, {-1, 1}, {1, -1}};
    each_point_at_node(pts, n, valid_z, [this](int i, int j, double z) {
        set_z(i, j, z);
        for (const auto& d : around)
            set_z_if_empty(i + d[0], j + d[1], z);
    });
}

void vmiBaseGrid::get_x_min_max(m03DVector* poly, int& min, int& max)
{
    min = 100000;
    max = -100000;
    if (poly == nullptr || poly->get_point_array() == nullptr)
        return;
    for (int k = 0; k < poly->size(); k++) {
        int i = intf(poly->point(k).x() / d_x_);
        max = std::max(max, i);
        min = std::min(min, i);
    }
}

void vmiBaseGrid::get_y_min_max(m03DVector* poly, int& min, int& max)
{
    min = 100000;
    max = -100000;
    if (poly == nullptr || poly->get_point_array() == nullptr)
        return;
    for (int k = 0; k < poly->size(); k++) {
        int j = intf(poly->point(k).y() / d_y_);
        max = std::max(max, j);
        min = std::min(min, j);
    }
}

// ---------------------------------------------------------------------------
// Row and column primitives

void vmiBaseGrid::fill_row(const int& j, const double& z)
{
    for (int i = 0; i < x_size_; i++)
        set_z(i, j, z);
}

void vmiBaseGrid::fill_rect_x(int a, int b, const double& z)
{
    if (a > b)
        return;
    a = clamp_index(a, x_size_);
    b = clamp_index(b, x_size_);
    for (int j = 0; j < y_size_; j++)
        for (int i = a; i < b; i++)
            set_z(i, j, z);
}

void vmiBaseGrid::fill_rect_y(int a, int b, const double& z)
{
    if (a > b)
        return;
    a = clamp_index(a, y_size_);
    b = clamp_index(b, y_size_);
    for (int j = a; j < b; j++)
        fill_row(j, z);
}

void vmiBaseGrid::fill_row(int& inside, const int& j, int a, int b, const double& z_out,
                           const double& z_in)
{
    // An inside stretch reaches one node further right, an outside stretch one
    // node further left (except the first, which starts at 0).
    long long from = a;
    long long to = b;
    if (inside != 0)
        to = to + 1;
    else if (a != 0)
        from = from - 1;
    int lo = clamp_index(from, x_size_);
    int hi = clamp_index(to, x_size_);
    for (int i = lo; i < hi; i++) {
        if (inside == 0)
            set_z(i, j, z_out);
        else if (point(i, j).z() <= valid_z)
            set_z(i, j, z_in);
    }
    inside = (inside + 1) % 2;
}

void vmiBaseGrid::fill_row(int* crossings, const int& j, const double& z_out, const double& z_in)
{
    // A list without a first crossing has no stretch to fill.
    if (crossings == nullptr || crossings[0] < 1)
        return;
    int n = crossings[0];
    int inside = 0;
    fill_row(inside, j, 0, crossings[1], z_out, z_in);
    for (int k = 1; k < n; k++)
        fill_row(inside, j, crossings[k], crossings[k + 1], z_out, z_in);
    fill_row(inside, j, crossings[n], x_size_, z_out, z_in);
}

void vmiBaseGrid::fill_row1(int* crossings, const int& j, const double& z, const int& mode)
{
    if (crossings == nullptr || crossings[0] <= 1)
        return;
    int n = crossings[0];
    for (int k = 1; k < n; k += 2) {
        int lo = clamp_index(crossings[k], x_size_);
        int hi = clamp_index(crossings[k + 1], x_size_);
        for (int i = lo; i < hi; i++) {
            double zn = point(i, j).z();
            if (mode == 3) {
                if (zn > z)
                    set_z(i, j, z);
            } else if (mode == 1) {
                set_z(i, j, z);
            } else {
                set_z(i, j, zn + z);
            }
        }
    }
}
