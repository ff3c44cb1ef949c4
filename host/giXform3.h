#pragma once
// giXform3: the host's placement of a group, a 3 x 4 matrix in row order with
// the translation in the last column:
//     [m00 m01 m02 tx]
//     [m10 m11 m12 ty]
//     [m20 m21 m22 tz]
// A point p is placed at R p + t.
//
// Contract for a host's vendor (what the plug-in relies on):
// - A default placement is the identity (ones on the diagonal, every other
//   entry 0.0, no translation).
// - premultiply_translation(t) moves the placement by t: only the last column
//   changes, each entry becoming its old value + the component of t (so an
//   identity placement moved by t holds exactly t).
// - premultiply(a) makes the placement a * this (this first, then a).
#include "host/giPoint3.h"

class giXform3 {
public:
    static constexpr int rows = 3;
    static constexpr int columns = 4;
    static constexpr int size = rows * columns;

    giXform3();
    // Twelve values in row order.
    explicit giXform3(const double (&m)[size]);

    // Entry (row r, column c); 0.0 outside the matrix.
    double operator()(int r, int c) const;
    void set(int r, int c, double v);
    // The twelve values in row order.
    const double* data() const { return m_; }
    giVector3 translation() const { return giVector3(m_[3], m_[7], m_[11]); }

    // Moves the placement by t (premultiplies it by the translation t).
    void premultiply_translation(const giVector3& t);
    // Makes this placement a * this.
    void premultiply(const giXform3& a);
    // The point p placed: R p + t.
    giPoint3 apply(const giPoint3& p) const;

    friend bool operator==(const giXform3& a, const giXform3& b);

private:
    double m_[size];
};
