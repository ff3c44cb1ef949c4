#include "cli/dump/ArrayDigest.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <cmath>
#include <cstring>
#include <type_traits>

#include "cli/Sha256.h"

namespace {

// Bytes are handed to the digest in blocks of this many: one call per
// element would cost more than the hashing.
constexpr std::size_t block_bytes = 1 << 14;

// Gathers the bytes of elements and hands them on in blocks.
class Blocks {
public:
    unsigned char* room(std::size_t n)
    {
        if (used_ + n > sizeof buf_) flush();
        unsigned char* p = buf_ + used_;
        used_ += n;
        return p;
    }
    std::string finish()
    {
        flush();
        static const char hex[] = "0123456789abcdef";
        std::string text;
        text.reserve(64);
        for (std::uint8_t b : sha_.finish()) {
            text += hex[b >> 4];
            text += hex[b & 15];
        }
        return text;
    }
    Sha256& sha() { return sha_; }

private:
    void flush()
    {
        sha_.update(buf_, used_);
        used_ = 0;
    }
    unsigned char buf_[block_bytes];
    std::size_t used_ = 0;
    Sha256 sha_;
};

// Little-endian bytes, whatever the machine's order.
[[maybe_unused]] void put_le(unsigned char* p, std::uint64_t v, int n)
{
    for (int i = 0; i < n; ++i) p[i] = static_cast<unsigned char>(v >> (8 * i));
}

// The least and greatest finite value of each component, kept in plain
// doubles while the elements pass (the first of equal values stays, -0.0
// before 0.0 as it came).
class Bounds {
public:
    void take(int k, double c)
    {
        if (!std::isfinite(c)) return;
        lo_[k] = std::min(lo_[k], c);
        hi_[k] = std::max(hi_[k], c);
    }
    void into(ArrayDigest& d) const
    {
        for (int k = 0; k < 3; ++k)
            if (lo_[k] <= hi_[k]) {
                d.lo[k] = lo_[k];
                d.hi[k] = hi_[k];
            }
    }

private:
    static constexpr double inf = std::numeric_limits<double>::infinity();
    double lo_[3] = {inf, inf, inf};
    double hi_[3] = {-inf, -inf, -inf};
};

// On a little-endian machine an array of doubles (or of ints) without padding
// is already the dump's bytes: it is hashed in place.
template <class T, class Scalar, std::size_t N>
constexpr bool hashed_in_place =
    std::endian::native == std::endian::little && sizeof(T) == N * sizeof(Scalar) && std::is_trivially_copyable_v<T>;

} // namespace

ArrayDigest ArrayDigest::bounds_of(const std::vector<giPoint3>& v)
{
    ArrayDigest d;
    d.count = v.size();
    Bounds bounds;
    for (const giPoint3& p : v) {
        bounds.take(0, p.x());
        bounds.take(1, p.y());
        bounds.take(2, p.z());
    }
    bounds.into(d);
    return d;
}

std::string ArrayDigest::sha256_of(const std::vector<giPoint3>& v)
{
    Blocks b;
    if constexpr (hashed_in_place<giPoint3, double, 3>) {
        b.sha().update(v.data(), v.size() * sizeof(giPoint3));
    } else {
        for (const giPoint3& p : v) {
            unsigned char* q = b.room(24);
            put_le(q, std::bit_cast<std::uint64_t>(p.x()), 8);
            put_le(q + 8, std::bit_cast<std::uint64_t>(p.y()), 8);
            put_le(q + 16, std::bit_cast<std::uint64_t>(p.z()), 8);
        }
    }
    return b.finish();
}

ArrayDigest ArrayDigest::bounds_of(const std::vector<giTriangle>& v)
{
    ArrayDigest d;
    d.integers = true;
    d.count = v.size();
    Bounds bounds;
    for (const giTriangle& t : v) {
        bounds.take(0, t.a());
        bounds.take(1, t.b());
        bounds.take(2, t.c());
    }
    bounds.into(d);
    return d;
}

std::string ArrayDigest::sha256_of(const std::vector<giTriangle>& v)
{
    Blocks b;
    if constexpr (hashed_in_place<giTriangle, std::int32_t, 3>) {
        b.sha().update(v.data(), v.size() * sizeof(giTriangle));
    } else {
        for (const giTriangle& t : v) {
            unsigned char* q = b.room(12);
            put_le(q, static_cast<std::uint32_t>(t.a()), 4);
            put_le(q + 4, static_cast<std::uint32_t>(t.b()), 4);
            put_le(q + 8, static_cast<std::uint32_t>(t.c()), 4);
        }
    }
    return b.finish();
}

ArrayDigest ArrayDigest::bounds_of(const std::vector<giColour>& v)
{
    ArrayDigest d;
    d.integers = true;
    d.count = v.size();
    Bounds bounds;
    for (const giColour& c : v) {
        bounds.take(0, c.r());
        bounds.take(1, c.g());
        bounds.take(2, c.b());
    }
    bounds.into(d);
    return d;
}

std::string ArrayDigest::sha256_of(const std::vector<giColour>& v)
{
    Blocks b;
    for (const giColour& c : v) {
        // The alpha byte is not part of what the dump shows.
        unsigned char* q = b.room(3);
        q[0] = static_cast<unsigned char>(c.r());
        q[1] = static_cast<unsigned char>(c.g());
        q[2] = static_cast<unsigned char>(c.b());
    }
    return b.finish();
}

ArrayDigest ArrayDigest::bounds_of(const std::vector<double>& v)
{
    ArrayDigest d;
    d.width = 1;
    d.count = v.size();
    Bounds bounds;
    for (double x : v) bounds.take(0, x);
    bounds.into(d);
    return d;
}

std::string ArrayDigest::sha256_of(const std::vector<double>& v)
{
    Blocks b;
    if constexpr (std::endian::native == std::endian::little) {
        b.sha().update(v.data(), v.size() * sizeof(double));
    } else {
        for (double x : v) put_le(b.room(8), std::bit_cast<std::uint64_t>(x), 8);
    }
    return b.finish();
}
