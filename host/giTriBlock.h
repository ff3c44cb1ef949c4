#pragma once
// giTriBlock: the host's triangle block, a triangulated surface. Its vertices
// (giNodeXYZ) and triangles (giTriArr, indices into the vertices) are features
// of its pool; a new block has neither.
#include "host/giFeaturePool.h"
#include "host/giNodeXYZ.h"
#include "host/giTriArr.h"

class giTriBlock {
public:
    giFeaturePool& features() { return features_; }
    const giFeaturePool& features() const { return features_; }
    // The vertex and triangle features; null while the pool has none.
    const giNodeXYZ* vertices() const { return features_.find<giNodeXYZ>(); }
    const giTriArr* triangles() const { return features_.find<giTriArr>(); }
    int num_vertices() const { return vertices() ? vertices()->size() : 0; }
    int num_triangles() const { return triangles() ? triangles()->size() : 0; }

private:
    giFeaturePool features_;
};
