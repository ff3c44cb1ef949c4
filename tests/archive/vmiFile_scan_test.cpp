// vmiFile's scan readers: scan models ("PCSC") as grid objects, scan images
// ("PCIM") as flat coloured point clouds, and extract_obj choosing between
// them by magic and option.
#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "archive/vmiArchiveElement.h"
#include "archive/vmiFile.h"
#include "archive/vmiObjCloud.h"
#include "archive/vmiObjGrid.h"
#include "archive/vmiObject.h"
#include "curves/m03DPoint.h"
#include "grid/vmiBaseGrid.h"
#include "host/qorResourceTable.h"
#include "tests/support/optionScope.h"
#include "tests/support/vlmWriter.h"

namespace {

void add_entry(vmiFile& f, vmiEntryKind type, int indx, const std::string& bytes)
{
    char* buf = new char[bytes.size() + 1];
    std::memcpy(buf, bytes.data(), bytes.size());
    f.archive().add(new vmiArchiveElement(utString("VLM00000.dat"), buf, static_cast<int>(bytes.size()), type,
                                          indx));
}

// The object of a data entry holding bytes, as extract_obj makes it.
vmiObject* extract(vmiFile& f, const std::string& bytes)
{
    add_entry(f, vmiEntryKind::data, 3, bytes);
    vmiObject* o = f.extract_obj(3);
    f.archive().free();
    return o;
}

// Runs a catalogue holding only level-1 and level-2 records, so that the
// options are read and (with a level-1 record) the root exists.
void run_catalogue(vmiFile& f, bool with_root)
{
    vlm::catalogue c;
    c.separator();
    if (with_root)
        c.level1("a", "b");
    add_entry(f, vmiEntryKind::catalogue, 0, c.level2("c", "d").text());
    f.proc_vlk();
    f.catalogue().free();
    f.archive().free();
}

vlm::scan_image image(int width, int height, std::vector<std::uint8_t> pixels)
{
    vlm::scan_image im;
    im.width = width;
    im.height = height;
    im.pixels = std::move(pixels);
    return im;
}

} // namespace

TEST(ScanImage, WhitePixelBecomesLightGreyOthersKeepTheirGreyInEveryColourByte)
{
    vmiFile f;
    vmiObject* o = extract(f, vlm::pcim_entry(image(4, 1, {255, 254, 0, 7})));
    ASSERT_NE(o, nullptr);
    vmiObjCloud* c = o->cloud();
    ASSERT_NE(c, nullptr);
    ASSERT_EQ(c->size(), 4);
    EXPECT_EQ(c->point_colour(0), 0x00F0F0F0);
    EXPECT_EQ(c->point_colour(1), 0x00FEFEFE);
    EXPECT_EQ(c->point_colour(2), 0);
    EXPECT_EQ(c->point_colour(3), 0x00070707);
    delete o;
}

TEST(ScanImage, OfWidthZeroYieldsAnObjectWithoutPoints)
{
    vmiFile f;
    vmiObject* o = extract(f, vlm::pcim_entry(image(0, 5, {})));
    ASSERT_NE(o, nullptr);
    ASSERT_NE(o->cloud(), nullptr);
    EXPECT_EQ(o->cloud()->size(), 0);
    EXPECT_FALSE(o->box().is_valid());
    delete o;
}

TEST(ScanImage, AllPointsLieInThePlaneZMinus5WithSinglePrecisionSpacings)
{
    vmiFile f;
    vlm::scan_image im = image(3, 2, {1, 2, 3, 4, 5, 6});
    im.sx = 0.1f;
    im.sy = 0.3f;
    vmiObject* o = extract(f, vlm::pcim_entry(im));
    ASSERT_NE(o, nullptr);
    vmiObjCloud* c = o->cloud();
    ASSERT_EQ(c->size(), 6);
    for (int j = 0; j < 2; ++j)
        for (int i = 0; i < 3; ++i) {
            const m03DPoint p = c->point(j * 3 + i);
            EXPECT_EQ(p.z(), -5.0);
            EXPECT_EQ(p.x(), static_cast<double>(static_cast<float>(i) * 0.1f));
            EXPECT_EQ(p.y(), static_cast<double>(static_cast<float>(j) * 0.3f));
        }
    EXPECT_EQ(c->point_colour(5), 6 * 65793);
    delete o;
}

TEST(ScanImage, NegativeSizeOrSpacingYieldsNoObject)
{
    vmiFile f;
    EXPECT_EQ(extract(f, vlm::pcim_entry(image(-1, 2, {}))), nullptr);
    EXPECT_EQ(extract(f, vlm::pcim_entry(image(2, -1, {}))), nullptr);
    vlm::scan_image im = image(1, 1, {9});
    im.sz = -1.0f;
    EXPECT_EQ(extract(f, vlm::pcim_entry(im)), nullptr);
    im.sz = 1.0f;
    im.sx = -0.5f;
    EXPECT_EQ(extract(f, vlm::pcim_entry(im)), nullptr);
}

TEST(ScanImage, BeyondMaxImagePixelsYieldsNoObject)
{
    vmiFile f;
    // One row of 4096 beyond the bound.
    const int rows = static_cast<int>(vmiFile::max_image_pixels / 4096);
    EXPECT_EQ(extract(f, vlm::pcim_entry(image(4096, rows + 1, {}))), nullptr);
    EXPECT_EQ(extract(f, vlm::pcim_entry(image(0x7fffffff, 0x7fffffff, {}))), nullptr);
    // A size beyond the bound on its own is refused even with no pixels.
    const int most = static_cast<int>(vmiFile::max_image_pixels);
    EXPECT_EQ(extract(f, vlm::pcim_entry(image(0, most + 1, {}))), nullptr);
    vmiObject* at_bound = extract(f, vlm::pcim_entry(image(0, most, {})));
    ASSERT_NE(at_bound, nullptr);
    EXPECT_EQ(at_bound->cloud()->size(), 0);
    delete at_bound;
}

TEST(ScanImage, TruncatedRecordReadsItsMissingPixelsAsBlack)
{
    vmiFile f;
    std::string bytes = vlm::pcim_entry(image(2, 2, {200, 201, 202, 203}));
    bytes.resize(bytes.size() - 2);
    vmiObject* o = extract(f, bytes);
    ASSERT_NE(o, nullptr);
    vmiObjCloud* c = o->cloud();
    ASSERT_EQ(c->size(), 4);
    EXPECT_EQ(c->point_colour(1), 201 * 65793);
    EXPECT_EQ(c->point_colour(2), 0);
    EXPECT_EQ(c->point_colour(3), 0);
    delete o;
}

TEST(ScanModel, BecomesAGridObjectOfTheHeightGridRecord)
{
    vmiFile f;
    vlm::height_grid g;
    g.nx = 3;
    g.ny = 2;
    g.dz = 0.5f;
    g.codes = {1, 2, 3, 4, 5, 0};
    vmiObject* o = extract(f, vlm::grid_entry(g));
    ASSERT_NE(o, nullptr);
    ASSERT_EQ(o->type(), vmiObject::grid_type);
    vmiObjGrid* grid = o->grid();
    EXPECT_EQ(grid->x_size(), 3);
    EXPECT_EQ(grid->y_size(), 2);
    EXPECT_EQ(grid->points_array()[4].z(), 2.5);
    // nodata 0: a zero code is a missing height.
    EXPECT_EQ(grid->points_array()[5].z(), -1000000000.0 * 0.5);
    delete o;
}

TEST(ScanModel, NegativeSizeYieldsNoObject)
{
    vmiFile f;
    vlm::height_grid g;
    g.nx = -3;
    g.ny = 2;
    EXPECT_EQ(extract(f, vlm::grid_entry(g)), nullptr);
}

TEST(ScanReaders, NamesCarryTheCountOfRootsZeroBeforeTheRootOneAfter)
{
    vmiFile f;
    vlm::height_grid g;
    g.nx = 1;
    g.ny = 1;
    g.codes = {1};
    vmiObject* before = extract(f, vlm::grid_entry(g));
    ASSERT_NE(before, nullptr);
    EXPECT_EQ(before->name(), utString("PSCS_0"));
    run_catalogue(f, true);
    ASSERT_EQ(f.num_objects(), 1);
    vmiObject* grid = extract(f, vlm::grid_entry(g));
    vmiObject* cloud = extract(f, vlm::pcim_entry(image(1, 1, {1})));
    ASSERT_NE(grid, nullptr);
    ASSERT_NE(cloud, nullptr);
    EXPECT_EQ(grid->name(), utString("PSCS_1"));
    EXPECT_EQ(cloud->name(), utString("PCIM_1"));
    delete before;
    delete grid;
    delete cloud;
}

TEST(ExtractObj, ChoosesByMagicAndGivesNoneForOtherData)
{
    vmiFile f;
    vlm::height_grid g;
    g.nx = 1;
    g.ny = 1;
    EXPECT_EQ(extract(f, vlm::grid_entry(g, "0001")), nullptr);
    EXPECT_EQ(extract(f, "PCS"), nullptr);
    EXPECT_EQ(f.extract_obj(42), nullptr);
    vmiObject* o = extract(f, vlm::grid_entry(g));
    ASSERT_NE(o, nullptr);
    EXPECT_EQ(o->type(), vmiObject::grid_type);
    delete o;
}

TEST(ExtractObj, EachKindFollowsItsOwnOptionAsReadAtTheLastCatalogue)
{
    vmiFile f;
    vlm::height_grid g;
    g.nx = 1;
    g.ny = 1;
    const std::string model = vlm::grid_entry(g);
    const std::string picture = vlm::pcim_entry(image(1, 1, {1}));
    {
        option_set off(vmiFile::opt_process_scan_data, 0);
        run_catalogue(f, false);
    }
    EXPECT_EQ(extract(f, model), nullptr);
    vmiObject* o = extract(f, picture);
    EXPECT_NE(o, nullptr);
    delete o;
    {
        option_set off(vmiFile::opt_process_image_data, 0);
        run_catalogue(f, false);
    }
    EXPECT_EQ(extract(f, picture), nullptr);
    o = extract(f, model);
    EXPECT_NE(o, nullptr);
    delete o;
}

TEST(vmiFile, ImageSizeAllowed_BoundsThePixelsNotTheGridNodes)
{
    // An image is a point cloud, not a grid: it may hold more pixels than a
    // grid may hold nodes, up to its own bound and no further.
    EXPECT_TRUE(vmiFile::image_size_allowed(4096, vmiFile::max_image_pixels / 4096));
    EXPECT_GT(vmiFile::max_image_pixels, vmiBaseGrid::max_nodes);
    EXPECT_FALSE(vmiFile::image_size_allowed(4096, vmiFile::max_image_pixels / 4096 + 1));
    EXPECT_TRUE(vmiFile::image_size_allowed(1, vmiFile::max_image_pixels));
    EXPECT_FALSE(vmiFile::image_size_allowed(1, vmiFile::max_image_pixels + 1));
    EXPECT_FALSE(vmiFile::image_size_allowed(vmiFile::max_image_pixels + 1, 0));
    EXPECT_FALSE(vmiFile::image_size_allowed(-1, 4));
}
