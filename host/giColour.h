#pragma once
// giColour: the host's RGBA colour, one byte per component.
//
// Contract for a host's vendor: each component keeps the low byte of the
// integer it was given (256 reads as 0, -1 as 255), so a packed 0xRRGGBB can
// be split by shifting alone: giColour(c >> 16, c >> 8, c, 0).
#include <cstdint>

class giColour {
public:
    giColour() = default;
    giColour(int r, int g, int b, int a)
        : r_(static_cast<std::uint8_t>(r & 0xFF)), g_(static_cast<std::uint8_t>(g & 0xFF)),
          b_(static_cast<std::uint8_t>(b & 0xFF)), a_(static_cast<std::uint8_t>(a & 0xFF))
    {
    }
    int r() const { return r_; }
    int g() const { return g_; }
    int b() const { return b_; }
    int a() const { return a_; }
    friend bool operator==(const giColour& x, const giColour& y)
    {
        return x.r_ == y.r_ && x.g_ == y.g_ && x.b_ == y.b_ && x.a_ == y.a_;
    }

private:
    std::uint8_t r_ = 0, g_ = 0, b_ = 0, a_ = 0;
};
