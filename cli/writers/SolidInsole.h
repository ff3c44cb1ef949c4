#pragma once
// SolidInsole: a finished insole ("FINISH_MODEL...") as a closed solid that a
// printer, a mill or a slicer takes without repair.
//
// The plug-in hands the insole as the height grid's triangles: the top
// surface (one pair of triangles per grid cell, all facing up when seen from
// above) and, from the grid's margin columns, wall strips down to 0.001 and
// floor strips between the two walls of each row. Those strips share no
// vertex with the surface and leave gaps at the rows' ends, so the block is
// not closed. The solid keeps the top surface and builds the rest anew:
//
//  - the top surface is the triangles whose projection on the xy plane turns
//    the way most triangles turn (the plug-in's walls project to nothing and
//    its floor strips turn the other way), turned to face up;
//  - a triangle that shares a directed edge with an earlier one, or that
//    touches the rest at a corner only (two boundary runs through one
//    vertex), is left out, so the surface is a 2-manifold with one boundary
//    edge out of each boundary vertex;
//  - each boundary edge gets a wall of two triangles down to the floor plane;
//  - each outer boundary loop gets a floor, its polygon cut into triangles by
//    ear clipping (an outline may be as concave as a foot is). Where a loop
//    runs inside another (a hole in the surface), or ear clipping cannot
//    finish within its budget, the floor is instead the top surface's own
//    triangulation laid flat on the floor plane, which covers the same
//    region and closes every loop at once.
//
// The floor plane is z = 0, the plane the design's heights stand on (the
// plug-in's own walls end at 0.001 just above it), unless the surface comes
// within min_wall_height of it or below it; then it is min_wall_height under
// the lowest point, so that no wall has zero height.
//
// Every triangle winds counter-clockwise seen from outside (normals point
// out), so the solid has a positive volume.
#include <cstddef>
#include <optional>
#include <string>

#include "cli/writers/Scene.h"

class SolidInsole {
public:
    // The plane the heights of a design stand on.
    static constexpr double base_plane = 0.0;
    // The least height of a wall: where the surface comes closer to the
    // base plane, the floor moves below it by this much (millimetres).
    static constexpr double min_wall_height = 0.1;
    // The most point-in-triangle tests ear clipping may spend on one loop: a
    // loop of a few thousand vertices needs some millions; past this budget
    // the flat copy of the surface is the floor, whose cost is linear.
    static constexpr std::size_t max_ear_tests = std::size_t(1) << 26;

    // True for the name of a finished insole model.
    static bool is_insole(const std::string& name);

    // The closed solid of mesh; nothing when mesh has no top surface left
    // to close (no triangle with an area seen from above).
    static std::optional<SceneMesh> close(const SceneMesh& mesh);

    // Replaces every insole mesh in g and below it by its solid; returns how
    // many were replaced. An insole without a top surface stays as it is.
    static std::size_t close_all(SceneGroup& g);

    // What a solid must be, counted on a mesh's vertex indices: edges used by
    // one triangle only, and edges used otherwise than by exactly two
    // triangles running along them in opposite directions (the open ones
    // included).
    struct EdgeCount {
        std::size_t open = 0;
        std::size_t bad = 0;
    };
    static EdgeCount count_edges(const SceneMesh& mesh);
    // The volume enclosed, positive when the triangles face outwards.
    static double volume(const SceneMesh& mesh);

    // Ear clipping of a simple polygon given counter-clockwise: n - 2
    // triangles as indices into the polygon, each counter-clockwise and of
    // positive area; nothing when no ear is found within max_tests
    // point-in-triangle tests (the polygon is not simple or the budget is
    // spent).
    static std::optional<std::vector<std::array<std::uint32_t, 3>>> ear_clip(
        const std::vector<std::array<double, 2>>& polygon, std::size_t max_tests = max_ear_tests);
};
