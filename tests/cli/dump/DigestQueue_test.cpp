// DigestQueue: digests taken on a second thread from copies of the arrays,
// the same as ArrayDigest::of gives, within a bound on the copies waiting.
#include "cli/dump/DigestQueue.h"

#include <gtest/gtest.h>

#include <memory>
#include <thread>
#include <vector>

namespace {

std::vector<giPoint3> points(int n, double shift)
{
    std::vector<giPoint3> v;
    for (int k = 0; k < n; ++k) v.emplace_back(k + shift, -k * shift, 0.25 * k);
    return v;
}

} // namespace

TEST(DigestQueue, DigestsEqualThoseTakenAtOnceForEveryKind)
{
    if (std::thread::hardware_concurrency() < 2) GTEST_SKIP() << "one processor: nothing is queued";
    std::vector<giTriangle> triangles;
    for (int k = 0; k < 3000; ++k) triangles.emplace_back(k, k + 1, -k);
    std::vector<giColour> colours;
    for (int k = 0; k < 3000; ++k) colours.emplace_back(k % 256, (k * 7) % 256, 255 - k % 256, 0);
    const std::vector<giPoint3> p = points(3000, 0.5);
    std::optional<ArrayDigest> dp, dt, dc;
    DigestQueue q;
    ASSERT_TRUE(q.take(p, dp));
    ASSERT_TRUE(q.take(triangles, dt));
    ASSERT_TRUE(q.take(colours, dc));
    q.finish();
    ASSERT_TRUE(dp && dt && dc);
    const ArrayDigest ep = ArrayDigest::of(p), et = ArrayDigest::of(triangles), ec = ArrayDigest::of(colours);
    EXPECT_EQ(dp->sha256, ep.sha256);
    EXPECT_EQ(dp->count, ep.count);
    EXPECT_EQ(dp->lo, ep.lo);
    EXPECT_EQ(dp->hi, ep.hi);
    EXPECT_EQ(dt->sha256, et.sha256);
    EXPECT_TRUE(dt->integers);
    EXPECT_EQ(dc->sha256, ec.sha256);
    EXPECT_EQ(dc->hi, ec.hi);
}

TEST(DigestQueue, ManyMoreBytesThanTheBoundStillGiveEveryDigest)
{
    if (std::thread::hardware_concurrency() < 2) GTEST_SKIP() << "one processor: nothing is queued";
    // Each array a quarter of the bound, queued as fast as can be: room runs
    // out again and again (take() then declines and the array is digested
    // here), and the spare buffers are reused.
    const int n = static_cast<int>(DigestQueue::max_pending_bytes / 4 / sizeof(giPoint3));
    const int arrays = 24;
    std::vector<std::optional<ArrayDigest>> got(arrays);
    std::vector<std::string> expected;
    int queued = 0;
    DigestQueue q;
    for (int a = 0; a < arrays; ++a) {
        auto v = std::make_unique<std::vector<giPoint3>>(points(n, a));
        expected.push_back(ArrayDigest::of(*v).sha256);
        if (q.take(*v, got[a]))
            ++queued;
        else
            got[a] = ArrayDigest::of(*v);
        // The array is gone at once; a queued one's copy is what is hashed.
    }
    EXPECT_GT(queued, 0);
    q.finish();
    for (int a = 0; a < arrays; ++a) {
        ASSERT_TRUE(got[a].has_value()) << a;
        EXPECT_EQ(got[a]->sha256, expected[a]) << a;
    }
}

TEST(DigestQueue, AnArrayFindingNoRoomIsNotQueuedAndTheCallerHashesIt)
{
    if (std::thread::hardware_concurrency() < 2) GTEST_SKIP() << "one processor: nothing is queued";
    // Two arrays of three fifths of the bound each: the second finds no room
    // while the first waits (a copy of millions of bytes takes longer to
    // hash than to make), or is queued once the thread has taken the first.
    const int n = static_cast<int>(DigestQueue::max_pending_bytes * 3 / 5 / sizeof(giPoint3));
    const std::vector<giPoint3> a = points(n, 1.0), b = points(n, 2.0);
    std::optional<ArrayDigest> da, db;
    DigestQueue q;
    ASSERT_TRUE(q.take(a, da));
    if (!q.take(b, db)) {
        EXPECT_FALSE(db.has_value() && !db->sha256.empty());
        db = ArrayDigest::of(b);
    }
    q.finish();
    EXPECT_EQ(da->sha256, ArrayDigest::of(a).sha256);
    EXPECT_EQ(db->sha256, ArrayDigest::of(b).sha256);
}

TEST(DigestQueue, AnArrayAboveTheBoundIsNotQueued)
{
    const std::size_t n = DigestQueue::max_pending_bytes / sizeof(giPoint3) + 1;
    std::vector<giPoint3> v(n);
    std::optional<ArrayDigest> d;
    DigestQueue q;
    EXPECT_FALSE(q.fits(n * sizeof(giPoint3)));
    EXPECT_FALSE(q.take(v, d));
    q.finish();
    EXPECT_FALSE(d.has_value());
    // Exactly the bound fits.
    EXPECT_EQ(q.fits(DigestQueue::max_pending_bytes), std::thread::hardware_concurrency() > 1);
}

TEST(DigestQueue, FinishWithNothingQueuedReturnsAndTheQueueGoesOnAfter)
{
    if (std::thread::hardware_concurrency() < 2) GTEST_SKIP() << "one processor: nothing is queued";
    DigestQueue q;
    q.finish();
    const std::vector<giPoint3> p = points(10, 1.0);
    std::optional<ArrayDigest> d;
    ASSERT_TRUE(q.take(p, d));
    q.finish();
    q.finish();
    ASSERT_TRUE(d.has_value());
    EXPECT_EQ(d->sha256, ArrayDigest::of(p).sha256);
}

TEST(DigestQueue, DestroyedWithoutFinishStillWritesWhatWasQueued)
{
    if (std::thread::hardware_concurrency() < 2) GTEST_SKIP() << "one processor: nothing is queued";
    const std::vector<giPoint3> p = points(20000, 2.0);
    std::optional<ArrayDigest> d;
    {
        DigestQueue q;
        ASSERT_TRUE(q.take(p, d));
    }
    ASSERT_TRUE(d.has_value());
    EXPECT_EQ(d->sha256, ArrayDigest::of(p).sha256);
}
