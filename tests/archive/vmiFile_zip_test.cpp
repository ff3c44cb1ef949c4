// The chunk chain of a data entry: joining, the fixed bounds, hostile headers.
#include <sstream>
#include <string>
#include <zlib.h>

#include <gtest/gtest.h>

#include "archive/vmiFile.h"
#include "grid/vmiBaseGrid.h"
#include "tests/support/vlmWriter.h"

namespace {

struct joined {
    std::string bytes;
    bool null = true;
    int len = -1;
    int chunks = -1;
};

joined extract(const std::string& entry)
{
    vmiFile f;
    std::istringstream in(entry);
    joined j;
    char* buf = f.extract_all_ZIP(in, j.len, j.chunks);
    j.null = buf == nullptr;
    if (buf)
        j.bytes.assign(buf, static_cast<std::size_t>(j.len));
    delete[] buf;
    return j;
}

std::string pattern(std::size_t n)
{
    std::string s(n, '\0');
    for (std::size_t k = 0; k < n; ++k)
        s[k] = static_cast<char>('a' + (k * 7) % 26);
    return s;
}

} // namespace

TEST(ExtractAllZip, JoinsChunksInOrder)
{
    const std::string data = pattern(1000);
    const joined j = extract(vlm::chunk_chain(data, 300));
    EXPECT_EQ(j.chunks, 4);
    EXPECT_EQ(j.len, 1000);
    EXPECT_EQ(j.bytes, data);
}

TEST(ExtractAllZip, TwoArgumentFormGivesTheSameBuffer)
{
    const std::string data = pattern(100);
    vmiFile f;
    std::istringstream in(vlm::chunk_chain(data, 30));
    int len = 0;
    char* buf = f.extract_all_ZIP(in, len);
    ASSERT_NE(buf, nullptr);
    EXPECT_EQ(std::string(buf, static_cast<std::size_t>(len)), data);
    delete[] buf;
}

TEST(ExtractAllZip, EntryOf24BytesYieldsNoBuffer)
{
    const std::string entry = vlm::chunk(pattern(50)).substr(0, 24);
    const joined j = extract(entry);
    EXPECT_TRUE(j.null);
    EXPECT_EQ(j.len, 0);
    EXPECT_EQ(j.chunks, 0);
}

TEST(ExtractAllZip, EmptyEntryYieldsNoBuffer)
{
    const joined j = extract("");
    EXPECT_TRUE(j.null);
    EXPECT_EQ(j.len, 0);
}

TEST(ExtractAllZip, HeaderNotStartingWithZipIsPassedOver)
{
    const std::string data = pattern(40);
    const std::string junk = vlm::chunk_header(3, 3, false, "XIP");
    const joined j = extract(junk + vlm::chunk(data));
    EXPECT_EQ(j.chunks, 1);
    EXPECT_EQ(j.bytes, data);
}

TEST(ExtractAllZip, StopsAfter512Chunks)
{
    // 600 chunks of 3 bytes: the chain ends after the 512th, which are kept.
    std::string entry;
    std::string expected;
    for (int k = 0; k < 600; ++k) {
        const std::string piece = std::to_string(100 + k);
        entry += vlm::chunk(piece);
        if (k < vmiFile::max_chunks)
            expected += piece;
    }
    const joined j = extract(entry);
    EXPECT_EQ(vmiFile::max_chunks, 512);
    EXPECT_EQ(j.chunks, 512);
    EXPECT_EQ(j.len, 512 * 3);
    EXPECT_EQ(j.bytes, expected);
}

TEST(ExtractAllZip, ShortChunkStillTakesItsDeclaredRoomWithinTheProducedTotal)
{
    // Chunk 1 declares 20 bytes and produces 10; chunk 2 produces 10. The
    // content is the first 20 bytes of [10 bytes, 10 zeros, chunk 2]: chunk 2
    // lies beyond the produced total and is cut off.
    const std::string a = pattern(10);
    const std::string za = vlm::zlib_compress(a);
    const std::string entry = vlm::chunk_header(static_cast<std::uint32_t>(za.size()), 20) + za + vlm::chunk("ZZZZZZZZZZ");
    const joined j = extract(entry);
    EXPECT_EQ(j.chunks, 2);
    EXPECT_EQ(j.len, 20);
    EXPECT_EQ(j.bytes, a + std::string(10, '\0'));
}

TEST(ExtractAllZip, ChunkProducingMoreThanDeclaredKeepsOnlyTheDeclaredSize)
{
    const std::string data = pattern(100);
    const std::string z = vlm::zlib_compress(data);
    const std::string entry = vlm::chunk_header(static_cast<std::uint32_t>(z.size()), 30) + z + vlm::chunk("tail");
    const joined j = extract(entry);
    EXPECT_EQ(j.len, 34);
    EXPECT_EQ(j.bytes, data.substr(0, 30) + "tail");
}

TEST(ExtractAllZip, CorruptChunkKeepsItsRoomAsZeros)
{
    // A stream that inflates to nothing still takes its declared 8 bytes; the
    // total counts only produced bytes, so the next chunk's 8 bytes are what
    // fits: the first 8 bytes of [8 zeros, "abcdefgh"].
    const std::string garbage(12, '\x55');
    const std::string entry = vlm::chunk_header(12, 8) + garbage + vlm::chunk("abcdefgh");
    const joined j = extract(entry);
    EXPECT_EQ(j.chunks, 2);
    EXPECT_EQ(j.len, 8);
    EXPECT_EQ(j.bytes, std::string(8, '\0'));
}

TEST(ExtractAllZip, NegativeDecompressedSizeEndsTheChainKeepingEarlierChunks)
{
    const std::string tiny = vlm::zlib_compress("x");
    const std::string entry = vlm::chunk("first") +
                              vlm::chunk_header(static_cast<std::uint32_t>(tiny.size()), 0xFFFFFFFFu) + tiny +
                              vlm::chunk("never");
    const joined j = extract(entry);
    EXPECT_EQ(j.chunks, 1);
    EXPECT_EQ(j.bytes, "first");
}

TEST(ExtractAllZip, NegativeCompressedSizeEndsTheChainKeepingEarlierChunks)
{
    const std::string entry = vlm::chunk("first") + vlm::chunk_header(0x80000000u, 5) + "xxxxx" + vlm::chunk("never");
    const joined j = extract(entry);
    EXPECT_EQ(j.chunks, 1);
    EXPECT_EQ(j.bytes, "first");
}

TEST(ExtractAllZip, HugeDeclaredSizeWithTinyStreamYieldsWhatTheStreamHolds)
{
    const std::string z = vlm::zlib_compress("small");
    const std::string entry = vlm::chunk_header(static_cast<std::uint32_t>(z.size()), 0x7FFFFFFFu) + z;
    const joined j = extract(entry);
    EXPECT_EQ(j.chunks, 1);
    EXPECT_EQ(j.bytes, "small");
}

TEST(ExtractAllZip, CompressedSizeBeyondTheEntryReadsWhatIsThere)
{
    const std::string z = vlm::zlib_compress("abc");
    const std::string entry = vlm::chunk_header(0x7FFFFFF0u, 3) + z;
    const joined j = extract(entry);
    EXPECT_EQ(j.chunks, 1);
    EXPECT_EQ(j.bytes, "abc");
}

TEST(ChunkCapacity, NeverMoreThanTheCompressedBytesCanInflateTo)
{
    EXPECT_EQ(vmiFile::max_inflate_ratio, 1032);
    EXPECT_EQ(vmiFile::chunk_capacity(10, 0x7FFFFFFF, vmiFile::max_entry_bytes),
              10 * vmiFile::max_inflate_ratio + vmiFile::inflate_slack);
    EXPECT_EQ(vmiFile::chunk_capacity(10, 500, vmiFile::max_entry_bytes), 500);
    EXPECT_EQ(vmiFile::chunk_capacity(1 << 20, 1 << 30, 1000), 1000);
    EXPECT_EQ(vmiFile::chunk_capacity(10, -1, 1000), 0);
    EXPECT_EQ(vmiFile::chunk_capacity(10, 10, 0), 0);
}

TEST(ChunkCapacity, HighlyCompressibleChunkStillFitsItsRoom)
{
    // A megabyte of zeros compresses about 1000:1: the ratio bound must leave
    // room for all of it.
    const std::string data(1 << 20, '\0');
    const joined j = extract(vlm::chunk(data));
    EXPECT_EQ(j.len, 1 << 20);
    EXPECT_EQ(j.bytes, data);
}

TEST(ExtractAllZip, ProducedTotalStopsAtTheEntryBound)
{
    // With a bound of 250 bytes, chunks of 100 give 100, 100 and 50 bytes and
    // the chain ends there.
    std::string data = pattern(1000);
    vmiFile f;
    std::istringstream in(vlm::chunk_chain(data, 100));
    int len = 0;
    int chunks = 0;
    char* buf = f.join_chunks(in, len, chunks, 250);
    ASSERT_NE(buf, nullptr);
    EXPECT_EQ(chunks, 3);
    EXPECT_EQ(len, 250);
    EXPECT_EQ(std::string(buf, 250), data.substr(0, 250));
    delete[] buf;
}

TEST(ExtractAllZip, ChunkLongerThanTheBudgetCanUseIsReadOnlyAsFarAsUseful)
{
    // A stored (level 0) stream of 20000 bytes with 100 output bytes left:
    // only input_limit(100) compressed bytes are read, the first 100 bytes
    // come out, and the chain ends behind the chunk.
    const std::string data = pattern(20000);
    const std::string z = vlm::zlib_compress(data, 0);
    const std::string entry = vlm::chunk_header(static_cast<std::uint32_t>(z.size()), 20000) + z + vlm::chunk("next");
    vmiFile f;
    std::istringstream in(entry);
    int len = 0;
    int chunks = 0;
    char* buf = f.join_chunks(in, len, chunks, 100);
    ASSERT_NE(buf, nullptr);
    EXPECT_EQ(chunks, 1);
    EXPECT_EQ(len, 100);
    EXPECT_EQ(std::string(buf, 100), data.substr(0, 100));
    delete[] buf;
    EXPECT_EQ(static_cast<std::int64_t>(in.tellg()), 25 + vmiFile::input_limit(100));
}

TEST(ExtractAllZip, InputLimitCoversTheLargestStreamOfTheBudget)
{
    // zlib never makes a stream of n bytes longer than compressBound(n).
    const std::string data = pattern(5000);
    EXPECT_GE(vmiFile::input_limit(5000), static_cast<std::int64_t>(vlm::zlib_compress(data, 0).size()));
    for (std::int64_t n : {std::int64_t(1), std::int64_t(5000), std::int64_t(vmiFile::max_entry_bytes)})
        EXPECT_GE(vmiFile::input_limit(n), static_cast<std::int64_t>(compressBound(static_cast<uLong>(n))));
    EXPECT_EQ(vmiFile::input_limit(0), 0);
}

TEST(ExtractAllZip, EntryBoundHoldsTheLargestGridRecord)
{
    // The bound never cuts a real record: a grid of the most nodes allowed,
    // 2 bytes a node behind its 512-byte header.
    EXPECT_GE(vmiFile::max_entry_bytes, 512 + 2 * vmiBaseGrid::max_nodes);
    EXPECT_LE(vmiFile::max_entry_bytes, std::int64_t(INT32_MAX));
}

TEST(ExtractAllZip, ChunkDeclaringNoBytesBeforeARealOneCopiesNothingFromIt)
{
    // The first chunk declares 0 decompressed bytes and so produces none; it
    // takes no room, and the chunk behind it starts the content.
    const std::string b = pattern(12);
    const std::string zb = vlm::zlib_compress(pattern(5));
    const std::string entry = vlm::chunk_header(static_cast<std::uint32_t>(zb.size()), 0) + zb + vlm::chunk(b);
    const joined j = extract(entry);
    EXPECT_EQ(j.chunks, 2);
    EXPECT_EQ(j.len, 12);
    EXPECT_EQ(j.bytes, b);
}

namespace {

// Why the chain of entry ended, with the bound on produced bytes given.
vmiChainEnd chain_end(const std::string& entry, std::int64_t max_total = vmiFile::max_entry_bytes)
{
    vmiFile f;
    std::istringstream in(entry);
    int len = 0;
    int chunks = 0;
    vmiChainEnd end = vmiChainEnd::bad_stream;
    delete[] f.join_chunks(in, len, chunks, max_total, &end);
    return end;
}

} // namespace

TEST(ExtractAllZip, ChainThatRunsToTheEntryEndEndsAtEnd)
{
    EXPECT_EQ(chain_end(vlm::chunk_chain(pattern(1000), 300)), vmiChainEnd::end);
    EXPECT_EQ(chain_end(""), vmiChainEnd::end);
}

TEST(ExtractAllZip, ChainCutInsideAChunksBytesEndsCutShort)
{
    const std::string whole = vlm::chunk_chain(pattern(1000), 300);
    EXPECT_EQ(chain_end(whole.substr(0, whole.size() - 10)), vmiChainEnd::cut_short);
}

TEST(ExtractAllZip, ChainCutInsideAHeaderEndsCutShort)
{
    const std::string one = vlm::chunk(pattern(100));
    EXPECT_EQ(chain_end(one + vlm::chunk(pattern(50)).substr(0, 24)), vmiChainEnd::cut_short);
    // A whole header more would be read as a chunk: one byte less is cut short.
    EXPECT_EQ(chain_end(one + std::string(1, 'Z')), vmiChainEnd::cut_short);
}

TEST(ExtractAllZip, ChainAtANegativeSizeEndsNegativeSize)
{
    const std::string entry = vlm::chunk(pattern(100)) + vlm::chunk_header(0xFFFFFFFFu, 10) + "xxxxxxxxxx";
    EXPECT_EQ(chain_end(entry), vmiChainEnd::negative_size);
}

TEST(ExtractAllZip, ChainOverTheChunkLimitEndsLimitAndExactlyAtItEnds)
{
    std::string exactly;
    for (int k = 0; k < vmiFile::max_chunks; ++k)
        exactly += vlm::chunk("a");
    EXPECT_EQ(chain_end(exactly), vmiChainEnd::end);
    EXPECT_EQ(chain_end(exactly + vlm::chunk("a")), vmiChainEnd::limit);
}

TEST(ExtractAllZip, ChainOverTheByteBudgetEndsBudgetAndExactlyAtItEnds)
{
    const std::string entry = vlm::chunk_chain(pattern(300), 100);
    EXPECT_EQ(chain_end(entry, 300), vmiChainEnd::end);
    EXPECT_EQ(chain_end(entry, 299), vmiChainEnd::budget);
    EXPECT_EQ(chain_end(entry, 200), vmiChainEnd::budget);
}

TEST(ExtractAllZip, ChainWithADamagedStreamEndsBadStreamAndKeepsTheRest)
{
    std::string bad = vlm::zlib_compress(pattern(100));
    bad[bad.size() - 1] = static_cast<char>(bad[bad.size() - 1] ^ 0x55);   // the checksum no longer fits
    const std::string entry = vlm::chunk_header(static_cast<std::uint32_t>(bad.size()), 100) + bad +
                              vlm::chunk(pattern(50));
    EXPECT_EQ(chain_end(entry), vmiChainEnd::bad_stream);
    joined j = extract(entry);
    EXPECT_EQ(j.chunks, 2);
}
