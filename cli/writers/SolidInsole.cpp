#include "cli/writers/SolidInsole.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <unordered_map>
#include <utility>

namespace {

using Tri = std::array<std::uint32_t, 3>;
using Point2 = std::array<double, 2>;

// Twice the signed area of a, b, c seen from above: positive when they turn
// counter-clockwise.
double turn(const Point2& a, const Point2& b, const Point2& c)
{
    return (b[0] - a[0]) * (c[1] - a[1]) - (b[1] - a[1]) * (c[0] - a[0]);
}

Point2 xy(const ScenePoint& p)
{
    return {p[0], p[1]};
}

std::uint64_t edge_key(std::uint32_t a, std::uint32_t b)
{
    return (static_cast<std::uint64_t>(a) << 32) | b;
}

// The top surface of mesh: its triangles that turn the way most turn,
// turned to face up, without a repeated directed edge.
std::vector<Tri> top_surface(const SceneMesh& mesh)
{
    std::size_t up = 0, down = 0;
    std::vector<double> turns;
    turns.reserve(mesh.triangles.size());
    for (const Tri& t : mesh.triangles) {
        const double a = turn(xy(mesh.vertices[t[0]]), xy(mesh.vertices[t[1]]), xy(mesh.vertices[t[2]]));
        turns.push_back(std::isfinite(a) ? a : 0.0);
        up += turns.back() > 0.0;
        down += turns.back() < 0.0;
    }
    const bool flip = down > up;
    std::vector<Tri> out;
    std::unordered_map<std::uint64_t, bool> used;
    used.reserve(3 * mesh.triangles.size());
    for (std::size_t k = 0; k < mesh.triangles.size(); ++k) {
        if (flip ? !(turns[k] < 0.0) : !(turns[k] > 0.0)) continue;
        Tri t = mesh.triangles[k];
        if (flip) std::swap(t[1], t[2]);
        const std::uint64_t e[3] = {edge_key(t[0], t[1]), edge_key(t[1], t[2]), edge_key(t[2], t[0])};
        if (used.count(e[0]) || used.count(e[1]) || used.count(e[2])) continue;
        for (std::uint64_t x : e) used[x] = true;
        out.push_back(t);
    }
    return out;
}

// The boundary edges of tris (directed edges whose reverse is in no
// triangle), as the next boundary vertex after each boundary vertex; a vertex
// with two or more boundary edges leaving it is a pinch and is listed.
struct Boundary {
    std::unordered_map<std::uint32_t, std::uint32_t> next;
    std::vector<std::uint32_t> pinches;
};

Boundary boundary_of(const std::vector<Tri>& tris)
{
    std::unordered_map<std::uint64_t, bool> directed;
    directed.reserve(3 * tris.size());
    for (const Tri& t : tris)
        for (int k = 0; k < 3; ++k) directed[edge_key(t[k], t[(k + 1) % 3])] = true;
    Boundary b;
    std::unordered_map<std::uint32_t, int> out;
    for (const Tri& t : tris) {
        for (int k = 0; k < 3; ++k) {
            const std::uint32_t u = t[k], v = t[(k + 1) % 3];
            if (directed.count(edge_key(v, u))) continue;
            b.next[u] = v;
            if (++out[u] == 2) b.pinches.push_back(u);
        }
    }
    return b;
}

// Leaves out every triangle at a pinch vertex until there is none: what is
// left meets itself along edges only. Each triangle leaves at most once and
// each removal updates the boundary around it alone, so the whole costs in
// proportion to the triangles however far one removal's pinches lead on.
std::vector<Tri> without_pinches(const std::vector<Tri>& tris, Boundary& b)
{
    std::unordered_map<std::uint64_t, std::size_t> directed;  // edge -> its triangle
    directed.reserve(3 * tris.size());
    std::uint32_t vertices = 0;
    for (const Tri& t : tris)
        for (int i = 0; i < 3; ++i) vertices = std::max(vertices, t[i] + 1);
    // The triangles around each vertex, in their order: those of vertex v are
    // around[first[v]] ... around[first[v + 1] - 1].
    std::vector<std::size_t> first(static_cast<std::size_t>(vertices) + 1, 0);
    for (const Tri& t : tris)
        for (int i = 0; i < 3; ++i) ++first[t[i] + 1];
    for (std::size_t v = 0; v < vertices; ++v) first[v + 1] += first[v];
    std::vector<std::size_t> around(first.back());
    {
        std::vector<std::size_t> fill(first.begin(), first.end() - 1);
        for (std::size_t k = 0; k < tris.size(); ++k) {
            for (int i = 0; i < 3; ++i) {
                directed[edge_key(tris[k][i], tris[k][(i + 1) % 3])] = k;
                around[fill[tris[k][i]]++] = k;
            }
        }
    }
    // How many boundary edges leave each vertex.
    std::vector<int> out(vertices, 0);
    for (const auto& [e, k] : directed)
        if (!directed.count(edge_key(static_cast<std::uint32_t>(e), static_cast<std::uint32_t>(e >> 32))))
            ++out[static_cast<std::uint32_t>(e >> 32)];
    std::vector<std::uint32_t> work;
    for (std::uint32_t v = 0; v < vertices; ++v)
        if (out[v] >= 2) work.push_back(v);
    std::vector<bool> alive(tris.size(), true);
    while (!work.empty()) {
        const std::uint32_t p = work.back();
        work.pop_back();
        if (out[p] < 2) continue;
        for (std::size_t a = first[p]; a < first[p + 1]; ++a) {
            const std::size_t k = around[a];
            if (!alive[k]) continue;
            alive[k] = false;
            for (int i = 0; i < 3; ++i) {
                const std::uint32_t u = tris[k][i], v = tris[k][(i + 1) % 3];
                directed.erase(edge_key(u, v));
                if (directed.count(edge_key(v, u))) {
                    // Its neighbour's edge v -> u is now on the boundary.
                    if (++out[v] == 2) work.push_back(v);
                } else {
                    --out[u];
                }
            }
        }
    }
    std::vector<Tri> kept;
    for (std::size_t k = 0; k < tris.size(); ++k)
        if (alive[k]) kept.push_back(tris[k]);
    b = boundary_of(kept);
    return kept;
}

// The boundary's loops, each in the order its edges run.
std::vector<std::vector<std::uint32_t>> loops_of(const Boundary& b)
{
    std::vector<std::uint32_t> starts;
    for (const auto& [u, v] : b.next) starts.push_back(u);
    // The loops come out in the same order on every run.
    std::sort(starts.begin(), starts.end());
    std::unordered_map<std::uint32_t, bool> seen;
    std::vector<std::vector<std::uint32_t>> loops;
    for (std::uint32_t s : starts) {
        if (seen.count(s)) continue;
        std::vector<std::uint32_t> loop;
        std::uint32_t u = s;
        while (!seen.count(u)) {
            seen[u] = true;
            loop.push_back(u);
            const auto it = b.next.find(u);
            if (it == b.next.end()) break;
            u = it->second;
        }
        loops.push_back(std::move(loop));
    }
    return loops;
}

} // namespace

bool SolidInsole::is_insole(const std::string& name)
{
    return name.rfind("FINISH_MODEL", 0) == 0;
}

std::optional<std::vector<std::array<std::uint32_t, 3>>> SolidInsole::ear_clip(
    const std::vector<std::array<double, 2>>& polygon, std::size_t max_tests)
{
    const std::size_t n = polygon.size();
    if (n < 3) return std::nullopt;
    std::vector<std::uint32_t> prev(n), next(n);
    for (std::size_t k = 0; k < n; ++k) {
        prev[k] = static_cast<std::uint32_t>((k + n - 1) % n);
        next[k] = static_cast<std::uint32_t>((k + 1) % n);
    }
    std::vector<Tri> out;
    out.reserve(n - 2);
    std::size_t left = n, tests = 0, since_ear = 0;
    std::uint32_t i = 0;
    const auto is_ear = [&](std::uint32_t b) {
        const std::uint32_t a = prev[b], c = next[b];
        const Point2 &pa = polygon[a], &pb = polygon[b], &pc = polygon[c];
        if (!(turn(pa, pb, pc) > 0.0)) return false;
        // No other vertex inside the ear or on its edges: one on the new
        // diagonal would be cut off from the rest.
        for (std::uint32_t p = next[c]; p != a; p = next[p]) {
            if (++tests > max_tests) return false;
            const Point2& q = polygon[p];
            if (turn(pa, pb, q) >= 0.0 && turn(pb, pc, q) >= 0.0 && turn(pc, pa, q) >= 0.0) return false;
        }
        return true;
    };
    while (left > 3) {
        if (tests > max_tests || since_ear > left) return std::nullopt;
        if (is_ear(i)) {
            out.push_back({prev[i], i, next[i]});
            next[prev[i]] = next[i];
            prev[next[i]] = prev[i];
            i = prev[i];
            --left;
            since_ear = 0;
        } else {
            i = next[i];
            ++since_ear;
        }
    }
    if (!(turn(polygon[prev[i]], polygon[i], polygon[next[i]]) > 0.0)) return std::nullopt;
    out.push_back({prev[i], i, next[i]});
    return out;
}

std::optional<SceneMesh> SolidInsole::close(const SceneMesh& mesh)
{
    if (!mesh.is_valid()) return std::nullopt;
    Boundary boundary;
    const std::vector<Tri> top = without_pinches(top_surface(mesh), boundary);
    if (top.empty()) return std::nullopt;

    SceneMesh out;
    out.info = mesh.info;
    // The surface's vertices, in their first use order.
    std::unordered_map<std::uint32_t, std::uint32_t> index;
    const auto vertex = [&](std::uint32_t v) {
        const auto [it, added] = index.emplace(v, static_cast<std::uint32_t>(out.vertices.size()));
        if (added) out.vertices.push_back(mesh.vertices[v]);
        return it->second;
    };
    for (const Tri& t : top) out.triangles.push_back({vertex(t[0]), vertex(t[1]), vertex(t[2])});
    const std::size_t surface_vertices = out.vertices.size();

    double lowest = out.vertices[0][2];
    for (const ScenePoint& p : out.vertices) lowest = std::min(lowest, p[2]);
    const double floor_z = std::min(base_plane, lowest - min_wall_height);

    // The loops in the surface's own numbering, each told outer (turning
    // counter-clockwise seen from above) or hole.
    std::vector<std::vector<std::uint32_t>> loops = loops_of(boundary);
    bool holes = false;
    for (std::vector<std::uint32_t>& loop : loops) {
        double area = 0.0;
        for (std::uint32_t& v : loop) v = index.at(v);
        for (std::size_t k = 0; k < loop.size(); ++k) {
            const ScenePoint& a = out.vertices[loop[k]];
            const ScenePoint& b = out.vertices[loop[(k + 1) % loop.size()]];
            area += a[0] * b[1] - b[0] * a[1];
        }
        holes = holes || !(area > 0.0);
    }

    // The floor, under each loop by ear clipping where every loop is an outer
    // one and each clips; else the surface laid flat.
    std::vector<std::vector<Tri>> clipped;
    bool flat = holes;
    for (std::size_t k = 0; k < loops.size() && !flat; ++k) {
        std::vector<Point2> polygon;
        for (std::uint32_t v : loops[k]) polygon.push_back(xy(out.vertices[v]));
        auto tris = ear_clip(polygon);
        if (!tris) flat = true;
        else clipped.push_back(std::move(*tris));
    }

    // below[v]: the floor's vertex under surface vertex v.
    std::vector<std::uint32_t> below(surface_vertices, 0);
    const auto floor_vertex = [&](std::uint32_t v) {
        below[v] = static_cast<std::uint32_t>(out.vertices.size());
        out.vertices.push_back({out.vertices[v][0], out.vertices[v][1], floor_z});
    };
    if (flat) {
        for (std::uint32_t v = 0; v < surface_vertices; ++v) floor_vertex(v);
        const std::size_t n = out.triangles.size();
        for (std::size_t k = 0; k < n; ++k) {
            const Tri t = out.triangles[k];
            out.triangles.push_back({below[t[0]], below[t[2]], below[t[1]]});
        }
    } else {
        for (const auto& loop : loops)
            for (std::uint32_t v : loop) floor_vertex(v);
        for (std::size_t k = 0; k < loops.size(); ++k)
            for (const Tri& t : clipped[k])
                out.triangles.push_back({below[loops[k][t[0]]], below[loops[k][t[2]]], below[loops[k][t[1]]]});
    }
    // The walls: the boundary edge u -> v of the surface runs v -> u in its
    // wall, whose bottom edge runs u' -> v' against the floor's v' -> u'.
    for (const auto& loop : loops) {
        for (std::size_t k = 0; k < loop.size(); ++k) {
            const std::uint32_t u = loop[k], v = loop[(k + 1) % loop.size()];
            out.triangles.push_back({v, u, below[u]});
            out.triangles.push_back({v, below[u], below[v]});
        }
    }
    return out;
}

std::size_t SolidInsole::close_all(SceneGroup& g)
{
    std::size_t n = 0;
    for (SceneMesh& m : g.meshes) {
        if (!is_insole(m.info.name)) continue;
        if (std::optional<SceneMesh> solid = close(m)) {
            m = std::move(*solid);
            ++n;
        }
    }
    for (SceneGroup& child : g.groups) n += close_all(child);
    return n;
}

SolidInsole::EdgeCount SolidInsole::count_edges(const SceneMesh& mesh)
{
    // Per undirected edge: how often it runs each way.
    std::map<std::pair<std::uint32_t, std::uint32_t>, std::array<std::size_t, 2>> edges;
    for (const Tri& t : mesh.triangles) {
        for (int k = 0; k < 3; ++k) {
            const std::uint32_t u = t[k], v = t[(k + 1) % 3];
            auto& e = edges[{std::min(u, v), std::max(u, v)}];
            ++e[u < v ? 0 : 1];
        }
    }
    EdgeCount c;
    for (const auto& [key, e] : edges) {
        if (e[0] + e[1] == 1) ++c.open;
        if (e[0] != 1 || e[1] != 1) ++c.bad;
    }
    return c;
}

double SolidInsole::volume(const SceneMesh& mesh)
{
    double six = 0.0;
    for (const Tri& t : mesh.triangles) {
        const ScenePoint& a = mesh.vertices[t[0]];
        const ScenePoint& b = mesh.vertices[t[1]];
        const ScenePoint& c = mesh.vertices[t[2]];
        six += a[0] * (b[1] * c[2] - b[2] * c[1]) - a[1] * (b[0] * c[2] - b[2] * c[0]) +
               a[2] * (b[0] * c[1] - b[1] * c[0]);
    }
    return six / 6.0;
}
