#pragma once
// vmiObjCloud: a coloured point cloud (a scan image). The record owns both
// arrays.
#include "archive/vmiObjAttr.h"

class m03DPoint;

class vmiObjCloud : public vmiObjAttr {
public:
    // Takes ownership of points (new m03DPoint[size]) and colours (new int[size]);
    // either may be null.
    vmiObjCloud(utString name, m03DPoint* points, int* colours, const int& size);
    ~vmiObjCloud();
    vmiObjCloud(const vmiObjCloud&) = delete;
    vmiObjCloud& operator=(const vmiObjCloud&) = delete;

    m03DPoint* points_array() { return points_; }
    int* colour_array() { return colours_; }
    int size() const { return size_; }
    // Bounding box of the points; invalid when there are none.
    giBox3 box() const;

private:
    m03DPoint* points_ = nullptr;
    int size_ = 0;
    int* colours_ = nullptr;
};
