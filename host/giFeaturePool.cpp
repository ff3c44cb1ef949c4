#include "host/giFeaturePool.h"

#include <new>

giFeature* giFeaturePool::find(giFeature::Kind kind)
{
    for (auto& f : features_)
        if (f->kind() == kind)
            return f.get();
    return nullptr;
}

const giFeature* giFeaturePool::find(giFeature::Kind kind) const
{
    for (const auto& f : features_)
        if (f->kind() == kind)
            return f.get();
    return nullptr;
}

int giFeaturePool::insert(std::unique_ptr<giFeature> feature)
{
    if (!feature || find(feature->kind()))
        return 0;
    try {
        features_.push_back(std::move(feature));
    } catch (const std::bad_alloc&) {
        return 0;
    }
    return 1;
}
