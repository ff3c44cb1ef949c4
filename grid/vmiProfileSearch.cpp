#include "grid/vmiProfileSearch.h"

#include <cmath>

double vmiProfileSearch::height(const m0BspCurve& profile, const double& target,
                                const double& x_end, long long* evaluations) const
{
    const double limit = tolerance / x_end;
    double lo = 0.0, hi = 1.0, u = 0.5;
    m03DPoint p = profile.point(u);
    long long made = 1;
    if (limit < 1.0) {
        for (int step = 0; step < max_steps; ++step) {
            if (std::fabs(target - p.x()) < stop)
                break;
            if (p.x() > target)
                hi = u;
            else
                lo = u;
            u = (hi + lo) * 0.5;
            p = profile.point(u);
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
                               const double& s, long long* evaluations)
{
    if (evaluations)
        *evaluations += 1;
    if (s <= 1e-7)
        return profile.point(0.0).y();
    if (s > 0.99999)
        return profile.point(1.0).y();
    const double x_end = profile.point(1.0).x();
    return search.height(profile, x_end * s, x_end, evaluations);
}
