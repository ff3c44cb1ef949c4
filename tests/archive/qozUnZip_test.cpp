// The host's unzip service: entries in archive order, stored and deflated,
// data descriptors, zip64, and files that are no ZIP at all.
#include <cstdio>
#include <istream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "host/qozUnZip.h"
#include "tests/support/vlmWriter.h"

namespace {

struct entry_read {
    std::string name;
    std::int64_t size;
    std::string content;
};

std::vector<entry_read> read_entries(qozUnZip& unzip, int ok, int* opened)
{
    std::vector<entry_read> out;
    if (opened)
        *opened = ok;
    if (!ok)
        return out;
    while (unzip.next_archive()) {
        qozUnZipStreamBuf buf(unzip);
        std::istream in(&buf);
        std::string content((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        out.push_back({unzip.archive_name().str(), unzip.archive_size(), content});
    }
    return out;
}

std::vector<entry_read> read_all(const std::string& path, int* opened = nullptr)
{
    qozUnZip unzip;
    return read_entries(unzip, unzip.open(path.c_str()), opened);
}

std::vector<entry_read> read_all_memory(const std::string& bytes, int* opened = nullptr)
{
    qozUnZip unzip;
    return read_entries(unzip, unzip.open_memory(bytes.data(), bytes.size()), opened);
}

vlm::archive three_entries()
{
    vlm::archive a;
    a.add("00002.dat", std::string(5000, 'b'), vlm::method::deflated);
    a.add("XY00001.dat", "stored bytes", vlm::method::stored);
    a.add("00000.vlk", "header\n---\n", vlm::method::deflated);
    return a;
}

void expect_three_entries(const std::vector<entry_read>& got)
{
    ASSERT_EQ(got.size(), 3u);
    EXPECT_EQ(got[0].name, "00002.dat");
    EXPECT_EQ(got[0].content, std::string(5000, 'b'));
    EXPECT_EQ(got[0].size, 5000);
    EXPECT_EQ(got[1].name, "XY00001.dat");
    EXPECT_EQ(got[1].content, "stored bytes");
    EXPECT_EQ(got[2].name, "00000.vlk");
    EXPECT_EQ(got[2].content, "header\n---\n");
}

} // namespace

TEST(QozUnZip, EntriesComeInArchiveOrderStoredAndDeflated)
{
    const std::string path = vlm::temp_path("order.vlm");
    ASSERT_TRUE(three_entries().write(path));
    expect_three_entries(read_all(path));
    std::remove(path.c_str());
}

TEST(QozUnZip, ReadsEntriesWithDataDescriptors)
{
    const std::string path = vlm::temp_path("descriptor.vlm");
    ASSERT_TRUE(three_entries().write_with_data_descriptors(path));
    expect_three_entries(read_all(path));
    std::remove(path.c_str());
}

TEST(QozUnZip, ReadsZip64Entries)
{
    const std::string path = vlm::temp_path("zip64.vlm");
    ASSERT_TRUE(three_entries().write_zip64(path));
    expect_three_entries(read_all(path));
    std::remove(path.c_str());
}

TEST(QozUnZip, NextArchiveReturnsZeroAfterTheLastEntryAndStaysThere)
{
    const std::string path = vlm::temp_path("end.vlm");
    vlm::archive a;
    a.add("one.dat", "1");
    ASSERT_TRUE(a.write(path));
    qozUnZip unzip;
    ASSERT_EQ(unzip.open(path.c_str()), 1);
    EXPECT_EQ(unzip.archive_name(), utString(""));   // no current entry before the first call
    EXPECT_EQ(unzip.archive_size(), -1);
    EXPECT_EQ(unzip.next_archive(), 1);
    EXPECT_EQ(unzip.archive_name(), utString("one.dat"));
    EXPECT_EQ(unzip.next_archive(), 0);
    EXPECT_EQ(unzip.next_archive(), 0);
    EXPECT_EQ(unzip.archive_name(), utString(""));
    std::remove(path.c_str());
}

TEST(QozUnZip, StreamOfAPreviousEntryEndsWhenTheNextIsSelected)
{
    const std::string path = vlm::temp_path("stale.vlm");
    vlm::archive a;
    a.add("a.dat", "first");
    a.add("b.dat", "second");
    ASSERT_TRUE(a.write(path));
    qozUnZip unzip;
    ASSERT_EQ(unzip.open(path.c_str()), 1);
    ASSERT_EQ(unzip.next_archive(), 1);
    qozUnZipStreamBuf old(unzip);
    ASSERT_EQ(unzip.next_archive(), 1);
    std::istream in(&old);
    EXPECT_EQ(in.get(), std::char_traits<char>::eof());
    std::remove(path.c_str());
}

TEST(QozUnZip, FileThatIsNotAZipDoesNotOpen)
{
    const std::string path = vlm::temp_path("text.vlm");
    ASSERT_TRUE(vlm::write_file(path, "this is a text file, not an archive\n"));
    int opened = -1;
    EXPECT_TRUE(read_all(path, &opened).empty());
    EXPECT_EQ(opened, 0);
    std::remove(path.c_str());
}

TEST(QozUnZip, MissingFileDoesNotOpen)
{
    qozUnZip unzip;
    EXPECT_EQ(unzip.open(vlm::temp_path("never_written.vlm").c_str()), 0);
    EXPECT_EQ(unzip.next_archive(), 0);
}

TEST(QozUnZip, TruncatedZipNeverCrashesAtAnyLength)
{
    const std::string whole_path = vlm::temp_path("whole.vlm");
    ASSERT_TRUE(three_entries().write(whole_path));
    const std::string whole = vlm::read_file(whole_path);
    ASSERT_GT(whole.size(), 100u);
    const std::string path = vlm::temp_path("truncated.vlm");
    // Cut at every length: none may crash; the complete file still reads.
    for (std::size_t n = 0; n < whole.size(); n += 7) {
        ASSERT_TRUE(vlm::write_file(path, whole.substr(0, n)));
        int opened = -1;
        const auto got = read_all(path, &opened);
        EXPECT_EQ(opened, 0) << "cut at " << n;   // the central directory is at the end
    }
    ASSERT_TRUE(vlm::write_file(path, whole));
    expect_three_entries(read_all(path));
    std::remove(path.c_str());
    std::remove(whole_path.c_str());
}

TEST(QozUnZip, DamagedEntryDataEndsItsStreamWithoutFailingTheOthers)
{
    const std::string path = vlm::temp_path("damaged.vlm");
    vlm::archive a;
    a.add("a.dat", std::string(4000, 'a'), vlm::method::deflated);
    a.add("b.dat", "intact", vlm::method::stored);
    ASSERT_TRUE(a.write(path));
    std::string bytes = vlm::read_file(path);
    // Scribble over the first entry's compressed data (behind its 30-byte
    // local header and 5-byte name).
    for (std::size_t k = 40; k < 48 && k < bytes.size(); ++k)
        bytes[k] = static_cast<char>(0xFF);
    ASSERT_TRUE(vlm::write_file(path, bytes));
    const auto got = read_all(path);
    ASSERT_EQ(got.size(), 2u);
    EXPECT_LT(got[0].content.size(), 4000u);
    EXPECT_EQ(got[1].content, "intact");
    std::remove(path.c_str());
}

TEST(QozUnZip, OpenMemoryReadsTheEntriesTheFileGives)
{
    const std::string bytes = three_entries().bytes();
    ASSERT_FALSE(bytes.empty());
    expect_three_entries(read_all_memory(bytes));
}

TEST(QozUnZip, OpenMemoryReadsZip64AndDataDescriptors)
{
    for (bool zip64 : {false, true}) {
        const std::string path = vlm::temp_path("memory_forms.vlm");
        ASSERT_TRUE(zip64 ? three_entries().write_zip64(path)
                          : three_entries().write_with_data_descriptors(path));
        const std::string bytes = vlm::read_file(path);
        std::remove(path.c_str());
        expect_three_entries(read_all_memory(bytes));
    }
}

TEST(QozUnZip, OpenMemoryRefusesBytesThatAreNoZip)
{
    int opened = -1;
    EXPECT_TRUE(read_all_memory("this is a text, not an archive\n", &opened).empty());
    EXPECT_EQ(opened, 0);
    qozUnZip unzip;
    EXPECT_EQ(unzip.open_memory(nullptr, 0), 0);
    EXPECT_EQ(unzip.open_memory(nullptr, 10), 0);
    EXPECT_EQ(unzip.next_archive(), 0);
}

TEST(QozUnZip, OpenMemoryNeverCrashesOnATruncatedZip)
{
    const std::string whole = three_entries().bytes();
    ASSERT_GT(whole.size(), 100u);
    for (std::size_t n = 0; n < whole.size(); n += 7) {
        // Exactly n bytes on the heap, so that a read past them shows under a sanitizer.
        std::vector<char> cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(n));
        qozUnZip unzip;
        EXPECT_EQ(unzip.open_memory(cut.data(), cut.size()), 0) << "cut at " << n;
    }
}

TEST(QozUnZip, OpenByNameReadsARegisteredMemoryArchiveWhileItLives)
{
    const std::string bytes = three_entries().bytes();
    const std::string name = vlm::temp_path("only_in_memory.vlm");   // no such file
    {
        qozMemoryArchive held(utString(name), bytes.data(), bytes.size());
        expect_three_entries(read_all(name));
    }
    int opened = -1;
    EXPECT_TRUE(read_all(name, &opened).empty());
    EXPECT_EQ(opened, 0);
}

TEST(QozUnZip, LaterMemoryArchiveOfTheSameNameHidesTheEarlierUntilItEnds)
{
    vlm::archive one;
    one.add("one.dat", "1");
    const std::string first = three_entries().bytes();
    const std::string second = one.bytes();
    const std::string name = "held.vlm";
    qozMemoryArchive outer(utString(name), first.data(), first.size());
    {
        qozMemoryArchive inner(utString(name), second.data(), second.size());
        const auto got = read_all(name);
        ASSERT_EQ(got.size(), 1u);
        EXPECT_EQ(got[0].content, "1");
    }
    expect_three_entries(read_all(name));
}
