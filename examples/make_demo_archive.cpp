// make_demo_archive: writes the small demo archive that scripts/demo lists.
// One practice with one patient: a scan of the left foot (a height grid), its
// scan image (a point cloud) and an insole model built over the scan, the way
// the archiving program lays them out: data entries first, the catalogue last.
//
//   make_demo_archive OUT.vlm
#include <cmath>
#include <cstdio>
#include <string>

#include "tests/support/vlmWriter.h"

namespace {

constexpr int grid_columns = 40;
constexpr int grid_rows = 100;

// A foot-shaped dome: heights in units of dz, the nodata code outside.
vlm::height_grid scan_grid()
{
    vlm::height_grid g;
    g.nx = grid_columns;
    g.ny = grid_rows;
    g.dx = 2.5f;
    g.dy = 2.5f;
    g.dz = 0.05f;
    g.nodata = 65535;
    for (int j = 0; j < grid_rows; ++j) {
        for (int i = 0; i < grid_columns; ++i) {
            const double u = (i - grid_columns / 2.0) / (grid_columns / 2.0);
            const double v = (j - grid_rows / 2.0) / (grid_rows / 2.0);
            const double r = u * u + v * v;
            g.codes.push_back(r < 1.0 ? static_cast<std::uint16_t>(400.0 * (1.0 - r) + 20.0 * std::sin(6.0 * v))
                                      : g.nodata);
        }
    }
    return g;
}

vlm::scan_image scan_image()
{
    vlm::scan_image im;
    im.width = 64;
    im.height = 160;
    im.sx = 1.5f;
    im.sy = 1.5f;
    im.sz = 1.0f;
    for (int k = 0; k < im.width * im.height; ++k) im.pixels.push_back(static_cast<std::uint8_t>(k * 7 % 251));
    return im;
}

std::string insole_model()
{
    return "0001\n"
           "1 Rohlingsdaten\n"
           "Laenge=250.0\n"
           "Breite=95.0\n";
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: make_demo_archive OUT.vlm\n");
        return 2;
    }
    const std::string catalogue = vlm::catalogue()
                                      .header("Velmora archive")
                                      .separator()
                                      .level1("Praxis am Markt", "Demo")
                                      .level2("Patient 0001", "Erika Beispiel")
                                      .level3(1, 1, 0, 101, "2024-03-01", "Scan", "left foot", 12)
                                      .level3(1, 2, 1, 101, "2024-03-01", "Image", "left foot", 13)
                                      .level3(3, 3, 1, 101, "2024-03-02", "Insole", "sport", 14)
                                      .text(true);
    vlm::archive a;
    a.add("VLM00012.dat", vlm::chunk_chain(vlm::grid_entry(scan_grid()), 4096));
    a.add("VLM00013.dat", vlm::chunk_chain(vlm::pcim_entry(scan_image()), 4096));
    a.add("VLM00014.dat", vlm::chunk(insole_model()));
    a.add("00000.vlk", catalogue);
    if (!a.write(argv[1])) {
        std::fprintf(stderr, "make_demo_archive: %s: cannot write\n", argv[1]);
        return 3;
    }
    return 0;
}
