// vmiVelmCoReader: primitive moves, instruction lines, keys, numbers, arrays and
// texts of the contour text.
#include "contour/vmiVelmCoReader.h"

#include <cmath>
#include <cstring>
#include <new>

vmiVelmCoReader::vmiVelmCoReader(const char* data, const int& length)
{
    if (data == nullptr || length < 1)
        return;
    start_ = data;
    len_ = length;
    status_ = 0;
}

// ---- primitive moves ----

int vmiVelmCoReader::next_byte()
{
    if (pos_ + 1 < len_) {
        pos_++;
        return 1;
    }
    // Stepping on from the last byte (or from the end) stays on the last byte.
    pos_ = len_ > 0 ? len_ - 1 : 0;
    return 0;
}

int vmiVelmCoReader::test_char(const char& c)
{
    if (is_end() || start_[pos_] != c)
        return 0;
    next_byte();
    return 1;
}

int vmiVelmCoReader::get_digit()
{
    if (is_end())
        return -1;
    char c = start_[pos_];
    if (c < '0' || c > '9')
        return -1;
    // A direct step, not next_byte: a digit that is the last byte brings the
    // cursor to the end.
    pos_++;
    return c - '0';
}

void vmiVelmCoReader::pass(const int& n)
{
    if (n <= 0)
        return;
    pos_ = n >= remaining() ? len_ : pos_ + n;
}

void vmiVelmCoReader::pass_blank()
{
    // Only the space is a blank. A space that is the last byte matches without
    // moving the cursor: the skip stops there.
    for (;;) {
        int before = pos_;
        if (!test_char(' ') || pos_ == before)
            return;
    }
}

void vmiVelmCoReader::pass_string()
{
    // Leaves the cursor just after the next line feed. A text whose last byte is
    // no line feed ends at that byte: the cursor stays on it.
    if (is_end())
        return;
    for (;;) {
        if (test_char('\n'))
            return;
        if (!next_byte() || is_end())
            return;
    }
}

int vmiVelmCoReader::test_string(const char* s, const int& n)
{
    if (s == nullptr || n < 1 || remaining() < n)
        return 0;
    if (std::memcmp(start_ + pos_, s, static_cast<std::size_t>(n)) != 0)
        return 0;
    pass(n);
    return 1;
}

// ---- instructions and keys ----

int vmiVelmCoReader::new_instruction()
{
    pass_string();
    if (is_end())
        return 0;
    if (!test_char('0'))
        return 0;
    int n = get_tint();
    // Exactly one space ends the number; the instruction's text follows it.
    if (!test_char(' '))
        return 0;
    return n;
}

int vmiVelmCoReader::test_string(const char* s)
{
    if (s == nullptr)
        return 0;
    std::size_t n = std::strlen(s);
    if (n > static_cast<std::size_t>(len_))
        return 0;
    return test_string(s, static_cast<int>(n));
}

// ---- numbers ----

int vmiVelmCoReader::get_tint()
{
    pass_blank();
    bool negative = false;
    if (!is_end() && (start_[pos_] == '-' || start_[pos_] == '+')) {
        negative = start_[pos_] == '-';
        next_byte();
    }
    int d = get_digit();
    if (d < 0)
        return 0;
    // 32-bit arithmetic without an overflow check: a longer number wraps.
    std::uint32_t value = static_cast<std::uint32_t>(d);
    while ((d = get_digit()) >= 0)
        value = value * 10u + static_cast<std::uint32_t>(d);
    if (negative)
        value = 0u - value;
    return static_cast<int>(value);
}

namespace {

// 10^exponent (0.1^-exponent for a negative one) by repeated multiplication.
// Once the factor is infinite or zero further steps cannot change it, so the
// loop stops there: the same result for any exponent in a bounded time.
double exponent_factor(int exponent)
{
    double factor = 1.0;
    long long steps = exponent < 0 ? -static_cast<long long>(exponent) : exponent;
    double step = exponent >= 0 ? 10.0 : 0.1;
    for (long long k = 0; k < steps; k++) {
        factor *= step;
        if (factor == 0.0 || std::isinf(factor))
            break;
    }
    return factor;
}

}  // namespace

double vmiVelmCoReader::get_tfloat()
{
    if (status_ != 0)
        return 0.0;
    pass_blank();
    double sign = 1.0;
    if (test_char('-'))
        sign = -1.0;
    else
        test_char('+');
    double whole = 0.0;
    int d;
    while ((d = get_digit()) >= 0)
        whole = whole * 10.0 + d;
    // Without a point the integer part is the value, unsigned and without the
    // trailing blanks skipped: "-5" reads as 5.0. Kept as designed.
    if (!test_char('.'))
        return whole;
    double fraction = 0.0;
    double weight = 0.1;
    while ((d = get_digit()) >= 0) {
        fraction += d * weight;
        weight *= 0.1;
    }
    double value = (whole + fraction) * sign;
    // Only a lower-case "e" starts an exponent.
    if (test_char('e'))
        value *= exponent_factor(get_tint());
    pass_blank();
    return value;
}

// ---- arrays and texts ----

bool vmiVelmCoReader::array_allowed(const int& n) const
{
    if (n < 1 || n > max_array_count)
        return false;
    if (n <= short_array_count)
        return true;
    // A long array needs n - 1 bytes before the line ends: no value is read
    // across a line feed and every value the line holds takes a byte, so a
    // longer count cannot be what the line holds.
    int need = n - 1;
    if (remaining() < need)
        return false;
    return std::memchr(start_ + pos_, '\n', static_cast<std::size_t>(need)) == nullptr;
}

int* vmiVelmCoReader::get_tint_array(const int& n)
{
    if (!array_allowed(n))
        return nullptr;
    int* values = new (std::nothrow) int[static_cast<std::size_t>(n)];
    if (values == nullptr)
        return nullptr;
    for (int i = 0; i < n; i++) {
        values[i] = get_tint();
        test_char(',');
    }
    return values;
}

double* vmiVelmCoReader::get_tfloat_array(const int& n)
{
    if (!array_allowed(n))
        return nullptr;
    double* values = new (std::nothrow) double[static_cast<std::size_t>(n)];
    if (values == nullptr)
        return nullptr;
    for (int i = 0; i < n; i++) {
        values[i] = get_tfloat();
        test_char(',');
    }
    return values;
}

char* vmiVelmCoReader::get_text()
{
    char* text = new (std::nothrow) char[max_text_length + 1];
    if (text == nullptr)
        return nullptr;
    int k = 0;
    while (k < max_text_length && !is_end()) {
        char c = start_[pos_];
        if (c == '\r' || c == '\n')
            break;
        text[k++] = c;
        // On the last byte next_byte sticks, and the byte repeats: kept as designed.
        next_byte();
    }
    text[k] = '\0';
    return text;
}
