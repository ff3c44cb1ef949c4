#pragma once
// JsonWriter: a streaming writer of the JSON documents the command line prints
// (`velmora inspect --json`, `velmora dump`). It writes strings byte for byte as
// the archive holds them and doubles so that they read back to the same value,
// which a general-purpose JSON library does not promise for bytes that are not
// UTF-8.
#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

// The JSON text of a string holding the given bytes, quotes included. Valid
// UTF-8 sequences stay the characters they encode; every byte that is not part
// of a valid sequence becomes "\u00XX" with its own value. '"', '\\' and the
// control characters are escaped ("\r" stays "\r").
std::string json_string(std::string_view bytes);

// The JSON text of a double: the shortest decimal form that reads back to the
// same double, always with a '.' or an exponent so that it reads as a double
// (1.0, -0.0, 1e+20). NaN and the infinities have no JSON number and are
// written as the strings "NaN", "Infinity" and "-Infinity".
std::string json_number(double value);

// The same texts appended to out, for writers that build a document in a
// string rather than making a string per value.
void append_json_string(std::string& out, std::string_view bytes);
void append_json_number(std::string& out, double value);

// The text is built in a string and handed to the stream in large blocks: a
// dump holds millions of tokens, and a stream insertion per token costs more
// than formatting them. Everything written reaches the stream by finish() or
// when the writer is destroyed.
class JsonWriter {
public:
    // pretty: members and elements on their own lines, indented by two spaces
    // per level; otherwise one line without spaces.
    explicit JsonWriter(std::ostream& out, bool pretty = true);
    ~JsonWriter();
    JsonWriter(const JsonWriter&) = delete;
    JsonWriter& operator=(const JsonWriter&) = delete;

    // A container opened with single_line = true is written on one line in
    // pretty mode, with everything nested in it (for short records and
    // coordinate triples).
    JsonWriter& begin_object(bool single_line = false);
    JsonWriter& end_object();
    JsonWriter& begin_array(bool single_line = false);
    JsonWriter& end_array();

    // The name of the next member; only inside an object.
    JsonWriter& key(std::string_view name);

    JsonWriter& string(std::string_view bytes);
    JsonWriter& number(double value);
    JsonWriter& integer(std::int64_t value);
    JsonWriter& boolean(bool value);
    JsonWriter& null();
    // A single-line array of three values, as begin_array(true), the three
    // values and end_array() write it; for the millions of coordinate and
    // index triples of a dump.
    JsonWriter& triple(double a, double b, double c);
    JsonWriter& triple(std::int64_t a, std::int64_t b, std::int64_t c);

    // Closes what is still open and ends the document with a line feed.
    void finish();

private:
    // Bytes gathered before they are handed to the stream: large enough that
    // a write costs nothing beside the formatting, small enough not to count
    // in the memory of a run.
    static constexpr std::size_t flush_size = 1 << 16;

    struct Level {
        bool single_line;
        bool empty;
        char closer;
    };

    void before_value();
    void flush();
    void maybe_flush();
    void open(char bracket, bool single_line);
    void close(char bracket);
    void newline_indent();
    bool inline_here() const;

    std::ostream& out_;
    std::string text_;
    bool pretty_;
    bool after_key_ = false;
    std::vector<Level> levels_;
    int single_line_levels_ = 0;   // open containers written on one line
};
