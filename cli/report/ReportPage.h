#pragma once
// ReportPage: the index.html of `velmora report`: what an import handed the
// host as a tree of groups and items with their counts and bounding boxes in
// millimetres, the preview pictures beside their items, and a 3D view of
// the converted glTF binary.
//
// The page must open from file:// without a network, where a browser loads
// neither module scripts nor a model by fetch: the viewer is a classic
// script next to the page, and the model comes as a data: URI set by a
// second classic script (MODEL.glb.js) that only assigns it.
#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "cli/preview/PreviewPictures.h"
#include "cli/writers/Scene.h"

class ReportPage {
public:
    // The variable MODEL.glb.js assigns the model's data: URI to.
    static constexpr const char* model_variable = "velmoraModel";
    // The viewer's file name in the report's folder.
    static constexpr const char* viewer_file = "model-viewer-umd.min.js";

    struct Files {
        std::string archive;         // the archive's file name
        std::uintmax_t archive_bytes = 0;
        std::string model;           // the .glb file's name in the folder
        std::uintmax_t model_bytes = 0;
        std::string model_script;    // the script that assigns its data: URI
        bool viewer = false;         // the viewer's file is in the folder
    };

    // Writes the page; pictures are those PreviewFolder wrote for scene.
    static void write(std::ostream& out, const Scene& scene, const std::vector<PreviewFolder::Written>& pictures,
                      const Files& files);

    // The script that sets window.<model_variable> to bytes as a data: URI
    // of a glTF binary.
    static std::string model_script(const std::string& glb);
    // bytes in base64 (RFC 4648, with padding).
    static std::string base64(const std::string& bytes);
    // Text for HTML: <, >, &, " and ' as references; bytes that are not
    // UTF-8 as U+FFFD.
    static std::string escape(const std::string& bytes);
};
