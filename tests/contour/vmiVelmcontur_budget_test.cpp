// The work budget of a design's height sections: every section is charged
// the working grid's nodes, a profiled pad each curve evaluation of its
// searches, and a design that passes the budget is not finished.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "archive/vmiObject.h"
#include "contour/vmiVelmcontur.h"
#include "grid/vmiBaseGrid.h"
#include "grid/vmiWorkBudget.h"
#include "tests/support/contourText.h"
#include "tests/support/testGrid.h"

namespace {

using vlm::contour_text;

std::unique_ptr<vmiVelmcontur> parse(const std::string& text, long long limit = vmiWorkBudget::max_design_work)
{
    std::vector<char> bytes(text.begin(), text.end());
    return std::make_unique<vmiVelmcontur>(bytes.data(), static_cast<int>(bytes.size()), 4,
                                           flat_grid(41, 41, 5.0).release(), limit);
}

bool has_finish_model(vmiVelmcontur& doc)
{
    for (int i = 0; i < doc.no_of_objects(); ++i)
        if (doc.object(i)->name().str().rfind("FINISH_MODEL", 0) == 0)
            return true;
    return false;
}

// A 60 x 60 working grid at 1 mm, the insole outline round most of it.
contour_text& grid_and_outline(contour_text& t)
{
    std::vector<double> x, y;
    vlm::rectangle_outline(5, 5, 55, 55, x, y);
    return t.kerneldata(60, 60, 1.0, 1.0, 0.0, 0.0).hcontour2("insole", x, y);
}

// A pad over 20 x 20 mm whose profile falls off towards its outline.
contour_text& profiled_pad(contour_text& t)
{
    std::vector<double> x, y;
    vlm::rectangle_outline(20, 20, 40, 40, x, y);
    return t.open_height("HPelotte")
        .key("name", "pad")
        .key("typus", 0)
        .key("nanz", static_cast<int>(x.size()))
        .key("glaett", 0)
        .key("awert", 3.0)
        .key("xm", 30.0)
        .key("ym", 30.0)
        .array("x", x)
        .array("y", y)
        .array("xb", std::vector<double>(x.size(), 0.3))
        .array("yb", std::vector<double>(x.size(), 0.6))
        .close_height();
}

contour_text& lowering(contour_text& t)
{
    return t.open_height("HAbzug").key("abzug", 1.0).close_height();
}


}  // namespace

TEST(vmiVelmcontur, Budget_EachHeightSectionIsChargedTheWorkingGridsNodes)
{
    contour_text one, two;
    auto a = parse(lowering(one).end().text());
    auto b = parse(lowering(lowering(two)).end().text());
    ASSERT_NE(a->working_grid(), nullptr);
    const long long nodes = static_cast<long long>(a->working_grid()->x_size()) * a->working_grid()->y_size();
    EXPECT_GT(nodes, 0);
    EXPECT_EQ(b->work().used() - a->work().used(), nodes);
}

TEST(vmiVelmcontur, Budget_AProfiledPadIsChargedItsCurveEvaluations)
{
    contour_text plain, padded;
    auto without = parse(grid_and_outline(plain).end().text());
    auto with = parse(profiled_pad(grid_and_outline(padded)).end().text());
    const long long pad = with->work().used() - without->work().used();
    // The pad's section charge is the grid's 3600 nodes; its 19 x 19 inside
    // nodes take at least one evaluation each on top.
    EXPECT_GT(pad, 3600 + 19 * 19 * vmiWorkBudget::evaluation_units);
    EXPECT_TRUE(has_finish_model(*with));
}

TEST(vmiVelmcontur, Budget_ExactlyAtTheLimitBuildsTheDesignOnePastDoesNot)
{
    contour_text t;
    const std::string text = profiled_pad(grid_and_outline(t)).end().text();
    auto full = parse(text);
    const long long used = full->work().used();
    ASSERT_FALSE(full->over_budget());
    ASSERT_TRUE(has_finish_model(*full));

    auto at = parse(text, used);
    EXPECT_FALSE(at->over_budget());
    EXPECT_EQ(at->work().used(), used);
    EXPECT_TRUE(has_finish_model(*at));

    auto short_by_one = parse(text, used - 1);
    EXPECT_TRUE(short_by_one->over_budget());
    EXPECT_FALSE(has_finish_model(*short_by_one));
}

TEST(vmiVelmcontur, Budget_OnceSpentTheSectionsLeftArePassedOver)
{
    contour_text one, three;
    auto first = parse(lowering(one).end().text());
    const std::string text = lowering(lowering(lowering(three))).end().text();
    auto cut = parse(text, first->work().used());
    EXPECT_TRUE(cut->over_budget());
    // Only the first lowering ran: the grid is one unit down, not three.
    auto reference = parse(one.text());
    ASSERT_NE(cut->working_grid(), nullptr);
    EXPECT_EQ(all_z(*cut->working_grid()), all_z(*reference->working_grid()));
    int lowerings = 0;
    for (int i = 0; i < cut->sections().size(); ++i)
        lowerings += cut->sections()[i].str() == "HAbzug";
    EXPECT_EQ(lowerings, 1);
}

TEST(vmiVelmcontur, Budget_EveryNewWorkingGridIsCharged)
{
    contour_text once, twice;
    auto a = parse(once.kerneldata(100, 50, 1.0, 1.0, 0.0, 0.0).end().text());
    auto b = parse(twice.kerneldata(100, 50, 1.0, 1.0, 0.0, 0.0).kerneldata(100, 50, 1.0, 1.0, 0.0, 0.0).end().text());
    EXPECT_EQ(b->work().used() - a->work().used(), 100 * 50);
    // A grid the budget cannot take is not made: the document keeps the one
    // it has.
    auto refused = parse(twice.text(), a->work().used());
    EXPECT_TRUE(refused->over_budget());
}
