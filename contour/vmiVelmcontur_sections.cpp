// The height sections of the contour document (instruction 300, closed by
// 399). Each reads its keys in its own order and types, so that the values of
// one key are never taken for another, and then changes the working grid.
// "HContour2" sets the insole outline; the other sections read their keys
// completely, while their effect on the working grid (the pad, line, point and
// torsion modifiers, spreng, foot model, smoothing, placement and deduction)
// is not built yet: each says below where it goes.
#include "contour/vmiVelmcontur.h"

#include <cmath>
#include <new>

#include "archive/vmiObjSpline.h"
#include "contour/vmiPolylineGridMap.h"
#include "curves/m03DVector.h"
#include "grid/vmiBaseGrid.h"

namespace {

constexpr int close_height = 399;

}  // namespace

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
    if (flag2 == 0 || nanz2 < 2 || !work_grid_)
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
        new (std::nothrow) vmiPolylineGridMap(work_grid_.get(), contour.get()));
    if (!map)
        return;
    // A later "HContour2" replaces the outline and its map; the earlier ones
    // are released with them.
    contour_ = std::move(contour);
    contour_map_ = std::move(map);
    std::unique_ptr<vmiBaseGrid> cut(work_grid_->cut_boundary2(*contour_map_));
    if (cut)
        work_grid_ = std::move(cut);
}

bool vmiVelmcontur::contour_fits(m03DVector* poly)
{
    if (!poly || poly->size() < 2 || !work_grid_)
        return false;
    // Points beyond the grid are held at its border, as the map holds them.
    const double width = work_grid_->x_size() * work_grid_->d_x();
    const double length = work_grid_->y_size() * work_grid_->d_y();
    double cells = 0.0, px = 0.0, py = 0.0;
    for (int i = 0; i < poly->size(); ++i) {
        const m03DPoint& p = poly->point(i);
        if (!std::isfinite(p.x()) || !std::isfinite(p.y()) || !std::isfinite(p.z()))
            return false;
        double x = std::fmin(std::fmax(p.x(), 0.0), width);
        double y = std::fmin(std::fmax(p.y(), 0.0), length);
        if (i > 0)
            cells += std::fabs(x - px) / work_grid_->d_x() + std::fabs(y - py) / work_grid_->d_y();
        px = x;
        py = y;
    }
    return cells <= max_contour_cells;
}

void vmiVelmcontur::proc_HPelotteS()
{
    utString name;
    int flag = 1, xm = 0, ym = 0, nanz = 0;
    double xre = 0.0, yre = 0.0;
    FloatArray matt, speich, mata, xs, ys;
    read_section("HPelotteS", close_height,
                 {{"name=", &name},
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
    // Not built yet: the pad's height matrix, placed by "matt=" or by
    // create_transform of "speich=", is resampled into a grid of the working
    // grid's geometry and merged into it (dropped when "flag=" is 0); its
    // outline becomes the pad's limit curve, which is not kept.
}

void vmiVelmcontur::proc_HGloba()
{
    FloatArray mat;
    double min_z = 0.0;
    int use_min_z = 0;
    read_section(
        "HGloba", close_height,
        {{"mat=", &mat, {nullptr, nullptr, 16}}, {"minZ=", &min_z}, {"useMinZ=", &use_min_z}});
    // Not built yet: the working grid is placed by transform0 with "mat=",
    // lifted first so that its lowest valid point ends at "minZ=" when
    // "useMinZ=" is set.
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
    // Not built yet: a vmiHPelotte over the working grid takes the arrays
    // and raises the pad with build_HPelotte(typus, awert, glaett).
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
    // Not built yet: a vmiHPline over the working grid takes the arrays and
    // shapes the line with build_HPlinie(flag).
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
    // Not built yet: a vmiHPunkt over the working grid takes the point and
    // its two profiles and shapes it with build_HPunkt(flag).
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
    // Not built yet: the axis and the three lines are crossed with
    // lines_intersect, the contour with get_min_max_x_intersect, and a
    // vmiHTorsion over the working grid twists the chosen side with
    // build_HTorsion(smtype).
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
    // Not built yet: with a contour, the profile through the stations above
    // the outline's first row (get_y_min_max) becomes a spline whose B-spline
    // form goes to the working grid's proc_HSprenglinie.
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
    // Not built yet: the band polygon one unit beyond each edge goes to the
    // working grid's proc_HSpreng with the height negated and 0.5.
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
    // Not built yet: the cubic through pleft, pinner, pinner, pright
    // (create_bsp_curve of order 4), approximated with (-0.25, 1.25, 0.2),
    // goes to the working grid's build_HFFootMod(polyline, minz, height).
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
    // Not built yet: without band keys the whole grid is smoothed when
    // gfactor >= 2, inside the contour map (with no contour map, the
    // map-less do_smoothing(gfactor)); with band keys the band's own map is
    // smoothed, with gfactor 1 as well.
}

void vmiVelmcontur::proc_HAbzug()
{
    utString name;
    double abzug = 0.0;
    read_section("HAbzug", close_height, {{"name=", &name}, {"abzug=", &abzug}});
    // Not built yet: the working grid is lowered with do_HAbzug(abzug).
}
