#pragma once
// vmiHPelotte: a pad ("HPelotte") raised on the insole grid. A closed outline
// round a centre point and a radial height profile that runs from the pad's
// height at the centre down to zero at the outline. The object is built with
// the section's arrays, applies itself once with build_HPelotte and is deleted.
#include <memory>

#include "curves/m03DPoint.h"

class m01DVector;
class m03DVector;
class m0BspCurve;
class vmiBaseGrid;
class vmiPolylineGridMap;

class vmiHPelotte {
public:
    // Takes ownership of the four arrays (each n values, allocated with new[],
    // any of them may be null). The grid is not owned.
    vmiHPelotte(vmiBaseGrid* grid, const int& n, double* xs, double* ys, double* xb, double* yb,
                double xm, double ym);
    ~vmiHPelotte();
    vmiHPelotte(const vmiHPelotte&) = delete;
    vmiHPelotte& operator=(const vmiHPelotte&) = delete;

    // Applies the pad of the given height: mode 0 adds (the only mode that
    // follows the radial profile), 2 keeps the larger, 3 the smaller, any
    // other replaces; then smooths inside the pad as `smooth` selects.
    void build_HPelotte(const int& mode, const double& height, const int& smooth);

private:
    friend struct vmiHPelotteProbe;  // the tests reach the private steps

    void init_curves();
    // The polar angle of every boundary-polyline point, rising once round.
    void init_angles();
    m0BspCurve* create_bsp_curve(m03DVector* pts, const int& order);
    double angle(m03DPoint p);
    m03DPoint get_point_on_bound(double angle);
    // The heights add the curve evaluations they make to *evaluations when
    // it is given.
    double height(const int& mode, const int& i, const int& j, long long* evaluations = nullptr);
    double height(m0BspCurve* profile, const double& s, long long* evaluations = nullptr);

    std::unique_ptr<m01DVector> angles_;
    int n_ = 0;
    std::unique_ptr<m0BspCurve> boundary_curve_;
    std::unique_ptr<m03DVector> boundary_polyline_;
    std::unique_ptr<vmiPolylineGridMap> grid_map_;
    vmiBaseGrid* grid_ = nullptr;
    std::unique_ptr<double[]> xs_;
    std::unique_ptr<double[]> ys_;
    std::unique_ptr<double[]> xb_;
    std::unique_ptr<double[]> yb_;
    double xm_ = 0.0;
    double ym_ = 0.0;
    double h_ = 0.0;
    double two_pi_ = 0.0;
    double start_angle_ = 0.0;
    m03DPoint centre_;
    m03DPoint axis_1_;
    m03DPoint axis_2_;
    std::unique_ptr<m0BspCurve> profile_;
};
