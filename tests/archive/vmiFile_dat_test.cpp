// The cursor readers over a data buffer and the height-grid record.
#include <cstring>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "archive/vmiArchiveElement.h"
#include "archive/vmiFile.h"
#include "grid/vmiBaseGrid.h"
#include "tests/support/vlmWriter.h"

namespace {

// A grid read from the record bytes (behind the magic) by create_base_grid.
std::unique_ptr<vmiBaseGrid> grid_from(const vlm::height_grid& g)
{
    std::string rec = vlm::height_grid_record(g);
    vmiFile f;
    f.init_dat(rec.data(), static_cast<int>(rec.size()));
    return std::unique_ptr<vmiBaseGrid>(f.create_base_grid());
}

double z_of(const float& code, const float& dz)
{
    return static_cast<double>(code * dz);
}

} // namespace

TEST(Cursor, ReadersYieldZeroAndStayPutWhenTheBytesAreNotThere)
{
    unsigned char bytes[] = {0x01, 0x02, 0x03, 0x04, 0xFF, 0xFF};
    vmiFile f;
    f.init_dat(reinterpret_cast<char*>(bytes), 6);
    EXPECT_EQ(f.int32(), 0x04030201);
    EXPECT_EQ(f.dat_offset(), 4);
    EXPECT_EQ(f.int32(), 0);                // only 2 bytes left
    EXPECT_EQ(f.real32(), 0.0f);
    EXPECT_EQ(f.dat_offset(), 4);
    EXPECT_EQ(f.int16(), 65535);            // unsigned
    EXPECT_EQ(f.dat_offset(), 6);
    EXPECT_EQ(f.byte(), 0);
    EXPECT_EQ(f.int16(), 0);
    EXPECT_EQ(f.dat_offset(), 6);
}

TEST(Cursor, PassIsClampedToTheBufferAndIsEndComparesWithTheEnd)
{
    char bytes[10] = {};
    vmiFile f;
    f.init_dat(bytes, 10);
    EXPECT_EQ(f.is_end(10), 0);
    EXPECT_EQ(f.is_end(11), 1);
    f.pass(7);
    EXPECT_EQ(f.dat_offset(), 7);
    f.pass(100);
    EXPECT_EQ(f.dat_offset(), 10);
    EXPECT_EQ(f.is_end(0), 0);
    EXPECT_EQ(f.is_end(1), 1);
    f.pass(-100);
    EXPECT_EQ(f.dat_offset(), 0);
    f.pass(0x7FFFFFFF);
    EXPECT_EQ(f.dat_offset(), 10);
}

TEST(Cursor, ByteIsUnsignedAndReal32IsLittleEndianFloat)
{
    std::string bytes = "\xF0";
    bytes += vlm::lef32(-2.5f);
    vmiFile f;
    f.init_dat(bytes.data(), static_cast<int>(bytes.size()));
    EXPECT_EQ(f.byte(), 240);
    EXPECT_EQ(f.real32(), -2.5f);
    EXPECT_EQ(f.is_end(1), 1);
}

TEST(Cursor, NullOrNegativeLengthBufferIsEmpty)
{
    vmiFile f;
    f.init_dat(nullptr, 100);
    EXPECT_EQ(f.int32(), 0);
    EXPECT_EQ(f.is_end(1), 1);
    char b[4] = {1, 2, 3, 4};
    f.init_dat(b, -4);
    EXPECT_EQ(f.byte(), 0);
    EXPECT_EQ(f.is_end(1), 1);
}

TEST(CreateBaseGrid, ReadsSizesSpacingsAndCodesRowByRow)
{
    vlm::height_grid g;
    g.nx = 3;
    g.ny = 2;
    g.dx = 2.0f;
    g.dy = 5.0f;
    g.dz = 0.5f;
    g.nodata = 0;
    g.codes = {1, 2, 3, 4, 5, 6};
    auto grid = grid_from(g);
    ASSERT_TRUE(grid);
    EXPECT_EQ(grid->x_size(), 3);
    EXPECT_EQ(grid->y_size(), 2);
    EXPECT_EQ(grid->d_x(), 2.0);
    EXPECT_EQ(grid->d_y(), 5.0);
    EXPECT_EQ(grid->point(2, 0).z(), 1.5);
    EXPECT_EQ(grid->point(0, 1).z(), 2.0);
    EXPECT_EQ(grid->point(2, 1).x(), 4.0);
    EXPECT_EQ(grid->point(2, 1).y(), 5.0);
    EXPECT_EQ(grid->point(2, 1).z(), 3.0);
}

TEST(CreateBaseGrid, NodataZeroMapsCodeZeroToTheMissingHeight)
{
    vlm::height_grid g;
    g.nx = 2;
    g.ny = 1;
    g.dz = 0.01f;
    g.nodata = 0;
    g.codes = {0, 7};
    auto grid = grid_from(g);
    ASSERT_TRUE(grid);
    EXPECT_EQ(grid->point(0, 0).z(), z_of(-1000000000.0f, 0.01f));
    EXPECT_EQ(grid->point(1, 0).z(), z_of(7.0f, 0.01f));
}

TEST(CreateBaseGrid, NodataSevenMapsCodeZeroToOneAndSevenToTheMissingHeight)
{
    vlm::height_grid g;
    g.nx = 3;
    g.ny = 1;
    g.dz = 0.01f;
    g.nodata = 7;
    g.codes = {0, 7, 9};
    auto grid = grid_from(g);
    ASSERT_TRUE(grid);
    EXPECT_EQ(grid->point(0, 0).z(), z_of(1.0f, 0.01f));
    EXPECT_EQ(grid->point(1, 0).z(), z_of(-1000000000.0f, 0.01f));
    EXPECT_EQ(grid->point(2, 0).z(), z_of(9.0f, 0.01f));
}

TEST(CreateBaseGrid, ProductsAreFormedInSinglePrecision)
{
    vlm::height_grid g;
    g.nx = 4;
    g.ny = 4;
    g.dx = 0.1f;
    g.dy = 0.3f;
    g.dz = 0.01f;
    g.nodata = 0;
    g.codes.assign(16, 12345);
    auto grid = grid_from(g);
    ASSERT_TRUE(grid);
    const m03DPoint& p = grid->point(3, 3);
    const double x_float = static_cast<double>(3.0f * 0.1f);
    const double x_double = 3.0 * static_cast<double>(0.1f);
    ASSERT_NE(x_float, x_double);   // the test tells the two apart
    EXPECT_EQ(p.x(), x_float);
    EXPECT_EQ(p.y(), static_cast<double>(3.0f * 0.3f));
    const double z_float = static_cast<double>(12345.0f * 0.01f);
    ASSERT_NE(z_float, 12345.0 * static_cast<double>(0.01f));
    EXPECT_EQ(p.z(), z_float);
}

TEST(CreateBaseGrid, ShortRecordReadsMissingCodesAsZero)
{
    vlm::height_grid g;
    g.nx = 2;
    g.ny = 2;
    g.nodata = 0;
    g.codes = {5};   // three codes missing
    auto grid = grid_from(g);
    ASSERT_TRUE(grid);
    EXPECT_EQ(grid->point(0, 0).z(), 5.0);
    EXPECT_EQ(grid->point(1, 1).z(), -1000000000.0);
}

TEST(CreateBaseGrid, NegativeSizeOrSpacingYieldsNoGrid)
{
    vlm::height_grid g;
    g.nx = 2;
    g.ny = 2;
    g.codes = {1, 2, 3, 4};
    vlm::height_grid bad = g;
    bad.nx = -1;
    EXPECT_FALSE(grid_from(bad));
    bad = g;
    bad.ny = -2;
    EXPECT_FALSE(grid_from(bad));
    bad = g;
    bad.dx = -1.0f;
    EXPECT_FALSE(grid_from(bad));
    bad = g;
    bad.dy = -1.0f;
    EXPECT_FALSE(grid_from(bad));
    bad = g;
    bad.dz = -0.5f;
    EXPECT_FALSE(grid_from(bad));
    EXPECT_TRUE(grid_from(g));
}

TEST(CreateBaseGrid, HugeSizesYieldNoGrid)
{
    vlm::height_grid g;
    g.nx = 0x7FFFFFFF;
    g.ny = 0x7FFFFFFF;
    EXPECT_FALSE(grid_from(g));
    g.nx = 0x10000;
    g.ny = 0x10000;   // the product overflows 32 bits
    EXPECT_FALSE(grid_from(g));
    g.nx = static_cast<std::int32_t>(vmiBaseGrid::max_nodes);
    g.ny = 2;
    EXPECT_FALSE(grid_from(g));
}

TEST(CreateBaseGrid, NoColumnsWithManyRowsIsAnEmptyGridAtOnce)
{
    vlm::height_grid g;
    g.nx = 0;
    g.ny = static_cast<std::int32_t>(vmiBaseGrid::max_nodes);
    auto grid = grid_from(g);
    ASSERT_TRUE(grid);
    EXPECT_EQ(grid->x_size(), 0);
    EXPECT_EQ(grid->y_size(), g.ny);
    g.ny = 0x7FFFFFFF;   // more rows than a grid may hold, even with no column
    EXPECT_FALSE(grid_from(g));
}

TEST(CreateBaseGrid, BufferShorterThanTheHeaderYieldsAnEmptyGrid)
{
    // Every header read yields 0: sizes 0, spacings 0.
    std::string rec = "short";
    vmiFile f;
    f.init_dat(rec.data(), static_cast<int>(rec.size()));
    std::unique_ptr<vmiBaseGrid> grid(f.create_base_grid());
    ASSERT_TRUE(grid);
    EXPECT_EQ(grid->x_size(), 0);
    EXPECT_EQ(grid->y_size(), 0);
}

TEST(GetBaseGrid, ReadsTheDataEntryOfThatNumberBehindItsMagic)
{
    vlm::height_grid g;
    g.nx = 1;
    g.ny = 1;
    g.codes = {42};
    const std::string entry = vlm::grid_entry(g, "ANY!");
    vmiFile f;
    char* buf = new char[entry.size()];
    std::memcpy(buf, entry.data(), entry.size());
    f.archive().add(new vmiArchiveElement("XY00007.dat", buf, static_cast<int>(entry.size()), vmiEntryKind::data, 7));
    EXPECT_EQ(f.get_base_grid(8), nullptr);
    std::unique_ptr<vmiBaseGrid> grid(f.get_base_grid(7));
    ASSERT_TRUE(grid);
    EXPECT_EQ(grid->point(0, 0).z(), 42.0);
}
