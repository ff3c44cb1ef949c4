#include "cli/dump/ArrayDigest.h"

#include <bit>
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
void put_le(unsigned char* p, std::uint64_t v, int n)
{
    for (int i = 0; i < n; ++i) p[i] = static_cast<unsigned char>(v >> (8 * i));
}

void bound(ArrayDigest& d, int k, double c)
{
    if (!std::isfinite(c)) return;
    if (!d.lo[k] || c < *d.lo[k]) d.lo[k] = c;
    if (!d.hi[k] || c > *d.hi[k]) d.hi[k] = c;
}

// On a little-endian machine an array of doubles (or of ints) without padding
// is already the dump's bytes: it is hashed in place.
template <class T, class Scalar, std::size_t N>
constexpr bool hashed_in_place =
    std::endian::native == std::endian::little && sizeof(T) == N * sizeof(Scalar) && std::is_trivially_copyable_v<T>;

} // namespace

ArrayDigest ArrayDigest::of(const std::vector<giPoint3>& v)
{
    ArrayDigest d;
    d.count = v.size();
    for (const giPoint3& p : v) {
        bound(d, 0, p.x());
        bound(d, 1, p.y());
        bound(d, 2, p.z());
    }
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
    d.sha256 = b.finish();
    return d;
}

ArrayDigest ArrayDigest::of(const std::vector<giTriangle>& v)
{
    ArrayDigest d;
    d.integers = true;
    d.count = v.size();
    for (const giTriangle& t : v) {
        bound(d, 0, t.a());
        bound(d, 1, t.b());
        bound(d, 2, t.c());
    }
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
    d.sha256 = b.finish();
    return d;
}

ArrayDigest ArrayDigest::of(const std::vector<giColour>& v)
{
    ArrayDigest d;
    d.integers = true;
    d.count = v.size();
    Blocks b;
    for (const giColour& c : v) {
        bound(d, 0, c.r());
        bound(d, 1, c.g());
        bound(d, 2, c.b());
        // The alpha byte is not part of what the dump shows.
        unsigned char* q = b.room(3);
        q[0] = static_cast<unsigned char>(c.r());
        q[1] = static_cast<unsigned char>(c.g());
        q[2] = static_cast<unsigned char>(c.b());
    }
    d.sha256 = b.finish();
    return d;
}

ArrayDigest ArrayDigest::of(const std::vector<double>& v)
{
    ArrayDigest d;
    d.width = 1;
    d.count = v.size();
    for (double x : v) bound(d, 0, x);
    Blocks b;
    if constexpr (std::endian::native == std::endian::little) {
        b.sha().update(v.data(), v.size() * sizeof(double));
    } else {
        for (double x : v) put_le(b.room(8), std::bit_cast<std::uint64_t>(x), 8);
    }
    d.sha256 = b.finish();
    return d;
}
