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
//   make_demo_archive [--visits N] [--fineness F] OUT.vlm
//
// --visits and --fineness write a larger archive for measuring an import
// (scripts/bench): N visits instead of two, scans and working grids F times
// as fine (1 to 4).
//
// Everything is computed, nothing is random and the entries carry a fixed
// date, so every run writes the same bytes.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "tests/support/demoArchive.h"

namespace {

// More visits than this or a finer lattice would write archives far beyond
// anything a measurement needs (4 times as fine is 16 times the grid points).
constexpr int most_visits = 64;
constexpr int finest = 4;

int usage()
{
    std::fprintf(stderr, "usage: make_demo_archive [--visits N] [--fineness F] OUT.vlm\n"
                         "  N from 1 to %d (default 2), F from 1 to %d (default 1)\n",
                 most_visits, finest);
    return 2;
}

// A whole number from lo to hi, or 0.
int count(const char* text, int lo, int hi)
{
    char* end = nullptr;
    const long v = std::strtol(text, &end, 10);
    return end != text && *end == '\0' && v >= lo && v <= hi ? static_cast<int>(v) : 0;
}

} // namespace

int main(int argc, char** argv)
{
    vlm::demo::archive_scale scale;
    std::string out;
    for (int k = 1; k < argc; ++k) {
        const std::string a = argv[k];
        if ((a == "--visits" || a == "--fineness") && k + 1 < argc) {
            int& v = a == "--visits" ? scale.visits : scale.fineness;
            v = count(argv[++k], 1, a == "--visits" ? most_visits : finest);
            if (v == 0)
                return usage();
        } else if (out.empty() && !a.empty() && a[0] != '-') {
            out = a;
        } else {
            return usage();
        }
    }
    if (out.empty())
        return usage();
    if (!vlm::demo::write_archive(out, scale)) {
        std::fprintf(stderr, "make_demo_archive: %s: cannot write\n", out.c_str());
        return 3;
    }
    return 0;
}
