#pragma once
// annPointCloudData: the host's coloured point cloud. Its points (giNodeXYZ)
// and their colours (annColArr, one per point) are features of its pool; new
// data has neither.
#include "host/annColArr.h"
#include "host/giFeaturePool.h"
#include "host/giNodeXYZ.h"

class annPointCloudData {
public:
    giFeaturePool& features() { return features_; }
    const giFeaturePool& features() const { return features_; }
    // Null while the pool has none.
    const giNodeXYZ* points() const { return features_.find<giNodeXYZ>(); }
    const annColArr* colours() const { return features_.find<annColArr>(); }
    int num_points() const { return points() ? points()->size() : 0; }

private:
    giFeaturePool features_;
};
