#pragma once
// m03DPoint: a point or vector in 3-D, three doubles. Plain value, no virtuals,
// trivially copied and destroyed: arrays of points may live in raw storage.
#include <cmath>
#include <type_traits>

class m03DPoint {
public:
    m03DPoint() = default;
    m03DPoint(const double& x, const double& y, const double& z) : x_(x), y_(y), z_(z) {}
    m03DPoint(const m03DPoint&) = default;
    explicit m03DPoint(const m03DPoint* p) : x_(p->x_), y_(p->y_), z_(p->z_) {}

    m03DPoint& operator=(const m03DPoint&) = default;
    m03DPoint& operator=(const m03DPoint* p)
    {
        x_ = p->x_; y_ = p->y_; z_ = p->z_;
        return *this;
    }

    // 1 when every coordinate is exactly equal (no tolerance).
    int operator==(const m03DPoint& q) const { return x_ == q.x_ && y_ == q.y_ && z_ == q.z_; }

    m03DPoint operator+(const m03DPoint& q) const { return m03DPoint(x_ + q.x_, y_ + q.y_, z_ + q.z_); }
    m03DPoint operator-(const m03DPoint& q) const { return m03DPoint(x_ - q.x_, y_ - q.y_, z_ - q.z_); }
    m03DPoint operator*(const double& f) const { return m03DPoint(x_ * f, y_ * f, z_ * f); }
    // The product of two points is the cross product, not the dot product.
    m03DPoint operator*(const m03DPoint& q) const { return vect_mult(q); }
    m03DPoint operator/(const double& f) const { return m03DPoint(x_ / f, y_ / f, z_ / f); }

    m03DPoint& operator+=(const m03DPoint& q) { x_ += q.x_; y_ += q.y_; z_ += q.z_; return *this; }
    m03DPoint& operator-=(const m03DPoint& q) { x_ -= q.x_; y_ -= q.y_; z_ -= q.z_; return *this; }
    m03DPoint& operator*=(const double& f) { x_ *= f; y_ *= f; z_ *= f; return *this; }
    m03DPoint& operator*=(const m03DPoint& q) { *this = vect_mult(q); return *this; }
    m03DPoint& operator/=(const double& f) { x_ /= f; y_ /= f; z_ /= f; return *this; }

    double scal_mult(const m03DPoint& q) const { return x_ * q.x_ + y_ * q.y_ + z_ * q.z_; }
    m03DPoint vect_mult(const m03DPoint& q) const
    {
        return m03DPoint(y_ * q.z_ - z_ * q.y_, z_ * q.x_ - x_ * q.z_, x_ * q.y_ - y_ * q.x_);
    }
    double module() const { return std::sqrt(x_ * x_ + y_ * y_ + z_ * z_); }
    double module2() const { return x_ * x_ + y_ * y_ + z_ * z_; }
    // Unit vector; the zero vector when the length is not above 1e-30.
    m03DPoint single() const
    {
        double m = module();
        if (!(m > 1e-30))
            return m03DPoint();
        return *this / m;
    }

    // Closest point to this on the segment a-b.
    m03DPoint min_dist_point(m03DPoint& a, m03DPoint& b) const
    {
        m03DPoint d = b - a;
        double len = d.module();
        if (len < 1e-10)
            return a;
        m03DPoint u = d / len;
        double t = u.scal_mult(*this - a);
        if (t <= 0.0)
            return a;
        if (t > len)
            return b;
        return a + u * t;
    }
    double min_dist(m03DPoint& a, m03DPoint& b) const { return (*this - min_dist_point(a, b)).module(); }

    double& x() { return x_; }
    double& y() { return y_; }
    double& z() { return z_; }
    const double& x() const { return x_; }
    const double& y() const { return y_; }
    const double& z() const { return z_; }
    void set_x(const double& v) { x_ = v; }
    void set_y(const double& v) { y_ = v; }
    void set_z(const double& v) { z_ = v; }

private:
    double x_ = 0.0;
    double y_ = 0.0;
    double z_ = 0.0;
};

// Grids keep their nodes in storage that is never cleared (see
// vmiGridMemory): a point must stay plain data.
static_assert(std::is_trivially_copyable_v<m03DPoint> && std::is_trivially_destructible_v<m03DPoint>);
