#pragma once
// vmiBaseGrid: the insole height grid. x_size x y_size nodes, spacings d_x and
// d_y, each node an m03DPoint holding its own world x, y and its height z,
// stored row by row (node (i, j) at j * x_size + i). A node is empty when its
// z is empty_z.
#include <cmath>

#include "curves/m03DPoint.h"
#include "host/giBox3.h"

class m03DVector;
class m0BspCurve;
class vmiPolylineGridMap;
class vmiWorkBudget;

class vmiBaseGrid {
public:
    // A node is empty when its z is empty_z: constructors and clearing steps
    // write exactly this value, and some tests take a node only above it.
    static constexpr double empty_z = -10000.0;
    // Other tests count a node as valid only when its z lies above valid_z, so
    // that an empty node lowered or raised a little still counts as empty. Both
    // thresholds are used as each operation says, not unified.
    static constexpr double valid_z = -1000.0;

    // The most nodes one grid may hold (48 MB of nodes; 2048 x 1024, or a
    // foot's 320 x 160 mm at 0.2 mm). A scan or an insole grid holds well under
    // a million (the default working grid is 440 x 760); a record or a text
    // that asks for more (or whose x_size * y_size overflows) yields no grid
    // instead of an unbounded allocation. At this size a whole import with its
    // triangle block stays within a second and a few hundred megabytes.
    static constexpr long long max_nodes = 1LL << 21;
    // True when both sizes lie in 0 ... max_nodes and x_size * y_size nodes stay
    // within max_nodes. Each size is bounded on its own as well, so that a grid of
    // 0 x 2^31 cannot make the row and column loops run for nothing.
    static bool size_allowed(long long x_size, long long y_size)
    {
        return x_size >= 0 && y_size >= 0 && x_size <= max_nodes && y_size <= max_nodes &&
               (x_size == 0 || y_size <= max_nodes / x_size);
    }
    // intf maps any value beyond +-intf_bound (and NaN, to -intf_bound) onto the
    // bound: far outside every grid, yet an index + 1 or 2 * index cannot overflow.
    static constexpr int intf_bound = 1 << 29;
    // One smoothing pass may read at most this many nodes (nodes x neighbourhood);
    // a radius that would read more leaves the grid as it is instead of hanging.
    static constexpr long long max_smoothing_reads = 1LL << 30;

    vmiBaseGrid(vmiBaseGrid& other);

    // The budget the grid's heavy passes are charged to (smoothing); null, the
    // default, charges nothing. A copy starts without one. The grid does not
    // own it.
    void set_budget(vmiWorkBudget* budget) { budget_ = budget; }
    vmiWorkBudget* budget() const { return budget_; }
    // Charges n units to the budget; false once it is spent (true without one).
    bool charge(long long n);
    // A size outside size_allowed (negative, or too many nodes) makes an empty grid:
    // no array, x_size = y_size = 0, spacings kept. So does an allocation failure.
    vmiBaseGrid(const int& x_size, const int& y_size, const double& d_x, const double& d_y);
    // Adopts points (allocated with new m03DPoint[x_size * y_size]) without a copy.
    // A null array or sizes outside size_allowed leave the grid empty (sizes 0);
    // a non-null array is still owned and freed.
    vmiBaseGrid(m03DPoint* points, const int& x_size, const int& y_size, const double& d_x,
                const double& d_y);
    // Adopts storage from vmiGridMemory::take (held nodes, every one of the
    // x_size * y_size written); sizes outside size_allowed or beyond held
    // leave the grid empty, the storage let go.
    vmiBaseGrid(m03DPoint* points, long long held, const int& x_size, const int& y_size, const double& d_x,
                const double& d_y);
    ~vmiBaseGrid();
    vmiBaseGrid& operator=(const vmiBaseGrid&) = delete;

    int& x_size() { return x_size_; }
    int& y_size() { return y_size_; }
    double& d_x() { return d_x_; }
    double& d_y() { return d_y_; }
    m03DPoint* points_array() { return points_; }

    // Node (i, j); outside the grid, the fallback point (0, 0, empty_z).
    m03DPoint& point(const int& i, const int& j);
    // Copies p into node (i, j); does nothing outside the grid.
    void point(const int& i, const int& j, const m03DPoint& p);

    // A world coordinate divided by the spacing, rounded to a node index.
    static int intf(double v);
    giBox3 box();

    void height_limit(const double& h);
    void offset(const double& dx, const double& dy);
    void merge(m03DPoint* pts, const int& n);
    void merge(vmiBaseGrid& other);
    void merge1(m03DPoint* pts, const int& n);

    // Whole-grid operations (grid operations of the contour sections).
    void do_smoothing(const int& r);
    void do_smoothing(const int& r, vmiPolylineGridMap& map);
    void do_HAbzug(const double& d);
    vmiBaseGrid* doubled(vmiBaseGrid& src);
    vmiBaseGrid* doubled();
    // Merges doubled(src), every node shifted by (dx, dy), without making the
    // refined grid: the same nodes in the same order as doubled(src) followed
    // by offset(dx, dy) and merge would give.
    void merge_doubled(vmiBaseGrid& src, const double& dx, const double& dy);
    void drop(m03DPoint* pts, const int& n);
    void drop(vmiBaseGrid& other);
    void cut_boundary(vmiPolylineGridMap& map);
    void cut_boundary(m03DVector* outline);
    vmiBaseGrid* cut_boundary2(vmiPolylineGridMap& map);
    void make_closed_solid(vmiPolylineGridMap& map);
    void make_closed_solid(m03DVector* outline);

    // A flat pad: inside the outline every node changes by z (mode 3 keeps the
    // smaller, 1 replaces, any other adds), then the pad is smoothed.
    void build_pelotte(m03DVector* outline, const double& z, const int& mode, const int& smooth);
    // Spring over a band: z1 on one side of the line's crossings of each
    // column, z2 on the other, linear in between.
    void proc_HSpreng(m03DVector* line, const double& z1, const double& z2);
    // Spring along the length: every row rises by the curve's y at j / y_size.
    void proc_HSprenglinie(m0BspCurve* curve);
    // Foot-model bead: each column crossed once by the line is shifted below
    // the crossing and set flat from it on.
    void build_HFFootMod(m03DVector* line, const double& minz, const double& height);

    // Mean height of the valid nodes around (i, j), half-width r - 1.
    double everage_height(const int& i, const int& j, const int& r);
    double everage_height(vmiPolylineGridMap& map, const int& i, const int& j, const int& r);

    // Row and column primitives (crossing list: [n, c1, ..., cn]).
    void fill_row(const int& j, const double& z);
    void fill_rect_x(int a, int b, const double& z);
    void fill_rect_y(int a, int b, const double& z);
    void fill_row(int& inside, const int& j, int a, int b, const double& z_out, const double& z_in);
    void fill_row(int* crossings, const int& j, const double& z_out, const double& z_in);
    void fill_row1(int* crossings, const int& j, const double& z, const int& mode);
    void fill_row2(vmiBaseGrid* dst, int* crossings, int j);
    void fill_colm2(vmiBaseGrid* dst, int* crossings, int i);

    void set_z(const int& i, const int& j, const double& z);
    void set_z_if_empty(const int& i, const int& j, const double& z);
    void set_z_if_less(const int& i, const int& j, const double& z);
    m03DPoint middle(const m03DPoint& a, const m03DPoint& b);
    void get_x_min_max(m03DVector* poly, int& min, int& max);
    void get_y_min_max(m03DVector* poly, int& min, int& max);

private:
    // fill_row2 along a row (along_x) or fill_colm2 along a column: one routine.
    void fill_line2(vmiBaseGrid* dst, int* crossings, int fixed, bool along_x);
    // Node k of the row (along_x) or column through `fixed`.
    m03DPoint& line_node(int k, int fixed, bool along_x);
    // Writes z into dst's node k of that line, with x and y of this grid's node.
    void put_line_z(vmiBaseGrid* dst, int k, int fixed, bool along_x, const double& z);
    // Writes the wall and floor points of row j (crossings c) for make_closed_solid;
    // false when the row has no surface stretch and does not count.
    bool close_row(const int* c, const int& j);
    // Calls at(i, j, z) for each of the n points whose z lies above `above`,
    // with (i, j) the node the point rounds to. The grid's origin is taken as
    // (0, 0) whatever x and y its nodes hold: merge, merge1 and drop place a
    // point by x / d_x and y / d_y alone.
    template <class At>
    void each_point_at_node(const m03DPoint* pts, int n, double above, At at)
    {
        if (pts == nullptr || n < 1)
            return;
        for (int k = 0; k < n; k++) {
            const m03DPoint& p = pts[k];
            if (!(p.z() > above))
                continue;
            at(intf(p.x() / d_x_), intf(p.y() / d_y_), p.z());
        }
    }
    // The nodes of other that its array really holds, whatever its sizes say.
    static int held_nodes(const vmiBaseGrid& other);
    // everage_height's one loop: the mean over the valid nodes around (i, j)
    // that inside(a, b) admits.
    template <class Inside>
    double mean_height(int i, int j, int r, Inside inside);
    // A smoothing pass's view of the heights it reads (see do_smoothing).
    struct SmoothingHeights;
    template <class Inside>
    bool smoothing_heights(SmoothingHeights& h, Inside inside);
    double smoothed_height(const SmoothingHeights& h, int i, int j, int r) const;
    // Sets every node that each(at) names (at(i, j) for each one, in any
    // order) to its smoothed height, four nodes whose windows have the same
    // shape at a time.
    class SmoothingBatch;
    template <class Each>
    void set_smoothed(const SmoothingHeights& h, int r, Each each);
    // Clamps a loop bound into 0 ... limit, computed wide so that b + 1 cannot overflow.
    static int clamp_index(long long v, int limit);
    // Releases the array and leaves a 0 x 0 grid.
    bool allocate();
    void make_empty();

    m03DPoint* points_ = nullptr;
    m03DPoint fallback_{0.0, 0.0, empty_z};
    int x_size_ = 0;
    int y_size_ = 0;
    double d_x_ = 0.0;
    double d_y_ = 0.0;
    // Nodes the array really holds. x_size() and y_size() hand out references that
    // callers may assign through; every access stays within this count whatever
    // they write there.
    long long capacity_ = 0;
    // Nodes of the array as it was had from vmiGridMemory, which may be more
    // than capacity_; 0 for an array the grid adopted.
    long long held_ = 0;
    vmiWorkBudget* budget_ = nullptr;
};

// The node accessors are defined here so that the grid loops of every layer
// inline them: they run for every node of every pass over a grid.
inline m03DPoint& vmiBaseGrid::point(const int& i, const int& j)
{
    if (i < 0 || i >= x_size_ || j < 0 || j >= y_size_)
        return fallback_;
    const long long k = static_cast<long long>(j) * x_size_ + i;
    if (points_ == nullptr || k >= capacity_)
        return fallback_;
    return points_[k];
}

inline m03DPoint vmiBaseGrid::middle(const m03DPoint& a, const m03DPoint& /*b*/)
{
    // Both halves are taken from a, so the "middle" is a itself; the doubled
    // grid relies on that, kept as designed.
    return m03DPoint(a.x() * 0.5 + a.x() * 0.5, a.y() * 0.5 + a.y() * 0.5, a.z() * 0.5 + a.z() * 0.5);
}

inline int vmiBaseGrid::intf(double v)
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

inline void vmiBaseGrid::point(const int& i, const int& j, const m03DPoint& p)
{
    if (i < 0 || i >= x_size_ || j < 0 || j >= y_size_)
        return;
    const long long k = static_cast<long long>(j) * x_size_ + i;
    if (points_ == nullptr || k >= capacity_)
        return;
    points_[k] = p;
}

inline void vmiBaseGrid::set_z(const int& i, const int& j, const double& z)
{
    m03DPoint p = point(i, j);
    p.set_z(z);
    point(i, j, p);
}
