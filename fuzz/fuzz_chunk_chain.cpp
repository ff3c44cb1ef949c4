// libFuzzer target: the content of one ".dat" entry through the chunk chain
// (25-byte "ZIP" headers, each followed by a zlib stream), without the ZIP
// around it. A small bound on the joined bytes keeps each run quick; the
// bound's own code path is the same as the real one's.
#include <cstdint>
#include <sstream>
#include <string>

#include "archive/vmiFile.h"

namespace {

// Far above what the inputs of a fuzzing run hold, far below the reader's
// real bound, so that headers declaring huge sizes stay cheap to run.
constexpr std::int64_t fuzz_max_total = std::int64_t(4) << 20;

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::istringstream in(std::string(reinterpret_cast<const char*>(data), size));
    vmiFile reader;
    int len = 0;
    int chunks = 0;
    char* buf = reader.join_chunks(in, len, chunks, fuzz_max_total);
    // Touch every byte claimed, so that a length beyond the buffer shows.
    unsigned sum = 0;
    for (int i = 0; buf && i < len; ++i) sum += static_cast<unsigned char>(buf[i]);
    delete[] buf;
    return sum == 0xFFFFFFFFu ? 1 : 0;
}
