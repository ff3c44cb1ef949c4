#pragma once
// ConvertCommand: `velmora convert [--option NAME=0|1]... [--scale S] FILE.vlm
// -o OUT`. Imports the archive through the plug-in as a host does (see
// PluginLoader.h), gathers what the walk delivered into a Scene and writes it
// by OUT's extension (or -f): .glb / .gltf, .obj, .ply, .stl (binary), .3mf,
// .step / .stp, .igs / .iges or .dxf. Several archives with -d OUTDIR are a
// batch (see BatchConvert.h); "-" reads the archive from standard input, -o -
// writes to standard output.
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "cli/Selection.h"

namespace CLI {
class App;
}
struct Scene;

class ConvertCommand {
public:
    enum class Format { glb, gltf, obj, ply, stl, threemf, step, iges, dxf, unknown };

    // The archives; "-" is standard input.
    std::vector<std::string> files;
    // The file to write, "-" for standard output; or the folder a batch
    // writes <stem>.<ext> into.
    std::string output;
    std::string output_folder;
    // -f: the format by its extension's name; else OUT's extension says.
    std::string format;
    // -j: workers of a batch; none for BatchConvert::default_jobs().
    std::optional<int> jobs;
    // NAME=0|1, each as given.
    std::vector<std::string> options;
    std::optional<double> scale;
    // Write curves into a PLY file (as edges).
    bool curves = false;
    // --solid / --no-solid as given: close the insoles into solids (see
    // writers/SolidInsole.h); neither leaves it to wants_solid().
    bool solid = false;
    bool no_solid = false;
    // --split DIR: one file per object there, in format -f (STL unless
    // given), and DIR/manifest.json.
    std::string split;
    // --select and --only: the objects written.
    Selection selection;
    // glTF's up axis: "y" (the root turns the archive's Z up into it) or "z".
    std::string up = "y";
    // STEP and IGES: the meshes too, as faceted shells.
    bool meshes = false;
    // The plug-in to load; empty for PluginLoader::library_path().
    std::string library;

    // Registers the subcommand "convert" with its options, help and footer;
    // app.got_subcommand("convert") then says to call run().
    static CLI::App* add_to(CLI::App& app, ConvertCommand& command);

    // Exit status: 0 written, 1 the import produced nothing (or the
    // selection kept nothing), 2 neither -o nor --split, or an unknown
    // output format (a bad option or value is refused while parsing), 3 a
    // file could not be read or written or the plug-in could not be loaded.
    // Diagnostics go to err, one line naming the file and the reason.
    int run(std::ostream& out, std::ostream& err) const;

    // Whether the insoles are closed into solids when writing format f: as
    // --solid or --no-solid say, else for STL (printers and mills want
    // solids) and for --only insoles.
    bool wants_solid(Format f) const;
    // The format of a file name's extension, in any letter case.
    static Format format_of(const std::string& path);
    // The format named without its dot ("glb", "3mf"), in any letter case.
    static Format format_named(const std::string& name);
    // The extension a batch gives its files of format f, without the dot.
    static std::string extension_of(Format f);
    // Why the scene holds nothing format f keeps ("nothing to write: ..."), or
    // empty: STL and 3MF keep triangles alone, the others any item.
    static std::string nothing_to_write(const Scene& scene, Format f);
    // The scale a format is written at unless the user gives one: glTF counts
    // metres, the others keep the archive's millimetres.
    static double default_scale(Format f);
    // Each of the plug-in's options with the value a run with these
    // settings (NAME=0|1, later ones first) reads: 1 where none is given.
    static std::vector<std::pair<std::string, int>> options_in_force(const std::vector<std::string>& settings);
    // How a scene is written, besides its format.
    struct Style {
        double scale = 1.0;
        // PLY: the curves as edges too.
        bool curves = false;
        // glTF: turn the archive's Z up into glTF's Y up at the root.
        bool y_up = true;
        // STEP and IGES: the meshes too, as faceted shells.
        bool meshes = false;
    };
    // Writes scene to path in format f, whole or not at all (see
    // OutputFile.h); empty on success, else the reason.
    static std::string write_scene(const Scene& scene, const std::string& path, Format f, const Style& style);
    // Writes scene to out in format f; empty on success, else the reason.
    static std::string write_scene(const Scene& scene, std::ostream& out, Format f, const Style& style);

private:
    // One archive to one file (or "-"), or to --split's folder, as run() does
    // for a single file and each worker of a batch does for its own.
    int convert_file(const std::string& file, const std::string& output, Format f, std::ostream& out,
                     std::ostream& err) const;
};
