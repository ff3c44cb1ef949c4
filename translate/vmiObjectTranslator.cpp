#include "translate/vmiObjectTranslator.h"

#include "archive/vmiObject.h"
#include "translate/vmiPointsCloud.h"
#include "translate/vmiPolyline.h"
#include "translate/vmiSpline.h"
#include "translate/vmiTriBlock.h"

qorabsTranslatorcoPrf vmi_object_translator(vmiObject* object, const qorabsContext& context)
{
    if (!object)
        return {};
    switch (object->type()) {
    case vmiObject::grid_type:
        return vmiTriBlock(object->grid()).make_translator(context);
    case vmiObject::polyline_type:
        return vmiPolyline(object->polyline()).make_translator(context);
    case vmiObject::spline_type:
        return vmiSpline(object->spline()).make_translator(context);
    case vmiObject::cloud_type:
        return vmiPointsCloud(object->cloud()).make_translator(context);
    default:
        return {};
    }
}
