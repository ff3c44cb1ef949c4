#include "archive/vmiObjAttr.h"

#include "curves/m03DPoint.h"
#include "grid/vmiPointBox.h"

giBox3 vmiObjAttr::box_of(const m03DPoint* points, const int& n)
{
    giBox3 box;
    if (!points)
        return box;
    vmiPointBox gathered;
    for (int i = 0; i < n; ++i)
        gathered.take(points[i].x(), points[i].y(), points[i].z());
    if (gathered.complete())
        return gathered.box();
    for (int i = 0; i < n; ++i)
        box.merge(giPoint3(points[i].x(), points[i].y(), points[i].z()));
    return box;
}
