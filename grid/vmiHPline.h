#pragma once
// vmiHPline: a line modification ("HPlinie"). A centre line through n stations
// and, at every station, a cross-section profile of height over the distance
// from the line; the nodes inside the outline round the line take the
// cross-section interpolated between the two nearest stations.
#include <memory>
#include <vector>

#include "curves/m03DPoint.h"
#include "curves/m03SplineCurve.h"

class m01DVector;
class m03DVector;
class m0BspCurve;
class m0HalvingPoints;
class vmiBaseGrid;
class vmiPolylineGridMap;

class vmiHPline {
public:
    // The most stations a line may have. Its outline has 2n + 3 points, and
    // the spline through them gives a B-spline form of at most
    // m03SplineCurve::max_bsp_segments segments; a line with more stations
    // could have no outline, so it is not built at all (nothing is allocated
    // for it and the grid stays as it is).
    static constexpr int max_stations = m03SplineCurve::max_bsp_segments / 2 - 1;
    // Every node inside the outline is projected onto the centre line by
    // halving its parameter range, some twenty levels deep; the points of
    // the first levels, which the nodes share, are kept: 2^14 - 1 points,
    // 512 KiB at most, touched as they are met.
    static constexpr int projection_kept_levels = 14;
    // The cross-sections of the first this many stations keep the points of
    // their searches (32 KiB each, taken when first searched); those of a
    // longer line's further stations are computed at every node. A line
    // seldom has more than a dozen stations.
    static constexpr int max_kept_profiles = 64;

    // x, y: n station positions; px, pz: five values per station (distance
    // from the line and height of the profile's control points). The arrays
    // stay the caller's; the object copies what it needs. A missing array or
    // fewer than two stations make a line that changes nothing.
    vmiHPline(vmiBaseGrid* grid, const int& n, double* x, double* y, double* px, double* pz);
    ~vmiHPline();
    vmiHPline(const vmiHPline&) = delete;
    vmiHPline& operator=(const vmiHPline&) = delete;

    // Mode 1 keeps the larger height, 0 adds, any other replaces.
    void build_HPlinie(const int& mode);
    m0BspCurve* bound_curve() { return bound_curve_.get(); }
    m0BspCurve* main_curve() { return main_curve_.get(); }

private:
    friend struct vmiHPlineProbe;  // the tests reach the private steps

    void init_curves(const int& n, double* x, double* y, double* px, double* pz);
    m0BspCurve* create_bsp_curve(m03DVector* pts, const int& order);
    int get_param_interval(const double& t);
    // The heights add the curve evaluations they make to *evaluations when
    // it is given.
    double height(const int& i, const int& j, long long* evaluations = nullptr);
    double height(m0BspCurve* profile, const double& s, long long* evaluations = nullptr);
    // Station k's cross-section at s, with its kept points.
    double station_height(int k, const double& s, long long* evaluations = nullptr);
    // The x of station k's cross-section at its end: how far it reaches.
    double profile_width(int k);

    std::unique_ptr<m0BspCurve> main_curve_;
    std::unique_ptr<m01DVector> params_;
    int n_ = 0;
    std::unique_ptr<std::unique_ptr<m0BspCurve>[]> profiles_;
    std::unique_ptr<m0BspCurve> bound_curve_;
    std::unique_ptr<vmiPolylineGridMap> grid_map_;
    // Points kept for the searches over the centre line and the profiles
    // (null for a profile past max_kept_profiles).
    std::unique_ptr<m0HalvingPoints> main_kept_;
    std::vector<std::unique_ptr<m0HalvingPoints>> profile_kept_;
    vmiBaseGrid* grid_ = nullptr;
};
