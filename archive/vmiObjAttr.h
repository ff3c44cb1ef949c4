#pragma once
// vmiObjAttr: the attributes every object record carries to the host: its
// level (layer number), colour index, name and layer name.
#include "host/giBox3.h"
#include "host/utString.h"

class m03DPoint;

class vmiObjAttr {
public:
    int level() const { return level_; }
    void level(const int& v) { level_ = v; }
    int colour() const { return colour_; }
    void colour(const int& v) { colour_ = v; }
    const utString& name() const { return name_; }
    void name(utString v) { name_ = std::move(v); }
    const utString& layer_name() const { return layer_name_; }
    void layer_name(utString v) { layer_name_ = std::move(v); }

protected:
    // A record is deleted through its own type (vmiObject knows it), never
    // through its attributes.
    vmiObjAttr() = default;
    ~vmiObjAttr() = default;
    vmiObjAttr(const vmiObjAttr&) = default;
    vmiObjAttr& operator=(const vmiObjAttr&) = default;

    // Bounding box of n points; invalid when there are none.
    static giBox3 box_of(const m03DPoint* points, const int& n);

private:
    int level_ = 0;
    int colour_ = 0;
    utString name_;
    utString layer_name_;
};
