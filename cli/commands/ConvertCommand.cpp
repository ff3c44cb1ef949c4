#include "cli/commands/ConvertCommand.h"

#include <CLI/CLI.hpp>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <system_error>

#include <unistd.h>

#include "cli/CommandInputs.h"
#include "cli/ExitCode.h"
#include "cli/OutputFile.h"
#include "cli/PluginLoader.h"
#include "cli/ReadDiagnosis.h"
#include "cli/SplitOutput.h"
#include "cli/StandardInput.h"
#include "cli/commands/BatchConvert.h"
#include "cli/writers/CadWriters.h"
#include "cli/writers/GltfWriter.h"
#include "cli/writers/ObjWriter.h"
#include "cli/writers/PlyWriter.h"
#include "cli/writers/SceneCollector.h"
#include "cli/writers/SolidInsole.h"
#include "cli/writers/StlWriter.h"
#include "cli/writers/ThreeMfWriter.h"

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
    "  .ply         binary: one vertex list (float x y z, red, green, blue); faces and point\n"
    "               clouds as vertices; sampled curves as edges only with --curves.\n"
    "  .stl         binary: the triangles of the meshes only.\n"
    "  .step, .stp  STEP (Open CASCADE): every curve as its exact B-spline, placed and\n"
    "               named; --meshes adds the meshes as faceted shells.\n"
    "  .igs, .iges  IGES: the same shapes as STEP.\n"
    "  .dxf         DXF: each model's curves as planar SPLINE entities, one layer a model.\n"
    "  .3mf         3MF package in millimetres: each mesh an object with its name and its\n"
    "               colour as a base material; triangles that repeat a vertex are left out.\n"
    "A result that would hold nothing (STL and 3MF: no triangle) is not written (exit 1).\n"
    "OUT appears whole or not at all, and never over FILE itself.\n"
    "Several archives: -d OUTDIR -f FORMAT writes OUTDIR/<name>.<ext> for each, -j N\n"
    "at a time (default: the processors), each in its own process; the exit status is\n"
    "the highest of the files'. FILE - reads standard input; -o - -f FORMAT writes to\n"
    "standard output.\n"
    "Units: the archive counts millimetres, glTF metres, so the glTF root node scales\n"
    "by 0.001; OBJ, PLY and STL stay in millimetres. --scale S replaces either.\n"
    "Axes: the archive's Z is up; the glTF root turns it into glTF's Y up (--up z keeps Z).\n"
    "glTF meshes carry vertex normals; siblings of one name get \" (2)\", \" (3)\", ...;\n"
    "the asset's extras name the archive and the import options.\n"
    "Text numbers (OBJ) are the shortest that read back to the float32 written; every\n"
    "name is written as UTF-8 (bytes that are not are read as Latin-1).\n"
    "Curves arrive as NURBS; no output format holds one, so each is sampled: " +
    std::to_string(SceneCurve::samples_per_span) + " points\nper knot span (the span ends for a polyline), at most " +
    std::to_string(SceneCurve::max_samples) + " per curve.\n"
    "Split: --split DIR writes each object to its own file (-f FORMAT, default stl),\n"
    "named after its path (names joined by --, bytes a file system or shell would take\n"
    "otherwise made _, a repeated name suffixed -2, -3, ...), and DIR/manifest.json: per\n"
    "file its path, kind (scan, image, outline, insole), vertices and triangles or points,\n"
    "and bounding box in the archive's millimetres with every placement applied. An object\n"
    "the format cannot hold (a curve or points in STL, a curve in PLY without --curves) is\n"
    "only named in the manifest's \"left_out\".\n"
    "Selection: --select and --only keep some objects (and the groups that hold them);\n"
    "an object's path is its groups' names from \"Data Base\" down and its own name,\n"
    "joined by /, e.g. Data Base/Beispiel,Erika/Kontrolle : 2024-09-12/PCS models(Kontrolle)/\n"
    "MODEL_(LEFT)_2024-09-16/FINISH_MODEL~2. A selection that keeps nothing exits 1.\n"
    "Solids: the plug-in's insole is a height surface with open walls; --solid keeps its\n"
    "top surface and adds walls down to a floor plane and a floor under the outline, so\n"
    "that it is a closed 2-manifold with outward normals. The floor plane is z = 0, which\n"
    "the design's heights stand on, or 0.1 mm below the surface where it comes lower.\n"
    "OBJ, PLY and STL have no hierarchy: every placement is applied to the geometry.\n"
    "Colour indices become RGB by this palette: 0 light grey, 1 red, 2 yellow, 3 green\n"
    "(the finished model), 4 cyan, 5 blue, 6 magenta (outlines), 7 white, 8 dark grey,\n"
    "9 light grey; no index or another index: light grey. STL keeps no colour.\n"
    "The plug-in is bin/../lib/libvelmora2rnx.so next to velmora, or the file that\n"
    "VELMORA_PLUGIN names.\n"
    "Exit status: 0 written, 1 the import produced nothing (or the selection kept, or\n"
    "--split wrote, nothing), 2 wrong usage, 3 a file could not be read or written.";
}

} // namespace

CLI::App* ConvertCommand::add_to(CLI::App& app, ConvertCommand& command)
{
    CLI::App* cmd = app.add_subcommand(
        "convert", "Import archives through the plug-in and write what the host received as "
                   "glTF, OBJ, PLY, STL or 3MF, by the output's extension");
    CommandInputs::add_plugin_option(*cmd, command.options);
    Selection::add_options(*cmd, command.selection);
    cmd->add_option("--scale", command.scale,
                    "Multiply every coordinate by S (default 0.001 for glTF, 1 otherwise)")
        ->type_name("S")
        ->check(CLI::Validator([](std::string& text) { return CommandInputs::scale_error(text); }, ""));
    CLI::Option* solid = cmd->add_flag(
        "--solid", command.solid,
        "Close each insole (FINISH_MODEL) into a watertight solid: walls down to a floor at z = 0 "
        "(or below a surface that reaches it) and a floor under its outline (default for .stl and "
        "for --only insoles)");
    cmd->add_flag("--no-solid", command.no_solid, "Write the insoles as the plug-in made them, open")
        ->excludes(solid);
    cmd->add_option("--up", command.up,
                    "glTF: the up axis, y (default: the root turns the archive's Z up into glTF's Y up) "
                    "or z (kept as in the archive)")
        ->type_name("AXIS")
        ->check(CLI::IsMember({"y", "z"}));
    cmd->add_flag("--curves", command.curves,
                  "PLY: also write the curves, sampled, as an \"edge\" element (many readers refuse one)");
    cmd->add_flag("--meshes", command.meshes, "STEP and IGES: write the meshes too, as faceted shells");
    cmd->add_option("file", command.files, "The archives to import (- reads standard input)")
        ->required()
        ->type_name("FILE.vlm");
    CLI::Option* output = cmd->add_option("-o,--output", command.output,
                                          "The file to write (- for standard output); its extension picks the format")
                              ->type_name("OUT");
    CLI::Option* folder =
        cmd->add_option("-d,--output-dir", command.output_folder, "Write each archive to OUTDIR/<name>.<ext>")
            ->type_name("OUTDIR");
    cmd->add_option("--split", command.split,
                    "Write one file per object into DIR (made when missing) instead of -o, each named "
                    "after the object's path, and DIR/manifest.json listing file, path, kind, counts and "
                    "bounding box of each (format: -f, default stl)")
        ->type_name("DIR")
        ->excludes(output)
        ->excludes(folder);
    cmd->add_option("-f,--format", command.format,
                    "The format: glb, gltf, obj, ply, stl, 3mf, step, igs or dxf (needed with -d and -o -; with --split, "
                    "default stl; else the extension of OUT)")
        ->type_name("FORMAT")
        ->check(CLI::Validator(
            [](std::string& text) {
                return format_named(text) == Format::unknown ? text + ": expected glb, gltf, obj, ply, stl, 3mf, step, igs or dxf"
                                                             : std::string();
            },
            ""));
    cmd->add_option("-j,--jobs", command.jobs, "Convert N archives at a time (default: the processors)")
        ->type_name("N")
        ->check(CLI::Validator([](std::string& text) { return BatchConvert::jobs_error(text); }, ""));
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
    if (ext == ".3mf") return Format::threemf;
    if (ext == ".step" || ext == ".stp") return Format::step;
    if (ext == ".igs" || ext == ".iges") return Format::iges;
    if (ext == ".dxf") return Format::dxf;
    return Format::unknown;
}

bool ConvertCommand::wants_solid(Format f) const
{
    if (solid || no_solid) return solid;
    return f == Format::stl || selection.only_insoles();
}

ConvertCommand::Format ConvertCommand::format_named(const std::string& name)
{
    return name.empty() || name.find_first_of("./") != std::string::npos ? Format::unknown : format_of("x." + name);
}

std::string ConvertCommand::extension_of(Format f)
{
    switch (f) {
    case Format::glb: return "glb";
    case Format::gltf: return "gltf";
    case Format::obj: return "obj";
    case Format::ply: return "ply";
    case Format::stl: return "stl";
    case Format::threemf: return "3mf";
    case Format::step: return "step";
    case Format::iges: return "igs";
    case Format::dxf: return "dxf";
    case Format::unknown: break;
    }
    return {};
}

std::string ConvertCommand::nothing_to_write(const Scene& scene, Format f)
{
    const bool triangles_only = f == Format::stl || f == Format::threemf;
    for (const ScenePlacedItem& it : scene.placed_items(1.0)) {
        if (it.mesh && (f == Format::threemf ? ThreeMfWriter::printable_triangles(*it.mesh) > 0
                                              : it.mesh->is_valid()))
            return {};
        if (!triangles_only && (it.curve || it.cloud)) return {};
    }
    return triangles_only ? "nothing to write: no mesh with a triangle" : "nothing to write: no mesh, curve or point cloud";
}

double ConvertCommand::default_scale(Format f)
{
    return f == Format::glb || f == Format::gltf ? GltfWriter::millimetres_to_metres : 1.0;
}

std::string ConvertCommand::write_scene(const Scene& scene, const std::string& path, Format f, const Style& style)
{
    OutputFile file(path);
    if (!file.ok()) return file.error();
    if (std::string reason = write_scene(scene, file.stream(), f, style); !reason.empty()) return reason;
    return file.commit();
}

std::string ConvertCommand::write_scene(const Scene& scene, std::ostream& out, Format f, const Style& style)
{
    const double scale = style.scale;
    std::string reason;
    switch (f) {
    case Format::glb: reason = GltfWriter::write(scene, scale, true, out, style.y_up); break;
    case Format::gltf: reason = GltfWriter::write(scene, scale, false, out, style.y_up); break;
    case Format::obj: reason = ObjWriter::write(scene, scale, out); break;
    case Format::ply: reason = PlyWriter::write(scene, scale, out, style.curves); break;
    case Format::stl: reason = StlWriter::write(scene, scale, out); break;
    case Format::threemf: reason = ThreeMfWriter::write(scene, scale, out); break;
    case Format::step: reason = CadWriters::write(CadWriters::Kind::step, scene, scale, style.meshes, out); break;
    case Format::iges: reason = CadWriters::write(CadWriters::Kind::iges, scene, scale, style.meshes, out); break;
    case Format::dxf: reason = CadWriters::write(CadWriters::Kind::dxf, scene, scale, false, out); break;
    case Format::unknown: reason = "unknown output format"; break;
    }
    out.flush();
    if (reason.empty() && !out) reason = "cannot write";
    return reason;
}

std::vector<std::pair<std::string, int>> ConvertCommand::options_in_force(const std::vector<std::string>& settings)
{
    const std::vector<std::pair<std::string, int>> given = CommandInputs::plugin_options(settings);
    std::vector<std::pair<std::string, int>> out;
    for (const std::string& name : PluginLoader::option_names()) {
        int value = 1;
        for (const auto& [n, v] : given)
            if (n == name) value = v;
        out.emplace_back(name, value);
    }
    return out;
}

int ConvertCommand::run(std::ostream& out, std::ostream& err) const
{
    const Format named = format.empty() ? Format::unknown : format_named(format);
    if (!output_folder.empty()) {
        if (!output.empty()) {
            CommandInputs::report(err, "convert", "-o " + output, "give -o OUT or -d OUTDIR, not both");
            return exit_usage;
        }
        if (named == Format::unknown) {
            CommandInputs::report(err, "convert", "-d " + output_folder, "needs -f FORMAT");
            return exit_usage;
        }
        std::vector<BatchConvert::Job> batch;
        if (const std::string why = BatchConvert::plan(files, output_folder, extension_of(named), batch);
            !why.empty()) {
            err << "velmora convert: " << why << '\n';
            return exit_usage;
        }
        std::error_code ec;
        std::filesystem::create_directories(output_folder, ec);
        if (ec) {
            CommandInputs::report(err, "convert", output_folder, "cannot make the folder: " + ec.message());
            return exit_unreadable;
        }
        // Loaded once here, the plug-in is in every worker from its start.
        const PluginLoader plugin(library);
        if (!plugin.loaded()) {
            CommandInputs::report(err, "convert", plugin.path(), plugin.reason());
            return exit_unreadable;
        }
        const auto one = [&](const std::string& in, const std::string& to, std::ostream& e) {
            std::ostringstream none;
            return convert_file(in, to, named, none, e);
        };
        return BatchConvert::run(batch, jobs.value_or(BatchConvert::default_jobs()), one, err,
                                 isatty(STDERR_FILENO) == 1);
    }
    if (!split.empty()) {
        if (files.size() > 1) {
            CommandInputs::report(err, "convert", "--split " + split, "takes one archive");
            return exit_usage;
        }
        // One file per object is for meshes, curves and clouds alike; the
        // exact-curve formats hold a whole archive's outlines in one drawing.
        if (named == Format::step || named == Format::iges || named == Format::dxf) {
            CommandInputs::report(err, "convert", "--split " + split, "writes glb, gltf, obj, ply, stl or 3mf");
            return exit_usage;
        }
        return convert_file(files.front(), "", named != Format::unknown ? named : Format::stl, out, err);
    }
    if (output.empty()) {
        CommandInputs::report(err, "convert", files.front(), "give -o OUT, --split DIR, or -d OUTDIR -f FORMAT");
        return exit_usage;
    }
    if (files.size() > 1) {
        CommandInputs::report(err, "convert", "-o " + output, "several archives need -d OUTDIR -f FORMAT");
        return exit_usage;
    }
    const Format f = named != Format::unknown ? named : format_of(output);
    if (f == Format::unknown) {
        CommandInputs::report(err, "convert", output,
                              output == "-" ? "standard output needs -f FORMAT"
                                            : "unknown output format (use .glb, .gltf, .obj, .ply, .stl, .3mf, .step, .igs or .dxf)");
        return exit_usage;
    }
    return convert_file(files.front(), output, f, out, err);
}

int ConvertCommand::convert_file(const std::string& file, const std::string& output, Format f, std::ostream& out,
                                 std::ostream& err) const
{
    if (file != "-" && output != "-")
        if (const std::string why = OutputFile::refusal(file, output); !why.empty()) {
            CommandInputs::report(err, "convert", output, why);
            return exit_usage;
        }
    std::optional<StandardInput> piped;
    if (file == "-") {
        piped.emplace();
        if (!piped->ok()) {
            CommandInputs::report(err, "convert", file, piped->error());
            return exit_unreadable;
        }
    }
    const std::string archive = piped ? piped->path() : file;
    if (const std::string why = CommandInputs::unreadable_file(archive); !why.empty()) {
        CommandInputs::report(err, "convert", file, why);
        return exit_unreadable;
    }
    PluginLoader plugin(library);
    SceneCollector collector(piped ? "stdin" : std::filesystem::path(file).stem().string());
    switch (plugin.import_archive(archive, CommandInputs::plugin_options(options), collector)) {
    case PluginLoader::no_library:
        CommandInputs::report(err, "convert", plugin.path(), plugin.reason());
        return exit_unreadable;
    case PluginLoader::nothing_imported:
        CommandInputs::report(err, "convert", file, nothing_imported(archive));
        return exit_nothing_imported;
    case PluginLoader::imported: break;
    }
    Scene scene = collector.take_scene();
    scene.archive = piped ? "stdin" : std::filesystem::path(file).filename().string();
    scene.options = options_in_force(options);
    if (selection.active()) {
        scene = selection.apply(scene);
        if (scene.num_items() == 0) {
            CommandInputs::report(err, "convert", file, "nothing selected: no object matches --select and --only");
            return exit_nothing_imported;
        }
    }
    if (wants_solid(f)) SolidInsole::close_all(scene.top);
    Style style;
    style.scale = scale.value_or(default_scale(f));
    style.curves = curves;
    style.y_up = up == "y";
    style.meshes = meshes;
    if (!split.empty()) {
        // STL holds triangles only, PLY no curve unless asked: a file of
        // nothing would only mislead.
        const auto holds = [&](const ScenePlacedItem& it) {
            if (f == Format::stl || f == Format::threemf) return it.mesh != nullptr;
            if (f == Format::ply) return it.curve == nullptr || curves;
            return true;
        };
        std::size_t written = 0;
        const std::string why = SplitOutput::write(
            scene, split, extension_of(f), [&](const Scene& one, const std::string& path) { return write_scene(one, path, f, style); },
            holds, &written);
        if (!why.empty()) {
            CommandInputs::report(err, "convert", split, "cannot write: " + why);
            return exit_unreadable;
        }
        if (written == 0) {
            CommandInputs::report(err, "convert", split, "nothing written: " + extension_of(f) + " holds none of the objects");
            return exit_nothing_imported;
        }
        return exit_success;
    }
    if (const std::string why = nothing_to_write(scene, f); !why.empty()) {
        CommandInputs::report(err, "convert", file, why);
        return exit_nothing_imported;
    }
    if (const std::string why = output == "-" ? write_scene(scene, out, f, style) : write_scene(scene, output, f, style);
        !why.empty()) {
        CommandInputs::report(err, "convert", output, "cannot write: " + why);
        return exit_unreadable;
    }
    return exit_success;
}
