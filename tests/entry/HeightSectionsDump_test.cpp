// Every height section of an insole design, imported from an archive by
// `velmora dump` as a host would, checked on the finished insole it hands
// over. Each design stands on a flat scan of 41 x 41 nodes at 1 mm and 5 mm
// high; its working grid (100 x 100 nodes at 1 mm, a 30 mm margin) holds the
// scan at nodes 30 ... 70, and its insole outline is the square 35 ... 65
// (the torsion's reaches 68 on the right). Heights are checked at nodes well
// inside the outline, away from the walls the finished model adds.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "tests/support/commandRun.h"
#include "tests/support/contourText.h"
#include "tests/support/vlmWriter.h"

using nlohmann::json;
using vlm::contour_text;

namespace {

constexpr double base_z = 5.0;

// The scan: every node at base_z, one node 30 high where a test asks for a
// bump (scan node (20, 20), working node (50, 50)).
std::string flat_scan(bool bump)
{
    vlm::height_grid g;
    g.nx = g.ny = 41;
    g.codes.assign(41 * 41, static_cast<std::uint16_t>(base_z));
    if (bump)
        g.codes[20 * 41 + 20] = 30;
    return vlm::chunk_chain(vlm::grid_entry(g), 4000);
}

// A design: the working grid, the insole outline, then the sections.
contour_text design(double outline_right = 65.0)
{
    std::vector<double> x, y;
    vlm::rectangle_outline(35, 35, outline_right, 65, x, y);
    contour_text t("0001 design");
    t.kerneldata(100, 100, 1.0, 1.0, 30.0, 30.0);
    t.hcontour2("insole", x, y);
    return t;
}

contour_text& flat_pad(contour_text& t)
{
    std::vector<double> x, y;
    vlm::rectangle_outline(40, 40, 60, 60, x, y);
    return t.open_height("HPelotte")
        .key("typus", 0)
        .key("nanz", static_cast<int>(x.size()))
        .key("glaett", 0)
        .key("awert", 3.0)
        .key("xm", 50.0)
        .key("ym", 50.0)
        .array("x", x)
        .array("y", y)
        .close_height();
}

contour_text& matrix_pad(contour_text& t, double x, double y)
{
    return t.open_height("HPelotteS")
        .key("name", "met")
        .key("flag", 0)
        .key("xm", 4)
        .key("ym", 4)
        .key("xre", 1.0)
        .key("yre", 1.0)
        .array("matt", {1, 0, 0, x, 0, 1, 0, y, 0, 0, 1, 0, 0, 0, 0, 1})
        .array("mata", std::vector<double>(16, 2.0))
        .close_height();
}

contour_text& arch_line(contour_text& t, double x, double y0, double y1)
{
    std::vector<double> px, pz;
    for (int k = 0; k < 3; ++k)
        for (double v : {0.0, 1.0, 2.0, 3.0, 4.0}) {
            px.push_back(v);
            pz.push_back(v < 3.5 ? 3.0 : 0.0);
        }
    return t.open_height("HPlinie")
        .key("flag", 0)
        .key("nanz", 3)
        .array("x", {x, x, x})
        .array("y", {y0, (y0 + y1) / 2, y1})
        .array("xm", px)
        .array("ym", pz)
        .close_height();
}

contour_text& point_support(contour_text& t, double x, double y)
{
    return t.open_height("HPunkt")
        .key("flag", 0)
        .key("alpha", 0.0)
        .key("x", x)
        .key("y", y)
        .array("xm1", {0, 1.5, 3, 4.5, 6})
        .array("ym1", {4, 4, 2, 0, 0})
        .array("xm2", {0, 1.5, 3, 4.5, 6})
        .array("ym2", {1, 1, 1, 1, 1})
        .close_height();
}

// A vertical torsion axis at x = 50, the middle line at y = 50, both side
// lines open.
contour_text& torsion(contour_text& t)
{
    return t.open_height("HTorsion")
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
}

contour_text& spring(contour_text& t)
{
    return t.open_height("HSpreng").key("y1", 40.0).key("y2", 60.0).key("z2", 2.0).close_height();
}

contour_text& bead(contour_text& t)
{
    return t.open_height("HFFootMod")
        .array("pleft", {30, 62})
        .array("pright", {70, 62})
        .array("pinner", {50, 62})
        .key("height", 3.0)
        .key("minz", 1.0)
        .close_height();
}

// The finished insole's heights by node position, from `velmora dump`.
class FinishedInsole {
public:
    explicit FinishedInsole(contour_text t, bool bump = false)
    {
        vlm::archive a;
        a.add("VLM00005.dat", flat_scan(bump));
        a.add("VLM00006.dat", vlm::chunk_chain(t.end().text(), 1000));
        a.add("00000.vlk", vlm::catalogue()
                               .header("Velmora")
                               .separator()
                               .level1("Miller", "Anna")
                               .level2("2024-03-01", "Visit")
                               .level3(1, 1, 0, 101, "20240301", "scan", "", 5)
                               .level3(3, 2, 1, 1, "20240301", "model", "", 6)
                               .text());
        const std::string path = vlm::temp_path("height_sections.vlm");
        EXPECT_TRUE(a.write(path));
        vlm::command_result r = vlm::run_command(
            std::string(VELMORA_BINARY_DIR) + "/bin/velmora", {"dump", "--compact", path});
        std::remove(path.c_str());
        EXPECT_EQ(r.status, 0) << r.err;
        collect(json::parse(r.out, nullptr, false)["root"]);
    }

    bool found() const { return found_; }
    double z(int i, int j) const
    {
        auto it = heights_.find({i, j});
        return it == heights_.end() ? std::nan("") : it->second;
    }

private:
    void collect(const json& item)
    {
        if (!item.is_object())
            return;
        if (item.value("type", "") == "triblock"
            && item.value("name", "").rfind("FINISH_MODEL", 0) == 0) {
            found_ = true;
            for (const json& v : item["vertices"])
                heights_[{static_cast<int>(v[0].get<double>()), static_cast<int>(v[1].get<double>())}]
                    = v[2].get<double>();
        }
        if (item.contains("children"))
            for (const json& child : item["children"])
                collect(child);
    }

    bool found_ = false;
    std::map<std::pair<int, int>, double> heights_;
};

}  // namespace

TEST(HeightSectionsDump, WithoutSectionsTheInsoleKeepsTheScanHeights)
{
    FinishedInsole insole(design());
    ASSERT_TRUE(insole.found());
    EXPECT_EQ(insole.z(50, 50), base_z);
    EXPECT_EQ(insole.z(40, 60), base_z);
}

TEST(HeightSectionsDump, FlatPadRisesByExactlyItsHeightInsideItsOutline)
{
    contour_text t = design();
    FinishedInsole insole(flat_pad(t));
    for (int i : {43, 50, 57})
        for (int j : {43, 50, 57})
            EXPECT_EQ(insole.z(i, j), base_z + 3.0) << i << "," << j;
    EXPECT_EQ(insole.z(37, 50), base_z);
}

TEST(HeightSectionsDump, MatrixPadIsDroppedOnTopWhereItIsPlaced)
{
    contour_text t = design();
    FinishedInsole insole(matrix_pad(t, 50, 50));
    EXPECT_EQ(insole.z(50, 50), base_z + 2.0);
    EXPECT_EQ(insole.z(47, 52), base_z + 2.0);
    EXPECT_EQ(insole.z(45, 50), base_z);
}

TEST(HeightSectionsDump, ArchLineRaisesTheNodesAlongIt)
{
    contour_text t = design();
    FinishedInsole insole(arch_line(t, 50, 40, 60));
    EXPECT_NEAR(insole.z(50, 50), base_z + 3.0, 1e-12);
    EXPECT_NEAR(insole.z(50, 45), base_z + 3.0, 1e-12);
    EXPECT_EQ(insole.z(40, 50), base_z);
}

TEST(HeightSectionsDump, PointSupportTakesItsProfilesStartHeightAtItsCentre)
{
    contour_text t = design();
    FinishedInsole insole(point_support(t, 50, 50));
    EXPECT_EQ(insole.z(50, 50), base_z + 4.0);
    EXPECT_LT(insole.z(54, 50), base_z + 4.0);
    EXPECT_GT(insole.z(54, 50), base_z);
    EXPECT_EQ(insole.z(42, 50), base_z);
}

TEST(HeightSectionsDump, TorsionAddsNothingAtItsAxisAndGrowsTowardsTheContour)
{
    contour_text t = design(68.0);
    FinishedInsole insole(torsion(t));
    // The contour crosses the middle line at about x = 35, 15 mm left of the
    // axis: a node rises by its distance from the axis times 3 / 15.
    for (int i : {40, 44, 48})
        for (int j : {42, 50, 58})
            EXPECT_NEAR(insole.z(i, j), base_z + (50.0 - i) * 3.0 / 15.0, 1e-4) << i << "," << j;
    EXPECT_EQ(insole.z(50, 50), base_z);
    EXPECT_EQ(insole.z(60, 50), base_z);
}

TEST(HeightSectionsDump, SpringBandAddsMinusZ2TheBlendAndHalfAMillimetre)
{
    contour_text t = design();
    FinishedInsole insole(spring(t));
    const double f = (45.0 - 40.0) / (60.0 - 40.0);
    EXPECT_EQ(insole.z(50, 38), base_z - 2.0);
    EXPECT_EQ(insole.z(50, 45), base_z + (1 - f) * -2.0 + f * 0.5);
    EXPECT_EQ(insole.z(50, 62), base_z + 0.5);
}

TEST(HeightSectionsDump, LengthwiseSpringLiftsItsStationRow)
{
    contour_text t = design();
    t.open_height("HSprenglinie").key("selcount", 1).array("hsel", {4.0});
    t.int_array("hpos", {15}).close_height();
    FinishedInsole insole(t);
    // The station stands 15 rows above the outline's first row (34 or 35).
    EXPECT_NEAR(insole.z(50, 50), base_z + 4.0, 0.1);
    EXPECT_LT(insole.z(50, 38), insole.z(50, 50));
}

TEST(HeightSectionsDump, FootModelBeadShiftsBelowAndFlattensBeyond)
{
    contour_text t = design();
    FinishedInsole insole(bead(t));
    EXPECT_EQ(insole.z(50, 50), base_z + 1.0 - 3.0);
    EXPECT_EQ(insole.z(50, 63), 1.0);
}

TEST(HeightSectionsDump, SmoothingTakesTheMeanOfFiveByFiveNodes)
{
    contour_text t = design();
    t.open_height("HGlaett").key("gfactor", 3).close_height();
    FinishedInsole insole(t, true);
    EXPECT_EQ(insole.z(50, 50), (24 * base_z + 30.0) / 25);
    EXPECT_EQ(insole.z(53, 50), base_z);
}

TEST(HeightSectionsDump, GlobalPlacementWithUseMinZPutsTheLowestNodeAtMinZ)
{
    contour_text t = design();
    t.open_height("HGloba")
        .array("mat", {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1})
        .key("minZ", 2.0)
        .key("useMinZ", 1)
        .close_height();
    FinishedInsole insole(t);
    EXPECT_EQ(insole.z(50, 50), base_z + (2.0 - base_z));
}

TEST(HeightSectionsDump, DeductionLowersTheInsole)
{
    contour_text t = design();
    t.open_height("HAbzug").key("abzug", 1.5).close_height();
    FinishedInsole insole(t);
    EXPECT_EQ(insole.z(50, 50), base_z - 1.5);
}

// Every section in one design, each local one in its own place: the pad
// over the centre, the matrix pad, the point and the line apart from it; then
// the spring band, the bead, the deduction and the placement act on all.
TEST(HeightSectionsDump, OneDesignUsingEverySection)
{
    contour_text t = design(68.0);
    flat_pad(t);
    matrix_pad(t, 62, 38);
    point_support(t, 38, 38);
    arch_line(t, 62, 42, 56);
    torsion(t);
    spring(t);
    t.open_height("HSprenglinie").key("selcount", 1).array("hsel", {0.0});
    t.int_array("hpos", {15}).close_height();
    bead(t);
    t.open_height("HGlaett").key("gfactor", 1).close_height();
    t.open_height("HAbzug").key("abzug", 1.5).close_height();
    t.open_height("HGloba")
        .array("mat", {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0.5, 0, 0, 0, 1})
        .close_height();
    FinishedInsole insole(t);
    // The spring at row j: -2 before the band (rows below 40), the blend in it.
    auto spring_at = [](int j) {
        if (j < 40)
            return -2.0;
        const double f = (j - 40.0) / 20.0;
        return (1 - f) * -2.0 + f * 0.5;
    };
    // Below the bead (row 62), it shifts by minz - height = -2; then the
    // deduction and the placement's lift.
    auto finish = [&](double z, int j) { return z + spring_at(j) + 1.0 - 3.0 - 1.5 + 0.5; };
    // The lengthwise spring is 0 at its station and at the grid's ends, and
    // stays within a small fraction of a millimetre elsewhere.
    const double tolerance = 0.05;
    EXPECT_NEAR(insole.z(50, 50), finish(base_z + 3.0, 50), tolerance);
    EXPECT_NEAR(insole.z(44, 50), finish(base_z + 3.0 + 6.0 * 3.0 / 15.0, 50), tolerance);
    EXPECT_NEAR(insole.z(62, 38), finish(base_z + 2.0, 38), tolerance);
    EXPECT_NEAR(insole.z(38, 38), finish(base_z + 4.0 + 12.0 * 3.0 / 15.0, 38), tolerance);
    EXPECT_NEAR(insole.z(62, 49), finish(base_z + 3.0, 49), tolerance);
    // Beyond the bead every node is at minz, lifted by the placement.
    EXPECT_NEAR(insole.z(50, 63), 1.0 - 1.5 + 0.5, 1e-12);
}
