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
#include "cli/StandardInput.h"
#include "cli/commands/BatchConvert.h"
#include "cli/writers/GltfWriter.h"
#include "cli/writers/ObjWriter.h"
#include "cli/writers/PlyWriter.h"
#include "cli/writers/SceneCollector.h"
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
    "  .ply         binary: one vertex list with red, green, blue; faces, sampled curves as\n"
    "               edges, point clouds as vertices.\n"
    "  .stl         binary: the triangles of the meshes only.\n"
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
        "convert", "Import archives through the plug-in and write what the host received as "
                   "glTF, OBJ, PLY, STL or 3MF, by the output's extension");
    CommandInputs::add_plugin_option(*cmd, command.options);
    cmd->add_option("--scale", command.scale,
                    "Multiply every coordinate by S (default 0.001 for glTF, 1 otherwise)")
        ->type_name("S")
        ->check(CLI::Validator([](std::string& text) { return CommandInputs::scale_error(text); }, ""));
    cmd->add_option("file", command.files, "The archives to import (- reads standard input)")
        ->required()
        ->type_name("FILE.vlm");
    cmd->add_option("-o,--output", command.output,
                    "The file to write (- for standard output); its extension picks the format")
        ->type_name("OUT");
    cmd->add_option("-d,--output-dir", command.output_folder, "Write each archive to OUTDIR/<name>.<ext>")
        ->type_name("OUTDIR");
    cmd->add_option("-f,--format", command.format, "The format: glb, gltf, obj, ply, stl or 3mf")
        ->type_name("FORMAT")
        ->check(CLI::Validator(
            [](std::string& text) {
                return format_named(text) == Format::unknown ? text + ": expected glb, gltf, obj, ply, stl or 3mf"
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
    return Format::unknown;
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

std::string ConvertCommand::write_scene(const Scene& scene, const std::string& path, Format f, double scale)
{
    OutputFile file(path);
    if (!file.ok()) return file.error();
    if (std::string reason = write_scene(scene, file.stream(), f, scale); !reason.empty()) return reason;
    return file.commit();
}

std::string ConvertCommand::write_scene(const Scene& scene, std::ostream& out, Format f, double scale)
{
    std::string reason;
    switch (f) {
    case Format::glb: reason = GltfWriter::write(scene, scale, true, out); break;
    case Format::gltf: reason = GltfWriter::write(scene, scale, false, out); break;
    case Format::obj: reason = ObjWriter::write(scene, scale, out); break;
    case Format::ply: reason = PlyWriter::write(scene, scale, out); break;
    case Format::stl: reason = StlWriter::write(scene, scale, out); break;
    case Format::threemf: reason = ThreeMfWriter::write(scene, scale, out); break;
    case Format::unknown: reason = "unknown output format"; break;
    }
    out.flush();
    if (reason.empty() && !out) reason = "cannot write";
    return reason;
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
    if (output.empty()) {
        CommandInputs::report(err, "convert", files.front(), "give -o OUT, or -d OUTDIR -f FORMAT");
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
                                            : "unknown output format (use .glb, .gltf, .obj, .ply, .stl or .3mf)");
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
    if (const std::string why = nothing_to_write(collector.scene(), f); !why.empty()) {
        CommandInputs::report(err, "convert", file, why);
        return exit_nothing_imported;
    }
    const double s = scale.value_or(default_scale(f));
    if (const std::string why =
            output == "-" ? write_scene(collector.scene(), out, f, s) : write_scene(collector.scene(), output, f, s);
        !why.empty()) {
        CommandInputs::report(err, "convert", output, "cannot write: " + why);
        return exit_unreadable;
    }
    return exit_success;
}
