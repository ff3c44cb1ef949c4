#pragma once
// Sha256: the SHA-256 digest the listings and dump summaries give for byte
// contents, so that two runs (or a test and the command) can compare contents
// without printing them.
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

class Sha256 {
public:
    Sha256();

    void update(const void* data, std::size_t len);
    // The digest of everything given so far; the object is spent afterwards.
    std::array<std::uint8_t, 32> finish();

    // The digest of data as 64 lower-case hexadecimal characters.
    static std::string hex(const void* data, std::size_t len);
    static std::string hex(std::string_view data) { return hex(data.data(), data.size()); }

private:
    void block(const std::uint8_t* p);

    std::array<std::uint32_t, 8> h_;
    std::array<std::uint8_t, 64> buf_{};
    std::size_t buf_len_ = 0;
    std::uint64_t total_ = 0;
};
