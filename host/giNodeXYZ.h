#pragma once
// giNodeXYZ: the vertex feature, an array of points (x, y, z).
#include "host/giFeature.h"
#include "host/giPoint3.h"

class giNodeXYZ : public giFeatureArray<giPoint3> {
public:
    static constexpr Kind feature_kind = node_xyz;
    Kind kind() const override { return feature_kind; }
};
