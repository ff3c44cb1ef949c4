#include "cli/preview/PreviewPictures.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <set>

#include "cli/preview/BitmapFont.h"
#include "cli/preview/HeightColours.h"
#include "cli/writers/ColourPalette.h"
#include "cli/writers/SceneText.h"

namespace {

constexpr CanvasRgb white{255, 255, 255};
constexpr CanvasRgb ink{32, 32, 32};
constexpr CanvasRgb frame_grey{176, 176, 176};

// How far the title band reaches down from the top of a picture.
constexpr int title_band = PreviewPictures::margin + BitmapFont::line_height + 4;

bool finite(const ScenePoint& p)
{
    return std::isfinite(p[0]) && std::isfinite(p[1]) && std::isfinite(p[2]);
}

std::string number(double v)
{
    return SceneText::number(v);
}

// Where a map's pixels lie: pixel (i, j) has its centre at (x0 + i / ppm,
// y0 + j / ppm); j counts upwards.
struct MapFrame {
    double x0 = 0.0, y0 = 0.0, ppm = PreviewPictures::pixels_per_mm;
    int cols = 1, rows = 1;
};

struct Bounds {
    double lo_x = std::numeric_limits<double>::infinity(), lo_y = lo_x;
    double hi_x = -lo_x, hi_y = -lo_x;
    void add(const ScenePoint& p)
    {
        lo_x = std::min(lo_x, p[0]);
        hi_x = std::max(hi_x, p[0]);
        lo_y = std::min(lo_y, p[1]);
        hi_y = std::max(hi_y, p[1]);
    }
    bool empty() const { return !(lo_x <= hi_x); }
};

MapFrame frame_of(const Bounds& b)
{
    MapFrame f;
    if (b.empty()) return f;
    // Halve the scale until the longer side fits; doubles run out of
    // exponent long before the loop's bound.
    const auto side = [&](double lo, double hi, double ppm) { return std::ceil(hi * ppm) - std::floor(lo * ppm) + 1.0; };
    for (int k = 0; k < 2200; ++k) {
        const double w = side(b.lo_x, b.hi_x, f.ppm), h = side(b.lo_y, b.hi_y, f.ppm);
        if (std::isfinite(w) && std::isfinite(h) && w <= PreviewPictures::max_map_side &&
            h <= PreviewPictures::max_map_side)
            break;
        f.ppm /= 2.0;
    }
    f.x0 = std::floor(b.lo_x * f.ppm) / f.ppm;
    f.y0 = std::floor(b.lo_y * f.ppm) / f.ppm;
    const double w = side(b.lo_x, b.hi_x, f.ppm), h = side(b.lo_y, b.hi_y, f.ppm);
    f.cols = std::isfinite(w) ? static_cast<int>(std::clamp(w, 1.0, double(PreviewPictures::max_map_side))) : 1;
    f.rows = std::isfinite(h) ? static_cast<int>(std::clamp(h, 1.0, double(PreviewPictures::max_map_side))) : 1;
    return f;
}

struct Uv {
    double u, v;
};

// Twice the signed area of (a, b, p): zero exactly when p is a or b, which
// keeps a node's own height at a pixel centre on the node.
double edge(const Uv& a, const Uv& b, const Uv& p)
{
    return (b.u - a.u) * (p.v - a.v) - (b.v - a.v) * (p.u - a.u);
}

std::string fixed(double v, int decimals)
{
    char buf[64];
    std::snprintf(buf, sizeof buf, "%.*f", decimals, v);
    return buf;
}

// The sharpest decimals the tick labels of a range need.
int decimals_for(double range)
{
    if (range >= 100.0) return 0;
    if (range >= 10.0) return 1;
    return 2;
}

std::string join(const std::vector<std::string>& names, const char* between)
{
    std::string s;
    for (std::size_t i = 0; i < names.size(); ++i) s += (i ? between : "") + names[i];
    return s;
}

class Walker {
public:
    // With draw false the pictures carry their kind, item and path only.
    Walker(const std::function<void(PreviewPicture&)>& each, bool draw) : each_(each), draw_(draw) {}

    void group(const SceneGroup& g)
    {
        std::vector<const SceneCurve*> outlines;
        for (const SceneCurve& c : g.curves) outlines.push_back(&c);
        for (const SceneMember& m : g.members) {
            switch (m.kind) {
            case SceneMember::group: {
                const SceneGroup& child = g.groups[m.index];
                path_.push_back(child.name);
                group(child);
                path_.pop_back();
                continue;
            }
            case SceneMember::mesh: {
                const SceneMesh& mesh = g.meshes[m.index];
                PreviewPicture p = draw_ ? height_map(mesh, outlines) : begin(kind_of(mesh), mesh.info);
                each_(p);
                break;
            }
            case SceneMember::cloud: {
                const ScenePointCloud& cloud = g.clouds[m.index];
                PreviewPicture p = draw_ ? image(cloud) : begin(PreviewPicture::image, cloud.info);
                each_(p);
                break;
            }
            case SceneMember::curve: break;
            }
            ++item_;
        }
    }

private:
    static PreviewPicture::Kind kind_of(const SceneMesh& mesh)
    {
        return mesh.info.name.rfind("FINISH_MODEL", 0) == 0 ? PreviewPicture::insole : PreviewPicture::scan;
    }

    PreviewPicture begin(PreviewPicture::Kind kind, const SceneItemInfo& info) const
    {
        PreviewPicture p;
        p.kind = kind;
        p.item = item_;
        p.path = path_;
        p.path.push_back(info.name);
        return p;
    }

    PreviewPicture height_map(const SceneMesh& mesh, const std::vector<const SceneCurve*>& outlines) const;
    PreviewPicture image(const ScenePointCloud& cloud) const;

    const std::function<void(PreviewPicture&)>& each_;
    bool draw_;
    std::vector<std::string> path_;
    std::size_t item_ = 0;
};

// Title band: the item's name and what the picture is.
void draw_title(Canvas& page, const PreviewPicture& p)
{
    BitmapFont::draw(page, PreviewPictures::margin, PreviewPictures::margin,
                     p.path.back() + " (" + p.kind_name() + ")", ink);
}

PreviewPicture Walker::height_map(const SceneMesh& mesh, const std::vector<const SceneCurve*>& outlines) const
{
    PreviewPicture p = begin(kind_of(mesh), mesh.info);

    std::vector<ScenePoint> w;
    w.reserve(mesh.vertices.size());
    Bounds bounds;
    double lo = std::numeric_limits<double>::infinity(), hi = -lo;
    for (const ScenePoint& v : mesh.vertices) {
        w.push_back(v);
        if (!finite(w.back())) continue;
        bounds.add(w.back());
        lo = std::min(lo, w.back()[2]);
        hi = std::max(hi, w.back()[2]);
    }
    if (!(lo <= hi)) lo = hi = 0.0;
    std::vector<std::vector<ScenePoint>> lines;
    for (const SceneCurve* c : outlines) {
        std::vector<ScenePoint> s = c->sample();
        for (const ScenePoint& q : s)
            if (finite(q)) bounds.add(q);
        lines.push_back(std::move(s));
    }
    const MapFrame f = frame_of(bounds);
    const auto uv = [&](const ScenePoint& q) { return Uv{(q[0] - f.x0) * f.ppm, (q[1] - f.y0) * f.ppm}; };

    // The highest surface over each pixel centre.
    const double none = -std::numeric_limits<double>::infinity();
    std::vector<double> top(static_cast<std::size_t>(f.cols) * static_cast<std::size_t>(f.rows), none);
    long long tests = 0;
    bool complete = true;
    for (const auto& t : mesh.triangles) {
        const ScenePoint &pa = w[t[0]], &pb = w[t[1]], &pc = w[t[2]];
        if (!finite(pa) || !finite(pb) || !finite(pc)) continue;
        const Uv a = uv(pa), b = uv(pb), c = uv(pc);
        const double i0 = std::max(0.0, std::ceil(std::min({a.u, b.u, c.u})));
        const double i1 = std::min(double(f.cols - 1), std::floor(std::max({a.u, b.u, c.u})));
        const double j0 = std::max(0.0, std::ceil(std::min({a.v, b.v, c.v})));
        const double j1 = std::min(double(f.rows - 1), std::floor(std::max({a.v, b.v, c.v})));
        if (!(i0 <= i1) || !(j0 <= j1)) continue;
        tests += static_cast<long long>(i1 - i0 + 1) * static_cast<long long>(j1 - j0 + 1);
        if (tests > PreviewPictures::max_raster_tests) {
            complete = false;
            break;
        }
        for (int j = static_cast<int>(j0); j <= static_cast<int>(j1); ++j) {
            for (int i = static_cast<int>(i0); i <= static_cast<int>(i1); ++i) {
                const Uv q{static_cast<double>(i), static_cast<double>(j)};
                const double e0 = edge(b, c, q), e1 = edge(c, a, q), e2 = edge(a, b, q);
                const bool in = (e0 >= 0.0 && e1 >= 0.0 && e2 >= 0.0) || (e0 <= 0.0 && e1 <= 0.0 && e2 <= 0.0);
                const double sum = e0 + e1 + e2;
                if (!in || sum == 0.0) continue;
                const double z = e0 / sum * pa[2] + e1 / sum * pb[2] + e2 / sum * pc[2];
                double& cell = top[static_cast<std::size_t>(j) * static_cast<std::size_t>(f.cols) + static_cast<std::size_t>(i)];
                if (z > cell) cell = z;
            }
        }
    }
    Canvas map(f.cols, f.rows, white);
    for (int j = 0; j < f.rows; ++j)
        for (int i = 0; i < f.cols; ++i) {
            const double z = top[static_cast<std::size_t>(j) * static_cast<std::size_t>(f.cols) + static_cast<std::size_t>(i)];
            if (z != none) map.set(i, f.rows - 1 - j, HeightColours::colour(z, lo, hi));
        }
    long long steps = 0;
    for (std::size_t k = 0; k < lines.size() && steps <= PreviewPictures::max_line_steps; ++k) {
        const CanvasRgb colour = ColourPalette::colour(outlines[k]->info.colour);
        const std::vector<ScenePoint>& s = lines[k];
        for (std::size_t n = 1; n < s.size() && steps <= PreviewPictures::max_line_steps; ++n) {
            const Uv a = uv(s[n - 1]), b = uv(s[n]);
            map.line(a.u, f.rows - 1 - a.v, b.u, f.rows - 1 - b.v, colour);
            steps += f.cols + f.rows + 2;
        }
    }

    // The page: title, map, legend.
    const int left = PreviewPictures::margin, top_y = title_band;
    const int bar_x = left + f.cols + 2 * PreviewPictures::margin;
    const int bar_top = top_y + BitmapFont::line_height + 4;
    const int ticks = hi > lo ? 5 : 1;
    const int decimals = decimals_for(hi - lo);
    std::vector<std::pair<int, std::string>> labels;
    int label_width = BitmapFont::width("mm");
    for (int k = 0; k < ticks; ++k) {
        const double v = k == ticks - 1 ? hi : lo + (hi - lo) * k / (ticks - 1);
        const int row = bar_top + HeightColours::levels - 1 - HeightColours::level(v, lo, hi);
        labels.emplace_back(row, fixed(v, decimals));
        label_width = std::max(label_width, BitmapFont::width(labels.back().second));
    }
    const std::string title = p.path.back() + " (" + p.kind_name() + ")";
    const int width = std::max(bar_x + PreviewPictures::bar_width + 6 + label_width + PreviewPictures::margin,
                               std::min(BitmapFont::width(title), 640) + 2 * PreviewPictures::margin);
    const int height = std::max(top_y + f.rows, bar_top + HeightColours::levels + BitmapFont::glyph_height) +
                       PreviewPictures::margin;
    Canvas page(width, height, white);
    draw_title(page, p);
    page.paste(map, left, top_y);
    BitmapFont::draw(page, bar_x, top_y, "mm", ink);
    for (int r = 0; r < HeightColours::levels; ++r)
        page.fill(bar_x, bar_top + r, PreviewPictures::bar_width, 1, HeightColours::colour(HeightColours::levels - 1 - r));
    for (const auto& [row, text] : labels) {
        page.fill(bar_x + PreviewPictures::bar_width, row, 4, 1, ink);
        BitmapFont::draw(page, bar_x + PreviewPictures::bar_width + 6, row - BitmapFont::glyph_height / 2, text, ink);
    }
    p.canvas = std::move(page);
    p.lowest = lo;
    p.highest = hi;
    p.texts = {
        {"Title", p.label()},
        {"Kind", std::string(p.kind_name()) + " height map"},
        {"Heights", number(lo) + " " + number(hi)},
        {"Raster", "origin_x=" + number(f.x0) + " origin_y=" + number(f.y0) + " pixels_per_mm=" + number(f.ppm) +
                       " left=" + std::to_string(left) + " top=" + std::to_string(top_y) +
                       " columns=" + std::to_string(f.cols) + " rows=" + std::to_string(f.rows)},
        {"Legend", "left=" + std::to_string(bar_x) + " top=" + std::to_string(bar_top) +
                       " width=" + std::to_string(PreviewPictures::bar_width) +
                       " levels=" + std::to_string(HeightColours::levels)},
    };
    if (!complete) p.texts.emplace_back("Incomplete", "the mesh passed the raster's bound; the map stops there");
    return p;
}

PreviewPicture Walker::image(const ScenePointCloud& cloud) const
{
    PreviewPicture p = begin(PreviewPicture::image, cloud.info);
    const std::size_t n = cloud.points.size();
    std::size_t cols = 0;
    while (cols < n && cloud.points[cols][1] == cloud.points[0][1]) ++cols;
    const std::size_t rows = cols == 0 ? 0 : (n + cols - 1) / cols;
    const int side = PreviewPictures::max_image_side;
    Canvas picture;
    std::string layout;
    if (cols > 0 && cols <= std::size_t(side) && rows <= std::size_t(side)) {
        // Row by row, as the picture was taken; its first row at the bottom.
        picture = Canvas(static_cast<int>(cols), static_cast<int>(rows), white);
        for (std::size_t k = 0; k < n; ++k)
            picture.set(static_cast<int>(k % cols), static_cast<int>(rows - 1 - k / cols), cloud.colour(k));
        layout = "rows left=" + std::to_string(PreviewPictures::margin) + " top=" + std::to_string(title_band) +
                 " columns=" + std::to_string(cols) + " rows=" + std::to_string(rows);
    } else {
        // Point by point where each lies, seen from above.
        Bounds b;
        const std::vector<ScenePoint>& w = cloud.points;
        for (const ScenePoint& q : w)
            if (finite(q)) b.add(q);
        const MapFrame f = frame_of(b);
        picture = Canvas(f.cols, f.rows, white);
        for (std::size_t k = 0; k < w.size(); ++k) {
            if (!finite(w[k])) continue;
            const double u = std::round((w[k][0] - f.x0) * f.ppm), v = std::round((w[k][1] - f.y0) * f.ppm);
            if (u >= 0 && v >= 0 && u < f.cols && v < f.rows)
                picture.set(static_cast<int>(u), f.rows - 1 - static_cast<int>(v), cloud.colour(k));
        }
        layout = "positions origin_x=" + number(f.x0) + " origin_y=" + number(f.y0) +
                 " pixels_per_mm=" + number(f.ppm);
    }
    const std::string title = p.path.back() + " (" + p.kind_name() + ")";
    const int width = std::max(picture.width(), std::min(BitmapFont::width(title), 640)) + 2 * PreviewPictures::margin;
    Canvas page(width, title_band + picture.height() + PreviewPictures::margin, white);
    draw_title(page, p);
    page.paste(picture, PreviewPictures::margin, title_band);
    p.canvas = std::move(page);
    p.texts = {{"Title", p.label()}, {"Kind", "image"}, {"Layout", layout}};
    return p;
}

// The label cut into lines of at most width characters, preferably after a
// '/', at most max_lines (the last one ending in "..." when cut).
std::vector<std::string> wrap(const std::string& text, std::size_t width, std::size_t max_lines)
{
    std::vector<std::string> lines;
    std::string rest = BitmapFont::printable(text);
    while (!rest.empty() && lines.size() < max_lines) {
        if (rest.size() <= width) {
            lines.push_back(rest);
            rest.clear();
            break;
        }
        std::size_t cut = rest.rfind('/', width - 1);
        cut = cut == std::string::npos || cut < width / 2 ? width : cut + 1;
        lines.push_back(rest.substr(0, cut));
        rest.erase(0, cut);
    }
    if (!rest.empty() && !lines.empty()) {
        std::string& last = lines.back();
        last = last.substr(0, std::min(last.size(), width - 3)) + "...";
    }
    return lines;
}

} // namespace

std::string PreviewPicture::label() const
{
    return join(path, "/");
}

const char* PreviewPicture::kind_name() const
{
    switch (kind) {
    case scan: return "scan";
    case insole: return "insole";
    case image: return "image";
    }
    return "scan";
}

void PreviewPictures::make(const Scene& scene, const std::function<void(PreviewPicture&)>& each)
{
    Walker walker(each, true);
    walker.group(scene.top);
}

std::vector<std::vector<std::string>> PreviewPictures::paths(const Scene& scene)
{
    std::vector<std::vector<std::string>> out;
    const std::function<void(PreviewPicture&)> keep = [&](PreviewPicture& p) { out.push_back(p.path); };
    Walker walker(keep, false);
    walker.group(scene.top);
    return out;
}

std::size_t PreviewPictures::shared_names(const std::vector<std::vector<std::string>>& paths)
{
    if (paths.empty()) return 0;
    std::size_t n = paths[0].size();
    for (const std::vector<std::string>& p : paths) {
        n = std::min(n, p.empty() ? 0 : p.size() - 1);
        for (std::size_t k = 0; k < n; ++k)
            if (p[k] != paths[0][k]) n = k;
    }
    return n;
}

Canvas PreviewPictures::overview(const std::string& title, const std::vector<Thumbnail>& thumbnails,
                                 std::size_t left_out)
{
    constexpr int columns = 4;
    constexpr std::size_t label_lines = 4;
    constexpr int cell_width = thumbnail_size + 2 * margin;
    constexpr int cell_height = thumbnail_size + 2 * margin + int(label_lines) * BitmapFont::line_height + margin;
    const std::size_t label_chars = static_cast<std::size_t>(cell_width - margin) / BitmapFont::advance;
    const int n = static_cast<int>(thumbnails.size());
    const int across = std::max(1, std::min(columns, n));
    const int down = (n + columns - 1) / columns;
    const std::string more = left_out ? "and " + std::to_string(left_out) + " more pictures" : "";
    const int head = margin + BitmapFont::line_height + margin;
    const int width = std::max(across * cell_width, std::min(BitmapFont::width(title), 1200) + 2 * margin);
    const int height = head + down * cell_height + (more.empty() ? 0 : BitmapFont::line_height + margin) + margin;
    Canvas sheet(width, height, white);
    BitmapFont::draw(sheet, margin, margin, title, ink);
    for (int k = 0; k < n; ++k) {
        const int x = (k % columns) * cell_width, y = head + (k / columns) * cell_height;
        const Canvas thumb = thumbnails[static_cast<std::size_t>(k)].picture.shrunk_to(thumbnail_size, thumbnail_size);
        const int tx = x + margin + (thumbnail_size - thumb.width()) / 2;
        const int ty = y + margin + (thumbnail_size - thumb.height()) / 2;
        sheet.paste(thumb, tx, ty);
        // A frame, so a mostly white picture still shows its edge.
        sheet.fill(tx - 1, ty - 1, thumb.width() + 2, 1, frame_grey);
        sheet.fill(tx - 1, ty + thumb.height(), thumb.width() + 2, 1, frame_grey);
        sheet.fill(tx - 1, ty, 1, thumb.height(), frame_grey);
        sheet.fill(tx + thumb.width(), ty, 1, thumb.height(), frame_grey);
        int ly = y + margin + thumbnail_size + margin;
        for (const std::string& line : wrap(thumbnails[static_cast<std::size_t>(k)].label, label_chars, label_lines)) {
            BitmapFont::draw(sheet, x + margin, ly, line, ink);
            ly += BitmapFont::line_height;
        }
    }
    if (!more.empty()) BitmapFont::draw(sheet, margin, head + down * cell_height, more, ink);
    return sheet;
}

std::string PreviewPictures::file_stem(const std::vector<std::string>& path, std::size_t shared)
{
    std::vector<std::string> parts;
    const std::string* previous = nullptr;
    for (std::size_t k = std::min(shared, path.size()); k < path.size(); ++k) {
        const std::string& name = path[k];
        if (previous && *previous == name) continue;
        previous = &name;
        std::string part;
        for (const char c : name) {
            const bool kept = std::isalnum(static_cast<unsigned char>(c)) && static_cast<unsigned char>(c) < 0x80;
            if (kept || c == '.' || c == '-') part += c;
            else if (part.empty() || part.back() != '_') part += '_';
        }
        // No hidden files, no "..", no edge underscores.
        const std::size_t b = part.find_first_not_of("._-"), e = part.find_last_not_of("._");
        part = b == std::string::npos ? std::string() : part.substr(b, e - b + 1);
        if (!part.empty()) parts.push_back(part);
    }
    std::string stem = join(parts, "--");
    if (stem.size() > max_file_stem) {
        stem.resize(max_file_stem);
        const std::size_t e = stem.find_last_not_of("._-");
        stem.resize(e == std::string::npos ? 0 : e + 1);
    }
    return stem.empty() ? "item" : stem;
}

std::string PreviewPictures::help()
{
    return "Pictures, seen from above (x to the right, y upwards), each in its item's own\n"
           "coordinates (the placements that lay the groups side by side are left out):\n"
           "  a scan or a finished insole (FINISH_MODEL): a height map of its triangles, "
           "4 pixels a\n  millimetre (half that, as often as needed, to stay within " +
           std::to_string(max_map_side) + " pixels), each pixel coloured by the\n"
           "  highest surface over its centre from dark blue (lowest) through green and yellow to\n"
           "  red (highest), with a legend in millimetres; the curves of its group (an insole's\n"
           "  outlines) drawn over it;\n"
           "  a plantar image: its points as pixels, row by row, in their own colours.\n"
           "overview.png shows every picture as a thumbnail labelled by its path. File names come\n"
           "from the group path below the groups all pictures share (letters, digits, '.', '-',\n"
           "'_'; the names joined by \"--\").\n"
           "Each PNG carries text chunks: Title (the path), Kind, and for a height map Heights\n"
           "(\"LOW HIGH\" in millimetres), Raster (origin_x, origin_y, pixels_per_mm, left, top,\n"
           "columns, rows: the node at x, y is at column left + (x - origin_x) * pixels_per_mm,\n"
           "row top + rows - 1 - (y - origin_y) * pixels_per_mm) and Legend (the colour bar's\n"
           "left, top, width and levels: its top row is the highest level).";
}

std::string PreviewFolder::write(const Scene& scene, const std::string& folder, const std::string& title,
                                 std::vector<Written>& written, std::string& failed)
{
    std::set<std::string> taken{"overview"};
    std::vector<PreviewPictures::Thumbnail> thumbs;
    std::size_t left_out = 0;
    std::size_t counts[3] = {0, 0, 0};
    std::string failure;
    const std::size_t shared = PreviewPictures::shared_names(PreviewPictures::paths(scene));
    PreviewPictures::make(scene, [&](PreviewPicture& p) {
        if (!failure.empty()) return;
        const std::string stem = PreviewPictures::file_stem(p.path, shared);
        std::string name = stem;
        const auto lower = [](std::string s) {
            for (char& c : s) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
            return s;
        };
        // Two names that differ in letter case only are one file on some
        // file systems.
        for (int k = 2; taken.count(lower(name)); ++k) name = stem + "-" + std::to_string(k);
        taken.insert(lower(name));
        const std::string file = name + ".png";
        const std::string path = (std::filesystem::path(folder) / file).string();
        if (const std::string why = PngFile::write(path, p.canvas, p.texts); !why.empty()) {
            failure = why;
            failed = path;
            return;
        }
        ++counts[p.kind];
        written.push_back({p.kind, p.item, p.label(), file, p.canvas.width(), p.canvas.height(), p.lowest, p.highest});
        if (thumbs.size() < PreviewPictures::max_overview_items)
            thumbs.push_back({p.canvas.shrunk_to(PreviewPictures::thumbnail_size, PreviewPictures::thumbnail_size),
                              p.label()});
        else
            ++left_out;
    });
    if (!failure.empty()) return failure;
    const std::string heading = title + ": " + std::to_string(counts[PreviewPicture::scan]) + " scans, " +
                                std::to_string(counts[PreviewPicture::insole]) + " insoles, " +
                                std::to_string(counts[PreviewPicture::image]) + " images";
    const Canvas sheet = PreviewPictures::overview(heading, thumbs, left_out);
    const std::string path = (std::filesystem::path(folder) / overview_file).string();
    if (const std::string why = PngFile::write(path, sheet, {{"Title", heading}, {"Kind", "overview"}}); !why.empty()) {
        failed = path;
        return why;
    }
    return {};
}
