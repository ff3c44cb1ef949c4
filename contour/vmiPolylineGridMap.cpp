#include "contour/vmiPolylineGridMap.h"

#include "curves/m03DVector.h"
#include "grid/vmiBaseGrid.h"

#include <algorithm>
#include <cstdlib>

namespace {

// pix_dist of an entry to a list that exists but holds no value.
constexpr int no_crossing_distance = 10000000;

int contains(const int* list, const int& v)
{
    if (list == nullptr)
        return 0;
    for (int k = 1; k <= list[0]; k++)
        if (list[k] == v)
            return 1;
    return 0;
}

}  // namespace

vmiPolylineGridMap::vmiPolylineGridMap(vmiBaseGrid* grid, m03DVector* outline)
{
    if (grid != nullptr && vmiBaseGrid::size_allowed(grid->x_size(), grid->y_size())) {
        xsize_ = grid->x_size();
        ysize_ = grid->y_size();
        d_x_ = grid->d_x();
        d_y_ = grid->d_y();
    }
    column_at_.assign(xsize_, -1);
    row_at_.assign(ysize_, -1);
    if (xsize_ < 1 || ysize_ < 1)
        return;
    std::unique_ptr<m03DVector> lattice = project(outline);
    build_intersection_map(lattice.get());
}

vmiPolylineGridMap::~vmiPolylineGridMap() = default;

// ---------------------------------------------------------------------------
// Queries

int* vmiPolylineGridMap::get_x_intersections(const int& i)
{
    if (i < 0 || i >= static_cast<int>(column_at_.size()) || column_at_[i] < 0)
        return nullptr;
    return lists_.data() + column_at_[i];
}

int* vmiPolylineGridMap::get_y_intersections(const int& j)
{
    if (j < 0 || j >= static_cast<int>(row_at_.size()) || row_at_[j] < 0)
        return nullptr;
    return lists_.data() + row_at_[j];
}

int vmiPolylineGridMap::is_inside_the_cros_map(const int& i, const int& j)
{
    const int* list = get_y_intersections(j);
    if (list == nullptr)
        return 0;
    // Entries pair up as (1st, 2nd), (3rd, 4th), ...; an odd last one pairs with nothing.
    for (int k = 1; k + 1 <= list[0]; k += 2)
        if (list[k] <= i && i <= list[k + 1])
            return 1;
    return 0;
}

int vmiPolylineGridMap::check_in_x(const int& i, const int& j)
{
    return contains(get_x_intersections(i), j);
}

int vmiPolylineGridMap::check_in_y(const int& j, const int& i)
{
    // Row j must have a list, but i is looked up in the list of row i: this
    // member behaves so as it stands, kept as designed.
    if (get_y_intersections(j) == nullptr)
        return 0;
    return contains(get_y_intersections(i), i);
}

// ---------------------------------------------------------------------------
// Projection onto the lattice

int vmiPolylineGridMap::intf(double v)
{
    return vmiBaseGrid::intf(v);
}

void vmiPolylineGridMap::check_x_min_max(const int& i)
{
    x_min_ = std::min(x_min_, i);
    x_max_ = std::max(x_max_, i);
}

void vmiPolylineGridMap::check_y_min_max(const int& j)
{
    y_min_ = std::min(y_min_, j);
    y_max_ = std::max(y_max_, j);
}

void vmiPolylineGridMap::reset_extremes()
{
    x_min_ = 100000;
    x_max_ = -100000;
    y_min_ = 100000;
    y_max_ = -100000;
}

m03DPoint vmiPolylineGridMap::project(m03DPoint& p)
{
    // Points beyond the grid land on its border columns and rows.
    int i = std::clamp(intf(p.x() / d_x_), 0, xsize_ - 1);
    check_x_min_max(i);
    int j = std::clamp(intf(p.y() / d_y_), 0, ysize_ - 1);
    check_y_min_max(j);
    return m03DPoint(i, j, 0.0);
}

int vmiPolylineGridMap::is_on_one_line(const m03DPoint& a, const m03DPoint& b, const m03DPoint& c)
{
    return ((a - b) * (c - b)).module() < 1e-7;
}

std::unique_ptr<m03DVector> vmiPolylineGridMap::project(m03DVector* outline)
{
    if (outline == nullptr || outline->get_point_array() == nullptr || outline->size() < 2)
        return nullptr;
    const int n = outline->size();
    auto lattice = std::make_unique<m03DVector>(n);
    if (lattice->get_point_array() == nullptr)
        return nullptr;
    lattice->set_point(0, project(outline->point(0)));
    lattice->set_point(1, project(outline->point(1)));
    int kept = 2;
    // Repeated lattice points and straight runs collapse to their end points.
    for (int k = 2; k < n; k++) {
        m03DPoint q = project(outline->point(k));
        if (is_on_one_line(lattice->point(kept - 2), lattice->point(kept - 1), q))
            lattice->set_point(kept - 1, q);
        else
            lattice->set_point(kept++, q);
    }
    lattice->set_size(kept);
    return lattice;
}

// ---------------------------------------------------------------------------
// Building the crossing lists

long long vmiPolylineGridMap::segment_steps(const m03DPoint& a, const m03DPoint& b)
{
    long long dx = static_cast<long long>(b.x()) - static_cast<long long>(a.x());
    long long dy = static_cast<long long>(b.y()) - static_cast<long long>(a.y());
    long long columns = dx != 0 ? std::llabs(dx) : (dy != 0 ? 2 : 0);
    long long rows = dy != 0 ? std::llabs(dy) : (dx != 0 ? 2 : 0);
    return columns + rows;
}

void vmiPolylineGridMap::add_segment(const m03DPoint& a, const m03DPoint& b)
{
    const int x0 = static_cast<int>(a.x()), y0 = static_cast<int>(a.y());
    const int x1 = static_cast<int>(b.x()), y1 = static_cast<int>(b.y());
    const int dx = x1 - x0, dy = y1 - y0;
    // The end index is left out, so each vertex is entered once, by the segment
    // that starts there. The product comes first, then the division.
    if (dx != 0) {
        for (int x = x0; x != x1; x += dx > 0 ? 1 : -1)
            add_in_x(x, intf(static_cast<double>(x - x0) * dy / dx + y0));
    } else if (dy != 0) {
        add_in_x(x0, y0);
        add_in_x(x0, y1);
    }
    if (dy != 0) {
        for (int y = y0; y != y1; y += dy > 0 ? 1 : -1)
            add_in_y(y, intf(static_cast<double>(y - y0) * dx / dy + x0));
    } else if (dx != 0) {
        add_in_y(y0, x0);
        add_in_y(y0, x1);
    }
}

void vmiPolylineGridMap::add_in_x(const int& i, const int& v)
{
    if (i < 0 || i >= xsize_)
        return;
    column_pairs_.emplace_back(i, v);
}

void vmiPolylineGridMap::add_in_y(const int& j, const int& v)
{
    if (j < 0 || j >= ysize_)
        return;
    row_pairs_.emplace_back(j, v);
}

void vmiPolylineGridMap::add(std::vector<std::pair<int, int>>& pairs, std::vector<int>& table)
{
    // Sorting the collected crossings gives the same lists as inserting each one
    // in ascending order and ignoring a value already present.
    std::sort(pairs.begin(), pairs.end());
    pairs.erase(std::unique(pairs.begin(), pairs.end()), pairs.end());
    size_t k = 0;
    while (k < pairs.size()) {
        const int index = pairs[k].first;
        const size_t head = lists_.size();
        table[index] = static_cast<int>(head);
        lists_.push_back(0);
        for (; k < pairs.size() && pairs[k].first == index; k++)
            lists_.push_back(pairs[k].second);
        lists_[head] = static_cast<int>(lists_.size() - head - 1);
    }
    pairs.clear();
    pairs.shrink_to_fit();
}

void vmiPolylineGridMap::build_intersection_map(m03DVector* lattice)
{
    if (lattice == nullptr)
        return;
    const int n = lattice->size();
    long long steps = 0;
    for (int k = 0; k + 1 < n; k++)
        steps += segment_steps(lattice->point(k), lattice->point(k + 1));
    if (steps > max_map_steps) {
        reset_extremes();
        return;
    }
    column_pairs_.reserve(static_cast<size_t>(steps));
    row_pairs_.reserve(static_cast<size_t>(steps));
    for (int k = 0; k + 1 < n; k++)
        add_segment(lattice->point(k), lattice->point(k + 1));
    lists_.reserve(static_cast<size_t>(2 * steps));
    add(column_pairs_, column_at_);
    add(row_pairs_, row_at_);
    check_y_collisions();
}

// ---------------------------------------------------------------------------
// Row clean-up

int vmiPolylineGridMap::pix_dist(const int& e, const int* list)
{
    // A missing neighbour row favours no entry.
    if (list == nullptr)
        return 0;
    if (list[0] <= 0)
        return no_crossing_distance;
    int best = std::abs(list[1] - e);
    for (int k = 2; k <= list[0]; k++)
        best = std::min(best, std::abs(list[k] - e));
    return best;
}

void vmiPolylineGridMap::check_y_collisions()
{
    // A row through a vertex can get three crossings where the closed outline
    // should give two: the one farthest from both neighbouring rows goes.
    for (int j = 1; j <= ysize_ - 2; j++) {
        int* list = get_y_intersections(j);
        if (list == nullptr || list[0] != 3)
            continue;
        const int* below = get_y_intersections(j - 1);
        const int* above = get_y_intersections(j + 1);
        int worst = 1;
        long long worst_sum = -1;
        for (int e = 1; e <= 3; e++) {
            long long sum = static_cast<long long>(pix_dist(list[e], below)) + pix_dist(list[e], above);
            if (sum > worst_sum) {  // on equal sums the earlier entry goes
                worst_sum = sum;
                worst = e;
            }
        }
        for (int e = worst; e < 3; e++)
            list[e] = list[e + 1];
        list[0] = 2;
    }
}
