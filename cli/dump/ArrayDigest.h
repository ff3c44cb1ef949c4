#pragma once
// ArrayDigest: what the summary dump shows of one geometry array in place of
// its elements: the element count, the least and greatest finite value of
// each component, and the SHA-256 of the elements' bytes as the dump defines
// them (doubles as 8 little-endian bytes, indices as 4, colours as their
// red, green and blue bytes). It is taken from the array as the walk hands
// it over, so that a summary keeps a few dozen bytes per array, not a copy.
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/giColour.h"
#include "host/giPoint3.h"
#include "host/giTriangle.h"

struct ArrayDigest {
    // Components per element: 3 for points, triangles and colours, 1 for
    // knots and weights; integers: the bounds are whole numbers.
    int width = 3;
    bool integers = false;
    std::size_t count = 0;
    // Per component; empty when no element had a finite value there.
    std::array<std::optional<double>, 3> lo, hi;
    std::string sha256;  // 64 lower-case hexadecimal digits

    template <class T>
    static ArrayDigest of(const std::vector<T>& v)
    {
        ArrayDigest d = bounds_of(v);
        d.sha256 = sha256_of(v);
        return d;
    }
    // The two halves of of(): the digest without its sha256 (count and
    // bounds), and the sha256 alone.
    static ArrayDigest bounds_of(const std::vector<giPoint3>& v);
    static ArrayDigest bounds_of(const std::vector<giTriangle>& v);
    static ArrayDigest bounds_of(const std::vector<giColour>& v);
    static ArrayDigest bounds_of(const std::vector<double>& v);
    static std::string sha256_of(const std::vector<giPoint3>& v);
    static std::string sha256_of(const std::vector<giTriangle>& v);
    static std::string sha256_of(const std::vector<giColour>& v);
    static std::string sha256_of(const std::vector<double>& v);
};
