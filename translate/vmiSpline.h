#pragma once
// vmiSpline: hands a spline record (an outline) to the host as the NURBS form
// of its interpolating spline. It only points to the record; the translator
// keeps its own copy.
#include "host/qorabsAttributeSet.h"
#include "host/qorabsTranslator.h"
#include "host/rnxNurbCurve3.h"

class qorabsContext;
class vmiObjSpline;

class vmiSpline {
public:
    explicit vmiSpline(vmiObjSpline* record) : record_(record) {}
    vmiObjSpline* record() const { return record_; }

    // Fills c with the record's NURBS form and answers its validity check; 0
    // (c as it was) without a record or a spline.
    int convert(rnxCurvePtr3& c) const;
    // CURVE, NAME, LAYER, and COLOUR when the record's colour is non-zero.
    void set_attributes(qorabsAttributeSet& set) const;
    // A new vmiSplineTranslator; empty if it cannot be allocated.
    qorabsTranslatorcoPrf make_translator(const qorabsContext& context) const;

private:
    vmiObjSpline* record_;
};
