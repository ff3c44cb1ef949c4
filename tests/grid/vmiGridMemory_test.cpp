// vmiGridMemory: node arrays kept for reuse while an import runs, within a
// bound, and the grids built on kept storage holding only what they write.
#include "grid/vmiGridMemory.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <thread>
#include <vector>

#include "grid/vmiBaseGrid.h"

using namespace vmiGridMemory;

TEST(vmiGridMemory, OutsideAnImportNothingIsKept)
{
    long long held = 0;
    m03DPoint* a = take(1000, &held);
    ASSERT_NE(a, nullptr);
    EXPECT_EQ(held, 1000 + 1000 / 8);
    give(a, held);
    EXPECT_EQ(kept_bytes(), 0u);
}

TEST(vmiGridMemory, AnArrayLetGoServesTheNextThatFitsInIt)
{
    Scope import;
    long long held = 0;
    m03DPoint* a = take(8000, &held);
    ASSERT_NE(a, nullptr);
    give(a, held);
    EXPECT_EQ(kept_bytes(), static_cast<std::size_t>(held) * sizeof(m03DPoint));
    // A little larger (within the eighth of room) or a little smaller: the same.
    long long again = 0;
    m03DPoint* b = take(8500, &again);
    EXPECT_EQ(b, a);
    EXPECT_EQ(again, held);
    EXPECT_EQ(kept_bytes(), 0u);
    give(b, again);
    // Far smaller (below seven eighths of it) does not take it, nor larger
    // than it holds.
    long long small = 0, large = 0;
    m03DPoint* c = take(held * 7 / 8 - 1, &small);
    m03DPoint* d = take(held + 1, &large);
    EXPECT_NE(c, a);
    EXPECT_NE(d, a);
    EXPECT_EQ(kept_bytes(), static_cast<std::size_t>(held) * sizeof(m03DPoint));
    give(c, small);
    give(d, large);
}

TEST(vmiGridMemory, KeepsNoMoreThanItsBound)
{
    Scope import;
    const long long n = static_cast<long long>(max_kept_bytes / sizeof(m03DPoint)) / 3;
    std::vector<std::pair<m03DPoint*, long long>> arrays;
    for (int k = 0; k < 4; ++k) {
        long long held = 0;
        arrays.push_back({take(n, &held), held});
        ASSERT_NE(arrays.back().first, nullptr);
    }
    for (const auto& [a, held] : arrays)
        give(a, held);
    EXPECT_LE(kept_bytes(), max_kept_bytes);
    EXPECT_GT(kept_bytes(), 0u);
    // An array larger than the bound is never kept.
    long long held = 0;
    m03DPoint* huge = take(static_cast<long long>(max_kept_bytes / sizeof(m03DPoint)) + 1, &held);
    ASSERT_NE(huge, nullptr);
    const std::size_t before = kept_bytes();
    give(huge, held);
    EXPECT_EQ(kept_bytes(), before);
}

TEST(vmiGridMemory, KeptArraysAreFreedWhenTheLastImportEnds)
{
    auto outer = std::make_unique<Scope>();
    {
        Scope inner;
        long long held = 0;
        m03DPoint* a = take(500, &held);
        give(a, held);
        EXPECT_GT(kept_bytes(), 0u);
    }
    // The outer import still runs: kept.
    EXPECT_GT(kept_bytes(), 0u);
    outer.reset();
    EXPECT_EQ(kept_bytes(), 0u);
}

TEST(vmiGridMemory, AGridOnKeptStorageHoldsOnlyWhatItWrites)
{
    Scope import;
    const double nan = std::numeric_limits<double>::quiet_NaN();
    {
        vmiBaseGrid first(30, 20, 1.0, 1.0);
        for (int j = 0; j < 20; ++j)
            for (int i = 0; i < 30; ++i)
                first.point(i, j, m03DPoint(nan, nan, 77.0));
    }
    ASSERT_GT(kept_bytes(), 0u);
    // Made on the storage the first let go (a row more, within its room):
    // every node as a new grid's.
    vmiBaseGrid second(30, 21, 0.5, 2.0);
    EXPECT_EQ(kept_bytes(), 0u);
    for (int j = 0; j < 21; ++j)
        for (int i = 0; i < 30; ++i) {
            const m03DPoint& p = second.point(i, j);
            ASSERT_EQ(p.x(), i * 0.5);
            ASSERT_EQ(p.y(), j * 2.0);
            ASSERT_EQ(p.z(), vmiBaseGrid::empty_z);
        }
    // A copy holds the same nodes.
    second.set_z(3, 4, 9.0);
    vmiBaseGrid copy(second);
    for (int j = 0; j < 21; ++j)
        for (int i = 0; i < 30; ++i)
            ASSERT_TRUE(copy.point(i, j) == second.point(i, j));
}

TEST(vmiGridMemory, AdoptedStorageTooSmallForItsSizesMakesAnEmptyGrid)
{
    long long held = 0;
    m03DPoint* a = take(10, &held);
    ASSERT_NE(a, nullptr);
    for (long long k = 0; k < held; ++k)
        a[k] = m03DPoint(0, 0, 1.0);
    vmiBaseGrid g(a, held, 100, 100, 1.0, 1.0);
    EXPECT_EQ(g.x_size(), 0);
    EXPECT_EQ(g.y_size(), 0);
    EXPECT_EQ(g.point(0, 0).z(), vmiBaseGrid::empty_z);
    long long held2 = 0;
    m03DPoint* b = take(12, &held2);
    for (long long k = 0; k < 12; ++k)
        b[k] = m03DPoint(static_cast<double>(k), 0, 2.0);
    vmiBaseGrid h(b, held2, 4, 3, 1.0, 1.0);
    EXPECT_EQ(h.x_size(), 4);
    EXPECT_EQ(h.point(3, 2).x(), 11.0);
}

TEST(vmiGridMemory, TwoThreadsTakeAndGiveAtOnce)
{
    Scope import;
    auto work = [] {
        for (int k = 0; k < 200; ++k) {
            vmiBaseGrid g(40 + k % 7, 30, 1.0, 1.0);
            g.set_z(1, 1, k);
            ASSERT_EQ(g.point(1, 1).z(), k);
            ASSERT_EQ(g.point(2, 2).z(), vmiBaseGrid::empty_z);
        }
    };
    std::thread other(work);
    work();
    other.join();
    EXPECT_LE(kept_bytes(), max_kept_bytes);
}
