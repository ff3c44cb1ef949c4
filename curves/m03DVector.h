#pragma once
// m03DVector: a counted, owned array of m03DPoint (polylines, control polygons,
// outlines). It keeps no capacity apart from its count: set_size only rewrites
// the count, so a caller that enlarges a vector must have made it large enough.
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

    // Point on the polyline at index-parameter t.
    m03DPoint point(const double& t) const;
    double length() const;
    m03DPoint min_dist_point(m03DPoint& q) const;
    void offset(const m03DPoint& d);
    void reverse();
    void delete_point(const int& i);
    void delete_coincide();
    void limit(m03DPoint& a, m03DPoint& b);

private:
    int size_ = 0;
    m03DPoint* points_ = nullptr;
};
