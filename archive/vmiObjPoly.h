#pragma once
// vmiObjPoly: a polyline handed to the host as a curve. The record owns its
// point vector.
#include "archive/vmiObjAttr.h"

class m03DVector;

class vmiObjPoly : public vmiObjAttr {
public:
    // Takes ownership of points (may be null).
    vmiObjPoly(utString name, m03DVector* points);
    ~vmiObjPoly();
    vmiObjPoly(const vmiObjPoly&) = delete;
    vmiObjPoly& operator=(const vmiObjPoly&) = delete;

    m03DVector* points_array() { return points_; }
    // Bounding box of the points; invalid when there are none.
    giBox3 box() const;

private:
    m03DVector* points_ = nullptr;
};
