#pragma once
// SplitOutput: `velmora convert --split DIR`: one file per object of a scene,
// each holding the object with the groups around it (their names and
// placements), named after the object's path, and DIR/manifest.json listing
// every file with the object's path, kind, counts and bounding box.
//
// File names: the path's names (in UTF-8, see Utf8::from_bytes) joined by
// "--", every ASCII byte but letters, digits and "-_.,()~+@=" made "_" (so
// no "/", "\", ":", "*", "?", quotes, spaces or control bytes, which some
// file system or shell would take otherwise), a leading "." or "-" made "_"
// (no hidden files, no "..", nothing that reads as an option), cut to
// max_name_bytes between characters. Characters beyond ASCII are kept as
// UTF-8. Where two names would be the same, even
// only in letter case, the later gets "-2", "-3", ... before its extension.
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "cli/writers/Scene.h"

class SplitOutput {
public:
    // The longest name stem written: file systems allow 255 bytes a name,
    // which leaves room for a suffix and the extension.
    static constexpr std::size_t max_name_bytes = 200;
    static constexpr const char* manifest_name = "manifest.json";

    // Writes one object's scene to the file at path; empty on success, else
    // the reason.
    using Writer = std::function<std::string(const Scene& scene, const std::string& path)>;

    // The file name stem for an object at path (its groups' names, then its own).
    static std::string stem(const std::vector<std::string>& path);

    // The scene holding only the ordinal-th object of the walk (see
    // Scene::placed_items) and the groups around it.
    static Scene only_item(const Scene& scene, std::size_t ordinal);

    // Whether the format holds an object (STL no curve, say).
    using Holds = std::function<bool(const ScenePlacedItem& item)>;

    // Writes every object of scene that the format holds into dir (created
    // when missing) as STEM.extension by write, then the manifest, which
    // lists the paths of the objects left out too. Empty on success, else
    // the reason, naming the file.
    // written, when given, counts the object files written.
    static std::string write(const Scene& scene, const std::string& dir, const std::string& extension,
                             const Writer& write, const Holds& holds = {}, std::size_t* written = nullptr);
};
