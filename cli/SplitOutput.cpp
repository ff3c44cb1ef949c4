#include "cli/SplitOutput.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <limits>
#include <set>
#include <system_error>

#include "cli/Selection.h"
#include "cli/Utf8.h"

namespace {

bool safe_byte(unsigned char c)
{
    if (c >= 0x80) return true;  // part of a UTF-8 character
    if (std::isalnum(c)) return true;
    return c != 0 && std::strchr("-_.,()~+@=", c) != nullptr;
}

std::string safe(const std::string& name)
{
    std::string s = Utf8::from_bytes(name);
    for (char& c : s)
        if (!safe_byte(static_cast<unsigned char>(c))) c = '_';
    return s;
}

std::string folded(std::string s)
{
    for (char& c : s) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return s;
}

// Copies into to the groups of from on the way to the ordinal-th object
// (counted down in left) and that object; true once it is copied.
bool copy_item(const SceneGroup& from, SceneGroup& to, std::size_t& left)
{
    for (const SceneMember& m : from.members) {
        if (m.kind == SceneMember::group) {
            const SceneGroup& g = from.groups[m.index];
            SceneGroup copy;
            copy.name = g.name;
            copy.mangled = g.mangled;
            copy.placement = g.placement;
            if (copy_item(g, copy, left)) {
                to.add(std::move(copy));
                return true;
            }
            continue;
        }
        if (left-- > 0) continue;
        if (m.kind == SceneMember::mesh) to.add(from.meshes[m.index]);
        else if (m.kind == SceneMember::curve) to.add(from.curves[m.index]);
        else to.add(from.clouds[m.index]);
        return true;
    }
    return false;
}

nlohmann::ordered_json entry(const ScenePlacedItem& it, const std::string& file)
{
    std::vector<std::string> path = it.path;
    path.push_back(it.info().name);
    nlohmann::ordered_json e;
    e["file"] = file;
    e["path"] = Selection::path_text(path);
    std::vector<ScenePoint> points;
    if (it.mesh) {
        e["kind"] = Selection::kind_name(Selection::mesh_kind(it.mesh->info.name));
        e["vertices"] = it.mesh->vertices.size();
        e["triangles"] = it.mesh->triangles.size();
        points = it.mesh->vertices;
    } else if (it.curve) {
        e["kind"] = Selection::kind_name(Selection::Kind::outline);
        points = it.curve->sample();
        e["points"] = points.size();
        e["control_points"] = it.curve->points.size();
    } else {
        e["kind"] = Selection::kind_name(Selection::Kind::image);
        e["points"] = it.cloud->points.size();
        points = it.cloud->points;
    }
    if (!points.empty()) {
        ScenePoint lo, hi;
        lo.fill(std::numeric_limits<double>::infinity());
        hi.fill(-std::numeric_limits<double>::infinity());
        for (const ScenePoint& p : points) {
            const ScenePoint q = scene_apply(it.world, p);
            for (std::size_t c = 0; c < 3; ++c) {
                lo[c] = std::min(lo[c], q[c]);
                hi[c] = std::max(hi[c], q[c]);
            }
        }
        e["bounding_box"] = {{"min", lo}, {"max", hi}};
    }
    return e;
}

} // namespace

std::string SplitOutput::stem(const std::vector<std::string>& path)
{
    std::string s;
    for (const std::string& name : path) {
        if (!s.empty()) s += "--";
        s += safe(name);
    }
    if (s.empty()) return "unnamed";
    if (s[0] == '.' || s[0] == '-') s[0] = '_';
    if (s.size() > max_name_bytes) {
        std::size_t keep = 0;
        for (std::size_t len; keep < s.size() && (len = Utf8::sequence_length(s, keep)) > 0 &&
                              keep + len <= max_name_bytes;)
            keep += len;
        s.resize(keep);
    }
    return s;
}

Scene SplitOutput::only_item(const Scene& scene, std::size_t ordinal)
{
    Scene out = scene.empty_copy();
    copy_item(scene.top, out.top, ordinal);
    return out;
}

std::string SplitOutput::write(const Scene& scene, const std::string& dir, const std::string& extension,
                               const Writer& write, const Holds& holds, std::size_t* written)
{
    if (written) *written = 0;
    namespace fs = std::filesystem;
    std::error_code ec;
    fs::create_directories(dir, ec);
    if (!fs::is_directory(dir, ec)) return dir + ": not a directory that can be made";
    const std::vector<ScenePlacedItem> items = scene.placed_items(1.0);
    std::set<std::string> taken = {folded(manifest_name)};
    nlohmann::ordered_json files = nlohmann::ordered_json::array(), left_out = nlohmann::ordered_json::array();
    for (std::size_t k = 0; k < items.size(); ++k) {
        std::vector<std::string> path = items[k].path;
        path.push_back(items[k].info().name);
        if (holds && !holds(items[k])) {
            left_out.push_back(Selection::path_text(path));
            continue;
        }
        const std::string base = stem(path);
        std::string name = base + "." + extension;
        for (int n = 2; taken.count(folded(name)) > 0; ++n) name = base + "-" + std::to_string(n) + "." + extension;
        taken.insert(folded(name));
        const std::string file = (fs::path(dir) / name).string();
        if (const std::string why = write(only_item(scene, k), file); !why.empty()) return file + ": " + why;
        files.push_back(entry(items[k], name));
        if (written) ++*written;
    }
    nlohmann::ordered_json manifest;
    manifest["archive"] = Utf8::from_bytes(scene.archive);
    manifest["units"] = "mm";
    manifest["bounding_box_frame"] = "the archive's world: every placement applied, Z up, no output scale";
    manifest["format"] = extension;
    manifest["files"] = files;
    manifest["left_out"] = left_out;
    const std::string path = (fs::path(dir) / manifest_name).string();
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    if (!out) return path + ": " + std::strerror(errno);
    try {
        out << manifest.dump(2) << '\n';
    } catch (const std::exception& e) {
        return path + ": " + e.what();
    }
    out.close();
    if (!out) return path + ": cannot write";
    return {};
}
