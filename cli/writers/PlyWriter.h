#pragma once
// PlyWriter: a Scene as one binary little-endian PLY file. PLY has one vertex
// list and no hierarchy, so every item is placed in the world (placements
// flattened) and scaled into it: meshes as faces, curves sampled to line
// strips as edges, clouds as bare vertices. Every vertex has red, green and
// blue (meshes and curves by their colour index, see ColourPalette.h; points
// their own). A comment line per item names it (mangled name, group path) and
// says which vertices, faces and edges are its.
#include <cstdint>
#include <ostream>
#include <string>

#include "cli/writers/Scene.h"

class PlyWriter {
public:
    // Empty on success, else the reason (among others: more vertices than a
    // PLY int index can name).
    static std::string write(const Scene& scene, double scale, std::ostream& out);
};
