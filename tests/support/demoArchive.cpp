#include "tests/support/demoArchive.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include <zip.h>

#include "tests/support/contourText.h"
#include "tests/support/vlmWriter.h"

namespace vlm::demo {

namespace {

// The scans' lattice: 1 mm in x and y, heights in hundredths of a millimetre.
constexpr int grid_columns = 110;
constexpr int grid_rows = 280;
constexpr float grid_spacing = 1.0f;
constexpr float height_unit = 0.01f;
// The code that marks "no surface" outside the foot.
constexpr std::uint16_t no_surface = 0;
// Points on each outline (the last one closes it).
constexpr int outline_points = 61;
// The models' margin around the base grid, as the design program sets it.
constexpr double model_margin = 30.0;
// The blank stands out 2 mm around the foot, the insole stays 3 mm inside it.
constexpr double blank_allowance = 2.0;
constexpr double insole_inset = 3.0;
// Grey values of the scan pictures: the light background and the darkest
// contact area.
constexpr int picture_background = 235;
constexpr int picture_contact = 70;

// One foot as scanned on one day.
struct foot {
    side s;
    double length;     // heel to the longest toe, mm
    double width;      // across the ball, mm
    double arch;       // height of the inner arch, mm
    double x0, y0;     // lower left corner of its box in the scan grid
};

// The box of a scan's points that have a surface: the model's working grid
// places this box, not the whole lattice, at its margin.
struct surface_box {
    double x0 = 1e300, y0 = 1e300, x1 = -1e300, y1 = -1e300;
};

// The outline of a foot grown by grow (shrunk when negative) and moved by
// (sx, sy). foot_outline draws the inner side at low x, as for a right foot
// seen from above; a left foot is its mirror image, run in the same sense.
void outline(const foot& f, double grow, double sx, double sy, std::vector<double>& x, std::vector<double>& y)
{
    vlm::foot_outline(outline_points, f.x0 - grow + sx, f.y0 - grow + sy, f.width + 2.0 * grow,
                      f.length + 2.0 * grow, x, y);
    if (f.s == side::left) {
        const double mirror = 2.0 * (f.x0 + sx) + f.width;
        for (double& v : x)
            v = mirror - v;
        std::reverse(x.begin(), x.end());
        std::reverse(y.begin(), y.end());
    }
}

bool inside(const std::vector<double>& x, const std::vector<double>& y, double px, double py)
{
    bool in = false;
    for (std::size_t k = 0, l = x.size() - 1; k < x.size(); l = k++)
        if ((y[k] > py) != (y[l] > py) && px < (x[l] - x[k]) * (py - y[k]) / (y[l] - y[k]) + x[k])
            in = !in;
    return in;
}

double edge_distance(const std::vector<double>& x, const std::vector<double>& y, double px, double py)
{
    double best = 1e300;
    for (std::size_t k = 0; k + 1 < x.size(); ++k) {
        const double ex = x[k + 1] - x[k], ey = y[k + 1] - y[k];
        const double len2 = ex * ex + ey * ey;
        double t = len2 > 0.0 ? ((px - x[k]) * ex + (py - y[k]) * ey) / len2 : 0.0;
        t = std::clamp(t, 0.0, 1.0);
        const double dx = x[k] + t * ex - px, dy = y[k] + t * ey - py;
        best = std::min(best, std::sqrt(dx * dx + dy * dy));
    }
    return best;
}

// Height of the sole above the scanner's glass at a point inside the outline:
// a heel cup, the inner arch, the flat ball and the toes' spring, and the
// sides of the foot rising towards the outline.
double plantar_height(const foot& f, double px, double py, double edge)
{
    const double v = std::clamp((py - f.y0) / f.length, 0.0, 1.0);
    double inner = (px - (f.x0 + 0.5 * f.width)) / (0.5 * f.width);
    if (f.s == side::right)
        inner = -inner;
    const double arch_along = std::exp(-std::pow((v - 0.42) / 0.13, 2.0));
    const double arch_across = std::clamp(0.35 + inner, 0.0, 1.0);
    const double heel = 2.5 * std::exp(-std::pow(v / 0.12, 2.0));
    const double toes = v > 0.82 ? 5.0 * std::pow((v - 0.82) / 0.18, 2.0) : 0.0;
    const double rim = 7.0 * std::exp(-edge / 5.0);
    return 1.0 + heel + f.arch * arch_along * arch_across * arch_across + toes + rim;
}

// The scan of one foot; heights[k] keeps the height in mm (or -1 outside)
// for the picture taken with it, box the extent of the surface.
vlm::height_grid scan(const foot& f, std::vector<double>& heights, surface_box& box)
{
    std::vector<double> x, y;
    outline(f, 0.0, 0.0, 0.0, x, y);
    vlm::height_grid g;
    g.nx = grid_columns;
    g.ny = grid_rows;
    g.dx = grid_spacing;
    g.dy = grid_spacing;
    g.dz = height_unit;
    g.nodata = no_surface;
    heights.clear();
    for (int j = 0; j < grid_rows; ++j) {
        for (int i = 0; i < grid_columns; ++i) {
            const double px = i * grid_spacing, py = j * grid_spacing;
            double h = -1.0;
            if (inside(x, y, px, py)) {
                h = plantar_height(f, px, py, edge_distance(x, y, px, py));
                box = {std::min(box.x0, px), std::min(box.y0, py), std::max(box.x1, px), std::max(box.y1, py)};
            }
            heights.push_back(h);
            g.codes.push_back(h < 0.0 ? no_surface : static_cast<std::uint16_t>(std::lround(h / height_unit)));
        }
    }
    return g;
}

// The picture taken with a scan, pixel for grid point: the sole dark where it
// touches the glass and lighter the higher it lifts off, the background light.
vlm::scan_image picture(const std::vector<double>& heights)
{
    vlm::scan_image im;
    im.width = grid_columns;
    im.height = grid_rows;
    im.sx = grid_spacing;
    im.sy = grid_spacing;
    im.sz = 1.0f;
    for (double h : heights) {
        const double grey = h < 0.0 ? picture_background : std::min(215.0, picture_contact + 9.0 * h);
        im.pixels.push_back(static_cast<std::uint8_t>(grey));
    }
    return im;
}

// The insole model of one foot, laid out in the model's working grid: the
// base grid (the scan) has its surface's box at (margin, margin) in it, and
// the grid reaches the margin beyond the box on every side.
std::string insole(const foot& f, const std::string& blank_name, const surface_box& box)
{
    const double sx = model_margin - box.x0, sy = model_margin - box.y0;
    std::vector<double> bx, by, ix, iy;
    outline(f, blank_allowance, sx, sy, bx, by);
    outline(f, -insole_inset, sx, sy, ix, iy);
    vlm::contour_text t("0001 Velmora insole design");
    const int xnum = static_cast<int>((box.x1 - box.x0 + 2.0 * model_margin) / grid_spacing);
    const int ynum = static_cast<int>((box.y1 - box.y0 + 2.0 * model_margin) / grid_spacing);
    t.kerneldata(xnum, ynum, grid_spacing, grid_spacing, model_margin, model_margin);
    t.rohlingsdaten(blank_name, bx, by, {}, {}, {}, 3.0, 8.0);
    t.hcontour2("insole", ix, iy);
    return t.end().text(true);
}

constexpr int left_scan_type = 101, right_scan_type = 102;
constexpr int left_image_type = 201, right_image_type = 202;
constexpr int scan_record = 1, model_record = 3;
// Bytes per compressed chunk of a data entry.
constexpr std::size_t chunk_size = 16384;

// One visit: the two scans with their pictures, then the two models. The
// catalogue's fields are comma-separated, so no text here holds a comma.
// Records are numbered from first_indx on, data entries from first_entry on.
void visit(vlm::catalogue& c, vlm::archive& a, const std::string& date, const std::string& model_date,
           const foot& left, const foot& right, int first_indx, int first_entry)
{
    auto entry_name = [](int n) {
        char name[16];
        std::snprintf(name, sizeof name, "VLM%05d.dat", n);
        return std::string(name);
    };
    int indx = first_indx, entry = first_entry;
    int scan_indx[2] = {0, 0};
    surface_box box[2];
    for (const foot* f : {&left, &right}) {
        const bool is_left = f->s == side::left;
        std::vector<double> heights;
        scan_indx[is_left ? 0 : 1] = indx;
        const vlm::height_grid grid = scan(*f, heights, box[is_left ? 0 : 1]);
        a.add(entry_name(entry), vlm::chunk_chain(vlm::grid_entry(grid), chunk_size));
        c.level3(scan_record, indx++, 0, is_left ? left_scan_type : right_scan_type, date, "Scan",
                 is_left ? "left foot standing" : "right foot standing", entry++);
        a.add(entry_name(entry), vlm::chunk_chain(vlm::pcim_entry(picture(heights)), chunk_size));
        c.level3(scan_record, indx++, 0, is_left ? left_image_type : right_image_type, date, "Image",
                 is_left ? "left foot" : "right foot", entry++);
    }
    for (const foot* f : {&left, &right}) {
        const bool is_left = f->s == side::left;
        a.add(entry_name(entry), vlm::chunk_chain(insole(*f, is_left ? "blank_L" : "blank_R", box[is_left ? 0 : 1]),
                                                  chunk_size));
        c.level3(model_record, indx++, scan_indx[is_left ? 0 : 1], is_left ? left_scan_type : right_scan_type,
                 model_date, "Insole", "sport insole", entry++);
    }
}

// Every entry is stamped with the date of the last visit's models (16
// September 2024, 12:00, in the ZIP's DOS form) instead of the time of
// writing, so that every run writes the same bytes.
constexpr zip_uint16_t entry_dos_date = ((2024 - 1980) << 9) | (9 << 5) | 16;
constexpr zip_uint16_t entry_dos_time = 12 << 11;

bool stamp_entries(const std::string& path)
{
    int error = 0;
    zip_t* z = zip_open(path.c_str(), 0, &error);
    if (z == nullptr)
        return false;
    bool ok = true;
    const zip_int64_t n = zip_get_num_entries(z, 0);
    for (zip_int64_t k = 0; k < n; ++k)
        ok = zip_file_set_dostime(z, static_cast<zip_uint64_t>(k), entry_dos_time, entry_dos_date, 0) == 0 && ok;
    if (zip_close(z) != 0) {
        zip_discard(z);
        return false;
    }
    return ok;
}

}  // namespace


bool write_archive(const std::string& path)
{
    // The right foot is a little longer; by the check-up the arches have
    // settled by a millimetre.
    const foot left1{side::left, 252.0, 98.0, 14.0, 4.0, 12.0};
    const foot right1{side::right, 255.0, 99.0, 13.5, 5.0, 10.0};
    const foot left2{side::left, 253.0, 98.0, 13.0, 4.0, 11.0};
    const foot right2{side::right, 256.0, 99.0, 12.5, 5.0, 10.0};

    vlm::catalogue c;
    c.header("Velmora archive").header("version=3").separator();
    c.level1("Beispiel", "Erika");
    vlm::archive a;
    c.level2("2024-03-01", "Erstversorgung");
    visit(c, a, "2024-03-01", "2024-03-04", left1, right1, 1, 1);
    c.level2("2024-09-12", "Kontrolle");
    visit(c, a, "2024-09-12", "2024-09-16", left2, right2, 7, 7);
    a.add("00000.vlk", c.text());
    return a.write(path) && stamp_entries(path);
}

}  // namespace vlm::demo
