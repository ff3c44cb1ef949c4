#pragma once
// Selection: which of an import's objects `velmora convert` and `velmora dump`
// keep, by where they sit (--select PATTERN) and by what they are (--only
// KIND). A lab rarely wants a whole patient: the finished insoles of one
// visit, or the scans alone, are the daily case.
//
// An object's path is the names of the groups around it, from the import's
// root ("Data Base") down, then its own name, joined by "/" and written as
// UTF-8 (see Utf8::from_bytes), e.g.
//   Data Base/Beispiel,Erika/Kontrolle : 2024-09-12/PCS models(Kontrolle)/
//   MODEL_(LEFT)_2024-09-16/FINISH_MODEL~2
// A pattern is a shell glob matched with fnmatch over the whole path; "*"
// also spans "/", so '*/PCS models*/*/FINISH_MODEL*' needs no count of the
// levels above. A pattern that matches a group's path selects everything
// inside it. Several patterns select what any of them selects.
//
// Kinds: a scan is a triangle block other than a finished model, an image a
// point cloud, an outline a curve, an insole a triangle block named
// "FINISH_MODEL..." (the finished, closed insole grid); "models" are the
// outlines and the insoles. An object is kept when it is of a kind --only
// names (any kind when none is named) and a pattern selects it (any object
// when there is none).
#include <memory>
#include <string>
#include <vector>

#include "cli/writers/Scene.h"

namespace CLI {
class App;
}
struct DumpItem;

class Selection {
public:
    enum class Kind { scan, image, outline, insole };

    // --select, each as given.
    std::vector<std::string> patterns;
    // --only, each word as given (scans, images, models, outlines, insoles).
    std::vector<std::string> only;

    // Registers --select PATTERN (repeatable) and --only KIND[,KIND...]
    // (repeatable) on cmd, with their help.
    static void add_options(CLI::App& cmd, Selection& selection);

    // True when a pattern or a kind was given.
    bool active() const { return !patterns.empty() || !only.empty(); }
    // True when --only names exactly the insoles.
    bool only_insoles() const;

    static Kind mesh_kind(const std::string& name);
    // "scan", "image", "outline", "insole".
    static const char* kind_name(Kind kind);
    // The names joined by "/", each in UTF-8.
    static std::string path_text(const std::vector<std::string>& names);

    // Whether the object at path (its groups' names outermost first, then
    // its own name) and of kind is kept.
    bool selects(const std::vector<std::string>& path, Kind kind) const;

    // The scene with only the kept objects; a group left without any is left
    // out as well. The top and the scene's source stay.
    Scene apply(const Scene& scene) const;
    // The dump tree with only the kept objects: every group stays, so the
    // tree keeps its shape. top is the items the walk delivered at the top.
    void apply(std::vector<std::unique_ptr<DumpItem>>& top) const;

private:
    bool kind_wanted(Kind kind) const;
    bool path_wanted(const std::vector<std::string>& path) const;
    bool keep_group(const SceneGroup& from, SceneGroup& to, std::vector<std::string>& path) const;
    void keep_items(std::vector<std::unique_ptr<DumpItem>>& items, std::vector<std::string>& path) const;
};
