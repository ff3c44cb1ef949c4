#pragma once
// ObjWriter: a Scene as Wavefront OBJ text. OBJ has no hierarchy and no
// placements, so every item is placed in the world (placements flattened) and
// scaled; each item is one group ("g") named by its mangled name, which the
// host's manglers made from the enclosing group's name, after a comment with
// the path of its groups (joined with "/"). Coordinates are float32 values
// in their shortest round-trip form. Vertices carry their RGB
// colour after x y z (meshes and curves by their colour index, see
// ColourPalette.h; points their own). Meshes are faces ("f"), curves sampled
// line strips ("l"), clouds points ("p").
#include <ostream>
#include <string>

#include "cli/writers/Scene.h"

class ObjWriter {
public:
    // The most vertex indices one "p" line lists: a large cloud becomes many
    // short lines rather than one that readers must hold whole.
    static constexpr std::size_t points_per_line = 32;

    // Empty on success, else the reason.
    static std::string write(const Scene& scene, double scale, std::ostream& out);

    // A name as one OBJ token in UTF-8 (see Utf8::from_bytes): bytes that
    // would end it (space, control characters) become '_'; an empty name
    // becomes "unnamed".
    static std::string token(const std::string& name);
};
