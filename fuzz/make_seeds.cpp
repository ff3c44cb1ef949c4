// Writes the seed corpora of the fuzz targets into DIR/<target>: small
// well-formed inputs of each layer and a few with one thing wrong, made by
// the fixture writer of the tests so that no binary is committed.
//   fuzz_make_seeds DIR
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/contourText.h"
#include "tests/support/vlmWriter.h"

namespace {

using vlm::contour_text;

namespace fs = std::filesystem;

fs::path root;

bool put(const std::string& target, const std::string& name, const std::string& bytes)
{
    const fs::path dir = root / target;
    std::error_code ec;
    fs::create_directories(dir, ec);
    return vlm::write_file((dir / name).string(), bytes);
}

// ---- catalogues and chunk chains ----

const std::vector<std::pair<std::string, std::string>> catalogues = {
    {"plain", "header\n----------\n1,Alpha,Beta\n2,Patient,One\n3,1,4,0,101,2024-03-01,Scan,7,c,0,12\n"
              "3,3,5,4,101,2024-03-02,Model,1,c,2,14\n"},
    {"crlf", "-\r\n1,Alpha,Beta\r\n3,1,4,0,101,d,n,0,c,0,12\r\n"},
    {"quirks", "-\n\n7\nx3,1,4,0,101,d,n\n9,2,G,H\n1,no line end"},
    {"no_separator", "1,A,B\n"},
};

std::string scan_bytes()
{
    std::string scan = "PCSC";
    for (int k = 0; k < 3; ++k)
        for (int b = 0; b < 256; ++b)
            scan += static_cast<char>(b);
    return scan;
}

// ---- records ----

constexpr int base_nodes = 41;
constexpr int base_height = 5;

vlm::height_grid flat_grid(int n, int z)
{
    vlm::height_grid g;
    g.nx = g.ny = n;
    g.codes.assign(static_cast<std::size_t>(n) * n, static_cast<std::uint16_t>(z));
    return g;
}

vlm::scan_image small_image()
{
    vlm::scan_image im;
    im.width = 20;
    im.height = 10;
    for (int k = 0; k < im.width * im.height; ++k)
        im.pixels.push_back(static_cast<std::uint8_t>(k * 7));
    im.pixels[3] = 255;   // pure white, drawn grey
    return im;
}

// ---- contour designs: a 100 x 100 working grid at 1 mm with a 30 mm
// margin over the 41 x 41 base, the insole outline the square 35 ... 65 ----

void square(double x0, double y0, double x1, double y1, std::vector<double>& x, std::vector<double>& y)
{
    x.clear();
    y.clear();
    auto side = [&](double ax, double ay, double bx, double by) {
        int n = static_cast<int>((std::fabs(bx - ax) + std::fabs(by - ay)) / 2.0);
        for (int i = 0; i < n; ++i) {
            x.push_back(ax + (bx - ax) * i / n);
            y.push_back(ay + (by - ay) * i / n);
        }
    };
    side(x0, y0, x1, y0);
    side(x1, y0, x1, y1);
    side(x1, y1, x0, y1);
    side(x0, y1, x0, y0);
    x.push_back(x0);
    y.push_back(y0);
}

contour_text design()
{
    std::vector<double> x, y, bx, by;
    square(35, 35, 65, 65, x, y);
    square(32, 32, 68, 68, bx, by);
    contour_text t("0001 design");
    t.kerneldata(100, 100, 1.0, 1.0, 30.0, 30.0);
    t.rohlingsdaten("sole", bx, by, bx, by, std::vector<double>(bx.size(), 8.0), 3.0, 8.0);
    t.hcontour2("insole", x, y);
    return t;
}

using section = std::function<void(contour_text&)>;

const std::vector<std::pair<std::string, section>> sections = {
    {"HPelotte", [](contour_text& t) {
         std::vector<double> x, y;
         square(40, 40, 60, 60, x, y);
         t.open_height("HPelotte").key("name", "pad").key("typus", 0).key("nanz", static_cast<int>(x.size()));
         t.key("glaett", 1).key("awert", 3.0).key("xm", 50.0).key("ym", 50.0).array("x", x).array("y", y);
         t.array("xb", x).array("yb", y).close_height();
     }},
    {"HPelotteS", [](contour_text& t) {
         t.open_height("HPelotteS").key("name", "met").key("flag", 0).key("xm", 4).key("ym", 4);
         t.key("xre", 1.0).key("yre", 1.0).array("matt", {1, 0, 0, 50, 0, 1, 0, 50, 0, 0, 1, 0, 0, 0, 0, 1});
         t.array("speich", std::vector<double>(12, 1.0)).array("mata", std::vector<double>(16, 2.0));
         t.key("nanz", 4).array("xs", {45, 55, 55, 45}).array("ys", {45, 45, 55, 55}).close_height();
     }},
    {"HPlinie", [](contour_text& t) {
         std::vector<double> px, pz;
         for (int k = 0; k < 3; ++k)
             for (double v : {0.0, 1.0, 2.0, 3.0, 4.0}) {
                 px.push_back(v);
                 pz.push_back(v < 3.5 ? 3.0 : 0.0);
             }
         t.open_height("HPlinie").key("name", "arch").key("ebene", 1.0).key("flag", 0).key("nanz", 3);
         t.key("offen", 0).array("x", {45, 45, 45}).array("y", {40, 50, 60}).array("xm", px).array("ym", pz);
         t.close_height();
     }},
    {"HPunkt", [](contour_text& t) {
         t.open_height("HPunkt").key("name", "pt").key("ebene", 1.0).key("flag", 0).key("alpha", 0.5);
         t.key("x", 50.0).key("y", 50.0).array("xm1", {0, 1.5, 3, 4.5, 6}).array("ym1", {4, 4, 2, 0, 0});
         t.array("xm2", {0, 1.5, 3, 4.5, 6}).array("ym2", {1, 1, 1, 1, 1}).close_height();
     }},
    {"HTorsion", [](contour_text& t) {
         t.open_height("HTorsion").key("name", "tor").key("value", 3.0).key("yL", 50.0).key("yR", 50.0);
         t.key("xUp", 50.0).key("xLo", 50.0).key("yLLo", 40.0).key("yRLo", 40.0).key("yLUp", 60.0);
         t.key("yRUp", 60.0).key("side", 0).key("mode", 0).key("area", 1).key("smtype", 1).close_height();
     }},
    {"HSpreng", [](contour_text& t) {
         t.open_height("HSpreng").key("name", "sp").key("y1", 40.0).key("y2", 60.0).key("z2", 2.0);
         t.key("y1L", 40.0).key("y1R", 41.0).key("y2L", 60.0).key("y2R", 61.0).close_height();
     }},
    {"HSprenglinie", [](contour_text& t) {
         t.open_height("HSprenglinie").key("name", "sl").key("selcount", 3).array("hsel", {1.0, 2.0, 1.0});
         t.key("res", 0.5).int_array("hpos", {40, 50, 60}).close_height();
     }},
    {"HFFootMod", [](contour_text& t) {
         t.open_height("HFFootMod").key("name", "bead").array("pleft", {30, 62}).array("pright", {70, 62});
         t.array("pinner", {50, 62}).key("height", 3.0).key("minz", 1.0).close_height();
     }},
    {"HGlaett", [](contour_text& t) {
         t.open_height("HGlaett").key("name", "smooth").key("gfactor", 3).key("y1l", 40.0).key("y1r", 40.0);
         t.key("y2l", 60.0).key("y2r", 60.0).close_height();
     }},
    {"HGloba", [](contour_text& t) {
         t.open_height("HGloba").array("mat", {1, 0, 0, 1, 0, 1, 0, 2, 0, 0, 1, 0.5, 0, 0, 0, 1});
         t.key("minZ", 0.0).key("useMinZ", 1).close_height();
     }},
    {"HAbzug", [](contour_text& t) { t.open_height("HAbzug").key("name", "deduct").key("abzug", 1.5).close_height(); }},
    {"3DBrandsohle", [](contour_text& t) { t.instruction(500, "3DBrandsohle").key("ignored", 1); }},
};

std::string every_section(bool crlf = false)
{
    contour_text t = design();
    for (const auto& [name, add] : sections)
        add(t);
    return t.end().text(crlf);
}

std::string one_section(const section& add)
{
    contour_text t = design();
    add(t);
    return t.end().text();
}

// ---- archives ----

std::string grid_scan_entry()
{
    return vlm::chunk_chain(vlm::grid_entry(flat_grid(base_nodes, base_height)), 4000);
}

// A scan, its image and an orthotic model with every section, catalogued
// under one patient and one visit.
std::string design_archive(const std::string& model_text)
{
    vlm::archive a;
    a.add("VLM00005.dat", grid_scan_entry());
    a.add("VLM00007.dat", vlm::chunk(vlm::pcim_entry(small_image())));
    a.add("VLM00006.dat", vlm::chunk_chain(model_text, 1000));
    a.add("00000.vlk", vlm::catalogue()
                           .header("Velmora")
                           .separator()
                           .level1("Miller", "Anna")
                           .level2("2024-03-01", "Visit")
                           .level3(1, 1, 0, 101, "20240301", "scan", "", 5)
                           .level3(1, 3, 0, 201, "20240301", "image", "", 7)
                           .level3(3, 2, 1, 1, "20240301", "model", "", 6)
                           .text());
    return a.bytes();
}

std::vector<std::pair<std::string, std::string>> small_archives()
{
    const std::string scan = scan_bytes();
    const std::string plain = catalogues[0].second;
    auto three = [&](vlm::method m, bool catalogue_first) {
        vlm::archive a;
        if (catalogue_first)
            a.add("00000.vlk", plain, m);
        a.add("VLM00012.dat", vlm::chunk_chain(scan, 300), m);
        a.add("VLM00014.dat", vlm::chunk("0001\n"), m);
        if (!catalogue_first)
            a.add("00000.vlk", plain, m);
        return a.bytes();
    };
    vlm::archive two;
    two.add("VLM00012.dat", vlm::chunk_chain(scan, 300), vlm::method::stored)
        .add("VLM00014.dat", vlm::chunk("0001\n"), vlm::method::stored)
        .add("00000.vlk", plain, vlm::method::stored)
        .add("VLM00015.dat", vlm::chunk("PCIM"), vlm::method::stored)
        .add("XY00000.vlk", catalogues[1].second, vlm::method::stored);
    return {{"stored", three(vlm::method::stored, false)},
            {"deflated", three(vlm::method::deflated, false)},
            {"catalogue_first", three(vlm::method::stored, true)},
            {"two_catalogues", two.bytes()}};
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s DIR\n", argv[0]);
        return 2;
    }
    root = argv[1];
    bool ok = true;

    for (const auto& [name, text] : catalogues)
        ok &= put("fuzz_catalogue", name, text);

    const std::string scan = scan_bytes();
    ok &= put("fuzz_chunk_chain", "one_chunk", vlm::chunk(scan));
    ok &= put("fuzz_chunk_chain", "three_chunks", vlm::chunk_chain(scan, 300));
    const std::string z = vlm::zlib_compress(scan);
    ok &= put("fuzz_chunk_chain", "lowercase_hex",
              vlm::chunk_header(static_cast<std::uint32_t>(z.size()), static_cast<std::uint32_t>(scan.size()), true) + z);
    const std::string zx = vlm::zlib_compress("x");
    ok &= put("fuzz_chunk_chain", "bad_magic_then_chunk",
              vlm::chunk_header(static_cast<std::uint32_t>(zx.size()), 1, false, "ZAP") + zx + vlm::chunk("0001"));

    const std::string designed = design_archive(every_section());
    for (const auto& [name, bytes] : small_archives())
        ok &= put("fuzz_archive_read", name, bytes);
    ok &= put("fuzz_archive_read", "design", designed);

    // The import's first byte: bits 0 to 2 the options (scan, image, orthotic data).
    for (const auto& [name, bytes] : small_archives())
        ok &= put("fuzz_import", name, std::string(1, '\x07') + bytes);
    for (unsigned choice : {0x07u, 0x01u, 0x02u, 0x04u, 0x06u, 0x00u})
        ok &= put("fuzz_import", "design_" + std::to_string(choice), std::string(1, static_cast<char>(choice)) + designed);
    ok &= put("fuzz_import", "small_design",
              std::string(1, '\x07') + design_archive(vlm::small_design(true)));

    // The contour's first byte: 0 no base grid, 1 flat, 2 sloped with a hole.
    ok &= put("fuzz_contour", "every_section_flat", std::string(1, '\x01') + every_section());
    ok &= put("fuzz_contour", "every_section_sloped", std::string(1, '\x02') + every_section());
    ok &= put("fuzz_contour", "every_section_crlf", std::string(1, '\x01') + every_section(true));
    ok &= put("fuzz_contour", "small_design_no_base", std::string(1, '\x00') + vlm::small_design(true));
    for (const auto& [name, add] : sections)
        ok &= put("fuzz_contour", "section_" + name, std::string(1, '\x02') + one_section(add));

    ok &= put("fuzz_record", "scan_grid", vlm::grid_entry(flat_grid(base_nodes, base_height)));
    vlm::height_grid holes = flat_grid(12, 7);
    holes.nodata = 7;
    holes.codes[5] = 3;
    holes.codes.resize(100);   // shorter than its sizes declare
    ok &= put("fuzz_record", "model_grid_with_nodata", vlm::grid_entry(holes, "0002"));
    ok &= put("fuzz_record", "scan_image", vlm::pcim_entry(small_image()));
    vlm::scan_image cut = small_image();
    cut.pixels.resize(50);
    ok &= put("fuzz_record", "scan_image_cut", vlm::pcim_entry(cut));

    if (!ok) {
        std::fprintf(stderr, "%s: cannot write the seeds under %s\n", argv[0], argv[1]);
        return 1;
    }
    return 0;
}
