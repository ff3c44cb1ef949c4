#pragma once
// giBox3: an axis-aligned box. A default box is invalid (empty): its first
// minimum coordinate holds the largest double, so any merged point replaces it.
#include "host/giPoint3.h"

class giBox3 {
public:
    giBox3();
    giBox3(const giPoint3& a, const giPoint3& b);

    // True once at least one point has been merged.
    bool is_valid() const;
    // Grows the box so that it holds p.
    void merge(const giPoint3& p);
    void merge(const giBox3& b);

    const giPoint3& min() const { return min_; }
    const giPoint3& max() const { return max_; }

private:
    giPoint3 min_;
    giPoint3 max_;
};
