// Prints interpolating splines as JSON for crosscheck_spline.py, which compares
// them with scipy's CubicSpline: open splines against splines with the same end
// first derivatives, closed ones on evenly spaced parameters against periodic
// splines. Each case gives the points, their parameters, the spline's tangents
// and the spline evaluated at parameters inside and a little beyond its range.
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "curves/m01DVector.h"
#include "curves/m03DVector.h"
#include "curves/m03SplineCurve.h"

namespace {

using Pts = std::vector<m03DPoint>;

m03DVector* make_points(const Pts& p)
{
    auto* v = new m03DVector(static_cast<int>(p.size()));
    for (int i = 0; i < static_cast<int>(p.size()); ++i)
        v->set_point(i, p[i]);
    return v;
}

void print_point(const m03DPoint& q)
{
    std::printf("[%.17g, %.17g, %.17g]", q.x(), q.y(), q.z());
}

void print_case(const char* name, const char* kind, m03SplineCurve& s, bool first)
{
    m03DVector* pts = s.points_vector();
    m01DVector* u = s.params_vector();
    m03DVector* t = s.tangents_vector();
    const int n = pts->size();
    std::printf("%s{\"name\": \"%s\", \"kind\": \"%s\",\n \"params\": [", first ? "" : ",\n", name, kind);
    for (int i = 0; i < n; ++i)
        std::printf("%s%.17g", i ? ", " : "", u->point(i));
    std::printf("],\n \"points\": [");
    for (int i = 0; i < n; ++i) {
        std::printf("%s", i ? ", " : "");
        print_point(pts->point(i));
    }
    std::printf("],\n \"tangents\": [");
    for (int i = 0; i < n; ++i) {
        std::printf("%s", i ? ", " : "");
        print_point(t ? t->point(i) : m03DPoint());
    }
    // Samples: 40 per segment across the range, and a little beyond each end.
    double u0 = u->point(0), u1 = u->point(n - 1), span = u1 - u0;
    std::vector<double> at;
    for (int k = 0; k <= 40 * (n - 1); ++k)
        at.push_back(u0 + span * k / (40.0 * (n - 1)));
    for (int i = 0; i < n; ++i)
        at.push_back(u->point(i));
    at.push_back(u0 - 0.03 * span);
    at.push_back(u1 + 0.03 * span);
    std::printf("],\n \"samples\": [");
    for (size_t k = 0; k < at.size(); ++k) {
        std::printf("%s[%.17g, ", k ? ", " : "", at[k]);
        print_point(s.point0(at[k]));
        std::printf("]");
    }
    std::printf("]}");
}

Pts wavy(int n)
{
    Pts p;
    for (int i = 0; i < n; ++i) {
        double s = i + 0.37 * std::sin(1.3 * i);
        p.emplace_back(2.0 * s, std::cos(0.7 * i) * (1.0 + 0.5 * (i % 3)), 0.2 * i * std::sin(0.4 * i));
    }
    return p;
}

// A closed zigzag crown: every chord has the same length, so the chord-length
// parameters are evenly spaced.
Pts crown(int m, double radius, double height)
{
    Pts p;
    for (int k = 0; k < m; ++k) {
        double a = 2.0 * M_PI * k / m;
        p.emplace_back(radius * std::cos(a), radius * std::sin(a), (k % 2 ? height : -height));
    }
    p.push_back(p[0]);
    return p;
}

// A regular polygon in a tilted plane, moved off the origin.
Pts tilted_polygon(int m)
{
    Pts p;
    for (int k = 0; k < m; ++k) {
        double a = 2.0 * M_PI * k / m;
        double x = 3.0 * std::cos(a), y = 3.0 * std::sin(a);
        p.emplace_back(10.0 + x, -4.0 + 0.6 * y, 2.0 + 0.8 * y);
    }
    p.push_back(p[0]);
    return p;
}

}  // namespace

int main()
{
    std::printf("[\n");
    {
        m03SplineCurve s(make_points(wavy(12)));
        print_case("open_wavy_12", "open", s, true);
    }
    {
        m03SplineCurve s(make_points({{0, 0, 0}, {3, -1, 2}}));
        print_case("open_two_points", "open", s, false);
    }
    {
        m03SplineCurve s(make_points({{0, 0, 0}, {1, 2, 0}, {5, 2, 1}}));
        print_case("open_three_points", "open", s, false);
    }
    {
        m03SplineCurve s(make_points(wavy(400)));
        print_case("open_wavy_400", "open", s, false);
    }
    {
        Pts p = wavy(9);
        auto* u = new m01DVector(9);
        double params[] = {0.0, 0.4, 1.5, 1.75, 3.0, 4.5, 4.6, 6.0, 9.0};
        for (int i = 0; i < 9; ++i)
            u->set_point(i, params[i]);
        m03SplineCurve s(make_points(p), u, m03DPoint(1.5, -0.5, 0.25), m03DPoint(-2, 0, 1));
        print_case("open_given_params_and_tangents", "open", s, false);
    }
    {
        m03SplineCurve s(make_points(crown(8, 2.0, 0.5)));
        print_case("closed_crown_8", "closed", s, false);
    }
    {
        m03SplineCurve s(make_points(tilted_polygon(7)));
        print_case("closed_tilted_heptagon", "closed", s, false);
    }
    {
        m03SplineCurve s(make_points(crown(4, 1.0, 0.0)));
        print_case("closed_square", "closed", s, false);
    }
    {
        m03SplineCurve s(make_points(tilted_polygon(3)));
        print_case("closed_triangle", "closed", s, false);
    }
    {
        m03SplineCurve s(make_points(crown(300, 5.0, 0.2)));
        print_case("closed_crown_300", "closed", s, false);
    }
    std::printf("\n]\n");
    return 0;
}
