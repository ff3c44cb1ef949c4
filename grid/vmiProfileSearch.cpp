#include "grid/vmiProfileSearch.h"

#include <cmath>

namespace {

// Points kept for another curve are no use.
m0HalvingPoints* kept_for(const m0BspCurve& profile, m0HalvingPoints* kept)
{
    return kept != nullptr && &kept->curve() == &profile ? kept : nullptr;
}

}  // namespace

m03DPoint profile_end(const m0BspCurve& profile, int side, m0HalvingPoints* kept)
{
    const double t = side != 0 ? 1.0 : 0.0;
    kept = kept_for(profile, kept);
    return kept ? kept->end(side, t) : profile.point(t);
}

double vmiProfileSearch::height(const m0BspCurve& profile, const double& target,
                                const double& x_end, long long* evaluations,
                                m0HalvingPoints* kept) const
{
    kept = kept_for(profile, kept);
    // The search halves the parameter range 0 .. 1 from its midpoint: node 1
    // of the kept tree.
    unsigned node = kept ? 1 : 0;
    auto at = [&](double u) { return kept ? kept->point(node, u) : profile.point(u); };
    const double limit = tolerance / x_end;
    double lo = 0.0, hi = 1.0, u = 0.5;
    m03DPoint p = at(u);
    long long made = 1;
    if (limit < 1.0) {
        for (int step = 0; step < max_steps; ++step) {
            if (std::fabs(target - p.x()) < stop)
                break;
            if (p.x() > target) {
                hi = u;
                node = kept ? kept->lower(node) : 0;
            } else {
                lo = u;
                node = kept ? kept->upper(node) : 0;
            }
            u = (hi + lo) * 0.5;
            p = at(u);
            ++made;
            if (hi - lo <= limit)
                break;
        }
    }
    if (evaluations)
        *evaluations += made;
    return p.y();
}

double relative_profile_height(const vmiProfileSearch& search, const m0BspCurve& profile,
                               const double& s, long long* evaluations, m0HalvingPoints* kept)
{
    if (evaluations)
        *evaluations += 1;
    if (s <= 1e-7)
        return profile_end(profile, 0, kept).y();
    if (s > 0.99999)
        return profile_end(profile, 1, kept).y();
    const double x_end = profile_end(profile, 1, kept).x();
    return search.height(profile, x_end * s, x_end, evaluations, kept);
}
