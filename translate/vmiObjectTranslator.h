#pragma once
// vmi_object_translator: the translator that hands one object record to the
// host, chosen by the object's type: grid -> vmiTriBlock, polyline ->
// vmiPolyline, spline -> vmiSpline, cloud -> vmiPointsCloud. Empty for a null
// object, an object of any other type, or when allocation fails.
#include "host/qorabsTranslator.h"

class qorabsContext;
class vmiObject;

qorabsTranslatorcoPrf vmi_object_translator(vmiObject* object, const qorabsContext& context);
