#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <string>

#include "cli/Sha256.h"

TEST(Sha256, EmptyInput)
{
    EXPECT_EQ(Sha256::hex(""), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
}

TEST(Sha256, ThreeBytes)
{
    EXPECT_EQ(Sha256::hex("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
}

TEST(Sha256, TwoBlockMessage)
{
    EXPECT_EQ(Sha256::hex("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
              "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
}

TEST(Sha256, MillionBytesFedInUnevenPieces)
{
    const std::string a(1000000, 'a');
    Sha256 s;
    std::size_t at = 0;
    for (std::size_t piece = 1; at < a.size(); piece = piece * 3 % 1000 + 1) {
        const std::size_t n = std::min(piece, a.size() - at);
        s.update(a.data() + at, n);
        at += n;
    }
    std::string hex;
    for (unsigned char b : s.finish()) {
        static const char d[] = "0123456789abcdef";
        hex += d[b >> 4];
        hex += d[b & 15];
    }
    EXPECT_EQ(hex, "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
    EXPECT_EQ(Sha256::hex(a), hex);
}

TEST(Sha256, FiftyFiveAndFiftySixBytesPadDifferently)
{
    // 55 bytes fit the length into the same block; 56 need a second one.
    EXPECT_EQ(Sha256::hex(std::string(55, 'a')), "9f4390f8d30c2dd92ec9f095b65e2b9ae9b0a925a5258e241c9f1e910f734318");
    EXPECT_EQ(Sha256::hex(std::string(56, 'a')), "b35439a4ac6f0948b6d6f9e3c6af0f5f590ce20f1bde7090ef7970686ec6738a");
}

TEST(Sha256, FinishStartsOverForTheNextDigest)
{
    Sha256 s;
    s.update("xyz", 3);
    (void)s.finish();
    s.update("abc", 3);
    const std::array<std::uint8_t, 32> d = s.finish();
    EXPECT_EQ(d[0], 0xba);
    EXPECT_EQ(d[31], 0xad);
}
