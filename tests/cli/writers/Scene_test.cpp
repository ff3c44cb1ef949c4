// The neutral scene of `velmora convert`: placements, the placed items of the
// tree and curve sampling.
#include "cli/writers/Scene.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/cli/writers/SampleScene.h"

namespace {

void expect_near(const ScenePoint& a, const ScenePoint& b, double tol)
{
    for (int c = 0; c < 3; ++c) EXPECT_NEAR(a[c], b[c], tol) << "component " << c;
}

SceneCurve bezier()
{
    SceneCurve c;
    c.order = 4;
    c.points = {{0, 0, 0}, {1, 2, 0}, {3, 2, 0}, {4, 0, 0}};
    c.knots = {0, 0, 0, 0, 1, 1, 1, 1};
    return c;
}

} // namespace

TEST(ScenePlacement, Compose_AppliesTheRightPlacementFirst)
{
    const ScenePlacement turn = sample_scene::quarter_turn(0, 0, 0);
    const ScenePlacement move = sample_scene::translation(10, 0, 0);
    // Moved first, then turned: (1, 0, 0) -> (11, 0, 0) -> (0, 11, 0).
    expect_near(scene_apply(scene_compose(turn, move), {1, 0, 0}), {0, 11, 0}, 0.0);
    // Turned first, then moved: (1, 0, 0) -> (0, 1, 0) -> (10, 1, 0).
    expect_near(scene_apply(scene_compose(move, turn), {1, 0, 0}), {10, 1, 0}, 0.0);
}

TEST(ScenePlacement, Scaling_ScalesEveryCoordinate)
{
    expect_near(scene_apply(scene_scaling(0.001), {1000, -2000, 3}), {1, -2, 0.003}, 1e-15);
}

TEST(Scene, PlacedItems_FollowTheWalkWithTheirGroupPathsAndPlacements)
{
    const Scene s = sample_scene::scene();
    const std::vector<ScenePlacedItem> items = s.placed_items(1.0);
    ASSERT_EQ(items.size(), 4u);
    EXPECT_EQ(items[0].kind, SceneMember::mesh);
    EXPECT_EQ(items[1].kind, SceneMember::cloud);
    EXPECT_EQ(items[2].kind, SceneMember::curve);
    EXPECT_EQ(items[3].kind, SceneMember::curve);
    EXPECT_EQ(items[0].path, (std::vector<std::string>{"Data Base", "VelmScan(A)"}));
    EXPECT_EQ(items[3].path, (std::vector<std::string>{"Data Base", "PCS models(B)"}));
    EXPECT_EQ(items[0].info().mangled, "VelmScan(A)_SCAN_(LEFT)_1");
    // Data Base moves by (100, 0, 0), VelmScan(A) by (0, 200, 0).
    expect_near(scene_apply(items[0].world, {10, 0, 1}), {110, 200, 1}, 0.0);
    // PCS models(B) turns a quarter and rises by 5 inside Data Base.
    expect_near(scene_apply(items[3].world, {5, 5, 0}), {95, 5, 5}, 0.0);
    EXPECT_EQ(s.num_items(), 4u);
}

TEST(Scene, PlacedItems_ScaleComesLast)
{
    const Scene s = sample_scene::scene();
    const std::vector<ScenePlacedItem> items = s.placed_items(0.001);
    expect_near(scene_apply(items[0].world, {10, 0, 1}), {0.110, 0.200, 0.001}, 1e-15);
}

TEST(SceneCurve, Sample_PolylineGivesExactlyItsPoints)
{
    const SceneCurve c = sample_scene::polyline();
    const std::vector<ScenePoint> s = c.sample();
    ASSERT_EQ(s.size(), 3u);
    for (std::size_t k = 0; k < 3; ++k) expect_near(s[k], c.points[k], 1e-15);
}

TEST(SceneCurve, Sample_CubicBezierHasSixteenPerSpanAndTheRightMidpoint)
{
    const std::vector<ScenePoint> s = bezier().sample();
    ASSERT_EQ(s.size(), static_cast<std::size_t>(SceneCurve::samples_per_span) + 1);
    expect_near(s.front(), {0, 0, 0}, 1e-15);
    expect_near(s.back(), {4, 0, 0}, 1e-15);
    // At t = 1/2 a Bezier curve is (P0 + 3 P1 + 3 P2 + P3) / 8.
    expect_near(s[8], {2, 1.5, 0}, 1e-15);
}

TEST(SceneCurve, Sample_RationalQuarterCircleStaysOnTheCircle)
{
    SceneCurve c;
    c.order = 3;
    c.points = {{1, 0, 0}, {1, 1, 0}, {0, 1, 0}};
    c.weights = {1.0, std::sqrt(0.5), 1.0};
    c.knots = {0, 0, 0, 1, 1, 1};
    const std::vector<ScenePoint> s = c.sample();
    ASSERT_EQ(s.size(), 17u);
    for (const ScenePoint& p : s) EXPECT_NEAR(std::hypot(p[0], p[1]), 1.0, 1e-14);
    expect_near(s.back(), {0, 1, 0}, 1e-15);
}

TEST(SceneCurve, Sample_SkipsEmptyKnotSpans)
{
    SceneCurve c = bezier();
    c.points.push_back({5, 1, 0});
    // A double inner knot: spans [0, 0.5], [0.5, 0.5] (empty), [0.5, 1].
    c.points.push_back({6, 0, 0});
    c.knots = {0, 0, 0, 0, 0.5, 0.5, 1, 1, 1, 1};
    EXPECT_EQ(c.sample().size(), 2u * SceneCurve::samples_per_span + 1);
}

TEST(SceneCurve, Sample_InvalidCurvesGiveNothing)
{
    SceneCurve decreasing = bezier();
    decreasing.knots = {0, 0, 0, 1, 0.5, 1, 1, 1};
    EXPECT_TRUE(decreasing.sample().empty());
    SceneCurve no_domain = bezier();
    no_domain.knots = {1, 1, 1, 1, 1, 1, 1, 1};
    EXPECT_TRUE(no_domain.sample().empty());
    SceneCurve few_points = bezier();
    few_points.order = 5;
    EXPECT_TRUE(few_points.sample().empty());
    SceneCurve zero_weight = bezier();
    zero_weight.weights = {1, 0, 1, 1};
    EXPECT_TRUE(zero_weight.sample().empty());
    SceneCurve short_weights = bezier();
    short_weights.weights = {1, 1};
    EXPECT_TRUE(short_weights.sample().empty());
    SceneCurve nan_knot = bezier();
    nan_knot.knots[5] = std::nan("");
    EXPECT_TRUE(nan_knot.sample().empty());
    SceneCurve infinite_point = bezier();
    infinite_point.points[1][2] = std::numeric_limits<double>::infinity();
    EXPECT_TRUE(infinite_point.sample().empty());
    SceneCurve order_one = bezier();
    order_one.order = 1;
    order_one.knots.pop_back();
    order_one.knots.pop_back();
    order_one.knots.pop_back();
    EXPECT_TRUE(order_one.sample().empty());
}

TEST(SceneCurve, Sample_ManySpansAreBoundedByMaxSamples)
{
    SceneCurve c;
    c.order = 4;
    const std::size_t n = 200000;
    for (std::size_t k = 0; k < n; ++k) c.points.push_back({static_cast<double>(k), 0, 0});
    for (std::size_t k = 0; k < n + 4; ++k)
        c.knots.push_back(static_cast<double>(std::min(std::max<std::size_t>(k, 3), n) - 3));
    ASSERT_TRUE(c.is_valid());
    const std::vector<ScenePoint> s = c.sample();
    EXPECT_LE(s.size(), SceneCurve::max_samples);
    // Fewer samples per span, but every span is still visited to the end.
    EXPECT_GT(s.size(), n - 3);
    EXPECT_NEAR(s.back()[0], static_cast<double>(n - 1), 1e-9);
}

TEST(SceneMesh, IsValid_RefusesAnIndexPastTheVerticesAndNoTriangles)
{
    SceneMesh m = sample_scene::mesh();
    EXPECT_TRUE(m.is_valid());
    m.triangles.push_back({0, 1, 4});
    EXPECT_FALSE(m.is_valid());
    m.triangles.clear();
    EXPECT_FALSE(m.is_valid());
}

TEST(ScenePointCloud, Colour_IsWhiteWhereTheColoursStopShort)
{
    ScenePointCloud c = sample_scene::cloud();
    c.colours.resize(1);
    EXPECT_EQ(c.colour(0), (std::array<std::uint8_t, 3>{255, 0, 0}));
    EXPECT_EQ(c.colour(2), (std::array<std::uint8_t, 3>{255, 255, 255}));
}
