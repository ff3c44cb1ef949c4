// PngFile: the bytes decode to the picture and its texts, and repeat.
#include "cli/preview/PngFile.h"

#include <gtest/gtest.h>
#include <spng.h>

#include <memory>

namespace {

struct Decoded {
    int width = 0, height = 0;
    std::vector<unsigned char> rgb;
    std::vector<std::pair<std::string, std::string>> texts;
};

Decoded decode(const std::string& png)
{
    Decoded d;
    std::unique_ptr<spng_ctx, void (*)(spng_ctx*)> ctx(spng_ctx_new(0), spng_ctx_free);
    spng_set_png_buffer(ctx.get(), png.data(), png.size());
    spng_ihdr ihdr{};
    if (spng_get_ihdr(ctx.get(), &ihdr)) return d;
    std::size_t n = 0;
    spng_decoded_image_size(ctx.get(), SPNG_FMT_RGB8, &n);
    d.rgb.resize(n);
    if (spng_decode_image(ctx.get(), d.rgb.data(), n, SPNG_FMT_RGB8, 0)) return d;
    d.width = static_cast<int>(ihdr.width);
    d.height = static_cast<int>(ihdr.height);
    std::uint32_t count = 0;
    if (spng_get_text(ctx.get(), nullptr, &count) == 0) {
        std::vector<spng_text> t(count);
        spng_get_text(ctx.get(), t.data(), &count);
        for (const spng_text& x : t) d.texts.emplace_back(x.keyword, std::string(x.text, x.length));
    }
    return d;
}

} // namespace

TEST(PngFile, Encode_DecodesToThePixelsAndTextsAndRepeatsItsBytes)
{
    Canvas c(3, 2, {10, 20, 30});
    c.set(2, 1, {200, 100, 0});
    std::string why;
    const std::string png = PngFile::encode(c, {{"Title", "a/b"}, {"Heights", "1 2.5"}}, why);
    ASSERT_TRUE(why.empty()) << why;
    const Decoded d = decode(png);
    EXPECT_EQ(d.width, 3);
    EXPECT_EQ(d.height, 2);
    EXPECT_EQ(d.rgb, c.bytes());
    EXPECT_EQ(d.texts, (PngFile::Texts{{"Title", "a/b"}, {"Heights", "1 2.5"}}));
    EXPECT_EQ(PngFile::encode(c, {{"Title", "a/b"}, {"Heights", "1 2.5"}}, why), png);
}

TEST(PngFile, Encode_TextsBecomePrintableAsciiAndKeywordsAreCut)
{
    const Canvas c(1, 1, {0, 0, 0});
    std::string why;
    const std::string key(100, 'K');
    const Decoded d = decode(PngFile::encode(c, {{key, "M\xC3\xBC\n"}, {"", "dropped"}}, why));
    ASSERT_EQ(d.texts.size(), 1u);
    EXPECT_EQ(d.texts[0].first, std::string(PngFile::max_keyword, 'K'));
    EXPECT_EQ(d.texts[0].second, "M???");
}

TEST(PngFile, Encode_EmptyPictureIsRefused)
{
    std::string why;
    EXPECT_TRUE(PngFile::encode(Canvas(), {}, why).empty());
    EXPECT_EQ(why, "empty picture");
}
