#include "host/apByteOrderHandler.h"

#include <cstring>

apByteOrderHandler::apByteOrderHandler(int file_order, int machine_order)
    : swap_(file_order != machine_order)
{
}

namespace {

// Assembled by shifts, so that the machine's own byte order never matters.
std::uint32_t load(const unsigned char* p, bool big_endian)
{
    if (big_endian)
        return (std::uint32_t{p[0]} << 24) | (std::uint32_t{p[1]} << 16) |
               (std::uint32_t{p[2]} << 8) | std::uint32_t{p[3]};
    return std::uint32_t{p[0]} | (std::uint32_t{p[1]} << 8) | (std::uint32_t{p[2]} << 16) |
           (std::uint32_t{p[3]} << 24);
}

}  // namespace

std::int32_t apByteOrderHandler::int32(const unsigned char* p) const
{
    // Two's complement conversion, defined since C++20.
    return static_cast<std::int32_t>(load(p, swap_));
}

float apByteOrderHandler::float32(const unsigned char* p) const
{
    std::uint32_t v = load(p, swap_);
    float f;
    std::memcpy(&f, &v, 4);
    return f;
}
