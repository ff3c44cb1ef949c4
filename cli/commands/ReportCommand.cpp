#include "cli/commands/ReportCommand.h"

#include <CLI/CLI.hpp>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>

#include "cli/CommandInputs.h"
#include "cli/ExitCode.h"
#include "cli/commands/ConvertCommand.h"
#include "cli/commands/PreviewCommand.h"
#include "cli/preview/PreviewPictures.h"
#include "cli/report/ReportPage.h"
#include "cli/writers/GltfWriter.h"
#include "cli/writers/Scene.h"

namespace {

// Writes bytes to path; empty on success, else why not.
std::string write_file(const std::string& path, const std::string& bytes)
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    if (!out) return std::strerror(errno);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    out.close();
    return out ? std::string() : std::string("cannot write");
}

bool read_file(const std::string& path, std::string& bytes)
{
    std::ifstream in(path, std::ios::binary);
    if (!in) return false;
    std::ostringstream s;
    s << in.rdbuf();
    bytes = s.str();
    return static_cast<bool>(in) || in.eof();
}

} // namespace

std::string ReportCommand::viewer_path()
{
    if (const char* v = std::getenv(viewer_variable); v && *v) return v;
    std::error_code ec;
    const std::filesystem::path exe = std::filesystem::read_symlink("/proc/self/exe", ec);
    if (ec) return ReportPage::viewer_file;
    return (exe.parent_path().parent_path() / "share" / "velmora" / ReportPage::viewer_file).string();
}

CLI::App* ReportCommand::add_to(CLI::App& app, ReportCommand& command)
{
    CLI::App* cmd = app.add_subcommand(
        "report", "Import an archive through the plug-in and write a page a browser opens from the disk: "
                  "the tree with counts and bounding boxes, the preview pictures and a 3D view");
    CommandInputs::add_plugin_option(*cmd, command.options);
    cmd->add_option("file", command.file, "The archive to import")->required()->type_name("FILE.vlm");
    cmd->add_option("-o,--output", command.output, "The folder to write the report into (made when missing)")
        ->required()
        ->type_name("DIR");
    cmd->footer(
        "Writes into DIR: index.html (open it in a browser; it needs no network and no server),\n"
        "the pictures of velmora preview with overview.png, STEM.glb (as velmora convert writes\n"
        "it, in metres), STEM.glb.js (the same model as a data: URI, which a page opened from\n"
        "the disk can load) and the 3D viewer " + std::string(ReportPage::viewer_file) + " (the npm package\n"
        "@google/model-viewer, fetched into the build folder when velmora was built: the file\n"
        "bin/../share/velmora/" + ReportPage::viewer_file + " next to velmora, or the file that\n" +
        viewer_variable + " names). Without it the page has no 3D view.\n"
        "Bounding boxes are in millimetres, each group's and item's placed as the host places it.\n"
        "The plug-in is bin/../lib/libvelmora2rnx.so next to velmora, or the file that\n"
        "VELMORA_PLUGIN names.\n"
        "Exit status: 0 written, 1 the import produced nothing, 2 wrong usage, 3 a file\n"
        "could not be read or written.");
    return cmd;
}

int ReportCommand::run(std::ostream&, std::ostream& err) const
{
    Scene scene;
    if (const int status = PreviewCommand::import("report", file, options, library, scene, err);
        status != exit_success)
        return status;
    if (const std::string why = PreviewCommand::make_folder(output); !why.empty()) {
        CommandInputs::report(err, "report", output, why);
        return exit_unreadable;
    }
    const std::filesystem::path dir(output);
    const std::string archive = std::filesystem::path(file).filename().string();
    std::vector<PreviewFolder::Written> pictures;
    std::string failed;
    if (const std::string why = PreviewFolder::write(scene, output, archive, pictures, failed); !why.empty()) {
        CommandInputs::report(err, "report", failed, "cannot write: " + why);
        return exit_unreadable;
    }

    ReportPage::Files files;
    files.archive = archive;
    std::error_code ec;
    files.archive_bytes = std::filesystem::file_size(file, ec);
    const std::string stem = PreviewPictures::file_stem({std::filesystem::path(file).stem().string()});
    files.model = stem + ".glb";
    files.model_script = files.model + ".js";
    const std::string model_path = (dir / files.model).string();
    // Y up, as the viewer stands its models.
    ConvertCommand::Style style;
    style.scale = GltfWriter::millimetres_to_metres;
    if (const std::string why = ConvertCommand::write_scene(scene, model_path, ConvertCommand::Format::glb, style);
        !why.empty()) {
        CommandInputs::report(err, "report", model_path, "cannot write: " + why);
        return exit_unreadable;
    }
    std::string glb;
    if (!read_file(model_path, glb)) {
        CommandInputs::report(err, "report", model_path, "cannot read it back");
        return exit_unreadable;
    }
    files.model_bytes = glb.size();
    const std::string script_path = (dir / files.model_script).string();
    if (const std::string why = write_file(script_path, ReportPage::model_script(glb)); !why.empty()) {
        CommandInputs::report(err, "report", script_path, "cannot write: " + why);
        return exit_unreadable;
    }
    glb.clear();
    glb.shrink_to_fit();

    const std::string viewer = viewer_path();
    std::string viewer_js;
    if (read_file(viewer, viewer_js) && !viewer_js.empty()) {
        const std::string viewer_out = (dir / ReportPage::viewer_file).string();
        if (const std::string why = write_file(viewer_out, viewer_js); !why.empty()) {
            CommandInputs::report(err, "report", viewer_out, "cannot write: " + why);
            return exit_unreadable;
        }
        files.viewer = true;
    } else {
        CommandInputs::report(err, "report", viewer, "no such file: the report has no 3D view");
    }

    std::ostringstream page;
    ReportPage::write(page, scene, pictures, files);
    const std::string index = (dir / "index.html").string();
    if (const std::string why = write_file(index, page.str()); !why.empty()) {
        CommandInputs::report(err, "report", index, "cannot write: " + why);
        return exit_unreadable;
    }
    return exit_success;
}
