// velmora: the command-line host of the Velmora archive importer.
#include <malloc.h>

#include <iostream>

#include "cli/CommandLine.h"

namespace {

// Arrays up to this size come from the heap and go back to it, instead of
// being mapped from the system for each item and unmapped after it: an
// import hands over array after array of about a megabyte (a block's
// vertices, its copy for the digest), and every unmapping interrupts the
// other processor while it builds a design or hashes. Larger arrays (a
// grid four times as fine, a 256 MiB data entry) are still mapped, so the
// heap never holds them after their use.
constexpr int heap_array_bytes = 4 << 20;
// Free memory at the heap's top is kept up to this much for the next array.
constexpr int heap_keep_bytes = 16 << 20;

}  // namespace

int main(int argc, char** argv)
{
    mallopt(M_MMAP_THRESHOLD, heap_array_bytes);
    mallopt(M_TRIM_THRESHOLD, heap_keep_bytes);
    return CommandLine::run(argc, argv, std::cout, std::cerr);
}
