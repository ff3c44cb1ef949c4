// `velmora report` in this process with the real plug-in, on an archive the
// fixture writer makes: the files of the folder, with and without the viewer.
#include "cli/commands/ReportCommand.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "cli/ExitCode.h"
#include "tests/cli/commandLineRun.h"
#include "tests/support/vlmWriter.h"

namespace {

namespace fs = std::filesystem;

std::string read(const fs::path& p)
{
    std::ifstream in(p, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

class ReportCommandTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        dir_ = fs::path(VELMORA_BINARY_DIR) / "report-command-test" /
               ::testing::UnitTest::GetInstance()->current_test_info()->name();
        fs::remove_all(dir_);
        fs::create_directories(dir_);
        setenv("VELMORA_PLUGIN", (std::string(VELMORA_BINARY_DIR) + "/lib/libvelmora2rnx.so").c_str(), 1);
        vlm::height_grid g;
        g.nx = 4;
        g.ny = 3;
        g.codes.assign(12, 10);
        vlm::archive a;
        a.add("VLM00005.dat", vlm::chunk_chain(vlm::grid_entry(g), 300));
        a.add("00000.vlk", vlm::catalogue()
                               .header("Velmora")
                               .separator()
                               .level1("Miller", "Anna")
                               .level2("2021-03-01", "Visit")
                               .level3(1, 1, 0, 101, "20210301", "scan", "", 5)
                               .text());
        archive_ = (dir_ / "scan one.vlm").string();
        EXPECT_TRUE(a.write(archive_));
    }
    void TearDown() override { unsetenv(ReportCommand::viewer_variable); }

    fs::path dir_;
    std::string archive_;
};

} // namespace

TEST_F(ReportCommandTest, Run_WritesPageModelScriptPicturesAndViewer)
{
    const fs::path viewer = dir_ / "viewer.js";
    std::ofstream(viewer) << "/* a viewer */";
    setenv(ReportCommand::viewer_variable, viewer.c_str(), 1);
    const auto r = cli_test::velmora({"report", archive_, "-o", (dir_ / "out").string()});
    ASSERT_EQ(r.status, exit_success) << r.err;
    EXPECT_EQ(r.err, "");
    const fs::path out = dir_ / "out";
    EXPECT_EQ(read(out / "model-viewer-umd.min.js"), "/* a viewer */");
    const std::string glb = read(out / "scan_one.glb");
    ASSERT_GE(glb.size(), 12u);
    EXPECT_EQ(glb.substr(0, 4), "glTF");
    EXPECT_EQ(read(out / "scan_one.glb.js").rfind("window.velmoraModel = \"data:model/gltf-binary;base64,Z2xURg", 0), 0u);
    EXPECT_TRUE(fs::exists(out / "overview.png"));
    const std::string page = read(out / "index.html");
    EXPECT_NE(page.find("<model-viewer"), std::string::npos);
    EXPECT_NE(page.find("scan one.vlm"), std::string::npos);
    EXPECT_NE(page.find(".png\""), std::string::npos);
}

TEST_F(ReportCommandTest, Run_WithoutTheViewerSaysSoAndLeavesThe3dViewOut)
{
    setenv(ReportCommand::viewer_variable, (dir_ / "none.js").c_str(), 1);
    const auto r = cli_test::velmora({"report", archive_, "-o", (dir_ / "out").string()});
    ASSERT_EQ(r.status, exit_success) << r.err;
    EXPECT_EQ(r.err, "velmora report: " + (dir_ / "none.js").string() + ": no such file: the report has no 3D view\n");
    const std::string page = read(dir_ / "out" / "index.html");
    EXPECT_EQ(page.find("<model-viewer"), std::string::npos);
    EXPECT_NE(page.find("No 3D view"), std::string::npos);
}

TEST_F(ReportCommandTest, Help_SaysWhereTheViewerComesFrom)
{
    const auto r = cli_test::velmora({"report", "--help"});
    EXPECT_EQ(r.status, exit_success);
    EXPECT_NE(r.out.find("@google/model-viewer"), std::string::npos);
    EXPECT_NE(r.out.find(ReportCommand::viewer_variable), std::string::npos);
}
