#include "archive/vmiObjPoly.h"

#include "curves/m03DVector.h"

vmiObjPoly::vmiObjPoly(utString name, m03DVector* points) : points_(points)
{
    this->name(std::move(name));
}

vmiObjPoly::~vmiObjPoly()
{
    delete points_;
}

giBox3 vmiObjPoly::box() const
{
    if (!points_)
        return giBox3();
    return box_of(points_->get_point_array(), points_->size());
}
