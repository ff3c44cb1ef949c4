// DumpSink: the tree of items a host's walk delivers, nested as the walk
// begins and ends groups.
#include "cli/dump/DumpSink.h"

#include <gtest/gtest.h>

TEST(DumpSink, NestsMembersInOrderAndIgnoresAnUnmatchedEnd)
{
    DumpSink sink;
    qorabsAttributeSet none;
    sink.end_group();
    sink.begin_group(none, utString("a"), giXform3());
    sink.begin_group(none, utString("b"), giXform3());
    sink.end_group();
    sink.curve(none, utString("c"), qorabsTranslationStatus(1), nullptr);
    sink.end_group();
    sink.end_group();
    sink.begin_group(none, utString("d"), giXform3());
    sink.end_group();
    ASSERT_EQ(sink.top().size(), 2u);
    const DumpItem& a = *sink.top()[0];
    ASSERT_EQ(a.children.size(), 2u);
    EXPECT_EQ(a.children[0]->mangled, "b");
    EXPECT_EQ(a.children[1]->mangled, "c");
    EXPECT_EQ(sink.top()[1]->mangled, "d");
}

TEST(DumpSink, SummaryKeepsTheDigestsOfTheArraysInsteadOfACopy)
{
    giTriBlock block;
    block.features().ensure<giNodeXYZ>()->add(giPoint3(1, 2, 3));
    block.features().ensure<giNodeXYZ>()->add(giPoint3(4, 5, 6));
    block.features().ensure<giTriArr>()->add(giTriangle(0, 1, 0));
    annPointCloudData cloud;
    cloud.features().ensure<giNodeXYZ>()->add(giPoint3(7, 8, 9));
    cloud.features().ensure<annColArr>()->add(giColour(1, 2, 3, 0));
    DumpSink sink(true);
    sink.triblock(qorabsAttributeSet(), utString("t"), qorabsTranslationStatus(0), block);
    sink.pointcloud(qorabsAttributeSet(), utString("p"), cloud);
    sink.finish();
    const DumpItem& t = *sink.top()[0];
    EXPECT_TRUE(t.points.empty());
    EXPECT_TRUE(t.triangles.empty());
    ASSERT_TRUE(t.points_digest && t.triangles_digest);
    EXPECT_EQ(t.points_digest->sha256, ArrayDigest::of(block.vertices()->values()).sha256);
    EXPECT_EQ(t.points_digest->count, 2u);
    EXPECT_EQ(t.triangles_digest->sha256, ArrayDigest::of(block.triangles()->values()).sha256);
    const DumpItem& p = *sink.top()[1];
    EXPECT_TRUE(p.points.empty());
    EXPECT_TRUE(p.colours.empty());
    ASSERT_TRUE(p.points_digest && p.colours_digest);
    EXPECT_EQ(p.colours_digest->sha256, ArrayDigest::of(cloud.colours()->values()).sha256);
}

TEST(DumpSink, SummaryTakesNoDigestOfAFailedBlock)
{
    giTriBlock block;
    block.features().ensure<giNodeXYZ>()->add(giPoint3(1, 2, 3));
    DumpSink sink(true);
    sink.triblock(qorabsAttributeSet(), utString("t"), qorabsTranslationStatus(1), block);
    sink.finish();
    EXPECT_FALSE(sink.top()[0]->points_digest.has_value());
}

TEST(DumpSink, SummaryDigestsWhatTheCallHandedOverNotWhatTheArraysBecomeAfter)
{
    // The walk's arrays are valid during the call only: the digest must be of
    // them as they were then, though it is taken later on another thread.
    giTriBlock block;
    for (int k = 0; k < 5000; ++k) block.features().ensure<giNodeXYZ>()->add(giPoint3(k, 2.0 * k, 0.5));
    for (int k = 0; k + 2 < 5000; ++k) block.features().ensure<giTriArr>()->add(giTriangle(k, k + 1, k + 2));
    const ArrayDigest vertices = ArrayDigest::of(block.vertices()->values());
    const ArrayDigest triangles = ArrayDigest::of(block.triangles()->values());
    DumpSink sink(true);
    sink.triblock(qorabsAttributeSet(), utString("t"), qorabsTranslationStatus(0), block);
    for (int k = 0; k < 5000; ++k) block.features().ensure<giNodeXYZ>()->set(k, giPoint3(-1, -1, -1));
    block.features().ensure<giTriArr>()->clear();
    sink.finish();
    EXPECT_EQ(sink.top()[0]->points_digest->sha256, vertices.sha256);
    EXPECT_EQ(sink.top()[0]->triangles_digest->sha256, triangles.sha256);
    EXPECT_EQ(sink.top()[0]->triangles_digest->count, 4998u);
}

TEST(DumpSink, SummaryOfABlockTooLargeToQueueIsTakenInTheCall)
{
    // More vertex bytes than the queue holds: digested at once, the same digest.
    const int n = static_cast<int>(DigestQueue::max_pending_bytes / sizeof(giPoint3)) + 10;
    giTriBlock block;
    ASSERT_TRUE(block.features().ensure<giNodeXYZ>()->resize(n));
    for (int k = 0; k < n; ++k) block.features().ensure<giNodeXYZ>()->set(k, giPoint3(k, 1, 2));
    block.features().ensure<giTriArr>()->add(giTriangle(0, 1, 2));
    const ArrayDigest vertices = ArrayDigest::of(block.vertices()->values());
    DumpSink sink(true);
    sink.triblock(qorabsAttributeSet(), utString("t"), qorabsTranslationStatus(0), block);
    // Taken during the call: changing the block afterwards changes nothing,
    // and there is nothing to wait for.
    block.features().ensure<giNodeXYZ>()->clear();
    ASSERT_TRUE(sink.top()[0]->points_digest.has_value());
    EXPECT_EQ(sink.top()[0]->points_digest->sha256, vertices.sha256);
    EXPECT_EQ(sink.top()[0]->points_digest->count, static_cast<std::size_t>(n));
}
