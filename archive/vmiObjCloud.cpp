#include "archive/vmiObjCloud.h"

#include "grid/vmiPointBox.h"

vmiObjCloud::vmiObjCloud(utString name, m03DPoint* points, int* colours, const int& size)
    : points_(points), size_(size), colours_(colours)
{
    this->name(std::move(name));
}

vmiObjCloud::vmiObjCloud(utString name, std::uint8_t* grey, const int& width, const int& height,
                         const float& sx, const float& sy, const double& z)
    : size_(width > 0 && height > 0 ? width * height : 0), image_(true), grey_(grey), width_(width),
      sx_(sx), sy_(sy), z_(z)
{
    this->name(std::move(name));
}

vmiObjCloud::~vmiObjCloud()
{
    delete[] points_;
    delete[] colours_;
    delete[] grey_;
}

giBox3 vmiObjCloud::box() const
{
    if (!image_)
        return box_of(points_, size_);
    vmiPointBox gathered;
    for (int k = 0; k < size_; ++k) {
        const m03DPoint p = point(k);
        gathered.take(p.x(), p.y(), p.z());
    }
    if (gathered.complete())
        return gathered.box();
    giBox3 box;
    for (int k = 0; k < size_; ++k) {
        const m03DPoint p = point(k);
        box.merge(giPoint3(p.x(), p.y(), p.z()));
    }
    return box;
}
