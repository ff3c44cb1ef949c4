#pragma once
// vmiGridMemory: the node arrays of grids, kept for reuse while an import
// runs.
//
// A design makes a working grid, copies it when it cuts it to the insole
// outline, makes further grids for a placement, and lets all but the last
// go; the next design does the same with grids of nearly the same size. An
// array of a megabyte or more is mapped fresh from the system and unmapped
// when freed, so every grid's pages were faulted in anew and every free
// interrupted the other processor (its address translations dropped) while
// it was building the other design. While an import runs, an array let go
// is kept instead (up to max_kept_bytes) and handed to the next grid that
// fits in it. The kept arrays are freed when the last import running ends.
// The arrays are plain new[] arrays either way: a grid frees one it holds
// outside an import with delete[].
#include <cstddef>

#include "curves/m03DPoint.h"

namespace vmiGridMemory {

// What may stay kept at once: a few of the demo's working grids (1.1 MB),
// while a grid four times as fine (18 MB) is not kept at all.
constexpr std::size_t max_kept_bytes = std::size_t(8) << 20;
// A kept array serves a grid of at least this share of its nodes (7 / 8),
// so that a much smaller grid does not hold a large array.
constexpr long long fit_eighths = 7;

// Storage for at least n nodes, not initialised (a node is plain data: the
// grid writes every node before it reads one), and in *held the nodes it
// really holds: a kept array while an import runs, else new storage with
// room for an eighth more; storage for one node when n is 0. Null (and
// *held 0) for a negative n or when none can be had.
m03DPoint* take(long long n, long long* held);
// Lets go of an array: one from take() (held its nodes) is kept while an
// import runs and there is room, else freed; one from new m03DPoint[] (held
// 0, a grid's adopted array) is deleted. Null does nothing.
void give(m03DPoint* array, long long held);
// The bytes kept now.
std::size_t kept_bytes();

// Keeps arrays from its making to its end; scopes nest and may run on
// several threads at once (imports in parallel). When the last one ends,
// every kept array is freed.
class Scope {
public:
    Scope();
    ~Scope();
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;
};

}  // namespace vmiGridMemory
