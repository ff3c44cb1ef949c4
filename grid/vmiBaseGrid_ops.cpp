// Whole-grid operations of vmiBaseGrid: local averaging, lowering, refinement,
// adding point heights, trimming to the insole outline and closing the solid.
#include "grid/vmiBaseGrid.h"

#include "contour/vmiPolylineGridMap.h"
#include "curves/m03DVector.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <memory>

namespace {

// Closing the solid: the floor points lie at floor_z, and a node counts as
// standing above the floor when it is higher than high_z. Both are part of the
// design and differ on purpose.
constexpr double floor_z = 0.001;
constexpr double high_z = 0.01;
// The closing scan never looks below this column: the walls and the floor are
// written into columns 0 ... 9, which the grid keeps empty for them.
constexpr int solid_margin = 10;

// Node reads of one smoothing pass over nodes with radius r.
long long smoothing_reads(long long nodes, int x_size, int y_size, int r)
{
    if (r < 1)
        return 0;
    long long w = std::min<long long>(2LL * r - 1, x_size);
    long long h = std::min<long long>(2LL * r - 1, y_size);
    return nodes * w * h;
}

}  // namespace

// ---------------------------------------------------------------------------
// Local mean and smoothing

template <class Inside>
double vmiBaseGrid::mean_height(int i, int j, int r, Inside inside)
{
    // Half-width r - 1 around (i, j), cut at the grid's border; only valid
    // nodes count.
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
            if (inside(a, b) && z > valid_z) {
                sum += z;
                count++;
            }
        }
    return count == 0 ? 0.0 : sum / count;
}

double vmiBaseGrid::everage_height(const int& i, const int& j, const int& r)
{
    return mean_height(i, j, r, [](int, int) { return true; });
}

double vmiBaseGrid::everage_height(vmiPolylineGridMap& map, const int& i, const int& j, const int& r)
{
    // As the plain mean, counting only nodes inside the outline.
    return mean_height(i, j, r, [&map](int a, int b) { return map.is_inside_the_cros_map(a, b); });
}

// The heights a smoothing pass reads, taken once before it writes: node
// (i, j) at i * y_size + j, column by column as the means sum them, holding
// its height when it counts (valid, and admitted by inside) and +0.0 when not.
// Adding +0.0 leaves a sum that starts at +0.0 exactly as it was, so a mean
// over these sums the very values everage_height sums, in its order.
struct vmiBaseGrid::SmoothingHeights {
    std::unique_ptr<double[]> z;
    std::unique_ptr<unsigned char[]> counts;
};

template <class Inside>
bool vmiBaseGrid::smoothing_heights(SmoothingHeights& h, Inside inside)
{
    // A grid whose sizes do not match its array is not smoothed, as a copy of
    // it could not be taken.
    if (points_ == nullptr || !size_allowed(x_size_, y_size_)
        || static_cast<long long>(x_size_) * y_size_ != capacity_)
        return false;
    h.z.reset(new (std::nothrow) double[capacity_]);
    h.counts.reset(new (std::nothrow) unsigned char[capacity_]);
    if (!h.z || !h.counts)
        return false;
    for (int j = 0; j < y_size_; j++)
        for (int i = 0; i < x_size_; i++) {
            const long long k = static_cast<long long>(i) * y_size_ + j;
            const double z = points_[static_cast<long long>(j) * x_size_ + i].z();
            const bool counts = z > valid_z && inside(i, j);
            h.z[k] = counts ? z : 0.0;
            h.counts[k] = counts ? 1 : 0;
        }
    return true;
}

double vmiBaseGrid::smoothed_height(const SmoothingHeights& h, int i, int j, int r) const
{
    // everage_height's window and order over the heights taken.
    int i0 = clamp_index(static_cast<long long>(i) - (static_cast<long long>(r) - 1), x_size_);
    int i1 = clamp_index(static_cast<long long>(i) + r, x_size_);
    int j0 = clamp_index(static_cast<long long>(j) - (static_cast<long long>(r) - 1), y_size_);
    int j1 = clamp_index(static_cast<long long>(j) + r, y_size_);
    if (j0 >= j1)
        return 0.0;
    double sum = 0.0;
    int count = 0;
    for (int a = i0; a < i1; a++) {
        const long long column = static_cast<long long>(a) * y_size_;
        const double* z = h.z.get() + column;
        const unsigned char* c = h.counts.get() + column;
        for (int b = j0; b < j1; b++) {
            sum += z[b];
            count += c[b];
        }
    }
    return count == 0 ? 0.0 : sum / count;
}

// The nodes of a smoothing pass, four at a time. A mean adds the heights of
// its window column by column, each column row by row, and that order is
// kept: four windows of the same shape are added side by side, each sum
// taking its heights in that order, so each is the one smoothed_height
// gives, bit for bit; the four independent sums only keep the processor
// busy while one addition waits for the one before it.
class vmiBaseGrid::SmoothingBatch {
public:
    SmoothingBatch(vmiBaseGrid& grid, const SmoothingHeights& h, int r) : g_(grid), h_(h), r_(r) {}
    ~SmoothingBatch() { flush(); }

    void add(int i, int j)
    {
        const int i0 = clamp_index(static_cast<long long>(i) - (static_cast<long long>(r_) - 1), g_.x_size_);
        const int i1 = clamp_index(static_cast<long long>(i) + r_, g_.x_size_);
        const int j0 = clamp_index(static_cast<long long>(j) - (static_cast<long long>(r_) - 1), g_.y_size_);
        const int j1 = clamp_index(static_cast<long long>(j) + r_, g_.y_size_);
        if (n_ > 0 && (i1 - i0 != columns_ || j1 - j0 != rows_))
            flush();
        columns_ = i1 - i0;
        rows_ = j1 - j0;
        i_[n_] = i;
        j_[n_] = j;
        base_[n_] = static_cast<long long>(i0) * g_.y_size_ + j0;
        if (++n_ == 4)
            flush();
    }

private:
    void flush()
    {
        if (n_ == 4 && columns_ > 0 && rows_ > 0) {
            double sum[4] = {0.0, 0.0, 0.0, 0.0};
            int count[4] = {0, 0, 0, 0};
            const double* z = h_.z.get();
            const unsigned char* c = h_.counts.get();
            for (int a = 0; a < columns_; a++) {
                const long long column = static_cast<long long>(a) * g_.y_size_;
                const long long k0 = base_[0] + column, k1 = base_[1] + column, k2 = base_[2] + column,
                                k3 = base_[3] + column;
                for (int b = 0; b < rows_; b++) {
                    sum[0] += z[k0 + b];
                    sum[1] += z[k1 + b];
                    sum[2] += z[k2 + b];
                    sum[3] += z[k3 + b];
                    count[0] += c[k0 + b];
                    count[1] += c[k1 + b];
                    count[2] += c[k2 + b];
                    count[3] += c[k3 + b];
                }
            }
            for (int k = 0; k < 4; k++)
                g_.set_z(i_[k], j_[k], count[k] == 0 ? 0.0 : sum[k] / count[k]);
        } else {
            for (int k = 0; k < n_; k++)
                g_.set_z(i_[k], j_[k], g_.smoothed_height(h_, i_[k], j_[k], r_));
        }
        n_ = 0;
    }

    vmiBaseGrid& g_;
    const SmoothingHeights& h_;
    const int r_;
    int n_ = 0;
    int columns_ = 0, rows_ = 0;
    int i_[4] = {}, j_[4] = {};
    long long base_[4] = {};
};

template <class Each>
void vmiBaseGrid::set_smoothed(const SmoothingHeights& h, int r, Each each)
{
    SmoothingBatch batch(*this, h, r);
    each([&batch](int i, int j) { batch.add(i, j); });
}

void vmiBaseGrid::do_smoothing(const int& r)
{
    // A pass the design's budget cannot take leaves the grid as it is; the
    // design is then not built.
    const long long reads = smoothing_reads(capacity_, x_size_, y_size_, r);
    if (reads > max_smoothing_reads || !charge(reads))
        return;
    // Every mean reads the unsmoothed heights.
    SmoothingHeights h;
    if (!smoothing_heights(h, [](int, int) { return true; }))
        return;
    // Each node is set from the heights taken before the pass, so the order
    // of the nodes does not matter: down each column, as the heights lie.
    set_smoothed(h, r, [&](auto at) {
        for (int i = 0; i < x_size_; i++)
            for (int j = 0; j < y_size_; j++)
                if (point(i, j).z() > valid_z)
                    at(i, j);
    });
}

void vmiBaseGrid::do_smoothing(const int& r, vmiPolylineGridMap& map)
{
    if (smoothing_reads(capacity_, x_size_, y_size_, r) > max_smoothing_reads)
        return;
    const int first = std::max(map.y_min(), 0);
    const int last = std::min(map.y_max(), y_size_ - 1);
    // Inside intervals are k = 1, 3, ...; unlike the modifiers, smoothing
    // takes the closing crossing node too: kept as designed.
    auto each_inside = [&](auto at) {
        for (int j = first; j <= last; j++) {
            const int* c = map.get_y_intersections(j);
            if (c == nullptr || c[0] <= 1)
                continue;
            for (int k = 1; k < c[0]; k += 2) {
                const int from = std::max(c[k], 0);
                const int to = std::min(c[k + 1], x_size_ - 1);
                if (from <= to)
                    at(from, to, j);
            }
        }
    };
    // The pass copies the grid's heights once and reads round every node
    // inside; one the design's budget cannot take leaves the grid as it is,
    // and the design is then not built.
    long long inside = 0;
    each_inside([&](int from, int to, int) { inside += static_cast<long long>(to) - from + 1; });
    if (!charge(capacity_ + smoothing_reads(inside, x_size_, y_size_, r)))
        return;
    SmoothingHeights h;
    if (!smoothing_heights(h, [&map](int a, int b) { return map.is_inside_the_cros_map(a, b); }))
        return;
    set_smoothed(h, r, [&](auto at) {
        each_inside([&](int from, int to, int j) {
            for (int i = from; i <= to; i++)
                at(i, j);
        });
    });
}

// ---------------------------------------------------------------------------
// Lowering, refinement, adding heights

void vmiBaseGrid::do_HAbzug(const double& d)
{
    // Empty nodes are lowered too; at -10000 - d they still count as empty.
    for (int j = 0; j < y_size_; j++)
        for (int i = 0; i < x_size_; i++)
            set_z(i, j, point(i, j).z() - d);
}

vmiBaseGrid* vmiBaseGrid::doubled(vmiBaseGrid& src)
{
    const int xs = src.x_size_;
    const int ys = src.y_size_;
    // Sizes that cannot double within an int give an empty grid.
    auto twice_less_one = [](int n) {
        long long v = 2LL * n - 1;
        return v > INT_MAX ? -1 : static_cast<int>(v);
    };
    const double half_x = src.d_x_ * 0.5;
    const double half_y = src.d_y_ * 0.5;
    auto* g = new vmiBaseGrid(twice_less_one(xs), twice_less_one(ys), half_x, half_y);
    // Since middle() gives its first point, each source node fills a block of
    // two columns and two rows, its own x and y included: kept as designed.
    m03DPoint B;  // the last source point read; stays (0, 0, 0) for one column
    for (int j = 0; j < ys; j++) {
        for (int i = 0; i < xs - 1; i++) {
            m03DPoint A = src.point(i, j);
            g->point(2 * i, 2 * j, A);
            if (j > 0)
                g->point(2 * i, 2 * j - 1, middle(A, g->point(2 * i, 2 * j - 2)));
            B = src.point(i + 1, j);
            m03DPoint M = middle(A, B);
            g->point(2 * i + 1, 2 * j, M);
            if (j > 0)
                g->point(2 * i + 1, 2 * j - 1, middle(M, g->point(2 * i + 1, 2 * j - 2)));
        }
        const int last = 2 * xs - 2;
        g->point(last, 2 * j, B);
        if (j > 0)
            g->point(last, 2 * j - 1, middle(B, g->point(last, 2 * j - 2)));
    }
    return g;
}

vmiBaseGrid* vmiBaseGrid::doubled()
{
    return doubled(*this);
}

void vmiBaseGrid::merge_doubled(vmiBaseGrid& src, const double& dx, const double& dy)
{
    // The refined grid doubled(src) would have: without room for it, nothing
    // is merged, as a refined grid left empty merges nothing.
    const int xs = src.x_size_;
    const int ys = src.y_size_;
    if (!size_allowed(2LL * xs - 1, 2LL * ys - 1))
        return;
    // Its nodes in its own storage order, each shifted and merged as soon as
    // it is known; doubled() builds them the same way, row by row, the odd
    // row 2j - 1 from the same source row j as the even row 2j.
    auto put = [&](const m03DPoint& p) {
        if (!(p.z() > empty_z))
            return;
        const double x = p.x() + dx;
        const double y = p.y() + dy;
        const int i = intf(x / d_x_);
        const int j = intf(y / d_y_);
        // set_z_if_less, without its calls.
        if (i < 0 || i >= x_size_ || j < 0 || j >= y_size_)
            return;
        const long long k = static_cast<long long>(j) * x_size_ + i;
        if (k < capacity_ && p.z() > points_[k].z())
            points_[k].set_z(p.z());
    };
    // A merge keeps the greater height, so putting a point that was put
    // before changes nothing, wherever it lands and whatever came between;
    // and middle(a, b) is a itself whenever a's coordinates halve exactly
    // (no subnormal, no overflow). So each source node's four points, its
    // own and the middles of the refined row and column, are nearly always
    // one point: it is put the first time it comes, in the refined grid's
    // order, and a later point with the same bits is passed over.
    const auto same = [](const m03DPoint& a, const m03DPoint& b) {
        return std::memcmp(&a, &b, sizeof(m03DPoint)) == 0;
    };
    m03DPoint B;  // as in doubled(): (0, 0, 0) while the source has one column
    for (int j = 0; j < ys; j++) {
        if (xs >= 2)
            B = src.point(xs - 1, j);
        // The odd row 2j - 1 comes first, from the same source row.
        if (j > 0) {
            for (int i = 0; i < xs - 1; i++) {
                const m03DPoint A = src.point(i, j);
                const m03DPoint M = middle(A, src.point(i + 1, j));
                const m03DPoint a = middle(A, A), m = middle(M, M);
                put(a);
                if (!same(m, a))
                    put(m);
            }
            put(middle(B, B));
        }
        for (int i = 0; i < xs - 1; i++) {
            const m03DPoint A = src.point(i, j);
            const m03DPoint M = middle(A, src.point(i + 1, j));
            if (j > 0) {
                const m03DPoint a = middle(A, A), m = middle(M, M);
                if (!same(A, a) && !same(A, m))
                    put(A);
                if (!same(M, a) && !same(M, m) && !same(M, A))
                    put(M);
            } else {
                put(A);
                if (!same(M, A))
                    put(M);
            }
        }
        if (j == 0 || !same(B, middle(B, B)))
            put(B);
    }
}

void vmiBaseGrid::drop(m03DPoint* pts, const int& n)
{
    each_point_at_node(pts, n, empty_z, [this](int i, int j, double z) {
        // Negative indices are left to point(): the read sees the fallback and
        // the write is dropped.
        if (i < x_size_ && j < y_size_)
            set_z(i, j, point(i, j).z() + z);
    });
}

void vmiBaseGrid::drop(vmiBaseGrid& other)
{
    drop(other.points_array(), held_nodes(other));
}

// ---------------------------------------------------------------------------
// Trimming to the outline

void vmiBaseGrid::cut_boundary(vmiPolylineGridMap& map)
{
    const int y0 = std::max(std::min(map.y_min(), y_size_ - 1), 0);
    const int y1 = std::max(std::min(map.y_max(), y_size_ - 1), 0);
    fill_rect_y(0, y0, empty_z);
    for (int j = y0; j <= y1; j++) {
        int* c = map.get_y_intersections(j);
        if (c == nullptr || c[0] == 0)
            continue;
        // A row touched only once lies on the outline's rim: nothing of it stays.
        if (c[0] == 1)
            fill_row(j, empty_z);
        else
            fill_row(c, j, empty_z, 0.2);
    }
    fill_rect_y(y1 + 1, y_size_, empty_z);
}

void vmiBaseGrid::cut_boundary(m03DVector* outline)
{
    vmiPolylineGridMap map(this, outline);
    cut_boundary(map);
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

vmiBaseGrid* vmiBaseGrid::cut_boundary2(vmiPolylineGridMap& map)
{
    const int y0 = map.y_min();
    const int y1 = map.y_max();
    auto* g = new vmiBaseGrid(*this);
    g->fill_rect_y(0, y0, empty_z);
    for (int j = y0; j <= y1; j++) {
        int* c = map.get_y_intersections(j);
        if (c == nullptr)
            continue;
        if (c[0] >= 2)
            fill_row2(g, c, j);
        else if (c[0] == 1)
            g->fill_row(j, empty_z);
    }
    g->fill_rect_y(y1 + 1, y_size_, empty_z);
    // The columns go over what the rows wrote.
    for (int i = map.x_min(); i <= map.x_max(); i++) {
        int* c = map.get_x_intersections(i);
        if (c != nullptr && c[0] >= 2)
            fill_colm2(g, c, i);
    }
    return g;
}

// ---------------------------------------------------------------------------
// Closing the solid

bool vmiBaseGrid::close_row(const int* c, const int& j)
{
    // The surface of row j runs from its first valid node L to its last R.
    int a = std::max(c[1], solid_margin);
    int b = std::min(c[c[0]], x_size_ - 1);
    m03DPoint L, R;
    int found = b + 1;
    for (int i = a; i <= b; i++)
        if (point(i, j).z() > valid_z) {
            found = i;
            break;
        }
    a = found;
    if (a <= b) {
        L = point(a, j);
        for (int i = b; i >= a; i--)
            if (point(i, j).z() > valid_z) {
                b = i;
                break;
            }
        R = point(b, j);
    }
    bool all_high = true;
    for (int i = a; i <= b; i++)
        if (point(i, j).z() < high_z) {
            all_high = false;
            break;
        }
    if (a >= b)
        return false;
    const m03DPoint L_base(L.x(), L.y(), floor_z);
    const m03DPoint R_base(R.x(), R.y(), floor_z);
    if (L.z() > high_z) {
        point(0, j, L_base);
        point(1, j, L);
        if (R.z() <= high_z)
            return true;
        // The floor only under a row that stands wholly above it.
        if (all_high) {
            point(4, j, R_base);
            point(5, j, L_base);
        }
    }
    if (R.z() > high_z) {
        point(8, j, R);
        point(9, j, R_base);
    }
    return true;
}

void vmiBaseGrid::make_closed_solid(vmiPolylineGridMap& map)
{
    cut_boundary(map);
    int min_row = 10000;
    int max_row = -10000;
    for (int j = map.y_min(); j <= map.y_max(); j++) {
        const int* c = map.get_y_intersections(j);
        if (c == nullptr || c[0] <= 1)
            continue;
        if (!close_row(c, j))
            continue;
        max_row = std::max(max_row, j);
        min_row = std::min(min_row, j);
    }
    // End caps: the rows before the first and after the last closed row take
    // the right wall of that row as their left wall.
    m03DPoint A = point(8, min_row);
    m03DPoint B = point(9, min_row);
    if (A.z() > high_z) {
        point(0, min_row - 1, B);
        point(1, min_row - 1, A);
    }
    A = point(8, max_row);
    B = point(9, max_row);
    if (A.z() > high_z) {
        point(0, max_row + 1, B);
        point(1, max_row + 1, A);
    }
}

void vmiBaseGrid::make_closed_solid(m03DVector* outline)
{
    if (outline == nullptr)
        return;
    vmiPolylineGridMap map(this, outline);
    make_closed_solid(map);
}
