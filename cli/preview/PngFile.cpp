#include "cli/preview/PngFile.h"

#include <spng.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>

namespace {

struct ContextFree {
    void operator()(spng_ctx* ctx) const { spng_ctx_free(ctx); }
};

std::string ascii(const std::string& text)
{
    std::string out = text;
    for (char& c : out)
        if (c < ' ' || c > '~') c = '?';
    return out;
}

} // namespace

std::string PngFile::encode(const Canvas& canvas, const Texts& texts, std::string& reason)
{
    if (canvas.empty()) {
        reason = "empty picture";
        return {};
    }
    std::unique_ptr<spng_ctx, ContextFree> ctx(spng_ctx_new(SPNG_CTX_ENCODER));
    if (!ctx) {
        reason = "out of memory";
        return {};
    }
    spng_ctx* c = ctx.get();
    int err = spng_set_option(c, SPNG_ENCODE_TO_BUFFER, 1);
    if (!err) err = spng_set_option(c, SPNG_IMG_COMPRESSION_LEVEL, compression_level);
    if (!err) err = spng_set_option(c, SPNG_FILTER_CHOICE, SPNG_FILTER_CHOICE_ALL);
    spng_ihdr ihdr{};
    ihdr.width = static_cast<std::uint32_t>(canvas.width());
    ihdr.height = static_cast<std::uint32_t>(canvas.height());
    ihdr.bit_depth = 8;
    ihdr.color_type = SPNG_COLOR_TYPE_TRUECOLOR;
    if (!err) err = spng_set_ihdr(c, &ihdr);
    // The text chunk structures point into these strings while encoding.
    std::vector<std::string> values;
    std::vector<spng_text> chunks;
    values.reserve(texts.size());
    for (const auto& [keyword, value] : texts) {
        const std::string key = ascii(keyword).substr(0, max_keyword);
        if (key.empty()) continue;
        values.push_back(ascii(value));
        spng_text t{};
        std::memcpy(t.keyword, key.data(), key.size());
        t.type = SPNG_TEXT;
        t.length = values.back().size();
        t.text = values.back().data();
        chunks.push_back(t);
    }
    if (!err && !chunks.empty()) err = spng_set_text(c, chunks.data(), static_cast<std::uint32_t>(chunks.size()));
    if (!err)
        err = spng_encode_image(c, canvas.bytes().data(), canvas.bytes().size(), SPNG_FMT_PNG, SPNG_ENCODE_FINALIZE);
    if (err) {
        reason = spng_strerror(err);
        return {};
    }
    std::size_t n = 0;
    void* png = spng_get_png_buffer(c, &n, &err);
    if (!png || err) {
        reason = err ? spng_strerror(err) : "no output";
        std::free(png);
        return {};
    }
    std::string bytes(static_cast<const char*>(png), n);
    std::free(png);
    return bytes;
}

std::string PngFile::write(const std::string& path, const Canvas& canvas, const Texts& texts)
{
    std::string reason;
    const std::string bytes = encode(canvas, texts, reason);
    if (bytes.empty()) return reason;
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    if (!out) return std::strerror(errno);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    out.close();
    if (!out) return "cannot write";
    return {};
}
