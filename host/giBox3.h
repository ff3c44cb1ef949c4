#pragma once
// giBox3: the host's axis-aligned box.
//
// Contract for a host's vendor (what the plug-in relies on):
// - A default box is invalid (empty). Its minimum corner holds the largest
//   double (1.7976931348623157e308) in every coordinate, the first one
//   included, and its maximum corner the lowest; is_valid() is false.
// - merge(point) grows the box so that it holds the point: the first merged
//   point makes a valid box of zero extent at that point.
// - merge(box) of an invalid box changes nothing.
// - A box built from two corners is the box that holds both, whatever their
//   order.
#include "host/giPoint3.h"

class giBox3 {
public:
    giBox3();
    giBox3(const giPoint3& a, const giPoint3& b);

    // True once at least one point has been merged.
    bool is_valid() const;
    // Grows the box so that it holds p.
    void merge(const giPoint3& p);
    // Grows the box so that it holds b; an invalid b changes nothing.
    void merge(const giBox3& b);

    const giPoint3& min() const { return min_; }
    const giPoint3& max() const { return max_; }

private:
    giPoint3 min_;
    giPoint3 max_;
};
