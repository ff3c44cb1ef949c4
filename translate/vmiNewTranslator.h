#pragma once
// vmi_new_translator: allocates a translator and hands it out as the host's
// shared pointer without throwing: an empty pointer when the storage cannot
// be had.
#include <memory>
#include <new>
#include <utility>

template <class T, class... Args>
std::shared_ptr<T> vmi_new_translator(Args&&... args)
{
    try {
        return std::make_shared<T>(std::forward<Args>(args)...);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}
