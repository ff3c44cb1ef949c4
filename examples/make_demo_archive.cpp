// make_demo_archive: writes the demo archive that scripts/demo converts.
//
// One patient seen twice (a first fitting and a check-up half a year later).
// Each visit holds a scan of the left and of the right foot (plantar height
// grids at 1 mm over a foot-shaped outline, no data outside it), the grey
// picture taken with each scan, and a left and a right insole model whose
// base grid is the scan of the same foot (ref_indx names the scan record).
// The archive is written by tests/support/demoArchive, which the demo's test
// and the import benchmark share; examples/README.md describes the designs.
//
//   make_demo_archive OUT.vlm
//
// Everything is computed, nothing is random and the entries carry a fixed
// date, so every run writes the same bytes.
#include <cstdio>

#include "tests/support/demoArchive.h"

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: make_demo_archive OUT.vlm\n");
        return 2;
    }
    if (!vlm::demo::write_archive(argv[1])) {
        std::fprintf(stderr, "make_demo_archive: %s: cannot write\n", argv[1]);
        return 3;
    }
    return 0;
}
