#pragma once
// vmiVelmCoReader: the cursor over the bytes of one contour data file, a
// line-oriented text of numbered instructions with key=value lines. It finds
// the next instruction number, tests for literal keys and reads integers,
// decimal numbers, comma-separated arrays of either and rest-of-line texts. It
// knows nothing of sections or keys: the contour document drives it.
//
// The reader borrows the bytes (the caller keeps them alive), never reports an
// error and never allocates except for the arrays and texts it returns: a
// value that is not there reads as zero. It never reads or writes outside the
// buffer, and every operation ends after a number of steps bounded by the
// length of its line or by a fixed size (a text, a short array).
//
// Its moves stick: stepping on from the last byte keeps the cursor on the last
// byte, and only pass() and a digit that is the last byte bring it to the end.
// The numbers read exactly as the design reads them, quirks included: "-5"
// reads as 5.0 with get_tfloat (the sign counts only with a point), only a
// lower-case "e" starts an exponent, a key test is a prefix test.
#include <cstdint>

class vmiVelmCoReader {
public:
    // A text is at most this many bytes; get_text returns a buffer one byte larger.
    static constexpr int max_text_length = 131;
    // The most values one array may hold. An outline has a few hundred points,
    // a pad's height matrix a few hundred thousand; a count beyond this reads as
    // no array (null, the values left unread) instead of an unbounded allocation.
    static constexpr int max_array_count = 1 << 20;
    // An array of up to this many values is read whatever its line holds, its
    // missing values reading as 0. A longer one must find at least count - 1
    // bytes before the end of its line (no value is read across a line end, and
    // each value the line holds takes at least one byte), else it reads as no
    // array. So a text can never make the reader fill more values than a small
    // multiple of its own length, however many key lines ask for huge counts.
    static constexpr int short_array_count = 64;

    // Status -1 and no cursor when data is null or length < 1; else ready (0).
    vmiVelmCoReader(const char* data, const int& length);
    ~vmiVelmCoReader() = default;
    vmiVelmCoReader(const vmiVelmCoReader&) = delete;
    vmiVelmCoReader& operator=(const vmiVelmCoReader&) = delete;

    // The number of the next instruction line ("0", the number, one space), or
    // 0 when there is none. The rest of the current line is always skipped
    // first, so the first line of a text is a free header line.
    int new_instruction();
    // When the text at the cursor begins with s, steps over it and returns 1;
    // else returns 0 and the cursor stays. A null or empty s returns 0.
    int test_string(const char* s);
    // A signed decimal integer after blanks; 0 when no digit follows the sign.
    // Accumulates in 32 bits and wraps on overflow.
    int get_tint();
    // A decimal number with optional sign, point, fraction and "e" exponent.
    double get_tfloat();
    // n integers or numbers, each optionally followed directly by a comma.
    // No value reads across a line end, so the values missing from a short line
    // read as 0. Exactly n values are read and held, never more. Null when
    // n < 1, when n is beyond max_array_count, when n is beyond
    // short_array_count and the line cannot hold n values, or when memory runs
    // out; then nothing is read. The caller deletes the array with delete[]
    // and takes null as a missing key.
    int* get_tint_array(const int& n);
    double* get_tfloat_array(const int& n);
    // The rest of the line up to CR or LF, at most max_text_length bytes,
    // NUL-terminated, in a buffer of max_text_length + 1 bytes that the caller
    // deletes with delete[]; null only when memory runs out. The line end is
    // not consumed. On a last line without a line end the cursor sticks on the
    // last byte, which then repeats up to max_text_length bytes: kept as
    // designed. At the end of the text the result is empty.
    char* get_text();

    // -1: built over no data; 0: ready.
    int status() const { return status_; }
    // Offset of the cursor from the first byte (the length when at the end).
    int position() const { return pos_; }
    // True when the cursor is at the end of the text.
    bool at_end() const { return is_end(); }

private:
    friend class vmiVelmCoReaderProbe;  // lets the tests drive the primitive moves

    int next_byte();
    bool is_end() const { return pos_ >= len_; }
    int test_char(const char& c);
    int get_digit();
    void pass(const int& n);
    void pass_blank();
    void pass_string();
    int test_string(const char* s, const int& n);
    // The bytes left from the cursor to the end.
    int remaining() const { return len_ - pos_; }
    // Whether an array of n values may be read here (see short_array_count).
    bool array_allowed(const int& n) const;

    const char* start_ = nullptr;
    int pos_ = 0;
    int len_ = 0;
    int status_ = -1;
};
