#include "cli/Sha256.h"

Sha256::Sha256() { sha256_init(&ctx_); }

void Sha256::update(const void* data, std::size_t len)
{
    sha256_update(&ctx_, len, static_cast<const std::uint8_t*>(data));
}

std::array<std::uint8_t, 32> Sha256::finish()
{
    static_assert(SHA256_DIGEST_SIZE == 32);
    std::array<std::uint8_t, 32> out;
    sha256_digest(&ctx_, out.size(), out.data());
    return out;
}

std::string Sha256::hex(const void* data, std::size_t len)
{
    static const char digits[] = "0123456789abcdef";
    Sha256 s;
    s.update(data, len);
    std::string out;
    for (std::uint8_t b : s.finish()) {
        out += digits[b >> 4];
        out += digits[b & 0xF];
    }
    return out;
}
