#pragma once
// GltfWriter: a Scene as glTF 2.0, binary (.glb) or text with the buffer
// embedded (.gltf).
//
// The node tree is the scene's: the root node carries the scene's name and
// the unit scale (the archive counts millimetres, glTF metres, so the scale
// is 0.001 unless the caller says otherwise); below it every group is a node
// with the group's name and placement (a translation, or a matrix when the
// placement turns or scales), every item a node with its name and one mesh.
// Each node's extras keep what glTF has no field for: the mangled name, and
// for an item its layer, level and colour index.
//
// Meshes are triangles, curves line strips sampled from the NURBS curve (see
// SceneCurve::sample), clouds primitives of mode POINTS with their colours in
// COLOR_0. Meshes and curves take a material of their colour index's RGB (see
// ColourPalette.h). Names are written as UTF-8: the bytes that are not valid
// UTF-8 are taken as the characters of their own value (Latin-1).
#include <ostream>
#include <string>

#include "cli/writers/Scene.h"

class GltfWriter {
public:
    // The scale the root node carries by default: millimetres to metres.
    static constexpr double millimetres_to_metres = 0.001;

    // Empty on success, else the reason (among others: a buffer larger than
    // the 4 GiB a binary glTF can hold).
    static std::string write(const Scene& scene, double scale, bool binary, std::ostream& out);
    // The bytes of a name as UTF-8 text: valid sequences kept, every other
    // byte as the character of its value.
    static std::string utf8(const std::string& bytes);
};
