// Writes the archives the Python module's tests import besides the demo, into
// the folder given as the only argument:
//   scan_and_image.vlm  a scan and its picture, the patient's name holding a
//                       byte that is not UTF-8 (0xFC)
//   wrong_magic.vlm     the scan's data entry starts with another magic: the
//                       groups come, no geometry
//   no_catalogue.vlm    a data entry and no catalogue: nothing is imported
#include <cstdio>
#include <string>

#include "tests/support/vlmWriter.h"

namespace {

vlm::catalogue visit(const std::string& surname)
{
    vlm::catalogue c;
    c.header("Velmora").separator().level1(surname, "Anna").level2("2024-03-01", "Visit");
    return c;
}

vlm::height_grid grid()
{
    vlm::height_grid g;
    g.nx = 7;
    g.ny = 5;
    g.dx = 2.0f;
    g.dy = 2.5f;
    g.dz = 0.5f;
    for (int k = 0; k < g.nx * g.ny; ++k) g.codes.push_back(static_cast<std::uint16_t>(k % 6 == 5 ? 0 : 100 + k));
    return g;
}

vlm::scan_image image()
{
    vlm::scan_image im;
    im.width = 4;
    im.height = 3;
    for (int k = 0; k < im.width * im.height; ++k) im.pixels.push_back(static_cast<std::uint8_t>(20 * k));
    return im;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: write_python_archives FOLDER\n");
        return 2;
    }
    const std::string dir = argv[1];
    bool ok = true;

    vlm::archive both;
    both.add("VLM00005.dat", vlm::chunk_chain(vlm::grid_entry(grid()), 100));
    both.add("VLM00006.dat", vlm::chunk_chain(vlm::pcim_entry(image()), 1 << 20));
    both.add("00000.vlk", visit("M\xFCller")
                              .level3(1, 1, 0, 101, "20240301", "scan", "", 5)
                              .level3(1, 2, 0, 201, "20240301", "image", "", 6)
                              .text());
    ok = both.write(dir + "/scan_and_image.vlm") && ok;

    vlm::archive magic;
    std::string entry = vlm::grid_entry(grid());
    entry.replace(0, 4, "PCXX");
    magic.add("VLM00005.dat", vlm::chunk_chain(entry, 1 << 20));
    magic.add("00000.vlk", visit("Miller").level3(1, 1, 0, 101, "20240301", "scan", "", 5).text());
    ok = magic.write(dir + "/wrong_magic.vlm") && ok;

    vlm::archive bare;
    bare.add("VLM00005.dat", vlm::chunk_chain(vlm::grid_entry(grid()), 1 << 20));
    ok = bare.write(dir + "/no_catalogue.vlm") && ok;

    return ok ? 0 : 1;
}
