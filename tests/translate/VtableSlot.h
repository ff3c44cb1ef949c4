#pragma once
// The vtable entry a virtual member function occupies, read from its member
// pointer: under the Itanium C++ ABI (GCC and Clang on Linux) a pointer to a
// virtual member holds 1 + the entry's byte offset in the vtable. A
// destructor takes two entries, so an operation listed in slot s (counting
// from 1, the destructor in slot d) sits at entry s - 1 before the
// destructor and at entry s after it.
#include <cstdint>
#include <cstring>

template <class M>
long vtable_entry(M member)
{
    static_assert(sizeof(M) == 2 * sizeof(void*), "Itanium member pointer expected");
    std::uintptr_t ptr = 0;
    std::memcpy(&ptr, &member, sizeof ptr);
    if ((ptr & 1u) == 0)
        return -1;  // not virtual
    return static_cast<long>((ptr - 1) / sizeof(void*));
}

inline long entry_of_slot(int slot, int destructor_slot)
{
    return slot < destructor_slot ? slot - 1 : slot;
}
