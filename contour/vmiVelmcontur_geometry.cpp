// Contour geometry: the coordinate arrays of the sections become points,
// polylines and piecewise Bezier curves; placement matrices are built from
// placement parameters and applied; and the small crossing and extent
// questions of the height sections are answered here.
#include "contour/vmiVelmcontur.h"

#include <cmath>
#include <new>

#include "curves/m03DVector.h"
#include "curves/m0BspCurve.h"
#include "grid/vmiBaseGrid.h"

namespace {

// Matrix entries: a 3 x 4 matrix in row order, translation in the last column.
constexpr int matrix_size = 12;

// The start values of the extreme crossings and of the row range; callers
// recognise them as "nothing found".
constexpr double no_crossing = 1e10;
constexpr int no_row = 100000;

}  // namespace

m03DVector* vmiVelmcontur::create_polyline0(double* x, double* y, double* z, const int& n)
{
    if (n < 1 || !x || !y)
        return nullptr;
    m03DVector* v = new (std::nothrow) m03DVector(n);
    if (!v)
        return nullptr;
    if (v->size() != n || !v->get_point_array()) {
        delete v;
        return nullptr;
    }
    for (int i = 0; i < n; ++i)
        v->set_point(i, m03DPoint(x[i], y[i], z ? z[i] : 0.0));
    return v;
}

m03DPoint* vmiVelmcontur::create_polyline(double* x, double* y, double* z, const int& n)
{
    if (n < 1 || !x || !y)
        return nullptr;
    m03DPoint* pts = new (std::nothrow) m03DPoint[n];
    if (!pts)
        return nullptr;
    for (int i = 0; i < n; ++i) {
        pts[i] = m03DPoint(0.0, 0.0, 0.0);
        pts[i] = m03DPoint(x[i], y[i], z ? z[i] : 0.0);
    }
    return pts;
}

// A chain of Bezier pieces of degree order - 1 over the control points,
// which pass into the curve. When no curve is made they stay the caller's.
m0BspCurve* vmiVelmcontur::create_bsp_curve(m03DVector* points, const int& order)
{
    if (!points || points->size() < 1 || order < 2 || order > m0BspCurve::max_order)
        return nullptr;
    return new (std::nothrow) m0BspCurve(points, order);
}

double* vmiVelmcontur::create_transform(double* params)
{
    if (!params)
        return nullptr;
    double* m = new (std::nothrow) double[matrix_size];
    if (!m)
        return nullptr;
    const double half_pi = std::acos(0.0);
    // Degrees to radians as the placement has always done it; the quarter
    // turn is added to the angle, not folded into -sin and cos.
    const double a = params[2] * half_pi / 90.0;
    m[0] = std::cos(a) * params[6] * params[9];
    m[1] = std::cos(a + half_pi) * params[7] * params[10];
    m[2] = 0.0;
    m[3] = params[3];
    m[4] = std::sin(a) * params[6] * params[9];
    m[5] = std::sin(a + half_pi) * params[7] * params[10];
    m[6] = 0.0;
    m[7] = params[4];
    m[8] = 0.0;
    m[9] = 0.0;
    m[10] = params[8];
    m[11] = params[5];
    return m;
}

m03DPoint vmiVelmcontur::transform0(m03DPoint p, double* m)
{
    if (!m)
        return p;
    const double x = p.x(), y = p.y(), z = p.z();
    return m03DPoint(x * m[0] + y * m[1] + z * m[2] + m[3], x * m[4] + y * m[5] + z * m[6] + m[7],
                     x * m[8] + y * m[9] + z * m[10] + m[11]);
}

void vmiVelmcontur::transform0(m03DPoint* pts, const int& n, double* m)
{
    if (!m || !pts)
        return;
    for (int i = 0; i < n; ++i)
        pts[i] = transform0(pts[i], m);
}

void vmiVelmcontur::transform0(m03DVector* v, double* m)
{
    if (!m || !v)
        return;
    transform0(v->get_point_array(), v->size(), m);
}

// The linear part applied transposed with the translation as it stands: an
// inverse turn without the inverse shift, which is what this member does.
m03DPoint vmiVelmcontur::transform(m03DPoint p, double* m)
{
    if (!m)
        return p;
    const double x = p.x(), y = p.y(), z = p.z();
    return m03DPoint(x * m[0] + y * m[4] + z * m[8] + m[3], x * m[1] + y * m[5] + z * m[9] + m[7],
                     x * m[2] + y * m[6] + z * m[10] + m[11]);
}

void vmiVelmcontur::transform(m03DPoint* pts, const int& n, double* m)
{
    if (!m || !pts)
        return;
    for (int i = 0; i < n; ++i)
        pts[i] = transform(pts[i], m);
}

void vmiVelmcontur::transform(m03DVector* v, double* m)
{
    if (!m || !v)
        return;
    transform(v->get_point_array(), v->size(), m);
}

// Parallel lines divide by zero; the infinite or undefined parameter fails
// every caller's range test.
double vmiVelmcontur::lines_intersect(m03DPoint p1, m03DPoint p2, m03DPoint q1, m03DPoint q2,
                                      m03DPoint& r)
{
    m03DPoint d1 = p2 - p1;
    m03DPoint d2 = q2 - q1;
    double t = (d1.y() * (p1.x() - q1.x()) - d1.x() * (p1.y() - q1.y()))
        / (d2.x() * d1.y() - d2.y() * d1.x());
    r = q1 + d2 * t;
    return t;
}

void vmiVelmcontur::get_min_max_x_intersect(m03DPoint a, m03DPoint b, m03DVector* poly,
                                            m03DPoint& min_point, m03DPoint& max_point)
{
    min_point = m03DPoint(no_crossing, 0.0, 0.0);
    max_point = m03DPoint(-no_crossing, 0.0, 0.0);
    if (!poly)
        return;
    for (int i = 0; i + 1 < poly->size(); ++i) {
        m03DPoint r;
        double t = lines_intersect(a, b, poly->point(i), poly->point(i + 1), r);
        if (!(t >= 0.0 && t <= 1.0))
            continue;
        // On equal x the earlier crossing stays.
        if (r.x() < min_point.x())
            min_point = r;
        if (r.x() > max_point.x())
            max_point = r;
    }
}

void vmiVelmcontur::get_y_min_max(vmiBaseGrid* grid, m03DVector* poly, int& ymin, int& ymax)
{
    ymin = ymax = 0;
    if (!grid || !poly)
        return;
    ymin = no_row;
    ymax = -no_row;
    for (int i = 0; i < poly->size(); ++i) {
        double q = poly->point(i).y() / grid->d_y();
        // A row beyond any int (or not a number) cannot be a grid row; it is
        // held at the start values' reach.
        int j = q >= no_row ? no_row
            : q <= -no_row  ? -no_row
            : std::isnan(q) ? 0
                            : static_cast<int>(q);
        if (j < ymin)
            ymin = j;
        if (j > ymax)
            ymax = j;
    }
}

// An empty polyline divides by zero; callers never pass one.
m03DPoint vmiVelmcontur::middle(m03DVector* poly)
{
    double sx = 0.0, sy = 0.0, sz = 0.0;
    const int n = poly ? poly->size() : 0;
    for (int i = 0; i < n; ++i) {
        sx += poly->point(i).x();
        sy += poly->point(i).y();
        sz += poly->point(i).z();
    }
    return m03DPoint(sx / n, sy / n, sz / n);
}
