// `velmora preview` in this process with the real plug-in, on archives the
// fixture writer makes: a scan with its plantar image. The pictures are read
// back with libspng and checked against `velmora dump` of the same archive.
#include "cli/commands/PreviewCommand.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <spng.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <sstream>

#include "cli/ExitCode.h"
#include "tests/cli/commandLineRun.h"
#include "tests/support/vlmWriter.h"

namespace {

namespace fs = std::filesystem;

struct Png {
    int width = 0, height = 0;
    std::vector<unsigned char> rgb;
    std::map<std::string, std::string> texts;
    std::array<unsigned char, 3> at(int x, int y) const
    {
        const std::size_t i = (static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)) * 3;
        return {rgb[i], rgb[i + 1], rgb[i + 2]};
    }
};

Png read_png(const fs::path& p)
{
    std::ifstream in(p, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(in)), {});
    Png png;
    std::unique_ptr<spng_ctx, void (*)(spng_ctx*)> ctx(spng_ctx_new(0), spng_ctx_free);
    spng_set_png_buffer(ctx.get(), bytes.data(), bytes.size());
    spng_ihdr ihdr{};
    if (spng_get_ihdr(ctx.get(), &ihdr)) return png;
    std::size_t n = 0;
    spng_decoded_image_size(ctx.get(), SPNG_FMT_RGB8, &n);
    png.rgb.resize(n);
    if (spng_decode_image(ctx.get(), png.rgb.data(), n, SPNG_FMT_RGB8, 0)) return png;
    png.width = static_cast<int>(ihdr.width);
    png.height = static_cast<int>(ihdr.height);
    std::uint32_t count = 0;
    if (spng_get_text(ctx.get(), nullptr, &count) == 0) {
        std::vector<spng_text> t(count);
        spng_get_text(ctx.get(), t.data(), &count);
        for (const spng_text& x : t) png.texts[x.keyword] = std::string(x.text, x.length);
    }
    return png;
}

int field(const std::string& text, const std::string& key)
{
    const std::size_t at = text.find(key + "=");
    return at == std::string::npos ? -1 : std::stoi(text.substr(at + key.size() + 1));
}

class PreviewCommandTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        dir_ = fs::path(VELMORA_BINARY_DIR) / "preview-command-test" /
               ::testing::UnitTest::GetInstance()->current_test_info()->name();
        fs::remove_all(dir_);
        fs::create_directories(dir_);
        setenv("VELMORA_PLUGIN", (std::string(VELMORA_BINARY_DIR) + "/lib/libvelmora2rnx.so").c_str(), 1);
    }

    // A left scan of 5 x 4 nodes with heights rising along x, and its
    // 3 x 2 picture with a pixel of 255 (which the import makes grey 240).
    std::string archive()
    {
        vlm::height_grid g;
        g.nx = 5;
        g.ny = 4;
        for (int j = 0; j < g.ny; ++j)
            for (int i = 0; i < g.nx; ++i) g.codes.push_back(static_cast<std::uint16_t>(10 + 20 * i + j));
        vlm::scan_image im;
        im.width = 3;
        im.height = 2;
        im.pixels = {0, 100, 255, 254, 7, 50};
        vlm::archive a;
        a.add("VLM00005.dat", vlm::chunk_chain(vlm::grid_entry(g), 300));
        a.add("VLM00006.dat", vlm::chunk_chain(vlm::pcim_entry(im), 300));
        a.add("00000.vlk", vlm::catalogue()
                               .header("Velmora")
                               .separator()
                               .level1("Miller", "Anna")
                               .level2("2021-03-01", "Visit")
                               .level3(1, 1, 0, 101, "20210301", "scan", "", 5)
                               .level3(1, 2, 0, 103, "20210301", "image", "", 6)
                               .text());
        const std::string path = (dir_ / "scan.vlm").string();
        EXPECT_TRUE(a.write(path));
        return path;
    }

    fs::path dir_;
};

} // namespace

TEST_F(PreviewCommandTest, Run_ScanLegendMatchesTheDumpAndImageKeepsItsPixels)
{
    const std::string file = archive();
    const auto r = cli_test::velmora({"preview", file, "-o", (dir_ / "out").string()});
    ASSERT_EQ(r.status, exit_success) << r.err;
    EXPECT_EQ(r.err, "");
    const auto dump = cli_test::velmora({"dump", "--compact", file});
    ASSERT_EQ(dump.status, exit_success) << dump.err;
    const nlohmann::json doc = nlohmann::json::parse(dump.out);
    std::vector<nlohmann::json> meshes, clouds;
    std::function<void(const nlohmann::json&)> walk = [&](const nlohmann::json& n) {
        if (n["type"] == "triblock") meshes.push_back(n);
        if (n["type"] == "pointcloud") clouds.push_back(n);
        if (n.contains("children"))
            for (const auto& c : n["children"]) walk(c);
    };
    walk(doc["root"]);
    ASSERT_EQ(meshes.size(), 1u);
    ASSERT_EQ(clouds.size(), 1u);
    double lo = 1e300, hi = -1e300;
    for (const auto& v : meshes[0]["vertices"]) {
        lo = std::min(lo, v[2].get<double>());
        hi = std::max(hi, v[2].get<double>());
    }
    int scans = 0, images = 0;
    for (const auto& e : fs::directory_iterator(dir_ / "out")) {
        if (e.path().filename() == "overview.png") continue;
        Png png = read_png(e.path());
        ASSERT_GT(png.width, 0) << e.path();
        if (png.texts["Kind"] == "scan height map") {
            ++scans;
            std::istringstream h(png.texts["Heights"]);
            double a = 0, b = 0;
            h >> a >> b;
            EXPECT_EQ(a, lo);
            EXPECT_EQ(b, hi);
            EXPECT_LT(lo, hi);
        } else if (png.texts["Kind"] == "image") {
            ++images;
            const std::string& layout = png.texts["Layout"];
            const int left = field(layout, "left"), top = field(layout, "top");
            ASSERT_EQ(field(layout, "columns"), 3);
            ASSERT_EQ(field(layout, "rows"), 2);
            const auto& colours = clouds[0]["colours"];
            for (int k = 0; k < 6; ++k) {
                const auto c = png.at(left + k % 3, top + 1 - k / 3);
                EXPECT_EQ(c[0], colours[static_cast<std::size_t>(k)][0].get<int>()) << k;
            }
            // The picture's 255 shows as the 240 the import made of it.
            EXPECT_EQ(png.at(left + 2, top + 1)[0], 240);
            EXPECT_EQ(png.at(left + 0, top + 0)[0], 254);
        }
    }
    EXPECT_EQ(scans, 1);
    EXPECT_EQ(images, 1);
    EXPECT_TRUE(fs::exists(dir_ / "out" / "overview.png"));
}

TEST_F(PreviewCommandTest, Run_MissingOutputIsWrongUsage)
{
    const auto r = cli_test::velmora({"preview", archive()});
    EXPECT_EQ(r.status, exit_usage);
    EXPECT_NE(r.err.find("velmora preview: "), std::string::npos) << r.err;
}

TEST_F(PreviewCommandTest, Run_OutputThatIsAFileCannotBeWritten)
{
    const std::string file = archive();
    std::ofstream(dir_ / "taken") << "x";
    const auto r = cli_test::velmora({"preview", file, "-o", (dir_ / "taken").string()});
    EXPECT_EQ(r.status, exit_unreadable);
    EXPECT_EQ(r.err.rfind("velmora preview: " + (dir_ / "taken").string() + ": ", 0), 0u) << r.err;
}

TEST_F(PreviewCommandTest, Run_MissingArchiveIsUnreadable)
{
    const auto r = cli_test::velmora({"preview", (dir_ / "none.vlm").string(), "-o", (dir_ / "out").string()});
    EXPECT_EQ(r.status, exit_unreadable);
    EXPECT_EQ(r.err, "velmora preview: " + (dir_ / "none.vlm").string() + ": no such file\n");
}

TEST_F(PreviewCommandTest, Help_DescribesTheTextChunks)
{
    const auto r = cli_test::velmora({"preview", "--help"});
    EXPECT_EQ(r.status, exit_success);
    EXPECT_NE(r.out.find("Heights"), std::string::npos);
    EXPECT_NE(r.out.find("overview.png"), std::string::npos);
}
