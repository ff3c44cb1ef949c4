#pragma once
// StlWriter: the meshes of a Scene as one binary STL file. STL holds
// triangles only: every mesh is placed in the world (placements flattened)
// and scaled; curves and point clouds are left out, and so are names and
// colours, which binary STL has no place for. The 80-byte header names the
// scene.
#include <ostream>
#include <string>

#include "cli/writers/Scene.h"

class StlWriter {
public:
    static constexpr std::size_t header_size = 80;

    // Empty on success, else the reason (among others: more triangles than the
    // format's 32-bit count).
    static std::string write(const Scene& scene, double scale, std::ostream& out);
    // The facet normal of a placed triangle: unit length, (0, 0, 0) when the
    // triangle has no area.
    static ScenePoint normal(const ScenePoint& a, const ScenePoint& b, const ScenePoint& c);
};
