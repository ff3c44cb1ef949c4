#pragma once
// vmiHPunkt: a point modification ("HPunkt"). An ellipse round a point, turned
// by an angle, whose nodes take the height of a profile at their elliptical
// distance from the point.
#include <memory>

#include "curves/m03DPoint.h"

class m0BspCurve;
class vmiBaseGrid;
class vmiPolylineGridMap;

class vmiHPunkt {
public:
    // Takes ownership of the four profile arrays (five values each, allocated
    // with new[]), and frees each of them exactly once. The grid is not owned.
    // Without all four arrays the point changes nothing.
    vmiHPunkt(vmiBaseGrid* grid, const double& alpha, const double& x, const double& y,
              double* xm1, double* ym1, double* xm2, double* ym2);
    ~vmiHPunkt();
    vmiHPunkt(const vmiHPunkt&) = delete;
    vmiHPunkt& operator=(const vmiHPunkt&) = delete;

    // Mode 1 keeps the larger height, 0 adds, any other replaces.
    void build_HPunkt(const int& mode);
    m0BspCurve* bound_curve() { return bound_curve_.get(); }

private:
    friend struct vmiHPunktProbe;  // the tests reach the private steps

    void init_curves(const double& alpha, const double& x, const double& y);
    // The heights add the curve evaluations they make to *evaluations when
    // it is given.
    double height(const int& i, const int& j, long long* evaluations = nullptr);
    double height(m0BspCurve* profile, const double& d, long long* evaluations = nullptr);
    double x_y_dist(m0BspCurve* curve, const double& t);

    std::unique_ptr<m0BspCurve> bound_curve_;
    std::unique_ptr<vmiPolylineGridMap> grid_map_;
    vmiBaseGrid* grid_ = nullptr;
    std::unique_ptr<m0BspCurve> profile_1_;
    std::unique_ptr<m0BspCurve> profile_2_;
    m03DPoint axis_1_;
    m03DPoint axis_2_;
    m03DPoint centre_;
    double r1_ = 0.0;
    double r2_ = 0.0;
    std::unique_ptr<double[]> xm1_;
    std::unique_ptr<double[]> ym1_;
    std::unique_ptr<double[]> xm2_;
    std::unique_ptr<double[]> ym2_;
    double two_pi_ = 0.0;
};
