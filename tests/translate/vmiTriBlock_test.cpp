// Height grids handed to the host as triangle blocks.
#include "translate/vmiTriBlock.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <vector>

#include "archive/vmiObjGrid.h"
#include "curves/m03DPoint.h"
#include "grid/vmiBaseGrid.h"
#include "host/qorabsContext.h"
#include "tests/translate/RecordingSink.h"
#include "translate/vmiTriblockTranslator.h"

namespace {

constexpr double scan_missing = -1000000000.0 * 0.1;  // how the scan import stores a missing height

// An nx x ny grid record, node (i, j) at (i, 10 j, z[j * nx + i]).
std::unique_ptr<vmiObjGrid> grid_record(int nx, int ny, const std::vector<double>& z)
{
    auto* pts = new m03DPoint[static_cast<size_t>(nx * ny)];
    for (int j = 0; j < ny; j++)
        for (int i = 0; i < nx; i++)
            pts[j * nx + i] = m03DPoint(i, 10.0 * j, z[static_cast<size_t>(j * nx + i)]);
    auto r = std::make_unique<vmiObjGrid>(utString("GRID"), pts, nx, ny, 1.0, 10.0);
    r->level(10);
    r->layer_name(utString("SCAN_(LEFT)_x"));
    return r;
}

SinkEvent walk(const vmiTriBlock& w)
{
    qorabsContext context;
    qorabsTranslatorcoPrf t = w.make_translator(context);
    RecordingSink sink;
    EXPECT_TRUE(t);
    if (t)
        t->process(sink, nullptr);
    EXPECT_EQ(sink.events.size(), 1u);
    return sink.events.empty() ? SinkEvent() : sink.events[0];
}

}  // namespace

TEST(vmiTriBlock, Convert_AllHeightsMissingGivesStatus1)
{
    auto r = grid_record(3, 3, std::vector<double>(9, scan_missing));
    giTriBlock tb;
    EXPECT_EQ(vmiTriBlock(r.get()).convert(tb), 0);
    EXPECT_EQ(tb.num_vertices(), 0);
    SinkEvent e = walk(vmiTriBlock(r.get()));
    EXPECT_EQ(e.kind, "triblock");
    EXPECT_EQ(e.status, 1);
    EXPECT_TRUE(e.points.empty());
    EXPECT_TRUE(e.triangles.empty());
}

TEST(vmiTriBlock, Convert_TwoByTwoGridGivesFourVerticesAndTriangles012And132)
{
    auto r = grid_record(2, 2, {1.0, 2.0, 3.0, 4.0});
    SinkEvent e = walk(vmiTriBlock(r.get()));
    EXPECT_EQ(e.status, 0);
    ASSERT_EQ(e.points.size(), 4u);
    EXPECT_EQ(e.points[0], giPoint3(0.0, 0.0, 1.0));
    EXPECT_EQ(e.points[1], giPoint3(1.0, 0.0, 2.0));
    EXPECT_EQ(e.points[2], giPoint3(0.0, 10.0, 3.0));
    EXPECT_EQ(e.points[3], giPoint3(1.0, 10.0, 4.0));
    ASSERT_EQ(e.triangles.size(), 2u);
    EXPECT_EQ(e.triangles[0], giTriangle(0, 1, 2));
    EXPECT_EQ(e.triangles[1], giTriangle(1, 3, 2));
}

TEST(vmiTriBlock, Convert_FirstNodePresentSecondMissingMakesNothingForTheCell)
{
    auto r = grid_record(2, 2, {1.0, scan_missing, 3.0, 4.0});
    giTriBlock tb;
    EXPECT_EQ(vmiTriBlock(r.get()).convert(tb), 0);
    EXPECT_EQ(tb.num_vertices(), 3);
    EXPECT_EQ(tb.num_triangles(), 0);
}

TEST(vmiTriBlock, Convert_FirstNodeMissingStillMakesTriangleBDC)
{
    auto r = grid_record(2, 2, {scan_missing, 2.0, 3.0, 4.0});
    giTriBlock tb;
    EXPECT_EQ(vmiTriBlock(r.get()).convert(tb), 1);
    ASSERT_EQ(tb.num_triangles(), 1);
    // b, c, d are vertices 0, 1, 2.
    EXPECT_EQ(tb.triangles()->get(0), giTriangle(0, 2, 1));
}

TEST(vmiTriBlock, Convert_ThirdNodeMissingMakesNoTriangle)
{
    auto r = grid_record(2, 2, {1.0, 2.0, scan_missing, 4.0});
    giTriBlock tb;
    EXPECT_EQ(vmiTriBlock(r.get()).convert(tb), 0);
    EXPECT_EQ(tb.num_vertices(), 3);
    EXPECT_EQ(tb.num_triangles(), 0);
}

TEST(vmiTriBlock, Convert_HeightAtValidThresholdIsMissingAndTheNextAboveIsPresent)
{
    const double just_above = std::nextafter(vmiBaseGrid::valid_z, 0.0);
    auto r = grid_record(2, 2, {vmiBaseGrid::valid_z, just_above, 0.0, 0.0});
    giTriBlock tb;
    vmiTriBlock(r.get()).convert(tb);
    ASSERT_EQ(tb.num_vertices(), 3);
    EXPECT_EQ(tb.vertices()->get(0).z(), just_above);
}

TEST(vmiTriBlock, Convert_EmptyGridNodeIsMissing)
{
    auto r = grid_record(2, 2, {vmiBaseGrid::empty_z, 1.0, 1.0, 1.0});
    giTriBlock tb;
    vmiTriBlock(r.get()).convert(tb);
    EXPECT_EQ(tb.num_vertices(), 3);
}

TEST(vmiTriBlock, Convert_SingleRowHasNoCellsAndGivesZero)
{
    auto r = grid_record(4, 1, {1.0, 2.0, 3.0, 4.0});
    giTriBlock tb;
    EXPECT_EQ(vmiTriBlock(r.get()).convert(tb), 0);
    EXPECT_EQ(tb.num_triangles(), 0);
}

TEST(vmiTriBlock, Convert_NullRecordGivesZero)
{
    giTriBlock tb;
    EXPECT_EQ(vmiTriBlock(nullptr).convert(tb), 0);
    SinkEvent e = walk(vmiTriBlock(nullptr));
    EXPECT_EQ(e.status, 1);
}

TEST(vmiTriBlock, Convert_RecordWithoutGridGivesZero)
{
    vmiObjGrid r(utString("G"), static_cast<vmiBaseGrid*>(nullptr));
    giTriBlock tb;
    EXPECT_EQ(vmiTriBlock(&r).convert(tb), 0);
}

TEST(vmiTriBlock, Convert_EmptiesFeaturesItFindsInThePool)
{
    auto r = grid_record(2, 2, {1.0, 2.0, 3.0, 4.0});
    giTriBlock tb;
    tb.features().ensure<giNodeXYZ>()->add(giPoint3(9, 9, 9));
    tb.features().ensure<giTriArr>()->add(giTriangle(7, 7, 7));
    vmiTriBlock(r.get()).convert(tb);
    vmiTriBlock(r.get()).convert(tb);
    EXPECT_EQ(tb.num_vertices(), 4);
    EXPECT_EQ(tb.num_triangles(), 2);
    EXPECT_EQ(tb.features().size(), 2);
}

TEST(vmiTriBlock, Convert_ThreeByThreeGridGivesEightTrianglesRowByRow)
{
    auto r = grid_record(3, 3, std::vector<double>(9, 0.5));
    giTriBlock tb;
    EXPECT_EQ(vmiTriBlock(r.get()).convert(tb), 1);
    ASSERT_EQ(tb.num_triangles(), 8);
    EXPECT_EQ(tb.triangles()->get(2), giTriangle(1, 2, 4));
    EXPECT_EQ(tb.triangles()->get(7), giTriangle(5, 8, 7));
}

TEST(vmiTriBlock, SetAttributes_KindNameLayerThenColourInThatOrder)
{
    auto r = grid_record(2, 2, {1.0, 2.0, 3.0, 4.0});
    r->colour(3);
    qorabsAttributeSet set;
    vmiTriBlock(r.get()).set_attributes(set);
    ASSERT_EQ(set.size(), 4);
    EXPECT_EQ(set.id(0), TRIANGLEBLOCK);
    EXPECT_EQ(set.id(1), NAME);
    EXPECT_EQ(set.id(2), LAYER);
    EXPECT_EQ(set.id(3), COLOUR);
    EXPECT_EQ(set.name()->name(), utString("GRID"));
    EXPECT_EQ(set.name()->flags(), 0);
    EXPECT_EQ(set.layer()->level(), 10);
    EXPECT_EQ(set.layer()->name(), utString("SCAN_(LEFT)_x"));
    EXPECT_EQ(set.colour()->index(), 3);
}

TEST(vmiTriBlock, SetAttributes_ColourZeroIsNotHandedOver)
{
    auto r = grid_record(2, 2, {1.0, 2.0, 3.0, 4.0});
    qorabsAttributeSet set;
    vmiTriBlock(r.get()).set_attributes(set);
    EXPECT_EQ(set.size(), 3);
    EXPECT_FALSE(set.has(COLOUR));
}

TEST(vmiTriBlock, SetAttributes_WithoutRecordOnlyTheKind)
{
    qorabsAttributeSet set;
    vmiTriBlock(nullptr).set_attributes(set);
    ASSERT_EQ(set.size(), 1);
    EXPECT_EQ(set.id(0), TRIANGLEBLOCK);
}

TEST(vmiTriBlock, Translator_KeepsItsOwnCopyOfTheWrapper)
{
    auto r = grid_record(2, 2, {1.0, 2.0, 3.0, 4.0});
    qorabsContext context;
    qorabsTranslatorcoPrf t;
    {
        vmiTriBlock w(r.get());
        t = w.make_translator(context);
    }
    auto* tt = dynamic_cast<vmiTriblockTranslator*>(t.get());
    ASSERT_NE(tt, nullptr);
    EXPECT_EQ(tt->wrapper().record(), r.get());
    EXPECT_EQ(tt->context(), &context);
    giTriBlock tb;
    EXPECT_EQ(tt->create_triblock(tb), qorabsTranslationStatus(0));
}

TEST(vmiTriBlock, Convert_SizesWrittenBeyondTheGridsNodesReadAsMissing)
{
    auto r = grid_record(2, 2, {1.0, 2.0, 3.0, 4.0});
    // The grid hands its sizes out by reference; whatever is written there,
    // the block reads no node the grid does not hold.
    r->grid()->x_size() = 3;
    r->grid()->y_size() = 3;
    giTriBlock tb;
    vmiTriBlock(r.get()).convert(tb);
    EXPECT_LE(tb.num_vertices(), 4);
}
