// PreviewPictures: height maps, images, the overview and file names, made
// from hand-built scenes; and PreviewFolder's files.
#include "cli/preview/PreviewPictures.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <map>
#include <sstream>

#include "cli/preview/BitmapFont.h"
#include "cli/preview/HeightColours.h"

namespace {

// A text chunk's "key=value" words.
std::map<std::string, std::string> fields(const PngFile::Texts& texts, const std::string& key)
{
    std::map<std::string, std::string> out;
    for (const auto& [k, v] : texts) {
        if (k != key) continue;
        std::istringstream in(v);
        for (std::string w; in >> w;) {
            const std::size_t eq = w.find('=');
            if (eq == std::string::npos) out["mode"] = w;
            else out[w.substr(0, eq)] = w.substr(eq + 1);
        }
    }
    return out;
}

bool has_text(const PngFile::Texts& texts, const std::string& key)
{
    for (const auto& kv : texts)
        if (kv.first == key) return true;
    return false;
}

// A 3 x 3 grid of nodes 1 mm apart: height 5 in the middle, 1 elsewhere.
SceneMesh pyramid(const std::string& name, double dz = 0.0)
{
    SceneMesh m;
    m.info.name = name;
    for (int j = 0; j < 3; ++j)
        for (int i = 0; i < 3; ++i) m.vertices.push_back({double(i), double(j), (i == 1 && j == 1 ? 5.0 : 1.0) + dz});
    for (std::uint32_t j = 0; j < 2; ++j)
        for (std::uint32_t i = 0; i < 2; ++i) {
            const std::uint32_t a = j * 3 + i;
            m.triangles.push_back({a, a + 1, a + 4});
            m.triangles.push_back({a, a + 4, a + 3});
        }
    return m;
}

std::vector<PreviewPicture> pictures(const Scene& s)
{
    std::vector<PreviewPicture> out;
    PreviewPictures::make(s, [&](PreviewPicture& p) { out.push_back(std::move(p)); });
    return out;
}

// The pixel of the map point (x, y) by the picture's Raster text.
CanvasRgb at(const PreviewPicture& p, double x, double y)
{
    auto r = fields(p.texts, "Raster");
    const double ppm = std::stod(r["pixels_per_mm"]);
    const int col = std::stoi(r["left"]) + static_cast<int>((x - std::stod(r["origin_x"])) * ppm);
    const int row = std::stoi(r["top"]) + std::stoi(r["rows"]) - 1 - static_cast<int>((y - std::stod(r["origin_y"])) * ppm);
    return p.canvas.get(col, row);
}

Scene scene_with(SceneGroup g)
{
    Scene s;
    s.top.add(std::move(g));
    return s;
}

} // namespace

TEST(PreviewPictures, Make_NodePixelsShowTheirOwnHeightsColour)
{
    SceneGroup g;
    g.name = "SCAN";
    g.placement = {1, 0, 0, 93.4974, 0, 1, 0, 279.0, 0, 0, 1, 0};
    g.add(pyramid("SCAN"));
    const auto ps = pictures(scene_with(g));
    ASSERT_EQ(ps.size(), 1u);
    const PreviewPicture& p = ps[0];
    EXPECT_EQ(p.kind, PreviewPicture::scan);
    EXPECT_EQ(p.lowest, 1.0);
    EXPECT_EQ(p.highest, 5.0);
    // The group's placement is left out: the nodes stay where they are.
    EXPECT_EQ(at(p, 1.0, 1.0), HeightColours::colour(HeightColours::levels - 1));
    EXPECT_EQ(at(p, 0.0, 0.0), HeightColours::colour(0));
    EXPECT_EQ(at(p, 2.0, 1.0), HeightColours::colour(0));
    // Half way from a side node to the middle: height 3, level 127.5 -> 128.
    EXPECT_EQ(at(p, 0.5, 1.0), HeightColours::colour(128));
    auto r = fields(p.texts, "Raster");
    EXPECT_EQ(r["columns"], "9");
    EXPECT_EQ(r["rows"], "9");
    EXPECT_EQ(r["origin_x"], "0");
    const auto legend = fields(p.texts, "Legend");
    const int bar_x = std::stoi(legend.at("left")), bar_top = std::stoi(legend.at("top"));
    EXPECT_EQ(p.canvas.get(bar_x, bar_top), HeightColours::colour(HeightColours::levels - 1));
    EXPECT_EQ(p.canvas.get(bar_x, bar_top + HeightColours::levels - 1), HeightColours::colour(0));
}

TEST(PreviewPictures, Make_TheHighestSurfaceOverAPixelIsShown)
{
    SceneGroup g;
    g.name = "two";
    g.add(pyramid("low"));
    SceneMesh both = pyramid("both");
    const SceneMesh high = pyramid("high", 10.0);
    for (auto t : high.triangles) {
        for (auto& i : t) i += 9;
        both.triangles.push_back(t);
    }
    both.vertices.insert(both.vertices.end(), high.vertices.begin(), high.vertices.end());
    // The lower surface comes last, so order cannot hide it.
    std::rotate(both.triangles.begin(), both.triangles.begin() + 8, both.triangles.end());
    g.add(both);
    const auto ps = pictures(scene_with(g));
    ASSERT_EQ(ps.size(), 2u);
    EXPECT_EQ(ps[1].highest, 15.0);
    EXPECT_EQ(at(ps[1], 1.0, 1.0), HeightColours::colour(15.0, 1.0, 15.0));
    EXPECT_EQ(at(ps[1], 0.0, 0.0), HeightColours::colour(11.0, 1.0, 15.0));
}

TEST(PreviewPictures, Make_InsoleOutlinesAreDrawnInTheirColourAndWidenTheMap)
{
    SceneGroup g;
    g.name = "MODEL";
    SceneCurve outline;
    outline.info.name = "blank";
    outline.info.colour = 6;
    outline.order = 2;
    outline.points = {{-2.0, -1.0, 0.0}, {-2.0, 3.0, 0.0}};
    outline.knots = {0.0, 0.0, 1.0, 1.0};
    g.add(outline);
    g.add(pyramid("FINISH_MODEL~0"));
    const auto ps = pictures(scene_with(g));
    ASSERT_EQ(ps.size(), 1u);
    EXPECT_EQ(ps[0].kind, PreviewPicture::insole);
    // The curve is item 0; the mesh item 1.
    EXPECT_EQ(ps[0].item, 1u);
    auto r = fields(ps[0].texts, "Raster");
    EXPECT_EQ(r["origin_x"], "-2");
    EXPECT_EQ(r["rows"], "17");
    EXPECT_EQ(at(ps[0], -2.0, 2.0), (CanvasRgb{255, 0, 255}));
    EXPECT_EQ(at(ps[0], 1.0, 1.0), HeightColours::colour(HeightColours::levels - 1));
}

TEST(PreviewPictures, Make_ImagePointsArePixelsRowByRowFirstRowAtTheBottom)
{
    SceneGroup g;
    g.name = "SCAN";
    ScenePointCloud c;
    c.info.name = "IMAGE";
    for (int j = 0; j < 2; ++j)
        for (int i = 0; i < 3; ++i) {
            c.points.push_back({i * 0.5, j * 0.5, -5.0});
            const auto v = static_cast<std::uint8_t>(40 * (j * 3 + i));
            c.colours.push_back({v, v, v});
        }
    g.add(c);
    const auto ps = pictures(scene_with(g));
    ASSERT_EQ(ps.size(), 1u);
    const auto layout = fields(ps[0].texts, "Layout");
    EXPECT_EQ(layout.at("mode"), "rows");
    EXPECT_EQ(layout.at("columns"), "3");
    EXPECT_EQ(layout.at("rows"), "2");
    const int left = std::stoi(layout.at("left")), top = std::stoi(layout.at("top"));
    for (int k = 0; k < 6; ++k)
        EXPECT_EQ(ps[0].canvas.get(left + k % 3, top + 1 - k / 3), c.colours[static_cast<std::size_t>(k)]) << k;
}

TEST(PreviewPictures, Make_ImageRowAtTheSideBoundStaysRowsOnePastIsDrawnAtPositions)
{
    for (const int n : {PreviewPictures::max_image_side, PreviewPictures::max_image_side + 1}) {
        SceneGroup g;
        g.name = "SCAN";
        ScenePointCloud c;
        c.info.name = "IMAGE";
        for (int i = 0; i < n; ++i) {
            c.points.push_back({i * 0.25, 0.0, -5.0});
            c.colours.push_back({9, 9, 9});
        }
        g.add(c);
        const auto ps = pictures(scene_with(g));
        ASSERT_EQ(ps.size(), 1u);
        const auto layout = fields(ps[0].texts, "Layout");
        if (n == PreviewPictures::max_image_side) {
            EXPECT_EQ(layout.at("mode"), "rows");
        } else {
            EXPECT_EQ(layout.at("mode"), "positions");
            EXPECT_LE(ps[0].canvas.width(), PreviewPictures::max_map_side + 2 * PreviewPictures::margin);
        }
    }
}

TEST(PreviewPictures, Make_MapAtTheSideBoundKeepsItsScaleAFarExtentIsHalvedToFit)
{
    for (const double extent : {(PreviewPictures::max_map_side - 1) / PreviewPictures::pixels_per_mm,
                                PreviewPictures::max_map_side / PreviewPictures::pixels_per_mm, 1e6}) {
        SceneGroup g;
        g.name = "SCAN";
        SceneMesh m;
        m.info.name = "SCAN";
        m.vertices = {{0, 0, 1}, {extent, 0, 2}, {0, 1, 3}};
        m.triangles = {{0, 1, 2}};
        g.add(m);
        const auto ps = pictures(scene_with(g));
        ASSERT_EQ(ps.size(), 1u);
        auto r = fields(ps[0].texts, "Raster");
        EXPECT_LE(std::stoi(r["columns"]), PreviewPictures::max_map_side);
        if (extent * PreviewPictures::pixels_per_mm < PreviewPictures::max_map_side)
            EXPECT_EQ(r["pixels_per_mm"], "4");
        else
            EXPECT_LT(std::stod(r["pixels_per_mm"]), PreviewPictures::pixels_per_mm);
    }
}

TEST(PreviewPictures, Make_ManyLargeTrianglesStopAtTheRasterBound)
{
    SceneGroup g;
    g.name = "SCAN";
    SceneMesh m;
    m.info.name = "SCAN";
    const double side = (PreviewPictures::max_map_side - 1) / PreviewPictures::pixels_per_mm;
    m.vertices = {{0, 0, 1}, {side, 0, 1}, {side, side, 1}, {0, side, 2}};
    // Each triangle's box is the whole map: 2048^2 tests. 16 of them pass
    // 2^26; 15 do not.
    for (int k = 0; k < 15; ++k) m.triangles.push_back({0, 1, 2});
    g.add(m);
    EXPECT_FALSE(has_text(pictures(scene_with(g))[0].texts, "Incomplete"));
    for (int k = 0; k < 100000; ++k) g.meshes[0].triangles.push_back({0, 2, 3});
    const auto t0 = std::chrono::steady_clock::now();
    const auto ps = pictures(scene_with(g));
    EXPECT_TRUE(has_text(ps[0].texts, "Incomplete"));
    EXPECT_LT(std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count(), 30.0);
}

TEST(PreviewPictures, FileStem_KeepsSafeBytesDropsRepeatsAndCutsAtTheBound)
{
    EXPECT_EQ(PreviewPictures::file_stem({"Data Base", "SCAN_(LEFT)_2024-03-01", "SCAN_(LEFT)_2024-03-01"}),
              "Data_Base--SCAN_LEFT_2024-03-01");
    EXPECT_EQ(PreviewPictures::file_stem({"Data Base", "x"}, 1), "x");
    EXPECT_EQ(PreviewPictures::file_stem({"..", "/", "M\xC3\xBCller"}), "M_ller");
    EXPECT_EQ(PreviewPictures::file_stem({"", "***"}), "item");
    EXPECT_EQ(PreviewPictures::file_stem({std::string(PreviewPictures::max_file_stem, 'a')}).size(),
              PreviewPictures::max_file_stem);
    EXPECT_EQ(PreviewPictures::file_stem({std::string(PreviewPictures::max_file_stem + 1, 'a')}).size(),
              PreviewPictures::max_file_stem);
}

TEST(PreviewPictures, SharedNames_LeavesEachPathItsLastName)
{
    EXPECT_EQ(PreviewPictures::shared_names({{"a", "b", "c"}, {"a", "b", "d"}}), 2u);
    EXPECT_EQ(PreviewPictures::shared_names({{"a", "b"}}), 1u);
    EXPECT_EQ(PreviewPictures::shared_names({{"a", "b"}, {"x", "b"}}), 0u);
    EXPECT_EQ(PreviewPictures::shared_names({}), 0u);
}

TEST(PreviewPictures, Overview_OneMoreThanTheBoundIsCountedNotShown)
{
    std::vector<PreviewPictures::Thumbnail> t(5, {Canvas(10, 10, {0, 0, 0}), "a/b"});
    const Canvas shown = PreviewPictures::overview("t", t, 0);
    const Canvas more = PreviewPictures::overview("t", t, 1);
    EXPECT_EQ(more.height() - shown.height(), BitmapFont::line_height + PreviewPictures::margin);
    EXPECT_EQ(shown.width(), 4 * (PreviewPictures::thumbnail_size + 2 * PreviewPictures::margin));
}

TEST(PreviewFolder, Write_NamesClashingPathsApartAndThumbnailsUpToTheBound)
{
    const std::filesystem::path dir = std::filesystem::path(VELMORA_BINARY_DIR) / "preview-folder-test";
    std::filesystem::remove_all(dir);
    std::filesystem::create_directories(dir);
    Scene s;
    SceneGroup& g = s.top.add(SceneGroup{});
    g.name = "root";
    for (std::size_t k = 0; k < PreviewPictures::max_overview_items + 1; ++k) {
        ScenePointCloud c;
        c.info.name = k % 2 ? "a b" : "A_b";
        c.points = {{0, 0, 0}};
        c.colours = {{1, 2, 3}};
        g.add(c);
    }
    std::vector<PreviewFolder::Written> written;
    std::string failed;
    ASSERT_EQ(PreviewFolder::write(s, dir.string(), "t", written, failed), "");
    ASSERT_EQ(written.size(), PreviewPictures::max_overview_items + 1);
    EXPECT_EQ(written[0].file, "A_b.png");
    EXPECT_EQ(written[1].file, "a_b-2.png");
    EXPECT_EQ(written[2].file, "A_b-3.png");
    EXPECT_TRUE(std::filesystem::exists(dir / "overview.png"));
    EXPECT_TRUE(std::filesystem::exists(dir / written.back().file));
}
