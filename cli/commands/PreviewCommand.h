#pragma once
// PreviewCommand: `velmora preview [--option NAME=0|1]... FILE.vlm -o DIR`.
// Imports the archive through the plug-in as a host does and writes a PNG
// picture of every scan, finished insole and plantar image into DIR, and an
// overview sheet of them all (see preview/PreviewPictures.h).
#include <ostream>
#include <string>
#include <vector>

#include "cli/preview/PreviewPictures.h"

namespace CLI {
class App;
}
struct Scene;

class PreviewCommand {
public:
    std::string file;
    std::string output;
    std::vector<std::string> options;
    // The plug-in to load; empty for PluginLoader::library_path().
    std::string library;

    static CLI::App* add_to(CLI::App& app, PreviewCommand& command);

    // Exit status: 0 written, 1 the import produced nothing, 3 a file could
    // not be read or written or the plug-in could not be loaded.
    int run(std::ostream& out, std::ostream& err) const;

    // Imports file with options through the plug-in at library into scene;
    // on failure reports for command on err and gives the exit status, else
    // exit_success. Shared with the report.
    static int import(const std::string& command, const std::string& file, const std::vector<std::string>& options,
                      const std::string& library, Scene& scene, std::ostream& err);
    // Makes folder (and its parents) when missing; empty on success, else why.
    static std::string make_folder(const std::string& folder);
};
