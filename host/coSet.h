#pragma once
// coSet: the host's set of values, kept in the order they were first added.
//
// Contract for a host's vendor: add() of a value already held changes
// nothing; size() counts distinct values; nothing throws (a value that cannot
// be stored is not added and add() answers 0).
#include <new>
#include <vector>

template <class T>
class coSet {
public:
    int add(const T& v)
    {
        if (contains(v))
            return 1;
        try {
            v_.push_back(v);
        } catch (const std::bad_alloc&) {
            return 0;
        }
        return 1;
    }
    bool contains(const T& v) const
    {
        for (const T& e : v_)
            if (e == v)
                return true;
        return false;
    }
    int size() const { return static_cast<int>(v_.size()); }
    bool empty() const { return v_.empty(); }
    const T& operator[](int i) const { return v_[static_cast<std::size_t>(i)]; }
    auto begin() const { return v_.begin(); }
    auto end() const { return v_.end(); }

private:
    std::vector<T> v_;
};
