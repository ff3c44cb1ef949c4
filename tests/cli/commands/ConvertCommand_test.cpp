// `velmora convert` through the command line, with a stand-in plug-in loaded
// by dlopen as the real one is (VELMORA_PLUGIN names it): exit statuses, the
// one-line diagnostics, options reaching the plug-in, and each format written.
#include "cli/commands/ConvertCommand.h"

#include <gtest/gtest.h>
#include <tiny_gltf.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <map>
#include <sstream>
#include <filesystem>
#include <fstream>

#include "cli/ExitCode.h"
#include "cli/PluginLoader.h"
#include "cli/commands/BatchConvert.h"
#include "tests/cli/commandLineRun.h"
#include "tests/support/contourText.h"
#include "tests/support/demoArchive.h"
#include "tests/support/vlmWriter.h"
#include "tests/support/commandRun.h"

namespace {

namespace fs = std::filesystem;

using cli_test::RunResult;

class ConvertCommandTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        dir_ = fs::path(VELMORA_BINARY_DIR) / "convert-command-test" /
               ::testing::UnitTest::GetInstance()->current_test_info()->name();
        fs::remove_all(dir_);
        fs::create_directories(dir_);
        archive_ = file("design.vlm", "PK not really an archive: the stand-in plug-in reads none");
        setenv("VELMORA_PLUGIN", CONVERT_TEST_PLUGIN, 1);
    }

    std::string file(const std::string& name, const std::string& content)
    {
        const std::string p = (dir_ / name).string();
        std::ofstream(p, std::ios::binary) << content;
        return p;
    }
    std::string path(const std::string& name) const { return (dir_ / name).string(); }

    static RunResult velmora(const std::vector<std::string>& args) { return cli_test::velmora(args); }

    static std::string read(const std::string& p)
    {
        std::ifstream in(p, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    }

    static std::vector<std::string> lines_starting(const std::string& text, const std::string& prefix)
    {
        std::vector<std::string> out;
        std::istringstream in(text);
        for (std::string line; std::getline(in, line);)
            if (line.rfind(prefix, 0) == 0) out.push_back(line);
        return out;
    }

    static int count_lines(const std::string& s) { return static_cast<int>(std::count(s.begin(), s.end(), '\n')); }

    fs::path dir_;
    std::string archive_;
};

// Edges of a binary STL file by the coordinates of their ends, as a
// reader without indices sees them: how many are used by one facet only, and
// how many are used otherwise than once each way.
struct StlEdges {
    std::size_t facets = 0, open = 0, bad = 0;
};

StlEdges stl_edges(const std::string& bytes)
{
    using P = std::array<float, 3>;
    StlEdges e;
    if (bytes.size() < 84) return e;
    std::uint32_t n = 0;
    std::memcpy(&n, bytes.data() + 80, 4);
    e.facets = n;
    std::map<std::pair<P, P>, int> directed;
    for (std::uint32_t k = 0; k < n && 84 + 50 * (k + 1) <= bytes.size(); ++k) {
        P v[3];
        std::memcpy(v, bytes.data() + 84 + 50 * k + 12, sizeof v);
        for (int i = 0; i < 3; ++i) ++directed[{v[i], v[(i + 1) % 3]}];
    }
    for (const auto& [d, count] : directed) {
        const auto back = directed.find({d.second, d.first});
        if (back == directed.end()) ++e.open;
        else if (count != 1 || back->second != 1) ++e.bad;
    }
    return e;
}

tinygltf::Model load(const std::string& p)
{
    tinygltf::TinyGLTF loader;
    tinygltf::Model m;
    std::string err, warn;
    EXPECT_TRUE(loader.LoadBinaryFromFile(&m, &err, &warn, p)) << err;
    return m;
}

} // namespace

TEST_F(ConvertCommandTest, Glb_HoldsTheImportedTreeUnderAMillimetreToMetreRoot)
{
    const RunResult r = velmora({"convert", archive_, "-o", path("out.glb")});
    ASSERT_EQ(r.status, exit_success) << r.err;
    EXPECT_EQ(r.err, "");
    const tinygltf::Model m = load(path("out.glb"));
    const tinygltf::Node& root = m.nodes[static_cast<std::size_t>(m.scenes.at(0).nodes.at(0))];
    EXPECT_EQ(root.name, "design");
    EXPECT_EQ(root.scale, (std::vector<double>{0.001, 0.001, 0.001}));
    const tinygltf::Node& base = m.nodes[static_cast<std::size_t>(root.children.at(0))];
    EXPECT_EQ(base.name, "Data Base");
    EXPECT_EQ(base.translation, (std::vector<double>{5, 0, 0}));
    std::vector<std::string> names;
    for (const tinygltf::Node& n : m.nodes) names.push_back(n.name);
    for (const char* n : {"VelmScan(A)", "PCS models(B)", "SCAN_(LEFT)_1", "PCIM_2", "LIMIT~1"})
        EXPECT_NE(std::find(names.begin(), names.end(), n), names.end()) << n;
    EXPECT_EQ(m.meshes.size(), 3u);
}

TEST_F(ConvertCommandTest, Glb_TurnsZUpToYUpAndNamesTheArchiveAndOptionsInForce)
{
    ASSERT_EQ(velmora({"convert", "--option", "vmiOptProcessImageData=0", archive_, "-o", path("out.glb")}).status,
              exit_success);
    const tinygltf::Model m = load(path("out.glb"));
    const tinygltf::Node& root = m.nodes[static_cast<std::size_t>(m.scenes.at(0).nodes.at(0))];
    ASSERT_EQ(root.rotation.size(), 4u);
    EXPECT_DOUBLE_EQ(root.rotation[0], -std::sqrt(0.5));
    EXPECT_EQ(m.asset.extras.Get("archive").Get<std::string>(), "design.vlm");
    const tinygltf::Value& o = m.asset.extras.Get("import_options");
    EXPECT_EQ(o.Get("vmiOptProcessImageData").GetNumberAsInt(), 0);
    EXPECT_EQ(o.Get("vmiOptProcessScanData").GetNumberAsInt(), 1);
    EXPECT_EQ(o.Get("vmiOptProcessOrthoticData").GetNumberAsInt(), 1);

    ASSERT_EQ(velmora({"convert", "--up", "z", archive_, "-o", path("z.glb")}).status, exit_success);
    const tinygltf::Model z = load(path("z.glb"));
    EXPECT_TRUE(z.nodes[static_cast<std::size_t>(z.scenes.at(0).nodes.at(0))].rotation.empty());
    const RunResult bad = velmora({"convert", "--up", "x", archive_, "-o", path("x.glb")});
    EXPECT_EQ(bad.status, exit_usage);
    EXPECT_EQ(bad.err.rfind("velmora convert: --up x", 0), 0u) << bad.err;
}

TEST_F(ConvertCommandTest, Scale_ReplacesTheGltfDefault)
{
    ASSERT_EQ(velmora({"convert", "--scale", "1", archive_, "-o", path("out.gltf")}).status, exit_success);
    tinygltf::TinyGLTF loader;
    tinygltf::Model m;
    std::string err, warn;
    ASSERT_TRUE(loader.LoadASCIIFromFile(&m, &err, &warn, path("out.gltf"))) << err;
    EXPECT_TRUE(m.nodes[static_cast<std::size_t>(m.scenes.at(0).nodes.at(0))].scale.empty());
}

TEST_F(ConvertCommandTest, Obj_FlattensPlacementsInMillimetres)
{
    ASSERT_EQ(velmora({"convert", archive_, "-o", path("out.OBJ")}).status, exit_success);
    const std::string obj = read(path("out.OBJ"));
    EXPECT_NE(obj.find("g VelmScan(A)_SCAN_(LEFT)_1\n"), std::string::npos);
    // The grid's (10, 0, 1) moved by (5, 0, 0) and (0, 7, 0); colour 3 is green.
    EXPECT_NE(obj.find("v 15 7 1 0 1 0\n"), std::string::npos);
    EXPECT_NE(obj.find("g PCS_models(B)_LIMIT~1\n"), std::string::npos);
}

TEST_F(ConvertCommandTest, PlyAndStl_AreWritten)
{
    ASSERT_EQ(velmora({"convert", archive_, "-o", path("out.ply")}).status, exit_success);
    // The grid's 4 vertices and the cloud's 2 points; the curve only when asked.
    EXPECT_NE(read(path("out.ply")).find("element vertex 6\n"), std::string::npos);
    EXPECT_EQ(read(path("out.ply")).find("element edge"), std::string::npos);
    ASSERT_EQ(velmora({"convert", "--curves", archive_, "-o", path("out.ply")}).status, exit_success);
    EXPECT_NE(read(path("out.ply")).find("element vertex 9\nproperty float x\n"), std::string::npos);
    EXPECT_NE(read(path("out.ply")).find("element edge 2\n"), std::string::npos);
    ASSERT_EQ(velmora({"convert", archive_, "-o", path("out.stl")}).status, exit_success);
    EXPECT_EQ(read(path("out.stl")).size(), 80u + 4u + 2u * 50u);
}

TEST_F(ConvertCommandTest, Option_ReachesThePluginBeforeTheRead)
{
    const RunResult r = velmora({"convert", "--option", "vmiOptProcessImageData=1", "--option",
                                 "vmiOptProcessScanData=0", archive_, "-o", path("out.obj")});
    ASSERT_EQ(r.status, exit_success) << r.err;
    const std::string obj = read(path("out.obj"));
    EXPECT_EQ(obj.find("SCAN_(LEFT)_1"), std::string::npos);
    EXPECT_NE(obj.find("LIMIT~1"), std::string::npos);
}

TEST_F(ConvertCommandTest, Option_HoldsForOneImportOnly)
{
    ASSERT_EQ(velmora({"convert", "--option", "vmiOptProcessScanData=0", archive_, "-o", path("a.obj")}).status,
              exit_success);
    ASSERT_EQ(velmora({"convert", archive_, "-o", path("b.obj")}).status, exit_success);
    EXPECT_NE(read(path("b.obj")).find("SCAN_(LEFT)_1"), std::string::npos);
}

TEST_F(ConvertCommandTest, ImportThatProducesNothing_ExitsOneNamingTheFile)
{
    const std::string empty = file("empty.vlm", "EMPTY");
    const RunResult r = velmora({"convert", empty, "-o", path("out.glb")});
    EXPECT_EQ(r.status, exit_nothing_imported);
    EXPECT_EQ(r.err, "velmora convert: " + empty + ": nothing imported: not a ZIP archive the unzip service can open\n");
    EXPECT_FALSE(fs::exists(path("out.glb")));
}

TEST_F(ConvertCommandTest, UnknownExtension_IsWrongUsageBeforeAnyRead)
{
    const RunResult r = velmora({"convert", path("missing.vlm"), "-o", path("out.fbx")});
    EXPECT_EQ(r.status, exit_usage);
    EXPECT_EQ(count_lines(r.err), 1);
    EXPECT_NE(r.err.find("out.fbx: unknown output format"), std::string::npos);
    EXPECT_EQ(velmora({"convert", archive_, "-o", path("noextension")}).status, exit_usage);
}

TEST_F(ConvertCommandTest, BadOptionOrScale_IsWrongUsage)
{
    for (const char* o : {"vmiOptProcessScanData=2", "vmiOptProcessScanData", "Other=1", "=1"}) {
        const RunResult r = velmora({"convert", "--option", o, archive_, "-o", path("out.glb")});
        EXPECT_EQ(r.status, exit_usage) << o;
        EXPECT_EQ(count_lines(r.err), 1) << o;
    }
    for (const char* s : {"0", "-1", "nan", "inf", "abc"})
        EXPECT_EQ(velmora({"convert", "--scale", s, archive_, "-o", path("out.glb")}).status, exit_usage) << s;
    EXPECT_EQ(velmora({"convert", archive_}).status, exit_usage);
}

TEST_F(ConvertCommandTest, BadOptionOrScale_MessageNamesTheOptionAndTheValueAsTyped)
{
    const RunResult o = velmora({"convert", "--option", "Other=1", archive_, "-o", path("out.glb")});
    EXPECT_EQ(o.err, "velmora convert: --option Other=1: expected vmiOptProcessScanData, vmiOptProcessImageData or "
                     "vmiOptProcessOrthoticData =0 or =1\n");
    const RunResult s = velmora({"convert", "--scale", "abc", archive_, "-o", path("out.glb")});
    EXPECT_EQ(s.err, "velmora convert: --scale abc: expected a finite number above 0\n");
    EXPECT_FALSE(fs::exists(path("out.glb")));
}

TEST_F(ConvertCommandTest, BadScale_IsRefusedBeforeTheInputIsLookedAt)
{
    const RunResult r = velmora({"convert", "--scale", "-1", path("missing.vlm"), "-o", path("out.glb")});
    EXPECT_EQ(r.status, exit_usage);
    EXPECT_EQ(r.err, "velmora convert: --scale -1: expected a finite number above 0\n");
}

TEST_F(ConvertCommandTest, MissingOrUnreadableInput_ExitsThreeNamingTheFile)
{
    const RunResult r = velmora({"convert", path("missing.vlm"), "-o", path("out.glb")});
    EXPECT_EQ(r.status, exit_unreadable);
    EXPECT_EQ(r.err, "velmora convert: " + path("missing.vlm") + ": no such file\n");
    const RunResult d = velmora({"convert", dir_.string(), "-o", path("out.glb")});
    EXPECT_EQ(d.status, exit_unreadable);
    EXPECT_EQ(d.err, "velmora convert: " + dir_.string() + ": is a directory\n");
}

TEST_F(ConvertCommandTest, UnwritableOutput_ExitsThreeNamingTheFile)
{
    const std::string out = path("no/such/folder/out.glb");
    const RunResult r = velmora({"convert", archive_, "-o", out});
    EXPECT_EQ(r.status, exit_unreadable);
    EXPECT_EQ(count_lines(r.err), 1);
    EXPECT_EQ(r.err.rfind("velmora convert: " + out + ": cannot write: ", 0), 0u);
}

TEST_F(ConvertCommandTest, MissingPlugin_ExitsThree)
{
    setenv("VELMORA_PLUGIN", path("libnothing.so").c_str(), 1);
    const RunResult r = velmora({"convert", archive_, "-o", path("out.glb")});
    EXPECT_EQ(r.status, exit_unreadable);
    EXPECT_EQ(count_lines(r.err), 1);
    EXPECT_EQ(r.err.rfind("velmora convert: " + path("libnothing.so") + ": cannot load the plug-in: ", 0), 0u)
        << r.err;
}

TEST_F(ConvertCommandTest, Help_SaysUnitsSamplingAndPalette)
{
    const RunResult r = velmora({"convert", "--help"});
    EXPECT_EQ(r.status, exit_success);
    EXPECT_NE(r.out.find("scales\nby 0.001"), std::string::npos);
    EXPECT_NE(r.out.find("--scale"), std::string::npos);
    EXPECT_NE(r.out.find("each is sampled"), std::string::npos);
    EXPECT_NE(r.out.find("3 green"), std::string::npos);
}

TEST_F(ConvertCommandTest, Help_ExplainsEveryOptionOfSelectionSolidsSplitAndFormats)
{
    const RunResult r = velmora({"convert", "--help"});
    EXPECT_EQ(r.status, exit_success);
    for (const char* text : {"--select PATTERN", "* also spans /", "--only KIND", "insoles (the FINISH_MODEL meshes)",
                             "--solid", "default for .stl and for --only insoles", "--no-solid", "--up AXIS",
                             "Y up", "--curves", "--split DIR", "manifest.json", "-f FORMAT", "left_out",
                             "The floor plane is z = 0", "float32", "UTF-8"})
        EXPECT_NE(r.out.find(text), std::string::npos) << text;
    const RunResult d = velmora({"dump", "--help"});
    EXPECT_EQ(d.status, exit_success);
    for (const char* text : {"--select PATTERN", "--only KIND", "keep the tree's groups"})
        EXPECT_NE(d.out.find(text), std::string::npos) << text;
}

TEST(ConvertCommand, FormatOf_ReadsTheExtensionInAnyCase)
{
    EXPECT_EQ(ConvertCommand::format_of("a.GLB"), ConvertCommand::Format::glb);
    EXPECT_EQ(ConvertCommand::format_of("dir.obj/a.gltf"), ConvertCommand::Format::gltf);
    EXPECT_EQ(ConvertCommand::format_of("a.ply"), ConvertCommand::Format::ply);
    EXPECT_EQ(ConvertCommand::format_of("a.Stl"), ConvertCommand::Format::stl);
    EXPECT_EQ(ConvertCommand::format_of("a.obj"), ConvertCommand::Format::obj);
    EXPECT_EQ(ConvertCommand::format_of("obj"), ConvertCommand::Format::unknown);
    EXPECT_EQ(ConvertCommand::default_scale(ConvertCommand::Format::glb), 0.001);
    EXPECT_EQ(ConvertCommand::default_scale(ConvertCommand::Format::stl), 1.0);
}

TEST_F(ConvertCommandTest, RealPlugin_FileThatIsNotAnArchiveImportsNothing)
{
    const std::string plugin = std::string(VELMORA_BINARY_DIR) + "/lib/" + PluginLoader::library_file;
    if (!fs::exists(plugin)) GTEST_SKIP() << plugin << " is not built";
    setenv("VELMORA_PLUGIN", plugin.c_str(), 1);
    const std::string text = file("notes.vlm", "not a ZIP archive\n");
    const RunResult r = velmora({"convert", text, "-o", path("out.glb")});
    EXPECT_EQ(r.status, exit_nothing_imported);
    EXPECT_EQ(r.err, "velmora convert: " + text + ": nothing imported: not a ZIP archive the unzip service can open\n");
}

TEST_F(ConvertCommandTest, Select_WritesOnlyTheObjectsOnMatchingPaths)
{
    ASSERT_EQ(velmora({"convert", "--select", "*/VelmScan(A)/SCAN*", archive_, "-o", path("out.obj")}).status,
              exit_success);
    const std::string obj = read(path("out.obj"));
    EXPECT_NE(obj.find("g VelmScan(A)_SCAN_(LEFT)_1\n"), std::string::npos);
    EXPECT_EQ(obj.find("PCIM_2"), std::string::npos);
    EXPECT_EQ(obj.find("LIMIT~1"), std::string::npos);
    // A group's path selects what it holds; the glTF tree keeps only the
    // groups on the way to a kept object.
    ASSERT_EQ(velmora({"convert", "--select", "Data Base/PCS models(B)", archive_, "-o", path("out.glb")}).status,
              exit_success);
    const tinygltf::Model m = load(path("out.glb"));
    std::vector<std::string> names;
    for (const tinygltf::Node& n : m.nodes) names.push_back(n.name);
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (std::vector<std::string>{"Data Base", "LIMIT~1", "PCS models(B)", "design"}));
}

TEST_F(ConvertCommandTest, Only_KeepsTheKindsNamedInEveryFormat)
{
    ASSERT_EQ(velmora({"convert", "--only", "images", archive_, "-o", path("out.ply")}).status, exit_success);
    EXPECT_NE(read(path("out.ply")).find("element vertex 2\n"), std::string::npos);
    EXPECT_NE(read(path("out.ply")).find("element face 0\n"), std::string::npos);
    ASSERT_EQ(velmora({"convert", "--only", "scans", archive_, "-o", path("out.stl")}).status, exit_success);
    EXPECT_EQ(read(path("out.stl")).size(), 80u + 4u + 2u * 50u);
    ASSERT_EQ(velmora({"convert", "--only", "outlines,images", archive_, "-o", path("out.obj")}).status, exit_success);
    const std::string obj = read(path("out.obj"));
    EXPECT_EQ(obj.find("SCAN_(LEFT)_1"), std::string::npos);
    EXPECT_NE(obj.find("LIMIT~1"), std::string::npos);
    EXPECT_NE(obj.find("PCIM_2"), std::string::npos);
    const RunResult bad = velmora({"convert", "--only", "pads", archive_, "-o", path("x.obj")});
    EXPECT_EQ(bad.status, exit_usage);
    EXPECT_EQ(bad.err.rfind("velmora convert: --only pads", 0), 0u) << bad.err;
}

TEST_F(ConvertCommandTest, SelectionThatKeepsNothing_ExitsOneAndWritesNothing)
{
    const RunResult r =
        velmora({"convert", "--select", "*/VelmScan(A)/*", "--only", "outlines", archive_, "-o", path("out.glb")});
    EXPECT_EQ(r.status, exit_nothing_imported);
    EXPECT_EQ(r.err, "velmora convert: " + archive_ + ": nothing selected: no object matches --select and --only\n");
    EXPECT_FALSE(fs::exists(path("out.glb")));
}

TEST_F(ConvertCommandTest, Solid_InsolesAreClosedInStlByDefaultAndOpenWithNoSolid)
{
    const std::string plugin = std::string(VELMORA_BINARY_DIR) + "/lib/" + PluginLoader::library_file;
    if (!fs::exists(plugin)) GTEST_SKIP() << plugin << " is not built";
    setenv("VELMORA_PLUGIN", plugin.c_str(), 1);
    const std::string demo = path("demo.vlm");
    ASSERT_TRUE(vlm::demo::write_archive(demo));
    const std::vector<std::string> insole = {"--select", "*/FINISH_MODEL~1"};
    const auto convert = [&](std::vector<std::string> args, const std::string& out) {
        args.insert(args.begin(), "convert");
        args.insert(args.end(), insole.begin(), insole.end());
        args.insert(args.end(), {demo, "-o", path(out)});
        return velmora(args).status;
    };
    ASSERT_EQ(convert({}, "default.stl"), exit_success);
    const StlEdges solid = stl_edges(read(path("default.stl")));
    EXPECT_GT(solid.facets, 1000u);
    EXPECT_EQ(solid.open, 0u);
    EXPECT_EQ(solid.bad, 0u);
    ASSERT_EQ(convert({"--no-solid"}, "open.stl"), exit_success);
    const StlEdges open = stl_edges(read(path("open.stl")));
    EXPECT_GT(open.open, 0u);
    // --only insoles closes them in every format; --no-solid still wins.
    ASSERT_EQ(convert({"--only", "insoles"}, "only.obj"), exit_success);
    ASSERT_EQ(convert({}, "plain.obj"), exit_success);
    ASSERT_EQ(convert({"--only", "insoles", "--no-solid"}, "open.obj"), exit_success);
    const auto faces = [&](const std::string& f) { return lines_starting(read(path(f)), "f ").size(); };
    EXPECT_EQ(faces("only.obj"), solid.facets);
    EXPECT_EQ(faces("plain.obj"), open.facets);
    EXPECT_EQ(faces("open.obj"), open.facets);
    ASSERT_EQ(convert({"--solid"}, "solid.glb"), exit_success);
    const tinygltf::Model m = load(path("solid.glb"));
    ASSERT_EQ(m.meshes.size(), 1u);
    EXPECT_EQ(m.accessors.at(static_cast<std::size_t>(m.meshes[0].primitives[0].indices)).count, 3 * solid.facets);
    const RunResult both = velmora({"convert", "--solid", "--no-solid", demo, "-o", path("x.stl")});
    EXPECT_EQ(both.status, exit_usage);
}

TEST_F(ConvertCommandTest, Split_WritesOneFilePerObjectAndAManifest)
{
    const RunResult r = velmora({"convert", archive_, "--split", path("parts"), "--format", "obj"});
    ASSERT_EQ(r.status, exit_success) << r.err;
    EXPECT_EQ(r.err, "");
    for (const char* f : {"Data_Base--VelmScan(A)--SCAN_(LEFT)_1.obj", "Data_Base--VelmScan(A)--PCIM_2.obj",
                          "Data_Base--PCS_models(B)--LIMIT~1.obj", "manifest.json"})
        EXPECT_TRUE(fs::exists(path("parts/") + f)) << f;
    const std::string scan = read(path("parts/Data_Base--VelmScan(A)--SCAN_(LEFT)_1.obj"));
    EXPECT_NE(scan.find("g VelmScan(A)_SCAN_(LEFT)_1\n"), std::string::npos);
    EXPECT_EQ(scan.find("LIMIT"), std::string::npos);
    const std::string manifest = read(path("parts/manifest.json"));
    EXPECT_NE(manifest.find("\"path\": \"Data Base/VelmScan(A)/SCAN_(LEFT)_1\""), std::string::npos);
    EXPECT_NE(manifest.find("\"kind\": \"outline\""), std::string::npos);
}

TEST_F(ConvertCommandTest, Split_InStlByDefaultLeavesOutWhatStlCannotHold)
{
    ASSERT_EQ(velmora({"convert", archive_, "--split", path("parts")}).status, exit_success);
    EXPECT_TRUE(fs::exists(path("parts/Data_Base--VelmScan(A)--SCAN_(LEFT)_1.stl")));
    EXPECT_FALSE(fs::exists(path("parts/Data_Base--PCS_models(B)--LIMIT~1.stl")));
    EXPECT_NE(read(path("parts/manifest.json")).find("\"left_out\": [\n    \"Data Base/VelmScan(A)/PCIM_2\",\n"),
              std::string::npos);
    const RunResult none = velmora({"convert", archive_, "--only", "outlines", "--split", path("none")});
    EXPECT_EQ(none.status, exit_nothing_imported);
    EXPECT_EQ(none.err, "velmora convert: " + path("none") + ": nothing written: stl holds none of the objects\n");
}

TEST_F(ConvertCommandTest, OutputOrSplit_ExactlyOneIsNeeded)
{
    const RunResult neither = velmora({"convert", archive_});
    EXPECT_EQ(neither.status, exit_usage);
    EXPECT_EQ(neither.err, "velmora convert: " + archive_ + ": give -o OUT, --split DIR, or -d OUTDIR -f FORMAT\n");
    EXPECT_EQ(velmora({"convert", archive_, "-o", path("a.obj"), "--split", path("d")}).status, exit_usage);
    EXPECT_EQ(velmora({"convert", archive_, "--split", path("d"), "--format", "dxf"}).status, exit_usage);
}

TEST_F(ConvertCommandTest, Latin1Names_AreWrittenAsUtf8AndSelectedByUtf8Patterns)
{
    const std::string plugin = std::string(VELMORA_BINARY_DIR) + "/lib/" + PluginLoader::library_file;
    if (!fs::exists(plugin)) GTEST_SKIP() << plugin << " is not built";
    setenv("VELMORA_PLUGIN", plugin.c_str(), 1);
    vlm::height_grid g;
    g.nx = 4;
    g.ny = 3;
    g.codes.assign(12, 10);
    vlm::archive a;
    a.add("VLM00005.dat", vlm::chunk_chain(vlm::grid_entry(g), 300));
    a.add("VLM00008.dat", vlm::chunk_chain(vlm::small_design(), 1000));
    a.add("00000.vlk", vlm::catalogue()
                           .header("Velmora")
                           .separator()
                           .level1("M\xFCller", "J\xFCrgen")
                           .level2("2021-03-01", "Erstpr\xFC" "fung")
                           .level3(1, 1, 0, 101, "20210301", "scan", "", 5)
                           .level3(3, 4, 1, 1, "20210304", "model", "", 8)
                           .text());
    const std::string archive = path("latin1.vlm");
    ASSERT_TRUE(a.write(archive));
    const RunResult r = velmora({"convert", "--select", "*/M\xC3\xBCller,J\xC3\xBCrgen/*/VelmScan(*", archive, "-o",
                                 path("out.obj")});
    ASSERT_EQ(r.status, exit_success) << r.err;
    const std::string obj = read(path("out.obj"));
    EXPECT_NE(obj.find("# in Data_Base/M\xC3\xBCller,J\xC3\xBCrgen/Erstpr\xC3\xBC" "fung"), std::string::npos) << obj.substr(0, 400);
    EXPECT_EQ(obj.find("FINISH_MODEL"), std::string::npos);
    EXPECT_EQ(obj.find('\xFC'), std::string::npos);
    // The insole of the same archive, closed, split into a file named in UTF-8.
    ASSERT_EQ(velmora({"convert", "--only", "insoles", archive, "--split", path("parts")}).status, exit_success);
    std::size_t stl = 0;
    for (const auto& e : fs::directory_iterator(path("parts"))) {
        if (e.path().extension() != ".stl") continue;
        ++stl;
        EXPECT_NE(e.path().filename().string().find("M\xC3\xBCller,J\xC3\xBCrgen--Erstpr\xC3\xBC" "fung"), std::string::npos);
        const StlEdges edges = stl_edges(read(e.path().string()));
        EXPECT_GT(edges.facets, 0u);
        EXPECT_EQ(edges.open, 0u);
        EXPECT_EQ(edges.bad, 0u);
    }
    EXPECT_EQ(stl, 1u);
}

TEST_F(ConvertCommandTest, Batch_WritesEachArchiveIntoTheFolderByItsName)
{
    const std::string b = file("other.vlm", "PK another");
    const RunResult r = velmora({"convert", archive_, b, "-d", path("out"), "-f", "obj", "-j", "2"});
    ASSERT_EQ(r.status, exit_success) << r.err;
    EXPECT_NE(read(path("out/design.obj")).find("g VelmScan(A)_SCAN_(LEFT)_1\n"), std::string::npos);
    EXPECT_NE(read(path("out/other.obj")).find("g VelmScan(A)_SCAN_(LEFT)_1\n"), std::string::npos);
    EXPECT_EQ(count_lines(r.err), 1);
    EXPECT_EQ(r.err.rfind("velmora convert: 2 archives: 2 written, 0 failed, ", 0), 0u) << r.err;
}

TEST_F(ConvertCommandTest, Batch_StatusIsTheHighestAndEachFailureIsNamed)
{
    const std::string empty = file("empty.vlm", "EMPTY");
    const RunResult r =
        velmora({"convert", archive_, empty, path("missing.vlm"), "-d", path("out"), "-f", "glb", "-j", "3"});
    EXPECT_EQ(r.status, exit_unreadable);
    EXPECT_NE(r.err.find("velmora convert: " + empty + ": nothing imported: "), std::string::npos) << r.err;
    EXPECT_NE(r.err.find("velmora convert: " + path("missing.vlm") + ": no such file\n"), std::string::npos);
    EXPECT_NE(r.err.find("velmora convert: 3 archives: 1 written, 2 failed, "), std::string::npos);
    EXPECT_TRUE(fs::exists(path("out/design.glb")));
    EXPECT_FALSE(fs::exists(path("out/empty.glb")));
    const RunResult only_empty = velmora({"convert", empty, "-d", path("out"), "-f", "glb"});
    EXPECT_EQ(only_empty.status, exit_nothing_imported);
}

TEST_F(ConvertCommandTest, Batch_NeedsAFormatAndNoOutputFile)
{
    const RunResult no_format = velmora({"convert", archive_, "-d", path("out")});
    EXPECT_EQ(no_format.status, exit_usage);
    EXPECT_EQ(no_format.err, "velmora convert: -d " + path("out") + ": needs -f FORMAT\n");
    const RunResult both = velmora({"convert", archive_, "-d", path("out"), "-f", "stl", "-o", path("a.stl")});
    EXPECT_EQ(both.status, exit_usage);
    EXPECT_EQ(count_lines(both.err), 1);
    const RunResult several = velmora({"convert", archive_, archive_, "-o", path("a.stl")});
    EXPECT_EQ(several.status, exit_usage);
    EXPECT_EQ(several.err, "velmora convert: -o " + path("a.stl") + ": several archives need -d OUTDIR -f FORMAT\n");
    EXPECT_FALSE(fs::exists(path("out")));
}

TEST_F(ConvertCommandTest, Batch_TwoArchivesOfOneNameAreRefusedBeforeAnyIsRead)
{
    fs::create_directories(dir_ / "b");
    const std::string twin = file("b/design.vlm", "PK");
    const RunResult r = velmora({"convert", archive_, twin, "-d", path("out"), "-f", "stl"});
    EXPECT_EQ(r.status, exit_usage);
    EXPECT_EQ(r.err, "velmora convert: " + (fs::path(path("out")) / "design.stl").string() + ": both " + archive_ +
                         " and " + twin + " would be written there\n");
    EXPECT_FALSE(fs::exists(path("out")));
}

TEST_F(ConvertCommandTest, Batch_MissingPluginIsReportedOnceBeforeAnyWorker)
{
    setenv("VELMORA_PLUGIN", path("libnothing.so").c_str(), 1);
    const RunResult r = velmora({"convert", archive_, archive_, "-d", path("out"), "-f", "stl"});
    EXPECT_EQ(r.status, exit_usage);  // the same name twice is found first
    const std::string b = file("b.vlm", "PK");
    const RunResult m = velmora({"convert", archive_, b, "-d", path("out"), "-f", "stl"});
    EXPECT_EQ(m.status, exit_unreadable);
    EXPECT_EQ(count_lines(m.err), 1);
    EXPECT_NE(m.err.find(": cannot load the plug-in: "), std::string::npos) << m.err;
}

TEST_F(ConvertCommandTest, BadJobsOrFormat_IsWrongUsage)
{
    const RunResult j = velmora({"convert", archive_, "-d", path("out"), "-f", "stl", "-j", "0"});
    EXPECT_EQ(j.status, exit_usage);
    EXPECT_EQ(j.err, "velmora convert: --jobs 0: expected a whole number from 1 to " +
                         std::to_string(BatchConvert::max_jobs) + "\n");
    const RunResult f = velmora({"convert", archive_, "-o", path("out.stl"), "-f", "fbx"});
    EXPECT_EQ(f.status, exit_usage);
    EXPECT_EQ(f.err, "velmora convert: --format fbx: expected glb, gltf, obj, ply, stl, 3mf, step, igs or dxf\n");
}

TEST_F(ConvertCommandTest, FormatOption_OverridesTheExtension)
{
    ASSERT_EQ(velmora({"convert", archive_, "-o", path("out.bin"), "-f", "STL"}).status, exit_success);
    EXPECT_EQ(read(path("out.bin")).size(), 80u + 4u + 2u * 50u);
}

TEST_F(ConvertCommandTest, StandardOutput_GetsTheFileAndNothingElse)
{
    const RunResult r = velmora({"convert", archive_, "-o", "-", "-f", "stl"});
    ASSERT_EQ(r.status, exit_success) << r.err;
    EXPECT_EQ(r.err, "");
    EXPECT_EQ(r.out.size(), 80u + 4u + 2u * 50u);
    EXPECT_EQ(r.out.rfind("velmora convert: design", 0), 0u);
    const RunResult no_format = velmora({"convert", archive_, "-o", "-"});
    EXPECT_EQ(no_format.status, exit_usage);
    EXPECT_EQ(no_format.err, "velmora convert: -: standard output needs -f FORMAT\n");
}

TEST_F(ConvertCommandTest, StandardInput_IsReadInAPipeline)
{
    const vlm::command_result r = vlm::run_command(
        "/bin/sh", {"-c", std::string("cat \"$0\" | \"$1\" convert - -o - -f obj | grep -c '^g '"), archive_,
                    std::string(VELMORA_BINARY_DIR) + "/bin/velmora"},
        std::string("VELMORA_PLUGIN=") + CONVERT_TEST_PLUGIN);
    EXPECT_EQ(r.status, 0) << r.err;
    // The grid, the cloud and the polyline.
    EXPECT_EQ(r.out, "3\n");
    EXPECT_EQ(r.err, "");
}

TEST_F(ConvertCommandTest, StandardInput_ThatImportsNothingSaysSo)
{
    const std::string empty = file("empty.vlm", "EMPTY");
    const vlm::command_result r =
        vlm::run_command("/bin/sh", {"-c", "\"$1\" convert - -o \"$2\" < \"$0\"", empty,
                                     std::string(VELMORA_BINARY_DIR) + "/bin/velmora", path("out.glb")},
                         std::string("VELMORA_PLUGIN=") + CONVERT_TEST_PLUGIN);
    EXPECT_EQ(r.status, exit_nothing_imported);
    EXPECT_EQ(r.err.rfind("velmora convert: -: nothing imported: ", 0), 0u) << r.err;
    EXPECT_FALSE(fs::exists(path("out.glb")));
}

TEST_F(ConvertCommandTest, OutputOntoTheInput_IsRefusedByInodeNotName)
{
    fs::create_hard_link(archive_, path("same.stl"));
    const std::string before = read(archive_);
    const RunResult r = velmora({"convert", archive_, "-o", path("same.stl")});
    EXPECT_EQ(r.status, exit_usage);
    EXPECT_EQ(r.err, "velmora convert: " + path("same.stl") + ": is the input archive\n");
    EXPECT_EQ(read(archive_), before);
    const RunResult by_format = velmora({"convert", archive_, "-o", archive_, "-f", "stl"});
    EXPECT_EQ(by_format.status, exit_usage);
    EXPECT_EQ(read(archive_), before);
}

TEST_F(ConvertCommandTest, EmptyResult_WritesNothingAndExitsOne)
{
    // Without the scan only a polyline arrives: no triangle for STL or 3MF.
    for (const char* name : {"out.stl", "out.3mf"}) {
        const RunResult r = velmora({"convert", "--option", "vmiOptProcessScanData=0", archive_, "-o", path(name)});
        EXPECT_EQ(r.status, exit_nothing_imported) << name;
        EXPECT_EQ(r.err, "velmora convert: " + archive_ + ": nothing to write: no mesh with a triangle\n");
        EXPECT_FALSE(fs::exists(path(name)));
    }
    // OBJ keeps the polyline.
    EXPECT_EQ(velmora({"convert", "--option", "vmiOptProcessScanData=0", archive_, "-o", path("out.obj")}).status,
              exit_success);
}

TEST_F(ConvertCommandTest, FailedWrite_LeavesNoFileAndNoTemporary)
{
    // A result beyond the glb limit cannot be made here; a folder in the
    // way of the target is refused before anything is written instead.
    fs::create_directories(dir_ / "out.glb");
    const RunResult r = velmora({"convert", archive_, "-o", path("out.glb")});
    EXPECT_EQ(r.status, exit_usage);
    EXPECT_EQ(r.err, "velmora convert: " + path("out.glb") + ": is a directory\n");
    EXPECT_EQ(std::distance(fs::directory_iterator(dir_), fs::directory_iterator()), 2);
}

TEST_F(ConvertCommandTest, ThreeMf_IsAPackageWithTheModelPart)
{
    ASSERT_EQ(velmora({"convert", archive_, "-o", path("out.3mf")}).status, exit_success);
    const std::string bytes = read(path("out.3mf"));
    EXPECT_EQ(bytes.rfind("PK\x03\x04", 0), 0u);
    EXPECT_NE(bytes.find("3D/3dmodel.model"), std::string::npos);
    EXPECT_EQ(ConvertCommand::format_of("a.3MF"), ConvertCommand::Format::threemf);
    EXPECT_EQ(ConvertCommand::format_named("3mf"), ConvertCommand::Format::threemf);
    EXPECT_EQ(ConvertCommand::format_named(".stl"), ConvertCommand::Format::unknown);
    EXPECT_EQ(ConvertCommand::extension_of(ConvertCommand::Format::threemf), "3mf");
}
