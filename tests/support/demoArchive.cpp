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
// A finer archive divides the spacing and multiplies the columns and rows.
constexpr int grid_columns = 110;
constexpr int grid_rows = 280;
constexpr float grid_spacing = 1.0f;
constexpr float height_unit = 0.01f;

// The lattice of an archive written fineness times as fine as the demo.
struct lattice {
    int columns = grid_columns;
    int rows = grid_rows;
    float spacing = grid_spacing;
};

lattice lattice_of(int fineness)
{
    return {grid_columns * fineness, grid_rows * fineness, grid_spacing / static_cast<float>(fineness)};
}
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
vlm::height_grid scan(const foot& f, const lattice& l, std::vector<double>& heights, surface_box& box)
{
    std::vector<double> x, y;
    outline(f, 0.0, 0.0, 0.0, x, y);
    vlm::height_grid g;
    g.nx = l.columns;
    g.ny = l.rows;
    g.dx = l.spacing;
    g.dy = l.spacing;
    g.dz = height_unit;
    g.nodata = no_surface;
    heights.clear();
    for (int j = 0; j < l.rows; ++j) {
        for (int i = 0; i < l.columns; ++i) {
            const double px = i * l.spacing, py = j * l.spacing;
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
vlm::scan_image picture(const lattice& l, const std::vector<double>& heights)
{
    vlm::scan_image im;
    im.width = l.columns;
    im.height = l.rows;
    im.sx = l.spacing;
    im.sy = l.spacing;
    im.sz = 1.0f;
    for (double h : heights) {
        const double grey = h < 0.0 ? picture_background : std::min(215.0, picture_contact + 9.0 * h);
        im.pixels.push_back(static_cast<std::uint8_t>(grey));
    }
    return im;
}

// Positions and heights in the designs are given to a tenth of a millimetre
// and a hundredth of a millimetre, as a design program writes them.
double tenth(double v)
{
    return std::round(v * 10.0) / 10.0;
}
double hundredth(double v)
{
    return std::round(v * 100.0) / 100.0;
}

// The crossings of the row through y with a closed outline.
std::vector<double> row_crossings(const std::vector<double>& x, const std::vector<double>& y, double py)
{
    std::vector<double> c;
    for (std::size_t k = 0; k + 1 < x.size(); ++k)
        if ((y[k] > py) != (y[k + 1] > py))
            c.push_back(x[k] + (x[k + 1] - x[k]) * (py - y[k]) / (y[k + 1] - y[k]));
    std::sort(c.begin(), c.end());
    return c;
}

// The modifications of the first fitting: a heel spring band, a line along
// the inner arch, a metatarsal pad with a rounded profile behind the
// metatarsal heads, smoothing of the whole insole and a deduction for the
// cover's thickness.
void first_fitting(design_plan& p)
{
    const bool right = p.s == side::right;
    p.sections = {"HSpreng", "HPlinie", "HPelotte", "HGlaett", "HAbzug"};
    // The band's far limit follows the metatarsal heads, further forward on
    // the inner side; the heel side rises by 3 mm.
    const double inner_y = tenth(p.at(0.64, 0.0).y), outer_y = tenth(p.at(0.58, 0.0).y);
    p.spring.y1 = tenth(p.at(0.30, 0.0).y);
    p.spring.y2_left = right ? inner_y : outer_y;
    p.spring.y2_right = right ? outer_y : inner_y;
    p.spring.z2 = -3.0;
    // Three stations 10 mm inside the inner edge, highest under the arch's
    // peak, each falling to nothing 14 mm to either side.
    const double inward = right ? 10.0 : -10.0;
    for (double along : {0.30, 0.43, 0.56}) {
        const double y = p.at(along, 0.0).y;
        p.arch_line.stations.push_back({tenth(p.inner_edge(y) + inward), tenth(y)});
    }
    p.arch_line.heights = {2.0, 4.0, 2.0};
    p.arch_line.width = 14.0;
    // The pad: 4 mm, its egg-shaped outline wider towards the toes, a little
    // to the inner side of the long axis, drawn clockwise from its point of
    // greatest x.
    profiled_pad& pad = p.pad;
    const point2 c = p.at(0.63, -4.0);
    pad.centre = {tenth(c.x), tenth(c.y)};
    pad.height = 4.0;
    pad.half_width = 13.0;
    pad.half_length = 20.0;
    constexpr int pad_points = 16;
    const double pi = std::acos(-1.0);
    for (int k = 0; k <= pad_points; ++k) {
        const double a = -2.0 * pi * (k % pad_points) / pad_points;
        pad.x.push_back(tenth(pad.centre.x + pad.half_width * std::cos(a) * (0.85 + 0.15 * std::sin(a))));
        pad.y.push_back(tenth(pad.centre.y + pad.half_length * std::sin(a)));
    }
    // The profile's control points from the outline inwards: (0.75, 0.2 h),
    // (0.5, 0.7 h), (0.25, h): a dome with a broad top. The arrays hold one
    // value per outline point; only the first three count.
    pad.xb.assign(pad.x.size(), 0.0);
    pad.yb.assign(pad.x.size(), 0.0);
    const double xb[3] = {0.75, 0.5, 0.25}, yb[3] = {0.2, 0.7, 1.0};
    for (int k = 0; k < 3; ++k) {
        pad.xb[k] = xb[k];
        pad.yb[k] = yb[k];
    }
    p.smooth.factor = 3;
    p.deduction = 1.0;
}

// The modifications of the check-up: a flat toe bed beyond the toe crest, a
// spring profile along the foot, a stock metatarsal pad, a point support
// under the cuboid, a torsion that lifts the inner forefoot, the whole insole
// placed on a minimum thickness, and smoothing over the toes. The band is
// smoothed after the placement: smoothing a band gives the grid's nodes
// outside the insole in it a height of 0, which the placement would take for
// the insole's lowest point.
void check_up(design_plan& p)
{
    const bool right = p.s == side::right;
    p.sections = {"HFFootMod", "HSprenglinie", "HPelotteS", "HPunkt", "HTorsion", "HGloba", "HGlaett"};
    // The toe crest runs obliquely, further forward on the inner side; the
    // apex of the curve lies under the second toe's joint.
    const point2 inner_end = p.at(0.835, -42.0), outer_end = p.at(0.775, 42.0);
    const point2 apex = p.at(0.87, -8.0);
    const point2 left_end = right ? inner_end : outer_end, right_end = right ? outer_end : inner_end;
    p.toe_bed.left = {tenth(left_end.x), tenth(left_end.y)};
    p.toe_bed.right = {tenth(right_end.x), tenth(right_end.y)};
    p.toe_bed.inner = {tenth(apex.x), tenth(apex.y)};
    p.toe_bed.height = 2.5;
    p.toe_bed.min_z = 2.5;
    // The heel 2 mm up, down to nothing by the ball.
    p.spring_profile.hpos = {0, 50, 120, 180, 215};
    p.spring_profile.hsel = {2.0, 2.0, 0.6, 0.0, 0.0};
    // The stock pad: a 3 mm dome over 22 x 32 cells of 1 mm, turned 6 degrees
    // towards the inner side.
    const point2 c = p.at(0.62, -3.0);
    p.stock_pad = {{tenth(c.x), tenth(c.y)}, 3.0, 22, 32, 1.0, right ? 0.1 : -0.1};
    // The cuboid support: 3 mm high, 14 mm along the outer border, 9 mm
    // across it, 15 mm inside the outer edge.
    const double y = tenth(p.at(0.36, 0.0).y);
    p.cuboid_support.centre = {tenth(p.outer_edge(y) + (right ? -15.0 : 15.0)), y};
    p.cuboid_support.alpha = std::acos(0.0) + (right ? 0.1 : -0.1);
    p.cuboid_support.height = 3.0;
    p.cuboid_support.r1 = 14.0;
    p.cuboid_support.r2 = 9.0;
    // The inner forefoot lifted by 3 mm at its edge (about 4 degrees), from
    // the metatarsal heads to the toes.
    p.forefoot_torsion.axis_x = tenth(p.centre_x);
    p.forefoot_torsion.middle_y = tenth(p.at(0.68, 0.0).y);
    p.forefoot_torsion.lower_y = tenth(p.at(0.52, 0.0).y);
    p.forefoot_torsion.value = 3.0;
    p.forefoot_torsion.side = right ? 0 : 1;
    p.smooth.factor = 4;
    p.smooth.lower_y = tenth(p.at(0.76, 0.0).y);
    p.global_min_z = 3.0;
}

design_plan plan(const foot& f, const lattice& l, const surface_box& box, int visit, int model)
{
    design_plan p;
    p.s = f.s;
    p.visit = visit;
    p.finished_model = "FINISH_MODEL~" + std::to_string(model);
    p.grid_spacing = l.spacing;
    const double sx = model_margin - box.x0, sy = model_margin - box.y0;
    p.centre_x = f.x0 + sx + 0.5 * f.width;
    p.heel_y = f.y0 + sy;
    p.length = f.length;
    p.width = f.width;
    outline(f, -insole_inset, sx, sy, p.insole_x, p.insole_y);
    if (visit % 2 == 0)
        first_fitting(p);
    else
        check_up(p);
    return p;
}

std::vector<double> placement_matrix(double angle, const point2& to)
{
    // A placement matrix as the files hold it, four rows of four.
    const double c = std::cos(angle), s = std::sin(angle);
    return {c, -s, 0.0, to.x, s, c, 0.0, to.y, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 0.0, 1.0};
}

// The heights of the stock pad, row by row: a dome over the ellipse that
// fills the matrix, to the hundredth.
std::vector<double> pad_matrix(const matrix_pad& m)
{
    std::vector<double> h;
    for (int r = 0; r < m.rows; ++r)
        for (int c = 0; c < m.columns; ++c) {
            const double u = (c - 0.5 * (m.columns - 1)) / (0.5 * m.columns);
            const double v = (r - 0.5 * (m.rows - 1)) / (0.5 * m.rows);
            const double q = 1.0 - (u * u + v * v);
            h.push_back(q > 0.0 ? hundredth(m.height * q * q) : 0.0);
        }
    return h;
}

void add_section(vlm::contour_text& t, const design_plan& p, const std::string& section)
{
    t.open_height(section);
    if (section == "HPelotte") {
        const profiled_pad& pad = p.pad;
        t.key("name", "met_pad").key("typus", 0).key("nanz", static_cast<int>(pad.x.size()));
        t.key("glaett", -1).key("awert", pad.height).key("xm", pad.centre.x).key("ym", pad.centre.y);
        t.array("x", pad.x).array("y", pad.y).array("xb", pad.xb).array("yb", pad.yb);
    } else if (section == "HPelotteS") {
        // Its heights are over the surface, so the pad is dropped onto it
        // ("flag=0": added) rather than merged.
        const matrix_pad& m = p.stock_pad;
        t.key("name", "met_pad_stock").key("flag", 0).key("xm", m.columns).key("ym", m.rows);
        t.key("xre", m.cell).key("yre", m.cell);
        t.array("matt", placement_matrix(m.angle, m.centre)).array("mata", pad_matrix(m));
    } else if (section == "HPlinie") {
        const line_support& l = p.arch_line;
        std::vector<double> x, y, px, pz;
        for (std::size_t k = 0; k < l.stations.size(); ++k) {
            x.push_back(l.stations[k].x);
            y.push_back(l.stations[k].y);
            const double h = l.heights[k], w = l.width;
            for (double d : {0.0, 0.25 * w, 0.5 * w, 0.75 * w, w})
                px.push_back(d);
            for (double z : {h, h, 0.5 * h, 0.0, 0.0})
                pz.push_back(z);
        }
        t.key("name", "arch").key("ebene", 0.0).key("flag", 0).key("nanz", static_cast<int>(x.size()));
        t.key("offen", 1).array("x", x).array("y", y).array("xm", px).array("ym", pz);
    } else if (section == "HPunkt") {
        const point_support& s = p.cuboid_support;
        const double h = s.height;
        t.key("name", "cuboid").key("ebene", 0.0).key("flag", 0).key("alpha", s.alpha);
        t.key("x", s.centre.x).key("y", s.centre.y);
        t.array("xm1", {0.0, 0.25 * s.r1, 0.5 * s.r1, 0.75 * s.r1, s.r1}).array("ym1", {h, h, 0.5 * h, 0.1 * h, 0.0});
        t.array("xm2", {0.0, 0.25 * s.r2, 0.5 * s.r2, 0.75 * s.r2, s.r2}).array("ym2", {h, h, 0.5 * h, 0.1 * h, 0.0});
    } else if (section == "HTorsion") {
        const torsion& q = p.forefoot_torsion;
        t.key("name", "forefoot").key("value", q.value).key("yL", q.middle_y).key("yR", q.middle_y);
        t.key("xUp", q.axis_x).key("xLo", q.axis_x).key("yLLo", q.lower_y).key("yRLo", q.lower_y);
        t.key("yLUp", -1.0).key("yRUp", -1.0).key("side", q.side).key("mode", 0).key("area", 0);
        t.key("smtype", 1);
    } else if (section == "HSpreng") {
        const spring_band& b = p.spring;
        t.key("name", "heel_spring").key("y1", b.y1).key("y2L", b.y2_left).key("y2R", b.y2_right);
        t.key("z2", b.z2);
    } else if (section == "HSprenglinie") {
        const spring_line& l = p.spring_profile;
        t.key("name", "spring").key("selcount", static_cast<int>(l.hpos.size())).array("hsel", l.hsel);
        t.key("res", 1.0).int_array("hpos", l.hpos);
    } else if (section == "HFFootMod") {
        const toe_line& l = p.toe_bed;
        t.key("name", "toe_bed").array("pleft", {l.left.x, l.left.y}).array("pright", {l.right.x, l.right.y});
        t.array("pinner", {l.inner.x, l.inner.y}).key("height", l.height).key("minz", l.min_z);
    } else if (section == "HGlaett") {
        t.key("name", "smooth").key("gfactor", p.smooth.factor);
        if (p.smooth.lower_y >= 0.0)
            t.key("y2l", p.smooth.lower_y).key("y2r", p.smooth.lower_y);
    } else if (section == "HGloba") {
        // No turn and no shift: only the lowest point is placed.
        t.array("mat", {1.0, 0.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 0.0, 1.0});
        t.key("minZ", p.global_min_z).key("useMinZ", 1);
    } else if (section == "HAbzug") {
        t.key("name", "cover").key("abzug", p.deduction);
    }
    t.close_height();
}

// The insole model of one foot, laid out in the model's working grid: the
// base grid (the scan) has its surface's box at (margin, margin) in it, and
// the grid reaches the margin beyond the box on every side.
std::string insole(const foot& f, const lattice& l, const design_plan& p, const std::string& blank_name,
                   const surface_box& box, const std::vector<std::string>& without)
{
    const double sx = model_margin - box.x0, sy = model_margin - box.y0;
    std::vector<double> bx, by;
    outline(f, blank_allowance, sx, sy, bx, by);
    vlm::contour_text t("0001 Velmora insole design");
    const int xnum = static_cast<int>((box.x1 - box.x0 + 2.0 * model_margin) / l.spacing);
    const int ynum = static_cast<int>((box.y1 - box.y0 + 2.0 * model_margin) / l.spacing);
    t.kerneldata(xnum, ynum, l.spacing, l.spacing, model_margin, model_margin);
    t.rohlingsdaten(blank_name, bx, by, {}, {}, {}, 3.0, 8.0);
    t.hcontour2("insole", p.insole_x, p.insole_y);
    for (const std::string& section : p.sections)
        if (std::find(without.begin(), without.end(), section) == without.end())
            add_section(t, p, section);
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
           const foot& left, const foot& right, const lattice& l, int first_indx, int first_entry,
           int visit_number, const std::vector<std::string>& without)
{
    auto entry_name = [](int n) {
        char name[32];
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
        const vlm::height_grid grid = scan(*f, l, heights, box[is_left ? 0 : 1]);
        a.add(entry_name(entry), vlm::chunk_chain(vlm::grid_entry(grid), chunk_size));
        c.level3(scan_record, indx++, 0, is_left ? left_scan_type : right_scan_type, date, "Scan",
                 is_left ? "left foot standing" : "right foot standing", entry++);
        a.add(entry_name(entry), vlm::chunk_chain(vlm::pcim_entry(picture(l, heights)), chunk_size));
        c.level3(scan_record, indx++, 0, is_left ? left_image_type : right_image_type, date, "Image",
                 is_left ? "left foot" : "right foot", entry++);
    }
    int model = 2 * visit_number;
    for (const foot* f : {&left, &right}) {
        const bool is_left = f->s == side::left;
        const surface_box& b = box[is_left ? 0 : 1];
        const design_plan p = plan(*f, l, b, visit_number, model++);
        a.add(entry_name(entry),
              vlm::chunk_chain(insole(*f, l, p, is_left ? "blank_L" : "blank_R", b, without), chunk_size));
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

// The right foot is a little longer; by the check-up the arches have settled
// by a millimetre. First fitting left, right, check-up left, right.
const foot feet[4] = {{side::left, 252.0, 98.0, 14.0, 4.0, 12.0},
                      {side::right, 255.0, 99.0, 13.5, 5.0, 10.0},
                      {side::left, 253.0, 98.0, 13.0, 4.0, 11.0},
                      {side::right, 256.0, 99.0, 12.5, 5.0, 10.0}};

}  // namespace


bool design_plan::uses(const std::string& section) const
{
    return std::find(sections.begin(), sections.end(), section) != sections.end();
}

point2 design_plan::at(double along, double across) const
{
    return {centre_x + (s == side::right ? across : -across), heel_y + along * length};
}

// The inner side lies at low x on a right foot, at high x on a left one.
double design_plan::inner_edge(double y) const
{
    const std::vector<double> c = row_crossings(insole_x, insole_y, y);
    if (c.empty())
        return centre_x;
    return s == side::right ? c.front() : c.back();
}

double design_plan::outer_edge(double y) const
{
    const std::vector<double> c = row_crossings(insole_x, insole_y, y);
    if (c.empty())
        return centre_x;
    return s == side::right ? c.back() : c.front();
}

std::vector<design_plan> design_plans()
{
    std::vector<design_plan> plans;
    for (int k = 0; k < 4; ++k) {
        std::vector<double> heights;
        surface_box box;
        scan(feet[k], lattice{}, heights, box);
        plans.push_back(plan(feet[k], lattice{}, box, k / 2, k));
    }
    return plans;
}

const std::vector<std::string>& height_sections()
{
    static const std::vector<std::string> all = {"HPelotte", "HPelotteS", "HPlinie", "HPunkt",
                                                 "HTorsion", "HSpreng",   "HSprenglinie", "HFFootMod",
                                                 "HGlaett",  "HGloba",    "HAbzug"};
    return all;
}

bool write_archive(const std::string& path, const std::vector<std::string>& without)
{
    return write_archive(path, archive_scale{}, without);
}

bool write_archive(const std::string& path, const archive_scale& scale, const std::vector<std::string>& without)
{
    if (scale.visits < 1 || scale.fineness < 1)
        return false;
    const lattice l = lattice_of(scale.fineness);
    vlm::catalogue c;
    c.header("Velmora archive").header("version=3").separator();
    c.level1("Beispiel", "Erika");
    vlm::archive a;
    // Each visit has six records and six entries. Visits beyond the demo's
    // two repeat its first fitting and check-up a year later each time.
    for (int k = 0; k < scale.visits; ++k) {
        const std::string year = std::to_string(2024 + k / 2);
        const bool first = k % 2 == 0;
        const std::string date = year + (first ? "-03-01" : "-09-12");
        const std::string model_date = year + (first ? "-03-04" : "-09-16");
        c.level2(date, k == 0 ? "Erstversorgung" : "Kontrolle");
        const foot& left = feet[first ? 0 : 2];
        const foot& right = feet[first ? 1 : 3];
        visit(c, a, date, model_date, left, right, l, 1 + 6 * k, 1 + 6 * k, k, without);
    }
    a.add("00000.vlk", c.text());
    return a.write(path) && stamp_entries(path);
}

}  // namespace vlm::demo
