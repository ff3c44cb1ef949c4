#include "archive/vmiObjCloud.h"

#include "curves/m03DPoint.h"

vmiObjCloud::vmiObjCloud(utString name, m03DPoint* points, int* colours, const int& size)
    : points_(points), size_(size), colours_(colours)
{
    this->name(std::move(name));
}

vmiObjCloud::~vmiObjCloud()
{
    delete[] points_;
    delete[] colours_;
}

giBox3 vmiObjCloud::box() const
{
    return box_of(points_, size_);
}
