#include "archive/vmiObject.h"

#include "archive/vmiObjCloud.h"
#include "archive/vmiObjGrid.h"
#include "archive/vmiObjPoly.h"
#include "archive/vmiObjSpline.h"

#include <new>

vmiObject::vmiObject(vmiObjGrid* record) : type_(grid_type), record_(record) {}
vmiObject::vmiObject(vmiObjPoly* record) : type_(polyline_type), record_(record) {}
vmiObject::vmiObject(vmiObjCloud* record) : type_(cloud_type), record_(record) {}
vmiObject::vmiObject(vmiObjSpline* record) : type_(spline_type), record_(record) {}

namespace {

template <class Record>
vmiObject* wrap_record(Record* record)
{
    if (!record)
        return nullptr;
    vmiObject* object = new (std::nothrow) vmiObject(record);
    if (!object)
        delete record;
    return object;
}

}  // namespace

vmiObject* vmiObject::wrap(vmiObjGrid* record)
{
    return wrap_record(record);
}
vmiObject* vmiObject::wrap(vmiObjPoly* record)
{
    return wrap_record(record);
}
vmiObject* vmiObject::wrap(vmiObjCloud* record)
{
    return wrap_record(record);
}
vmiObject* vmiObject::wrap(vmiObjSpline* record)
{
    return wrap_record(record);
}

vmiObject::~vmiObject()
{
    switch (type_) {
    case grid_type: delete static_cast<vmiObjGrid*>(record_); break;
    case polyline_type: delete static_cast<vmiObjPoly*>(record_); break;
    case cloud_type: delete static_cast<vmiObjCloud*>(record_); break;
    case spline_type: delete static_cast<vmiObjSpline*>(record_); break;
    default: break;
    }
}

vmiObjGrid* vmiObject::grid()
{
    return type_ == grid_type ? static_cast<vmiObjGrid*>(record_) : nullptr;
}

vmiObjPoly* vmiObject::polyline()
{
    return type_ == polyline_type ? static_cast<vmiObjPoly*>(record_) : nullptr;
}

vmiObjCloud* vmiObject::cloud()
{
    return type_ == cloud_type ? static_cast<vmiObjCloud*>(record_) : nullptr;
}

vmiObjSpline* vmiObject::spline()
{
    return type_ == spline_type ? static_cast<vmiObjSpline*>(record_) : nullptr;
}

vmiObjAttr* vmiObject::attributes()
{
    if (vmiObjGrid* g = grid())
        return g;
    if (vmiObjPoly* p = polyline())
        return p;
    if (vmiObjCloud* c = cloud())
        return c;
    if (vmiObjSpline* s = spline())
        return s;
    return nullptr;
}

utString vmiObject::name()
{
    vmiObjAttr* a = attributes();
    return a ? a->name() : utString();
}

void vmiObject::name(utString v)
{
    if (vmiObjAttr* a = attributes())
        a->name(std::move(v));
}

utString vmiObject::layer_name()
{
    vmiObjAttr* a = attributes();
    return a ? a->layer_name() : utString();
}

void vmiObject::layer_name(utString v)
{
    if (vmiObjAttr* a = attributes())
        a->layer_name(std::move(v));
}

int vmiObject::level()
{
    vmiObjAttr* a = attributes();
    return a ? a->level() : 0;
}

void vmiObject::level(const int& v)
{
    if (vmiObjAttr* a = attributes())
        a->level(v);
}

giBox3 vmiObject::box()
{
    if (vmiObjGrid* g = grid())
        return g->box();
    if (vmiObjPoly* p = polyline())
        return p->box();
    if (vmiObjCloud* c = cloud())
        return c->box();
    if (vmiObjSpline* s = spline())
        return s->box();
    return giBox3();
}
