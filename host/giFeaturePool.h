#pragma once
// giFeaturePool: the features of one geometry item, at most one of each kind.
//
// Contract for a host's vendor (what the plug-in relies on):
// - find<T>() is null until a feature of T's kind was inserted.
// - insert() takes the feature; it answers 0 (and drops the feature) when the
//   pool already holds one of that kind or the feature is null.
// - ensure<T>() finds the feature or inserts a new, empty one; null only when
//   the storage cannot be had. Nothing throws.
#include <memory>
#include <vector>

#include "host/giFeature.h"

class giFeaturePool {
public:
    giFeature* find(giFeature::Kind kind);
    const giFeature* find(giFeature::Kind kind) const;
    int insert(std::unique_ptr<giFeature> feature);
    int size() const { return static_cast<int>(features_.size()); }

    template <class T>
    T* find()
    {
        return static_cast<T*>(find(T::feature_kind));
    }
    template <class T>
    const T* find() const
    {
        return static_cast<const T*>(find(T::feature_kind));
    }
    template <class T>
    T* ensure()
    {
        if (T* f = find<T>())
            return f;
        std::unique_ptr<T> f(new (std::nothrow) T());
        T* raw = f.get();
        if (!raw || !insert(std::move(f)))
            return nullptr;
        return raw;
    }

private:
    std::vector<std::unique_ptr<giFeature>> features_;
};
