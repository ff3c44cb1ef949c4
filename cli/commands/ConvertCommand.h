#pragma once
// ConvertCommand: `velmora convert [--option NAME=0|1]... [--scale S] FILE.vlm
// -o OUT`. Imports the archive through the plug-in as a host does (see
// PluginLoader.h), gathers what the walk delivered into a Scene and writes it
// by OUT's extension: .glb / .gltf, .obj, .ply, .stl (binary), .step / .stp,
// .igs / .iges or .dxf.
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace CLI {
class App;
}
struct Scene;

class ConvertCommand {
public:
    enum class Format { glb, gltf, obj, ply, stl, step, iges, dxf, unknown };

    std::string file;
    std::string output;
    // NAME=0|1, each as given.
    std::vector<std::string> options;
    std::optional<double> scale;
    // STEP and IGES: the meshes too, as faceted shells.
    bool meshes = false;
    // The plug-in to load; empty for PluginLoader::library_path().
    std::string library;

    // Registers the subcommand "convert" with its options, help and footer;
    // app.got_subcommand("convert") then says to call run().
    static CLI::App* add_to(CLI::App& app, ConvertCommand& command);

    // Exit status: 0 written, 1 the import produced nothing, 2 an unknown
    // output format (a bad option or value is refused while parsing), 3 a
    // file could not be read or written or the plug-in could not be loaded.
    // Diagnostics go to err, one line naming the file and the reason.
    int run(std::ostream& out, std::ostream& err) const;

    // The format of a file name's extension, in any letter case.
    static Format format_of(const std::string& path);
    // The scale a format is written at unless the user gives one: glTF counts
    // metres, the others keep the archive's millimetres.
    static double default_scale(Format f);
    // Writes scene to path in format f; empty on success, else the reason.
    static std::string write_scene(const Scene& scene, const std::string& path, Format f, double scale,
                                   bool meshes = false);
};
