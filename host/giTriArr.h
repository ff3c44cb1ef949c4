#pragma once
// giTriArr: the triangle feature, an array of vertex index triples.
#include "host/giFeature.h"
#include "host/giTriangle.h"

class giTriArr : public giFeatureArray<giTriangle> {
public:
    static constexpr Kind feature_kind = tri_arr;
    Kind kind() const override { return feature_kind; }
};
