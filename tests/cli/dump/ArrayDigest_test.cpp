// ArrayDigest: the summary of one geometry array, its SHA-256 taken over the
// dump's own byte layout whatever the array's layout in memory.
#include "cli/dump/ArrayDigest.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

#include <gtest/gtest.h>

#include "cli/Sha256.h"

namespace {

void put_le(std::string& out, std::uint64_t v, int n)
{
    for (int i = 0; i < n; ++i) out += static_cast<char>(v >> (8 * i));
}

} // namespace

TEST(ArrayDigest, PointsHashEachCoordinateAsEightLittleEndianBytes)
{
    const std::vector<giPoint3> v = {{1.5, -2.0, 3.25}, {0.0, 7.0, -1.0}};
    std::string bytes;
    for (const giPoint3& p : v)
        for (double c : {p.x(), p.y(), p.z()}) put_le(bytes, std::bit_cast<std::uint64_t>(c), 8);
    const ArrayDigest d = ArrayDigest::of(v);
    EXPECT_EQ(d.count, 2u);
    EXPECT_EQ(d.sha256, Sha256::hex(bytes));
    EXPECT_EQ(*d.lo[0], 0.0);
    EXPECT_EQ(*d.hi[1], 7.0);
    EXPECT_EQ(*d.lo[2], -1.0);
}

TEST(ArrayDigest, TrianglesHashEachIndexAsFourLittleEndianBytes)
{
    const std::vector<giTriangle> v = {{0, 1, 2}, {2, 1, -3}};
    std::string bytes;
    for (const giTriangle& t : v)
        for (int i : {t.a(), t.b(), t.c()}) put_le(bytes, static_cast<std::uint32_t>(i), 4);
    const ArrayDigest d = ArrayDigest::of(v);
    EXPECT_TRUE(d.integers);
    EXPECT_EQ(d.sha256, Sha256::hex(bytes));
    EXPECT_EQ(*d.lo[2], -3.0);
}

TEST(ArrayDigest, ColoursHashRedGreenBlueAndLeaveTheAlphaOut)
{
    const std::vector<giColour> v = {{1, 2, 3, 200}, {250, 5, 6, 7}};
    const ArrayDigest d = ArrayDigest::of(v);
    EXPECT_EQ(d.sha256, Sha256::hex(std::string("\x01\x02\x03\xfa\x05\x06", 6)));
    EXPECT_EQ(*d.hi[0], 250.0);
}

TEST(ArrayDigest, NonFiniteValuesCountButStayOutOfTheBounds)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    const ArrayDigest d = ArrayDigest::of(std::vector<double>{nan, 4.0, -inf, 2.0});
    EXPECT_EQ(d.count, 4u);
    EXPECT_EQ(d.width, 1);
    EXPECT_EQ(*d.lo[0], 2.0);
    EXPECT_EQ(*d.hi[0], 4.0);
    const ArrayDigest all_nan = ArrayDigest::of(std::vector<giPoint3>{{nan, 1.0, nan}});
    EXPECT_FALSE(all_nan.lo[0].has_value());
    EXPECT_EQ(*all_nan.lo[1], 1.0);
}

TEST(ArrayDigest, EmptyArrayHasTheDigestOfNoBytesAndNoBounds)
{
    const ArrayDigest d = ArrayDigest::of(std::vector<giPoint3>{});
    EXPECT_EQ(d.count, 0u);
    EXPECT_EQ(d.sha256, Sha256::hex(""));
    EXPECT_FALSE(d.lo[0].has_value());
}

TEST(ArrayDigest, LongArrayCrossingManyBlocksHashesLikeOneBuffer)
{
    std::vector<giColour> v;
    std::string bytes;
    for (int k = 0; k < 20000; ++k) {
        v.emplace_back(k, k >> 3, k >> 7, 0);
        bytes += {static_cast<char>(k), static_cast<char>(k >> 3), static_cast<char>(k >> 7)};
    }
    EXPECT_EQ(ArrayDigest::of(v).sha256, Sha256::hex(bytes));
}
