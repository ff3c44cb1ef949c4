// The height sections of the contour document (instruction 300, closed by
// 399). Each reads its keys in its own order and types, so that the values of
// one key are never taken for another, and then changes the working grid:
// "HContour2" sets the insole outline, the others raise pads, lines, points
// and torsions, add spring, set the foot-model bead, smooth, place and lower.
// A section without a working grid reads its keys and changes nothing.
#include "contour/vmiVelmcontur.h"

#include <algorithm>
#include <cmath>
#include <new>

#include "archive/vmiObjSpline.h"
#include "contour/vmiPolylineGridMap.h"
#include "curves/m03DVector.h"
#include "curves/m03SplineCurve.h"
#include "curves/m0BspCurve.h"
#include "grid/vmiBaseGrid.h"
#include "grid/vmiHPelotte.h"
#include "grid/vmiHPline.h"
#include "grid/vmiHPunkt.h"
#include "grid/vmiHTorsion.h"

namespace {

constexpr int close_height = 399;
// Bands and areas reach one unit beyond the grid's edges, so that the edge
// nodes lie inside them.
constexpr double edge_margin = 1.0;
// "yLUp=" of a torsion given as this runs the upper line along the grid's end;
// the band limits of a smoothing given as this take the grid's ends.
constexpr double to_the_end = -1.0;
// A placement matrix as the files hold it: 16 values, of which the first 12
// are the 3 x 4 matrix.
constexpr int placement_values = 16;
constexpr int placement_used = 12;
// "HGloba" with "useMinZ=" puts the lowest valid point at "minZ=", or at this
// height when "minZ=" is not above 0.
constexpr double least_min_z = 0.01;
constexpr double no_lowest_z = 1e10;
// The profile of "HPunkt" has five control points.
constexpr int point_profile_values = 5;
// The spring band passes the height negated, and lifts the far side by this.
constexpr double spring_far_side = 0.5;
// The foot-model bead is sampled over this parameter range, wider than the
// curve's own 0 ... 1, with this approximation argument.
constexpr double bead_start = -0.25;
constexpr double bead_end = 1.25;
constexpr double bead_tolerance = 0.2;

bool usable(vmiBaseGrid* grid)
{
    return grid && grid->x_size() >= 1 && grid->y_size() >= 1 && grid->points_array();
}

// A closed band of five points across the grid's whole width, one unit beyond
// each edge, from the limits (y1l, y1r) to (y2r, y2l).
m03DVector* band(const double& width, const double& y1l, const double& y1r, const double& y2r,
                 const double& y2l)
{
    m03DVector* v = new (std::nothrow) m03DVector(5);
    if (!v || v->size() != 5) {
        delete v;
        return nullptr;
    }
    const double left = -edge_margin, right = width + edge_margin;
    v->set_point(0, m03DPoint(left, y1l, 0.0));
    v->set_point(1, m03DPoint(right, y1r, 0.0));
    v->set_point(2, m03DPoint(right, y2r, 0.0));
    v->set_point(3, m03DPoint(left, y2l, 0.0));
    v->set_point(4, m03DPoint(left, y1l, 0.0));
    return v;
}

}  // namespace

double vmiVelmcontur::extent_x()
{
    return grid()->x_size() * grid()->d_x();
}

double vmiVelmcontur::extent_y()
{
    return grid()->y_size() * grid()->d_y();
}

double* vmiVelmcontur::copy_values(const FloatArray& array, const int& n, const int& least)
{
    if (!array.present())
        return nullptr;
    const int size = std::max({n, least, 1});
    double* values = new (std::nothrow) double[size];
    if (!values)
        return nullptr;
    for (int i = 0; i < size; ++i)
        values[i] = array.at(i);
    return values;
}

void vmiVelmcontur::proc_HContour2()
{
    utString name;
    int nanz1 = 0, nanz2 = 0, flag1 = 0, flag2 = 0;
    FloatArray x1, y1, x2, y2;
    read_section("HContour2", close_height,
                 {{"name=", &name},
                  {"nanz1=", &nanz1},
                  {"nanz2=", &nanz2},
                  {"x1=", &x1, {&nanz1}},
                  {"y1=", &y1, {&nanz1}},
                  {"x2=", &x2, {&nanz2}},
                  {"y2=", &y2, {&nanz2}},
                  {"flag1=", &flag1},
                  {"flag2=", &flag2}});
    // Without the flag, or without at least two outline points, the section
    // changes nothing.
    if (flag2 == 0 || nanz2 < 2 || !grid())
        return;
    m03DVector* points = outline(x2, y2, nullptr, nanz2);
    if (!points)
        return;
    // The limit curve is made only for its approximation, which becomes the
    // insole outline; the curve itself is not kept among the objects.
    vmiObjSpline limit(name + utString("_LIMIT_CURVE") + suffix(), points);
    m03DVector* approximation = limit.approximation();
    if (!approximation || !contour_fits(approximation))
        return;
    std::unique_ptr<m03DVector> contour(new (std::nothrow) m03DVector(approximation));
    if (!contour || contour->size() != approximation->size())
        return;
    std::unique_ptr<vmiPolylineGridMap> map(
        new (std::nothrow) vmiPolylineGridMap(grid(), contour.get()));
    if (!map)
        return;
    // A later "HContour2" replaces the outline and its map; the earlier ones
    // are released with them.
    contour_ = std::move(contour);
    contour_map_ = std::move(map);
    std::unique_ptr<vmiBaseGrid> cut(grid()->cut_boundary2(*contour_map_));
    if (cut)
        work_grid_ = std::move(cut);
}

bool vmiVelmcontur::contour_fits(m03DVector* poly)
{
    if (!poly || poly->size() < 2 || !grid())
        return false;
    // Points beyond the grid are held at its border, as the map holds them.
    const double width = grid()->x_size() * grid()->d_x();
    const double length = grid()->y_size() * grid()->d_y();
    double cells = 0.0, px = 0.0, py = 0.0;
    for (int i = 0; i < poly->size(); ++i) {
        const m03DPoint& p = poly->point(i);
        if (!std::isfinite(p.x()) || !std::isfinite(p.y()) || !std::isfinite(p.z()))
            return false;
        double x = std::fmin(std::fmax(p.x(), 0.0), width);
        double y = std::fmin(std::fmax(p.y(), 0.0), length);
        if (i > 0)
            cells += std::fabs(x - px) / grid()->d_x() + std::fabs(y - py) / grid()->d_y();
        px = x;
        py = y;
    }
    return cells <= max_contour_cells;
}

void vmiVelmcontur::proc_HPelotteS()
{
    utString name;
    bool named = false;
    int flag = 1, xm = 0, ym = 0, nanz = 0;
    double xre = 0.0, yre = 0.0;
    FloatArray matt, speich, mata, xs, ys;
    read_section("HPelotteS", close_height,
                 {{"name=", SeenText {&name, &named}},
                  {"flag=", &flag},
                  {"xm=", &xm},
                  {"ym=", &ym},
                  {"xre=", &xre},
                  {"yre=", &yre},
                  {"matt=", &matt, {nullptr, nullptr, 16}},
                  {"speich=", &speich, {nullptr, nullptr, 12}},
                  {"mata=", &mata, {&ym, &xm}},
                  {"nanz=", &nanz},
                  {"xs=", &xs, {&nanz}},
                  {"ys=", &ys, {&nanz}}});
    // The pad's outline ("xs=", "ys=") would only make a limit curve that
    // is released unused: it changes nothing and is not built.
    // The matrix counts whole cells each way, so the pad sits centred half a
    // cell off its own nodes.
    const double hx = xm * xre * 0.5;
    const double hy = ym * yre * 0.5;
    std::unique_ptr<double[]> m;
    if (matt.present() && speich.present()) {
        std::unique_ptr<double[]> params(copy_values(speich, placement_values));
        if (params) {
            params[3] += hx;
            params[4] += hy;
            m.reset(create_transform(params.get()));
        }
    } else if (matt.present()) {
        m.reset(copy_values(matt, placement_values));
    }
    // Only a named pad with heights is applied; an empty name counts.
    if (!named || !mata.present() || !usable(grid()))
        return;
    std::unique_ptr<vmiBaseGrid> pad = place_pad(mata, xm, ym, xre, yre, m.get());
    if (!pad)
        return;
    if (flag != 0)
        grid()->merge(*pad);
    else
        grid()->drop(*pad);
}

std::unique_ptr<vmiBaseGrid> vmiVelmcontur::place_pad(const FloatArray& mata, const int& xm,
                                                      const int& ym, const double& xre,
                                                      const double& yre, double* m)
{
    if (xm < 1 || ym < 1 || static_cast<long long>(xm) * ym > max_pad_matrix_nodes)
        return nullptr;
    const double hx = xm * xre * 0.5;
    const double hy = ym * yre * 0.5;
    m03DPoint* points = new (std::nothrow) m03DPoint[static_cast<size_t>(xm) * ym];
    if (!points)
        return nullptr;
    for (int r = 0; r < ym; ++r)
        for (int c = 0; c < xm; ++c)
            points[static_cast<size_t>(xm) * r + c]
                = m03DPoint(c * xre - hx, r * yre - hy, mata.at(xm * r + c));
    std::unique_ptr<vmiBaseGrid> matrix(
        new (std::nothrow) vmiBaseGrid(points, xm, ym, xre, yre));
    if (!matrix) {
        delete[] points;
        return nullptr;
    }
    // The matrix is refined once before it is placed; the refined nodes copy
    // their source nodes.
    std::unique_ptr<vmiBaseGrid> fine(matrix->doubled());
    matrix.reset();
    if (!fine || !fine->points_array())
        return nullptr;
    const int fine_nodes = fine->x_size() * fine->y_size();
    transform0(fine->points_array(), fine_nodes, m);
    std::unique_ptr<vmiBaseGrid> placed = make_grid(xnum_, ynum_, xres_, yres_);
    if (placed)
        placed->merge1(fine->points_array(), fine_nodes);
    return placed;
}

void vmiVelmcontur::proc_HGloba()
{
    FloatArray mat;
    double min_z = 0.0;
    int use_min_z = 0;
    read_section(
        "HGloba", close_height,
        {{"mat=", &mat, {nullptr, nullptr, 16}}, {"minZ=", &min_z}, {"useMinZ=", &use_min_z}});
    if (!mat.present() || !usable(grid()))
        return;
    std::unique_ptr<double[]> m(copy_values(mat, placement_values));
    if (!m)
        return;
    m03DPoint* points = grid()->points_array();
    const int nodes = grid()->x_size() * grid()->y_size();
    if (use_min_z != 0) {
        double lowest = no_lowest_z;
        for (int k = 0; k < nodes; ++k)
            if (points[k].z() > vmiBaseGrid::valid_z && points[k].z() < lowest)
                lowest = points[k].z();
        if (min_z <= 0.0)
            min_z = least_min_z;
        // The lowest valid point ends at minZ.
        m[placement_used - 1] = min_z - lowest;
    }
    transform0(points, nodes, m.get());
}

void vmiVelmcontur::proc_HPelotte()
{
    utString name;
    int typus = 0, nanz = 0, glaett = -1;
    double awert = 0.0, xm = 0.0, ym = 0.0;
    FloatArray x, y, xb, yb;
    read_section("HPelotte", close_height,
                 {{"name=", &name},
                  {"typus=", &typus},
                  {"nanz=", &nanz},
                  {"glaett=", &glaett},
                  {"awert=", &awert},
                  {"xm=", &xm},
                  {"ym=", &ym},
                  {"x=", &x, {&nanz}},
                  {"y=", &y, {&nanz}},
                  {"xb=", &xb, {&nanz}},
                  {"yb=", &yb, {&nanz}}});
    // A pad needs an outline of at least two points; the profile arrays
    // are optional (without them the pad is flat).
    if (!x.present() || !y.present() || nanz < 2 || nanz > max_outline_points
        || !usable(grid()))
        return;
    // The profile reads three values of each profile array whatever the count.
    constexpr int profile_values = 3;
    std::unique_ptr<double[]> xs(copy_values(x, nanz)), ys(copy_values(y, nanz));
    std::unique_ptr<double[]> xbs(copy_values(xb, nanz, profile_values));
    std::unique_ptr<double[]> ybs(copy_values(yb, nanz, profile_values));
    if (!xs || !ys || (xb.present() && !xbs) || (yb.present() && !ybs))
        return;
    std::unique_ptr<vmiHPelotte> pad(new (std::nothrow) vmiHPelotte(
        grid(), nanz, xs.release(), ys.release(), xbs.release(), ybs.release(), xm, ym));
    if (pad)
        pad->build_HPelotte(typus, awert, glaett);
}

void vmiVelmcontur::proc_HPlinie()
{
    utString name;
    double ebene = 0.0;
    int flag = 0, nanz = 0, offen = 0;
    FloatArray x, y, xm, ym;
    read_section("HPlinie", close_height,
                 {{"name=", &name},
                  {"ebene=", &ebene},
                  {"flag=", &flag},
                  {"nanz=", &nanz},
                  {"offen=", &offen},
                  {"x=", &x, {&nanz}},
                  {"y=", &y, {&nanz}},
                  {"xm=", &xm, {&nanz, nullptr, 5}},
                  {"ym=", &ym, {&nanz, nullptr, 5}}});
    if (!x.present() || !y.present() || !xm.present() || !ym.present() || nanz < 2
        || nanz > max_line_stations || !usable(grid()))
        return;
    constexpr int station_values = 5;
    std::unique_ptr<double[]> xs(copy_values(x, nanz)), ys(copy_values(y, nanz));
    std::unique_ptr<double[]> px(copy_values(xm, station_values * nanz));
    std::unique_ptr<double[]> pz(copy_values(ym, station_values * nanz));
    if (!xs || !ys || !px || !pz)
        return;
    // The line copies what it needs; the arrays stay here.
    std::unique_ptr<vmiHPline> line(new (std::nothrow) vmiHPline(
        grid(), nanz, xs.get(), ys.get(), px.get(), pz.get()));
    if (line)
        line->build_HPlinie(flag);
}

void vmiVelmcontur::proc_HPunkt()
{
    utString name;
    double ebene = 0.0, alpha = 0.0, x = 0.0, y = 0.0;
    int flag = 0;
    FloatArray xm1, ym1, xm2, ym2;
    read_section("HPunkt", close_height,
                 {{"name=", &name},
                  {"ebene=", &ebene},
                  {"flag=", &flag},
                  {"alpha=", &alpha},
                  {"x=", &x},
                  {"y=", &y},
                  {"xm1=", &xm1, {nullptr, nullptr, 5}},
                  {"ym1=", &ym1, {nullptr, nullptr, 5}},
                  {"xm2=", &xm2, {nullptr, nullptr, 5}},
                  {"ym2=", &ym2, {nullptr, nullptr, 5}}});
    if (!xm1.present() || !ym1.present() || !xm2.present() || !ym2.present()
        || !usable(grid()))
        return;
    std::unique_ptr<double[]> a(copy_values(xm1, point_profile_values));
    std::unique_ptr<double[]> b(copy_values(ym1, point_profile_values));
    std::unique_ptr<double[]> c(copy_values(xm2, point_profile_values));
    std::unique_ptr<double[]> d(copy_values(ym2, point_profile_values));
    if (!a || !b || !c || !d)
        return;
    // The point owns its four profile arrays from here on.
    std::unique_ptr<vmiHPunkt> point(new (std::nothrow) vmiHPunkt(
        grid(), alpha, x, y, a.release(), b.release(), c.release(), d.release()));
    if (point)
        point->build_HPunkt(flag);
}

void vmiVelmcontur::proc_HTorsion()
{
    utString name;
    double value = 0.0, y_l = 0.0, y_r = 0.0, x_up = 0.0, x_lo = 0.0;
    double y_l_lo = 0.0, y_r_lo = 0.0, y_l_up = 0.0, y_r_up = 0.0;
    int side = 0, mode = 0, area = 0, smtype = 0;
    read_section("HTorsion", close_height,
                 {{"name=", &name},
                  {"value=", &value},
                  {"yL=", &y_l},
                  {"yR=", &y_r},
                  {"xUp=", &x_up},
                  {"xLo=", &x_lo},
                  {"yLLo=", &y_l_lo},
                  {"yRLo=", &y_r_lo},
                  {"yLUp=", &y_l_up},
                  {"yRUp=", &y_r_up},
                  {"side=", &side},
                  {"mode=", &mode},
                  {"area=", &area},
                  {"smtype=", &smtype}});
    if (!usable(grid()))
        return;
    // The grid's edges lie one unit beyond its first and last nodes.
    const double left = -edge_margin, lower = -edge_margin;
    const double right = extent_x() + edge_margin;
    const double upper = extent_y() + edge_margin;
    if (y_l_up == to_the_end)
        y_l_up = y_r_up = upper;
    const m03DPoint x_lo_point(x_lo, lower, 0.0), x_up_point(x_up, upper, 0.0);
    const m03DPoint up_left(left, y_l_up, 0.0), up_right(right, y_r_up, 0.0);
    const m03DPoint lo_left(left, y_l_lo, 0.0), lo_right(right, y_r_lo, 0.0);
    const m03DPoint mid_left(left, y_l, 0.0), mid_right(right, y_r, 0.0);
    m03DPoint a_up, a_lo, a_mid;
    lines_intersect(up_left, up_right, x_lo_point, x_up_point, a_up);
    lines_intersect(lo_left, lo_right, x_lo_point, x_up_point, a_lo);
    lines_intersect(mid_left, mid_right, x_lo_point, x_up_point, a_mid);
    // Without a contour the start values of the search stand.
    m03DPoint leftmost, rightmost;
    get_min_max_x_intersect(mid_left, mid_right, contour_.get(), leftmost, rightmost);
    const m03DPoint p_contour = side == 0 ? leftmost : rightmost;
    std::unique_ptr<m03DVector> polygon(new (std::nothrow) m03DVector(5));
    if (!polygon || polygon->size() != 5)
        return;
    const m03DPoint corners_left[5] = {lo_left, up_left, a_up, a_lo, lo_left};
    const m03DPoint corners_right[5] = {a_lo, a_up, up_right, lo_right, a_lo};
    for (int k = 0; k < 5; ++k)
        polygon->set_point(k, side == 0 ? corners_left[k] : corners_right[k]);
    std::unique_ptr<vmiHTorsion> torsion(
        new (std::nothrow) vmiHTorsion(grid(), polygon.get(), up_left, up_right, lo_left,
                                       lo_right, x_lo_point, x_up_point, a_mid, p_contour, value));
    if (torsion)
        torsion->build_HTorsion(smtype);
}

void vmiVelmcontur::proc_HSprenglinie()
{
    utString name;
    int selcount = 0;
    double res = 0.0;
    FloatArray hsel;
    IntArray hpos;
    read_section("HSprenglinie", close_height,
                 {{"name=", &name},
                  {"selcount=", &selcount},
                  {"hsel=", &hsel, {&selcount}},
                  {"res=", &res},
                  {"hpos=", &hpos, {&selcount}}});
    if (!contour_ || !usable(grid()) || !hpos.present() || !hsel.present()
        || selcount < 0 || selcount > max_outline_points)
        return;
    int ymin = 0, ymax = 0;
    get_y_min_max(grid(), contour_.get(), ymin, ymax);
    // The profile runs along the foot (x) with the lift as its y, from 0 at
    // the grid's start to 0 at its end.
    const double d_y = grid()->d_y();
    m03DVector* profile = new (std::nothrow) m03DVector(selcount + 2);
    if (!profile || profile->size() != selcount + 2) {
        delete profile;
        return;
    }
    profile->set_point(0, m03DPoint(0.0, 0.0, 0.0));
    for (int i = 0; i < selcount; ++i) {
        // Row offsets are added wide: a file's offset cannot overflow them.
        const double row = static_cast<double>(ymin) + hpos.at(i);
        profile->set_point(i + 1, m03DPoint(row * d_y, hsel.at(i), 0.0));
    }
    profile->set_point(selcount + 1, m03DPoint(extent_y(), 0.0, 0.0));
    m03SplineCurve spline(profile);
    std::unique_ptr<m0BspCurve> curve(spline.bsp_curve());
    if (curve)
        grid()->proc_HSprenglinie(curve.get());
}

void vmiVelmcontur::proc_HSpreng()
{
    utString name;
    double z2 = 0.0;
    double y1_l = 0.0, y1_r = 0.0, y2_l = 0.0, y2_r = 0.0;
    // "y1=" and "y2=" set both limits of their side when they are read, so a
    // later "y1R=" slants the band.
    read_section("HSpreng", close_height,
                 {{"name=", &name},
                  {"y1=", SameValue {&y1_l, &y1_r}},
                  {"y2=", SameValue {&y2_l, &y2_r}},
                  {"z2=", &z2},
                  {"y1L=", &y1_l},
                  {"y1R=", &y1_r},
                  {"y2L=", &y2_l},
                  {"y2R=", &y2_r}});
    if (!usable(grid()))
        return;
    std::unique_ptr<m03DVector> line(band(extent_x(), y1_l, y1_r, y2_r, y2_l));
    if (line)
        grid()->proc_HSpreng(line.get(), -z2, spring_far_side);
}

void vmiVelmcontur::proc_HFFootMod()
{
    utString name;
    FloatArray p_left, p_right, p_inner;
    double height = 0.0, min_z = 0.0;
    read_section("HFFootMod", close_height,
                 {{"name=", &name},
                  {"pleft=", &p_left, {nullptr, nullptr, 2}},
                  {"pright=", &p_right, {nullptr, nullptr, 2}},
                  {"pinner=", &p_inner, {nullptr, nullptr, 2}},
                  {"height=", &height},
                  {"minz=", &min_z}});
    if (!usable(grid()))
        return;
    // One cubic segment through the two ends, its apex doubled.
    m03DVector* points = new (std::nothrow) m03DVector(4);
    if (!points || points->size() != 4) {
        delete points;
        return;
    }
    points->set_point(0, m03DPoint(p_left.at(0), p_left.at(1), 0.0));
    points->set_point(1, m03DPoint(p_inner.at(0), p_inner.at(1), 0.0));
    points->set_point(2, m03DPoint(p_inner.at(0), p_inner.at(1), 0.0));
    points->set_point(3, m03DPoint(p_right.at(0), p_right.at(1), 0.0));
    constexpr int cubic = 4;
    std::unique_ptr<m0BspCurve> curve(create_bsp_curve(points, cubic));
    if (!curve)
        return;
    std::unique_ptr<m03DVector> bead(curve->approximate(bead_start, bead_end, bead_tolerance));
    curve.reset();
    if (bead)
        grid()->build_HFFootMod(bead.get(), min_z, height);
}

void vmiVelmcontur::proc_HGlaett()
{
    utString name;
    int gfactor = 1;
    double y1l = -1.0, y1r = -1.0, y2l = -1.0, y2r = -1.0;
    read_section("HGlaett", close_height,
                 {{"name=", &name},
                  {"gfactor=", &gfactor},
                  {"y1l=", &y1l},
                  {"y1r=", &y1r},
                  {"y2l=", &y2l},
                  {"y2r=", &y2r}});
    smoothing_factor_ = gfactor;
    if (!usable(grid()))
        return;
    const bool upper_open = y1l == to_the_end && y1r == to_the_end;
    const bool lower_open = y2l == to_the_end && y2r == to_the_end;
    if (upper_open && lower_open) {
        // The whole grid, inside the insole outline once there is one.
        if (gfactor < 2)
            return;
        if (contour_map_)
            grid()->do_smoothing(gfactor, *contour_map_);
        else
            grid()->do_smoothing(gfactor);
        return;
    }
    // A band; a limit pair left open runs to the grid's end. A single -1.0
    // of a pair stands as it is.
    if (upper_open)
        y1l = y1r = extent_y();
    if (lower_open)
        y2l = y2r = 0.0;
    std::unique_ptr<m03DVector> limits(band(extent_x(), y1l, y1r, y2r, y2l));
    if (!limits)
        return;
    vmiPolylineGridMap map(grid(), limits.get());
    grid()->do_smoothing(gfactor, map);
}

void vmiVelmcontur::proc_HAbzug()
{
    utString name;
    double abzug = 0.0;
    read_section("HAbzug", close_height, {{"name=", &name}, {"abzug=", &abzug}});
    if (usable(grid()))
        grid()->do_HAbzug(abzug);
}
