#include "host/qorabsAttributeSet.h"

#include <new>

namespace {

// The class each id is checked out as.
std::unique_ptr<qorabsAttribute> make_attribute(qorabsAttributeId id)
{
    switch (id) {
    case NAME:
        return std::unique_ptr<qorabsAttribute>(new (std::nothrow) qorabsName());
    case LAYER:
        return std::unique_ptr<qorabsAttribute>(new (std::nothrow) qorabsLayer());
    case COLOUR:
        return std::unique_ptr<qorabsAttribute>(new (std::nothrow) qorabsColour());
    case CURVE:
    case TRIANGLEBLOCK:
    case POINTCLOUD:
        return std::unique_ptr<qorabsAttribute>(new (std::nothrow) qorabsAttribute());
    }
    return nullptr;
}

template <class T>
int typed(qorabsAttribute* any, T*& a)
{
    a = dynamic_cast<T*>(any);
    return a ? 1 : 0;
}

}  // namespace

const qorabsAttribute* qorabsAttributeSet::find(qorabsAttributeId id) const
{
    for (const auto& e : entries_)
        if (e.id == id)
            return e.value.get();
    return nullptr;
}

qorabsAttribute* qorabsAttributeSet::check_out_any(qorabsAttributeId id)
{
    for (auto& e : entries_)
        if (e.id == id)
            return e.value.get();
    std::unique_ptr<qorabsAttribute> v = make_attribute(id);
    if (!v)
        return nullptr;
    try {
        entries_.push_back(Entry{id, std::move(v)});
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
    return entries_.back().value.get();
}

int qorabsAttributeSet::check_out(qorabsAttributeId id, qorabsName*& a)
{
    a = nullptr;
    return id == NAME ? typed(check_out_any(id), a) : 0;
}

int qorabsAttributeSet::check_out(qorabsAttributeId id, qorabsLayer*& a)
{
    a = nullptr;
    return id == LAYER ? typed(check_out_any(id), a) : 0;
}

int qorabsAttributeSet::check_out(qorabsAttributeId id, qorabsColour*& a)
{
    a = nullptr;
    return id == COLOUR ? typed(check_out_any(id), a) : 0;
}

int qorabsAttributeSet::check_out(qorabsAttributeId id, qorabsAttribute*& a)
{
    a = nullptr;
    if (id != CURVE && id != TRIANGLEBLOCK && id != POINTCLOUD)
        return 0;
    a = check_out_any(id);
    return a ? 1 : 0;
}

int qorabsAttributeSet::id(int i) const
{
    if (i < 0 || i >= size())
        return 0;
    return entries_[static_cast<std::size_t>(i)].id;
}

const qorabsName* qorabsAttributeSet::name() const
{
    return dynamic_cast<const qorabsName*>(find(NAME));
}

const qorabsLayer* qorabsAttributeSet::layer() const
{
    return dynamic_cast<const qorabsLayer*>(find(LAYER));
}

const qorabsColour* qorabsAttributeSet::colour() const
{
    return dynamic_cast<const qorabsColour*>(find(COLOUR));
}
