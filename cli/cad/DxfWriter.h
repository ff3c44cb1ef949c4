#pragma once
// DxfWriter: `velmora convert -o X.dxf`. The outlines of each model, seen
// from above: every curve as a planar SPLINE entity (x and y of its control
// points placed in the world, the same degree, knots and weights), on one
// layer per model, the group that holds the curve. Millimetres ($INSUNITS 4)
// times scale. Numbers are written in the shortest form that reads back to
// the same double, so nothing of a curve is rounded.
#include <ostream>
#include <string>

#include "cli/writers/Scene.h"

class DxfWriter {
public:
    // A layer name holds none of these; each becomes '_'.
    static constexpr const char* layer_forbidden = "<>/\\\":;?*|=',";

    // Empty on success, else the reason.
    static std::string write(const Scene& scene, double scale, std::ostream& out);
    // The layer of a model named name: forbidden and control characters
    // become '_', an empty name "0".
    static std::string layer_name(const std::string& name);
};
