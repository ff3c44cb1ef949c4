// `velmora convert` through the command line, with a stand-in plug-in loaded
// by dlopen as the real one is (VELMORA_PLUGIN names it): exit statuses, the
// one-line diagnostics, options reaching the plug-in, and each format written.
#include "cli/commands/ConvertCommand.h"

#include <gtest/gtest.h>
#include <tiny_gltf.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "cli/ExitCode.h"
#include "cli/PluginLoader.h"
#include "cli/commands/BatchConvert.h"
#include "tests/cli/commandLineRun.h"
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

    static int count_lines(const std::string& s) { return static_cast<int>(std::count(s.begin(), s.end(), '\n')); }

    fs::path dir_;
    std::string archive_;
};

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
    EXPECT_NE(read(path("out.ply")).find("element vertex 9\n"), std::string::npos);
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
    EXPECT_EQ(f.err, "velmora convert: --format fbx: expected glb, gltf, obj, ply, stl or 3mf\n");
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
