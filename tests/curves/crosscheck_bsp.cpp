// Prints random clamped B-spline curves (degree 1 to 4, with and without runs
// of equal interior knots, with and without weights) with their points and
// first two derivatives as m0BspCurve computes them, for crosscheck_bsp.py to
// recompute independently.
//
// Output, one record per line, numbers round-trip exact:
//   curve DEGREE NCPNT RATIONAL
//   knots K0 K1 ...
//   cpnt X Y Z W          (NCPNT lines; W is 1 without weights)
//   eval T PX PY PZ D1X D1Y D1Z D2X D2Y D2Z
//   end
#include "curves/m0BspCurve.h"

#include <cstdio>
#include <random>
#include <vector>

namespace {

constexpr int curve_count = 240;
constexpr int random_parameters = 25;

m0BspCurve* random_curve(std::mt19937_64& rng)
{
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    std::uniform_int_distribution<int> coin(0, 1);
    const int degree = std::uniform_int_distribution<int>(1, 4)(rng);
    const int order = degree + 1;
    const int n = order + std::uniform_int_distribution<int>(0, 7)(rng);
    const bool repeats = coin(rng) == 1;
    const bool rational = coin(rng) == 1;

    // Clamped: order equal knots at each end; interior knots increasing, or in
    // runs of up to degree equal values (the curve stays continuous).
    std::vector<double> knots(order, 0.0);
    double u = 0.0;
    while (static_cast<int>(knots.size()) < n) {
        u += 0.1 + unit(rng);
        int run = repeats ? std::uniform_int_distribution<int>(1, degree)(rng) : 1;
        for (; run > 0 && static_cast<int>(knots.size()) < n; run--)
            knots.push_back(u);
    }
    u += 0.1 + unit(rng);
    const double scale = 0.5 + 3.0 * unit(rng);
    for (int i = 0; i < order; i++)
        knots.push_back(u);
    auto* kv = new m01DVector(static_cast<int>(knots.size()));
    for (size_t i = 0; i < knots.size(); i++)
        kv->set_point(static_cast<int>(i), knots[i] / u * scale - 0.5);

    auto* cps = new m03DVector(n);
    for (int i = 0; i < n; i++)
        cps->set_point(i, m03DPoint(unit(rng) * 20 - 10, unit(rng) * 20 - 10, unit(rng) * 20 - 10));
    auto* c = new m0BspCurve();
    c->set_degree(degree);
    c->set_no_of_cpnt(n);
    c->set_knot_vector(kv);
    c->set_cpnt_vector(cps);
    if (rational) {
        auto* w = new m01DVector(n);
        for (int i = 0; i < n; i++)
            w->set_point(i, 0.25 + 3.0 * unit(rng));
        c->set_weight_vector(w);
    }
    return c;
}

void print_point(const m03DPoint& p)
{
    std::printf(" %.17g %.17g %.17g", p.x(), p.y(), p.z());
}

void print_curve(m0BspCurve* c, std::mt19937_64& rng)
{
    m01DVector* kv = c->knot_vector();
    m03DVector* cps = c->cpnt_vector();
    m01DVector* w = c->weight_vector();
    std::printf("curve %d %d %d\nknots", c->degree(), cps->size(), w != nullptr ? 1 : 0);
    for (int i = 0; i < kv->size(); i++)
        std::printf(" %.17g", kv->point(i));
    std::printf("\n");
    for (int i = 0; i < cps->size(); i++) {
        std::printf("cpnt");
        print_point(cps->point(i));
        std::printf(" %.17g\n", w != nullptr ? w->point(i) : 1.0);
    }
    // Every knot (ends and interior runs included) and random parameters.
    std::vector<double> ts;
    for (int i = 0; i < kv->size(); i++)
        ts.push_back(kv->point(i));
    std::uniform_real_distribution<double> inside(kv->point(0), kv->point(kv->size() - 1));
    for (int i = 0; i < random_parameters; i++)
        ts.push_back(inside(rng));
    for (double t : ts) {
        std::printf("eval %.17g", t);
        print_point(c->point(t));
        print_point(c->first_der(t));
        print_point(c->second_der(t));
        std::printf("\n");
    }
    std::printf("end\n");
}

}  // namespace

int main()
{
    std::mt19937_64 rng(5302);
    for (int i = 0; i < curve_count; i++) {
        m0BspCurve* c = random_curve(rng);
        print_curve(c, rng);
        delete c;
    }
    return 0;
}
