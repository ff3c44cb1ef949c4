#include "grid/vmiBaseGrid.h"

#include "curves/m03DVector.h"

#include <algorithm>
#include <cmath>
#include <new>

namespace {

// Clamps a loop bound into 0 ... limit, computed wide so that b + 1 cannot overflow.
int clamp_index(long long v, int limit)
{
    return static_cast<int>(std::clamp<long long>(v, 0, std::max(limit, 0)));
}

}  // namespace

// ---------------------------------------------------------------------------
// Construction

vmiBaseGrid::vmiBaseGrid(vmiBaseGrid& other)
    : x_size_(other.x_size_), y_size_(other.y_size_), d_x_(other.d_x_), d_y_(other.d_y_)
{
    if (other.points_ == nullptr) {
        make_empty();
        return;
    }
    if (!allocate())
        return;
    for (int i = 0; i < x_size_; i++)
        for (int j = 0; j < y_size_; j++)
            point(i, j, other.point(i, j));
}

vmiBaseGrid::vmiBaseGrid(const int& x_size, const int& y_size, const double& d_x, const double& d_y)
    : x_size_(x_size), y_size_(y_size), d_x_(d_x), d_y_(d_y)
{
    if (!allocate())
        return;
    for (int i = 0; i < x_size_; i++)
        for (int j = 0; j < y_size_; j++)
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

vmiBaseGrid::~vmiBaseGrid()
{
    delete[] points_;
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
    points_ = new (std::nothrow) m03DPoint[n];
    if (points_ == nullptr) {
        make_empty();
        return false;
    }
    capacity_ = n;
    return true;
}

void vmiBaseGrid::make_empty()
{
    delete[] points_;
    points_ = nullptr;
    capacity_ = 0;
    x_size_ = 0;
    y_size_ = 0;
}

// ---------------------------------------------------------------------------
// Node access

m03DPoint& vmiBaseGrid::point(const int& i, const int& j)
{
    if (i < 0 || i >= x_size_ || j < 0 || j >= y_size_)
        return fallback_;
    long long k = static_cast<long long>(j) * x_size_ + i;
    if (points_ == nullptr || k >= capacity_)
        return fallback_;
    return points_[k];
}

void vmiBaseGrid::point(const int& i, const int& j, const m03DPoint& p)
{
    if (i < 0 || i >= x_size_ || j < 0 || j >= y_size_)
        return;
    long long k = static_cast<long long>(j) * x_size_ + i;
    if (points_ == nullptr || k >= capacity_)
        return;
    points_[k] = p;
}

int vmiBaseGrid::intf(double v)
{
    // NaN and values beyond the bound land far outside every grid.
    if (!(v > -intf_bound))
        return -intf_bound;
    if (v > intf_bound)
        return intf_bound;
    int t = static_cast<int>(v);
    // The step up is taken for negative values too (-1.7 gives 0): kept as designed.
    if (std::fabs(v - t) > 0.5)
        t = t + 1;
    return t;
}

void vmiBaseGrid::set_z(const int& i, const int& j, const double& z)
{
    m03DPoint p = point(i, j);
    p.set_z(z);
    point(i, j, p);
}

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
    if (pts == nullptr || n < 1)
        return;
    for (int k = 0; k < n; k++) {
        const m03DPoint& p = pts[k];
        if (!(p.z() > empty_z))
            continue;
        set_z_if_less(intf(p.x() / d_x_), intf(p.y() / d_y_), p.z());
    }
}

void vmiBaseGrid::merge(vmiBaseGrid& other)
{
    // Never more nodes than the other array holds, whatever its sizes were set to.
    long long n = std::min(static_cast<long long>(other.x_size_) * other.y_size_, other.capacity_);
    merge(other.points_array(), static_cast<int>(std::max(n, 0LL)));
}

void vmiBaseGrid::merge1(m03DPoint* pts, const int& n)
{
    if (pts == nullptr || n < 1)
        return;
    // Neighbours in the order they are tried: only the first point to reach an
    // empty neighbour fills it.
    static constexpr int around[8][2] = {{1, 0},  {0, 1},  {1, 1},  {-1, 0},
                                         {-1, -1}, {0, -1}, {-1, 1}, {1, -1}};
    for (int k = 0; k < n; k++) {
        const m03DPoint& p = pts[k];
        if (!(p.z() > valid_z))
            continue;
        int i = intf(p.x() / d_x_);
        int j = intf(p.y() / d_y_);
        set_z(i, j, p.z());
        for (const auto& d : around)
            set_z_if_empty(i + d[0], j + d[1], p.z());
    }
}

m03DPoint vmiBaseGrid::middle(const m03DPoint& a, const m03DPoint& /*b*/)
{
    // Both halves are taken from a, so the "middle" is a itself; the doubled
    // grid relies on that, kept as designed.
    return m03DPoint(a.x() * 0.5 + a.x() * 0.5, a.y() * 0.5 + a.y() * 0.5, a.z() * 0.5 + a.z() * 0.5);
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

m03DPoint& vmiBaseGrid::line_node(int k, int fixed, bool along_x)
{
    return along_x ? point(k, fixed) : point(fixed, k);
}

void vmiBaseGrid::put_line_z(vmiBaseGrid* dst, int k, int fixed, bool along_x, const double& z)
{
    m03DPoint p = line_node(k, fixed, along_x);
    p.set_z(z);
    if (along_x)
        dst->point(k, fixed, p);
    else
        dst->point(fixed, k, p);
}

void vmiBaseGrid::fill_line2(vmiBaseGrid* dst, int* crossings, int fixed, bool along_x)
{
    if (dst == nullptr || crossings == nullptr || crossings[0] < 1)
        return;
    const int limit = along_x ? x_size_ : y_size_;
    const int c1 = crossings[1];
    const int cn = crossings[crossings[0]];
    auto average_at = [&](int k) {
        return along_x ? everage_height(k, fixed, 2) : everage_height(fixed, k, 2);
    };

    for (int k = 0; k < clamp_index(c1, limit); k++)
        put_line_z(dst, k, fixed, along_x, empty_z);

    // The gap before the first valid node takes the mean around it; the node
    // itself keeps its height.
    for (int k = clamp_index(c1, limit); k < clamp_index(cn, limit); k++) {
        if (line_node(k, fixed, along_x).z() > valid_z) {
            double a = average_at(k);
            for (int m = clamp_index(c1, limit); m < k; m++)
                put_line_z(dst, m, fixed, along_x, a);
            break;
        }
    }
    // The gap after the last valid node takes the mean around it, and here the
    // node itself is overwritten too: the asymmetry is kept as designed.
    for (int k = std::min(cn, limit - 1); k > c1 && k >= 0; k--) {
        if (line_node(k, fixed, along_x).z() > valid_z) {
            double a = average_at(k);
            for (int m = k; m < clamp_index(cn, limit); m++)
                put_line_z(dst, m, fixed, along_x, a);
            break;
        }
    }

    for (int k = clamp_index(cn, limit); k < limit; k++)
        put_line_z(dst, k, fixed, along_x, empty_z);
}

void vmiBaseGrid::fill_row2(vmiBaseGrid* dst, int* crossings, int j)
{
    fill_line2(dst, crossings, j, true);
}

void vmiBaseGrid::fill_colm2(vmiBaseGrid* dst, int* crossings, int i)
{
    fill_line2(dst, crossings, i, false);
}

// ---------------------------------------------------------------------------
// Local mean

double vmiBaseGrid::everage_height(const int& i, const int& j, const int& r)
{
    // Half-width r - 1 around (i, j), cut at the grid's border.
    int i0 = clamp_index(static_cast<long long>(i) - (static_cast<long long>(r) - 1), x_size_);
    int i1 = clamp_index(static_cast<long long>(i) + r, x_size_);
    int j0 = clamp_index(static_cast<long long>(j) - (static_cast<long long>(r) - 1), y_size_);
    int j1 = clamp_index(static_cast<long long>(j) + r, y_size_);
    if (j0 >= j1)
        return 0.0;
    double sum = 0.0;
    int count = 0;
    for (int a = i0; a < i1; a++)
        for (int b = j0; b < j1; b++) {
            double z = point(a, b).z();
            if (z > valid_z) {
                sum += z;
                count++;
            }
        }
    return count == 0 ? 0.0 : sum / count;
}
