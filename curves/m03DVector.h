#pragma once
// m03DVector: a counted, owned array of m03DPoint (polylines, control polygons,
// outlines). It keeps no capacity apart from its count: set_size only rewrites
// the count, so a caller that enlarges a vector must have made it large enough.
// A count of zero or below makes an empty vector (size 0, null storage); an
// allocation failure leaves the storage null with the count set, and the routines
// below then act as on an empty vector.
#include "curves/m03DPoint.h"

class m03DVector {
public:
    explicit m03DVector(const int& n);
    explicit m03DVector(m03DVector* other);
    ~m03DVector();
    m03DVector(const m03DVector&) = delete;
    m03DVector& operator=(const m03DVector&) = delete;

    int& size() { return size_; }
    const int& size() const { return size_; }
    void set_size(const int& n) { size_ = n; }
    m03DPoint& point(const int& i) { return points_[i]; }
    const m03DPoint& point(const int& i) const { return points_[i]; }
    void set_point(const int& i, const m03DPoint& p) { points_[i] = p; }
    m03DPoint* get_point_array() { return points_; }
    const m03DPoint* get_point_array() const { return points_; }

    // Point on the polyline at index-parameter t: t = i + f lies between point i
    // and point i+1; beyond the ends the end points. A t between -1 and 0 lands on
    // the extension of the first segment before the first point.
    m03DPoint point(const double& t) const;
    // Without this overload a call on a non-const vector with a double would be
    // ambiguous with the non-const point(const int&).
    m03DPoint point(const double& t) { return static_cast<const m03DVector*>(this)->point(t); }
    // Sum of the segment lengths; 0 for fewer than two points.
    double length() const;
    // Closest point to q on the polyline; (0,0,0) when it is empty.
    m03DPoint min_dist_point(m03DPoint& q) const;
    void offset(const m03DPoint& d);
    void reverse();
    // Removes point i; out-of-range indices are ignored. The storage stays.
    void delete_point(const int& i);
    // Drops each point within 1e-5 of the last point kept.
    void delete_coincide();
    // Trims the polyline to run from a to b, across the seam of a closed polyline
    // when b lies before a; a polyline of fewer than two points is left alone.
    void limit(m03DPoint& a, m03DPoint& b);

private:
    // Index of the segment whose closest point to q is nearest; the first wins ties.
    int nearest_segment(m03DPoint& q) const;
    void limit_across_seam(m03DPoint& a, m03DPoint& b, int ia, int ib);
    void limit_in_place(m03DPoint& a, m03DPoint& b, int ia, int ib);

    int size_ = 0;
    m03DPoint* points_ = nullptr;
};
