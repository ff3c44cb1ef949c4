// A result appears whole or not at all, its temporary never outlives it, and
// no name leads a result onto the archive it was made from.
#include "cli/OutputFile.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>

namespace {

namespace fs = std::filesystem;

class OutputFileTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        dir_ = fs::path(VELMORA_BINARY_DIR) / "output-file-test" /
               ::testing::UnitTest::GetInstance()->current_test_info()->name();
        fs::remove_all(dir_);
        fs::create_directories(dir_);
    }
    std::string path(const std::string& name) const { return (dir_ / name).string(); }
    std::string file(const std::string& name, const std::string& content) const
    {
        std::ofstream(path(name), std::ios::binary) << content;
        return path(name);
    }
    static std::string read(const std::string& p)
    {
        std::ifstream in(p, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    }
    std::size_t entries() const
    {
        return static_cast<std::size_t>(std::distance(fs::directory_iterator(dir_), fs::directory_iterator()));
    }
    fs::path dir_;
};

} // namespace

TEST_F(OutputFileTest, Commit_RenamesTheTemporaryOntoTheTarget)
{
    OutputFile f(path("out.stl"));
    ASSERT_TRUE(f.ok()) << f.error();
    EXPECT_EQ(fs::path(f.temporary()).parent_path(), dir_);
    EXPECT_EQ(fs::path(f.temporary()).filename().string().rfind(".out.stl.", 0), 0u);
    f.stream() << "solid bytes";
    EXPECT_FALSE(fs::exists(path("out.stl")));
    EXPECT_EQ(f.commit(), "");
    EXPECT_EQ(read(path("out.stl")), "solid bytes");
    EXPECT_EQ(entries(), 1u);
}

TEST_F(OutputFileTest, NotCommitted_LeavesNeitherResultNorTemporary)
{
    {
        OutputFile f(path("out.glb"));
        ASSERT_TRUE(f.ok());
        f.stream() << "half";
    }
    EXPECT_EQ(entries(), 0u);
}

TEST_F(OutputFileTest, EarlierResult_StaysUntilTheNewOneIsComplete)
{
    file("out.obj", "earlier");
    {
        OutputFile f(path("out.obj"));
        f.stream() << "later, but never finished";
        EXPECT_EQ(read(path("out.obj")), "earlier");
    }
    EXPECT_EQ(read(path("out.obj")), "earlier");
    OutputFile g(path("out.obj"));
    g.stream() << "later";
    ASSERT_EQ(g.commit(), "");
    EXPECT_EQ(read(path("out.obj")), "later");
}

TEST_F(OutputFileTest, Result_IsReadableAsTheUmaskAllows)
{
    const mode_t old = umask(022);
    OutputFile f(path("out.ply"));
    ASSERT_EQ(f.commit(), "");
    umask(old);
    struct stat st {};
    ASSERT_EQ(stat(path("out.ply").c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 0777, 0644u);
}

TEST_F(OutputFileTest, MissingFolder_IsAnErrorNamingWhy)
{
    OutputFile f(path("no/such/out.stl"));
    EXPECT_FALSE(f.ok());
    EXPECT_EQ(f.error(), "No such file or directory");
    EXPECT_NE(f.commit(), "");
}

TEST_F(OutputFileTest, Signal_RemovesTheTemporaryBeforeTheProcessEnds)
{
    const pid_t pid = fork();
    ASSERT_GE(pid, 0);
    if (pid == 0) {
        OutputFile f(path("out.3mf"));
        f.stream() << "interrupted" << std::flush;
        std::raise(SIGTERM);
        _exit(0);
    }
    int st = 0;
    ASSERT_EQ(waitpid(pid, &st, 0), pid);
    ASSERT_TRUE(WIFSIGNALED(st));
    EXPECT_EQ(WTERMSIG(st), SIGTERM);
    EXPECT_EQ(entries(), 0u);
}

TEST_F(OutputFileTest, Refusal_NamesTheInputByAnyName)
{
    const std::string in = file("design.vlm", "PK");
    EXPECT_EQ(OutputFile::refusal(in, in), "is the input archive");
    EXPECT_EQ(OutputFile::refusal(in, (dir_ / "." / "design.vlm").string()), "is the input archive");
    fs::create_hard_link(in, path("hard.stl"));
    EXPECT_EQ(OutputFile::refusal(in, path("hard.stl")), "is the input archive");
    fs::create_symlink(in, path("soft.stl"));
    EXPECT_EQ(OutputFile::refusal(in, path("soft.stl")), "is the input archive");
}

TEST_F(OutputFileTest, Refusal_NoneForAnotherFileOrANewName)
{
    const std::string in = file("design.vlm", "PK");
    const std::string copy = file("copy.stl", "PK");
    EXPECT_EQ(OutputFile::refusal(in, copy), "");
    EXPECT_EQ(OutputFile::refusal(in, path("new.stl")), "");
    EXPECT_EQ(OutputFile::refusal(path("missing.vlm"), copy), "");
}

TEST_F(OutputFileTest, Refusal_DirectoryIsNoResult)
{
    const std::string in = file("design.vlm", "PK");
    EXPECT_EQ(OutputFile::refusal(in, dir_.string()), "is a directory");
}
