#pragma once
// GltfWriter: a Scene as glTF 2.0, binary (.glb) or text with the buffer
// embedded (.gltf).
//
// The node tree is the scene's: the root node carries the scene's name, the
// unit scale (the archive counts millimetres, glTF metres, so the scale is
// 0.001 unless the caller says otherwise) and, unless the caller keeps Z up,
// a quarter turn about x that stands the archive's Z-up world in glTF's Y-up
// one (x, y, z becomes x, z, -y); below it every group is a node
// with the group's name and placement (a translation, or a matrix when the
// placement turns or scales), every item a node with its name and one mesh.
// Where siblings share a name, the second and later get " (2)", " (3)", ...
// so that every node is told apart by its path. Each node's extras keep what
// glTF has no field for: the name as received (where a suffix was added),
// the mangled name, and for an item its layer, level and colour index; the
// asset's extras name the archive and the import options in force.
//
// Meshes are triangles with vertex normals (the area-weighted mean of the
// normals of the triangles around a vertex), curves line strips sampled from the NURBS curve (see
// SceneCurve::sample), clouds primitives of mode POINTS with their colours in
// COLOR_0. Meshes and curves take a material of their colour index's RGB (see
// ColourPalette.h). Names are written as UTF-8: the bytes that are not valid
// UTF-8 are taken as the characters of their own value (Latin-1).
#include <array>
#include <ostream>
#include <string>
#include <vector>

#include "cli/writers/Scene.h"

class GltfWriter {
public:
    // The scale the root node carries by default: millimetres to metres.
    static constexpr double millimetres_to_metres = 0.001;

    // Empty on success, else the reason (among others: a buffer larger than
    // the 4 GiB a binary glTF can hold).
    static std::string write(const Scene& scene, double scale, bool binary, std::ostream& out);
    // y_up false keeps the archive's Z up (no turn at the root).
    static std::string write(const Scene& scene, double scale, bool binary, std::ostream& out, bool y_up);
    // A mesh's vertex normals: each the sum of the (area-weighted) normals of
    // the triangles that use the vertex, made unit length; (0, 0, 1) for a
    // vertex no triangle with area uses.
    static std::vector<std::array<float, 3>> vertex_normals(const SceneMesh& mesh);
    // The same normals written as 12 bytes a vertex (three floats) at out.
    static void vertex_normals(const SceneMesh& mesh, unsigned char* out);
    // Names for siblings: each as given (in UTF-8), the second and later of
    // the same name with " (2)", " (3)", ..., never one another's.
    static std::vector<std::string> unique_names(const std::vector<std::string>& names);
    // The bytes of a name as UTF-8 text: valid sequences kept, every other
    // byte as the character of its value.
    static std::string utf8(const std::string& bytes);
};
