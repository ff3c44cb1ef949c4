#include "cli/commands/ConvertCommand.h"

#include <CLI/CLI.hpp>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "cli/CommandInputs.h"
#include "cli/ExitCode.h"
#include "cli/PluginLoader.h"
#include "cli/ReadDiagnosis.h"
#include "cli/writers/DxfWriter.h"
#include "cli/writers/GltfWriter.h"
#include "cli/writers/IgesWriter.h"
#include "cli/writers/ObjWriter.h"
#include "cli/writers/PlyWriter.h"
#include "cli/writers/SceneCollector.h"
#include "cli/writers/StepWriter.h"
#include "cli/writers/StlWriter.h"

namespace {

std::string help_footer()
{
    return
    "Formats, by OUT's extension:\n"
    "  .glb, .gltf  glTF 2.0 (binary, or text with the buffer embedded): the group tree\n"
    "               with names and placements, triangle meshes, curves sampled to line\n"
    "               strips, point clouds as POINTS primitives with their colours in COLOR_0.\n"
    "  .obj         one group per item (its mangled name), faces, sampled curves as lines,\n"
    "               points; vertex colours after x y z.\n"
    "  .ply         binary: one vertex list with red, green, blue; faces, sampled curves as\n"
    "               edges, point clouds as vertices.\n"
    "  .stl         binary: the triangles of the meshes only.\n"
    "  .step, .stp  STEP (Open CASCADE): every curve as its exact B-spline, placed and\n"
    "               named; --meshes adds the meshes as faceted shells.\n"
    "  .igs, .iges  IGES: the same shapes as STEP.\n"
    "  .dxf         DXF: each model's curves as planar SPLINE entities, one layer a model.\n"
    "Units: the archive counts millimetres, glTF metres, so the glTF root node scales\n"
    "by 0.001; OBJ, PLY and STL stay in millimetres. --scale S replaces either.\n"
    "Curves arrive as NURBS; no output format holds one, so each is sampled: " +
    std::to_string(SceneCurve::samples_per_span) + " points\nper knot span (the span ends for a polyline), at most " +
    std::to_string(SceneCurve::max_samples) + " per curve.\n"
    "OBJ, PLY and STL have no hierarchy: every placement is applied to the geometry.\n"
    "Colour indices become RGB by this palette: 0 light grey, 1 red, 2 yellow, 3 green\n"
    "(the finished model), 4 cyan, 5 blue, 6 magenta (outlines), 7 white, 8 dark grey,\n"
    "9 light grey; no index or another index: light grey. STL keeps no colour.\n"
    "The plug-in is bin/../lib/libvelmora2rnx.so next to velmora, or the file that\n"
    "VELMORA_PLUGIN names.\n"
    "Exit status: 0 written, 1 the import produced nothing, 2 wrong usage, 3 a file\n"
    "could not be read or written.";
}

} // namespace

CLI::App* ConvertCommand::add_to(CLI::App& app, ConvertCommand& command)
{
    CLI::App* cmd = app.add_subcommand(
        "convert", "Import an archive through the plug-in and write what the host received as "
                   "glTF, OBJ, PLY or STL, by the output's extension");
    CommandInputs::add_plugin_option(*cmd, command.options);
    cmd->add_option("--scale", command.scale,
                    "Multiply every coordinate by S (default 0.001 for glTF, 1 otherwise)")
        ->type_name("S")
        ->check(CLI::Validator([](std::string& text) { return CommandInputs::scale_error(text); }, ""));
    cmd->add_flag("--meshes", command.meshes, "STEP and IGES: write the meshes too, as faceted shells");
    cmd->add_option("file", command.file, "The archive to import")->required()->type_name("FILE.vlm");
    cmd->add_option("-o,--output", command.output, "The file to write; its extension picks the format")
        ->required()
        ->type_name("OUT");
    cmd->footer(help_footer());
    return cmd;
}

ConvertCommand::Format ConvertCommand::format_of(const std::string& path)
{
    std::string ext = std::filesystem::path(path).extension().string();
    for (char& c : ext) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    if (ext == ".glb") return Format::glb;
    if (ext == ".gltf") return Format::gltf;
    if (ext == ".obj") return Format::obj;
    if (ext == ".ply") return Format::ply;
    if (ext == ".stl") return Format::stl;
    if (ext == ".step" || ext == ".stp") return Format::step;
    if (ext == ".igs" || ext == ".iges") return Format::iges;
    if (ext == ".dxf") return Format::dxf;
    return Format::unknown;
}

double ConvertCommand::default_scale(Format f)
{
    return f == Format::glb || f == Format::gltf ? GltfWriter::millimetres_to_metres : 1.0;
}

std::string ConvertCommand::write_scene(const Scene& scene, const std::string& path, Format f, double scale,
                                        bool meshes)
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    if (!out) return std::strerror(errno);
    std::string reason;
    switch (f) {
    case Format::glb: reason = GltfWriter::write(scene, scale, true, out); break;
    case Format::gltf: reason = GltfWriter::write(scene, scale, false, out); break;
    case Format::obj: reason = ObjWriter::write(scene, scale, out); break;
    case Format::ply: reason = PlyWriter::write(scene, scale, out); break;
    case Format::stl: reason = StlWriter::write(scene, scale, out); break;
    case Format::step: reason = StepWriter::write(scene, scale, meshes, out); break;
    case Format::iges: reason = IgesWriter::write(scene, scale, meshes, out); break;
    case Format::dxf: reason = DxfWriter::write(scene, scale, out); break;
    case Format::unknown: reason = "unknown output format"; break;
    }
    out.close();
    if (reason.empty() && !out) reason = "cannot write";
    if (!reason.empty()) {
        // No half-written file is left behind to pass for a result.
        std::error_code ec;
        std::filesystem::remove(path, ec);
    }
    return reason;
}

int ConvertCommand::run(std::ostream&, std::ostream& err) const
{
    const Format f = format_of(output);
    if (f == Format::unknown) {
        CommandInputs::report(err, "convert", output, "unknown output format (use .glb, .gltf, .obj, .ply, .stl, .step, .igs or .dxf)");
        return exit_usage;
    }
    if (const std::string why = CommandInputs::unreadable_file(file); !why.empty()) {
        CommandInputs::report(err, "convert", file, why);
        return exit_unreadable;
    }
    PluginLoader plugin(library);
    SceneCollector collector(std::filesystem::path(file).stem().string());
    switch (plugin.import_archive(file, CommandInputs::plugin_options(options), collector)) {
    case PluginLoader::no_library:
        CommandInputs::report(err, "convert", plugin.path(), plugin.reason());
        return exit_unreadable;
    case PluginLoader::nothing_imported:
        CommandInputs::report(err, "convert", file, nothing_imported(file));
        return exit_nothing_imported;
    case PluginLoader::imported: break;
    }
    if (const std::string why = write_scene(collector.scene(), output, f, scale.value_or(default_scale(f)), meshes);
        !why.empty()) {
        CommandInputs::report(err, "convert", output, "cannot write: " + why);
        return exit_unreadable;
    }
    return exit_success;
}
