// The demo archive from end to end: make_demo_archive writes it, `velmora
// convert` imports it through the plug-in into glTF (and the other formats),
// `velmora dump` prints what the host received. Both trees must show the
// archive as its catalogue lays it out: one patient, two visits, each with a
// scan group of a left and a right scan and their pictures and a model group
// of a left and a right insole, each insole finished.
//
// The designs use every height section between them. Each section's effect
// is measured against the same archive written without that section, both
// read with the plug-in's reader: the difference of the finished insoles is
// what the section did, where the design puts it.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "archive/vmiFile.h"
#include "archive/vmiNode.h"
#include "archive/vmiObjGrid.h"
#include "archive/vmiObject.h"
#include "contour/vmiVelmcontur.h"
#include "grid/vmiBaseGrid.h"
#include "tests/support/commandRun.h"
#include "tests/support/demoArchive.h"
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
// glTF tells siblings of one name apart (gltf true): the second gets " (2)".
void check_visit(const item& visit, const std::string& title, const std::string& scan_date,
                 const std::string& model_date, int& finish, bool gltf)
{
    EXPECT_EQ(visit.kind, "group");
    ASSERT_EQ(names(visit), (std::vector<std::string>{"VelmScan(" + title + ")", "PCS models(" + title + ")"}));
    const item& scans = visit.members[0];
    const std::string left = "SCAN_(LEFT)_" + scan_date, right = "SCAN_(RIGHT)_" + scan_date;
    // An image's node takes the name of the scan before it.
    const std::string twin = gltf ? " (2)" : "";
    ASSERT_EQ(names(scans), (std::vector<std::string>{left, left + twin, right, right + twin}));
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

void check_tree(const item& root, bool gltf)
{
    EXPECT_EQ(root.name, "Data Base");
    ASSERT_EQ(names(root), std::vector<std::string>{"Beispiel,Erika"});
    const item& patient = root.members[0];
    ASSERT_EQ(names(patient),
              (std::vector<std::string>{"Erstversorgung : 2024-03-01", "Kontrolle : 2024-09-12"}));
    int finish = 0;
    check_visit(patient.members[0], "Erstversorgung", "2024-03-01", "2024-03-04", finish, gltf);
    check_visit(patient.members[1], "Kontrolle", "2024-09-12", "2024-09-16", finish, gltf);
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
    check_tree(root, true);
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
    check_tree(root, false);
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

// Every output of the command line, byte for byte as the commit before the
// import was made faster wrote it: the dumps and every converted format, of
// the demo and of a larger archive (three visits, scans twice as fine). The
// digests were taken from that commit's build; a change of speed or memory
// must not change a single byte. A digest changes only with a deliberate
// change of a format, said in its commit.
TEST(DemoOutputs, AreByteIdenticalToTheRecordedOnes)
{
    struct output {
        const char* file;
        const char* sha256;
    };
    const output recorded[] = {
        {"demo.summary.json", "2df5311f83d690c41ebb24b3f0029788593502ca4e5fd0269abb99279c750ec4"},
        {"demo.dump.json", "17c37b38797d9c1b764e44e5b00c8188c741f2d0b043111101c3291961c16e3f"},
        {"demo.compact.json", "63c7afdb1ef8e7603ec0ca7b2361b88797367ce275f1bd097089ad056973911e"},
        {"demo.glb", "f373e18ca664ccf373a0c1795bc2ef1598d448a1d4869c9b3edec769e6e41f64"},
        {"demo.gltf", "7a74b9fa82241169a46a6ac7cd6d6ec7dd216b7d7b82b5466e9b2dcb335d8442"},
        {"demo.obj", "667a8ce7bb103b488a71499261d256dbdd6137231840257e6a4e02aedcc534b4"},
        {"demo.ply", "639c95f5bb8f14c9440035cf1d65d7fed77ab84973f92d1d3727780b9cc951e3"},
        {"demo.stl", "63182017a5c274dab0326c95bf06af95ef4827b9ab2d8214b7e33e25a9c31aa0"},
        {"scaled.summary.json", "a717ac5420f07bb837b5161af2a2392dac5beee24746c5e512b392612c95d627"},
        {"scaled.dump.json", "f095dddac0f2d8723c0731ad97d45ec44960b39635ebcc2802b0c46f4e1505f0"},
        {"scaled.compact.json", "ffb6499bb278ce5c6b085343c32333793f5bcfefa953c7b5045cce035a239269"},
        {"scaled.glb", "0926eb5f17319cd594aeef72fc93b1ea60f944bfc0f1e510258e8b2d1886b636"},
        {"scaled.gltf", "a4b8a66cc6fd2815d8bbc21976e6a5d657f7cc1a7e8645618c9b230b01205aae"},
        {"scaled.obj", "da1c900edeb670ff4f762ec7c69170b04d7a258d9f1525aa40b959ddbdd7d909"},
        {"scaled.ply", "a25ab26f9c7b78343bca799ebe3080732f8739a9d4be3cb8bb863b8382d29771"},
        {"scaled.stl", "b48c803cb8a36c732f95db8260a93ce9d414cc93166d4afd02bd5e3ae662e410"},
    };
    // The file names are fixed: the converted scenes are named after the
    // archive.
    const std::filesystem::path dir = vlm::temp_path("outputs");
    std::filesystem::create_directories(dir);
    const std::string velmora = shell_word(bin_dir + "velmora");
    const std::string in_dir = "cd " + shell_word(dir.string()) + " && ";
    ASSERT_EQ(run(in_dir + shell_word(bin_dir + "make_demo_archive") + " demo.vlm"), 0);
    ASSERT_EQ(run(in_dir + shell_word(bin_dir + "make_demo_archive") + " --visits 3 --fineness 2 scaled.vlm"), 0);
    const auto dump = [&](const std::string& options, const std::string& a, const std::string& out) {
        return std::system((in_dir + velmora + " dump " + options + a + ".vlm >" + out + " 2>/dev/null").c_str());
    };
    for (const char* archive : {"demo", "scaled"}) {
        const std::string a = archive;
        EXPECT_EQ(dump("--summary ", a, a + ".summary.json"), 0);
        EXPECT_EQ(dump("", a, a + ".dump.json"), 0);
        EXPECT_EQ(dump("--compact ", a, a + ".compact.json"), 0);
        for (const char* ext : {"glb", "gltf", "obj", "ply", "stl"})
            EXPECT_EQ(run(in_dir + velmora + " convert " + a + ".vlm -o " + a + "." + ext), 0) << a << "." << ext;
    }
    for (const output& o : recorded) {
        const vlm::command_result sum = vlm::run_command("sha256sum", {(dir / o.file).string()});
        ASSERT_EQ(sum.status, 0) << o.file;
        EXPECT_EQ(sum.out.substr(0, 64), o.sha256) << o.file;
    }
    std::filesystem::remove_all(dir);
}

// ---------------------------------------------------------------------------
// What the height sections do to the finished insoles

namespace {

using vlm::demo::design_plan;
using vlm::demo::point2;

// The demo archive read with the plug-in's reader, written without the
// sections named (none: the archive as the demo ships it).
class read_demo {
public:
    explicit read_demo(const std::vector<std::string>& without = {})
    {
        const std::string path = vlm::temp_path("demo_without.vlm");
        ok_ = vlm::demo::write_archive(path, without) && file_.read(utString(path)) == 1;
        std::remove(path.c_str());
    }
    bool ok() const { return ok_; }
    vmiFile& file() { return file_; }
    vmiBaseGrid* grid(const design_plan& p)
    {
        vmiObject* o = file_.find_obj(utString(p.finished_model));
        return o && o->grid() ? o->grid()->grid() : nullptr;
    }

private:
    vmiFile file_;
    bool ok_ = false;
};

// The finished insole's height at the node nearest to p.
double height_at(vmiBaseGrid& g, const design_plan& p, const point2& at)
{
    return g.point(static_cast<int>(std::lround(at.x / p.grid_spacing)),
                   static_cast<int>(std::lround(at.y / p.grid_spacing)))
        .z();
}

// The full archive and the one without a section, with the plans of the
// designs that use it.
struct comparison {
    read_demo with;
    read_demo without;
    std::vector<design_plan> plans;

    explicit comparison(const std::string& section) : without({section})
    {
        for (const design_plan& p : vlm::demo::design_plans())
            if (p.uses(section))
                plans.push_back(p);
    }
    bool ok() { return with.ok() && without.ok() && !plans.empty(); }
    // What the section added at a point of design p.
    double added(const design_plan& p, const point2& at)
    {
        vmiBaseGrid* a = with.grid(p);
        vmiBaseGrid* b = without.grid(p);
        if (!a || !b)
            return std::nan("");
        return height_at(*a, p, at) - height_at(*b, p, at);
    }
};

// Nodes of the finished insole that carry its surface: not the walls and the
// floor (the first columns), not the low fill of the rim.
constexpr int wall_columns = 10;
constexpr double rim_fill = 0.25;
bool surface(vmiBaseGrid& g, int i, int j)
{
    return i >= wall_columns && i < g.x_size() && j >= 0 && j < g.y_size() && g.point(i, j).z() > rim_fill;
}

// A node at least `margin` nodes inside the surface every way: smoothing
// also lifts the nodes on the insole's edge, which is not what is measured.
bool interior(vmiBaseGrid& g, int i, int j, int margin)
{
    for (int b = j - margin; b <= j + margin; ++b)
        for (int a = i - margin; a <= i + margin; ++a)
            if (!surface(g, a, b))
                return false;
    return true;
}

// The largest size of the discrete Laplacian over the interior nodes of rows
// from_row ... to_row: the sharpest bend of the surface.
double sharpest_bend(vmiBaseGrid& g, int from_row, int to_row)
{
    constexpr int edge_margin = 5;
    double sharpest = 0.0;
    for (int j = from_row; j <= to_row; ++j)
        for (int i = wall_columns; i < g.x_size(); ++i) {
            if (!interior(g, i, j, edge_margin))
                continue;
            const double z = g.point(i, j).z();
            sharpest = std::max(sharpest, std::fabs(g.point(i - 1, j).z() + g.point(i + 1, j).z() +
                                                    g.point(i, j - 1).z() + g.point(i, j + 1).z() - 4.0 * z));
        }
    return sharpest;
}

int row_of(const design_plan& p, double y) { return static_cast<int>(std::lround(y / p.grid_spacing)); }

} // namespace

TEST(DemoDesigns, UseEveryHeightSectionBetweenThemAndTheReaderReadsEach)
{
    read_demo demo;
    ASSERT_TRUE(demo.ok());
    const std::vector<design_plan> plans = vlm::demo::design_plans();
    ASSERT_EQ(plans.size(), 4u);
    for (const std::string& section : vlm::demo::height_sections())
        EXPECT_TRUE(plans[0].uses(section) || plans[2].uses(section)) << section;
    // Both feet of a visit have the same modifications, mirrored.
    EXPECT_EQ(plans[0].sections, plans[1].sections);
    EXPECT_EQ(plans[2].sections, plans[3].sections);
    const char* models[4] = {"MODEL_(LEFT)_2024-03-04", "MODEL_(RIGHT)_2024-03-04", "MODEL_(LEFT)_2024-09-16",
                             "MODEL_(RIGHT)_2024-09-16"};
    for (int k = 0; k < 4; ++k) {
        vmiNode* node = demo.file().find_node(utString(models[k]));
        ASSERT_NE(node, nullptr) << models[k];
        ASSERT_NE(node->velmcontur(), nullptr) << models[k];
        std::vector<std::string> read;
        for (const utString& name : node->velmcontur()->sections())
            read.push_back(name.str());
        std::vector<std::string> expected = {"Kerneldata", "Rohlingsdaten", "HContour2"};
        expected.insert(expected.end(), plans[k].sections.begin(), plans[k].sections.end());
        EXPECT_EQ(read, expected) << models[k];
    }
}

TEST(DemoDesigns, MetatarsalPadRisesByAboutItsHeightAtItsCentreAndFallsToItsOutline)
{
    comparison c("HPelotte");
    ASSERT_TRUE(c.ok());
    for (const design_plan& p : c.plans) {
        const vlm::demo::profiled_pad& pad = p.pad;
        const double centre = c.added(p, pad.centre);
        // Its own smoothing and the insole's take a little off the top.
        EXPECT_NEAR(centre, pad.height, 0.5) << p.finished_model;
        // A bump, not a spike or a hole: lower half way out, nothing beyond.
        const double half = c.added(p, {pad.centre.x, pad.centre.y + 0.5 * pad.half_length});
        EXPECT_GT(half, 0.3 * pad.height) << p.finished_model;
        EXPECT_LT(half, 0.9 * centre) << p.finished_model;
        const double rim = c.added(p, {pad.centre.x, pad.centre.y + 0.9 * pad.half_length});
        EXPECT_GE(rim, 0.0) << p.finished_model;
        EXPECT_LT(rim, half) << p.finished_model;
        EXPECT_EQ(c.added(p, {pad.centre.x, pad.centre.y + pad.half_length + 5.0}), 0.0) << p.finished_model;
        EXPECT_EQ(c.added(p, {pad.centre.x + pad.half_width + 5.0, pad.centre.y}), 0.0) << p.finished_model;
    }
}

TEST(DemoDesigns, StockPadRisesByItsMatrixHeightAtItsCentreOnly)
{
    comparison c("HPelotteS");
    ASSERT_TRUE(c.ok());
    for (const design_plan& p : c.plans) {
        const vlm::demo::matrix_pad& pad = p.stock_pad;
        // The matrix's cells are placed on the nearest nodes: the node at the
        // centre takes one of the cells next to the dome's top.
        EXPECT_NEAR(c.added(p, pad.centre), pad.height, 0.2) << p.finished_model;
        const double reach = 0.5 * pad.rows * pad.cell + 5.0;
        EXPECT_EQ(c.added(p, {pad.centre.x, pad.centre.y + reach}), 0.0) << p.finished_model;
        EXPECT_EQ(c.added(p, {pad.centre.x, pad.centre.y - reach}), 0.0) << p.finished_model;
    }
}

TEST(DemoDesigns, ArchLineRaisesTheInnerArchByItsStationHeights)
{
    comparison c("HPlinie");
    ASSERT_TRUE(c.ok());
    for (const design_plan& p : c.plans) {
        const vlm::demo::line_support& line = p.arch_line;
        for (std::size_t k = 0; k < line.stations.size(); ++k)
            EXPECT_NEAR(c.added(p, line.stations[k]), line.heights[k], 0.6) << p.finished_model << " station " << k;
        // Nothing beyond its width towards the middle of the foot.
        const point2 mid = line.stations[1];
        const double inward = p.s == vlm::demo::side::right ? 1.0 : -1.0;
        EXPECT_EQ(c.added(p, {mid.x + inward * (line.width + 5.0), mid.y}), 0.0) << p.finished_model;
    }
}

TEST(DemoDesigns, PointSupportRaisesTheCuboidRegionByItsHeight)
{
    comparison c("HPunkt");
    ASSERT_TRUE(c.ok());
    for (const design_plan& p : c.plans) {
        const vlm::demo::point_support& s = p.cuboid_support;
        EXPECT_NEAR(c.added(p, s.centre), s.height, 0.1) << p.finished_model;
        const double half = c.added(p, {s.centre.x, s.centre.y + 0.5 * s.r1});
        EXPECT_GT(half, 0.2 * s.height) << p.finished_model;
        EXPECT_LT(half, 0.9 * s.height) << p.finished_model;
        EXPECT_EQ(c.added(p, {s.centre.x, s.centre.y + s.r1 + 4.0}), 0.0) << p.finished_model;
    }
}

TEST(DemoDesigns, TorsionTiltsTheInnerForefootByAFewDegrees)
{
    comparison c("HTorsion");
    ASSERT_TRUE(c.ok());
    for (const design_plan& p : c.plans) {
        const vlm::demo::torsion& t = p.forefoot_torsion;
        const double y = t.middle_y;
        const double inward = p.s == vlm::demo::side::right ? -1.0 : 1.0;
        // On the middle line the lift grows linearly from the axis to the
        // insole's inner edge, where it reaches the torsion's value.
        const double reach = std::fabs(p.inner_edge(y) - t.axis_x);
        EXPECT_NEAR(c.added(p, {t.axis_x, y}), 0.0, 0.1) << p.finished_model;
        const double near = c.added(p, {t.axis_x + inward * 10.0, y});
        const double far = c.added(p, {t.axis_x + inward * 30.0, y});
        EXPECT_NEAR(near, t.value * 10.0 / reach, 0.1) << p.finished_model;
        EXPECT_NEAR(far, t.value * 30.0 / reach, 0.1) << p.finished_model;
        const double degrees = std::atan((far - near) / 20.0) * 180.0 / std::acos(-1.0);
        EXPECT_GT(degrees, 2.0) << p.finished_model;
        EXPECT_LT(degrees, 6.0) << p.finished_model;
        // The outer side and the midfoot are left alone.
        EXPECT_EQ(c.added(p, {t.axis_x - inward * 20.0, y}), 0.0) << p.finished_model;
        EXPECT_EQ(c.added(p, {t.axis_x + inward * 20.0, t.lower_y - 5.0}), 0.0) << p.finished_model;
    }
}

TEST(DemoDesigns, SpringBandLiftsTheHeelByItsHeightAndTheForefootByHalfAMillimetre)
{
    comparison c("HSpreng");
    ASSERT_TRUE(c.ok());
    for (const design_plan& p : c.plans) {
        EXPECT_NEAR(c.added(p, p.at(0.15, 0.0)), -p.spring.z2, 1e-9) << p.finished_model;
        EXPECT_NEAR(c.added(p, p.at(0.80, 0.0)), 0.5, 1e-9) << p.finished_model;
        const double band = c.added(p, p.at(0.45, 0.0));
        EXPECT_GT(band, 0.5) << p.finished_model;
        EXPECT_LT(band, -p.spring.z2) << p.finished_model;
    }
}

TEST(DemoDesigns, SpringProfileLiftsEveryRowByTheProfileAtItsStations)
{
    comparison c("HSprenglinie");
    ASSERT_TRUE(c.ok());
    for (const design_plan& p : c.plans) {
        vmiBaseGrid* g = c.with.grid(p);
        ASSERT_NE(g, nullptr);
        const double first_row = *std::min_element(p.insole_y.begin(), p.insole_y.end()) / p.grid_spacing;
        for (std::size_t k = 0; k < p.spring_profile.hpos.size(); ++k) {
            const double y = (std::ceil(first_row) + p.spring_profile.hpos[k]) * p.grid_spacing;
            // Away from the pads and the rim, across the whole row alike.
            const double at_axis = c.added(p, {p.centre_x, y});
            EXPECT_NEAR(at_axis, p.spring_profile.hsel[k], 0.3) << p.finished_model << " station " << k;
        }
        const int heel = row_of(p, p.at(0.15, 0.0).y);
        const double lift = c.added(p, p.at(0.15, 0.0));
        for (double across : {-20.0, -10.0, 10.0, 20.0})
            EXPECT_NEAR(c.added(p, p.at(0.15, across)), lift, 1e-9) << p.finished_model << " row " << heel;
    }
}

TEST(DemoDesigns, ToeBedIsLevelBeyondTheToeLine)
{
    comparison c("HFFootMod");
    ASSERT_TRUE(c.ok());
    for (const design_plan& p : c.plans) {
        // The outer half of a row under the toes (the torsion lifts the inner
        // half), clear of the rim.
        const double y = p.at(0.93, 0.0).y;
        const double outer = p.outer_edge(y);
        auto spread = [&](read_demo& r) {
            vmiBaseGrid* g = r.grid(p);
            double lo = 1e9, hi = -1e9;
            for (double x = std::min(p.centre_x, outer); x <= std::max(p.centre_x, outer); x += 1.0) {
                if (std::fabs(x - outer) < 3.0)
                    continue;
                const double z = height_at(*g, p, {x, y});
                lo = std::min(lo, z);
                hi = std::max(hi, z);
            }
            return hi - lo;
        };
        EXPECT_LT(spread(c.with), 0.2) << p.finished_model;
        EXPECT_GT(spread(c.without), 1.0) << p.finished_model;
        // Before the line the foot model changes nothing.
        EXPECT_NEAR(c.added(p, p.at(0.40, 0.0)), 0.0, 1e-9) << p.finished_model;
    }
}

TEST(DemoDesigns, SmoothingRoundsOffTheSharpestBendWhereItActs)
{
    comparison c("HGlaett");
    ASSERT_TRUE(c.ok());
    for (const design_plan& p : c.plans) {
        vmiBaseGrid* a = c.with.grid(p);
        vmiBaseGrid* b = c.without.grid(p);
        ASSERT_TRUE(a && b);
        const bool band = p.smooth.lower_y >= 0.0;
        const int from = band ? row_of(p, p.smooth.lower_y) + p.smooth.factor : 0;
        const int to = a->y_size() - 1;
        EXPECT_LT(sharpest_bend(*a, from, to), 0.5 * sharpest_bend(*b, from, to)) << p.finished_model;
        // A band leaves the heel as it was.
        if (band) {
            EXPECT_EQ(c.added(p, p.at(0.15, 0.0)), 0.0) << p.finished_model;
        }
    }
}

TEST(DemoDesigns, GlobalPlacementPutsTheLowestPointAtItsMinimumAndShiftsTheWholeInsole)
{
    comparison c("HGloba");
    ASSERT_TRUE(c.ok());
    for (const design_plan& p : c.plans) {
        vmiBaseGrid* g = c.with.grid(p);
        ASSERT_NE(g, nullptr);
        double lowest = 1e9;
        for (int j = 0; j < g->y_size(); ++j)
            for (int i = 0; i < g->x_size(); ++i)
                if (surface(*g, i, j))
                    lowest = std::min(lowest, g->point(i, j).z());
        // The smoothing of the toes, after the placement, may touch it.
        EXPECT_NEAR(lowest, p.global_min_z, 0.01) << p.finished_model;
        const double shift = c.added(p, p.at(0.15, 0.0));
        EXPECT_GT(shift, 0.0) << p.finished_model;
        EXPECT_NEAR(c.added(p, p.at(0.40, 10.0)), shift, 1e-9) << p.finished_model;
        EXPECT_NEAR(c.added(p, p.stock_pad.centre), shift, 1e-9) << p.finished_model;
    }
}

TEST(DemoDesigns, DeductionLowersTheWholeInsoleByTheCoversThickness)
{
    comparison c("HAbzug");
    ASSERT_TRUE(c.ok());
    for (const design_plan& p : c.plans)
        for (const point2& at : {p.at(0.15, 0.0), p.pad.centre, p.arch_line.stations[1], p.at(0.85, 10.0)})
            EXPECT_NEAR(c.added(p, at), -p.deduction, 1e-9) << p.finished_model;
}
