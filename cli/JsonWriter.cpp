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

std::string json_string(std::string_view bytes)
{
    std::string out;
    out.reserve(bytes.size() + 2);
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
    return out;
}

std::string json_number(double value)
{
    if (std::isnan(value)) return "\"NaN\"";
    if (std::isinf(value)) return value > 0 ? "\"Infinity\"" : "\"-Infinity\"";
    char buf[64];
    // std::to_chars without a format gives the shortest form that reads back
    // to the same double.
    const auto res = std::to_chars(buf, buf + sizeof buf, value);
    std::string text(buf, res.ptr);
    if (text.find_first_of(".e") == std::string::npos) text += ".0";
    return text;
}

JsonWriter::JsonWriter(std::ostream& out, bool pretty) : out_(out), pretty_(pretty) {}

bool JsonWriter::inline_here() const
{
    return !pretty_ || single_line_levels_ > 0;
}

void JsonWriter::newline_indent()
{
    out_ << '\n';
    for (std::size_t i = 0; i < levels_.size(); ++i) out_ << "  ";
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
    if (!top.empty) out_ << (single_line && pretty_ ? ", " : ",");
    top.empty = false;
    if (!single_line) newline_indent();
}

void JsonWriter::open(char bracket, bool single_line)
{
    before_value();
    out_ << bracket;
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
    out_ << bracket;
}

JsonWriter& JsonWriter::begin_object(bool single_line) { open('{', single_line); return *this; }
JsonWriter& JsonWriter::end_object() { close('}'); return *this; }
JsonWriter& JsonWriter::begin_array(bool single_line) { open('[', single_line); return *this; }
JsonWriter& JsonWriter::end_array() { close(']'); return *this; }

JsonWriter& JsonWriter::key(std::string_view name)
{
    before_value();
    out_ << json_string(name) << (pretty_ ? ": " : ":");
    after_key_ = true;
    return *this;
}

JsonWriter& JsonWriter::string(std::string_view bytes)
{
    before_value();
    out_ << json_string(bytes);
    return *this;
}

JsonWriter& JsonWriter::number(double value)
{
    before_value();
    out_ << json_number(value);
    return *this;
}

JsonWriter& JsonWriter::integer(std::int64_t value)
{
    before_value();
    out_ << value;
    return *this;
}

JsonWriter& JsonWriter::boolean(bool value)
{
    before_value();
    out_ << (value ? "true" : "false");
    return *this;
}

JsonWriter& JsonWriter::null()
{
    before_value();
    out_ << "null";
    return *this;
}

void JsonWriter::finish()
{
    while (!levels_.empty()) close(levels_.back().closer);
    out_ << '\n';
}
