// SolidInsole: finished insoles shaped as the plug-in hands them (a height
// grid's cells as triangle pairs, with or without its wall and floor strips)
// closed into solids: no open edge, every edge shared by two triangles that
// run along it in opposite directions, outward winding.
#include "cli/writers/SolidInsole.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace {

using Tri = std::array<std::uint32_t, 3>;

// A height grid over the cells marked '#' in rows (row 0 first, at y = 0),
// triangulated as the plug-in does: nodes of marked cells get vertices,
// cell (a, b, c, d) gives (a, b, c) and (b, d, c) where those exist.
// height(x, y) gives each node's z.
template <class Height>
SceneMesh grid(const std::vector<std::string>& rows, Height height)
{
    const int ny = static_cast<int>(rows.size()) + 1;
    const int nx = static_cast<int>(rows[0].size()) + 1;
    std::vector<int> index(static_cast<std::size_t>(nx * ny), -1);
    const auto marked = [&](int i, int j) {
        return j >= 0 && j < ny - 1 && i >= 0 && i < nx - 1 && rows[static_cast<std::size_t>(j)][static_cast<std::size_t>(i)] == '#';
    };
    SceneMesh m;
    m.info.name = "FINISH_MODEL~0";
    m.info.colour = 3;
    for (int j = 0; j < ny; ++j) {
        for (int i = 0; i < nx; ++i) {
            if (!(marked(i, j) || marked(i - 1, j) || marked(i, j - 1) || marked(i - 1, j - 1))) continue;
            index[static_cast<std::size_t>(j * nx + i)] = static_cast<int>(m.vertices.size());
            m.vertices.push_back({double(i), double(j), height(double(i), double(j))});
        }
    }
    const auto at = [&](int i, int j) { return index[static_cast<std::size_t>(j * nx + i)]; };
    for (int j = 0; j + 1 < ny; ++j) {
        for (int i = 0; i + 1 < nx; ++i) {
            if (!marked(i, j)) continue;
            const int a = at(i, j), b = at(i + 1, j), c = at(i, j + 1), d = at(i + 1, j + 1);
            m.triangles.push_back({std::uint32_t(a), std::uint32_t(b), std::uint32_t(c)});
            m.triangles.push_back({std::uint32_t(b), std::uint32_t(d), std::uint32_t(c)});
        }
    }
    return m;
}

SceneMesh flat_grid(const std::vector<std::string>& rows, double z)
{
    return grid(rows, [z](double, double) { return z; });
}

// Adds strips like the plug-in's margin columns: for each row of vertices,
// a wall from its first vertex down to 0.001 (projecting to a line) and a
// floor strip from its last vertex back to its first (turning the other way).
void add_plugin_strips(SceneMesh& m)
{
    std::vector<std::uint32_t> first, last;
    double y = -1;
    for (std::uint32_t v = 0; v < m.vertices.size(); ++v) {
        if (m.vertices[v][1] != y) {
            first.push_back(v);
            last.push_back(v);
            y = m.vertices[v][1];
        }
        last.back() = v;
    }
    const auto add = [&](const ScenePoint& p) {
        m.vertices.push_back(p);
        return std::uint32_t(m.vertices.size() - 1);
    };
    for (std::size_t r = 0; r + 1 < first.size(); ++r) {
        const ScenePoint a = m.vertices[first[r]], b = m.vertices[first[r + 1]];
        const ScenePoint ra = m.vertices[last[r]], rb = m.vertices[last[r + 1]];
        const std::uint32_t a_base = add({a[0], a[1], 0.001}), a_top = add(a);
        const std::uint32_t b_base = add({b[0], b[1], 0.001}), b_top = add(b);
        m.triangles.push_back({a_base, a_top, b_base});
        m.triangles.push_back({a_top, b_top, b_base});
        const std::uint32_t r0 = add({ra[0], ra[1], 0.001}), l0 = add({a[0], a[1], 0.001});
        const std::uint32_t r1 = add({rb[0], rb[1], 0.001}), l1 = add({b[0], b[1], 0.001});
        m.triangles.push_back({r0, l0, r1});
        m.triangles.push_back({l0, l1, r1});
    }
}

// Every edge shared by exactly two triangles in opposite directions, counted
// here on its own rather than by the class under test.
void expect_closed(const SceneMesh& m)
{
    std::map<std::pair<std::uint32_t, std::uint32_t>, int> directed;
    for (const Tri& t : m.triangles) {
        ASSERT_NE(t[0], t[1]);
        ASSERT_NE(t[1], t[2]);
        ASSERT_NE(t[2], t[0]);
        for (int k = 0; k < 3; ++k) ++directed[{t[k], t[(k + 1) % 3]}];
    }
    std::size_t boundary = 0, shared_badly = 0;
    for (const auto& [e, n] : directed) {
        const auto back = directed.find({e.second, e.first});
        if (back == directed.end()) ++boundary;
        else if (n != 1 || back->second != 1) ++shared_badly;
    }
    EXPECT_EQ(boundary, 0u);
    EXPECT_EQ(shared_badly, 0u);
    const SolidInsole::EdgeCount c = SolidInsole::count_edges(m);
    EXPECT_EQ(c.open, 0u);
    EXPECT_EQ(c.bad, 0u);
}

double lowest(const SceneMesh& m)
{
    double z = m.vertices.at(0)[2];
    for (const ScenePoint& p : m.vertices) z = std::min(z, p[2]);
    return z;
}

// Counter-clockwise polygon area.
double area(const std::vector<std::array<double, 2>>& p)
{
    double a = 0.0;
    for (std::size_t k = 0; k < p.size(); ++k)
        a += p[k][0] * p[(k + 1) % p.size()][1] - p[(k + 1) % p.size()][0] * p[k][1];
    return a / 2.0;
}

} // namespace

TEST(SolidInsole, Close_RectangleIsClosedWithItsVolumeAboveTheBasePlane)
{
    const SceneMesh m = flat_grid({"####", "####", "####"}, 5.0);
    const std::optional<SceneMesh> s = SolidInsole::close(m);
    ASSERT_TRUE(s);
    expect_closed(*s);
    // 4 x 3 mm at 5 mm over the base plane.
    EXPECT_NEAR(SolidInsole::volume(*s), 60.0, 1e-9);
    EXPECT_EQ(lowest(*s), 0.0);
    EXPECT_EQ(s->info.name, "FINISH_MODEL~0");
    EXPECT_EQ(s->info.colour, 3);
    // 24 top triangles; the boundary has 14 vertices: 28 wall triangles and
    // an ear-clipped floor of 12.
    EXPECT_EQ(s->triangles.size(), 24u + 28u + 12u);
}

TEST(SolidInsole, Close_ConcaveOutlineGetsAnEarClippedFloorThatCoversItExactly)
{
    // A U: the floor must not bridge the notch.
    const std::vector<std::string> u = {"#####", "#####", "##.##", "##.##", "##.##"};
    const SceneMesh m = grid(u, [](double x, double y) { return 2.0 + 0.1 * x + 0.05 * y * y; });
    const std::optional<SceneMesh> s = SolidInsole::close(m);
    ASSERT_TRUE(s);
    expect_closed(*s);
    EXPECT_GT(SolidInsole::volume(*s), 0.0);
    // The floor's triangles, facing down at z = 0, cover the U's 22 cells.
    double floor_area = 0.0;
    std::size_t floor_triangles = 0;
    for (const Tri& t : s->triangles) {
        const ScenePoint &a = s->vertices[t[0]], &b = s->vertices[t[1]], &c = s->vertices[t[2]];
        if (a[2] != 0.0 || b[2] != 0.0 || c[2] != 0.0) continue;
        ++floor_triangles;
        const double turn = (b[0] - a[0]) * (c[1] - a[1]) - (b[1] - a[1]) * (c[0] - a[0]);
        EXPECT_LT(turn, 0.0);
        floor_area -= turn / 2.0;
    }
    EXPECT_DOUBLE_EQ(floor_area, 22.0);
    // Ear clipping: two fewer triangles than the outline's 26 vertices (5 + 5
    // + 2 + 3 + 1 + 3 + 2 + 5 unit edges), not the 44 of the surface laid flat.
    EXPECT_EQ(floor_triangles, 24u);
}

TEST(SolidInsole, Close_LeavesThePluginsWallAndFloorStripsOut)
{
    const std::vector<std::string> l = {"###", "###", "#..", "#.."};
    const SceneMesh plain = flat_grid(l, 3.0);
    SceneMesh with_strips = plain;
    add_plugin_strips(with_strips);
    ASSERT_GT(with_strips.triangles.size(), plain.triangles.size());
    const std::optional<SceneMesh> a = SolidInsole::close(plain), b = SolidInsole::close(with_strips);
    ASSERT_TRUE(a && b);
    expect_closed(*b);
    EXPECT_EQ(a->triangles, b->triangles);
    EXPECT_EQ(a->vertices, b->vertices);
}

TEST(SolidInsole, Close_SurfaceWithAHoleTakesItsFlatCopyAsTheFloor)
{
    const SceneMesh m = flat_grid({"###", "#.#", "###"}, 4.0);
    const std::optional<SceneMesh> s = SolidInsole::close(m);
    ASSERT_TRUE(s);
    expect_closed(*s);
    // 8 cells at 4 mm.
    EXPECT_NEAR(SolidInsole::volume(*s), 32.0, 1e-9);
    // 16 top and 16 floor triangles, walls around 8 + 4 boundary edges.
    EXPECT_EQ(s->triangles.size(), 16u + 16u + 2u * 16u);
}

TEST(SolidInsole, Close_CellsMeetingAtACornerOnlyAreLeftOutThere)
{
    // Two blocks touch at one vertex: the triangles there go, so that no
    // vertex carries two runs of the boundary.
    const SceneMesh m = flat_grid({"##..", "##..", "..##", "..##"}, 1.0);
    const std::optional<SceneMesh> s = SolidInsole::close(m);
    ASSERT_TRUE(s);
    expect_closed(*s);
    EXPECT_GT(SolidInsole::volume(*s), 0.0);
}

TEST(SolidInsole, Close_AChainOfBlocksMeetingAtCornersIsClosedWhereItHolds)
{
    const SceneMesh m = flat_grid({"##......", "##......", "..##....", "..##....", "....##..", "....##..", "......##",
                                   "......##"},
                                  2.0);
    const std::optional<SceneMesh> s = SolidInsole::close(m);
    ASSERT_TRUE(s);
    expect_closed(*s);
    // Four blocks of 4 cells at 2 mm; at each of the 3 corners where two
    // meet, each loses the half cell (one triangle) at that corner: 13 cells.
    EXPECT_NEAR(SolidInsole::volume(*s), 13.0 * 2.0, 1e-9);
}

TEST(SolidInsole, Close_FloorGoesBelowASurfaceThatReachesTheBasePlane)
{
    const SceneMesh low = flat_grid({"##", "##"}, 0.05);
    const std::optional<SceneMesh> s = SolidInsole::close(low);
    ASSERT_TRUE(s);
    expect_closed(*s);
    EXPECT_DOUBLE_EQ(lowest(*s), 0.05 - SolidInsole::min_wall_height);
    // At exactly min_wall_height above the base plane, the floor is that plane.
    const std::optional<SceneMesh> at = SolidInsole::close(flat_grid({"##", "##"}, SolidInsole::min_wall_height));
    ASSERT_TRUE(at);
    EXPECT_EQ(lowest(*at), 0.0);
    const std::optional<SceneMesh> under = SolidInsole::close(flat_grid({"##", "##"}, -2.0));
    ASSERT_TRUE(under);
    EXPECT_DOUBLE_EQ(lowest(*under), -2.0 - SolidInsole::min_wall_height);
    EXPECT_NEAR(SolidInsole::volume(*under), 4.0 * SolidInsole::min_wall_height, 1e-9);
}

TEST(SolidInsole, Close_SurfaceFacingDownIsTurnedUp)
{
    SceneMesh m = flat_grid({"###", "###"}, 2.0);
    for (Tri& t : m.triangles) std::swap(t[1], t[2]);
    const std::optional<SceneMesh> s = SolidInsole::close(m);
    ASSERT_TRUE(s);
    expect_closed(*s);
    EXPECT_NEAR(SolidInsole::volume(*s), 12.0, 1e-9);
}

TEST(SolidInsole, Close_NothingToCloseWithoutATopSurface)
{
    SceneMesh wall;
    wall.vertices = {{0, 0, 0}, {1, 0, 0}, {0, 0, 1}};
    wall.triangles = {{0, 1, 2}};
    EXPECT_FALSE(SolidInsole::close(wall));
    EXPECT_FALSE(SolidInsole::close(SceneMesh{}));
}

TEST(SolidInsole, CloseAll_ReplacesOnlyTheInsoles)
{
    SceneGroup top;
    SceneMesh scan = flat_grid({"##"}, 1.0);
    scan.info.name = "SCAN_(LEFT)_1";
    top.add(scan);
    SceneGroup g;
    g.add(flat_grid({"##"}, 1.0));
    top.add(g);
    EXPECT_EQ(SolidInsole::close_all(top), 1u);
    EXPECT_EQ(top.meshes[0].triangles.size(), 4u);
    expect_closed(top.groups[0].meshes[0]);
    EXPECT_TRUE(SolidInsole::is_insole("FINISH_MODEL~12"));
    EXPECT_FALSE(SolidInsole::is_insole("SCAN_(LEFT)_1"));
}

TEST(SolidInsole, EarClip_ConcavePolygonIntoCounterClockwiseTrianglesOfItsArea)
{
    // An arrow with a deep notch and a collinear run along its base.
    const std::vector<std::array<double, 2>> p = {{0, 0}, {2, 0}, {4, 0}, {4, 4}, {2, 1}, {0, 4}};
    const auto tris = SolidInsole::ear_clip(p);
    ASSERT_TRUE(tris);
    ASSERT_EQ(tris->size(), p.size() - 2);
    double sum = 0.0;
    for (const Tri& t : *tris) {
        const double a = area({p[t[0]], p[t[1]], p[t[2]]});
        EXPECT_GT(a, 0.0);
        sum += a;
    }
    EXPECT_DOUBLE_EQ(sum, area(p));
}

TEST(SolidInsole, EarClip_BowTieHasNoTriangulation)
{
    EXPECT_FALSE(SolidInsole::ear_clip({{0, 0}, {2, 2}, {2, 0}, {0, 2}}));
    EXPECT_FALSE(SolidInsole::ear_clip({{0, 0}, {1, 0}}));
}

TEST(SolidInsole, EarClip_StopsAtItsBudgetOfPointTests)
{
    // A square's first ear is tried against the one vertex it leaves out.
    const std::vector<std::array<double, 2>> square = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
    EXPECT_TRUE(SolidInsole::ear_clip(square, 1));
    EXPECT_FALSE(SolidInsole::ear_clip(square, 0));
    // A triangle needs none.
    EXPECT_TRUE(SolidInsole::ear_clip({{0, 0}, {1, 0}, {0, 1}}, 0));
    EXPECT_EQ(SolidInsole::max_ear_tests, std::size_t(1) << 26);
}
