#include "cli/JsonWriter.h"

#include <charconv>
#include <cmath>

#include "cli/Utf8.h"

namespace {

void append_byte_escape(std::string& out, unsigned char b)
{
    static const char hex[] = "0123456789abcdef";
    out += "\\u00";
    out += hex[b >> 4];
    out += hex[b & 0xF];
}

} // namespace

void append_json_string(std::string& out, std::string_view bytes)
{
    out += '"';
    for (std::size_t i = 0; i < bytes.size();) {
        const unsigned char b = static_cast<unsigned char>(bytes[i]);
        const std::size_t n = Utf8::sequence_length(bytes, i);
        if (n == 0) {
            append_byte_escape(out, b);
            ++i;
            continue;
        }
        if (n > 1) {
            out.append(bytes.substr(i, n));
            i += n;
            continue;
        }
        switch (b) {
        case '"': out += "\\\""; break;
        case '\\': out += "\\\\"; break;
        case '\b': out += "\\b"; break;
        case '\f': out += "\\f"; break;
        case '\n': out += "\\n"; break;
        case '\r': out += "\\r"; break;
        case '\t': out += "\\t"; break;
        default:
            if (b < 0x20) append_byte_escape(out, b);
            else out += static_cast<char>(b);
        }
        ++i;
    }
    out += '"';
}

void append_json_number(std::string& out, double value)
{
    if (std::isnan(value)) {
        out += "\"NaN\"";
        return;
    }
    if (std::isinf(value)) {
        out += value > 0 ? "\"Infinity\"" : "\"-Infinity\"";
        return;
    }
    char buf[64];
    // std::to_chars without a format gives the shortest form that reads back
    // to the same double.
    const auto res = std::to_chars(buf, buf + sizeof buf, value);
    const std::string_view text(buf, static_cast<std::size_t>(res.ptr - buf));
    out.append(text);
    if (text.find_first_of(".e") == std::string_view::npos) out += ".0";
}

std::string json_string(std::string_view bytes)
{
    std::string out;
    out.reserve(bytes.size() + 2);
    append_json_string(out, bytes);
    return out;
}

std::string json_number(double value)
{
    std::string out;
    append_json_number(out, value);
    return out;
}

JsonWriter::JsonWriter(std::ostream& out, bool pretty) : out_(out), pretty_(pretty)
{
    text_.reserve(flush_size + flush_size / 4);
}

JsonWriter::~JsonWriter() { flush(); }

void JsonWriter::flush()
{
    if (text_.empty()) return;
    out_.write(text_.data(), static_cast<std::streamsize>(text_.size()));
    text_.clear();
}

void JsonWriter::maybe_flush()
{
    if (text_.size() >= flush_size) flush();
}

bool JsonWriter::inline_here() const
{
    return !pretty_ || single_line_levels_ > 0;
}

void JsonWriter::newline_indent()
{
    text_ += '\n';
    text_.append(2 * levels_.size(), ' ');
}

void JsonWriter::before_value()
{
    if (after_key_) {
        after_key_ = false;
        return;
    }
    if (levels_.empty()) return;
    const bool single_line = inline_here();
    Level& top = levels_.back();
    maybe_flush();
    if (!top.empty) text_ += single_line && pretty_ ? ", " : ",";
    top.empty = false;
    if (!single_line) newline_indent();
}

void JsonWriter::open(char bracket, bool single_line)
{
    before_value();
    text_ += bracket;
    levels_.push_back({single_line, true, bracket == '{' ? '}' : ']'});
    single_line_levels_ += single_line ? 1 : 0;
}

void JsonWriter::close(char bracket)
{
    // A close that does not match the open container is a caller's slip; it
    // is ignored rather than producing unbalanced text.
    if (levels_.empty() || levels_.back().closer != bracket) return;
    const bool was_empty = levels_.back().empty;
    const bool was_inline = inline_here();
    single_line_levels_ -= levels_.back().single_line ? 1 : 0;
    levels_.pop_back();
    if (!was_empty && !was_inline) newline_indent();
    text_ += bracket;
}

JsonWriter& JsonWriter::begin_object(bool single_line) { open('{', single_line); return *this; }
JsonWriter& JsonWriter::end_object() { close('}'); return *this; }
JsonWriter& JsonWriter::begin_array(bool single_line) { open('[', single_line); return *this; }
JsonWriter& JsonWriter::end_array() { close(']'); return *this; }

JsonWriter& JsonWriter::key(std::string_view name)
{
    before_value();
    append_json_string(text_, name);
    text_ += pretty_ ? ": " : ":";
    after_key_ = true;
    return *this;
}

JsonWriter& JsonWriter::string(std::string_view bytes)
{
    before_value();
    append_json_string(text_, bytes);
    return *this;
}

JsonWriter& JsonWriter::number(double value)
{
    before_value();
    append_json_number(text_, value);
    return *this;
}

JsonWriter& JsonWriter::integer(std::int64_t value)
{
    before_value();
    char buf[24];
    const auto res = std::to_chars(buf, buf + sizeof buf, value);
    text_.append(buf, static_cast<std::size_t>(res.ptr - buf));
    return *this;
}

JsonWriter& JsonWriter::triple(double a, double b, double c)
{
    before_value();
    const char* separator = pretty_ ? ", " : ",";
    text_ += '[';
    append_json_number(text_, a);
    text_ += separator;
    append_json_number(text_, b);
    text_ += separator;
    append_json_number(text_, c);
    text_ += ']';
    return *this;
}

JsonWriter& JsonWriter::triple(std::int64_t a, std::int64_t b, std::int64_t c)
{
    before_value();
    // The three numbers and their separators, appended at once.
    char buf[3 * 24 + 8];
    char* p = buf;
    *p++ = '[';
    const std::int64_t v[3] = {a, b, c};
    for (int k = 0; k < 3; ++k) {
        if (k > 0) {
            *p++ = ',';
            if (pretty_) *p++ = ' ';
        }
        p = std::to_chars(p, buf + sizeof buf, v[k]).ptr;
    }
    *p++ = ']';
    text_.append(buf, static_cast<std::size_t>(p - buf));
    return *this;
}

JsonWriter& JsonWriter::boolean(bool value)
{
    before_value();
    text_ += value ? "true" : "false";
    return *this;
}

JsonWriter& JsonWriter::null()
{
    before_value();
    text_ += "null";
    return *this;
}

void JsonWriter::finish()
{
    while (!levels_.empty()) close(levels_.back().closer);
    text_ += '\n';
    flush();
}
