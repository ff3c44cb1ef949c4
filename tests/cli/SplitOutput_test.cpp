// SplitOutput: file names made from object paths, one scene per object, and
// the manifest written beside the files.
#include "cli/SplitOutput.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>

namespace {

namespace fs = std::filesystem;

SceneGroup group(const std::string& name, double dx = 0.0)
{
    SceneGroup g;
    g.name = name;
    g.mangled = name;
    g.placement[3] = dx;
    return g;
}

SceneMesh mesh(const std::string& name)
{
    SceneMesh m;
    m.info.name = name;
    m.vertices = {{0, 0, 1}, {2, 0, 1}, {0, 3, 4}};
    m.triangles = {{0, 1, 2}};
    return m;
}

// Data Base (moved 10 along x) / {Scan: twin names differing in case,
// a cloud and a curve}.
Scene scene()
{
    Scene s;
    s.top.name = "demo";
    s.archive = "caf\xE9.vlm";
    SceneGroup& base = s.top.add(group("Data Base", 10.0));
    base.add(mesh("Twin"));
    base.add(mesh("twin"));
    ScenePointCloud c;
    c.info.name = "IMAGE";
    c.points = {{1, 1, 1}, {-1, 5, 2}};
    c.colours = {{0, 0, 0}, {0, 0, 0}};
    base.add(c);
    SceneCurve k;
    k.info.name = "blank~0";
    k.order = 2;
    k.points = {{0, 0, 0}, {4, 0, 0}};
    k.knots = {0, 0, 1, 1};
    base.add(k);
    return s;
}

nlohmann::json read_json(const fs::path& p)
{
    std::ifstream in(p);
    return nlohmann::json::parse(in, nullptr, false);
}

} // namespace

TEST(SplitOutput, Stem_NoSlashNoDotDotNoSpacesAndUtf8Kept)
{
    EXPECT_EQ(SplitOutput::stem({"Data Base", "a/b", "c\\d:e*f?g\"h<i>j|k"}), "Data_Base--a_b--c_d_e_f_g_h_i_j_k");
    EXPECT_EQ(SplitOutput::stem({".."}), "_.");
    EXPECT_EQ(SplitOutput::stem({"..", ".."}), "_.--..");
    EXPECT_EQ(SplitOutput::stem({"-rf"}), "_rf");
    EXPECT_EQ(SplitOutput::stem({"M\xFCller", "M\xC3\xBCller"}), "M\xC3\xBCller--M\xC3\xBCller");
    EXPECT_EQ(SplitOutput::stem({std::string("a\tb\nc\0d", 7)}), "a_b_c_d");
    EXPECT_EQ(SplitOutput::stem({}), "unnamed");
    EXPECT_EQ(SplitOutput::stem({"SCAN_(LEFT)_2024-03-01", "FINISH_MODEL~0"}), "SCAN_(LEFT)_2024-03-01--FINISH_MODEL~0");
}

TEST(SplitOutput, Stem_IsCutAtTheBoundBetweenCharacters)
{
    EXPECT_EQ(SplitOutput::stem({std::string(SplitOutput::max_name_bytes, 'a')}).size(), SplitOutput::max_name_bytes);
    EXPECT_EQ(SplitOutput::stem({std::string(SplitOutput::max_name_bytes + 1, 'a')}).size(),
              SplitOutput::max_name_bytes);
    // A two-byte character that would end one byte past the bound is left out whole.
    const std::string cut = SplitOutput::stem({std::string(SplitOutput::max_name_bytes - 1, 'a') + "\xFC"});
    EXPECT_EQ(cut, std::string(SplitOutput::max_name_bytes - 1, 'a'));
}

TEST(SplitOutput, OnlyItem_KeepsTheObjectAndTheGroupsAroundIt)
{
    const Scene s = SplitOutput::only_item(scene(), 2);
    const std::vector<ScenePlacedItem> items = s.placed_items(1.0);
    ASSERT_EQ(items.size(), 1u);
    ASSERT_NE(items[0].cloud, nullptr);
    EXPECT_EQ(items[0].path, std::vector<std::string>{"Data Base"});
    EXPECT_EQ(items[0].world[3], 10.0);
    EXPECT_EQ(s.archive, "caf\xE9.vlm");
    EXPECT_EQ(SplitOutput::only_item(scene(), 4).num_items(), 0u);
}

TEST(SplitOutput, Write_OneFilePerObjectCollisionsSuffixedAndAManifest)
{
    const fs::path dir = fs::path(VELMORA_BINARY_DIR) / "split-output-test" / "out";
    fs::remove_all(dir.parent_path());
    std::vector<std::string> written_paths;
    std::size_t written = 0;
    const std::string why = SplitOutput::write(
        scene(), dir.string(), "obj",
        [&](const Scene& one, const std::string& path) {
            EXPECT_EQ(one.num_items(), 1u);
            written_paths.push_back(path);
            std::ofstream(path) << "x";
            return std::string();
        },
        [](const ScenePlacedItem& it) { return it.curve == nullptr; }, &written);
    ASSERT_EQ(why, "");
    EXPECT_EQ(written, 3u);
    ASSERT_EQ(written_paths.size(), 3u);
    EXPECT_EQ(fs::path(written_paths[0]).filename(), "Data_Base--Twin.obj");
    // The same name but for letter case: a file system may not tell them apart.
    EXPECT_EQ(fs::path(written_paths[1]).filename(), "Data_Base--twin-2.obj");
    const nlohmann::json m = read_json(dir / "manifest.json");
    ASSERT_FALSE(m.is_discarded());
    EXPECT_EQ(m["archive"], "caf\xC3\xA9.vlm");
    EXPECT_EQ(m["format"], "obj");
    ASSERT_EQ(m["files"].size(), 3u);
    const nlohmann::json& twin = m["files"][0];
    EXPECT_EQ(twin["file"], "Data_Base--Twin.obj");
    EXPECT_EQ(twin["path"], "Data Base/Twin");
    EXPECT_EQ(twin["kind"], "scan");
    EXPECT_EQ(twin["vertices"], 3);
    EXPECT_EQ(twin["triangles"], 1);
    // Placed: moved 10 along x.
    EXPECT_EQ(twin["bounding_box"]["min"], nlohmann::json::parse("[10.0, 0.0, 1.0]"));
    EXPECT_EQ(twin["bounding_box"]["max"], nlohmann::json::parse("[12.0, 3.0, 4.0]"));
    const nlohmann::json& image = m["files"][2];
    EXPECT_EQ(image["kind"], "image");
    EXPECT_EQ(image["points"], 2);
    EXPECT_EQ(image["bounding_box"]["min"], nlohmann::json::parse("[9.0, 1.0, 1.0]"));
    EXPECT_EQ(m["left_out"], nlohmann::json::parse(R"(["Data Base/blank~0"])"));
    fs::remove_all(dir.parent_path());
}

TEST(SplitOutput, Write_NamesTheFileAWriterFailedOn)
{
    const fs::path dir = fs::path(VELMORA_BINARY_DIR) / "split-output-fail";
    fs::remove_all(dir);
    const std::string why = SplitOutput::write(scene(), dir.string(), "stl",
                                               [](const Scene&, const std::string&) { return std::string("disk full"); });
    EXPECT_EQ(why, (dir / "Data_Base--Twin.stl").string() + ": disk full");
    EXPECT_FALSE(fs::exists(dir / "manifest.json"));
    fs::remove_all(dir);
}
