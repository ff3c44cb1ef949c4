#include "host/giBox3.h"

#include <algorithm>
#include <limits>

giBox3::giBox3()
    : min_(std::numeric_limits<double>::max(), std::numeric_limits<double>::max(),
           std::numeric_limits<double>::max()),
      max_(-std::numeric_limits<double>::max(), -std::numeric_limits<double>::max(),
           -std::numeric_limits<double>::max())
{
}

giBox3::giBox3(const giPoint3& a, const giPoint3& b) : giBox3()
{
    merge(a);
    merge(b);
}

bool giBox3::is_valid() const
{
    return min_.x() <= max_.x() && min_.y() <= max_.y() && min_.z() <= max_.z();
}

void giBox3::merge(const giPoint3& p)
{
    min_.set(std::min(min_.x(), p.x()), std::min(min_.y(), p.y()), std::min(min_.z(), p.z()));
    max_.set(std::max(max_.x(), p.x()), std::max(max_.y(), p.y()), std::max(max_.z(), p.z()));
}

void giBox3::merge(const giBox3& b)
{
    if (!b.is_valid())
        return;
    merge(b.min());
    merge(b.max());
}
