#pragma once
// A small scene built by hand, shaped like an import: nested groups with
// placements (one turned a quarter about z), a triangle mesh with colour
// index 3, a coloured point cloud, a rational cubic curve with colour index 6
// and a polyline. The writer tests and the external validation use it, and
// the writer tests read what a writer gave with the helpers at the end.
#include <cmath>
#include <cstring>
#include <ostream>
#include <sstream>
#include <string>

#include "cli/writers/Scene.h"

namespace sample_scene {

inline SceneItemInfo info(const char* name, const char* mangled, const char* layer, int level, int colour)
{
    SceneItemInfo i;
    i.name = name;
    i.mangled = mangled;
    i.layer = layer;
    i.level = level;
    i.colour = colour;
    return i;
}

inline ScenePlacement translation(double x, double y, double z)
{
    ScenePlacement m = scene_identity();
    m[3] = x;
    m[7] = y;
    m[11] = z;
    return m;
}

// A quarter turn about z (x goes to y), then moved by (x, y, z).
inline ScenePlacement quarter_turn(double x, double y, double z)
{
    return {0.0, -1.0, 0.0, x, 1.0, 0.0, 0.0, y, 0.0, 0.0, 1.0, z};
}

inline SceneMesh mesh()
{
    SceneMesh m;
    m.info = info("SCAN_(LEFT)_1", "VelmScan(A)_SCAN_(LEFT)_1", "SCAN", 10, 3);
    m.vertices = {{0, 0, 1}, {10, 0, 1}, {0, 10, 1}, {10, 10, 2}};
    m.triangles = {{0, 1, 2}, {1, 3, 2}};
    return m;
}

inline ScenePointCloud cloud()
{
    ScenePointCloud c;
    c.info = info("PCIM_2", "VelmScan(A)_PCIM_2", "IMAGE", 11, SceneItemInfo::no_colour);
    c.points = {{0, 0, -5}, {1, 0, -5}, {0, 1, -5}};
    c.colours = {{255, 0, 0}, {0, 128, 0}, {240, 240, 240}};
    return c;
}

// A rational cubic: an arc-like curve of two spans with one heavier point.
inline SceneCurve spline()
{
    SceneCurve c;
    c.info = info("sole~4", "PCS models(B)_sole~4", "ORTHOTICS_DATA", 20, 6);
    c.order = 4;
    c.points = {{0, 0, 0}, {10, 20, 0}, {30, 20, 0}, {40, 0, 0}, {50, -10, 0}};
    c.weights = {1.0, 0.5, 2.0, 1.0, 1.0};
    c.knots = {0, 0, 0, 0, 0.5, 1, 1, 1, 1};
    return c;
}

inline SceneCurve polyline()
{
    SceneCurve c;
    c.info = info("LIMIT", "PCS models(B)_LIMIT", "ORTHOTICS_DATA", 20, SceneItemInfo::no_colour);
    c.order = 2;
    c.points = {{0, 0, 0}, {5, 5, 0}, {10, 0, 0}};
    c.knots = {0, 0, 0.5, 1, 1};
    return c;
}

inline Scene scene()
{
    Scene s;
    s.top.name = "sample";
    SceneGroup root;
    root.name = "Data Base";
    root.mangled = "Data Base";
    root.placement = translation(100, 0, 0);
    SceneGroup scan;
    scan.name = "VelmScan(A)";
    scan.mangled = "Data Base_VelmScan(A)";
    scan.placement = translation(0, 200, 0);
    scan.add(mesh());
    scan.add(cloud());
    SceneGroup models;
    models.name = "PCS models(B)";
    models.mangled = "Data Base_PCS models(B)";
    models.placement = quarter_turn(0, 0, 5);
    models.add(spline());
    models.add(polyline());
    root.add(std::move(scan));
    root.add(std::move(models));
    s.top.add(std::move(root));
    return s;
}

// What a text or binary writer of the form write(scene, scale, out) gave, or
// empty when it gave a reason instead.
inline std::string written(std::string (*write)(const Scene&, double, std::ostream&), const Scene& s,
                           double scale)
{
    std::ostringstream out;
    return write(s, scale, out).empty() ? out.str() : std::string();
}

// The value of type T at offset in a binary file's bytes, as the machine holds it.
template <class T>
T read_at(const std::string& bytes, std::size_t offset)
{
    T v{};
    std::memcpy(&v, bytes.data() + offset, sizeof(T));
    return v;
}

} // namespace sample_scene
