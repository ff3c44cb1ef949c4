// vmiFile: the chunk chain of a data entry. A ".dat" entry is a chain of
// chunks, each a 25-byte text header ("ZIP", 6 bytes not read, the compressed
// size C and the decompressed size D as 8 upper-case hexadecimal characters)
// followed by C bytes of one zlib stream.
#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <vector>
#include <zlib.h>

#include "archive/vmiFile.h"
#include "host/zlib_interface.h"

namespace {

constexpr int header_size = 25;
constexpr int c_offset = 9;
constexpr int d_offset = 17;

struct chunk {
    std::int64_t declared = 0;      // D: the room the chunk takes in the joined buffer
    std::vector<char> produced;     // what inflating it actually gave
};

// Up to c bytes of the stream, read in bounded pieces: a size the stream does
// not hold never turns into an allocation.
std::vector<char> read_input(std::istream& in, std::int64_t c)
{
    std::vector<char> src;
    while (c > 0 && in.good()) {
        const std::int64_t piece = std::min(c, vmiFile::input_piece);
        const std::size_t at = src.size();
        src.resize(at + static_cast<std::size_t>(piece));
        in.read(src.data() + at, static_cast<std::streamsize>(piece));
        const std::int64_t got = in.gcount();
        src.resize(at + static_cast<std::size_t>(got));
        c -= got;
        if (got < piece)
            break;
    }
    return src;
}

// The chunks' content, each at the sum of the declared sizes before it, cut
// to total bytes; bytes a chunk did not produce stay zero. Each chunk's own
// buffer is released once copied, so that an entry near max_entry_bytes
// never stands in memory twice (the joined buffer's pages are touched only
// as they are written).
char* join(std::vector<chunk>& chunks, std::int64_t total)
{
    char* out = new (std::nothrow) char[static_cast<std::size_t>(total)];
    if (!out)
        return nullptr;
    std::int64_t at = 0;
    std::int64_t filled = 0;  // bytes of out written so far, from its start
    for (chunk& k : chunks) {
        if (at >= total)
            break;
        const std::int64_t n = std::min<std::int64_t>(static_cast<std::int64_t>(k.produced.size()), total - at);
        // A chunk that produced nothing has no buffer to copy from.
        if (n > 0) {
            std::memset(out + filled, 0, static_cast<std::size_t>(at - filled));
            std::memcpy(out + at, k.produced.data(), static_cast<std::size_t>(n));
            filled = at + n;
        }
        std::vector<char>().swap(k.produced);
        at += k.declared;
    }
    std::memset(out + filled, 0, static_cast<std::size_t>(total - filled));
    return out;
}

} // namespace

std::int64_t vmiFile::chunk_capacity(std::int64_t c, std::int64_t d, std::int64_t budget)
{
    if (c < 0 || d < 0 || budget <= 0)
        return 0;
    return std::min({d, c * max_inflate_ratio + inflate_slack, budget});
}

std::int64_t vmiFile::input_limit(std::int64_t budget)
{
    if (budget <= 0)
        return 0;
    return static_cast<std::int64_t>(compressBound(static_cast<uLong>(budget))) + inflate_slack;
}

char* vmiFile::extract_all_ZIP(std::istream& in, int& len)
{
    int chunks = 0;
    return extract_all_ZIP(in, len, chunks);
}

char* vmiFile::extract_all_ZIP(std::istream& in, int& len, int& chunks, vmiChainEnd* end)
{
    return join_chunks(in, len, chunks, max_entry_bytes, end);
}

namespace {

// The first fault met is the chain's reason; later ones add nothing.
void fault(vmiChainEnd& why, vmiChainEnd what)
{
    if (why == vmiChainEnd::end)
        why = what;
}

bool more_follows(std::istream& in)
{
    return in.good() && in.peek() != std::istream::traits_type::eof();
}

} // namespace

char* vmiFile::join_chunks(std::istream& in, int& len, int& chunks, std::int64_t max_total, vmiChainEnd* end)
{
    len = 0;
    chunks = 0;
    vmiChainEnd why = vmiChainEnd::end;
    // The joined length is an int.
    max_total = std::min<std::int64_t>(max_total, INT32_MAX);
    std::vector<chunk> table;
    std::int64_t total = 0;
    char header[header_size];
    for (;;) {
        if (static_cast<int>(table.size()) >= max_chunks || total >= max_total) {
            if (end && more_follows(in))
                fault(why, total >= max_total ? vmiChainEnd::budget : vmiChainEnd::limit);
            break;
        }
        if (!in.read(header, header_size) || in.gcount() != header_size) {
            if (in.gcount() > 0)
                fault(why, vmiChainEnd::cut_short);
            break;
        }
        // A header that does not start with "ZIP" is passed over.
        if (std::memcmp(header, "ZIP", 3) != 0)
            continue;
        const std::int64_t c = get_text8_int(header + c_offset);
        const std::int64_t d = get_text8_int(header + d_offset);
        // A negative size is no chunk: the chain ends, the chunks before it stay.
        if (c < 0 || d < 0) {
            fault(why, vmiChainEnd::negative_size);
            break;
        }
        const std::int64_t budget = max_total - total;
        const std::int64_t wanted = std::min(c, input_limit(budget));
        std::vector<char> src = read_input(in, wanted);
        if (static_cast<std::int64_t>(src.size()) < wanted)
            fault(why, vmiChainEnd::cut_short);
        chunk k;
        k.declared = d;
        k.produced.resize(static_cast<std::size_t>(chunk_capacity(static_cast<std::int64_t>(src.size()), d, budget)));
        int src_len = static_cast<int>(src.size());
        int dst_len = static_cast<int>(k.produced.size());
        // The result code decides nothing: a short or corrupt chunk keeps
        // whatever it produced and still takes its declared room. It only
        // names the fault, unless the room was cut by the budget.
        int rc = 0;
        if (dst_len > 0 && src_len > 0)
            rc = un_compress(src.data(), src_len, k.produced.data(), dst_len);
        else
            dst_len = 0;
        if (rc != 0)
            fault(why, static_cast<std::int64_t>(k.produced.size()) == budget && budget < d ? vmiChainEnd::budget
                                                                                              : vmiChainEnd::bad_stream);
        k.produced.resize(static_cast<std::size_t>(std::max(dst_len, 0)));
        total += static_cast<std::int64_t>(k.produced.size());
        table.push_back(std::move(k));
        // The rest of an over-long chunk is not read, so no header can be
        // found behind it.
        if (wanted < c) {
            fault(why, vmiChainEnd::budget);
            break;
        }
    }
    if (end)
        *end = why;
    chunks = static_cast<int>(table.size());
    if (total <= 0)
        return nullptr;
    char* out = join(table, total);
    if (out)
        len = static_cast<int>(total);
    return out;
}

int vmiFile::un_compress(char* src, int& src_len, char* dst, int& dst_len)
{
    return zlib_interface::ziUncompress(dst, &dst_len, src, src_len);
}
