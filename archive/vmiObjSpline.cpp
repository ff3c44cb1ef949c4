#include "archive/vmiObjSpline.h"

#include <new>

#include "curves/m03DVector.h"
#include "curves/m03SplineCurve.h"

vmiObjSpline::vmiObjSpline(utString name, m03DVector* points)
{
    this->name(std::move(name));
    if (!points || points->size() < 1) {
        delete points;
        return;
    }
    spline_ = new (std::nothrow) m03SplineCurve(points);
    if (!spline_) {
        delete points;
        return;
    }
    approximation_ = spline_->approximate(approximation_tolerance);
}

vmiObjSpline::~vmiObjSpline()
{
    delete approximation_;
    delete spline_;
}

giBox3 vmiObjSpline::box() const
{
    if (!approximation_)
        return giBox3();
    return box_of(approximation_->get_point_array(), approximation_->size());
}

void vmiObjSpline::nurb(rnxCurvePtr3& c)
{
    if (!spline_)
        return;
    rnxNurbCurve3* curve = spline_->rnxNurbCurve();
    if (curve)
        c.reset(curve);
}
