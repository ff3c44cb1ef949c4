#pragma once
// qorabsAttributeSet: the attributes of one item, filled by the item's
// translator (attributes()) and read by the host.
//
// Contract for a host's vendor (what the plug-in relies on):
// - check_out(id, pointer) gives the attribute of that id, entering a new,
//   default one the first time; the caller then assigns it (*pointer = ...).
//   A kind attribute (CURVE, TRIANGLEBLOCK, POINTCLOUD) is only checked out.
// - The pointer's class must be the id's (see qorabsAttribute.h); on a
//   mismatch, or when storage cannot be had, the pointer is set to null and
//   check_out answers 0. Nothing throws.
// - The set keeps the ids in the order they were first checked out (id(i)),
//   so a host sees the order in which a translator filled it.
// - Pointers stay valid as long as the set.
#include <memory>
#include <vector>

#include "host/qorabsAttribute.h"
#include "host/qorabsColour.h"
#include "host/qorabsLayer.h"
#include "host/qorabsName.h"

class qorabsAttributeSet {
public:
    int check_out(qorabsAttributeId id, qorabsName*& a);
    int check_out(qorabsAttributeId id, qorabsLayer*& a);
    int check_out(qorabsAttributeId id, qorabsColour*& a);
    int check_out(qorabsAttributeId id, qorabsAttribute*& a);

    int size() const { return static_cast<int>(entries_.size()); }
    // The id checked out i-th; 0 outside.
    int id(int i) const;
    bool has(qorabsAttributeId id) const { return find(id) != nullptr; }
    // The attributes as set; null when not checked out.
    const qorabsName* name() const;
    const qorabsLayer* layer() const;
    const qorabsColour* colour() const;

private:
    struct Entry {
        qorabsAttributeId id;
        std::unique_ptr<qorabsAttribute> value;
    };
    const qorabsAttribute* find(qorabsAttributeId id) const;
    qorabsAttribute* check_out_any(qorabsAttributeId id);

    std::vector<Entry> entries_;
};
