#include "cli/Utf8.h"

std::size_t Utf8::sequence_length(std::string_view s, std::size_t i)
{
    const auto at = [&](std::size_t k) { return static_cast<unsigned char>(s[k]); };
    const unsigned char b0 = at(i);
    std::size_t n = 0;
    // The allowed range of the second byte: narrower after E0, ED, F0 and F4,
    // which is what keeps out overlong forms, surrogates and values past
    // U+10FFFF.
    unsigned char lo = 0x80, hi = 0xBF;
    if (b0 < 0x80) return 1;
    if (b0 >= 0xC2 && b0 <= 0xDF) n = 2;
    else if (b0 == 0xE0) { n = 3; lo = 0xA0; }
    else if (b0 == 0xED) { n = 3; hi = 0x9F; }
    else if (b0 >= 0xE1 && b0 <= 0xEF) n = 3;
    else if (b0 == 0xF0) { n = 4; lo = 0x90; }
    else if (b0 == 0xF4) { n = 4; hi = 0x8F; }
    else if (b0 >= 0xF1 && b0 <= 0xF3) n = 4;
    else return 0;
    if (i + n > s.size()) return 0;
    if (at(i + 1) < lo || at(i + 1) > hi) return 0;
    for (std::size_t k = 2; k < n; ++k)
        if (at(i + k) < 0x80 || at(i + k) > 0xBF) return 0;
    return n;
}

std::string Utf8::from_bytes(std::string_view bytes)
{
    std::string out;
    out.reserve(bytes.size());
    for (std::size_t i = 0; i < bytes.size();) {
        if (const std::size_t len = sequence_length(bytes, i); len > 0) {
            out.append(bytes, i, len);
            i += len;
            continue;
        }
        const auto b = static_cast<unsigned char>(bytes[i++]);
        out += static_cast<char>(0xC0 | (b >> 6));
        out += static_cast<char>(0x80 | (b & 0x3F));
    }
    return out;
}
