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
    vlm::rectangle_outline(40, 40, 100, 200, x, y);
    auto doc = parse(contour_text().hcontour2("c", x, y, 0).end().text());
    EXPECT_EQ(doc->contour(), nullptr);
    EXPECT_EQ(doc->contour_map(), nullptr);
    EXPECT_EQ(doc->no_of_objects(), 0);
    EXPECT_NE(doc->working_grid(), nullptr);
}

TEST(vmiVelmcontur, HContour2_Flag2ZeroThenALaterHContour2MakesTheFinishModel)
{
    std::vector<double> x, y;
    vlm::rectangle_outline(40, 40, 100, 200, x, y);
    auto doc
        = parse(contour_text().hcontour2("c", x, y, 0).hcontour2("c", x, y, 1).end().text(), 7);
    EXPECT_EQ(names(*doc), (std::vector<std::string> {"FINISH_MODEL~7"}));
}

TEST(vmiVelmcontur, HContour2_Flag2WithoutOutlinePointsChangesNothing)
{
    std::vector<double> x, y;
    vlm::rectangle_outline(40, 40, 100, 200, x, y);
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
    vlm::rectangle_outline(40, 40, 100, 200, x, y);
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
    vlm::rectangle_outline(50, 60, 110, 200, x, y);
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
    vlm::rectangle_outline(50, 60, 110, 200, x, y);
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
    vlm::rectangle_outline(50, 60, 110, 200, x, y);
    vlm::rectangle_outline(60, 70, 100, 190, x2, y2);
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
    vlm::rectangle_outline(50, 60, 110, 200, x, y);
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

// ---------------------------------------------------------------------------
// What each height section does to the working grid. The designs stand on a
// flat base of 41 x 41 nodes at spacing 1 and height 5, which the working
// grid (100 x 100 at spacing 1) holds at nodes 30 ... 70 in x and y.

namespace {

constexpr double base_z = 5.0;

std::unique_ptr<vmiVelmcontur> on_flat_base(const contour_text& design)
{
    return parse(design.text(), 4, flat_grid(41, 41, base_z).release());
}

double z_at(vmiVelmcontur& doc, int i, int j)
{
    return doc.working_grid()->point(i, j).z();
}


std::vector<double> untouched_heights()
{
    auto doc = on_flat_base(contour_text().end());
    return all_z(*doc->working_grid());
}

// A pad's outline: the rectangle 40 ... 60 in x and y.
contour_text& flat_pad(contour_text& t, int typus, double awert, bool x_before_count = false)
{
    std::vector<double> x, y;
    vlm::rectangle_outline(40, 40, 60, 60, x, y);
    t.open_height("HPelotte").key("name", "pad").key("typus", typus);
    if (x_before_count)
        t.array("x", x);
    t.key("nanz", static_cast<int>(x.size())).key("glaett", 0).key("awert", awert);
    t.key("xm", 50.0).key("ym", 50.0);
    if (!x_before_count)
        t.array("x", x);
    return t.array("y", y).close_height();
}

// A 4 x 4 pad matrix of height h, cells of 1, placed by a matrix that moves it
// to (50, 50).
contour_text& matrix_pad(contour_text& t, int flag, double h, bool with_speich = false)
{
    t.open_height("HPelotteS").key("name", "m").key("flag", flag).key("xm", 4).key("ym", 4);
    t.key("xre", 1.0).key("yre", 1.0);
    t.array("matt", {1, 0, 0, 50, 0, 1, 0, 50, 0, 0, 1, 0, 0, 0, 0, 1});
    if (with_speich)
        // Placement parameters: no turn, moved to (20, 20), unit factors.
        t.array("speich", {0, 0, 0, 20, 20, 0, 1, 1, 1, 1, 1, 0});
    return t.array("mata", std::vector<double>(16, h)).close_height();
}

}  // namespace

TEST(vmiVelmcontur, HPelotte_FlatPadRisesByExactlyHInsideItsOutline)
{
    contour_text t;
    auto doc = on_flat_base(flat_pad(t, 0, 3.0).end());
    for (int j = 43; j <= 57; ++j)
        for (int i = 43; i <= 57; ++i)
            ASSERT_EQ(z_at(*doc, i, j), base_z + 3.0) << i << "," << j;
    EXPECT_EQ(z_at(*doc, 35, 50), base_z);
    EXPECT_EQ(z_at(*doc, 50, 65), base_z);
}

TEST(vmiVelmcontur, HPelotte_ReplaceModeSetsTheHeight)
{
    contour_text t;
    auto doc = on_flat_base(flat_pad(t, 1, 2.0).end());
    EXPECT_EQ(z_at(*doc, 50, 50), 2.0);
    EXPECT_EQ(z_at(*doc, 35, 35), base_z);
}

TEST(vmiVelmcontur, HPelotte_OutlineBeforeItsCountIsNullAndChangesNothing)
{
    contour_text t;
    auto doc = on_flat_base(flat_pad(t, 0, 3.0, true).end());
    EXPECT_EQ(all_z(*doc->working_grid()), untouched_heights());
}

TEST(vmiVelmcontur, HPelotte_OnePointOutlineChangesNothing)
{
    auto doc = on_flat_base(contour_text()
                                .open_height("HPelotte")
                                .key("typus", 0)
                                .key("nanz", 1)
                                .key("awert", 3.0)
                                .array("x", {50.0})
                                .array("y", {50.0})
                                .close_height()
                                .end());
    EXPECT_EQ(all_z(*doc->working_grid()), untouched_heights());
}

TEST(vmiVelmcontur, HPelotteS_MergesTheMatrixPlacedByMattAlone)
{
    contour_text t;
    auto doc = on_flat_base(matrix_pad(t, 1, 9.0).end());
    // Matrix nodes at -2 ... 1 (centred half a cell off) moved by 50, and
    // their empty neighbours filled when resampled.
    for (int j = 47; j <= 52; ++j)
        for (int i = 47; i <= 52; ++i)
            ASSERT_EQ(z_at(*doc, i, j), 9.0) << i << "," << j;
    EXPECT_EQ(z_at(*doc, 46, 50), base_z);
    EXPECT_EQ(z_at(*doc, 53, 50), base_z);
}

TEST(vmiVelmcontur, HPelotteS_MergeKeepsTheHigherHeight)
{
    contour_text t;
    auto doc = on_flat_base(matrix_pad(t, 1, 2.0).end());
    EXPECT_EQ(all_z(*doc->working_grid()), untouched_heights());
}

TEST(vmiVelmcontur, HPelotteS_FlagZeroDropsTheHeightsOnTop)
{
    contour_text t;
    auto doc = on_flat_base(matrix_pad(t, 0, 2.0).end());
    EXPECT_EQ(z_at(*doc, 50, 50), base_z + 2.0);
    EXPECT_EQ(z_at(*doc, 47, 52), base_z + 2.0);
    EXPECT_EQ(z_at(*doc, 45, 50), base_z);
}

TEST(vmiVelmcontur, HPelotteS_SpeichWithMattPlacesByTheParametersShiftedByHalfTheMatrix)
{
    contour_text t;
    auto doc = on_flat_base(matrix_pad(t, 1, 9.0, true).end());
    // Moved by (20, 20) plus half the matrix (2, 2): the nodes -2 ... 1 land
    // on 20 ... 23, outside the base, where the working grid is empty.
    EXPECT_EQ(z_at(*doc, 21, 21), 9.0);
    EXPECT_EQ(z_at(*doc, 50, 50), base_z);
}

TEST(vmiVelmcontur, HPelotteS_WithoutANameChangesNothingButAnEmptyNameApplies)
{
    std::vector<double> mata(16, 9.0);
    auto text = [&](bool name) {
        contour_text t;
        t.open_height("HPelotteS");
        if (name)
            t.key("name", "");
        t.key("xm", 4).key("ym", 4).key("xre", 1.0).key("yre", 1.0);
        t.array("matt", {1, 0, 0, 50, 0, 1, 0, 50, 0, 0, 1, 0, 0, 0, 0, 1});
        return t.array("mata", mata).close_height().end();
    };
    auto unnamed = on_flat_base(text(false));
    EXPECT_EQ(all_z(*unnamed->working_grid()), untouched_heights());
    auto named = on_flat_base(text(true));
    EXPECT_EQ(z_at(*named, 50, 50), 9.0);
}

TEST(vmiVelmcontur, HPelotteS_MatrixAtItsBoundIsAppliedAndOnePastIsNot)
{
    // One row of heights 9, centred on x = 0 and moved to (50, 50): it covers
    // the whole width on row 49 (half a cell below 50).
    auto row_pad = [](long long columns) {
        contour_text t;
        t.open_height("HPelotteS").key("name", "m").key("xm", static_cast<int>(columns));
        t.key("ym", 1).key("xre", 1.0).key("yre", 1.0);
        t.array("matt", {1, 0, 0, 50, 0, 1, 0, 50, 0, 0, 1, 0, 0, 0, 0, 1});
        t.array("mata", std::vector<double>(static_cast<size_t>(columns), 9.0)).close_height();
        return on_flat_base(t.end());
    };
    auto at_bound = row_pad(vmiVelmcontur::max_pad_matrix_nodes);
    EXPECT_EQ(z_at(*at_bound, 50, 49), 9.0);
    auto past_bound = row_pad(vmiVelmcontur::max_pad_matrix_nodes + 1);
    EXPECT_EQ(all_z(*past_bound->working_grid()), untouched_heights());
}

TEST(vmiVelmcontur, HPunkt_ReadsFiveValuesPerProfileAndRaisesItsCentre)
{
    // The profile falls from 4 at the point to 0 at 10 units; an extra value
    // on each line is passed over, not taken for the next key.
    auto doc = on_flat_base(contour_text()
                                .open_height("HPunkt")
                                .key("flag", 0)
                                .key("alpha", 0.0)
                                .key("x", 50.0)
                                .key("y", 50.0)
                                .array("xm1", {0, 2.5, 5, 7.5, 10, 99})
                                .array("ym1", {4, 4, 2, 0, 0, 99})
                                .array("xm2", {0, 2.5, 5, 7.5, 10, 99})
                                .array("ym2", {1, 1, 1, 1, 1, 99})
                                .close_height()
                                .end());
    EXPECT_EQ(z_at(*doc, 50, 50), base_z + 4.0);
    EXPECT_EQ(z_at(*doc, 35, 50), base_z);
    EXPECT_LT(z_at(*doc, 57, 50), base_z + 4.0);
}

TEST(vmiVelmcontur, HPunkt_WithAProfileArrayMissingChangesNothing)
{
    auto doc = on_flat_base(contour_text()
                                .open_height("HPunkt")
                                .key("x", 50.0)
                                .key("y", 50.0)
                                .array("xm1", {0, 2.5, 5, 7.5, 10})
                                .array("ym1", {4, 4, 2, 0, 0})
                                .array("xm2", {0, 2.5, 5, 7.5, 10})
                                .close_height()
                                .end());
    EXPECT_EQ(all_z(*doc->working_grid()), untouched_heights());
}

TEST(vmiVelmcontur, HPlinie_WithOneStationChangesNothing)
{
    auto doc = on_flat_base(contour_text()
                                .open_height("HPlinie")
                                .key("nanz", 1)
                                .array("x", {50})
                                .array("y", {50})
                                .array("xm", {0, 1, 2, 3, 4})
                                .array("ym", {3, 3, 3, 3, 0})
                                .close_height()
                                .end());
    EXPECT_EQ(all_z(*doc->working_grid()), untouched_heights());
}

TEST(vmiVelmcontur, HSpreng_AddsMinusZ2BeforeTheBandTheBlendAndHalfAUnitBeyond)
{
    auto doc = on_flat_base(contour_text()
                                .open_height("HSpreng")
                                .key("y1", 40.0)
                                .key("y2", 60.0)
                                .key("z2", 2.0)
                                .close_height()
                                .end());
    // Rows below the band's first crossing drop by z2, rows from its second
    // crossing on rise by 0.5, rows in between blend linearly.
    EXPECT_EQ(z_at(*doc, 50, 35), base_z - 2.0);
    EXPECT_EQ(z_at(*doc, 50, 65), base_z + 0.5);
    const double f = (45.0 - 40.0) / (60.0 - 40.0);
    EXPECT_EQ(z_at(*doc, 50, 45), base_z + (1 - f) * -2.0 + f * 0.5);
    // Empty nodes take the spring as well.
    EXPECT_EQ(z_at(*doc, 10, 80), vmiBaseGrid::empty_z + 0.5);
}

TEST(vmiVelmcontur, HSpreng_LaterKeysOverwriteOneSideOfAPair)
{
    auto doc = on_flat_base(contour_text()
                                .open_height("HSpreng")
                                .key("y1", 40.0)
                                .key("y2", 60.0)
                                .key("z2", 2.0)
                                .key("y1R", 50.0)
                                .close_height()
                                .end());
    // The band's first limit runs from 40 on the left to 50 on the right, so
    // row 45 lies before it near the right side and inside it on the left.
    EXPECT_EQ(z_at(*doc, 69, 45), base_z - 2.0);
    EXPECT_GT(z_at(*doc, 31, 45), base_z - 2.0);
}

TEST(vmiVelmcontur, HAbzug_LowersEveryNode)
{
    auto doc = on_flat_base(
        contour_text().open_height("HAbzug").key("abzug", 2.0).close_height().end());
    EXPECT_EQ(z_at(*doc, 50, 50), base_z - 2.0);
    EXPECT_EQ(z_at(*doc, 5, 5), vmiBaseGrid::empty_z - 2.0);
}

TEST(vmiVelmcontur, HGloba_UseMinZWithMinZZeroLiftsTheLowestValidNodeTo0_01)
{
    auto doc = on_flat_base(contour_text()
                                .open_height("HGloba")
                                .array("mat", {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1})
                                .key("minZ", 0.0)
                                .key("useMinZ", 1)
                                .close_height()
                                .end());
    EXPECT_EQ(z_at(*doc, 50, 50), base_z * 1.0 + (0.01 - base_z));
    EXPECT_NEAR(z_at(*doc, 50, 50), 0.01, 1e-12);
}

TEST(vmiVelmcontur, HGloba_NodesAtMinus1000OrBelowAreNotTheLowest)
{
    vmiBaseGrid* base = flat_grid(41, 41, base_z).release();
    base->point(10, 10).z() = -1000.0;
    base->point(11, 10).z() = -5000.0;
    base->point(12, 10).z() = 3.0;
    contour_text t;
    t.open_height("HGloba")
        .array("mat", {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1})
        .key("minZ", 1.0)
        .key("useMinZ", 1)
        .close_height()
        .end();
    auto doc = parse(t.text(), 4, base);
    // The lowest valid node (3.0) ends at minZ.
    EXPECT_EQ(z_at(*doc, 42, 40), 3.0 * 1.0 + (1.0 - 3.0));
    EXPECT_EQ(z_at(*doc, 50, 50), base_z * 1.0 + (1.0 - 3.0));
}

TEST(vmiVelmcontur, HGloba_WithoutUseMinZAppliesTheMatrixAsGiven)
{
    auto doc = on_flat_base(contour_text()
                                .open_height("HGloba")
                                .array("mat", {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 2, 1, 0, 0, 0, 1})
                                .key("minZ", 3.0)
                                .close_height()
                                .end());
    EXPECT_EQ(z_at(*doc, 50, 50), base_z * 2.0 + 1.0);
    // The node's x and y go through the matrix too (unchanged here).
    EXPECT_EQ(doc->working_grid()->point(50, 50).x(), 50.0);
}

TEST(vmiVelmcontur, HGloba_WithoutMatChangesNothing)
{
    auto doc = on_flat_base(
        contour_text().open_height("HGloba").key("minZ", 3.0).key("useMinZ", 1).close_height().end());
    EXPECT_EQ(all_z(*doc->working_grid()), untouched_heights());
}

TEST(vmiVelmcontur, HGlaett_FactorOneWithoutBandChangesNothing)
{
    vmiBaseGrid* base = flat_grid(41, 41, base_z).release();
    base->point(20, 20).z() = 30.0;
    auto doc = parse(contour_text().open_height("HGlaett").key("gfactor", 1).close_height().end().text(),
                     4, base);
    EXPECT_EQ(z_at(*doc, 50, 50), 30.0);
}

TEST(vmiVelmcontur, HGlaett_FactorThreeSmoothsTheWholeGridWithoutAContour)
{
    vmiBaseGrid* base = flat_grid(41, 41, base_z).release();
    base->point(20, 20).z() = 30.0;
    auto doc = parse(contour_text().open_height("HGlaett").key("gfactor", 3).close_height().end().text(),
                     4, base);
    // The 5 x 5 mean around the bump: 24 nodes at 5 and the bump.
    double sum = 0.0;
    for (int b = 0; b < 5; ++b)
        for (int a = 0; a < 5; ++a)
            sum += (a == 2 && b == 2) ? 30.0 : base_z;
    EXPECT_EQ(z_at(*doc, 50, 50), sum / 25);
    EXPECT_EQ(z_at(*doc, 52, 52), sum / 25);
    EXPECT_EQ(z_at(*doc, 53, 53), base_z);
}

TEST(vmiVelmcontur, HGlaett_FactorThreeWithAContourSmoothsOnlyInsideIt)
{
    vmiBaseGrid* base = flat_grid(41, 41, base_z).release();
    base->point(20, 20).z() = 30.0;
    std::vector<double> x, y;
    vlm::rectangle_outline(40, 40, 60, 60, x, y);
    auto doc = parse(contour_text()
                         .hcontour2("c", x, y)
                         .open_height("HGlaett")
                         .key("gfactor", 3)
                         .close_height()
                         .end()
                         .text(),
                     4, base);
    vmiBaseGrid* model = finish_model(*doc)->grid();
    EXPECT_LT(model->point(50, 50).z(), 30.0);
    EXPECT_GT(model->point(50, 50).z(), base_z);
}

TEST(vmiVelmcontur, HGlaett_OnlyLowerLimitsSmoothTheBandUpToTheGridsEnd)
{
    vmiBaseGrid* base = flat_grid(41, 41, base_z).release();
    base->point(20, 20).z() = 30.0;  // working node (50, 50), inside the band
    base->point(20, 2).z() = 30.0;   // working node (50, 32), below it
    auto doc = parse(contour_text()
                         .open_height("HGlaett")
                         .key("gfactor", 2)
                         .key("y2l", 40.0)
                         .key("y2r", 40.0)
                         .close_height()
                         .end()
                         .text(),
                     4, base);
    EXPECT_LT(z_at(*doc, 50, 50), 30.0);
    EXPECT_EQ(z_at(*doc, 50, 32), 30.0);
}

TEST(vmiVelmcontur, HFFootMod_WithoutMinZSetsTheNodesBeyondTheBeadToHeight)
{
    auto doc = on_flat_base(contour_text()
                                .open_height("HFFootMod")
                                .array("pleft", {30, 60})
                                .array("pright", {70, 60})
                                .array("pinner", {50, 60})
                                .key("height", 7.0)
                                .key("minz", -2000.0)
                                .close_height()
                                .end());
    EXPECT_EQ(z_at(*doc, 50, 65), 7.0);
    EXPECT_EQ(z_at(*doc, 50, 50), base_z);
}

TEST(vmiVelmcontur, HFFootMod_WithMinZShiftsBelowAndFlattensBeyond)
{
    auto doc = on_flat_base(contour_text()
                                .open_height("HFFootMod")
                                .array("pleft", {30, 60})
                                .array("pright", {70, 60})
                                .array("pinner", {50, 60})
                                .key("height", 3.0)
                                .key("minz", 1.0)
                                .close_height()
                                .end());
    EXPECT_EQ(z_at(*doc, 50, 65), 1.0);
    EXPECT_EQ(z_at(*doc, 50, 50), base_z + 1.0 - 3.0);
}

TEST(vmiVelmcontur, HSprenglinie_WithSelcountZeroChangesNothing)
{
    std::vector<double> x, y;
    vlm::rectangle_outline(40, 40, 60, 60, x, y);
    auto with = [&](int selcount) {
        contour_text t;
        t.hcontour2("c", x, y).open_height("HSprenglinie").key("selcount", selcount);
        t.array("hsel", {4.0}).int_array("hpos", {10}).close_height().end();
        return parse(t.text(), 4, flat_grid(41, 41, base_z).release());
    };
    auto none = with(0);
    auto contour_only = parse(contour_text().hcontour2("c", x, y).end().text(), 4,
                              flat_grid(41, 41, base_z).release());
    EXPECT_EQ(all_z(*finish_model(*none)->grid()), all_z(*finish_model(*contour_only)->grid()));
    auto one = with(1);
    EXPECT_NE(all_z(*finish_model(*one)->grid()), all_z(*finish_model(*contour_only)->grid()));
}

TEST(vmiVelmcontur, HSprenglinie_WithoutAContourChangesNothing)
{
    auto doc = on_flat_base(contour_text()
                                .open_height("HSprenglinie")
                                .key("selcount", 1)
                                .array("hsel", {4.0})
                                .int_array("hpos", {10})
                                .close_height()
                                .end());
    EXPECT_EQ(all_z(*doc->working_grid()), untouched_heights());
}

TEST(vmiVelmcontur, HSprenglinie_NegativeSelcountChangesNothing)
{
    std::vector<double> x, y;
    vlm::rectangle_outline(40, 40, 60, 60, x, y);
    contour_text t;
    t.hcontour2("c", x, y).open_height("HSprenglinie").key("selcount", 1);
    t.array("hsel", {4.0}).int_array("hpos", {10}).key("selcount", -1).close_height().end();
    auto doc = parse(t.text(), 4, flat_grid(41, 41, base_z).release());
    auto contour_only = parse(contour_text().hcontour2("c", x, y).end().text(), 4,
                              flat_grid(41, 41, base_z).release());
    EXPECT_EQ(all_z(*finish_model(*doc)->grid()), all_z(*finish_model(*contour_only)->grid()));
}

TEST(vmiVelmcontur, HSprenglinie_LiftsTheStationRowByAboutItsHeight)
{
    std::vector<double> x, y;
    vlm::rectangle_outline(40, 40, 60, 60, x, y);
    // The design's contour comes first: the station counts rows from its
    // first row (40), so it stands on row 50.
    contour_text t;
    t.hcontour2("c", x, y).open_height("HSprenglinie").key("selcount", 1);
    t.array("hsel", {4.0}).int_array("hpos", {10}).close_height().end();
    auto doc = parse(t.text(), 4, flat_grid(41, 41, base_z).release());
    auto contour_only = parse(contour_text().hcontour2("c", x, y).end().text(), 4,
                              flat_grid(41, 41, base_z).release());
    const double lift = finish_model(*doc)->grid()->point(50, 50).z()
        - finish_model(*contour_only)->grid()->point(50, 50).z();
    EXPECT_NEAR(lift, 4.0, 0.1);
}

TEST(vmiVelmcontur, HTorsion_AddsNothingOnItsAxisAndGrowsTowardsTheContour)
{
    std::vector<double> x, y;
    // The contour reaches 15 units left of the axis and 18 right of it.
    vlm::rectangle_outline(35, 35, 68, 65, x, y);
    // A vertical torsion axis at x = 50, the middle line at y = 50, both side
    // lines open (the lower at -1, the upper to the grid's end): every node
    // left of the axis rises by its distance from the axis over the distance
    // from the axis to the contour, times the value.
    auto text = [&](bool torsion) {
        contour_text t;
        t.hcontour2("c", x, y);
        if (torsion)
            t.open_height("HTorsion")
                .key("value", 3.0)
                .key("yL", 50.0)
                .key("yR", 50.0)
                .key("xUp", 50.0)
                .key("xLo", 50.0)
                .key("yLLo", -1.0)
                .key("yRLo", -1.0)
                .key("yLUp", -1.0)
                .key("side", 0)
                .key("smtype", 0)
                .close_height();
        return t.end().text();
    };
    auto doc = parse(text(true), 4, flat_grid(41, 41, base_z).release());
    auto plain = parse(text(false), 4, flat_grid(41, 41, base_z).release());
    vmiBaseGrid* twisted = finish_model(*doc)->grid();
    vmiBaseGrid* flat = finish_model(*plain)->grid();
    m03DPoint leftmost, rightmost;
    vmiVelmcontur::get_min_max_x_intersect(m03DPoint(-1, 50, 0), m03DPoint(101, 50, 0),
                                           doc->contour(), leftmost, rightmost);
    const double reach = 50.0 - leftmost.x();
    for (int i : {40, 44, 48})
        for (int j : {42, 50, 58})
            EXPECT_NEAR(twisted->point(i, j).z() - flat->point(i, j).z(), (50.0 - i) * 3.0 / reach,
                        1e-9)
                << i << "," << j;
    EXPECT_EQ(twisted->point(50, 50).z(), flat->point(50, 50).z());
    EXPECT_EQ(twisted->point(55, 50).z(), flat->point(55, 50).z());
}

namespace {

// A line of n stations up x = 50 from y = 40 to 60, each profile 3 high out
// to 4 units.
std::unique_ptr<vmiVelmcontur> line_of(int n)
{
    std::vector<double> x, y, px, pz;
    for (int k = 0; k < n; ++k) {
        x.push_back(50.0);
        y.push_back(40.0 + 20.0 * k / (n - 1));
        for (double v : {0.0, 1.0, 2.0, 3.0, 4.0}) {
            px.push_back(v);
            pz.push_back(v < 3.5 ? 3.0 : 0.0);
        }
    }
    return on_flat_base(contour_text()
                            .open_height("HPlinie")
                            .key("flag", 0)
                            .key("nanz", n)
                            .array("x", x)
                            .array("y", y)
                            .array("xm", px)
                            .array("ym", pz)
                            .close_height()
                            .end());
}

}  // namespace

TEST(vmiVelmcontur, HPlinie_ReadsFiveProfileValuesPerStation)
{
    // Three stations: "xm=" and "ym=" hold 15 values each.
    auto doc = line_of(3);
    // On the centre line both neighbouring profiles give their start height.
    EXPECT_NEAR(z_at(*doc, 50, 50), base_z + 3.0, 1e-12);
    EXPECT_NEAR(z_at(*doc, 50, 45), base_z + 3.0, 1e-12);
    EXPECT_EQ(z_at(*doc, 40, 50), base_z);
}

TEST(vmiVelmcontur, HPlinie_LineAtMaxLineStationsIsAppliedAndOnePastIsNot)
{
    auto at_bound = line_of(vmiVelmcontur::max_line_stations);
    EXPECT_NEAR(z_at(*at_bound, 50, 50), base_z + 3.0, 1e-9);
    auto past_bound = line_of(vmiVelmcontur::max_line_stations + 1);
    EXPECT_EQ(all_z(*past_bound->working_grid()), untouched_heights());
}

TEST(vmiVelmcontur, HPelotte_OutlineOfMoreThanMaxOutlinePointsIsNotApplied)
{
    // A circle of radius 10 round (50, 50) with one point more than allowed,
    // and the same circle at the bound.
    auto circle = [](int n) {
        std::vector<double> x, y;
        for (int k = 0; k < n; ++k) {
            const double a = 2.0 * std::acos(-1.0) * k / (n - 1);
            x.push_back(50.0 + 10.0 * std::cos(a));
            y.push_back(50.0 + 10.0 * std::sin(a));
        }
        contour_text t;
        t.open_height("HPelotte").key("typus", 0).key("nanz", n).key("glaett", 0);
        t.key("awert", 3.0).key("xm", 50.0).key("ym", 50.0).array("x", x).array("y", y);
        return on_flat_base(t.close_height().end());
    };
    auto at_bound = circle(vmiVelmcontur::max_outline_points);
    EXPECT_EQ(z_at(*at_bound, 50, 50), base_z + 3.0);
    auto past_bound = circle(vmiVelmcontur::max_outline_points + 1);
    EXPECT_EQ(all_z(*past_bound->working_grid()), untouched_heights());
}

TEST(vmiVelmcontur, HTorsion_WithoutAContourRunsItsAxisToTheSearchsStartValue)
{
    // With no contour the middle line's leftmost crossing stays at the
    // search's start, 1e10 along x: the axis is so long that every node
    // rises by almost nothing, and the grid stays finite.
    auto doc = on_flat_base(contour_text()
                                .open_height("HTorsion")
                                .key("value", 3.0)
                                .key("yL", 50.0)
                                .key("yR", 50.0)
                                .key("xUp", 50.0)
                                .key("xLo", 50.0)
                                .key("yLLo", -1.0)
                                .key("yRLo", -1.0)
                                .key("yLUp", -1.0)
                                .close_height()
                                .end());
    const std::vector<double> before = untouched_heights();
    const std::vector<double> after = all_z(*doc->working_grid());
    ASSERT_EQ(after.size(), before.size());
    bool changed = false;
    for (std::size_t k = 0; k < after.size(); ++k) {
        ASSERT_TRUE(std::isfinite(after[k]));
        EXPECT_NEAR(after[k], before[k], 1e-6);
        changed = changed || after[k] != before[k];
    }
    EXPECT_TRUE(changed);
}
