#pragma once
// m03SplineCurve: a C2 cubic spline through a list of 3-D points. Each point's
// parameter is its normalised accumulated chord length; the first derivatives
// (tangents) at the points are chosen so that the second derivative is
// continuous. A list whose last point meets its first is a closed loop with
// periodic tangents; an open list takes its end tangents from its end chords.
// Each segment is a cubic Hermite piece; the spline converts itself exactly
// into a cubic piecewise-Bezier m0BspCurve and into the host's NURBS curve.
//
// Degenerate input is absorbed, never indexed past:
// - No points evaluate to (0, 0, 0); a single point evaluates to itself. Neither
//   has tangents or a B-spline form.
// - A closed list of fewer than four points (three distinct ones and the
//   closing one) has no tangents: it evaluates as its polyline and converts to
//   no B-spline (null).
// - A zero diagonal left by either tangent solver gives that tangent (0, 0, 0).
// - Coincident neighbours make a parameter step of 0 (all points coincident: a
//   zero total chord), which the formulas divide by unguarded; callers remove
//   such points first. The results are then NaN or infinite, never out of bounds.
// - Parameters and points of different sizes (given to the second constructor)
//   give no tangents and evaluate to (0, 0, 0).
#include <memory>

#include "curves/m01DVector.h"
#include "curves/m03DPoint.h"
#include "curves/m03DVector.h"

class m0BspCurve;
class rnxNurbCurve3;

class m03SplineCurve {
public:
    // More segments than this give no B-spline form (bsp_curve, approximate and
    // rnxNurbCurve return null): the form has three control points per segment,
    // so the bound keeps it, and the host curve made from it, to about three
    // million points and all its counts far from int overflow.
    static constexpr int max_bsp_segments = 1 << 20;

    // All three vectors absent.
    m03SplineCurve();
    // Takes ownership of pts; builds chord-length parameters and tangents (open
    // or closed rule). A null pts leaves everything absent.
    explicit m03SplineCurve(m03DVector* pts);
    // Takes ownership of pts and params; tangents from the open rule with the
    // given end tangents.
    m03SplineCurve(m03DVector* pts, m01DVector* params, m03DPoint t_start, m03DPoint t_end);
    ~m03SplineCurve();
    m03SplineCurve(const m03SplineCurve&) = delete;
    m03SplineCurve& operator=(const m03SplineCurve&) = delete;

    m01DVector* params_vector() { return params_.get(); }
    m03DVector* points_vector() { return points_.get(); }
    // Null when the spline has no tangents (it then evaluates as the polyline).
    m03DVector* tangents_vector() { return tangents_.get(); }

    // Point at the fraction t of the parameter range (0 start, 1 end).
    m03DPoint point(double t);
    // Point at the parameter value u itself.
    m03DPoint point0(double u);
    // Point on segment s at local parameter tau (0 <= tau <= segment length).
    // A segment that does not exist gives (0, 0, 0).
    m03DPoint point(const int& s, const double& tau);

    // New curve owned by the caller: the exact cubic B-spline form; null when
    // points, tangents or params are missing or inconsistent.
    m0BspCurve* bsp_curve();
    // New polyline owned by the caller, within tol of the spline; null when
    // bsp_curve() is null.
    m03DVector* approximate(const double& tol);
    // New host curve owned by the caller, built from bsp_curve(); null when
    // bsp_curve() is null.
    rnxNurbCurve3* rnxNurbCurve();

    // Reverses the direction in place: points, tangents (negated) and params
    // (u becomes ulast - u).
    void reverse();

private:
    // The Hermite cubic from p0 (tangent t0) to p1 (tangent t1) over length h.
    m03DPoint point(m03DPoint& p0, m03DPoint& p1, m03DPoint& t0, m03DPoint& t1, const double& h,
                    const double& tau);
    m01DVector* build_params(m03DVector* pts);
    m03DVector* build_tangents(const m03DPoint& t_start, const m03DPoint& t_end, m03DVector* pts,
                               m01DVector* params);
    m03DVector* build_tangents(m03DVector* pts, m01DVector* params);
    void reparam_knot(m01DVector* knots, const double& a, const double& b);

    // Number of points the spline can evaluate: points and params present with
    // storage and of equal size (tangents, when present, too); else 0.
    int count() const;
    int find_segment(const double& u) const;

    std::unique_ptr<m03DVector> points_;
    std::unique_ptr<m03DVector> tangents_;
    std::unique_ptr<m01DVector> params_;
};
