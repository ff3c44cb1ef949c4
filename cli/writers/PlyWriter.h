#pragma once
// PlyWriter: a Scene as one binary little-endian PLY file. PLY has one vertex
// list and no hierarchy, so every item is placed in the world (placements
// flattened) and scaled into it: meshes as faces, clouds as bare vertices,
// and only when asked, curves sampled to line strips as an "edge" element
// (which many readers refuse, so it is not written unless wanted). Vertices
// are float32 x y z with red, green and blue (meshes and curves by their
// colour index, see ColourPalette.h; points their own). A comment line per
// item names it (mangled name in UTF-8, group path) and says which vertices,
// faces and edges are its; a curve left out is named all the same.
#include <cstdint>
#include <ostream>
#include <string>

#include "cli/writers/Scene.h"

class PlyWriter {
public:
    // Empty on success, else the reason (among others: more vertices than a
    // PLY int index can name).
    static std::string write(const Scene& scene, double scale, std::ostream& out);
    // curves: also write the curves as edges.
    static std::string write(const Scene& scene, double scale, std::ostream& out, bool curves);
};
