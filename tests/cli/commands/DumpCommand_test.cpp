// `velmora dump` end to end: build/bin/velmora run on archives written with
// the fixture writer, loading build/lib/libvelmora2rnx.so as any host does.
// Checks the identity, the names down the tree, the options (scan data
// switched off removes the scans), the summary and compact forms, and the exit
// statuses with their one-line messages.
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "tests/support/commandRun.h"
#include "tests/support/contourText.h"
#include "tests/support/vlmWriter.h"

using nlohmann::json;

namespace {

using CommandRun = vlm::command_result;

// Runs the built `velmora dump` with args, after the environment settings
// env ("NAME=value ...") when given.
CommandRun velmora(std::vector<std::string> args, const std::string& env = {})
{
    args.insert(args.begin(), "dump");
    return vlm::run_command(std::string(VELMORA_BINARY_DIR) + "/bin/velmora", args, env);
}

int lines(const std::string& s)
{
    int n = 0;
    for (char c : s) n += c == '\n';
    return n;
}

std::string scan_model(int nx, int ny)
{
    vlm::height_grid g;
    g.nx = nx;
    g.ny = ny;
    g.codes.assign(static_cast<std::size_t>(nx * ny), 10);
    return vlm::chunk_chain(vlm::grid_entry(g), 300);
}

std::string design()
{
    return vlm::chunk_chain(vlm::small_design(), 1000);
}

// A left scan, a right scan and a model over the left one, in one visit.
std::string write_archive()
{
    vlm::archive a;
    a.add("VLM00005.dat", scan_model(4, 3));
    a.add("VLM00007.dat", scan_model(2, 2));
    a.add("VLM00008.dat", design());
    a.add("00000.vlk", vlm::catalogue()
                           .header("Velmora")
                           .separator()
                           .level1("Miller", "Anna")
                           .level2("2021-03-01", "Visit")
                           .level3(1, 1, 0, 101, "20210301", "scan", "", 5)
                           .level3(1, 3, 0, 102, "20210303", "scan", "", 7)
                           .level3(3, 4, 1, 1, "20210304", "model", "", 8)
                           .text());
    const std::string path = vlm::temp_path("dump_command.vlm");
    EXPECT_TRUE(a.write(path));
    return path;
}

// Calls f on every item of the tree, the root first.
void each(const json& item, const std::function<void(const json&)>& f)
{
    f(item);
    if (item.contains("children"))
        for (const json& c : item["children"]) each(c, f);
}

int count_type(const json& root, const std::string& type)
{
    int n = 0;
    each(root, [&](const json& i) { n += i["type"] == type; });
    return n;
}

bool has_name(const json& root, const std::string& name)
{
    bool found = false;
    each(root, [&](const json& i) { found = found || i["name"] == name; });
    return found;
}

class DumpCommandRun : public ::testing::Test {
protected:
    void SetUp() override { path_ = write_archive(); }
    void TearDown() override { std::remove(path_.c_str()); }
    std::string path_;
};

} // namespace

TEST_F(DumpCommandRun, Dump_IdentityResultAndTheTreeFromDataBaseDown)
{
    const CommandRun r = velmora({path_});
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_TRUE(r.err.empty()) << r.err;
    const json d = json::parse(r.out);
    EXPECT_EQ(d["format"], "velmora-dump");
    EXPECT_EQ(d["version"], 1);
    EXPECT_EQ(d["library"]["library_name"], "velmora2rnx");
    EXPECT_EQ(d["library"]["format_name"], "Velmora");
    EXPECT_EQ(d["library"]["option"], "VELMORA");
    EXPECT_EQ(d["library"]["file_filter"], "Velmora Files (*.vlm)|*.vlm");
    EXPECT_EQ(d["library"]["database_number"], 145);
    EXPECT_EQ(d["library"]["translator_category"], "FOOTWEAR");
    EXPECT_EQ(d["library"]["file_types"].size(), 1u);
    EXPECT_EQ(d["library"]["extensions"], json::array());
    EXPECT_EQ(d["options"], json::parse(R"({"vmiOptProcessScanData":1,"vmiOptProcessImageData":1,)"
                                        R"("vmiOptProcessOrthoticData":1})"));
    EXPECT_EQ(d["result"], 1);
    EXPECT_EQ(d["translators"], 1);
    const json& root = d["root"];
    EXPECT_EQ(root["type"], "group");
    EXPECT_EQ(root["name"], "Data Base");
    EXPECT_EQ(root["mangled"], "Data Base");
    ASSERT_EQ(root["children"].size(), 1u);
    EXPECT_EQ(root["children"][0]["name"], "Miller,Anna");
    EXPECT_EQ(root["children"][0]["mangled"], "Data Base_Miller,Anna");
    EXPECT_TRUE(has_name(root, "VelmScan(Visit)"));
    EXPECT_TRUE(has_name(root, "SCAN_(LEFT)_20210301"));
    EXPECT_TRUE(has_name(root, "SCAN_(RIGHT)_20210303"));
    EXPECT_TRUE(has_name(root, "MODEL_(LEFT)_20210304"));
    EXPECT_GE(count_type(root, "triblock"), 3);
    EXPECT_GE(count_type(root, "curve"), 1);
}

TEST_F(DumpCommandRun, OptionScanDataOff_RemovesTheScansAndShowsInOptions)
{
    const CommandRun all = velmora({path_});
    const CommandRun r = velmora({"--option", "vmiOptProcessScanData=0", path_});
    ASSERT_EQ(r.status, 0) << r.err;
    const json d = json::parse(r.out);
    EXPECT_EQ(d["options"]["vmiOptProcessScanData"], 0);
    EXPECT_EQ(d["options"]["vmiOptProcessOrthoticData"], 1);
    const json& root = d["root"];
    // The two scans' triangle blocks are gone; the models stay.
    EXPECT_EQ(count_type(root, "triblock"), count_type(json::parse(all.out)["root"], "triblock") - 2);
    EXPECT_FALSE(has_name(root, "SCAN_(LEFT)_20210301"));
    EXPECT_FALSE(has_name(root, "SCAN_(RIGHT)_20210303"));
    EXPECT_TRUE(has_name(root, "MODEL_(LEFT)_20210304"));
}

TEST_F(DumpCommandRun, RepeatedOption_TheLastValueIsInForce)
{
    const CommandRun r = velmora({"--compact", "--option", "vmiOptProcessImageData=0", "--option",
                                  "vmiOptProcessImageData=1", path_});
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(json::parse(r.out)["options"]["vmiOptProcessImageData"], 1);
}

TEST_F(DumpCommandRun, PluginThatDoesNotLoad_UnreadableNothingPrinted)
{
    const CommandRun r = velmora({path_}, "VELMORA_PLUGIN=/nonexistent/libnothing.so");
    EXPECT_EQ(r.status, 3);
    EXPECT_EQ(lines(r.err), 1);
    EXPECT_EQ(r.err.rfind("velmora dump: /nonexistent/libnothing.so: cannot load the plug-in: ", 0), 0u) << r.err;
    EXPECT_TRUE(r.out.empty());
}

TEST_F(DumpCommandRun, Summary_EveryGeometryArrayIsADigest)
{
    const CommandRun r = velmora({"--summary", path_});
    ASSERT_EQ(r.status, 0) << r.err;
    const json d = json::parse(r.out);
    int digests = 0;
    each(d["root"], [&](const json& i) {
        for (const char* k : {"vertices", "triangles", "points", "colours", "knots"})
            if (i.contains(k)) {
                ASSERT_TRUE(i[k].is_object()) << k;
                EXPECT_EQ(i[k]["sha256"].get<std::string>().size(), 64u);
                ++digests;
            }
    });
    EXPECT_GE(digests, 8);
}

TEST_F(DumpCommandRun, Compact_OneLineTheSameDocument)
{
    const CommandRun pretty = velmora({path_});
    const CommandRun compact = velmora({"--compact", path_});
    ASSERT_EQ(compact.status, 0) << compact.err;
    EXPECT_EQ(lines(compact.out), 1);
    EXPECT_GT(lines(pretty.out), 1);
    EXPECT_EQ(json::parse(compact.out), json::parse(pretty.out));
}

TEST_F(DumpCommandRun, TwoRuns_GiveTheSameBytes)
{
    EXPECT_EQ(velmora({"--summary", path_}).out, velmora({"--summary", path_}).out);
}

TEST(DumpCommandExit, NothingImported_DumpPrintedWithResultZeroAndExitOne)
{
    vlm::archive a;
    a.add("VLM00005.dat", scan_model(2, 2));
    const std::string path = vlm::temp_path("dump_no_catalogue.vlm");
    ASSERT_TRUE(a.write(path));
    const CommandRun r = velmora({path});
    std::remove(path.c_str());
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.err, "velmora dump: " + path + ": nothing imported: the archive holds no catalogue entry (.vlk)\n");
    const json d = json::parse(r.out);
    EXPECT_EQ(d["result"], 0);
    EXPECT_EQ(d["translators"], 0);
    EXPECT_TRUE(d["root"].is_null());
    EXPECT_EQ(d["library"]["library_name"], "velmora2rnx");
}

TEST(DumpCommandExit, CatalogueOfAnUnreadableMethod_NamesTheMethodOnTheLastLine)
{
    vlm::archive a;
    a.add("VLM00005.dat", scan_model(2, 2));
    a.add("00000000.vlk", vlm::catalogue().separator().level1("A", "B").text(), vlm::method::stored);
    const std::string path = vlm::temp_path("a.vlm");
    ASSERT_TRUE(vlm::write_file(path, vlm::with_method(a.bytes(), "00000000.vlk", vlm::zip_method_lzma)));
    const CommandRun r = velmora({path});
    std::remove(path.c_str());
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.err, "velmora dump: " + path +
                         ": nothing imported: catalogue 00000000.vlk uses ZIP compression method LZMA (14), which "
                         "this build cannot read\n");
}

TEST(DumpCommandExit, UnknownOptionOrValue_WrongUsage)
{
    for (const char* o : {"vmiOptProcessScanData=2", "vmiOptOther=0", "vmiOptProcessScanData"}) {
        const CommandRun r = velmora({"--option", o, "x.vlm"});
        EXPECT_EQ(r.status, 2) << o;
        EXPECT_EQ(lines(r.err), 1) << o;
        EXPECT_TRUE(r.out.empty()) << o;
    }
    const CommandRun r = velmora({"--option", "vmiOptProcessScanData=2", "x.vlm"});
    EXPECT_EQ(r.err, "velmora dump: --option vmiOptProcessScanData=2: expected vmiOptProcessScanData, "
                     "vmiOptProcessImageData or vmiOptProcessOrthoticData =0 or =1\n");
}

TEST(DumpCommandExit, MissingFile_UnreadableNamingIt)
{
    const CommandRun r = velmora({"/nonexistent/dir/archive.vlm"});
    EXPECT_EQ(r.status, 3);
    EXPECT_EQ(lines(r.err), 1);
    EXPECT_EQ(r.err, "velmora dump: /nonexistent/dir/archive.vlm: no such file\n");
    EXPECT_TRUE(r.out.empty());
}

TEST(DumpCommandExit, Directory_UnreadableIsADirectory)
{
    const CommandRun r = velmora({"/tmp"});
    EXPECT_EQ(r.status, 3);
    EXPECT_EQ(r.err, "velmora dump: /tmp: is a directory\n");
}

TEST(DumpCommandExit, Device_UnreadableNotARegularFile)
{
    const CommandRun r = velmora({"/dev/null"});
    EXPECT_EQ(r.status, 3);
    EXPECT_EQ(r.err, "velmora dump: /dev/null: not a regular file\n");
}

TEST(DumpCommandExit, NoFile_WrongUsage)
{
    const CommandRun r = velmora({});
    EXPECT_EQ(r.status, 2);
    EXPECT_EQ(lines(r.err), 1);
}

TEST_F(DumpCommandRun, Only_KeepsTheTreeShapeAndTheSelectedLeaves)
{
    const CommandRun all = velmora({"--summary", path_});
    const CommandRun scans = velmora({"--summary", "--only", "scans", path_});
    ASSERT_EQ(scans.status, 0) << scans.err;
    EXPECT_EQ(scans.err, "");
    const json a = json::parse(all.out)["root"], s = json::parse(scans.out)["root"];
    EXPECT_EQ(count_type(s, "group"), count_type(a, "group"));
    EXPECT_EQ(count_type(s, "triblock"), 2);
    EXPECT_EQ(count_type(s, "curve"), 0);
    EXPECT_TRUE(has_name(s, "SCAN_(RIGHT)_20210303"));
    EXPECT_FALSE(has_name(s, "FINISH_MODEL~0"));
}

TEST_F(DumpCommandRun, Select_KeepsWhatIsInsideAMatchingGroup)
{
    const CommandRun r = velmora({"--summary", "--select", "*/PCS models(*", path_});
    ASSERT_EQ(r.status, 0) << r.err;
    const json root = json::parse(r.out)["root"];
    EXPECT_EQ(count_type(root, "triblock"), 1);
    EXPECT_GE(count_type(root, "curve"), 1);
    EXPECT_TRUE(has_name(root, "VelmScan(Visit)"));
    each(root, [](const json& i) {
        if (i["type"] == "triblock") {
            EXPECT_EQ(i["name"].get<std::string>().rfind("FINISH_MODEL~", 0), 0u);
        }
    });
}

TEST_F(DumpCommandRun, SelectionThatKeepsNothing_SaysSoAndPrintsTheGroups)
{
    const CommandRun r = velmora({"--summary", "--select", "nothing", path_});
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.err, "velmora dump: " + path_ + ": nothing selected: no object matches --select and --only\n");
    const json root = json::parse(r.out)["root"];
    EXPECT_EQ(count_type(root, "triblock") + count_type(root, "curve") + count_type(root, "pointcloud"), 0);
    EXPECT_TRUE(has_name(root, "MODEL_(LEFT)_20210304"));
}
