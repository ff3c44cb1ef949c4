// The demo archive from end to end: make_demo_archive writes it, `velmora
// convert` imports it through the plug-in into glTF (and the other formats),
// `velmora dump` prints what the host received. Both trees must show the
// archive as its catalogue lays it out: one patient, two visits, each with a
// scan group of a left and a right scan and their pictures and a model group
// of a left and a right insole, each insole finished.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "tests/support/vlmWriter.h"

using nlohmann::json;

namespace {

const std::string bin_dir = std::string(VELMORA_BINARY_DIR) + "/bin/";
// The demo must stay small enough to hand around and to import at once.
constexpr std::uintmax_t demo_size_limit = 1024 * 1024;

// One node of an imported tree, whichever form it was read from: a group with
// its members, or a geometry item ("mesh", "cloud", "curve").
struct item {
    std::string name;
    std::string kind;
    std::size_t count = 0;   // vertices of a mesh, points of a cloud
    double top = 0.0;        // the highest z of a mesh, mm
    std::vector<item> members;
};

int run(const std::string& command)
{
    return std::system((command + " >/dev/null 2>&1").c_str());
}

std::string shell_word(const std::string& s) { return "'" + s + "'"; }

// The tree below the "Data Base" group of a glTF file: nodes with children are
// groups, nodes with a mesh are geometry, told apart by the primitive's mode
// (4 triangles, 0 points, 3 line strip).
bool gltf_item(const json& doc, const json& node, item& out, int depth = 0)
{
    if (depth > 16)
        return false;
    out.name = node.value("name", "");
    if (node.contains("mesh")) {
        const json& prim = doc["meshes"][node["mesh"].get<std::size_t>()]["primitives"][0];
        const int mode = prim.value("mode", 4);
        out.kind = mode == 4 ? "mesh" : mode == 0 ? "cloud" : "curve";
        const json& positions = doc["accessors"][prim["attributes"]["POSITION"].get<std::size_t>()];
        out.count = positions["count"].get<std::size_t>();
        out.top = positions["max"][2].get<double>();
        return true;
    }
    out.kind = "group";
    for (const json& k : node.value("children", json::array())) {
        out.members.emplace_back();
        if (!gltf_item(doc, doc["nodes"][k.get<std::size_t>()], out.members.back(), depth + 1))
            return false;
    }
    return true;
}

void dump_item(const json& node, item& out)
{
    out.name = node.value("name", "");
    const std::string type = node.value("type", "");
    if (type == "group") {
        out.kind = "group";
        for (const json& c : node["children"]) {
            out.members.emplace_back();
            dump_item(c, out.members.back());
        }
    } else if (type == "triblock") {
        out.kind = "mesh";
        out.count = node["vertices"]["count"].get<std::size_t>();
        out.top = node["vertices"]["max"][2].get<double>();
    } else if (type == "pointcloud") {
        out.kind = "cloud";
        out.count = node["points"]["count"].get<std::size_t>();
    } else {
        out.kind = "curve";
    }
}

std::vector<std::string> names(const item& group)
{
    std::vector<std::string> n;
    for (const item& m : group.members)
        n.push_back(m.name);
    return n;
}

// What both trees must show. `finish` counts the finished models met so far,
// which carry the contour counter of the whole archive.
void check_visit(const item& visit, const std::string& title, const std::string& scan_date,
                 const std::string& model_date, int& finish)
{
    EXPECT_EQ(visit.kind, "group");
    ASSERT_EQ(names(visit), (std::vector<std::string>{"VelmScan(" + title + ")", "PCS models(" + title + ")"}));
    const item& scans = visit.members[0];
    const std::string left = "SCAN_(LEFT)_" + scan_date, right = "SCAN_(RIGHT)_" + scan_date;
    // An image's node takes the name of the scan before it.
    ASSERT_EQ(names(scans), (std::vector<std::string>{left, left, right, right}));
    const char* object[4] = {"SCAN_(LEFT)_", "IMAGE_(LEFT)_", "SCAN_(RIGHT)_", "IMAGE_(RIGHT)_"};
    const char* kind[4] = {"mesh", "cloud", "mesh", "cloud"};
    for (int k = 0; k < 4; ++k) {
        ASSERT_EQ(scans.members[k].members.size(), 1u) << scans.members[k].name;
        const item& it = scans.members[k].members[0];
        EXPECT_EQ(it.name, object[k] + scan_date);
        EXPECT_EQ(it.kind, kind[k]) << it.name;
        EXPECT_GT(it.count, 1000u) << it.name;
    }
    const item& models = visit.members[1];
    ASSERT_EQ(names(models), (std::vector<std::string>{"MODEL_(LEFT)_" + model_date, "MODEL_(RIGHT)_" + model_date}));
    for (const item& model : models.members) {
        const std::string n = std::to_string(finish++);
        ASSERT_EQ(model.members.size(), 2u) << model.name;
        EXPECT_EQ(model.members[0].kind, "curve");
        EXPECT_EQ(model.members[0].name.substr(model.members[0].name.size() - 2), "~" + n);
        EXPECT_EQ(model.members[1].name, "FINISH_MODEL~" + n);
        EXPECT_EQ(model.members[1].kind, "mesh");
        EXPECT_GT(model.members[1].count, 1000u) << model.name;
        // The insole stands on the scan's sole (arch and rim over 10 mm),
        // not on a flat working grid.
        EXPECT_GT(model.members[1].top, 10.0) << model.name;
    }
}

void check_tree(const item& root)
{
    EXPECT_EQ(root.name, "Data Base");
    ASSERT_EQ(names(root), std::vector<std::string>{"Beispiel,Erika"});
    const item& patient = root.members[0];
    ASSERT_EQ(names(patient),
              (std::vector<std::string>{"Erstversorgung : 2024-03-01", "Kontrolle : 2024-09-12"}));
    int finish = 0;
    check_visit(patient.members[0], "Erstversorgung", "2024-03-01", "2024-03-04", finish);
    check_visit(patient.members[1], "Kontrolle", "2024-09-12", "2024-09-16", finish);
    EXPECT_EQ(finish, 4);
}

class Demo : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        archive_ = vlm::temp_path("demo.vlm");
        ASSERT_EQ(run(shell_word(bin_dir + "make_demo_archive") + " " + shell_word(archive_)), 0);
    }
    static void TearDownTestSuite() { std::remove(archive_.c_str()); }

    static json read_json(const std::string& path) { return json::parse(vlm::read_file(path), nullptr, false); }

    static std::string archive_;
};

std::string Demo::archive_;

} // namespace

TEST_F(Demo, ArchiveStaysUnderOneMegabyteAndIsTheSameOnEveryRun)
{
    EXPECT_LT(std::filesystem::file_size(archive_), demo_size_limit);
    // ZIP entries carry their time to 2 seconds: a run that took the clock
    // would differ from the first one after this pause.
    std::this_thread::sleep_for(std::chrono::milliseconds(2100));
    const std::string again = vlm::temp_path("demo_again.vlm");
    ASSERT_EQ(run(shell_word(bin_dir + "make_demo_archive") + " " + shell_word(again)), 0);
    EXPECT_TRUE(vlm::read_file(again) == vlm::read_file(archive_));
    std::remove(again.c_str());
}

TEST_F(Demo, ConvertedGltfShowsThePatientTheVisitsTheScansAndTheFinishedModels)
{
    const std::string out = vlm::temp_path("demo.gltf");
    ASSERT_EQ(run(shell_word(bin_dir + "velmora") + " convert " + shell_word(archive_) + " -o " + shell_word(out)), 0);
    const json doc = read_json(out);
    std::remove(out.c_str());
    ASSERT_FALSE(doc.is_discarded());
    // The scene's one root turns millimetres into metres and holds "Data Base".
    const json& top = doc["nodes"][doc["scenes"][0]["nodes"][0].get<std::size_t>()];
    ASSERT_EQ(top["children"].size(), 1u);
    item root;
    ASSERT_TRUE(gltf_item(doc, doc["nodes"][top["children"][0].get<std::size_t>()], root));
    check_tree(root);
}

TEST_F(Demo, DumpShowsThePatientTheVisitsTheScansAndTheFinishedModels)
{
    const std::string out = vlm::temp_path("demo_dump.json");
    ASSERT_EQ(std::system((shell_word(bin_dir + "velmora") + " dump --summary " + shell_word(archive_) + " >" + shell_word(out) +
                           " 2>/dev/null")
                              .c_str()),
              0);
    const json doc = read_json(out);
    std::remove(out.c_str());
    ASSERT_FALSE(doc.is_discarded());
    EXPECT_EQ(doc["result"], 1);
    item root;
    dump_item(doc["root"], root);
    check_tree(root);
}

TEST_F(Demo, ConvertsToEveryFormat)
{
    for (const char* ext : {"glb", "obj", "ply", "stl"}) {
        const std::string out = vlm::temp_path(std::string("demo.") + ext);
        EXPECT_EQ(run(shell_word(bin_dir + "velmora") + " convert " + shell_word(archive_) + " -o " + shell_word(out)), 0) << ext;
        std::error_code ec;
        EXPECT_GT(std::filesystem::file_size(out, ec), 10000u) << ext;
        std::remove(out.c_str());
    }
}
