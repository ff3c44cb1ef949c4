#pragma once
// exactCurves: what the exact-curve writers' tests compare a file read back
// with: every curve of `velmora dump` on an archive, its control points placed
// in the world by the groups around it, and m0BspCurve's evaluation of it.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "cli/writers/Scene.h"
#include "curves/m0BspCurve.h"
#include "tests/support/commandRun.h"
#include "tests/support/demoArchive.h"

namespace exact {

// Knots and control points agree to this, relative to their size.
constexpr double relative = 1e-12;
// Points of a curve agree to this (mm) along it.
constexpr double evaluation_mm = 1e-9;
constexpr int evaluations = 1000;

struct DumpCurve {
    std::string mangled;
    std::string model;  // the name of the group holding it
    int order = 0;
    std::vector<ScenePoint> points;  // placed in the world
    std::vector<ScenePoint> local;   // as the host received them
    std::vector<double> weights;
    std::vector<double> knots;
    ScenePlacement world = scene_identity();

    // m0BspCurve's point at t, placed in the world.
    ScenePoint evaluate(double t) const
    {
        m0BspCurve c;
        const int n = static_cast<int>(local.size());
        auto* p = new m03DVector(n);
        for (int i = 0; i < n; ++i) p->set_point(i, m03DPoint(local[i][0], local[i][1], local[i][2]));
        auto* k = new m01DVector(static_cast<int>(knots.size()));
        for (std::size_t i = 0; i < knots.size(); ++i) k->set_point(static_cast<int>(i), knots[i]);
        c.set_degree(order - 1);
        c.set_no_of_cpnt(n);
        c.set_cpnt_vector(p);
        c.set_knot_vector(k);
        if (!weights.empty()) {
            auto* w = new m01DVector(n);
            for (int i = 0; i < n; ++i) w->set_point(i, weights[static_cast<std::size_t>(i)]);
            c.set_weight_vector(w);
        }
        const m03DPoint q = c.point(t);
        return scene_apply(world, {q.x(), q.y(), q.z()});
    }
    double first() const { return knots[static_cast<std::size_t>(order) - 1]; }
    double last() const { return knots[local.size()]; }
};

inline ScenePoint point_of(const nlohmann::json& p)
{
    return {p[0].get<double>(), p[1].get<double>(), p[2].get<double>()};
}

inline void collect(const nlohmann::json& item, const ScenePlacement& world, const std::string& model,
                    std::vector<DumpCurve>& out)
{
    if (item["type"] == "group") {
        ScenePlacement x{};
        for (int i = 0; i < 12; ++i) x[static_cast<std::size_t>(i)] = item["xform"][i].get<double>();
        const ScenePlacement inner = scene_compose(world, x);
        for (const auto& c : item["children"]) collect(c, inner, item["name"].get<std::string>(), out);
        return;
    }
    if (item["type"] != "curve" || item["status"] != 0) return;
    DumpCurve c;
    c.mangled = item["mangled"].get<std::string>();
    c.model = model;
    c.order = item["order"].get<int>();
    c.world = world;
    for (const auto& p : item["points"]) {
        c.local.push_back(point_of(p));
        c.points.push_back(scene_apply(world, c.local.back()));
    }
    if (!item["weights"].is_null()) c.weights = item["weights"].get<std::vector<double>>();
    c.knots = item["knots"].get<std::vector<double>>();
    out.push_back(std::move(c));
}

inline std::string velmora()
{
    return std::string(VELMORA_BINARY_DIR) + "/bin/velmora";
}

// The demo archive, written once into the build folder.
inline std::string demo_archive()
{
    const std::string path = std::string(VELMORA_BINARY_DIR) + "/exact-curves/demo.vlm";
    if (!std::filesystem::exists(path)) {
        std::filesystem::create_directories(std::filesystem::path(path).parent_path());
        EXPECT_TRUE(vlm::demo::write_archive(path));
    }
    return path;
}

// The curves `velmora dump` shows for archive.
inline std::vector<DumpCurve> dump_curves(const std::string& archive)
{
    const vlm::command_result r = vlm::run_command(velmora(), {"dump", archive});
    EXPECT_EQ(r.status, 0) << r.err;
    std::vector<DumpCurve> out;
    if (r.status == 0) collect(nlohmann::json::parse(r.out)["root"], scene_identity(), "", out);
    return out;
}

// `velmora convert archive -o out` (and extra arguments); the file written.
inline std::string convert(const std::string& archive, const std::string& name,
                           const std::vector<std::string>& extra = {})
{
    const std::string out = std::string(VELMORA_BINARY_DIR) + "/exact-curves/" + name;
    std::vector<std::string> args = {"convert", archive, "-o", out};
    args.insert(args.end(), extra.begin(), extra.end());
    const vlm::command_result r = vlm::run_command(velmora(), args);
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.err, "");
    EXPECT_EQ(r.out, "");
    return out;
}

inline bool close(double a, double b)
{
    return std::fabs(a - b) <= relative * std::max(std::fabs(a), std::fabs(b));
}

// Expands distinct knots with multiplicities into the full knot vector.
inline std::vector<double> flat(const std::vector<double>& knots, const std::vector<int>& mults)
{
    std::vector<double> out;
    for (std::size_t i = 0; i < knots.size(); ++i) out.insert(out.end(), static_cast<std::size_t>(mults[i]), knots[i]);
    return out;
}

// A curve read back from a file: degree, full knot vector, control points,
// weights (empty when polynomial) and its evaluation.
struct FileCurve {
    int degree = 0;
    std::vector<double> knots;
    std::vector<ScenePoint> points;
    std::vector<double> weights;
};

// The file's curve equals the dump's: knots, points and weights within the
// relative tolerance, 2-D when flat (z compared with 0).
inline void expect_same(const FileCurve& f, const DumpCurve& d, bool flat_xy = false)
{
    SCOPED_TRACE(d.mangled);
    EXPECT_EQ(f.degree, d.order - 1);
    ASSERT_EQ(f.knots.size(), d.knots.size());
    for (std::size_t i = 0; i < d.knots.size(); ++i) EXPECT_TRUE(close(f.knots[i], d.knots[i])) << i << ": " << f.knots[i] << " vs " << d.knots[i];
    ASSERT_EQ(f.points.size(), d.points.size());
    for (std::size_t i = 0; i < d.points.size(); ++i)
        for (int c = 0; c < 3; ++c) {
            const double want = flat_xy && c == 2 ? 0.0 : d.points[i][static_cast<std::size_t>(c)];
            EXPECT_TRUE(close(f.points[i][static_cast<std::size_t>(c)], want))
                << "point " << i << "[" << c << "]: " << f.points[i][static_cast<std::size_t>(c)] << " vs " << want;
        }
    if (d.weights.empty()) {
        for (double w : f.weights) EXPECT_EQ(w, 1.0);
    } else {
        ASSERT_EQ(f.weights.size(), d.weights.size());
        for (std::size_t i = 0; i < d.weights.size(); ++i) EXPECT_TRUE(close(f.weights[i], d.weights[i])) << i;
    }
}

} // namespace exact
