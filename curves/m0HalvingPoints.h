#pragma once
// m0HalvingPoints: the points of one curve at the parameters that halving
// searches over one range meet, kept for the searches that follow.
//
// A halving search starts from a range and keeps one half of it at every
// level, so its parameters are the nodes of a binary tree: node 1 is the
// midpoint of the whole range, nodes 2k and 2k + 1 the midpoints of the lower
// and upper halves of node k's range. Every search over the same range meets
// the same parameters at its first levels (the arch line projects thousands
// of grid nodes onto one centre curve, a profile is searched at every node of
// its pad), so the points there are computed once. A point is kept together
// with its parameter and given back only for that very parameter: a search
// gets the bits point() gives, whatever it asked before.
#include "curves/m03DPoint.h"

#include <cstdint>
#include <memory>

class m0BspCurve;

class m0HalvingPoints {
public:
    // Points are kept at the first `levels` levels of the tree, at most
    // max_levels: 2^levels - 1 points of 32 bytes (128 KiB at 12 levels),
    // taken on the first search. Deeper nodes are computed every time.
    static constexpr int max_levels = 16;

    // The curve must outlive this. levels is clamped to 0 .. max_levels;
    // 0 keeps nothing.
    m0HalvingPoints(const m0BspCurve& curve, int levels);
    ~m0HalvingPoints();
    m0HalvingPoints(const m0HalvingPoints&) = delete;
    m0HalvingPoints& operator=(const m0HalvingPoints&) = delete;

    // The node of the lower or the upper half of node's range; 0 (no node)
    // stays 0, and so does a node beyond the kept levels.
    unsigned lower(unsigned node) const { return node != 0 && node < half_ ? 2 * node : 0; }
    unsigned upper(unsigned node) const { return node != 0 && node < half_ ? 2 * node + 1 : 0; }

    // The curve's point at t, the parameter of node (0: a parameter off the
    // tree, computed without keeping it).
    m03DPoint point(unsigned node, double t);
    // The curve's point at the lower (side 0) or upper (side 1) end t of the
    // range, kept like a node's.
    m03DPoint end(int side, double t);

    const m0BspCurve& curve() const { return curve_; }

private:
    struct Entry {
        double t;
        m03DPoint p;
    };
    // The entry's point at t, computed and kept unless it is t's already.
    m03DPoint kept(Entry& e, double t);
    const m0BspCurve& curve_;
    unsigned size_ = 0;  // 2^levels: nodes 1 .. size_ - 1 are kept
    unsigned half_ = 0;  // nodes below this have children that are kept
    std::unique_ptr<Entry[]> entries_;
    std::unique_ptr<std::uint64_t[]> known_;  // a bit for each entry met
    Entry ends_[2];
};
