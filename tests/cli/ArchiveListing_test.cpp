#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "archive/vmiFile.h"
#include "cli/ArchiveListing.h"
#include "cli/Sha256.h"
#include "tests/support/vlmWriter.h"

namespace {

// Reads the archive at path with a listing attached.
ArchiveListing list(const std::string& path)
{
    ArchiveListing listing(path);
    vmiFile reader;
    reader.set_observer(&listing);
    reader.read(utString(path));
    return listing;
}

ArchiveListing list(const vlm::archive& a, const std::string& tag)
{
    const std::string path = vlm::temp_path(tag);
    EXPECT_TRUE(a.write(path));
    ArchiveListing listing = list(path);
    std::remove(path.c_str());
    return listing;
}

std::string catalogue_with_record(int data_indx)
{
    return vlm::catalogue().separator().level1("A", "B").level3(1, 4, 0, 101, "d", "n", "c", data_indx).text();
}

} // namespace

TEST(ArchiveListing, DataEntryShowsDecodedSizeChunksMagicAndDigest)
{
    const std::string content = "PCSC" + std::string(1000, '\x07');
    vlm::archive a;
    a.add("VLM00012.dat", vlm::chunk_chain(content, 300));
    const ArchiveListing l = list(a, "listing_data");
    ASSERT_EQ(l.entries().size(), 1u);
    const ListedEntry& e = l.entries()[0];
    EXPECT_EQ(e.name, "VLM00012.dat");
    EXPECT_EQ(e.type, vmiEntryKind::data);
    EXPECT_EQ(e.number, 12);
    EXPECT_EQ(e.stored_size, static_cast<std::int64_t>(vlm::chunk_chain(content, 300).size()));
    ASSERT_TRUE(e.size);
    EXPECT_EQ(*e.size, 1004);
    EXPECT_EQ(e.chunks, 4);
    EXPECT_EQ(e.magic, "PCSC");
    EXPECT_EQ(e.sha256, Sha256::hex(content));
}

TEST(ArchiveListing, DataEntryWithoutChunksHasSizeZeroAndNoDigest)
{
    vlm::archive a;
    a.add("VLM00001.dat", std::string(24, 'Z'));
    const ArchiveListing l = list(a, "listing_nochunk");
    ASSERT_EQ(l.entries().size(), 1u);
    EXPECT_EQ(l.entries()[0].size, 0);
    EXPECT_EQ(l.entries()[0].chunks, 0);
    EXPECT_FALSE(l.entries()[0].sha256);
    EXPECT_FALSE(l.entries()[0].magic);
}

TEST(ArchiveListing, OtherEntryHasNoSize)
{
    vlm::archive a;
    a.add("notes.txt", "hello");
    const ArchiveListing l = list(a, "listing_other");
    ASSERT_EQ(l.entries().size(), 1u);
    EXPECT_EQ(l.entries()[0].type, vmiEntryKind::other);
    EXPECT_FALSE(l.entries()[0].size);
    EXPECT_EQ(l.entries()[0].stored_size, 5);
}

TEST(ArchiveListing, MagicShowsNonPrintableBytesAsQuestionMarks)
{
    EXPECT_EQ(ArchiveListing::magic_of("P\x01\xff" "C", 4), "P??C");
    EXPECT_FALSE(ArchiveListing::magic_of("PCS", 3));
    EXPECT_FALSE(ArchiveListing::magic_of(nullptr, 0));
}

TEST(ArchiveListing, RecordFindsDataEntryReadBeforeTheCatalogue)
{
    vlm::archive a;
    a.add("VLM00012.dat", vlm::chunk("PCIM" + std::string(20, 'x')));
    a.add("00000.vlk", catalogue_with_record(12));
    const ArchiveListing l = list(a, "listing_found");
    ASSERT_EQ(l.catalogues().size(), 1u);
    const ListedCatalogue& c = l.catalogues()[0];
    EXPECT_TRUE(c.found);
    EXPECT_TRUE(c.separator);
    ASSERT_EQ(c.records.size(), 2u);
    EXPECT_EQ(c.records[0].level, 1);
    EXPECT_EQ(c.records[0].name0, "A");
    EXPECT_EQ(c.records[1].data_indx, 12);
    EXPECT_TRUE(c.records[1].data_found);
    EXPECT_EQ(c.records[1].data_magic, "PCIM");
}

TEST(ArchiveListing, CatalogueBeforeItsDataFindsNone)
{
    vlm::archive a;
    a.add("00000.vlk", catalogue_with_record(12));
    a.add("VLM00012.dat", vlm::chunk("PCSC1234"));
    const ArchiveListing l = list(a, "listing_before");
    ASSERT_EQ(l.catalogues().size(), 1u);
    ASSERT_EQ(l.catalogues()[0].records.size(), 2u);
    EXPECT_FALSE(l.catalogues()[0].records[1].data_found);
}

TEST(ArchiveListing, SecondCatalogueSeesOnlyEntriesBetweenTheTwo)
{
    vlm::archive a;
    a.add("VLM00012.dat", vlm::chunk("PCSC1234"));
    a.add("00000.vlk", catalogue_with_record(12));
    a.add("VLM00013.dat", vlm::chunk("0001abcd"));
    a.add("XY00000.vlk", catalogue_with_record(12) + "3,3,5,4,101,d,n,0,c,0,13\n");
    const ArchiveListing l = list(a, "listing_second");
    ASSERT_EQ(l.catalogues().size(), 2u);
    EXPECT_TRUE(l.catalogues()[0].records[1].data_found);
    ASSERT_EQ(l.catalogues()[1].records.size(), 3u);
    EXPECT_FALSE(l.catalogues()[1].records[1].data_found);
    EXPECT_TRUE(l.catalogues()[1].records[2].data_found);
    EXPECT_EQ(l.catalogues()[1].records[2].data_magic, "0001");
}

TEST(ArchiveListing, DataEntryShorterThanFourBytesIsFoundWithoutMagic)
{
    vlm::archive a;
    a.add("VLM00012.dat", vlm::chunk("PC"));
    a.add("00000.vlk", catalogue_with_record(12));
    const ArchiveListing l = list(a, "listing_short");
    ASSERT_EQ(l.catalogues()[0].records.size(), 2u);
    EXPECT_TRUE(l.catalogues()[0].records[1].data_found);
    EXPECT_FALSE(l.catalogues()[0].records[1].data_magic);
}

TEST(ArchiveListing, ChunklessDataEntryIsNotVisibleToTheCatalogue)
{
    vlm::archive a;
    a.add("VLM00012.dat", std::string(10, 'x'));
    a.add("00000.vlk", catalogue_with_record(12));
    const ArchiveListing l = list(a, "listing_chunkless");
    ASSERT_EQ(l.catalogues()[0].records.size(), 2u);
    EXPECT_FALSE(l.catalogues()[0].records[1].data_found);
}

TEST(ArchiveListing, CatalogueNumberedOtherThanZeroIsNotFound)
{
    vlm::archive a;
    a.add("ABCD00001.vlk", catalogue_with_record(12));
    const ArchiveListing l = list(a, "listing_number1");
    ASSERT_EQ(l.catalogues().size(), 1u);
    EXPECT_EQ(l.catalogues()[0].number, 1);
    EXPECT_FALSE(l.catalogues()[0].found);
    EXPECT_TRUE(l.catalogues()[0].records.empty());
}

TEST(ArchiveListing, EmptyCatalogueIsListedAsNotFound)
{
    vlm::archive a;
    a.add("00000.vlk", "");
    const ArchiveListing l = list(a, "listing_emptyvlk");
    ASSERT_EQ(l.entries().size(), 1u);
    EXPECT_EQ(l.entries()[0].size, 0);
    EXPECT_FALSE(l.entries()[0].sha256);
    ASSERT_EQ(l.catalogues().size(), 1u);
    EXPECT_EQ(l.catalogues()[0].size, 0);
    EXPECT_FALSE(l.catalogues()[0].found);
}

TEST(ArchiveListing, CatalogueWithoutSeparatorHasNoRecords)
{
    vlm::archive a;
    a.add("00000.vlk", "header\n1,A,B\n");
    const ArchiveListing l = list(a, "listing_nosep");
    ASSERT_EQ(l.catalogues().size(), 1u);
    EXPECT_TRUE(l.catalogues()[0].found);
    EXPECT_FALSE(l.catalogues()[0].separator);
    EXPECT_TRUE(l.catalogues()[0].records.empty());
}

TEST(ArchiveListing, CatalogueLongerThanTheBufferIsCut)
{
    vlm::catalogue c;
    c.separator();
    for (int i = 0; i < 2000; ++i) c.level1("Name" + std::to_string(i), "x");
    vlm::archive a;
    a.add("00000.vlk", c.text());
    const ArchiveListing l = list(a, "listing_long");
    ASSERT_EQ(l.entries().size(), 1u);
    EXPECT_EQ(l.entries()[0].size, vmiFile::catalogue_buffer);
    EXPECT_EQ(l.catalogues()[0].size, vmiFile::catalogue_buffer);
    EXPECT_GT(l.catalogues()[0].records.size(), 100u);
    EXPECT_LT(l.catalogues()[0].records.size(), 2000u);
}
