#pragma once
// IgesWriter: `velmora convert -o X.igs` (or .iges). The same shapes as the
// STEP writer: every curve as its B-spline (entity 126), placed and named,
// and with meshes every triangle mesh as a shell of plane faces; millimetres.
#include <ostream>
#include <string>

#include "cli/writers/Scene.h"

class IgesWriter {
public:
    // Empty on success, else the reason.
    static std::string write(const Scene& scene, double scale, bool meshes, std::ostream& out);
};
