// Random and mutated inputs for the parsers: each buffer is allocated to its
// exact size, so that a read past its end shows under the address sanitizer,
// and every loop must come to an end.
#include <cstring>
#include <memory>
#include <random>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "archive/vmiArchiveElement.h"
#include "archive/vmiFile.h"
#include "grid/vmiBaseGrid.h"
#include "tests/support/vlmWriter.h"

namespace {

char* exact_copy(const std::string& s)
{
    char* b = new char[s.size() ? s.size() : 1];
    std::memcpy(b, s.data(), s.size());
    return b;
}

} // namespace

TEST(Hostile, RandomCatalogueTextAlwaysEndsWithinItsBuffer)
{
    std::mt19937 rng(12345);
    const char alphabet[] = "123x-,,\n\n\r ";
    for (int round = 0; round < 3000; ++round) {
        std::string text;
        const int n = static_cast<int>(rng() % 120);
        for (int k = 0; k < n; ++k)
            text += alphabet[rng() % (sizeof alphabet - 1)];
        vmiFile f;
        f.archive().add(new vmiArchiveElement("00000.vlk", exact_copy(text), static_cast<int>(text.size()), vmiEntryKind::catalogue, 0));
        f.proc_vlk();
        // Header and records are read to the end of the text, whatever it holds.
        EXPECT_EQ(f.is_vlk_end(), 1) << text;
    }
}

TEST(Hostile, MutatedChunkChainsNeverReadOrWritePastTheirBuffers)
{
    std::mt19937 rng(777);
    std::string data(3000, '\0');
    for (std::size_t k = 0; k < data.size(); ++k)
        data[k] = static_cast<char>(rng() % 7);
    const std::string chain = vlm::chunk_chain(data, 700);
    for (int round = 0; round < 400; ++round) {
        std::string entry = chain;
        const int flips = 1 + static_cast<int>(rng() % 6);
        for (int k = 0; k < flips; ++k)
            entry[rng() % entry.size()] = "0123456789ABCDEFZIP\xFF"[rng() % 20];
        entry.resize(rng() % (entry.size() + 1));
        vmiFile f;
        std::istringstream in(entry);
        int len = -1;
        int chunks = -1;
        std::unique_ptr<char[]> buf(f.extract_all_ZIP(in, len, chunks));
        EXPECT_GE(chunks, 0);
        EXPECT_LE(chunks, vmiFile::max_chunks);
        EXPECT_EQ(buf == nullptr, len == 0);
        if (buf) {
            // Every byte of the buffer is addressable.
            unsigned sum = 0;
            for (int k = 0; k < len; ++k)
                sum += static_cast<unsigned char>(buf[static_cast<std::size_t>(k)]);
            (void)sum;
        }
    }
}

TEST(Hostile, TruncatedGridRecordsAtEveryLengthStayWithinTheirBuffers)
{
    vlm::height_grid g;
    g.nx = 5;
    g.ny = 4;
    g.nodata = 3;
    for (int k = 0; k < 20; ++k)
        g.codes.push_back(static_cast<std::uint16_t>(k));
    const std::string whole = vlm::height_grid_record(g);
    for (std::size_t n = 0; n <= whole.size(); ++n) {
        std::unique_ptr<char[]> buf(exact_copy(whole.substr(0, n)));
        vmiFile f;
        f.init_dat(buf.get(), static_cast<int>(n));
        std::unique_ptr<vmiBaseGrid> grid(f.create_base_grid());
        ASSERT_TRUE(grid) << "cut at " << n;
        // Everything was read but a lone last byte, which makes no code.
        EXPECT_EQ(f.is_end(2), 1) << "cut at " << n;
    }
}
