#include "cli/commands/PreviewCommand.h"

#include <CLI/CLI.hpp>

#include <filesystem>
#include <system_error>

#include "cli/CommandInputs.h"
#include "cli/ExitCode.h"
#include "cli/PluginLoader.h"
#include "cli/ReadDiagnosis.h"
#include "cli/writers/SceneCollector.h"

CLI::App* PreviewCommand::add_to(CLI::App& app, PreviewCommand& command)
{
    CLI::App* cmd = app.add_subcommand(
        "preview", "Import an archive through the plug-in and draw every scan, finished insole and "
                   "plantar image as a PNG picture, with an overview sheet of them all");
    CommandInputs::add_plugin_option(*cmd, command.options);
    cmd->add_option("file", command.file, "The archive to import")->required()->type_name("FILE.vlm");
    cmd->add_option("-o,--output", command.output, "The folder to write the pictures into (made when missing)")
        ->required()
        ->type_name("DIR");
    cmd->footer(PreviewPictures::help() +
                "\nThe plug-in is bin/../lib/libvelmora2rnx.so next to velmora, or the file that\n"
                "VELMORA_PLUGIN names.\n"
                "Exit status: 0 written, 1 the import produced nothing, 2 wrong usage, 3 a file\n"
                "could not be read or written.");
    return cmd;
}

int PreviewCommand::import(const std::string& command, const std::string& file,
                           const std::vector<std::string>& options, const std::string& library, Scene& scene,
                           std::ostream& err)
{
    if (const std::string why = CommandInputs::unreadable_file(file); !why.empty()) {
        CommandInputs::report(err, command, file, why);
        return exit_unreadable;
    }
    PluginLoader plugin(library);
    SceneCollector collector(std::filesystem::path(file).stem().string());
    switch (plugin.import_archive(file, CommandInputs::plugin_options(options), collector)) {
    case PluginLoader::no_library:
        CommandInputs::report(err, command, plugin.path(), plugin.reason());
        return exit_unreadable;
    case PluginLoader::nothing_imported:
        CommandInputs::report(err, command, file, nothing_imported(file));
        return exit_nothing_imported;
    case PluginLoader::imported: break;
    }
    scene = collector.take_scene();
    return exit_success;
}

std::string PreviewCommand::make_folder(const std::string& folder)
{
    std::error_code ec;
    std::filesystem::create_directories(folder, ec);
    if (ec) return "cannot make the folder: " + ec.message();
    if (!std::filesystem::is_directory(folder, ec)) return "not a folder";
    return {};
}

int PreviewCommand::run(std::ostream&, std::ostream& err) const
{
    Scene scene;
    if (const int status = import("preview", file, options, library, scene, err); status != exit_success)
        return status;
    if (const std::string why = make_folder(output); !why.empty()) {
        CommandInputs::report(err, "preview", output, why);
        return exit_unreadable;
    }
    std::vector<PreviewFolder::Written> written;
    std::string failed;
    if (const std::string why =
            PreviewFolder::write(scene, output, std::filesystem::path(file).filename().string(), written, failed);
        !why.empty()) {
        CommandInputs::report(err, "preview", failed, "cannot write: " + why);
        return exit_unreadable;
    }
    return exit_success;
}
