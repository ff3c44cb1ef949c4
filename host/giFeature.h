#pragma once
// giFeature: one typed array a geometry item keeps in its feature pool
// (vertices, triangles, colours ...). giFeatureArray is the storage every
// feature shares.
//
// Contract for a host's vendor (what the plug-in relies on):
// - A feature never throws: add() and resize() answer 0 when the storage
//   cannot be had (or the count is negative or above max_count) and leave the
//   array as it was.
// - Elements keep the order they were added in; index i outside [0, size())
//   reads as a default element and is ignored by set().
#include <cstddef>
#include <new>
#include <vector>

class giFeature {
public:
    // One kind per feature class; a pool holds at most one feature of a kind.
    enum Kind { node_xyz = 1, tri_arr = 2, colour_arr = 3 };

    virtual ~giFeature() = default;
    virtual Kind kind() const = 0;
    virtual int size() const = 0;
    virtual void clear() = 0;
};

template <class T>
class giFeatureArray : public giFeature {
public:
    // The most elements one feature holds: a grid or a cloud of the plug-in
    // stays far below; a count above it is refused rather than allocated.
    static constexpr int max_count = 1 << 26;

    int size() const override { return count(); }
    void clear() override { v_.clear(); }

    int add(const T& e)
    {
        if (count() >= max_count)
            return 0;
        try {
            v_.push_back(e);
        } catch (const std::bad_alloc&) {
            return 0;
        }
        return 1;
    }
    int resize(int n)
    {
        if (n < 0 || n > max_count)
            return 0;
        try {
            v_.resize(static_cast<std::size_t>(n));
        } catch (const std::bad_alloc&) {
            return 0;
        }
        return 1;
    }
    T get(int i) const { return i >= 0 && i < count() ? v_[static_cast<std::size_t>(i)] : T(); }
    void set(int i, const T& e)
    {
        if (i >= 0 && i < count())
            v_[static_cast<std::size_t>(i)] = e;
    }
    const std::vector<T>& values() const { return v_; }

private:
    // size() without the virtual call: add, get and set run once an element.
    int count() const { return static_cast<int>(v_.size()); }

    std::vector<T> v_;
};
