#pragma once
// OcctScene: a Scene as Open CASCADE geometry, for the STEP and IGES writers.
// Every curve becomes the B-spline it arrived as (the same degree, knots,
// control points and weights; a knot repeated r times is one knot of
// multiplicity r), its control points placed in the world; a mesh becomes a
// shell of plane triangles sharing their edges and vertices. Each is a named
// free shape of an XCAF document, named after the item's mangled name.
#include <cstddef>
#include <string>

#include <Geom_BSplineCurve.hxx>
#include <TDocStd_Document.hxx>
#include <TopoDS_Shape.hxx>

#include "cli/writers/Scene.h"

class OcctScene {
public:
    // How the STEP and IGES writers spell a real: seventeen significant
    // digits, enough for every double to read back as itself. Trailing zeros
    // stay: Open CASCADE's zero suppression drops the exponent with them.
    static constexpr const char* exact_real_format = "%.16E";

    // The curve with world applied to its control points (an affine map of
    // the control points is the same map of the curve, weights unchanged);
    // null when the curve is not valid or Open CASCADE cannot hold it (a
    // degree above its limit, an inner knot repeated more than the degree).
    static Handle(Geom_BSplineCurve) curve(const SceneCurve& c, const ScenePlacement& world);
    // A shell of one plane face per triangle with its vertices placed by
    // world; triangles without area are left out. Null when none is left.
    static TopoDS_Shape shell(const SceneMesh& m, const ScenePlacement& world);

    struct Document {
        Handle(TDocStd_Document) doc;
        std::size_t shapes = 0;
        // Curves Open CASCADE cannot hold, and meshes without a face.
        std::size_t left_out = 0;
    };
    // Open CASCADE's messages (transfer statistics and the like) go nowhere:
    // the command line prints its own.
    static void silence();
    // Every curve of scene, and every mesh when meshes, placed and scaled by
    // scale, as named free shapes in the order of the walk.
    static Document document(const Scene& scene, double scale, bool meshes);
    // A name as UTF-8: every byte that is not part of valid UTF-8 stands for
    // the character of its own value.
    static std::string utf8(const std::string& bytes);
};
