#include "cli/writers/Scene.h"

#include <algorithm>
#include <cmath>
#include <utility>

ScenePlacement scene_identity()
{
    return {1.0, 0.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 0.0, 1.0, 0.0};
}

ScenePlacement scene_scaling(double s)
{
    return {s, 0.0, 0.0, 0.0, 0.0, s, 0.0, 0.0, 0.0, 0.0, s, 0.0};
}

ScenePlacement scene_compose(const ScenePlacement& a, const ScenePlacement& b)
{
    ScenePlacement m{};
    for (int r = 0; r < 3; ++r) {
        for (int c = 0; c < 4; ++c) {
            double v = a[r * 4 + 0] * b[0 * 4 + c] + a[r * 4 + 1] * b[1 * 4 + c] +
                       a[r * 4 + 2] * b[2 * 4 + c];
            if (c == 3) v += a[r * 4 + 3];
            m[r * 4 + c] = v;
        }
    }
    return m;
}

ScenePoint scene_apply(const ScenePlacement& m, const ScenePoint& p)
{
    ScenePoint q{};
    for (int r = 0; r < 3; ++r)
        q[r] = m[r * 4 + 0] * p[0] + m[r * 4 + 1] * p[1] + m[r * 4 + 2] * p[2] + m[r * 4 + 3];
    return q;
}

bool SceneMesh::is_valid() const
{
    if (triangles.empty()) return false;
    for (const auto& t : triangles)
        for (std::uint32_t i : t)
            if (i >= vertices.size()) return false;
    return true;
}

std::array<std::uint8_t, 3> ScenePointCloud::colour(std::size_t k) const
{
    if (k < colours.size()) return colours[k];
    return {255, 255, 255};
}

bool SceneCurve::is_valid() const
{
    const std::size_t n = points.size();
    if (order < 2 || n < static_cast<std::size_t>(order)) return false;
    if (knots.size() != n + static_cast<std::size_t>(order)) return false;
    for (const ScenePoint& p : points)
        if (!std::isfinite(p[0]) || !std::isfinite(p[1]) || !std::isfinite(p[2])) return false;
    for (std::size_t i = 0; i < knots.size(); ++i) {
        if (!std::isfinite(knots[i])) return false;
        if (i > 0 && knots[i] < knots[i - 1]) return false;
    }
    if (!(knots[n] > knots[static_cast<std::size_t>(order) - 1])) return false;
    if (!weights.empty()) {
        if (weights.size() != n) return false;
        for (double w : weights)
            if (!std::isfinite(w) || !(w > 0.0)) return false;
    }
    return true;
}

ScenePoint SceneCurve::evaluate(double t, std::size_t s) const
{
    // de Boor's scheme on the homogeneous points (x w, y w, z w, w).
    const std::size_t p = static_cast<std::size_t>(order) - 1;
    std::vector<std::array<double, 4>> d(p + 1);
    for (std::size_t j = 0; j <= p; ++j) {
        const std::size_t k = s - p + j;
        const double w = weights.empty() ? 1.0 : weights[k];
        d[j] = {points[k][0] * w, points[k][1] * w, points[k][2] * w, w};
    }
    for (std::size_t r = 1; r <= p; ++r) {
        for (std::size_t j = p; j >= r; --j) {
            const std::size_t i = s - p + j;
            const double den = knots[i + p + 1 - r] - knots[i];
            const double alpha = den > 0.0 ? (t - knots[i]) / den : 0.0;
            for (int c = 0; c < 4; ++c)
                d[j][c] = (1.0 - alpha) * d[j - 1][c] + alpha * d[j][c];
        }
    }
    const double w = d[p][3];
    return {d[p][0] / w, d[p][1] / w, d[p][2] / w};
}

std::vector<ScenePoint> SceneCurve::sample() const
{
    std::vector<ScenePoint> out;
    if (!is_valid()) return out;
    const std::size_t first = static_cast<std::size_t>(order) - 1;
    const std::size_t end = points.size();
    std::size_t spans = 0;
    for (std::size_t s = first; s < end; ++s)
        if (knots[s + 1] > knots[s]) ++spans;
    std::size_t per_span = order == 2 ? 1 : static_cast<std::size_t>(samples_per_span);
    per_span = std::max<std::size_t>(1, std::min(per_span, (max_samples - 1) / spans));
    std::size_t last = first;
    for (std::size_t s = first; s < end && out.size() + 1 < max_samples; ++s) {
        if (!(knots[s + 1] > knots[s])) continue;
        const double a = knots[s], b = knots[s + 1];
        for (std::size_t k = 0; k < per_span && out.size() + 1 < max_samples; ++k)
            out.push_back(evaluate(a + (b - a) * (static_cast<double>(k) / static_cast<double>(per_span)), s));
        last = s;
    }
    out.push_back(evaluate(knots[end], last));
    return out;
}

SceneGroup& SceneGroup::add(SceneGroup g)
{
    groups.push_back(std::move(g));
    members.push_back({SceneMember::group, groups.size() - 1});
    return groups.back();
}

SceneMesh& SceneGroup::add(SceneMesh m)
{
    meshes.push_back(std::move(m));
    members.push_back({SceneMember::mesh, meshes.size() - 1});
    return meshes.back();
}

SceneCurve& SceneGroup::add(SceneCurve c)
{
    curves.push_back(std::move(c));
    members.push_back({SceneMember::curve, curves.size() - 1});
    return curves.back();
}

ScenePointCloud& SceneGroup::add(ScenePointCloud c)
{
    clouds.push_back(std::move(c));
    members.push_back({SceneMember::cloud, clouds.size() - 1});
    return clouds.back();
}

const SceneItemInfo& ScenePlacedItem::info() const
{
    if (mesh) return mesh->info;
    if (curve) return curve->info;
    return cloud->info;
}

namespace {

void place(const SceneGroup& g, const ScenePlacement& world, std::vector<std::string>& path,
           std::vector<ScenePlacedItem>& out)
{
    for (const SceneMember& m : g.members) {
        ScenePlacedItem item{m.kind, nullptr, nullptr, nullptr, world, path};
        switch (m.kind) {
        case SceneMember::group: {
            const SceneGroup& child = g.groups[m.index];
            path.push_back(child.name);
            place(child, scene_compose(world, child.placement), path, out);
            path.pop_back();
            continue;
        }
        case SceneMember::mesh: item.mesh = &g.meshes[m.index]; break;
        case SceneMember::curve: item.curve = &g.curves[m.index]; break;
        case SceneMember::cloud: item.cloud = &g.clouds[m.index]; break;
        }
        out.push_back(std::move(item));
    }
}

std::size_t count_items(const SceneGroup& g)
{
    std::size_t n = g.meshes.size() + g.curves.size() + g.clouds.size();
    for (const SceneGroup& child : g.groups) n += count_items(child);
    return n;
}

} // namespace

std::vector<ScenePlacedItem> Scene::placed_items(double scale) const
{
    std::vector<ScenePlacedItem> out;
    std::vector<std::string> path;
    place(top, scene_compose(scene_scaling(scale), top.placement), path, out);
    return out;
}

std::size_t Scene::num_items() const
{
    return count_items(top);
}

Scene Scene::empty_copy() const
{
    Scene out;
    out.archive = archive;
    out.options = options;
    out.top.name = top.name;
    out.top.mangled = top.mangled;
    out.top.placement = top.placement;
    return out;
}
