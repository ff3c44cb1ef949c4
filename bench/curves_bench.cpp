// B-spline curve evaluation, projection and approximation, each run with the
// basis tables the curve uses and with the plain recursion they replace: the
// two give the same bits, so the ratio is what the tables buy.
#include "curves/m0BspCurve.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

namespace {

using Method = m0BspCurve::BasisMethod;

// A Bezier chain of the given order through a wavy outline of about an
// insole's size, optionally with weights.
m0BspCurve* make_curve(int order, bool rational, Method method)
{
    const int pieces = 12;
    const int n = pieces * (order - 1) + 1;
    auto* cps = new m03DVector(n);
    for (int i = 0; i < n; i++) {
        const double a = 2.0 * M_PI * i / (n - 1);
        cps->set_point(i, m03DPoint(120.0 * std::cos(a) + 7.0 * std::sin(5 * a), 45.0 * std::sin(a),
                                    3.0 * std::cos(3 * a)));
    }
    auto* c = new m0BspCurve(cps, order);
    if (rational) {
        auto* w = new m01DVector(n);
        for (int i = 0; i < n; i++)
            w->set_point(i, 1.0 + 0.5 * std::sin(0.7 * i));
        c->set_weight_vector(w);
    }
    c->set_basis_method(method);
    return c;
}

Method method_of(const benchmark::State& state)
{
    return state.range(0) == 0 ? Method::table : Method::recursion;
}

void label(benchmark::State& state)
{
    state.SetLabel(state.range(0) == 0 ? "table" : "recursion");
}

constexpr int sample_count = 1000;

void BM_Point(benchmark::State& state)
{
    m0BspCurve* c = make_curve(static_cast<int>(state.range(1)), false, method_of(state));
    for (auto _ : state) {
        for (int i = 0; i < sample_count; i++)
            benchmark::DoNotOptimize(c->point(i / double(sample_count)));
    }
    state.SetItemsProcessed(state.iterations() * sample_count);
    label(state);
    delete c;
}

void BM_PointRational(benchmark::State& state)
{
    m0BspCurve* c = make_curve(static_cast<int>(state.range(1)), true, method_of(state));
    for (auto _ : state) {
        for (int i = 0; i < sample_count; i++)
            benchmark::DoNotOptimize(c->point(i / double(sample_count)));
    }
    state.SetItemsProcessed(state.iterations() * sample_count);
    label(state);
    delete c;
}

void BM_ThirdDer(benchmark::State& state)
{
    m0BspCurve* c = make_curve(static_cast<int>(state.range(1)), true, method_of(state));
    for (auto _ : state) {
        for (int i = 0; i < sample_count; i++)
            benchmark::DoNotOptimize(c->third_der(i / double(sample_count)));
    }
    state.SetItemsProcessed(state.iterations() * sample_count);
    label(state);
    delete c;
}

void BM_Projection(benchmark::State& state)
{
    m0BspCurve* c = make_curve(4, false, method_of(state));
    std::vector<m03DPoint> qs;
    for (int i = 0; i < 50; i++)
        qs.push_back(c->point(i / 50.0) + m03DPoint(3.0, -2.0, 1.0));
    for (auto _ : state) {
        for (const m03DPoint& q : qs)
            benchmark::DoNotOptimize(c->projection(q));
    }
    state.SetItemsProcessed(state.iterations() * static_cast<long>(qs.size()));
    label(state);
    delete c;
}

void BM_Approximate(benchmark::State& state)
{
    m0BspCurve* c = make_curve(4, false, method_of(state));
    for (auto _ : state) {
        m03DVector* poly = c->approximate(0.1);
        benchmark::DoNotOptimize(poly->size());
        delete poly;
    }
    label(state);
    delete c;
}

}  // namespace

// Arguments: basis method (0 table, 1 recursion), curve order.
BENCHMARK(BM_Point)->ArgsProduct({{0, 1}, {2, 4, 5}});
BENCHMARK(BM_PointRational)->ArgsProduct({{0, 1}, {4}});
BENCHMARK(BM_ThirdDer)->ArgsProduct({{0, 1}, {4}});
BENCHMARK(BM_Projection)->Arg(0)->Arg(1);
BENCHMARK(BM_Approximate)->Arg(0)->Arg(1);
