#include "grid/vmiGridMemory.h"

#include <algorithm>
#include <mutex>
#include <new>
#include <vector>

namespace vmiGridMemory {
namespace {

struct Kept {
    m03DPoint* array;
    long long held;
};

struct State {
    std::mutex mutex;
    int scopes = 0;
    std::size_t bytes = 0;
    std::vector<Kept> kept;
};

State& state()
{
    // Never destroyed: a grid may be freed while the library is unloaded.
    static State* s = new State;
    return *s;
}

std::size_t bytes_of(long long held)
{
    return static_cast<std::size_t>(held) * sizeof(m03DPoint);
}

}  // namespace

m03DPoint* take(long long n, long long* held)
{
    *held = 0;
    if (n < 0)
        return nullptr;
    // A grid of no nodes still holds an array, as new[] of none gives one.
    n = std::max(n, 1LL);
    {
        State& s = state();
        std::lock_guard<std::mutex> lock(s.mutex);
        // The smallest kept array that fits.
        std::size_t best = s.kept.size();
        for (std::size_t k = 0; k < s.kept.size(); ++k) {
            const long long h = s.kept[k].held;
            if (h >= n && n * 8 >= h * fit_eighths && (best == s.kept.size() || h < s.kept[best].held))
                best = k;
        }
        if (best < s.kept.size()) {
            const Kept found = s.kept[best];
            s.kept[best] = s.kept.back();
            s.kept.pop_back();
            s.bytes -= bytes_of(found.held);
            *held = found.held;
            return found.array;
        }
    }
    // A new array has room for an eighth more nodes, so that the next
    // design's grid, a row or two larger, fits in it when it is let go. The
    // room is never touched by this grid: it costs no memory until used.
    // The storage is not cleared: every grid writes all its nodes before it
    // reads one, and clearing would touch the room never used.
    const long long room = n + n / 8;
    auto* array = static_cast<m03DPoint*>(::operator new(bytes_of(room), std::nothrow));
    if (array)
        *held = room;
    return array;
}

void free_array(m03DPoint* array, long long held)
{
    if (held > 0)
        ::operator delete(array);
    else
        delete[] array;
}

void give(m03DPoint* array, long long held)
{
    if (!array)
        return;
    if (held > 0) {
        State& s = state();
        std::lock_guard<std::mutex> lock(s.mutex);
        // s.bytes never passes the bound, so the subtraction cannot wrap.
        if (s.scopes > 0 && bytes_of(held) <= max_kept_bytes - s.bytes) {
            try {
                s.kept.push_back({array, held});
                s.bytes += bytes_of(held);
                return;
            } catch (const std::bad_alloc&) {
                // No room to note it: freed below.
            }
        }
    }
    free_array(array, held);
}

std::size_t kept_bytes()
{
    State& s = state();
    std::lock_guard<std::mutex> lock(s.mutex);
    return s.bytes;
}

Scope::Scope()
{
    State& s = state();
    std::lock_guard<std::mutex> lock(s.mutex);
    ++s.scopes;
}

Scope::~Scope()
{
    std::vector<Kept> freed;
    {
        State& s = state();
        std::lock_guard<std::mutex> lock(s.mutex);
        if (--s.scopes > 0)
            return;
        freed.swap(s.kept);
        s.bytes = 0;
    }
    for (const Kept& k : freed)
        free_array(k.array, k.held);
}

}  // namespace vmiGridMemory
