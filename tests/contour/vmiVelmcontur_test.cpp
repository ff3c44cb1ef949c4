// The contour document: construction, top-level dispatch, the blank
// ("Rohlingsdaten"), the grid geometry ("Kerneldata"), and the bounds it keeps
// against hostile text.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "archive/vmiObjSpline.h"
#include "archive/vmiObject.h"
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
    return std::make_unique<vmiVelmcontur>(bytes.empty() ? nullptr : bytes.data(),
                                           static_cast<int>(bytes.size()), id, base);
}

std::vector<std::string> names(vmiVelmcontur& doc)
{
    std::vector<std::string> out;
    for (int i = 0; i < doc.no_of_objects(); ++i)
        out.push_back(doc.object(i)->name().str());
    return out;
}

std::vector<std::string> sections(const vmiVelmcontur& doc)
{
    std::vector<std::string> out;
    for (const utString& s : doc.sections())
        out.push_back(s.str());
    return out;
}

const std::vector<double> xs = {10.0, 20.0, 30.0, 40.0};
const std::vector<double> ys = {5.0, 15.0, 5.0, 15.0};

}  // namespace

TEST(vmiVelmcontur, HeaderAndEndLinesOnly_YieldNoObjects)
{
    auto doc = parse("0001\n0999 \n");
    EXPECT_EQ(doc->status(), 0);
    EXPECT_EQ(doc->no_of_objects(), 0);
    EXPECT_TRUE(doc->sections().empty());
}

TEST(vmiVelmcontur, NullOrEmptyData_GivesStatusMinusOneAndNoObjects)
{
    vmiVelmcontur none(nullptr, 10, 1, flat_grid(3, 3, 1.0).release());
    EXPECT_EQ(none.status(), -1);
    EXPECT_EQ(none.no_of_objects(), 0);
    EXPECT_EQ(none.working_grid(), nullptr);
    char byte = '0';
    vmiVelmcontur empty(&byte, 0, 1, nullptr);
    EXPECT_EQ(empty.status(), -1);
    EXPECT_EQ(empty.no_of_objects(), 0);
}

TEST(vmiVelmcontur, WithoutHContour2_OnlyOutlineObjectsAndNoFinishModel)
{
    auto doc
        = parse(contour_text().rohlingsdaten("sole", xs, ys, xs, ys, {}, 1.0, 2.0).end().text());
    EXPECT_EQ(names(*doc), (std::vector<std::string> {"sole~4", "sole~4(Upper)~4"}));
    for (int i = 0; i < doc->no_of_objects(); ++i)
        EXPECT_EQ(doc->object(i)->type(), 5);
    EXPECT_EQ(doc->contour(), nullptr);
    EXPECT_NE(doc->working_grid(), nullptr);
}

TEST(vmiVelmcontur, WithoutBaseGrid_WorkingGridIs440By760AtHalfSpacing)
{
    auto doc = parse("0001\n0999 \n");
    ASSERT_NE(doc->working_grid(), nullptr);
    EXPECT_EQ(doc->working_grid()->x_size(), 440);
    EXPECT_EQ(doc->working_grid()->y_size(), 760);
    EXPECT_EQ(doc->working_grid()->d_x(), 0.5);
    EXPECT_EQ(doc->working_grid()->d_y(), 0.5);
    EXPECT_EQ(doc->xnum(), 440);
    EXPECT_EQ(doc->ynum(), 760);
    EXPECT_EQ(doc->randx(), 30.0);
    EXPECT_EQ(doc->randy(), 30.0);
    EXPECT_EQ(doc->working_grid()->point(439, 759).z(), vmiBaseGrid::empty_z);
}

TEST(vmiVelmcontur, HPelotteSRunsItsOwnReaderNotHPelotte)
{
    auto doc
        = parse(contour_text().open_height("HPelotteS").key("flag", 0).close_height().end().text());
    EXPECT_EQ(sections(*doc), (std::vector<std::string> {"HPelotteS"}));
}

TEST(vmiVelmcontur, HSprenglinieRunsItsOwnReaderNotHSpreng)
{
    auto doc = parse(contour_text().open_height("HSprenglinie").close_height().end().text());
    EXPECT_EQ(sections(*doc), (std::vector<std::string> {"HSprenglinie"}));
}

TEST(vmiVelmcontur, EverySectionNameDispatchesToItsReader)
{
    contour_text t;
    const std::vector<std::string> height
        = {"HPelotteS", "HContour2",    "HGloba",  "HPelotte",  "HPlinie", "HPunkt",
           "HTorsion",  "HSprenglinie", "HSpreng", "HFFootMod", "HGlaett", "HAbzug"};
    for (const std::string& name : height)
        t.open_height(name).close_height();
    t.open_blank()
        .close_blank()
        .open_kernel()
        .close_kernel()
        .instruction(500, "3DBrandsohle")
        .end();
    std::vector<std::string> expected = height;
    expected.insert(expected.end(), {"Rohlingsdaten", "Kerneldata", "3DBrandsohle"});
    EXPECT_EQ(sections(*parse(t.text())), expected);
}

TEST(vmiVelmcontur, UnknownNamesAndNumbersArePassedOver)
{
    auto doc = parse(contour_text()
                         .open_height("HUnknown")
                         .instruction(200, "Kerneldata")
                         .instruction(700, "Rohlingsdaten")
                         .instruction(400, "HContour2")
                         .rohlingsdaten("sole", xs, ys, {}, {}, {}, 0.0, 0.0)
                         .end()
                         .text());
    EXPECT_EQ(sections(*doc), (std::vector<std::string> {"Rohlingsdaten"}));
    EXPECT_EQ(names(*doc), (std::vector<std::string> {"sole~4"}));
}

TEST(vmiVelmcontur, EndInstructionStopsTheDocument)
{
    auto doc
        = parse(contour_text().end().rohlingsdaten("sole", xs, ys, {}, {}, {}, 0.0, 0.0).text());
    EXPECT_EQ(doc->no_of_objects(), 0);
}

TEST(vmiVelmcontur, SectionNeverClosedSwallowsTheRest)
{
    auto doc = parse(contour_text()
                         .open_height("HAbzug")
                         .key("abzug", 1.0)
                         .rohlingsdaten("sole", xs, ys, {}, {}, {}, 0.0, 0.0)
                         .end()
                         .text());
    EXPECT_EQ(sections(*doc), (std::vector<std::string> {"HAbzug"}));
    EXPECT_EQ(doc->no_of_objects(), 0);
}

TEST(vmiVelmcontur, BrandsohleKeyLinesArePassedOverByTheTopLevel)
{
    auto doc = parse(contour_text()
                         .instruction(500, "3DBrandsohle")
                         .key("xnum", 5)
                         .key("count", 2)
                         .rohlingsdaten("sole", xs, ys, {}, {}, {}, 0.0, 0.0)
                         .end()
                         .text());
    EXPECT_EQ(sections(*doc), (std::vector<std::string> {"3DBrandsohle", "Rohlingsdaten"}));
    EXPECT_EQ(names(*doc), (std::vector<std::string> {"sole~4"}));
}

TEST(vmiVelmcontur, Rohlingsdaten_LowerAndUpperOutlinesCarryTheDoubledSuffix)
{
    auto doc = parse(
        contour_text().rohlingsdaten("sole", xs, ys, xs, ys, {1, 2, 3, 4}, 3.5, 7.25).end().text(),
        4);
    ASSERT_EQ(names(*doc), (std::vector<std::string> {"sole~4", "sole~4(Upper)~4"}));
    for (int i = 0; i < 2; ++i) {
        vmiObjSpline* s = doc->object(i)->spline();
        ASSERT_NE(s, nullptr);
        EXPECT_EQ(s->colour(), 6);
        EXPECT_EQ(s->level(), 20);
        EXPECT_EQ(s->layer_name(), utString("ORTHOTICS_DATA"));
        ASSERT_NE(s->approximation(), nullptr);
    }
    EXPECT_EQ(doc->height1(), 3.5);
    EXPECT_EQ(doc->height2(), 7.25);
    // The upper outline takes its heights from "zSplUp=".
    m03DVector* upper = doc->object(1)->spline()->approximation();
    EXPECT_EQ(upper->point(0).z(), 1.0);
    EXPECT_EQ(upper->point(upper->size() - 1).z(), 4.0);
    m03DVector* lower = doc->object(0)->spline()->approximation();
    EXPECT_EQ(lower->point(lower->size() - 1).z(), 0.0);
}

TEST(vmiVelmcontur, Rohlingsdaten_OnlyUpperArraysGiveASingleSuffix)
{
    auto doc
        = parse(contour_text().rohlingsdaten("sole", {}, {}, xs, ys, {}, 0.0, 0.0).end().text());
    EXPECT_EQ(names(*doc), (std::vector<std::string> {"sole(Upper)~4"}));
    // Without "zSplUp=" the upper outline lies at z = 0.
    m03DVector* upper = doc->object(0)->spline()->approximation();
    ASSERT_NE(upper, nullptr);
    EXPECT_EQ(upper->point(0).z(), 0.0);
}

TEST(vmiVelmcontur, Rohlingsdaten_ArrayBeforeCountReadsNothing)
{
    auto doc = parse(contour_text()
                         .open_blank()
                         .key("name", "sole")
                         .array("xSpl", xs)
                         .key("count", 4)
                         .array("ySpl", ys)
                         .close_blank()
                         .end()
                         .text());
    EXPECT_EQ(doc->no_of_objects(), 0);
}

TEST(vmiVelmcontur, Rohlingsdaten_ValuesBeyondAShorterArrayReadAsZero)
{
    // xSpl is read with count 3 and holds three values; the outline is built
    // with the later count 4, so its fourth x reads as 0.0, never a value
    // read past the array.
    auto doc = parse(contour_text()
                         .open_blank()
                         .key("name", "sole")
                         .key("count", 3)
                         .array("xSpl", {10.0, 20.0, 30.0, 99.0})
                         .key("count", 4)
                         .array("ySpl", ys)
                         .close_blank()
                         .end()
                         .text());
    ASSERT_EQ(doc->no_of_objects(), 1);
    m03DVector* a = doc->object(0)->spline()->approximation();
    ASSERT_NE(a, nullptr);
    EXPECT_EQ(a->point(0).x(), 10.0);
    EXPECT_EQ(a->point(a->size() - 1).x(), 0.0);
    EXPECT_EQ(a->point(a->size() - 1).y(), 15.0);
}

TEST(vmiVelmcontur, Rohlingsdaten_RepeatedZeroPointsAndSinglePointsStillMakeTheirObjects)
{
    // Count raised after short arrays: the outline ends in seven points at
    // the origin, coincident ones among them.
    auto zeros = parse(contour_text()
                           .open_blank()
                           .key("name", "z")
                           .key("count", 3)
                           .array("xSpl", {10.0, 20.0, 30.0})
                           .array("ySpl", {10.0, 20.0, 10.0})
                           .key("count", 10)
                           .close_blank()
                           .end()
                           .text());
    EXPECT_EQ(names(*zeros), (std::vector<std::string> {"z~4"}));
    auto single = parse(
        contour_text().rohlingsdaten("one", {5.0}, {6.0}, {5.0}, {6.0}, {}, 0, 0).end().text());
    EXPECT_EQ(names(*single), (std::vector<std::string> {"one~4", "one~4(Upper)~4"}));
}

TEST(vmiVelmcontur, Rohlingsdaten_NameTextIsCutAt131Characters)
{
    std::string long_name(5000, 'n');
    auto doc
        = parse(contour_text().rohlingsdaten(long_name, xs, ys, {}, {}, {}, 0.0, 0.0).end().text());
    ASSERT_EQ(doc->no_of_objects(), 1);
    EXPECT_EQ(doc->object(0)->name().str(), std::string(131, 'n') + "~4");
}

TEST(vmiVelmcontur, Kerneldata_SetsGeometryAndRebuildsTheWorkingGrid)
{
    auto doc = parse(contour_text().kerneldata(100, 200, 1.0, 2.0, 10.0, 20.0).end().text());
    ASSERT_NE(doc->working_grid(), nullptr);
    EXPECT_EQ(doc->working_grid()->x_size(), 100);
    EXPECT_EQ(doc->working_grid()->y_size(), 200);
    EXPECT_EQ(doc->working_grid()->d_x(), 1.0);
    EXPECT_EQ(doc->working_grid()->d_y(), 2.0);
    EXPECT_EQ(doc->randx(), 10.0);
    EXPECT_EQ(doc->randy(), 20.0);
}

TEST(vmiVelmcontur, Kerneldata_KeysNotGivenKeepTheirValues)
{
    auto doc = parse(contour_text().open_kernel().key("xnum", 50).close_kernel().end().text());
    ASSERT_NE(doc->working_grid(), nullptr);
    EXPECT_EQ(doc->working_grid()->x_size(), 50);
    EXPECT_EQ(doc->working_grid()->y_size(), 760);
    EXPECT_EQ(doc->working_grid()->d_x(), 0.5);
}

TEST(vmiVelmcontur, BaseGrid_SetsExtentSpacingAndSitsInsideTheMargin)
{
    // 11 x 21 nodes at spacing 1: box 0..10 x 0..20, so (10 + 60) x (20 + 60).
    auto doc = parse("0001\n0999 \n", 1, flat_grid(11, 21, 5.0).release());
    vmiBaseGrid* g = doc->working_grid();
    ASSERT_NE(g, nullptr);
    EXPECT_EQ(g->x_size(), 70);
    EXPECT_EQ(g->y_size(), 80);
    EXPECT_EQ(g->d_x(), 1.0);
    EXPECT_EQ(g->point(30, 30).z(), 5.0);
    EXPECT_EQ(g->point(40, 50).z(), 5.0);
    EXPECT_EQ(g->point(29, 30).z(), vmiBaseGrid::empty_z);
    EXPECT_EQ(g->point(41, 30).z(), vmiBaseGrid::empty_z);
    EXPECT_EQ(g->point(30, 51).z(), vmiBaseGrid::empty_z);
}

TEST(vmiVelmcontur, Kerneldata_MergesTheBaseGridAtTheNewMargin)
{
    auto doc = parse(contour_text().kerneldata(40, 50, 1.0, 1.0, 12.0, 15.0).end().text(), 1,
                     flat_grid(11, 21, 5.0).release());
    vmiBaseGrid* g = doc->working_grid();
    ASSERT_NE(g, nullptr);
    EXPECT_EQ(g->x_size(), 40);
    EXPECT_EQ(g->point(12, 15).z(), 5.0);
    EXPECT_EQ(g->point(22, 35).z(), 5.0);
    EXPECT_EQ(g->point(11, 15).z(), vmiBaseGrid::empty_z);
    EXPECT_EQ(g->point(23, 35).z(), vmiBaseGrid::empty_z);
}

TEST(vmiVelmcontur, Kerneldata_GridBeyondMaxNodesKeepsThePreviousWorkingGrid)
{
    auto doc = parse(contour_text()
                         .kerneldata(100, 200, 1.0, 1.0, 30.0, 30.0)
                         .kerneldata(100000, 100000, 0.5, 0.5, 30.0, 30.0)
                         .end()
                         .text());
    EXPECT_FALSE(vmiBaseGrid::size_allowed(100000, 100000));
    ASSERT_NE(doc->working_grid(), nullptr);
    EXPECT_EQ(doc->working_grid()->x_size(), 100);
    EXPECT_EQ(doc->working_grid()->y_size(), 200);
    EXPECT_EQ(doc->xnum(), 100);
    EXPECT_EQ(doc->ynum(), 200);
    EXPECT_EQ(doc->xres(), 1.0);
}

TEST(vmiVelmcontur, Kerneldata_ZeroNegativeOrTinySpacingIsRefused)
{
    for (double res : {0.0, -0.5, vmiVelmcontur::min_spacing / 2}) {
        auto doc = parse(contour_text().kerneldata(10, 10, res, 0.5, 30.0, 30.0).end().text());
        ASSERT_NE(doc->working_grid(), nullptr);
        EXPECT_EQ(doc->working_grid()->x_size(), 440) << res;
        EXPECT_EQ(doc->xres(), 0.5) << res;
    }
    auto fine = parse(contour_text()
                          .kerneldata(10, 10, vmiVelmcontur::min_spacing, 0.5, 30.0, 30.0)
                          .end()
                          .text());
    EXPECT_EQ(fine->working_grid()->x_size(), 10);
}

TEST(vmiVelmcontur, Kerneldata_NegativeOrZeroCountsAndHugeMarginsAreRefused)
{
    auto negative = parse(contour_text().kerneldata(-5, 10, 0.5, 0.5, 30.0, 30.0).end().text());
    EXPECT_EQ(negative->working_grid()->x_size(), 440);
    auto zero = parse(contour_text().kerneldata(0, 10, 0.5, 0.5, 30.0, 30.0).end().text());
    EXPECT_EQ(zero->working_grid()->x_size(), 440);
    auto far = parse(contour_text()
                         .kerneldata(10, 10, 0.5, 0.5, 2 * vmiVelmcontur::max_coordinate, 30.0)
                         .end()
                         .text());
    EXPECT_EQ(far->working_grid()->x_size(), 440);
    EXPECT_EQ(far->randx(), 30.0);
}

TEST(vmiVelmcontur, BaseGridWithZeroSpacing_LeavesNoWorkingGridAndParsesOn)
{
    vmiBaseGrid* base = flat_grid(3, 3, 1.0).release();
    base->d_x() = 0.0;
    auto doc = parse(contour_text()
                         .rohlingsdaten("sole", xs, ys, {}, {}, {}, 0.0, 0.0)
                         .hcontour2("c", xs, ys)
                         .end()
                         .text(),
                     4, base);
    EXPECT_EQ(doc->working_grid(), nullptr);
    EXPECT_EQ(names(*doc), (std::vector<std::string> {"sole~4"}));
}

TEST(vmiVelmcontur, AbsurdArrayCountOnAShortLine_ReadsNoArrayAndParsesOn)
{
    auto doc = parse(contour_text()
                         .open_blank()
                         .key("name", "big")
                         .key("count", 100000000)
                         .array("xSpl", xs)
                         .array("ySpl", ys)
                         .close_blank()
                         .rohlingsdaten("sole", xs, ys, {}, {}, {}, 0.0, 0.0)
                         .end()
                         .text());
    EXPECT_GT(100000000, vmiVelmcontur::max_array_count);
    EXPECT_EQ(names(*doc), (std::vector<std::string> {"sole~4"}));
}

TEST(vmiVelmcontur, CountRaisedAfterTheArrays_BeyondMaxOutlinePointsBuildsNoOutline)
{
    auto doc = parse(contour_text()
                         .open_blank()
                         .key("name", "big")
                         .key("count", 4)
                         .array("xSpl", xs)
                         .array("ySpl", ys)
                         .key("count", vmiVelmcontur::max_outline_points + 1)
                         .close_blank()
                         .end()
                         .text());
    EXPECT_EQ(doc->no_of_objects(), 0);
}

TEST(vmiVelmcontur, OutlineLongerThanMaxOutlineLengthIsNotBuilt)
{
    const double l = vmiVelmcontur::max_outline_length;
    auto at = parse(
        contour_text().rohlingsdaten("at", {0.0, l}, {0.0, 0.0}, {}, {}, {}, 0, 0).end().text());
    EXPECT_EQ(names(*at), (std::vector<std::string> {"at~4"}));
    auto beyond = parse(contour_text()
                            .rohlingsdaten("beyond", {0.0, l + 1.0}, {0.0, 0.0}, {}, {}, {}, 0, 0)
                            .end()
                            .text());
    EXPECT_EQ(beyond->no_of_objects(), 0);
}

TEST(vmiVelmcontur, ZigzagOutlineAtTheBoundsKeepsItsApproximationSmall)
{
    // The costliest outline the bounds let through: the most points, the
    // whole length, every segment a sharp turn.
    const int n = vmiVelmcontur::max_outline_points;
    const double step = vmiVelmcontur::max_outline_length / (n - 1) * 0.99 / std::sqrt(2.0);
    std::vector<double> x, y;
    for (int i = 0; i < n; ++i) {
        x.push_back(i % 2 ? step : 0.0);
        y.push_back(i * step);
    }
    auto doc = parse(contour_text().rohlingsdaten("zigzag", x, y, {}, {}, {}, 0, 0).end().text());
    ASSERT_EQ(doc->no_of_objects(), 1);
    ASSERT_NE(doc->object(0)->spline()->approximation(), nullptr);
    EXPECT_GT(doc->object(0)->spline()->approximation()->size(), 2 * n);
    EXPECT_LT(doc->object(0)->spline()->approximation()->size(), 100000);
}

TEST(vmiVelmcontur, OutlineWithAnInfiniteCoordinateIsNotBuilt)
{
    auto doc = parse(contour_text()
                         .open_blank()
                         .key("name", "inf")
                         .key("count", 2)
                         .raw("0101 xSpl=1.0e400,2.0")
                         .array("ySpl", {1.0, 2.0})
                         .close_blank()
                         .rohlingsdaten("sole", xs, ys, {}, {}, {}, 0.0, 0.0)
                         .end()
                         .text());
    EXPECT_EQ(names(*doc), (std::vector<std::string> {"sole~4"}));
}

TEST(vmiVelmcontur, LinesOfThousandsOfCharactersAreReadOrPassedOver)
{
    std::string garbage(20000, 'x');
    std::string digits;
    for (int i = 0; i < 3000; ++i)
        digits += "1.5,";
    auto doc = parse(contour_text()
                         .raw("0400 " + garbage)
                         .open_blank()
                         .raw("0101 unknown=" + garbage)
                         .raw("0101 height1=" + digits)
                         .key("name", "sole")
                         .key("count", 4)
                         .array("xSpl", xs)
                         .array("ySpl", ys)
                         .close_blank()
                         .raw("0300 " + garbage)
                         .end()
                         .text());
    EXPECT_EQ(names(*doc), (std::vector<std::string> {"sole~4"}));
    EXPECT_EQ(doc->height1(), 1.5);
}

TEST(vmiVelmcontur, LineThatIsNoInstructionEndsTheDocument)
{
    auto doc = parse(contour_text()
                         .raw(std::string(20000, 'x'))
                         .rohlingsdaten("sole", xs, ys, {}, {}, {}, 0.0, 0.0)
                         .end()
                         .text());
    EXPECT_EQ(doc->no_of_objects(), 0);
}

TEST(vmiVelmcontur, FileWithoutFinalLineFeedEnds)
{
    // Cut inside a section, on the end line, and inside a text value.
    contour_text t = contour_text().rohlingsdaten("sole", xs, ys, {}, {}, {}, 0.0, 0.0);
    EXPECT_EQ(parse(t.text(false, false))->no_of_objects(), 1);
    contour_text ended = t;
    ended.end();
    EXPECT_EQ(parse(ended.text(false, false))->no_of_objects(), 1);
    auto cut = parse(contour_text().open_blank().key("name", "sole").text(false, false));
    EXPECT_EQ(cut->no_of_objects(), 0);
    auto digit = parse(contour_text().open_blank().key("count", 7).text(false, false));
    EXPECT_EQ(digit->no_of_objects(), 0);
}

TEST(vmiVelmcontur, CrLfLineEndsParseAlike)
{
    auto doc = parse(
        contour_text().rohlingsdaten("sole", xs, ys, {}, {}, {}, 0.0, 0.0).end().text(true));
    EXPECT_EQ(names(*doc), (std::vector<std::string> {"sole~4"}));
}

TEST(vmiVelmcontur, IdentifierIsWrittenInDecimal)
{
    auto doc
        = parse(contour_text().rohlingsdaten("m", xs, ys, {}, {}, {}, 0.0, 0.0).end().text(), -12);
    EXPECT_EQ(names(*doc), (std::vector<std::string> {"m~-12"}));
}
