#pragma once
// vmiObjSpline: an outline handed to the host as a curve. It keeps the
// interpolating spline through the given points and the spline's polyline
// approximation (tolerance 0.5); it owns both.
#include "archive/vmiObjAttr.h"
#include "host/rnxNurbCurve3.h"

class m03DVector;
class m03SplineCurve;

class vmiObjSpline : public vmiObjAttr {
public:
    // The tolerance of the approximation kept with the spline.
    static constexpr double approximation_tolerance = 0.5;

    // With at least one point, builds the spline through points (which passes
    // into the spline) and approximates it; otherwise spline and approximation
    // stay null and points is released.
    vmiObjSpline(utString name, m03DVector* points);
    ~vmiObjSpline();
    vmiObjSpline(const vmiObjSpline&) = delete;
    vmiObjSpline& operator=(const vmiObjSpline&) = delete;

    m03SplineCurve* spline() { return spline_; }
    // The approximation points (the only point vector the record keeps).
    m03DVector* approximation() { return approximation_; }
    // Fills c with the spline's NURBS form; leaves c untouched without a
    // spline (or when the spline has no such form).
    void nurb(rnxCurvePtr3& c);
    // Bounding box of the approximation points; invalid when there are none.
    giBox3 box() const;

private:
    m03SplineCurve* spline_ = nullptr;
    m03DVector* approximation_ = nullptr;
};
