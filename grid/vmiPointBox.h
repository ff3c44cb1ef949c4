#pragma once
// vmiPointBox: the box of many points gathered in plain doubles. Merging a
// point into the host's giBox3 is a call into the host's library; a grid or a
// picture has hundreds of thousands of points, so they are gathered here,
// each coordinate as giBox3::merge takes it (std::min and std::max in the
// same order: a NaN changes nothing, the first of two equal zeros stays),
// and the host's box is made once at the end.
#include <algorithm>
#include <limits>

#include "host/giBox3.h"

class vmiPointBox {
public:
    void take(double x, double y, double z)
    {
        lo_[0] = std::min(lo_[0], x);
        lo_[1] = std::min(lo_[1], y);
        lo_[2] = std::min(lo_[2], z);
        hi_[0] = std::max(hi_[0], x);
        hi_[1] = std::max(hi_[1], y);
        hi_[2] = std::max(hi_[2], z);
    }
    // Whether every coordinate met a number: then box() is the box the host
    // makes of the same points. Otherwise (no point, or a coordinate that was
    // never a number) the caller merges them into a giBox3 itself.
    bool complete() const { return lo_[0] <= hi_[0] && lo_[1] <= hi_[1] && lo_[2] <= hi_[2]; }
    // The host's box of the points taken, when complete(): built from its
    // two corners, whose every coordinate is in order (two equal zeros have
    // the same sign: both came from the first zero taken).
    giBox3 box() const { return giBox3(giPoint3(lo_[0], lo_[1], lo_[2]), giPoint3(hi_[0], hi_[1], hi_[2])); }

private:
    static constexpr double most = std::numeric_limits<double>::max();
    double lo_[3] = {most, most, most};
    double hi_[3] = {-most, -most, -most};
};
