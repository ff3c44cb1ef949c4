#pragma once
// vmiPolylineGridMap: the scan-line map of a closed polyline over the node
// lattice of a height grid. For every grid column it records the rows where the
// outline crosses it, for every grid row the columns. A crossing list is an int
// array [c, v1, ..., vc] with the indices ascending and without duplicates; the
// intervals between consecutive entries alternate inside and outside, starting
// inside. The map is built completely by its constructor and keeps neither the
// polyline nor the grid.
#include "curves/m03DPoint.h"

#include <memory>
#include <utility>
#include <vector>

class m03DVector;
class vmiBaseGrid;

class vmiPolylineGridMap {
public:
    // The most crossing entries one outline may produce (the sum over its
    // segments of the columns and rows each one steps through). A real outline
    // gives a few thousand; one that would give more is taken as no outline: the
    // map then holds no crossing and reports the start extremes, and nothing
    // beyond this bound is ever allocated.
    static constexpr long long max_map_steps = 1LL << 21;

    // Takes the sizes and spacings from grid and maps outline (not owned, not
    // kept). The outline closes itself by repeating its first point at the end;
    // no closing segment is added. A null grid, a null outline or one of fewer
    // than two points gives an empty map.
    vmiPolylineGridMap(vmiBaseGrid* grid, m03DVector* outline);
    ~vmiPolylineGridMap();
    vmiPolylineGridMap(const vmiPolylineGridMap&) = delete;
    vmiPolylineGridMap& operator=(const vmiPolylineGridMap&) = delete;

    // Crossing list of column i (row indices) / row j (column indices); null
    // when the index lies outside the grid or nothing crosses there. The list
    // belongs to the map.
    int* get_x_intersections(const int& i);
    int* get_y_intersections(const int& j);
    // 1 when column i lies inside the outline on row j, both ends of an inside
    // interval included; a row outside the grid is outside.
    int is_inside_the_cros_map(const int& i, const int& j);

    // Extremes of the projected outline's indices; 100000 / -100000 when no
    // point was projected.
    int x_min() const { return x_min_; }
    int x_max() const { return x_max_; }
    int y_min() const { return y_min_; }
    int y_max() const { return y_max_; }

private:
    friend struct vmiPolylineGridMapProbe;  // the tests reach the private members

    m03DPoint project(m03DPoint& p);
    std::unique_ptr<m03DVector> project(m03DVector* outline);
    void build_intersection_map(m03DVector* lattice);
    // Columns and rows one segment steps through, as entered into the map.
    static long long segment_steps(const m03DPoint& a, const m03DPoint& b);
    void add_segment(const m03DPoint& a, const m03DPoint& b);
    // Sorts the collected (index, value) pairs into the crossing lists of table.
    void add(std::vector<std::pair<int, int>>& pairs, std::vector<int>& table);
    void add_in_x(const int& i, const int& v);
    void add_in_y(const int& j, const int& v);
    void check_x_min_max(const int& i);
    void check_y_min_max(const int& j);
    void check_y_collisions();
    int check_in_x(const int& i, const int& j);
    int check_in_y(const int& j, const int& i);
    static int intf(double v);
    static int is_on_one_line(const m03DPoint& a, const m03DPoint& b, const m03DPoint& c);
    static int pix_dist(const int& e, const int* list);
    void reset_extremes();

    // All crossing lists, one after another; column_at_[i] and row_at_[j] are
    // the offsets of a list in it, -1 where there is none.
    std::vector<int> lists_;
    std::vector<int> column_at_;
    std::vector<int> row_at_;
    // Crossings collected while the map is built.
    std::vector<std::pair<int, int>> column_pairs_;
    std::vector<std::pair<int, int>> row_pairs_;
    int xsize_ = 0;
    int ysize_ = 0;
    int x_min_ = 100000;
    int x_max_ = -100000;
    int y_min_ = 100000;
    int y_max_ = -100000;
    double d_x_ = 0.0;
    double d_y_ = 0.0;
};
