// The height sections of the contour document: the insole outline
// ("HContour2") with the finished model it leads to, and the keys of every
// other height section read in their order and types.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "archive/vmiObjGrid.h"
#include "archive/vmiObjSpline.h"
#include "archive/vmiObject.h"
#include "contour/vmiPolylineGridMap.h"
#include "contour/vmiVelmcontur.h"
#include "curves/m03DVector.h"
#include "grid/vmiBaseGrid.h"
#include "tests/support/contourText.h"
#include "tests/support/testGrid.h"

namespace {

using vlm::contour_text;

std::unique_ptr<vmiVelmcontur> parse(const std::string& text, int id = 4,
                                     vmiBaseGrid* base = nullptr)
{
    std::vector<char> bytes(text.begin(), text.end());
    return std::make_unique<vmiVelmcontur>(bytes.data(), static_cast<int>(bytes.size()), id, base);
}

std::vector<std::string> names(vmiVelmcontur& doc)
{
    std::vector<std::string> out;
    for (int i = 0; i < doc.no_of_objects(); ++i)
        out.push_back(doc.object(i)->name().str());
    return out;
}

// A closed rectangle outline in world units, a point every 2 units along
// its sides, so that the spline through it keeps close to the sides (it
// rounds the corners within about a unit).
void rectangle(double x0, double y0, double x1, double y1, std::vector<double>& x,
               std::vector<double>& y)
{
    x.clear();
    y.clear();
    auto side = [&](double ax, double ay, double bx, double by) {
        int n = static_cast<int>((std::fabs(bx - ax) + std::fabs(by - ay)) / 2.0);
        for (int i = 0; i < n; ++i) {
            x.push_back(ax + (bx - ax) * i / n);
            y.push_back(ay + (by - ay) * i / n);
        }
    };
    side(x0, y0, x1, y0);
    side(x1, y0, x1, y1);
    side(x1, y1, x0, y1);
    side(x0, y1, x0, y0);
    x.push_back(x0);
    y.push_back(y0);
}

vmiObjGrid* finish_model(vmiVelmcontur& doc)
{
    for (int i = 0; i < doc.no_of_objects(); ++i)
        if (doc.object(i)->grid())
            return doc.object(i)->grid();
    return nullptr;
}

}  // namespace

TEST(vmiVelmcontur, HContour2_Flag2ZeroLeavesNoContourAndNoFinishModel)
{
    std::vector<double> x, y;
    rectangle(40, 40, 100, 200, x, y);
    auto doc = parse(contour_text().hcontour2("c", x, y, 0).end().text());
    EXPECT_EQ(doc->contour(), nullptr);
    EXPECT_EQ(doc->contour_map(), nullptr);
    EXPECT_EQ(doc->no_of_objects(), 0);
    EXPECT_NE(doc->working_grid(), nullptr);
}

TEST(vmiVelmcontur, HContour2_Flag2ZeroThenALaterHContour2MakesTheFinishModel)
{
    std::vector<double> x, y;
    rectangle(40, 40, 100, 200, x, y);
    auto doc
        = parse(contour_text().hcontour2("c", x, y, 0).hcontour2("c", x, y, 1).end().text(), 7);
    EXPECT_EQ(names(*doc), (std::vector<std::string> {"FINISH_MODEL~7"}));
}

TEST(vmiVelmcontur, HContour2_Flag2WithoutOutlinePointsChangesNothing)
{
    std::vector<double> x, y;
    rectangle(40, 40, 100, 200, x, y);
    // Missing arrays, only one of them, and a single point.
    auto missing = parse(contour_text()
                             .open_height("HContour2")
                             .key("nanz2", 5)
                             .key("flag2", 1)
                             .close_height()
                             .end()
                             .text());
    auto only_x = parse(contour_text()
                            .open_height("HContour2")
                            .key("nanz2", 5)
                            .array("x2", x)
                            .key("flag2", 1)
                            .close_height()
                            .end()
                            .text());
    auto one = parse(contour_text().hcontour2("c", {50.0}, {50.0}, 1).end().text());
    for (auto* doc : {missing.get(), only_x.get(), one.get()}) {
        EXPECT_EQ(doc->contour(), nullptr);
        EXPECT_EQ(doc->contour_map(), nullptr);
        EXPECT_EQ(doc->no_of_objects(), 0);
        ASSERT_NE(doc->working_grid(), nullptr);
        EXPECT_EQ(doc->working_grid()->x_size(), 440);
    }
}

TEST(vmiVelmcontur, HContour2_ContourIsACopyOfTheSplineApproximation)
{
    std::vector<double> x, y;
    vlm::foot_outline(40, 40, 40, 90, 250, x, y);
    // Whole numbers read back exactly, so the reference spline below goes
    // through the very points the document read.
    for (double& v : x)
        v = std::round(v);
    for (double& v : y)
        v = std::round(v);
    auto doc = parse(contour_text().hcontour2("insole", x, y).end().text());
    ASSERT_NE(doc->contour(), nullptr);

    m03DVector* pts = new m03DVector(static_cast<int>(x.size()));
    for (std::size_t i = 0; i < x.size(); ++i)
        pts->set_point(static_cast<int>(i), m03DPoint(x[i], y[i], 0.0));
    vmiObjSpline reference(utString("r"), pts);
    m03DVector* a = reference.approximation();
    ASSERT_NE(a, nullptr);
    ASSERT_EQ(doc->contour()->size(), a->size());
    EXPECT_GT(a->size(), static_cast<int>(x.size()));
    for (int i = 0; i < a->size(); ++i)
        EXPECT_TRUE(doc->contour()->point(i) == a->point(i)) << i;
    // The limit curve itself is not among the objects.
    EXPECT_EQ(names(*doc), (std::vector<std::string> {"FINISH_MODEL~4"}));
}

TEST(vmiVelmcontur, HContour2_FirstCurveAndFlag1AreReadAndDiscarded)
{
    std::vector<double> x, y;
    rectangle(40, 40, 100, 200, x, y);
    auto doc = parse(contour_text()
                         .open_height("HContour2")
                         .key("name", "c")
                         .key("nanz1", 3)
                         .key("nanz2", 5)
                         .array("x1", {1.0, 2.0, 3.0})
                         .array("y1", {1.0, 2.0, 3.0})
                         .array("x2", x)
                         .array("y2", y)
                         .key("flag1", 1)
                         .key("flag2", 1)
                         .close_height()
                         .end()
                         .text());
    ASSERT_NE(doc->contour(), nullptr);
    EXPECT_EQ(doc->contour()->point(0).x(), 40.0);
}

TEST(vmiVelmcontur, HContour2_TrimsTheWorkingGridToTheOutline)
{
    // Base grid 101 x 201 at spacing 1 (heights 5), working grid 160 x 260
    // with the base at (30, 30); the outline is a rectangle inside the base.
    std::vector<double> x, y;
    rectangle(50, 60, 110, 200, x, y);
    auto doc
        = parse(contour_text().hcontour2("c", x, y).end().text(), 4, flat_grid(101, 201, 5.0).release());
    ASSERT_NE(doc->contour_map(), nullptr);
    EXPECT_TRUE(doc->contour_map()->is_inside_the_cros_map(80, 100));
    EXPECT_FALSE(doc->contour_map()->is_inside_the_cros_map(120, 100));
    vmiObjGrid* model = finish_model(*doc);
    ASSERT_NE(model, nullptr);
    vmiBaseGrid* g = model->grid();
    EXPECT_EQ(g->x_size(), 160);
    EXPECT_EQ(g->y_size(), 260);
    EXPECT_EQ(g->point(80, 100).z(), 5.0);
    // Outside the outline the base grid's heights are gone.
    EXPECT_EQ(g->point(120, 100).z(), vmiBaseGrid::empty_z);
    EXPECT_EQ(g->point(30, 100).z(), vmiBaseGrid::empty_z);
    EXPECT_EQ(g->point(80, 220).z(), vmiBaseGrid::empty_z);
    EXPECT_EQ(g->point(80, 40).z(), vmiBaseGrid::empty_z);
}

TEST(vmiVelmcontur, HContour2_FinishModelTakesTheWorkingGridAndReleasesTheBaseGrid)
{
    std::vector<double> x, y;
    rectangle(50, 60, 110, 200, x, y);
    auto doc = parse(contour_text().hcontour2("c", x, y).end().text(), 12,
                     flat_grid(101, 201, 5.0).release());
    ASSERT_EQ(doc->no_of_objects(), 1);
    vmiObject* o = doc->object(0);
    EXPECT_EQ(o->type(), 1);
    EXPECT_EQ(o->name(), utString("FINISH_MODEL~12"));
    EXPECT_EQ(o->grid()->colour(), 3);
    EXPECT_EQ(o->level(), 0);
    EXPECT_TRUE(o->layer_name().empty());
    EXPECT_EQ(doc->working_grid(), nullptr);
    EXPECT_EQ(doc->base_grid(), nullptr);
}

TEST(vmiVelmcontur, HContour2_SecondHContour2ReplacesContourAndMap)
{
    std::vector<double> x, y, x2, y2;
    rectangle(50, 60, 110, 200, x, y);
    rectangle(60, 70, 100, 190, x2, y2);
    auto doc = parse(contour_text().hcontour2("a", x, y).hcontour2("b", x2, y2).end().text());
    ASSERT_NE(doc->contour(), nullptr);
    EXPECT_EQ(doc->contour()->point(0).x(), 60.0);
    EXPECT_TRUE(doc->contour_map()->is_inside_the_cros_map(130, 200));
    EXPECT_FALSE(doc->contour_map()->is_inside_the_cros_map(110, 200));
    EXPECT_EQ(names(*doc), (std::vector<std::string> {"FINISH_MODEL~4"}));
}

TEST(vmiVelmcontur, HContour2_OutlineWithAnInfiniteCoordinateIsNotTaken)
{
    auto doc = parse(contour_text()
                         .open_height("HContour2")
                         .key("nanz2", 4)
                         .raw("0101 x2=40.0,1.0e400,100.0,40.0")
                         .array("y2", {40.0, 40.0, 200.0, 40.0})
                         .key("flag2", 1)
                         .close_height()
                         .end()
                         .text());
    EXPECT_EQ(doc->contour(), nullptr);
    EXPECT_EQ(doc->no_of_objects(), 0);
}

TEST(vmiVelmcontur, HContour2_CoincidentPointsGiveAContourOfOnePlaceAndAnEmptyModel)
{
    // Every point the same: the outline encloses nothing, so the finished
    // model holds no valid node.
    std::vector<double> x(6, 50.0), y(6, 60.0);
    auto doc = parse(contour_text().hcontour2("c", x, y).end().text());
    ASSERT_NE(doc->contour(), nullptr);
    for (int i = 0; i < doc->contour()->size(); ++i)
        EXPECT_TRUE(doc->contour()->point(i) == m03DPoint(50, 60, 0));
    ASSERT_EQ(doc->no_of_objects(), 1);
    vmiObjGrid* model = doc->object(0)->grid();
    ASSERT_NE(model, nullptr);
    int valid = 0;
    for (int k = 0; k < model->x_size() * model->y_size(); ++k)
        valid += model->points_array()[k].z() > vmiBaseGrid::empty_z;
    EXPECT_EQ(valid, 0);
}

TEST(vmiVelmcontur, HContour2_OutlineLongerThanMaxContourCellsIsNotTaken)
{
    // A zigzag across the whole default grid (440 columns): 3000 crossings
    // are about 1.3 million cells.
    std::vector<double> x, y;
    for (int i = 0; i < 3000; ++i) {
        x.push_back(i % 2 ? 219.0 : 1.0);
        y.push_back(10.0 + i * 0.1);
    }
    x.push_back(x.front());
    y.push_back(y.front());
    auto doc = parse(contour_text().hcontour2("zigzag", x, y).end().text());
    EXPECT_EQ(doc->contour(), nullptr);
    EXPECT_EQ(doc->no_of_objects(), 0);
}

TEST(vmiVelmcontur, HContour2_OutlineOfMoreThanMaxOutlinePointsIsNotTaken)
{
    std::vector<double> x, y;
    const int n = vmiVelmcontur::max_outline_points + 1;
    for (int i = 0; i < n; ++i) {
        x.push_back(50.0 + 0.5 * (i % 7));
        y.push_back(50.0 + 0.01 * i);
    }
    auto doc = parse(contour_text().hcontour2("many", x, y).end().text());
    EXPECT_EQ(doc->contour(), nullptr);
}

TEST(vmiVelmcontur, Sections_EverySectionsKeysAreReadSoTheFileParsesOn)
{
    // Every height section with all its keys, arrays on one line each with
    // exactly their counts; then the blank and the outline still take effect.
    std::vector<double> x, y;
    rectangle(50, 60, 110, 200, x, y);
    const std::vector<double> sixteen(16, 1.0), twelve(12, 1.0), five(5, 1.0), two(2, 1.0);
    contour_text t;
    t.open_height("HPelotteS").key("name", "pad").key("flag", 1).key("xm", 2).key("ym", 3);
    t.key("xre", 0.5).key("yre", 0.5).array("matt", sixteen).array("speich", twelve);
    t.array("mata", std::vector<double>(6, 2.0)).key("nanz", 3).array("xs", {1.0, 2.0, 3.0});
    t.array("ys", {1.0, 2.0, 3.0}).close_height();
    t.open_height("HGloba").array("mat", sixteen).key("minZ", 0.0).key("useMinZ", 1).close_height();
    t.open_height("HPelotte").key("name", "p").key("typus", 1).key("nanz", 3).key("glaett", 2);
    t.key("awert", 3.0).key("xm", 60.0).key("ym", 80.0).array("x", {1.0, 2.0, 3.0});
    t.array("y", {1.0, 2.0, 3.0}).array("xb", {1.0, 2.0, 3.0}).array("yb", {1.0, 2.0, 3.0});
    t.close_height();
    t.open_height("HPlinie").key("name", "l").key("ebene", 1.0).key("flag", 1).key("nanz", 3);
    t.key("offen", 0).array("x", {1.0, 2.0, 3.0}).array("y", {1.0, 2.0, 3.0});
    t.array("xm", std::vector<double>(15, 1.0)).array("ym", std::vector<double>(15, 1.0));
    t.close_height();
    t.open_height("HPunkt").key("name", "pt").key("ebene", 1.0).key("flag", 1).key("alpha", 0.5);
    t.key("x", 60.0).key("y", 80.0).array("xm1", five).array("ym1", five).array("xm2", five);
    t.array("ym2", five).close_height();
    t.open_height("HTorsion").key("name", "t").key("value", 2.0).key("yL", 100.0).key("yR", 100.0);
    t.key("xUp", 80.0).key("xLo", 80.0).key("yLLo", 50.0).key("yRLo", 50.0).key("yLUp", -1.0);
    t.key("yRUp", 0.0).key("side", 1).key("mode", 0).key("area", 0).key("smtype", 1).close_height();
    t.open_height("HSprenglinie")
        .key("name", "s")
        .key("selcount", 3)
        .array("hsel", {1.0, 2.0, 1.0});
    t.key("res", 0.5).int_array("hpos", {10, 20, 30}).close_height();
    t.open_height("HSpreng").key("name", "sp").key("y1", 10.0).key("y2", 50.0).key("z2", 4.0);
    t.key("y1L", 10.0).key("y1R", 12.0).key("y2L", 50.0).key("y2R", 52.0).close_height();
    t.open_height("HFFootMod").key("name", "f").array("pleft", two).array("pright", two);
    t.array("pinner", two).key("height", 2.0).key("minz", 0.5).close_height();
    t.open_height("HGlaett").key("name", "g").key("gfactor", 3).key("y1l", -1.0).key("y1r", -1.0);
    t.key("y2l", -1.0).key("y2r", -1.0).close_height();
    t.open_height("HAbzug").key("name", "a").key("abzug", 1.5).close_height();
    t.rohlingsdaten("sole", x, y, {}, {}, {}, 0.0, 0.0).hcontour2("c", x, y).end();
    auto doc = parse(t.text());
    std::vector<std::string> sections;
    for (const utString& s : doc->sections())
        sections.push_back(s.str());
    EXPECT_EQ(sections,
              (std::vector<std::string> {"HPelotteS", "HGloba", "HPelotte", "HPlinie", "HPunkt",
                                         "HTorsion", "HSprenglinie", "HSpreng", "HFFootMod",
                                         "HGlaett", "HAbzug", "Rohlingsdaten", "HContour2"}));
    EXPECT_EQ(names(*doc), (std::vector<std::string> {"sole~4", "FINISH_MODEL~4"}));
    EXPECT_EQ(doc->smoothing_factor(), 3);
}

TEST(vmiVelmcontur, Sections_HGlaettStoresItsFactorAndDefaultsToOne)
{
    auto doc = parse(
        contour_text().open_height("HGlaett").key("gfactor", 5).close_height().end().text());
    EXPECT_EQ(doc->smoothing_factor(), 5);
    auto unset = parse(contour_text().open_height("HGlaett").close_height().end().text());
    EXPECT_EQ(unset->smoothing_factor(), 1);
}
