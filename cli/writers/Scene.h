#pragma once
// Scene: what an import handed the host, held in memory without any of the
// host's or the library's types, so that the file writers of `velmora convert`
// need nothing but this header. A tree of groups (names and placements) whose
// members, in the order the host received them, are groups, triangle meshes,
// NURBS curves and coloured point clouds.
//
// Names are the bytes the host received, unchanged; each writer makes them fit
// its format. Coordinates are the archive's, in millimetres.
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

using ScenePoint = std::array<double, 3>;

// A placement: a 3 x 4 matrix in row order, the translation in the last
// column; a point p is placed at R p + t.
using ScenePlacement = std::array<double, 12>;

ScenePlacement scene_identity();
// a * b: b first, then a.
ScenePlacement scene_compose(const ScenePlacement& a, const ScenePlacement& b);
ScenePoint scene_apply(const ScenePlacement& m, const ScenePoint& p);
// A placement that scales every coordinate by s.
ScenePlacement scene_scaling(double s);

// What every item carries besides its geometry.
struct SceneItemInfo {
    // The item has no colour index (the host set no COLOUR).
    static constexpr int no_colour = -1;

    std::string name;     // the NAME attribute
    std::string mangled;  // the name as the group's mangler made it
    std::string layer;    // the layer's name
    int level = 0;        // the layer's number
    int colour = no_colour;
};

struct SceneMesh {
    SceneItemInfo info;
    std::vector<ScenePoint> vertices;
    // Each index is below vertices.size() (the collector drops any other).
    std::vector<std::array<std::uint32_t, 3>> triangles;

    // True when there are triangles and every index names a vertex; the
    // writers leave out a mesh that is not.
    bool is_valid() const;
};

struct SceneCurve {
    // Samples per non-empty knot span of a curve of degree 2 or more; a curve
    // of degree 1 is exact with its span ends.
    static constexpr int samples_per_span = 16;
    // The most points one curve is sampled to: fewer per span beyond it, so a
    // curve of many spans never makes an unbounded polyline.
    static constexpr std::size_t max_samples = std::size_t(1) << 20;

    SceneItemInfo info;
    int order = 0;
    std::vector<ScenePoint> points;
    // Empty for a polynomial curve (every weight 1).
    std::vector<double> weights;
    std::vector<double> knots;

    // Order at least 2, at least `order` finite points, points + order finite knots
    // that never decrease over a domain of positive length, and, when there
    // are weights, one finite positive weight per point.
    bool is_valid() const;
    // The curve as a line strip: points at evenly spaced parameters in every
    // non-empty knot span of the domain, and the domain's end. Empty when
    // the curve is not valid.
    std::vector<ScenePoint> sample() const;
    // The point at parameter t, which must lie in span s (knots[s] <= t <=
    // knots[s + 1], order - 1 <= s < points.size()).
    ScenePoint evaluate(double t, std::size_t s) const;
};

struct ScenePointCloud {
    SceneItemInfo info;
    std::vector<ScenePoint> points;
    // One RGB colour per point.
    std::vector<std::array<std::uint8_t, 3>> colours;

    // The colour of point k; white where the colours stop short.
    std::array<std::uint8_t, 3> colour(std::size_t k) const;
};

// A member of a group: which list it is in and where.
struct SceneMember {
    enum Kind { group, mesh, curve, cloud };
    Kind kind;
    std::size_t index;
};

struct SceneGroup {
    std::string name;
    std::string mangled;
    ScenePlacement placement = scene_identity();
    std::vector<SceneGroup> groups;
    std::vector<SceneMesh> meshes;
    std::vector<SceneCurve> curves;
    std::vector<ScenePointCloud> clouds;
    // Every member in the order the host received them.
    std::vector<SceneMember> members;

    // Each appends the item and records it as the next member; the reference
    // holds until the next item is added to this group.
    SceneGroup& add(SceneGroup g);
    SceneMesh& add(SceneMesh m);
    SceneCurve& add(SceneCurve c);
    ScenePointCloud& add(ScenePointCloud c);
};

// One geometry item with where it ends up: its placement in the world (every
// enclosing group's placement and the scene's scale) and the names of the
// groups around it, outermost first (the scene's top excluded).
struct ScenePlacedItem {
    SceneMember::Kind kind;
    const SceneMesh* mesh = nullptr;
    const SceneCurve* curve = nullptr;
    const ScenePointCloud* cloud = nullptr;
    ScenePlacement world;
    std::vector<std::string> path;

    const SceneItemInfo& info() const;
};

struct Scene {
    // The items and groups the host received at the top, in order; its name
    // is the scene's (the writers name the file's root after it) and its
    // placement stays the identity.
    SceneGroup top;
    // Where the scene came from, for the writers that can say so: the
    // archive's file name and each import option with the value in force.
    std::string archive;
    std::vector<std::pair<std::string, int>> options;

    // Every mesh, curve and cloud in the order of the walk, each placed in the
    // world and scaled by scale.
    std::vector<ScenePlacedItem> placed_items(double scale) const;
    // How many meshes, curves and clouds the whole tree holds.
    std::size_t num_items() const;
    // A scene of the same archive, options and top group (its name, mangled
    // name and placement) with nothing in it yet.
    Scene empty_copy() const;
};
