#pragma once
// vmiPolyline: hands a polyline record to the host as a NURBS curve of degree
// 1. It only points to the record; the translator keeps its own copy.
#include "host/qorabsAttributeSet.h"
#include "host/qorabsTranslator.h"
#include "host/rnxNurbCurve3.h"

class qorabsContext;
class vmiObjPoly;

class vmiPolyline {
public:
    explicit vmiPolyline(vmiObjPoly* record) : record_(record) {}
    vmiObjPoly* record() const { return record_; }

    // Stores in c a curve of order 2 through the points (weights 1.0, knots
    // 0, 0, 1/(n-1), ..., (n-2)/(n-1), 1, 1) and answers its validity check.
    // Without a record or points, c is left as it was and the answer is 0.
    int convert(rnxCurvePtr3& c) const;
    // CURVE, NAME, LAYER, and COLOUR when the record's colour is non-zero.
    void set_attributes(qorabsAttributeSet& set) const;
    // A new vmiPolylineTranslator; empty if it cannot be allocated.
    qorabsTranslatorcoPrf make_translator(const qorabsContext& context) const;

private:
    vmiObjPoly* record_;
};
