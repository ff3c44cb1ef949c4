#pragma once
// ThreeMfWriter: the meshes of a Scene as a 3MF package for a printer's
// slicer, in millimetres (the archive's unit; --scale multiplies the
// coordinates and the unit stays). Each mesh is one object named after its
// item, with every placement applied to its vertices, and one build item;
// its colour index's RGB (see ColourPalette.h) is a base material of the
// package's one material group, named "colour N" ("no colour" for the
// rest). Curves and point clouds have no place in a printable package and are
// left out.
//
// The package holds the three parts every 3MF package needs (content
// types, the root relationship, 3D/3dmodel.model), deflated, with a fixed
// date, so that the same scene always gives the same bytes. It is written
// with libzip rather than lib3mf: lib3mf 1.8 gives every object a random
// UUID, so no two runs agree, and marks every entry as ZIP64, which assimp's
// reader refuses. lib3mf reads the packages back in the tests.
//
// A 3MF triangle must name three different vertices, so a triangle that
// repeats one is left out; a mesh left with no triangle is not written.
#include <ostream>
#include <string>

#include "cli/writers/Scene.h"

class ThreeMfWriter {
public:
    // The name of the model part in the package.
    static constexpr const char* model_part = "3D/3dmodel.model";

    // Empty on success, else the reason (libzip's, or more vertices than the
    // format's 32-bit indices reach).
    static std::string write(const Scene& scene, double scale, std::ostream& out);
    // The model part alone: the XML document of resources and build items.
    static std::string model(const Scene& scene, double scale);
    // The triangles of mesh that 3MF takes: those naming three different
    // vertices.
    static std::size_t printable_triangles(const SceneMesh& mesh);
};
