#pragma once
// The checks and builders that the suites over points, polylines and curves
// share: one definition each, so that a check means the same in every suite.
#include <gtest/gtest.h>

#include <cstring>
#include <initializer_list>
#include <memory>
#include <vector>

#include "curves/m03DPoint.h"
#include "curves/m01DVector.h"
#include "curves/m03DVector.h"
#include "curves/m0BspCurve.h"

// p is exactly (x, y, z).
inline void expect_point(const m03DPoint& p, double x, double y, double z)
{
    EXPECT_EQ(p.x(), x);
    EXPECT_EQ(p.y(), y);
    EXPECT_EQ(p.z(), z);
}

// Bit for bit the same: tells -0.0 from 0.0, and a NaN equals itself.
inline bool same_bits(double a, double b)
{
    return std::memcmp(&a, &b, sizeof(double)) == 0;
}

inline bool same_bits(const m03DPoint& a, const m03DPoint& b)
{
    return same_bits(a.x(), b.x()) && same_bits(a.y(), b.y()) && same_bits(a.z(), b.z());
}

// A polyline through the points in order.
inline std::unique_ptr<m03DVector> polyline(std::initializer_list<m03DPoint> pts)
{
    auto v = std::make_unique<m03DVector>(static_cast<int>(pts.size()));
    int i = 0;
    for (const m03DPoint& p : pts)
        v->set_point(i++, p);
    return v;
}

// A new point vector (the caller owns it) holding pts.
inline m03DVector* points_of(const std::vector<m03DPoint>& pts)
{
    auto* v = new m03DVector(static_cast<int>(pts.size()));
    for (int i = 0; i < static_cast<int>(pts.size()); i++)
        v->set_point(i, pts[i]);
    return v;
}

// A new value vector (the caller owns it) holding vals.
inline m01DVector* values_of(const std::vector<double>& vals)
{
    auto* v = new m01DVector(static_cast<int>(vals.size()));
    for (int i = 0; i < static_cast<int>(vals.size()); i++)
        v->set_point(i, vals[i]);
    return v;
}

// A new curve filled through the setters, as the library's builders fill one;
// weights only when some are given.
inline m0BspCurve* make_curve(int degree, const std::vector<double>& knots, const std::vector<m03DPoint>& cps,
                              const std::vector<double>& weights = {})
{
    auto* c = new m0BspCurve();
    c->set_degree(degree);
    c->set_no_of_cpnt(static_cast<int>(cps.size()));
    c->set_knot_vector(values_of(knots));
    c->set_cpnt_vector(points_of(cps));
    if (!weights.empty())
        c->set_weight_vector(values_of(weights));
    return c;
}
