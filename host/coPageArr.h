#pragma once
// coPageArr: the host's growable sequence.
//
// Contract for a host's vendor (what the plug-in relies on):
// - add() appends at the end; elements keep the order they were added in and
//   stay where they are (index i names the same element until clear()).
// - It holds values; for a list of pointers it owns nothing: whoever fills it
//   with new objects deletes them (the plug-in's owners do so in their
//   destructors).
// - Move-only elements can be added by moving them in.
// - Indices outside [0, size()) are the caller's error; the plug-in always
//   checks size() first.
#include <cstddef>
#include <vector>

template <class T>
class coPageArr {
public:
    void add(const T& v) { v_.push_back(v); }
    void add(T&& v) { v_.push_back(std::move(v)); }
    int size() const { return static_cast<int>(v_.size()); }
    bool empty() const { return v_.empty(); }
    T& operator[](int i) { return v_[static_cast<std::size_t>(i)]; }
    const T& operator[](int i) const { return v_[static_cast<std::size_t>(i)]; }
    void clear() { v_.clear(); }
    auto begin() { return v_.begin(); }
    auto end() { return v_.end(); }
    auto begin() const { return v_.begin(); }
    auto end() const { return v_.end(); }

private:
    std::vector<T> v_;
};
