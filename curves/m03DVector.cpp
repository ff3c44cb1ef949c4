// m03DVector: the polyline routines the rest of the library leans on.
#include "curves/m03DVector.h"

#include <new>

namespace {

// Squared distance below which two points of a polyline coincide (distance 1e-5).
constexpr double coincide_dist2 = 1e-10;
// Squared distance below which limit's two ends are the same point: nothing to trim.
constexpr double limit_same_ends2 = 1e-12;
// Squared distance below which a polyline's first and last points close it.
constexpr double closed_dist2 = 1e-7;

// Array new that reports failure as null instead of throwing; a negative or zero
// count makes no storage at all.
m03DPoint* new_points(int n)
{
    if (n <= 0)
        return nullptr;
    return new (std::nothrow) m03DPoint[n];
}

}  // namespace

m03DVector::m03DVector(const int& n)
{
    // A negative count is a caller error: the vector is then empty (size 0, no storage).
    if (n <= 0)
        return;
    size_ = n;
    points_ = new_points(n);
}

m03DVector::m03DVector(m03DVector* other)
{
    if (other == nullptr || other->size_ <= 0)
        return;
    size_ = other->size_;
    points_ = new_points(size_);
    if (points_ == nullptr || other->points_ == nullptr)
        return;
    for (int i = 0; i < size_; i++)
        points_[i] = other->points_[i];
}

m03DVector::~m03DVector()
{
    delete[] points_;
}

m03DPoint m03DVector::point(const double& t) const
{
    if (points_ == nullptr || size_ <= 0)
        return m03DPoint();
    // Truncation toward zero: a t between -1 and 0 gives i = 0 and a negative f, so
    // the point lies on the extension of the first segment. Kept as designed.
    // The range test before the cast keeps huge or NaN parameters defined.
    if (!(t < static_cast<double>(size_ - 1)))
        return points_[size_ - 1];
    if (!(t > -1.0))
        return points_[0];
    int i = static_cast<int>(t);
    if (i >= size_ - 1)
        return points_[size_ - 1];
    if (i < 0)
        return points_[0];
    double f = t - i;
    return points_[i] * (1.0 - f) + points_[i + 1] * f;
}

double m03DVector::length() const
{
    if (points_ == nullptr || size_ < 2)
        return 0.0;
    double sum = 0.0;
    for (int i = 0; i < size_ - 1; i++)
        sum += (points_[i + 1] - points_[i]).module();
    return sum;
}

m03DPoint m03DVector::min_dist_point(m03DPoint& q) const
{
    if (points_ == nullptr || size_ <= 0)
        return m03DPoint();
    if (size_ == 1)
        return points_[0];
    double best = 1e99;
    m03DPoint result;
    for (int i = 0; i < size_ - 1; i++) {
        const m03DPoint& s = points_[i];
        const m03DPoint& e = points_[i + 1];
        m03DPoint d = e - s;
        double len = d.module();
        m03DPoint candidate = s;
        if (len > 0.0) {
            m03DPoint u = d / len;
            double t = u.scal_mult(q - s);
            if (t > 0.0 && t >= len)
                candidate = e;
            else if (t > 0.0)
                candidate = s + u * t;
        }
        double dist = (q - candidate).module();
        // Strictly smaller only: of equally near segments the earlier one wins.
        if (best > dist) {
            best = dist;
            result = candidate;
        }
    }
    return result;
}

void m03DVector::offset(const m03DPoint& d)
{
    if (points_ == nullptr)
        return;
    for (int i = 0; i < size_; i++)
        points_[i] += d;
}

void m03DVector::reverse()
{
    if (points_ == nullptr)
        return;
    for (int i = 0; i < size_ / 2; i++) {
        m03DPoint tmp = points_[i];
        points_[i] = points_[size_ - 1 - i];
        points_[size_ - 1 - i] = tmp;
    }
}

void m03DVector::delete_point(const int& i)
{
    // Negative indices are refused as well as those past the end.
    if (points_ == nullptr || size_ <= 0 || i < 0 || i > size_ - 1)
        return;
    size_--;
    for (int j = i; j < size_; j++)
        points_[j] = points_[j + 1];
}

void m03DVector::delete_coincide()
{
    if (size_ <= 0 || points_ == nullptr)
        return;
    m03DPoint* kept = new_points(size_);
    if (kept == nullptr)
        return;
    int n = 0;
    kept[n++] = points_[0];
    // Each point is compared with the last kept one, never the first with the last:
    // a closed polyline keeps its closing point unless it sits on its predecessor.
    for (int i = 1; i < size_; i++) {
        if ((points_[i] - kept[n - 1]).module2() > coincide_dist2)
            kept[n++] = points_[i];
    }
    delete[] points_;
    points_ = kept;
    size_ = n;
}

int m03DVector::nearest_segment(m03DPoint& q) const
{
    int best_i = 0;
    double best = 1e20;
    for (int i = 0; i < size_ - 1; i++) {
        double dist = q.min_dist(points_[i], points_[i + 1]);
        // Strictly smaller only: the first of equally near segments wins.
        if (dist < best) {
            best = dist;
            best_i = i;
        }
    }
    return best_i;
}

void m03DVector::limit(m03DPoint& a, m03DPoint& b)
{
    if ((a - b).module2() < limit_same_ends2)
        return;
    // A polyline of fewer than two points has no segment to trim.
    if (points_ == nullptr || size_ < 2)
        return;
    bool closed = (points_[0] - points_[size_ - 1]).module2() < closed_dist2;
    int ia = 0;
    int ib = 0;
    if (size_ >= 3) {
        ia = nearest_segment(a);
        ib = nearest_segment(b);
    }
    if (closed && ib < ia)
        limit_across_seam(a, b, ia, ib);
    else
        limit_in_place(a, b, ia, ib);
}

void m03DVector::limit_across_seam(m03DPoint& a, m03DPoint& b, int ia, int ib)
{
    int n = size_ - ia + ib + 2;
    m03DPoint* out = new_points(n);
    if (out == nullptr)
        return;
    int k = 0;
    out[k++] = a;
    // Both the last and the first point of the closed polyline are copied, although
    // they (nearly) coincide: kept as designed.
    for (int i = ia + 1; i < size_; i++)
        out[k++] = points_[i];
    for (int i = 0; i <= ib; i++)
        out[k++] = points_[i];
    out[k++] = b;
    delete[] points_;
    points_ = out;
    size_ = n;
}

void m03DVector::limit_in_place(m03DPoint& a, m03DPoint& b, int ia, int ib)
{
    if (ib < ia) {
        // b lies before a on an open polyline: walk it backwards.
        reverse();
        ia = size_ - ia - 2;
        ib = size_ - ib - 2;
    }
    points_[ia] = a;
    points_[ib + 1] = b;
    size_ = ib - ia + 2;
    if (ia > 0) {
        for (int i = 0; i < size_; i++)
            points_[i] = points_[ia + i];
    }
}
