#include "host/qorResourceTable.h"

int qorResourceTable::enter(const utBoolcoResourceKey& key, const utBoolcoResource& resource)
{
    if (find(key))
        return 1;
    try {
        entries_.push_back(Entry{key.name(), resource});
    } catch (const std::bad_alloc&) {
        return 0;
    }
    return 1;
}

utBoolcoResource* qorResourceTable::find(const utBoolcoResourceKey& key)
{
    for (auto& e : entries_)
        if (e.key == key.name())
            return &e.resource;
    return nullptr;
}

int qorResourceTable::bool_value(const utBoolcoResourceKey& key, int fallback)
{
    utBoolcoResource* r = find(key);
    return r ? r->value() : fallback;
}

int qorResourceTable::set_bool(const utBoolcoResourceKey& key, int v)
{
    if (utBoolcoResource* r = find(key)) {
        r->set_value(v);
        return 1;
    }
    utBoolcoResource r(1);
    r.set_value(v);
    return enter(key, r);
}

void qorResourceTable::reset()
{
    for (auto& e : entries_)
        e.resource.reset();
}

utString qorResourceTable::key_name(int i) const
{
    if (i < 0 || i >= size())
        return utString();
    return entries_[static_cast<std::size_t>(i)].key;
}

qorResourceTable* qor_resource_table_inquire()
{
    static qorResourceTable table;
    return &table;
}
