// m0HalvingPoints: a tree of kept curve points, filled as searches meet them.
#include "curves/m0HalvingPoints.h"

#include "curves/m0BspCurve.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <new>

namespace {

// Entries hold NaN until they are known: a NaN parameter is never kept.
constexpr double unknown = std::numeric_limits<double>::quiet_NaN();

}  // namespace

m0HalvingPoints::m0HalvingPoints(const m0BspCurve& curve, int levels) : curve_(curve)
{
    ends_[0].t = ends_[1].t = unknown;
    levels = std::clamp(levels, 0, max_levels);
    if (levels > 0) {
        size_ = 1u << levels;
        half_ = size_ / 2;
    }
}

m0HalvingPoints::~m0HalvingPoints() = default;

m03DPoint m0HalvingPoints::point(unsigned node, double t)
{
    if (node == 0 || node >= size_ || std::isnan(t))
        return curve_.point(t);
    if (!entries_) {
        // Taken on the first search; without the storage nothing is kept.
        // The entries are marked unknown as they are first met, so that only
        // the pages of the levels searched are touched.
        entries_.reset(new (std::nothrow) Entry[size_]);
        known_.reset(new (std::nothrow) std::uint64_t[(size_ + 63) / 64]());
        if (!entries_ || !known_) {
            entries_.reset();
            known_.reset();
            size_ = half_ = 0;
            return curve_.point(t);
        }
    }
    std::uint64_t& word = known_[node / 64];
    const std::uint64_t bit = std::uint64_t{1} << (node % 64);
    if (!(word & bit)) {
        word |= bit;
        entries_[node].t = unknown;
    }
    return kept(entries_[node], t);
}

m03DPoint m0HalvingPoints::end(int side, double t)
{
    if (std::isnan(t))
        return curve_.point(t);
    return kept(ends_[side != 0 ? 1 : 0], t);
}

m03DPoint m0HalvingPoints::kept(Entry& e, double t)
{
    // The same bits, not merely an equal value: -0.0 is not +0.0 here.
    if (std::bit_cast<std::uint64_t>(e.t) == std::bit_cast<std::uint64_t>(t))
        return e.p;
    const m03DPoint p = curve_.point(t);
    e.t = t;
    e.p = p;
    return p;
}
