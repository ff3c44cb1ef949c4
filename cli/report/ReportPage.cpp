#include "cli/report/ReportPage.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <map>
#include <sstream>

#include "cli/Utf8.h"
#include "cli/writers/SceneText.h"

namespace {

struct Box {
    ScenePoint lo{std::numeric_limits<double>::infinity(), std::numeric_limits<double>::infinity(),
                  std::numeric_limits<double>::infinity()};
    ScenePoint hi{-lo[0], -lo[1], -lo[2]};
    void add(const ScenePoint& p)
    {
        if (!std::isfinite(p[0]) || !std::isfinite(p[1]) || !std::isfinite(p[2])) return;
        for (std::size_t k = 0; k < 3; ++k) {
            lo[k] = std::min(lo[k], p[k]);
            hi[k] = std::max(hi[k], p[k]);
        }
    }
    void add(const Box& b)
    {
        if (b.empty()) return;
        add(b.lo);
        add(b.hi);
    }
    bool empty() const { return !(lo[0] <= hi[0]); }
};

std::string mm(double v)
{
    char buf[64];
    std::snprintf(buf, sizeof buf, "%.2f", v);
    return buf;
}

std::string box_text(const Box& b)
{
    if (b.empty()) return "&ndash;";
    return "x " + mm(b.lo[0]) + " .. " + mm(b.hi[0]) + ", y " + mm(b.lo[1]) + " .. " + mm(b.hi[1]) + ", z " +
           mm(b.lo[2]) + " .. " + mm(b.hi[2]) + " (" + mm(b.hi[0] - b.lo[0]) + " &times; " + mm(b.hi[1] - b.lo[1]) +
           " &times; " + mm(b.hi[2] - b.lo[2]) + ")";
}

struct Totals {
    std::size_t groups = 0, meshes = 0, curves = 0, clouds = 0;
    std::size_t vertices = 0, triangles = 0, control_points = 0, points = 0;
};

class TreeWriter {
public:
    TreeWriter(std::ostream& out, const std::vector<PreviewFolder::Written>& pictures) : out_(out)
    {
        for (const PreviewFolder::Written& w : pictures) pictures_[w.item] = &w;
    }

    // Writes g's members as a list; gives their bounding box in the world.
    Box group(const SceneGroup& g, const ScenePlacement& world)
    {
        Box all;
        out_ << "<ul>\n";
        for (const SceneMember& m : g.members) {
            if (m.kind == SceneMember::group) {
                const SceneGroup& child = g.groups[m.index];
                ++totals.groups;
                // The box is known after the members: it follows them.
                out_ << "<li class=\"group\"><details open><summary>" << ReportPage::escape(child.name)
                     << "</summary>\n";
                const Box b = group(child, scene_compose(world, child.placement));
                out_ << "<div class=\"box\">bounding box " << box_text(b) << "</div></details></li>\n";
                all.add(b);
                continue;
            }
            const ScenePlacedItem item{m.kind, m.kind == SceneMember::mesh ? &g.meshes[m.index] : nullptr,
                                       m.kind == SceneMember::curve ? &g.curves[m.index] : nullptr,
                                       m.kind == SceneMember::cloud ? &g.clouds[m.index] : nullptr, world, {}};
            all.add(leaf(item));
            ++item_;
        }
        out_ << "</ul>\n";
        return all;
    }

    Totals totals;

private:
    Box leaf(const ScenePlacedItem& item)
    {
        Box b;
        std::string kind, counts;
        if (item.mesh) {
            ++totals.meshes;
            totals.vertices += item.mesh->vertices.size();
            totals.triangles += item.mesh->triangles.size();
            for (const ScenePoint& p : item.mesh->vertices) b.add(scene_apply(item.world, p));
            kind = "mesh";
            counts = std::to_string(item.mesh->vertices.size()) + " vertices, " +
                     std::to_string(item.mesh->triangles.size()) + " triangles";
        } else if (item.curve) {
            ++totals.curves;
            totals.control_points += item.curve->points.size();
            for (const ScenePoint& p : item.curve->points) b.add(scene_apply(item.world, p));
            kind = "curve";
            counts = "order " + std::to_string(item.curve->order) + ", " + std::to_string(item.curve->points.size()) +
                     " control points";
        } else {
            ++totals.clouds;
            totals.points += item.cloud->points.size();
            for (const ScenePoint& p : item.cloud->points) b.add(scene_apply(item.world, p));
            kind = "point cloud";
            counts = std::to_string(item.cloud->points.size()) + " points";
        }
        const SceneItemInfo& info = item.info();
        out_ << "<li class=\"item\"><span class=\"name\">" << ReportPage::escape(info.name) << "</span> <span class=\"kind\">"
             << kind << "</span>: " << counts << "; layer " << ReportPage::escape(info.layer) << " (level "
             << info.level << ")";
        if (info.colour != SceneItemInfo::no_colour) out_ << ", colour " << info.colour;
        out_ << "<div class=\"box\">bounding box " << box_text(b) << "</div>";
        if (const auto it = pictures_.find(item_); it != pictures_.end()) {
            const PreviewFolder::Written& w = *it->second;
            const std::string file = ReportPage::escape(w.file);
            out_ << "<a href=\"" << file << "\"><img class=\"preview\" src=\"" << file << "\" alt=\""
                 << ReportPage::escape(w.label) << "\" width=\"" << std::min(w.width, 240) << "\"></a>";
            if (w.kind != PreviewPicture::image)
                out_ << "<div class=\"box\">heights " << mm(w.lowest) << " .. " << mm(w.highest) << " mm</div>";
        }
        out_ << "</li>\n";
        return b;
    }

    std::ostream& out_;
    std::map<std::size_t, const PreviewFolder::Written*> pictures_;
    std::size_t item_ = 0;
};

const char* style()
{
    return "body{font-family:sans-serif;margin:1.5em;color:#222}"
           "h1{font-size:1.4em}h2{font-size:1.15em;margin-top:1.5em}"
           "model-viewer{width:100%;height:480px;background:#eef0f3;border:1px solid #ccc}"
           "ul{list-style:none;padding-left:1.2em}li{margin:.3em 0}"
           ".kind{color:#555;font-style:italic}.box{color:#555;font-size:.9em}"
           "img.preview{display:block;margin:.3em 0;border:1px solid #ccc}"
           "table{border-collapse:collapse}td,th{padding:.15em .8em;text-align:left}"
           "#status{color:#555;font-size:.9em}";
}

} // namespace

std::string ReportPage::escape(const std::string& bytes)
{
    std::string out;
    for (std::size_t i = 0; i < bytes.size();) {
        const std::size_t n = Utf8::sequence_length(bytes, i);
        if (n == 0) {
            out += "&#xFFFD;";
            ++i;
            continue;
        }
        if (n == 1) {
            switch (bytes[i]) {
            case '<': out += "&lt;"; break;
            case '>': out += "&gt;"; break;
            case '&': out += "&amp;"; break;
            case '"': out += "&quot;"; break;
            case '\'': out += "&#39;"; break;
            default:
                if (static_cast<unsigned char>(bytes[i]) < 0x20 && bytes[i] != '\t' && bytes[i] != '\n')
                    out += "&#xFFFD;";
                else
                    out += bytes[i];
            }
        } else {
            out.append(bytes, i, n);
        }
        i += n;
    }
    return out;
}

std::string ReportPage::base64(const std::string& bytes)
{
    static constexpr char digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string out;
    out.reserve((bytes.size() + 2) / 3 * 4);
    std::size_t i = 0;
    for (; i + 2 < bytes.size(); i += 3) {
        const unsigned v = static_cast<unsigned char>(bytes[i]) << 16 | static_cast<unsigned char>(bytes[i + 1]) << 8 |
                           static_cast<unsigned char>(bytes[i + 2]);
        out += digits[v >> 18 & 63];
        out += digits[v >> 12 & 63];
        out += digits[v >> 6 & 63];
        out += digits[v & 63];
    }
    if (i < bytes.size()) {
        const bool two = i + 1 < bytes.size();
        const unsigned v = static_cast<unsigned char>(bytes[i]) << 16 |
                           (two ? static_cast<unsigned char>(bytes[i + 1]) << 8 : 0u);
        out += digits[v >> 18 & 63];
        out += digits[v >> 12 & 63];
        out += two ? digits[v >> 6 & 63] : '=';
        out += '=';
    }
    return out;
}

std::string ReportPage::model_script(const std::string& glb)
{
    return std::string("window.") + model_variable + " = \"data:model/gltf-binary;base64," + base64(glb) + "\";\n";
}

void ReportPage::write(std::ostream& out, const Scene& scene, const std::vector<PreviewFolder::Written>& pictures,
                       const Files& files)
{
    const std::string title = escape(files.archive);
    out << "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n<title>" << title
        << "</title>\n<style>" << style() << "</style>\n";
    if (files.viewer) out << "<script src=\"" << viewer_file << "\"></script>\n";
    out << "<script src=\"" << escape(files.model_script) << "\"></script>\n</head>\n<body>\n<h1>" << title << "</h1>\n";

    // The tree first into a string: the totals above it come from its walk.
    std::ostringstream tree;
    TreeWriter writer(tree, pictures);
    const Box all = writer.group(scene.top, scene_compose(scene_scaling(1.0), scene.top.placement));
    const Totals& t = writer.totals;
    out << "<table>\n"
        << "<tr><th>archive</th><td>" << title << " (" << files.archive_bytes << " bytes)</td></tr>\n"
        << "<tr><th>groups</th><td>" << t.groups << "</td></tr>\n"
        << "<tr><th>meshes</th><td>" << t.meshes << " (" << t.vertices << " vertices, " << t.triangles
        << " triangles)</td></tr>\n"
        << "<tr><th>curves</th><td>" << t.curves << " (" << t.control_points << " control points)</td></tr>\n"
        << "<tr><th>point clouds</th><td>" << t.clouds << " (" << t.points << " points)</td></tr>\n"
        << "<tr><th>pictures</th><td>" << pictures.size() << "</td></tr>\n"
        << "<tr><th>bounding box (mm)</th><td>" << box_text(all) << "</td></tr>\n"
        << "<tr><th>glTF</th><td><a href=\"" << escape(files.model) << "\">" << escape(files.model) << "</a> ("
        << files.model_bytes << " bytes)</td></tr>\n"
        << "</table>\n";

    out << "<h2>3D view</h2>\n";
    if (files.viewer) {
        out << "<model-viewer id=\"model\" camera-controls touch-action=\"pan-y\" shadow-intensity=\"0\" "
               "alt=\"the imported archive\"></model-viewer>\n<p id=\"status\">loading the model&hellip;</p>\n";
    } else {
        out << "<p id=\"status\">No 3D view: the viewer (" << viewer_file
            << ") was not found when this report was made.</p>\n";
    }
    out << "<h2>Overview</h2>\n<a href=\"" << PreviewFolder::overview_file << "\"><img class=\"preview\" src=\""
        << PreviewFolder::overview_file << "\" alt=\"overview\" style=\"max-width:100%\"></a>\n";
    out << "<h2>Tree</h2>\n" << tree.str();
    if (files.viewer) {
        // The outcome lands in body's data-model ("loaded" or "error"), so a
        // test or a user can tell.
        out << "<script>\n"
               "(function () {\n"
               "  var viewer = document.getElementById('model');\n"
               "  var status = document.getElementById('status');\n"
               "  viewer.addEventListener('load', function () {\n"
               "    document.body.dataset.model = 'loaded';\n"
               "    status.textContent = 'drag to turn, scroll to zoom';\n"
               "  });\n"
               "  viewer.addEventListener('error', function (e) {\n"
               "    document.body.dataset.model = 'error';\n"
               "    status.textContent = 'the model could not be shown';\n"
               "    console.error('model-viewer: ' + (e.detail && e.detail.type));\n"
               "  });\n"
               "  viewer.src = window."
            << model_variable
            << ";\n"
               "})();\n"
               "</script>\n";
    }
    out << "</body>\n</html>\n";
}
