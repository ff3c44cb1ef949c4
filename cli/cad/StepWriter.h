#pragma once
// StepWriter: `velmora convert -o X.step` (or .stp). Every curve as the
// B-spline the host received, its control points placed in the world, named
// after its mangled name; with meshes also every triangle mesh as a shell of
// plane faces. Millimetres (times scale), as the archive counts.
#include <ostream>
#include <string>

#include "cli/writers/Scene.h"

class StepWriter {
public:
    // Empty on success, else the reason (nothing to write, a failed transfer).
    static std::string write(const Scene& scene, double scale, bool meshes, std::ostream& out);
};
