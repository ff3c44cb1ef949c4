#pragma once
// Utf8: where the bytes of a name read as UTF-8. Names in an archive are bytes
// in no declared encoding; the JSON and glTF writers keep each valid UTF-8
// sequence as the character it encodes and give every other byte a form of
// its own, so both must agree on what is valid.
#include <cstddef>
#include <string>
#include <string_view>

class Utf8 {
public:
    // Length of the valid UTF-8 sequence starting at s[i] (1 for ASCII), or 0
    // when the byte there does not start one: overlong forms, surrogates,
    // code points above U+10FFFF and sequences cut off by the end are not
    // valid.
    static std::size_t sequence_length(std::string_view s, std::size_t i);
    // The bytes of a name as UTF-8 text: valid sequences kept, every other
    // byte read as Latin-1, the character of its own value. Archives written
    // on the design stations hold Latin-1 names ("Fu\xDF"), which so become
    // readable text in every file the command writes.
    static std::string from_bytes(std::string_view bytes);
};
