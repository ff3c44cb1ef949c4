// vmiFile::read over whole archives, watched through a vmiReadObserver.
#include <cstdio>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "archive/vmiArchiveDir.h"
#include "archive/vmiArchiveElement.h"
#include "archive/vmiFile.h"
#include "archive/vmiReadObserver.h"
#include "archive/vmiVlkElement.h"
#include "host/qozUnZip.h"
#include "tests/support/vlmWriter.h"

namespace {

struct seen_entry {
    std::string name;
    vmiEntryKind type;
    int indx;
    std::int64_t stored_size;
    bool has_content;
    std::string content;
    int chunks;
    vmiChainEnd end;
};

struct seen_catalogue {
    std::string name;
    int indx;
    int size;
    bool found;
    bool separator;
    std::vector<int> levels;
    std::vector<std::string> name0s;
    std::vector<int> data_found;   // per level-3 record: 1 when its data entry is in the directory
    int directory_entries;
};

class recorder : public vmiReadObserver {
public:
    std::vector<seen_entry> entries;
    std::vector<seen_catalogue> catalogues;
    std::vector<vmiReadSkip> skips;

    void entry(const utString& name, vmiEntryKind type, int indx, std::int64_t stored_size, const char* content,
               int len, int chunks, vmiChainEnd end) override
    {
        entries.push_back({name.str(), type, indx, stored_size, content != nullptr,
                           content ? std::string(content, static_cast<std::size_t>(len)) : std::string(), chunks,
                           end});
    }

    void skipped(const vmiReadSkip& why) override { skips.push_back(why); }

    void catalogue(const utString& name, int indx, int size, bool found, bool separator,
                   const vmiVlkElement* records, vmiArchiveDir& archive) override
    {
        seen_catalogue c{name.str(), indx, size, found, separator, {}, {}, {}, archive.count()};
        for (const vmiVlkElement* r = records; r; r = r->next()) {
            c.levels.push_back(r->level());
            c.name0s.push_back(r->name0().str());
            if (r->level() == 3)
                c.data_found.push_back(archive.get(vmiEntryKind::data, r->data_indx()) ? 1 : 0);
        }
        catalogues.push_back(c);
    }
};

// Writes the archive, reads it with a recorder; returns read's result.
int read_with(const vlm::archive& a, recorder& rec, const std::string& tag)
{
    const std::string path = vlm::temp_path(tag);
    EXPECT_TRUE(a.write(path));
    vmiFile f;
    f.set_observer(&rec);
    const int result = f.read(path.c_str());
    std::remove(path.c_str());
    return result;
}

std::string one_scan_catalogue(int data_indx)
{
    return vlm::catalogue()
        .header("Velmora catalogue")
        .separator()
        .level1("Client", "Case")
        .level2("Left", "Scans")
        .level3(1, 1, 0, 101, "2021-01-01", "scan", "", data_indx)
        .text();
}

} // namespace

TEST(Read, ObserverSeesEveryEntryInArchiveOrderWithItsContent)
{
    vlm::archive a;
    a.add("VLM00005.dat", vlm::chunk_chain("PCSC and more bytes", 5));
    a.add("readme.txt", "not an entry of the format", vlm::method::stored);
    a.add("00000.vlk", one_scan_catalogue(5));
    recorder rec;
    read_with(a, rec, "order.vlm");
    ASSERT_EQ(rec.entries.size(), 3u);
    EXPECT_EQ(rec.entries[0].name, "VLM00005.dat");
    EXPECT_EQ(rec.entries[0].type, vmiEntryKind::data);
    EXPECT_EQ(rec.entries[0].indx, 5);
    EXPECT_EQ(rec.entries[0].content, "PCSC and more bytes");
    EXPECT_EQ(rec.entries[0].chunks, 4);
    EXPECT_EQ(rec.entries[0].stored_size,
              static_cast<std::int64_t>(vlm::chunk_chain("PCSC and more bytes", 5).size()));
    EXPECT_EQ(rec.entries[1].type, vmiEntryKind::other);
    EXPECT_FALSE(rec.entries[1].has_content);
    EXPECT_EQ(rec.entries[2].type, vmiEntryKind::catalogue);
    EXPECT_EQ(rec.entries[2].content, one_scan_catalogue(5));
    ASSERT_EQ(rec.catalogues.size(), 1u);
    const seen_catalogue& c = rec.catalogues[0];
    EXPECT_EQ(c.name, "00000.vlk");
    EXPECT_TRUE(c.found);
    EXPECT_TRUE(c.separator);
    EXPECT_EQ(c.levels, (std::vector<int>{1, 2, 3}));
    EXPECT_EQ(c.data_found, std::vector<int>{1});
    EXPECT_EQ(c.directory_entries, 2);   // the data entry and the catalogue itself
}

TEST(Read, ArchiveHeldInMemoryIsReadByItsNameAsAFileWouldBe)
{
    vlm::archive a;
    a.add("VLM00005.dat", vlm::chunk_chain("PCSC and more bytes", 5));
    a.add("00000.vlk", one_scan_catalogue(5));
    recorder from_file;
    const int file_result = read_with(a, from_file, "memory_twin.vlm");
    EXPECT_EQ(file_result, 1);
    const std::string bytes = a.bytes();
    const std::string name = vlm::temp_path("memory_only.vlm");   // never written
    qozMemoryArchive held(utString(name), bytes.data(), bytes.size());
    recorder from_memory;
    vmiFile f;
    f.set_observer(&from_memory);
    EXPECT_EQ(f.read(name.c_str()), file_result);
    ASSERT_EQ(from_memory.entries.size(), from_file.entries.size());
    for (std::size_t k = 0; k < from_file.entries.size(); ++k) {
        EXPECT_EQ(from_memory.entries[k].name, from_file.entries[k].name);
        EXPECT_EQ(from_memory.entries[k].content, from_file.entries[k].content);
    }
    ASSERT_EQ(from_memory.catalogues.size(), 1u);
    EXPECT_EQ(from_memory.catalogues[0].data_found, std::vector<int>{1});
}

TEST(Read, DataDotDatIsADataEntryNumberedZero)
{
    vlm::archive a;
    a.add("data.dat", vlm::chunk("payload"));
    a.add("00000.vlk", one_scan_catalogue(0));
    recorder rec;
    read_with(a, rec, "datadat.vlm");
    ASSERT_EQ(rec.entries.size(), 2u);
    EXPECT_EQ(rec.entries[0].type, vmiEntryKind::data);
    EXPECT_EQ(rec.entries[0].indx, 0);
    ASSERT_EQ(rec.catalogues.size(), 1u);
    EXPECT_EQ(rec.catalogues[0].data_found, std::vector<int>{1});
}

TEST(Read, CatalogueBeforeItsDataEntriesFindsNone)
{
    vlm::archive a;
    a.add("00000.vlk", one_scan_catalogue(5));
    a.add("VLM00005.dat", vlm::chunk("PCSC"));
    recorder rec;
    // The level-1 record still makes the root; the scan finds no data.
    EXPECT_EQ(read_with(a, rec, "catalogue_first.vlm"), 1);
    ASSERT_EQ(rec.catalogues.size(), 1u);
    EXPECT_EQ(rec.catalogues[0].levels, (std::vector<int>{1, 2, 3}));
    EXPECT_EQ(rec.catalogues[0].data_found, std::vector<int>{0});
    EXPECT_EQ(rec.catalogues[0].directory_entries, 1);
}

TEST(Read, SecondCatalogueSeesOnlyTheDataEntriesBetweenTheTwo)
{
    vlm::archive a;
    a.add("VLM00005.dat", vlm::chunk("first"));
    a.add("00000.vlk", one_scan_catalogue(5));
    a.add("VLM00006.dat", vlm::chunk("second"));
    a.add("XX00000.vlk", vlm::catalogue().separator().level3(1, 1, 0, 1, "d", "n", "c", 5)
                             .level3(1, 2, 0, 1, "d", "n", "c", 6).text());
    recorder rec;
    read_with(a, rec, "two_catalogues.vlm");
    ASSERT_EQ(rec.catalogues.size(), 2u);
    EXPECT_EQ(rec.catalogues[0].data_found, std::vector<int>{1});
    EXPECT_EQ(rec.catalogues[1].data_found, (std::vector<int>{0, 1}));
}

TEST(Read, CatalogueNumberedOtherThanZeroIsNotFoundAndItsDataIsDiscarded)
{
    vlm::archive a;
    a.add("VLM00005.dat", vlm::chunk("first"));
    a.add("ABCD00001.vlk", one_scan_catalogue(5));
    a.add("00000.vlk", one_scan_catalogue(5));
    recorder rec;
    // The second catalogue's level-1 record makes the root.
    EXPECT_EQ(read_with(a, rec, "catalogue_numbered_1.vlm"), 1);
    ASSERT_EQ(rec.catalogues.size(), 2u);
    EXPECT_EQ(rec.catalogues[0].indx, 1);
    EXPECT_FALSE(rec.catalogues[0].found);
    EXPECT_FALSE(rec.catalogues[0].separator);
    EXPECT_TRUE(rec.catalogues[0].levels.empty());
    // The data entry went with the catalogue that could not use it.
    EXPECT_TRUE(rec.catalogues[1].found);
    EXPECT_EQ(rec.catalogues[1].data_found, std::vector<int>{0});
}

TEST(Read, DataEntryOf24BytesYieldsNoElement)
{
    vlm::archive a;
    a.add("VLM00005.dat", vlm::chunk("abcdef").substr(0, 24), vlm::method::stored);
    a.add("00000.vlk", one_scan_catalogue(5));
    recorder rec;
    read_with(a, rec, "data_24_bytes.vlm");
    ASSERT_EQ(rec.entries.size(), 2u);
    EXPECT_FALSE(rec.entries[0].has_content);
    EXPECT_EQ(rec.entries[0].chunks, 0);
    EXPECT_EQ(rec.catalogues[0].data_found, std::vector<int>{0});
    EXPECT_EQ(rec.catalogues[0].directory_entries, 1);
}

TEST(Read, CatalogueIsCutAt10000BytesAndTheCutRecordReadAsFarAsItGoes)
{
    vlm::catalogue c;
    c.separator("-");
    std::string text = c.text();
    while (text.size() < 9990 - 40)
        text += "1,Group,Padding\n";
    // One padding line of the length that makes the records end at byte 9990.
    text += "1,G," + std::string(9990 - text.size() - 5, 'p') + "\n";
    ASSERT_EQ(text.size(), 9990u);
    const std::size_t cut_at = 10000 - text.size();
    const std::string last = "2,LongName0,LongName1\n";
    ASSERT_LT(cut_at, last.size());
    text += last + "1,After,TheCut\n";
    vlm::archive a;
    a.add("00000.vlk", text);
    recorder rec;
    read_with(a, rec, "catalogue_cut.vlm");
    ASSERT_EQ(rec.entries.size(), 1u);
    EXPECT_EQ(rec.entries[0].content.size(), 10000u);
    ASSERT_EQ(rec.catalogues.size(), 1u);
    EXPECT_EQ(rec.catalogues[0].size, 10000);
    ASSERT_FALSE(rec.catalogues[0].levels.empty());
    EXPECT_EQ(rec.catalogues[0].levels.back(), 2);   // the cut record, nothing after it
    EXPECT_EQ(rec.catalogues[0].name0s.back(), "LongName");
}

TEST(Read, CatalogueWithAnEmptyLineReadsTheRecordsAroundIt)
{
    vlm::archive a;
    a.add("00000.vlk", vlm::catalogue().separator().level1("A", "B").raw("").level2("C", "D").text());
    recorder rec;
    read_with(a, rec, "catalogue_empty_line.vlm");
    ASSERT_EQ(rec.catalogues.size(), 1u);
    EXPECT_EQ(rec.catalogues[0].levels, (std::vector<int>{1, 2}));
}

TEST(Read, EmptyCatalogueEntryIsNotAddedButStillProcessed)
{
    vlm::archive a;
    a.add("VLM00005.dat", vlm::chunk("x"));
    a.add("00000.vlk", "");
    recorder rec;
    EXPECT_EQ(read_with(a, rec, "catalogue_empty.vlm"), 0);
    ASSERT_EQ(rec.catalogues.size(), 1u);
    EXPECT_FALSE(rec.catalogues[0].found);
    EXPECT_EQ(rec.catalogues[0].directory_entries, 1);   // the data entry, until it is freed
}

TEST(Read, FileThatIsNotAZipReturnsZero)
{
    const std::string path = vlm::temp_path("not_a_zip.vlm");
    ASSERT_TRUE(vlm::write_file(path, "3,1,1,0,101,date\n"));
    recorder rec;
    vmiFile f;
    f.set_observer(&rec);
    EXPECT_EQ(f.read(path.c_str()), 0);
    EXPECT_EQ(f.num_objects(), 0);
    EXPECT_TRUE(rec.entries.empty());
    std::remove(path.c_str());
}

TEST(Read, TruncatedZipReturnsZeroAtEveryLength)
{
    vlm::archive a;
    a.add("VLM00005.dat", vlm::chunk_chain(std::string(3000, 'q'), 700));
    a.add("00000.vlk", one_scan_catalogue(5));
    const std::string whole_path = vlm::temp_path("whole.vlm");
    ASSERT_TRUE(a.write(whole_path));
    const std::string whole = vlm::read_file(whole_path);
    const std::string path = vlm::temp_path("truncated.vlm");
    for (std::size_t n = 0; n < whole.size(); n += 13) {
        ASSERT_TRUE(vlm::write_file(path, whole.substr(0, n)));
        vmiFile f;
        EXPECT_EQ(f.read(path.c_str()), 0) << "cut at " << n;
    }
    std::remove(path.c_str());
    std::remove(whole_path.c_str());
}

TEST(Read, MissingFileReturnsZero)
{
    vmiFile f;
    EXPECT_EQ(f.read(vlm::temp_path("never_written.vlm").c_str()), 0);
}

TEST(Read, HostileDataEntriesAreReadWithinTheirBounds)
{
    // 600 chunks, a chunk declaring 0xFFFFFFFF bytes, a grid of 0x7FFFFFFF
    // squared nodes: each is absorbed and the catalogue still sees the rest.
    std::string many;
    for (int k = 0; k < 600; ++k)
        many += vlm::chunk("ab");
    const std::string tiny = vlm::zlib_compress("t");
    vlm::height_grid g;
    g.nx = 0x7FFFFFFF;
    g.ny = 0x7FFFFFFF;
    vlm::archive a;
    a.add("VLM00001.dat", many);
    a.add("VLM00002.dat", vlm::chunk_header(static_cast<std::uint32_t>(tiny.size()), 0xFFFFFFFFu) + tiny);
    a.add("VLM00003.dat", vlm::chunk(vlm::grid_entry(g)));
    a.add("00000.vlk", vlm::catalogue().separator().level3(1, 1, 0, 1, "d", "n", "c", 1)
                           .level3(1, 2, 0, 1, "d", "n", "c", 2).level3(1, 3, 0, 1, "d", "n", "c", 3).text());
    recorder rec;
    EXPECT_EQ(read_with(a, rec, "hostile.vlm"), 0);
    ASSERT_EQ(rec.entries.size(), 4u);
    EXPECT_EQ(rec.entries[0].chunks, 512);
    EXPECT_EQ(rec.entries[0].content.size(), 1024u);
    EXPECT_FALSE(rec.entries[1].has_content);
    EXPECT_EQ(rec.catalogues[0].data_found, (std::vector<int>{1, 0, 1}));
}

namespace {

// Reads the bytes of a ZIP file with a recorder.
int read_bytes_with(const std::string& bytes, recorder& rec, const std::string& tag)
{
    const std::string path = vlm::temp_path(tag);
    EXPECT_TRUE(vlm::write_file(path, bytes));
    vmiFile f;
    f.set_observer(&rec);
    const int result = f.read(path.c_str());
    std::remove(path.c_str());
    return result;
}

// The reasons of every refusal the recorder heard, in order.
std::vector<vmiSkipReason> reasons(const recorder& rec)
{
    std::vector<vmiSkipReason> out;
    for (const vmiReadSkip& s : rec.skips)
        out.push_back(s.reason);
    return out;
}

using reason_list = std::vector<vmiSkipReason>;

} // namespace

TEST(Read, CatalogueOfAnUnreadableMethodIsRefusedAsUnreadable)
{
    vlm::archive a;
    a.add("VLM00005.dat", vlm::chunk_chain("PCSC", 4));
    a.add("00000000.vlk", one_scan_catalogue(5), vlm::method::stored);
    recorder rec;
    EXPECT_EQ(read_bytes_with(vlm::with_method(a.bytes(), "00000000.vlk", vlm::zip_method_lzma), rec, "lzma"), 0);
    ASSERT_EQ(reasons(rec), reason_list{vmiSkipReason::entry_unreadable});
    EXPECT_EQ(rec.skips[0].entry.str(), "00000000.vlk");
    EXPECT_EQ(rec.skips[0].value, static_cast<long long>(one_scan_catalogue(5).size()));
}

TEST(Read, ArchiveWithoutACatalogueSaysSo)
{
    vlm::archive a;
    a.add("VLM00005.dat", vlm::chunk_chain("PCSC", 4));
    recorder rec;
    EXPECT_EQ(read_with(a, rec, "no_catalogue"), 0);
    ASSERT_EQ(reasons(rec), reason_list{vmiSkipReason::no_catalogue});
}

TEST(Read, EmptyCatalogueIsRefusedAsEmpty)
{
    vlm::archive a;
    a.add("00000.vlk", "");
    recorder rec;
    EXPECT_EQ(read_with(a, rec, "catalogue_empty"), 0);
    ASSERT_EQ(reasons(rec), reason_list{vmiSkipReason::catalogue_empty});
    EXPECT_EQ(rec.skips[0].entry.str(), "00000.vlk");
}

TEST(Read, CatalogueWithoutSeparatorOrRecordsSaysWhich)
{
    vlm::archive a;
    a.add("A00000.vlk", vlm::catalogue().header("just a header").text());
    a.add("B00000.vlk", vlm::catalogue().header("a header").separator().text());
    recorder rec;
    EXPECT_EQ(read_with(a, rec, "catalogue_no_records"), 0);
    EXPECT_EQ(reasons(rec), (reason_list{vmiSkipReason::no_separator, vmiSkipReason::no_records}));
}

TEST(Read, CatalogueOfAnotherNumberIsNotFound)
{
    vlm::archive a;
    a.add("VLM00001.vlk", one_scan_catalogue(5));
    recorder rec;
    EXPECT_EQ(read_with(a, rec, "catalogue_number_1"), 0);
    ASSERT_EQ(reasons(rec), reason_list{vmiSkipReason::catalogue_not_found});
}

TEST(Read, TruncatedZipIsNotAZip)
{
    vlm::archive a;
    a.add("VLM00005.dat", vlm::chunk_chain("PCSC", 4));
    a.add("00000.vlk", one_scan_catalogue(5));
    const std::string whole = a.bytes();
    recorder rec;
    EXPECT_EQ(read_bytes_with(whole.substr(0, whole.size() / 2), rec, "truncated"), 0);
    ASSERT_EQ(reasons(rec), reason_list{vmiSkipReason::not_a_zip});
    EXPECT_TRUE(rec.entries.empty());
}

TEST(Read, ChunkChainCutShortIsReportedWithItsEntry)
{
    const std::string chain = vlm::chunk_chain(std::string(400, 'x'), 100);
    vlm::archive a;
    a.add("VLM00005.dat", chain.substr(0, chain.size() - 7));
    a.add("00000.vlk", one_scan_catalogue(5));
    recorder rec;
    read_with(a, rec, "chain_cut");
    ASSERT_FALSE(rec.entries.empty());
    EXPECT_EQ(rec.entries[0].end, vmiChainEnd::cut_short);
    EXPECT_EQ(rec.entries[0].chunks, 4);
}

TEST(Read, RecordWhoseDataEntryIsMissingOrOfAnotherKindIsSkipped)
{
    vlm::archive a;
    a.add("VLM00006.dat", vlm::chunk_chain("0001 a contour, not a scan", 40));
    a.add("00000.vlk", vlm::catalogue()
                           .separator()
                           .level1("Client", "Case")
                           .level2("Left", "Scans")
                           .level3(1, 1, 0, 101, "d", "missing", "", 5)
                           .level3(1, 2, 0, 101, "d", "other kind", "", 6)
                           .text());
    recorder rec;
    read_with(a, rec, "record_skips");
    ASSERT_EQ(rec.skips.size(), 2u);
    EXPECT_EQ(rec.skips[0].reason, vmiSkipReason::entry_not_found);
    EXPECT_EQ(rec.skips[0].record, 1);
    EXPECT_EQ(rec.skips[0].data_indx, 5);
    EXPECT_EQ(rec.skips[1].reason, vmiSkipReason::wrong_magic);
    EXPECT_EQ(rec.skips[1].found, "0001");
    EXPECT_EQ(rec.skips[1].wanted, "PCSC");
}

TEST(Read, RecordBeforeAnyGroupAndOfAnUnknownKindAreSkipped)
{
    vlm::archive a;
    a.add("00000.vlk", vlm::catalogue()
                           .separator()
                           .level3(1, 1, 0, 101, "d", "no group", "", 5)
                           .level1("Client", "Case")
                           .level2("Left", "Scans")
                           .level3(7, 2, 0, 101, "d", "unknown", "", 5)
                           .text());
    recorder rec;
    read_with(a, rec, "record_group_kind");
    ASSERT_EQ(rec.skips.size(), 2u);
    EXPECT_EQ(rec.skips[0].reason, vmiSkipReason::no_group);
    EXPECT_EQ(rec.skips[1].reason, vmiSkipReason::unknown_record);
    EXPECT_EQ(rec.skips[1].value, 7);
}
