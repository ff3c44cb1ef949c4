// The host stand-in's contracts, as a real host's vendor must keep them.
#include "host/apByteOrderHandler.h"
#include "host/coPageArr.h"
#include "host/giBox3.h"
#include "host/utString.h"
#include "host/zlib_interface.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr double largest_double = std::numeric_limits<double>::max();

std::vector<char> deflate_bytes(const std::string& text)
{
    uLongf n = compressBound(static_cast<uLong>(text.size()));
    std::vector<char> out(n);
    int rc = compress(reinterpret_cast<Bytef*>(out.data()), &n,
                      reinterpret_cast<const Bytef*>(text.data()), static_cast<uLong>(text.size()));
    EXPECT_EQ(rc, Z_OK);
    out.resize(n);
    return out;
}

std::string sample_text(int n)
{
    std::string s;
    for (int i = 0; i < n; i++)
        s += static_cast<char>('a' + (i * 7) % 26);
    return s;
}

// A destination with guard bytes after its usable part, to see any overrun.
struct GuardedBuffer {
    static constexpr int guard_bytes = 64;
    static constexpr char fill_byte = '\x5A';
    explicit GuardedBuffer(int room) : room(room), bytes(static_cast<size_t>(room + guard_bytes), fill_byte) {}
    bool guard_intact() const
    {
        for (int i = room; i < room + guard_bytes; i++)
            if (bytes[static_cast<size_t>(i)] != fill_byte)
                return false;
        return true;
    }
    int room;
    std::vector<char> bytes;
};

}  // namespace

// ---- giBox3 ----

TEST(GiBox3, DefaultBox_IsInvalid)
{
    giBox3 box;
    EXPECT_FALSE(box.is_valid());
}

TEST(GiBox3, DefaultBox_FirstMinimumCoordinateHoldsLargestDouble)
{
    giBox3 box;
    EXPECT_EQ(box.min().x(), largest_double);
    EXPECT_EQ(box.min().x(), 1.7976931348623157e308);
    EXPECT_EQ(box.min().y(), largest_double);
    EXPECT_EQ(box.min().z(), largest_double);
    EXPECT_EQ(box.max().x(), -largest_double);
}

TEST(GiBox3, FirstMergedPoint_MakesValidZeroExtentBox)
{
    giBox3 box;
    box.merge(giPoint3(1.0, -2.0, 3.0));
    EXPECT_TRUE(box.is_valid());
    EXPECT_EQ(box.min(), giPoint3(1.0, -2.0, 3.0));
    EXPECT_EQ(box.max(), giPoint3(1.0, -2.0, 3.0));
}

TEST(GiBox3, MergingPoints_GrowsToHoldThemAll)
{
    giBox3 box;
    box.merge(giPoint3(1.0, 1.0, 1.0));
    box.merge(giPoint3(-1.0, 5.0, 0.0));
    box.merge(giPoint3(0.0, 0.0, 10000.0));
    EXPECT_EQ(box.min(), giPoint3(-1.0, 0.0, 0.0));
    EXPECT_EQ(box.max(), giPoint3(1.0, 5.0, 10000.0));
}

TEST(GiBox3, TwoCornerConstructor_HoldsBothInAnyOrder)
{
    giBox3 box(giPoint3(5.0, 0.0, -1.0), giPoint3(1.0, 2.0, -3.0));
    EXPECT_TRUE(box.is_valid());
    EXPECT_EQ(box.min(), giPoint3(1.0, 0.0, -3.0));
    EXPECT_EQ(box.max(), giPoint3(5.0, 2.0, -1.0));
}

TEST(GiBox3, MergingBoxes_GrowsAndIgnoresInvalidBox)
{
    giBox3 box(giPoint3(0.0, 0.0, 0.0), giPoint3(1.0, 1.0, 1.0));
    box.merge(giBox3());
    EXPECT_EQ(box.min(), giPoint3(0.0, 0.0, 0.0));
    EXPECT_EQ(box.max(), giPoint3(1.0, 1.0, 1.0));
    box.merge(giBox3(giPoint3(-2.0, 0.5, 0.5), giPoint3(0.5, 3.0, 0.5)));
    EXPECT_EQ(box.min(), giPoint3(-2.0, 0.0, 0.0));
    EXPECT_EQ(box.max(), giPoint3(1.0, 3.0, 1.0));
}

TEST(GiBox3, MergingIntoInvalidBox_TakesTheOtherBox)
{
    giBox3 box;
    box.merge(giBox3(giPoint3(1.0, 2.0, 3.0), giPoint3(4.0, 5.0, 6.0)));
    EXPECT_TRUE(box.is_valid());
    EXPECT_EQ(box.min(), giPoint3(1.0, 2.0, 3.0));
    EXPECT_EQ(box.max(), giPoint3(4.0, 5.0, 6.0));
}

// ---- apByteOrderHandler ----

TEST(ApByteOrderHandler, DefaultState_ReadsInt32LittleEndian)
{
    apByteOrderHandler h(0, 0);
    const unsigned char b[4] = {0x78, 0x56, 0x34, 0x12};
    EXPECT_EQ(h.int32(b), 0x12345678);
}

TEST(ApByteOrderHandler, DefaultState_ReadsNegativeInt32)
{
    apByteOrderHandler h;
    const unsigned char minus_one[4] = {0xFF, 0xFF, 0xFF, 0xFF};
    const unsigned char lowest[4] = {0x00, 0x00, 0x00, 0x80};
    const unsigned char minus_two[4] = {0xFE, 0xFF, 0xFF, 0xFF};
    EXPECT_EQ(h.int32(minus_one), -1);
    EXPECT_EQ(h.int32(lowest), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(h.int32(minus_two), -2);
}

TEST(ApByteOrderHandler, DefaultState_ReadsFloat32LittleEndian)
{
    apByteOrderHandler h(0, 0);
    const unsigned char one[4] = {0x00, 0x00, 0x80, 0x3F};
    const unsigned char minus_2_5[4] = {0x00, 0x00, 0x20, 0xC0};
    EXPECT_EQ(h.float32(one), 1.0f);
    EXPECT_EQ(h.float32(minus_2_5), -2.5f);
}

TEST(ApByteOrderHandler, DefaultState_KeepsSpecialFloatsBitForBit)
{
    apByteOrderHandler h;
    const unsigned char inf[4] = {0x00, 0x00, 0x80, 0x7F};
    const unsigned char nan[4] = {0x01, 0x00, 0xC0, 0x7F};
    const unsigned char subnormal[4] = {0x01, 0x00, 0x00, 0x00};
    EXPECT_TRUE(std::isinf(h.float32(inf)));
    EXPECT_TRUE(std::isnan(h.float32(nan)));
    EXPECT_EQ(h.float32(subnormal), std::numeric_limits<float>::denorm_min());
}

TEST(ApByteOrderHandler, DifferentOrders_ReadBigEndian)
{
    apByteOrderHandler h(1, 0);
    const unsigned char b[4] = {0x12, 0x34, 0x56, 0x78};
    const unsigned char one[4] = {0x3F, 0x80, 0x00, 0x00};
    EXPECT_EQ(h.int32(b), 0x12345678);
    EXPECT_EQ(h.float32(one), 1.0f);
}

// ---- zlib_interface ----

TEST(ZiUncompress, WholeStream_ProducesAndReportsAllBytes)
{
    std::string text = sample_text(1000);
    std::vector<char> z = deflate_bytes(text);
    GuardedBuffer dst(2000);
    int len = dst.room;
    int rc = zlib_interface::ziUncompress(dst.bytes.data(), &len, z.data(), static_cast<int>(z.size()));
    EXPECT_EQ(rc, Z_OK);
    ASSERT_EQ(len, 1000);
    EXPECT_EQ(std::string(dst.bytes.data(), 1000), text);
    EXPECT_TRUE(dst.guard_intact());
}

TEST(ZiUncompress, ExactRoom_Succeeds)
{
    std::string text = sample_text(300);
    std::vector<char> z = deflate_bytes(text);
    GuardedBuffer dst(300);
    int len = dst.room;
    EXPECT_EQ(zlib_interface::ziUncompress(dst.bytes.data(), &len, z.data(), static_cast<int>(z.size())),
              Z_OK);
    EXPECT_EQ(len, 300);
    EXPECT_TRUE(dst.guard_intact());
}

TEST(ZiUncompress, OversizedStream_FillsRoomReportsItAndNeverOverruns)
{
    std::string text = sample_text(5000);
    std::vector<char> z = deflate_bytes(text);
    GuardedBuffer dst(1000);
    int len = dst.room;
    int rc = zlib_interface::ziUncompress(dst.bytes.data(), &len, z.data(), static_cast<int>(z.size()));
    EXPECT_EQ(rc, Z_BUF_ERROR);
    ASSERT_EQ(len, 1000);
    EXPECT_EQ(std::string(dst.bytes.data(), 1000), text.substr(0, 1000));
    EXPECT_TRUE(dst.guard_intact());
}

TEST(ZiUncompress, ShortStream_ReportsTheBytesProduced)
{
    // Incompressible-ish text so that the deflate data carries the bytes one by one.
    std::string text;
    unsigned state = 12345;
    for (int i = 0; i < 4000; i++) {
        state = state * 1103515245u + 12345u;
        text += static_cast<char>(state >> 24);
    }
    std::vector<char> z = deflate_bytes(text);
    int cut = static_cast<int>(z.size()) / 2;
    GuardedBuffer dst(8000);
    int len = dst.room;
    int rc = zlib_interface::ziUncompress(dst.bytes.data(), &len, z.data(), cut);
    EXPECT_NE(rc, Z_OK);
    EXPECT_GT(len, 0);
    EXPECT_LT(len, 4000);
    EXPECT_EQ(std::string(dst.bytes.data(), static_cast<size_t>(len)), text.substr(0, static_cast<size_t>(len)));
    EXPECT_TRUE(dst.guard_intact());
}

TEST(ZiUncompress, CorruptTrailer_ReportsTheBytesProduced)
{
    std::string text = sample_text(500);
    std::vector<char> z = deflate_bytes(text);
    z.back() = static_cast<char>(z.back() ^ 0x55);  // breaks the Adler-32 check
    GuardedBuffer dst(1000);
    int len = dst.room;
    int rc = zlib_interface::ziUncompress(dst.bytes.data(), &len, z.data(), static_cast<int>(z.size()));
    EXPECT_EQ(rc, Z_DATA_ERROR);
    EXPECT_EQ(len, 500);
    EXPECT_EQ(std::string(dst.bytes.data(), 500), text);
    EXPECT_TRUE(dst.guard_intact());
}

TEST(ZiUncompress, NotAZlibStream_ProducesNothing)
{
    const char junk[] = "this is not a zlib stream at all";
    GuardedBuffer dst(100);
    int len = dst.room;
    int rc = zlib_interface::ziUncompress(dst.bytes.data(), &len, junk, static_cast<int>(sizeof junk));
    EXPECT_EQ(rc, Z_DATA_ERROR);
    EXPECT_EQ(len, 0);
    EXPECT_TRUE(dst.guard_intact());
}

TEST(ZiUncompress, NullOrEmptyArguments_ProduceNothing)
{
    std::vector<char> z = deflate_bytes("abc");
    char dst[16];
    int len = 16;
    EXPECT_EQ(zlib_interface::ziUncompress(nullptr, &len, z.data(), static_cast<int>(z.size())), Z_BUF_ERROR);
    EXPECT_EQ(len, 0);
    len = 16;
    EXPECT_EQ(zlib_interface::ziUncompress(dst, &len, nullptr, 10), Z_BUF_ERROR);
    EXPECT_EQ(len, 0);
    len = 16;
    EXPECT_EQ(zlib_interface::ziUncompress(dst, &len, z.data(), 0), Z_BUF_ERROR);
    EXPECT_EQ(len, 0);
    len = -5;
    EXPECT_EQ(zlib_interface::ziUncompress(dst, &len, z.data(), static_cast<int>(z.size())), Z_BUF_ERROR);
    EXPECT_EQ(len, 0);
    EXPECT_EQ(zlib_interface::ziUncompress(dst, nullptr, z.data(), static_cast<int>(z.size())), Z_STREAM_ERROR);
}

// ---- utString ----

TEST(UtString, NullPointer_IsEmpty)
{
    utString s(static_cast<const char*>(nullptr));
    EXPECT_TRUE(s.empty());
    EXPECT_EQ(s.length(), 0);
    EXPECT_STREQ(s.c_str(), "");
    utString t(nullptr, 5);
    EXPECT_TRUE(t.empty());
}

TEST(UtString, PointerAndCount_HoldsAnyBytes)
{
    const char raw[] = {'a', '\r', '\0', '\xFF', 'z'};
    utString s(raw, 5);
    ASSERT_EQ(s.length(), 5);
    EXPECT_EQ(s[1], '\r');
    EXPECT_EQ(s[2], '\0');
    EXPECT_EQ(s[3], '\xFF');
    EXPECT_EQ(std::memcmp(s.data(), raw, 5), 0);
}

TEST(UtString, Concatenation_AppendsBytes)
{
    utString a("VelmScan(");
    utString b = a + utString("x") + utString(")");
    EXPECT_EQ(b, utString("VelmScan(x)"));
    a += utString("y");
    EXPECT_EQ(a.str(), std::string("VelmScan(y"));
}

TEST(UtString, Copies_AreIndependent)
{
    utString a("abc");
    utString b = a;
    b += utString("d");
    EXPECT_EQ(a, utString("abc"));
    EXPECT_EQ(b, utString("abcd"));
}

TEST(UtString, Comparison_IsBytewise)
{
    EXPECT_TRUE(utString("abc") == utString("abc"));
    EXPECT_TRUE(utString("abc") != utString("abc "));
    EXPECT_TRUE(utString("ABC") != utString("abc"));
    EXPECT_TRUE(utString("ab") < utString("abc"));
    EXPECT_TRUE(utString("a") < utString("\xE4"));  // unsigned byte order
    EXPECT_FALSE(utString("\xE4") < utString("a"));
}

// ---- coPageArr ----

TEST(CoPageArr, Add_KeepsOrder)
{
    coPageArr<int> a;
    EXPECT_TRUE(a.empty());
    for (int i = 0; i < 1000; i++)
        a.add(i * 3);
    ASSERT_EQ(a.size(), 1000);
    for (int i = 0; i < 1000; i++)
        EXPECT_EQ(a[i], i * 3);
    int sum = 0;
    for (int v : a)
        sum += v;
    EXPECT_EQ(sum, 3 * 999 * 1000 / 2);
}

TEST(CoPageArr, Clear_Empties)
{
    coPageArr<int> a;
    a.add(1);
    a.clear();
    EXPECT_TRUE(a.empty());
    EXPECT_EQ(a.size(), 0);
}

TEST(CoPageArr, MoveOnlyElements_CanBeAdded)
{
    coPageArr<std::unique_ptr<int>> a;
    a.add(std::make_unique<int>(7));
    a.add(std::make_unique<int>(8));
    ASSERT_EQ(a.size(), 2);
    EXPECT_EQ(*a[0], 7);
    EXPECT_EQ(*a[1], 8);
}

TEST(CoPageArr, PointerList_OwnsNothing)
{
    int x = 5;
    {
        coPageArr<int*> a;
        a.add(&x);
        *a[0] = 6;
    }
    EXPECT_EQ(x, 6);
}
