#pragma once
// utString: the host's string type, used for every name the plug-in hands over.
//
// Contract for a host's vendor (what the plug-in relies on):
// - A plain byte string: it holds any bytes (a carriage return, a zero byte or
//   a byte that is not valid UTF-8 included) and never interprets, trims or
//   converts them. length() counts bytes.
// - Built from a null pointer it is empty; built from (pointer, n) it holds
//   exactly those n bytes.
// - Copies are independent values (a vendor may share storage by reference
//   counting, but a change to one copy never shows in another).
// - Comparison is byte-wise: equal only when both hold the same bytes;
//   operator< orders by unsigned byte values, a prefix first.
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

class utString {
public:
    utString() = default;
    utString(const char* s) : s_(s ? s : "") {}
    utString(const char* s, std::size_t n) : s_(s ? std::string(s, n) : std::string()) {}
    utString(std::string s) : s_(std::move(s)) {}
    utString(std::string_view s) : s_(s) {}

    const char* c_str() const { return s_.c_str(); }
    const char* data() const { return s_.data(); }
    int length() const { return static_cast<int>(s_.size()); }
    bool empty() const { return s_.empty(); }
    const std::string& str() const { return s_; }
    char operator[](std::size_t i) const { return s_[i]; }

    utString& operator+=(const utString& o) { s_ += o.s_; return *this; }
    friend utString operator+(const utString& a, const utString& b) { return utString(a.s_ + b.s_); }
    friend bool operator==(const utString& a, const utString& b) { return a.s_ == b.s_; }
    friend bool operator!=(const utString& a, const utString& b) { return a.s_ != b.s_; }
    friend bool operator<(const utString& a, const utString& b) { return a.s_ < b.s_; }

private:
    std::string s_;
};
