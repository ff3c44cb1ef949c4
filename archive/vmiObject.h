#pragma once
// vmiObject: the one handle through which nodes and contour documents hold an
// object record. The type says which record it is; the handle owns the record
// and deletes it through that type.
#include "host/giBox3.h"
#include "host/utString.h"

class vmiObjAttr;
class vmiObjGrid;
class vmiObjPoly;
class vmiObjCloud;
class vmiObjSpline;

class vmiObject {
public:
    enum Type { none = 0, grid_type = 1, polyline_type = 2, cloud_type = 3, spline_type = 5 };

    // An object without a record (type none).
    vmiObject() = default;
    // Each takes ownership of the record (which may be null) and sets the type.
    explicit vmiObject(vmiObjGrid* record);
    explicit vmiObject(vmiObjPoly* record);
    explicit vmiObject(vmiObjCloud* record);
    explicit vmiObject(vmiObjSpline* record);
    ~vmiObject();
    vmiObject(const vmiObject&) = delete;
    // A new handle owning record; null for a null record, and null with the
    // record deleted when the handle cannot be allocated. Readers and
    // documents wrap their records with these alone.
    static vmiObject* wrap(vmiObjGrid* record);
    static vmiObject* wrap(vmiObjPoly* record);
    static vmiObject* wrap(vmiObjCloud* record);
    static vmiObject* wrap(vmiObjSpline* record);
    vmiObject& operator=(const vmiObject&) = delete;

    int type() const { return type_; }
    int data_offset() const { return data_offset_; }

    // The record when the type matches, else null.
    vmiObjGrid* grid();
    vmiObjPoly* polyline();
    vmiObjCloud* cloud();
    vmiObjSpline* spline();
    // The record's attributes; null without a record or with an unknown type.
    vmiObjAttr* attributes();

    // Forwarded to the record's attributes. Getters answer empty / 0 and
    // setters do nothing without a record or with an unknown type.
    utString name();
    void name(utString v);
    utString layer_name();
    void layer_name(utString v);
    int level();
    void level(const int& v);

    // The record's box; an invalid, empty box without a record.
    giBox3 box();

private:
    int type_ = none;
    void* record_ = nullptr;
    utString text_;      // kept empty
    int int_value_ = 0;  // kept 0
    int data_offset_ = 0;
};
