// m0BspCurve: projection of a point onto the curve by chord bisection.
#include "curves/m0BspCurve.h"

#include "curves/m0HalvingPoints.h"

namespace {

// The bisection goes on while the chord is at least this long (squared) and
// the parameter range at least this wide; an unbroken range whose end points
// meet this closely is a closed loop and is searched in two halves.
constexpr double projection_min_chord2 = 1e-6;
constexpr double projection_min_range = 1e-6;
// A chord shorter than this gives its start parameter.
constexpr double projection_min_chord = 1e-10;
// Each level halves the parameter range, so any range of finite doubles has
// come down to projection_min_range after some 1050 levels; a range whose
// halving no longer moves (its ends a few ulps apart on a fast curve) stops
// at once. The bound only guards the rounding corner cases in between.
constexpr int max_projection_levels = 1100;

}  // namespace

double m0BspCurve::projection(const m03DPoint& q, long long* evaluations) const
{
    long long made = 0;
    const double t = projection_counted(q, nullptr, made);
    if (evaluations)
        *evaluations += made;
    return t;
}

double m0BspCurve::projection(const m03DPoint& q, m0HalvingPoints& kept, long long* evaluations) const
{
    long long made = 0;
    // Points kept for another curve are no use here.
    const double t = projection_counted(q, &kept.curve() == this ? &kept : nullptr, made);
    if (evaluations)
        *evaluations += made;
    return t;
}

double m0BspCurve::projection_counted(const m03DPoint& q, m0HalvingPoints* kept, long long& made) const
{
    double ta = 0.0;
    double tb = 1.0;
    if (closed_) {
        ta = 0.0;
        tb = 1.0;
    } else if (extended_) {
        ta = -1.0;
        tb = 2.0;
    } else {
        if (!evaluable())
            return 0.0;
        ta = knot_vector_->point(0);
        tb = knot_vector_->point(knot_count() - 1);
    }
    const m03DPoint pa = kept ? kept->end(0, ta) : point(ta);
    const m03DPoint pb = kept ? kept->end(1, tb) : point(tb);
    made += 2;
    // The range (ta, tb) is the root of the kept tree, node 1 its midpoint.
    if ((pa - pb).module2() >= projection_min_chord2)
        return projection0(q, ta, pa, tb, pb, kept, 1, made);
    // The ends meet: a closed loop, searched in two halves. (ta + tb) / 2 is
    // the root's midpoint, the halves' midpoints its two children.
    const double tm = (ta + tb) / 2;
    const m03DPoint pm = kept ? kept->point(1, tm) : point(tm);
    const double t1 = projection0(q, ta, pa, tm, pm, kept, kept ? kept->lower(1) : 0, made);
    const double t2 = projection0(q, tm, pm, tb, pb, kept, kept ? kept->upper(1) : 0, made);
    made += 3;
    // Ties go to the second half.
    if ((point(t2) - q).module2() > (point(t1) - q).module2())
        return t1;
    return t2;
}

// A halving search, run as a loop: each level keeps the half whose chord
// passes nearer q, or the middle half when both are exactly as near; at the
// end the parameter is interpolated along the chord.
double m0BspCurve::projection0(const m03DPoint& q, double t0, m03DPoint p0, double t1,
                               m03DPoint p1, m0HalvingPoints* kept, unsigned node,
                               long long& evaluations) const
{
    for (int level = 0; level < max_projection_levels; level++) {
        if (!((p0 - p1).module2() >= projection_min_chord2 && t1 - t0 >= projection_min_range))
            break;
        const double tm = (t0 + t1) * 0.5;
        if (!(tm > t0 && tm < t1))
            break;
        m03DPoint pm = kept ? kept->point(node, tm) : point(tm);
        ++evaluations;
        const double d0 = q.min_dist(p0, pm);
        const double d1 = q.min_dist(pm, p1);
        if (d0 == d1) {
            const double ta = (tm + t0) * 0.5;
            const double tb = (tm + t1) * 0.5;
            t0 = ta;
            p0 = point(ta);
            t1 = tb;
            p1 = point(tb);
            evaluations += 2;
            // The middle half is no node of the tree: nothing below is kept.
            node = 0;
        } else if (d1 > d0) {
            t1 = tm;
            p1 = pm;
            node = kept ? kept->lower(node) : 0;
        } else {
            t0 = tm;
            p0 = pm;
            node = kept ? kept->upper(node) : 0;
        }
    }
    const double len = (p0 - p1).module();
    if (len < projection_min_chord)
        return t0;
    const m03DPoint c = q.min_dist_point(p0, p1);
    return t0 + (c - p0).module() * (t1 - t0) / len;
}

m03DPoint m0BspCurve::min_dist_point(const m03DPoint& q) const
{
    return point(projection(q));
}
