// Scan images handed to the host as coloured point clouds.
#include "translate/vmiPointsCloud.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "archive/vmiObjCloud.h"
#include "curves/m03DPoint.h"
#include "host/qorabsContext.h"
#include "tests/translate/RecordingSink.h"
#include "translate/vmiPointsCloudTranslator.h"

namespace {

std::unique_ptr<vmiObjCloud> cloud(const std::vector<int>& colours)
{
    int n = static_cast<int>(colours.size());
    auto* p = new m03DPoint[static_cast<size_t>(n)];
    auto* c = new int[static_cast<size_t>(n)];
    for (int k = 0; k < n; k++) {
        p[k] = m03DPoint(k, -k, 0.5 * k);
        c[k] = colours[static_cast<size_t>(k)];
    }
    auto r = std::make_unique<vmiObjCloud>(utString("IMAGE_(LEFT)_x"), p, c, n);
    r->level(10);
    r->layer_name(utString("SCAN_(LEFT)_x"));
    return r;
}

}  // namespace

TEST(vmiPointsCloud, SetAttributes_NeverColourEvenWithANonZeroColour)
{
    auto r = cloud({0x123456});
    r->colour(5);
    qorabsAttributeSet set;
    vmiPointsCloud(r.get()).set_attributes(set);
    EXPECT_EQ(set.size(), 3);
    EXPECT_EQ(set.id(0), POINTCLOUD);
    EXPECT_EQ(set.id(1), NAME);
    EXPECT_EQ(set.id(2), LAYER);
    EXPECT_FALSE(set.has(COLOUR));
}

TEST(vmiPointsCloud, Walk_ColoursTravelInThePointData)
{
    auto r = cloud({0x123456, 0xFF00FF, 0});
    r->colour(5);
    qorabsContext context;
    RecordingSink sink;
    qorabsTranslatorcoPrf t = vmiPointsCloud(r.get()).make_translator(context);
    EXPECT_EQ(t->process(sink, nullptr), qorabsTranslationStatus(0));
    ASSERT_EQ(sink.events.size(), 1u);
    const SinkEvent& e = sink.events[0];
    EXPECT_EQ(e.kind, "pointcloud");
    EXPECT_FALSE(e.has_colour);
    EXPECT_EQ(e.name, "IMAGE_(LEFT)_x");
    EXPECT_EQ(e.layer_name, "SCAN_(LEFT)_x");
    ASSERT_EQ(e.points.size(), 3u);
    EXPECT_EQ(e.points[2], giPoint3(2.0, -2.0, 1.0));
    ASSERT_EQ(e.colours.size(), 3u);
    EXPECT_EQ(e.colours[0], giColour(0x12, 0x34, 0x56, 0));
    EXPECT_EQ(e.colours[1], giColour(0xFF, 0x00, 0xFF, 0));
    EXPECT_EQ(e.colours[2], giColour(0, 0, 0, 0));
}

TEST(vmiPointsCloud, Convert_KeepsTheLowByteOfEachShiftedComponent)
{
    // Bits above 23 and a negative packed value do not leak into red.
    auto r = cloud({static_cast<int>(0xAB123456u), -1});
    annPointCloudData d;
    EXPECT_EQ(vmiPointsCloud(r.get()).convert(d), 1);
    EXPECT_EQ(d.colours()->get(0), giColour(0x12, 0x34, 0x56, 0));
    EXPECT_EQ(d.colours()->get(1), giColour(255, 255, 255, 0));
}

TEST(vmiPointsCloud, Convert_WithoutRecordGivesEmptyFeaturesAndOne)
{
    annPointCloudData d;
    EXPECT_EQ(vmiPointsCloud(nullptr).convert(d), 1);
    ASSERT_TRUE(d.points());
    ASSERT_TRUE(d.colours());
    EXPECT_EQ(d.num_points(), 0);
}

TEST(vmiPointsCloud, Convert_MissingColourArrayGivesBlack)
{
    auto* p = new m03DPoint[2];
    vmiObjCloud r(utString("C"), p, nullptr, 2);
    annPointCloudData d;
    EXPECT_EQ(vmiPointsCloud(&r).convert(d), 1);
    ASSERT_EQ(d.colours()->size(), 2);
    EXPECT_EQ(d.colours()->get(1), giColour(0, 0, 0, 0));
}

TEST(vmiPointsCloud, Data_HandsTheCallerNewDataToRelease)
{
    auto r = cloud({1, 2});
    qorabsContext context;
    vmiPointsCloudTranslator t(context, vmiPointsCloud(r.get()));
    int release = 0;
    std::unique_ptr<annPointCloudData> d(t.data(release));
    EXPECT_EQ(release, 1);
    ASSERT_TRUE(d);
    EXPECT_EQ(d->num_points(), 2);
    std::unique_ptr<annPointCloudData> second(t.data(release));
    EXPECT_NE(second.get(), d.get());
}
