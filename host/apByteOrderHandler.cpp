#include "host/apByteOrderHandler.h"

#include <cstring>

apByteOrderHandler::apByteOrderHandler(int file_order, int machine_order)
    : swap_(file_order != machine_order)
{
}

namespace {
std::uint32_t load(const unsigned char* p, bool swap)
{
    unsigned char b[4] = {p[0], p[1], p[2], p[3]};
    if (swap) {
        unsigned char t = b[0]; b[0] = b[3]; b[3] = t;
        t = b[1]; b[1] = b[2]; b[2] = t;
    }
    std::uint32_t v;
    std::memcpy(&v, b, 4);
    return v;
}
} // namespace

std::int32_t apByteOrderHandler::int32(const unsigned char* p) const
{
    return static_cast<std::int32_t>(load(p, swap_));
}

float apByteOrderHandler::float32(const unsigned char* p) const
{
    std::uint32_t v = load(p, swap_);
    float f;
    std::memcpy(&f, &v, 4);
    return f;
}
