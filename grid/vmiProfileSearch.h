#pragma once
// The height of a profile curve at a given x. A profile is a curve in the
// (x, height) plane, so its parameter is not x: the parameter is found by
// bisection until the point's x is near enough the target. The pad, the line
// and the point modifier each search with their own constants, kept as
// designed; they differ in nothing else.
#include "curves/m0BspCurve.h"
#include "curves/m0HalvingPoints.h"

struct vmiProfileSearch {
    // The interval that ends the bisection is tolerance / x_end, x_end being
    // the profile's x at its end: the search looks no finer than that.
    double tolerance;
    // The search stops as soon as the point's x lies closer than this to the
    // target.
    double stop;

    // The most bisection steps of one search. A profile within the design's
    // coordinates (x_end up to vmiVelmcontur::max_coordinate, 1e6) ends its
    // search within 30 steps: the interval tolerance / x_end is at least 1e-8.
    // A profile ending at x <= 0 never ends it, and one ending beyond 1e17
    // asks for up to 1075 steps at every node of a pad: these stop here, so
    // that a pad over a whole grid costs at most this many evaluations a node.
    static constexpr int max_steps = 64;

    // The levels of a profile's searches whose points are kept when a
    // modifier searches one profile at many nodes: a search over a profile
    // up to 400 times as long as its tolerance ends within them (a pad's
    // profile of 4 mm, a line's of 40 mm). 2^10 - 1 points, 32 KiB.
    static constexpr int kept_levels = 10;

    // The height at x = target, for a profile whose x ends at x_end. The
    // curve evaluations made are added to *evaluations when it is given.
    // With kept (points of this profile), the points of the search's tree
    // are taken from it and kept there: the same bits, fewer evaluations;
    // the evaluations counted are the same.
    double height(const m0BspCurve& profile, const double& target, const double& x_end,
                  long long* evaluations = nullptr, m0HalvingPoints* kept = nullptr) const;
};

// The searches of the pad and the line take a relative radius s (0 at the
// start of the profile, 1 at its end) and end in the profile's end heights
// below 1e-7 and above 0.99999; the point's takes an absolute distance and
// ends within 0.1 of either end.
inline constexpr vmiProfileSearch pelotte_profile_search{0.01, 0.01};
inline constexpr vmiProfileSearch line_profile_search{0.1, 0.05};
inline constexpr vmiProfileSearch point_profile_search{0.2, 0.05};

// The pad's and the line's search at relative radius s, counting its curve
// evaluations into *evaluations when it is given, with the points kept in
// kept when it is given (points of this profile).
double relative_profile_height(const vmiProfileSearch& search, const m0BspCurve& profile,
                               const double& s, long long* evaluations = nullptr,
                               m0HalvingPoints* kept = nullptr);

// The profile's point at its start (t 0) or its end (t 1), from kept when it
// is given and holds points of this profile.
m03DPoint profile_end(const m0BspCurve& profile, int side, m0HalvingPoints* kept = nullptr);
