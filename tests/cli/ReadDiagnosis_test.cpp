// The reasons the command line prints for an archive the reader refused.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "cli/ReadDiagnosis.h"
#include "tests/support/vlmWriter.h"

namespace {

std::string scan_catalogue(int data_indx)
{
    return vlm::catalogue()
        .separator()
        .level1("Client", "Case")
        .level2("Left", "Scans")
        .level3(1, 1, 0, 101, "d", "scan", "", data_indx)
        .text();
}

std::vector<std::string> reasons_of_bytes(const std::string& bytes, const std::string& tag)
{
    const std::string path = vlm::temp_path(tag);
    EXPECT_TRUE(vlm::write_file(path, bytes));
    std::vector<std::string> reasons = ReadDiagnosis::of(path);
    std::remove(path.c_str());
    return reasons;
}

} // namespace

TEST(ReadDiagnosis, CatalogueOfAnUnreadableMethodNamesTheMethod)
{
    vlm::archive a;
    a.add("00000000.vlk", scan_catalogue(5), vlm::method::stored);
    const auto reasons =
        reasons_of_bytes(vlm::with_method(a.bytes(), "00000000.vlk", vlm::zip_method_lzma),
                         "diag_lzma");
    ASSERT_EQ(reasons.size(), 1u);
    EXPECT_EQ(reasons[0], "catalogue 00000000.vlk uses ZIP compression method LZMA (14), which this build cannot read");
}

TEST(ReadDiagnosis, ZipWithoutCatalogueSaysSo)
{
    vlm::archive a;
    a.add("VLM00005.dat", vlm::chunk_chain("PCSC", 4));
    EXPECT_EQ(reasons_of_bytes(a.bytes(), "diag_nocat"),
              std::vector<std::string>{"the archive holds no catalogue entry (.vlk)"});
}

TEST(ReadDiagnosis, EmptyCatalogueSaysSo)
{
    vlm::archive a;
    a.add("00000.vlk", "");
    EXPECT_EQ(reasons_of_bytes(a.bytes(), "diag_empty"),
              std::vector<std::string>{"catalogue 00000.vlk is empty"});
}

TEST(ReadDiagnosis, TruncatedZipIsNoArchive)
{
    vlm::archive a;
    a.add("00000.vlk", scan_catalogue(5));
    const std::string whole = a.bytes();
    EXPECT_EQ(reasons_of_bytes(whole.substr(0, whole.size() - 30), "diag_trunc"),
              std::vector<std::string>{"not a ZIP archive the unzip service can open"});
}

TEST(ReadDiagnosis, ChainCutShortComesBeforeTheRecordItStarves)
{
    // A whole chunk "PC", then ten bytes of the next chunk's header.
    vlm::archive a;
    a.add("VLM00005.dat", vlm::chunk("PC") + vlm::chunk("SC").substr(0, 10));
    a.add("00000.vlk", scan_catalogue(5));
    const auto reasons = reasons_of_bytes(a.bytes(), "diag_cut");
    ASSERT_EQ(reasons.size(), 2u);
    EXPECT_EQ(reasons[0], "data entry VLM00005.dat: chunk chain cut short after 1 chunk");
    EXPECT_EQ(reasons[1], "record 1 of catalogue 00000.vlk skipped: data entry 5 starts with \"PC\", not \"PCSC\"");
}
