#pragma once
// annColArr: the colour feature of a point cloud, one colour per point.
#include "host/giColour.h"
#include "host/giFeature.h"

class annColArr : public giFeatureArray<giColour> {
public:
    static constexpr Kind feature_kind = colour_arr;
    Kind kind() const override { return feature_kind; }
};
