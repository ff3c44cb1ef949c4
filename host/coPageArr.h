#pragma once
// coPageArr: the host's growable sequence. Elements keep their order; indices
// outside the sequence are the caller's error.
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
