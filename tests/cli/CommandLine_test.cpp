#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "cli/CommandLine.h"
#include "cli/ExitCode.h"
#include "tests/cli/commandLineRun.h"
#include "tests/support/vlmWriter.h"

namespace {

using cli_test::RunResult;
using cli_test::velmora;

int count_lines(const std::string& s)
{
    int n = 0;
    for (char c : s) n += c == '\n';
    return n;
}

} // namespace

TEST(CommandLine, VersionPrintsNameAndVersion)
{
    const RunResult r = velmora({"--version"});
    EXPECT_EQ(r.status, exit_success);
    EXPECT_EQ(r.out.rfind("velmora ", 0), 0u);
}

TEST(CommandLine, HelpListsInspectConvertAndDump)
{
    const RunResult r = velmora({"--help"});
    EXPECT_EQ(r.status, exit_success);
    EXPECT_NE(r.out.find("inspect"), std::string::npos);
    EXPECT_NE(r.out.find("convert"), std::string::npos);
    EXPECT_NE(r.out.find("dump"), std::string::npos);
}

TEST(CommandLine, InspectHelpShowsTheJsonFlag)
{
    const RunResult r = velmora({"inspect", "--help"});
    EXPECT_EQ(r.status, exit_success);
    EXPECT_NE(r.out.find("--json"), std::string::npos);
}

TEST(CommandLine, NoCommandIsWrongUsage)
{
    const RunResult r = velmora({});
    EXPECT_EQ(r.status, exit_usage);
    EXPECT_EQ(count_lines(r.err), 1);
}

TEST(CommandLine, UnknownCommandIsWrongUsageNamingIt)
{
    const RunResult r = velmora({"frobnicate", "x.vlm"});
    EXPECT_EQ(r.status, exit_usage);
    EXPECT_NE(r.err.find("frobnicate"), std::string::npos);
    EXPECT_EQ(count_lines(r.err), 1);
}

TEST(CommandLine, DumpOfAMissingFileIsUnreadableNamingIt)
{
    const RunResult r = velmora({"dump", "no-such-archive.vlm"});
    EXPECT_EQ(r.status, exit_unreadable);
    EXPECT_NE(r.err.find("no-such-archive.vlm"), std::string::npos);
    EXPECT_EQ(count_lines(r.err), 1);
    EXPECT_TRUE(r.out.empty());
}

TEST(CommandLine, InspectWithoutFileIsWrongUsage)
{
    const RunResult r = velmora({"inspect"});
    EXPECT_EQ(r.status, exit_usage);
    EXPECT_EQ(count_lines(r.err), 1);
}

TEST(CommandLine, InspectWithTwoFilesIsWrongUsage)
{
    const RunResult r = velmora({"inspect", "a.vlm", "b.vlm"});
    EXPECT_EQ(r.status, exit_usage);
}

TEST(CommandLine, InspectUnknownOptionIsWrongUsage)
{
    const RunResult r = velmora({"inspect", "--yaml", "a.vlm"});
    EXPECT_EQ(r.status, exit_usage);
    EXPECT_NE(r.err.find("--yaml"), std::string::npos);
}

TEST(CommandLine, UsageMessageOfACommandNamesTheCommand)
{
    const RunResult r = velmora({"inspect", "--yaml", "a.vlm"});
    EXPECT_EQ(r.err.rfind("velmora inspect: ", 0), 0u) << r.err;
    EXPECT_EQ(count_lines(r.err), 1);
}

TEST(CommandLine, UsageMessageWithoutACommandSpeaksAsVelmora)
{
    const RunResult r = velmora({"--yaml"});
    EXPECT_EQ(r.status, exit_usage);
    EXPECT_EQ(r.err.rfind("velmora: ", 0), 0u) << r.err;
}

TEST(CommandLine, InspectMissingFileIsUnreadableNamingTheFile)
{
    const RunResult r = velmora({"inspect", "/nonexistent/dir/x.vlm"});
    EXPECT_EQ(r.status, exit_unreadable);
    EXPECT_EQ(r.err, "velmora inspect: /nonexistent/dir/x.vlm: no such file\n");
    EXPECT_TRUE(r.out.empty());
}

TEST(CommandLine, InspectDirectoryIsUnreadable)
{
    const RunResult r = velmora({"inspect", "/tmp"});
    EXPECT_EQ(r.status, exit_unreadable);
    EXPECT_EQ(r.err, "velmora inspect: /tmp: is a directory\n");
}

TEST(CommandLine, InspectDeviceIsUnreadable)
{
    const RunResult r = velmora({"inspect", "/dev/null"});
    EXPECT_EQ(r.status, exit_unreadable);
    EXPECT_EQ(r.err, "velmora inspect: /dev/null: not a regular file\n");
}

TEST(CommandLine, InspectFileThatIsNotAZipIsUnreadable)
{
    const std::string path = vlm::temp_path("cli_notzip");
    ASSERT_TRUE(vlm::write_file(path, "this is text, not an archive\n"));
    const RunResult r = velmora({"inspect", path});
    std::remove(path.c_str());
    EXPECT_EQ(r.status, exit_unreadable);
    EXPECT_EQ(r.err, "velmora inspect: " + path + ": not a ZIP archive\n");
}

TEST(CommandLine, InspectArchiveWithoutCatalogueSucceeds)
{
    const std::string path = vlm::temp_path("cli_nocat");
    ASSERT_TRUE(vlm::archive().add("VLM00001.dat", vlm::chunk("PCSC")).write(path));
    const RunResult r = velmora({"inspect", "--json", path});
    std::remove(path.c_str());
    EXPECT_EQ(r.status, exit_success);
    EXPECT_TRUE(r.err.empty());
    EXPECT_NE(r.out.find("\"catalogues\": []"), std::string::npos);
    EXPECT_NE(r.out.find("\"magic\": \"PCSC\""), std::string::npos);
}

TEST(CommandLine, InspectTableNamesEntriesAndRecords)
{
    const std::string path = vlm::temp_path("cli_table");
    vlm::archive a;
    a.add("VLM00012.dat", vlm::chunk("PCSC1234"));
    a.add("00000.vlk", vlm::catalogue().separator().level1("Alpha", "Beta").level3(1, 4, 0, 101, "d", "n", "c", 12).text());
    ASSERT_TRUE(a.write(path));
    const RunResult r = velmora({"inspect", path});
    std::remove(path.c_str());
    EXPECT_EQ(r.status, exit_success);
    EXPECT_NE(r.out.find("VLM00012.dat"), std::string::npos);
    EXPECT_NE(r.out.find("name0 \"Alpha\""), std::string::npos);
    EXPECT_NE(r.out.find("data_indx 12, data PCSC"), std::string::npos);
}
