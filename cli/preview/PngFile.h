#pragma once
// PngFile: a Canvas as PNG bytes (8-bit RGB, no interlacing), with text
// chunks (tEXt) that say what the picture shows. The same picture gives the
// same bytes on every run: the compression level and the row filters are
// fixed, and no time or other varying chunk is written.
#include <string>
#include <utility>
#include <vector>

#include "cli/preview/Canvas.h"

class PngFile {
public:
    // zlib's level for the pixel data: a fixed setting keeps the bytes the
    // same from run to run.
    static constexpr int compression_level = 6;
    // A text chunk's keyword is 1 to 79 Latin-1 characters.
    static constexpr std::size_t max_keyword = 79;

    using Texts = std::vector<std::pair<std::string, std::string>>;

    // The PNG file of canvas with texts (keyword, text) in this order. A text
    // is written as printable ASCII (any other byte becomes '?'), since tEXt
    // holds Latin-1 and names are bytes in no declared encoding. Empty
    // bytes and why in reason when the picture is empty or the encoder
    // refuses it.
    static std::string encode(const Canvas& canvas, const Texts& texts, std::string& reason);
    // Writes encode()'s bytes to path; empty on success, else the reason.
    static std::string write(const std::string& path, const Canvas& canvas, const Texts& texts);
};
