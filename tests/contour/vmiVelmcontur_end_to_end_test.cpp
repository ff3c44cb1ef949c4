// A realistic insole design parsed over a scanned base grid: the grid
// geometry, the blank's lower and upper outlines, a foot-shaped insole
// outline, and the finished, closed model.
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

namespace {

// A scanned foot bed: 110 x 280 nodes at spacing 1, rising towards the heel
// and the sides.
vmiBaseGrid* scanned_base()
{
    vmiBaseGrid* g = new vmiBaseGrid(110, 280, 1.0, 1.0);
    for (int j = 0; j < 280; ++j)
        for (int i = 0; i < 110; ++i) {
            double across = (i - 55.0) / 55.0;
            double z = 4.0 + 6.0 * across * across + 0.02 * (280 - j);
            g->point(i, j, m03DPoint(i, j, z));
        }
    return g;
}

std::string design_text()
{
    std::vector<double> x, y, x_up, y_up, z_up, x_in, y_in;
    vlm::foot_outline(61, 30, 30, 110, 280, x, y);
    for (std::size_t i = 0; i < x.size(); ++i) {
        x_up.push_back(x[i]);
        y_up.push_back(y[i]);
        z_up.push_back(8.0);
    }
    vlm::foot_outline(81, 36, 36, 98, 268, x_in, y_in);
    vlm::contour_text t("0001 Velmora design");
    t.kerneldata(170, 340, 1.0, 1.0, 30.0, 30.0);
    t.rohlingsdaten("sole", x, y, x_up, y_up, z_up, 3.0, 8.0);
    t.instruction(500, "3DBrandsohle").key("unknown", 1);
    t.hcontour2("insole", x_in, y_in);
    t.open_height("HGlaett").key("name", "smooth").key("gfactor", 2).close_height();
    t.open_height("HAbzug").key("name", "deduct").key("abzug", 0.0).close_height();
    return t.end().text();
}

}  // namespace

TEST(vmiVelmcontur, EndToEnd_RealisticDesignOverABaseGrid_ProducesOutlinesAndTheClosedModel)
{
    std::string text = design_text();
    std::vector<char> bytes(text.begin(), text.end());
    vmiVelmcontur doc(bytes.data(), static_cast<int>(bytes.size()), 4, scanned_base());

    ASSERT_EQ(doc.status(), 0);
    ASSERT_EQ(doc.no_of_objects(), 3);
    EXPECT_EQ(doc.object(0)->name(), utString("sole~4"));
    EXPECT_EQ(doc.object(1)->name(), utString("sole~4(Upper)~4"));
    EXPECT_EQ(doc.object(2)->name(), utString("FINISH_MODEL~4"));

    for (int i = 0; i < 2; ++i) {
        vmiObjSpline* s = doc.object(i)->spline();
        ASSERT_NE(s, nullptr);
        EXPECT_EQ(doc.object(i)->layer_name(), utString("ORTHOTICS_DATA"));
        EXPECT_EQ(doc.object(i)->level(), 20);
        EXPECT_EQ(s->colour(), 6);
        ASSERT_NE(s->approximation(), nullptr);
        EXPECT_TRUE(doc.object(i)->box().is_valid());
    }
    EXPECT_NEAR(doc.object(1)->box().max().z(), 8.0, 1e-9);
    EXPECT_EQ(doc.height1(), 3.0);
    EXPECT_EQ(doc.height2(), 8.0);

    vmiObjGrid* model = doc.object(2)->grid();
    ASSERT_NE(model, nullptr);
    EXPECT_EQ(model->colour(), 3);
    EXPECT_EQ(model->x_size(), 170);
    EXPECT_EQ(model->y_size(), 340);
    EXPECT_EQ(model->d_x(), 1.0);
    EXPECT_EQ(model->d_y(), 1.0);
    EXPECT_EQ(doc.working_grid(), nullptr);
    EXPECT_EQ(doc.smoothing_factor(), 2);

    // Inside the outline the scanned heights stand where the base grid was
    // merged (lower left corner at the margin 30, 30), smoothed once over
    // 3 x 3 nodes ("gfactor=2"); outside it is empty.
    vmiBaseGrid* g = model->grid();
    double sum = 0.0;
    for (int i = 54; i <= 56; ++i)
        for (int j = 139; j <= 141; ++j) {
            const double across = (i - 55.0) / 55.0;
            sum += 4.0 + 6.0 * across * across + 0.02 * (280 - j);
        }
    EXPECT_NEAR(g->point(85, 170).z(), sum / 9, 1e-12);
    EXPECT_EQ(g->point(160, 170).z(), vmiBaseGrid::empty_z);
    EXPECT_EQ(g->point(85, 335).z(), vmiBaseGrid::empty_z);
}

TEST(vmiVelmcontur, EndToEnd_FinishedModelHoldsWallAndFloorPointsInItsMarginColumns)
{
    std::string text = design_text();
    std::vector<char> bytes(text.begin(), text.end());
    vmiVelmcontur doc(bytes.data(), static_cast<int>(bytes.size()), 4, scanned_base());
    ASSERT_EQ(doc.no_of_objects(), 3);
    vmiBaseGrid* g = doc.object(2)->grid()->grid();
    ASSERT_NE(g, nullptr);
    ASSERT_NE(doc.contour_map(), nullptr);

    int rows = 0, first = -1, last = -1;
    for (int j = doc.contour_map()->y_min(); j <= doc.contour_map()->y_max(); ++j) {
        // The surface of the row: its first and last valid node right of the
        // margin.
        int l = -1, r = -1;
        for (int i = 10; i < g->x_size(); ++i)
            if (g->point(i, j).z() > vmiBaseGrid::valid_z) {
                if (l < 0)
                    l = i;
                r = i;
            }
        if (l < 0 || l >= r)
            continue;
        const m03DPoint L = g->point(l, j), R = g->point(r, j);
        ASSERT_GT(L.z(), 0.01);
        ASSERT_GT(R.z(), 0.01);
        // Left wall (base, top), floor (right base, left base), right wall
        // (top, base); the floor is at 0.001.
        EXPECT_TRUE(g->point(0, j) == m03DPoint(L.x(), L.y(), 0.001)) << j;
        EXPECT_TRUE(g->point(1, j) == L) << j;
        EXPECT_TRUE(g->point(4, j) == m03DPoint(R.x(), R.y(), 0.001)) << j;
        EXPECT_TRUE(g->point(5, j) == m03DPoint(L.x(), L.y(), 0.001)) << j;
        EXPECT_TRUE(g->point(8, j) == R) << j;
        EXPECT_TRUE(g->point(9, j) == m03DPoint(R.x(), R.y(), 0.001)) << j;
        if (first < 0)
            first = j;
        last = j;
        ++rows;
    }
    EXPECT_GT(rows, 200);
    // The rows before the first and after the last close the ends.
    ASSERT_GT(first, 0);
    EXPECT_TRUE(g->point(0, first - 1) == g->point(9, first));
    EXPECT_TRUE(g->point(1, first - 1) == g->point(8, first));
    EXPECT_TRUE(g->point(0, last + 1) == g->point(9, last));
    EXPECT_TRUE(g->point(1, last + 1) == g->point(8, last));
}

TEST(vmiVelmcontur, EndToEnd_ContourTextWriterGivesTheLinesTheReaderExpects)
{
    vlm::contour_text t;
    t.open_height("HContour2").key("flag2", 1).array("x2", {1.0, -2.5}).close_height().end();
    EXPECT_EQ(t.text(), "0001\n0300 HContour2\n0101 flag2=1\n0101 x2=1.0,-2.5\n0399 \n0999 \n");
    EXPECT_EQ(t.text(true, false),
              "0001\r\n0300 HContour2\r\n0101 flag2=1\r\n0101 x2=1.0,-2.5\r\n0399 \r\n0999 ");
    EXPECT_EQ(vlm::contour_number(-5.0), "-5.0");
    EXPECT_EQ(vlm::contour_number(1e-7), "0.0000001");
}
