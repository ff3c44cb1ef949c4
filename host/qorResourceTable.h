#pragma once
// qorResourceTable: the host's table of options, one per process, obtained
// with qor_resource_table_inquire().
//
// Contract for a host's vendor (what the plug-in relies on):
// - A library enters its options when it is loaded (static initialisation):
//   enter(key, resource) adds the option with the resource's default as its
//   value. When the key is already present (the host set it first, or the
//   library was loaded twice) the entry and its value stay as they are.
// - bool_value(key, fallback) reads the value in force at the time of the
//   call; an unknown key gives the fallback. A library reads it at each
//   import, so a change made by the host between two imports takes effect at
//   the next.
// - set_bool(key, v) is the host's way to change an option; an unknown key is
//   entered with v as its value and 1 as its default.
// - Nothing throws; qor_resource_table_inquire() may be called during static
//   initialisation.
#include <new>
#include <vector>

#include "host/utBoolcoResource.h"
#include "host/utBoolcoResourceKey.h"
#include "host/utString.h"

class qorResourceTable {
public:
    int enter(const utBoolcoResourceKey& key, const utBoolcoResource& resource);
    // The entry under key; null when there is none.
    utBoolcoResource* find(const utBoolcoResourceKey& key);
    int bool_value(const utBoolcoResourceKey& key, int fallback);
    int set_bool(const utBoolcoResourceKey& key, int v);
    // Every entry back to its default.
    void reset();
    int size() const { return static_cast<int>(entries_.size()); }
    // The key of entry i (registration order); empty outside.
    utString key_name(int i) const;

private:
    struct Entry {
        utString key;
        utBoolcoResource resource;
    };
    std::vector<Entry> entries_;
};

qorResourceTable* qor_resource_table_inquire();
