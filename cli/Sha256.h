#pragma once
// Sha256: the SHA-256 digest the listings and dump summaries give for byte
// contents, so that two runs (or a test and the command) can compare contents
// without printing them. The digest itself is nettle's.
#include <nettle/sha2.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

class Sha256 {
public:
    Sha256();

    void update(const void* data, std::size_t len);
    // The digest of everything given so far; the object starts over afterwards.
    std::array<std::uint8_t, 32> finish();

    // The digest of data as 64 lower-case hexadecimal characters.
    static std::string hex(const void* data, std::size_t len);
    static std::string hex(std::string_view data) { return hex(data.data(), data.size()); }

private:
    sha256_ctx ctx_;
};
