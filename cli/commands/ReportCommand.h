#pragma once
// ReportCommand: `velmora report [--option NAME=0|1]... FILE.vlm -o DIR`.
// Imports the archive through the plug-in as a host does and writes into
// DIR a page a browser opens from the disk (index.html, see
// report/ReportPage.h) with the tree, the counts and bounding boxes, the
// pictures of `velmora preview` and a 3D view of the glTF binary that
// `velmora convert` would write (DIR/STEM.glb).
#include <ostream>
#include <string>
#include <vector>

namespace CLI {
class App;
}

class ReportCommand {
public:
    // The environment variable that names another viewer file to copy.
    static constexpr const char* viewer_variable = "VELMORA_VIEWER";

    std::string file;
    std::string output;
    std::vector<std::string> options;
    // The plug-in to load; empty for PluginLoader::library_path().
    std::string library;

    static CLI::App* add_to(CLI::App& app, ReportCommand& command);

    // Exit status: 0 written, 1 the import produced nothing, 3 a file could
    // not be read or written or the plug-in could not be loaded. A missing
    // viewer is said on err and leaves the page without its 3D view.
    int run(std::ostream& out, std::ostream& err) const;

    // The viewer's file: the variable's value when set, else
    // <bin>/../share/velmora/model-viewer-umd.min.js next to the command.
    static std::string viewer_path();
};
