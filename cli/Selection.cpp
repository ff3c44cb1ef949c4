#include "cli/Selection.h"

#include <CLI/CLI.hpp>
#include <fnmatch.h>

#include <algorithm>

#include "cli/Utf8.h"
#include "cli/dump/DumpSink.h"

namespace {

const char* const kind_words[] = {"scans", "images", "models", "outlines", "insoles"};

} // namespace

void Selection::add_options(CLI::App& cmd, Selection& selection)
{
    cmd.add_option("--select", selection.patterns,
                   "Keep only the objects whose path (group names from \"Data Base\" down, then the "
                   "object's name, joined by /) or one of whose groups' paths matches PATTERN, a shell "
                   "glob in which * also spans /, e.g. '*/PCS models*/*/FINISH_MODEL*' (repeatable: "
                   "any pattern)")
        ->type_name("PATTERN")
        ->allow_extra_args(false);
    cmd.add_option("--only", selection.only,
                   "Keep only objects of these kinds: scans (scan meshes), images (scan pictures as "
                   "point clouds), models (outlines and insoles), outlines (curves), insoles (the "
                   "FINISH_MODEL meshes); comma-separated or repeated")
        ->type_name("KIND")
        ->allow_extra_args(false)
        ->delimiter(',')
        ->check(CLI::IsMember(std::vector<std::string>(std::begin(kind_words), std::end(kind_words))));
}

bool Selection::only_insoles() const
{
    return !only.empty() && std::all_of(only.begin(), only.end(), [](const std::string& w) { return w == "insoles"; });
}

Selection::Kind Selection::mesh_kind(const std::string& name)
{
    return name.rfind("FINISH_MODEL", 0) == 0 ? Kind::insole : Kind::scan;
}

const char* Selection::kind_name(Kind kind)
{
    switch (kind) {
    case Kind::scan: return "scan";
    case Kind::image: return "image";
    case Kind::outline: return "outline";
    case Kind::insole: return "insole";
    }
    return "";
}

std::string Selection::path_text(const std::vector<std::string>& names)
{
    std::string s;
    for (std::size_t k = 0; k < names.size(); ++k) {
        if (k > 0) s += '/';
        s += Utf8::from_bytes(names[k]);
    }
    return s;
}

bool Selection::kind_wanted(Kind kind) const
{
    if (only.empty()) return true;
    for (const std::string& w : only) {
        if ((w == "scans" && kind == Kind::scan) || (w == "images" && kind == Kind::image) ||
            (w == "outlines" && kind == Kind::outline) || (w == "insoles" && kind == Kind::insole) ||
            (w == "models" && (kind == Kind::outline || kind == Kind::insole)))
            return true;
    }
    return false;
}

bool Selection::path_wanted(const std::vector<std::string>& path) const
{
    if (patterns.empty()) return true;
    // The object's path and each of its groups' paths, shortest first.
    std::string text;
    for (std::size_t k = 0; k < path.size(); ++k) {
        if (k > 0) text += '/';
        text += Utf8::from_bytes(path[k]);
        for (const std::string& p : patterns)
            if (::fnmatch(p.c_str(), text.c_str(), 0) == 0) return true;
    }
    return false;
}

bool Selection::selects(const std::vector<std::string>& path, Kind kind) const
{
    return kind_wanted(kind) && path_wanted(path);
}

bool Selection::keep_group(const SceneGroup& from, SceneGroup& to, std::vector<std::string>& path) const
{
    bool kept = false;
    for (const SceneMember& m : from.members) {
        switch (m.kind) {
        case SceneMember::group: {
            const SceneGroup& g = from.groups[m.index];
            SceneGroup copy;
            copy.name = g.name;
            copy.mangled = g.mangled;
            copy.placement = g.placement;
            path.push_back(g.name);
            if (keep_group(g, copy, path)) {
                to.add(std::move(copy));
                kept = true;
            }
            path.pop_back();
            break;
        }
        case SceneMember::mesh:
        case SceneMember::curve:
        case SceneMember::cloud: {
            const SceneItemInfo& info = m.kind == SceneMember::mesh    ? from.meshes[m.index].info
                                        : m.kind == SceneMember::curve ? from.curves[m.index].info
                                                                       : from.clouds[m.index].info;
            const Kind kind = m.kind == SceneMember::mesh    ? mesh_kind(info.name)
                              : m.kind == SceneMember::curve ? Kind::outline
                                                             : Kind::image;
            path.push_back(info.name);
            const bool wanted = selects(path, kind);
            path.pop_back();
            if (!wanted) break;
            if (m.kind == SceneMember::mesh) to.add(from.meshes[m.index]);
            else if (m.kind == SceneMember::curve) to.add(from.curves[m.index]);
            else to.add(from.clouds[m.index]);
            kept = true;
            break;
        }
        }
    }
    return kept;
}

Scene Selection::apply(const Scene& scene) const
{
    Scene out = scene.empty_copy();
    std::vector<std::string> path;
    keep_group(scene.top, out.top, path);
    return out;
}

void Selection::keep_items(std::vector<std::unique_ptr<DumpItem>>& items, std::vector<std::string>& path) const
{
    std::vector<std::unique_ptr<DumpItem>> kept;
    for (std::unique_ptr<DumpItem>& item : items) {
        path.push_back(item->name);
        bool keep = true;
        switch (item->kind) {
        case DumpItem::group: keep_items(item->children, path); break;
        case DumpItem::triblock: keep = selects(path, mesh_kind(item->name)); break;
        case DumpItem::curve: keep = selects(path, Kind::outline); break;
        case DumpItem::pointcloud: keep = selects(path, Kind::image); break;
        }
        path.pop_back();
        if (keep) kept.push_back(std::move(item));
    }
    items = std::move(kept);
}

void Selection::apply(std::vector<std::unique_ptr<DumpItem>>& top) const
{
    std::vector<std::string> path;
    keep_items(top, path);
}
