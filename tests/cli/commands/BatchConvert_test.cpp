// Batches: each archive in a process of its own, N at a time, every failure
// named, one summary line, the highest status; the plan of output names.
#include "cli/commands/BatchConvert.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <set>
#include <thread>

#include "cli/ExitCode.h"

namespace {

namespace fs = std::filesystem;

class BatchConvertTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        dir_ = fs::path(VELMORA_BINARY_DIR) / "batch-convert-test" /
               ::testing::UnitTest::GetInstance()->current_test_info()->name();
        fs::remove_all(dir_);
        fs::create_directories(dir_);
    }
    std::string path(const std::string& name) const { return (dir_ / name).string(); }
    std::vector<BatchConvert::Job> jobs(int n) const
    {
        std::vector<BatchConvert::Job> j;
        for (int k = 0; k < n; ++k) j.push_back({"in" + std::to_string(k) + ".vlm", path(std::to_string(k) + ".out")});
        return j;
    }
    // Waits up to five seconds for a file to appear.
    static bool appears(const std::string& p)
    {
        for (int k = 0; k < 500; ++k) {
            if (fs::exists(p)) return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return false;
    }
    fs::path dir_;
};

int lines(const std::string& s)
{
    return static_cast<int>(std::count(s.begin(), s.end(), '\n'));
}

} // namespace

TEST_F(BatchConvertTest, EveryJob_RunsInAProcessOfItsOwn)
{
    const pid_t self = getpid();
    std::ostringstream err;
    const int status = BatchConvert::run(
        jobs(3), 2,
        [&](const std::string&, const std::string& out, std::ostream&) {
            std::ofstream(out) << getpid();
            return getpid() == self ? exit_unreadable : exit_success;
        },
        err, false);
    EXPECT_EQ(status, exit_success) << err.str();
    std::set<std::string> pids;
    for (int k = 0; k < 3; ++k) {
        std::ifstream in(path(std::to_string(k) + ".out"));
        std::string pid;
        in >> pid;
        pids.insert(pid);
    }
    EXPECT_EQ(pids.size(), 3u);
}

TEST_F(BatchConvertTest, TwoWorkers_RunTwoJobsAtOnce)
{
    // Each of the first two waits for the other to have started: one at a
    // time, neither would see the other.
    std::ostringstream err;
    const int status = BatchConvert::run(
        jobs(2), 2,
        [&](const std::string& in, const std::string&, std::ostream&) {
            const std::string me = path("started-" + in), other = path(in == "in0.vlm" ? "started-in1.vlm" : "started-in0.vlm");
            std::ofstream(me) << "";
            return appears(other) ? exit_success : exit_unreadable;
        },
        err, false);
    EXPECT_EQ(status, exit_success) << err.str();
}

TEST_F(BatchConvertTest, OneWorker_NeverRunsTwoJobsAtOnce)
{
    std::ostringstream err;
    const int status = BatchConvert::run(
        jobs(4), 1,
        [&](const std::string&, const std::string&, std::ostream& e) {
            const int fd = open(path("running").c_str(), O_CREAT | O_EXCL | O_WRONLY, 0600);
            if (fd < 0) {
                e << "two at once\n";
                return exit_unreadable;
            }
            close(fd);
            std::this_thread::sleep_for(std::chrono::milliseconds(30));
            fs::remove(path("running"));
            return exit_success;
        },
        err, false);
    EXPECT_EQ(status, exit_success) << err.str();
}

TEST_F(BatchConvertTest, Status_IsTheHighestOfTheJobsAndEachFailureIsNamed)
{
    std::ostringstream err;
    const int status = BatchConvert::run(
        jobs(4), 2,
        [&](const std::string& in, const std::string&, std::ostream& e) {
            if (in == "in1.vlm") {
                e << "velmora convert: in1.vlm: nothing imported: no catalogue\n";
                return exit_nothing_imported;
            }
            if (in == "in2.vlm") {
                e << "velmora convert: in2.vlm: no such file\n";
                return exit_unreadable;
            }
            return exit_success;
        },
        err, false);
    EXPECT_EQ(status, exit_unreadable);
    const std::string e = err.str();
    EXPECT_NE(e.find("velmora convert: in1.vlm: nothing imported: no catalogue\n"), std::string::npos);
    EXPECT_NE(e.find("velmora convert: in2.vlm: no such file\n"), std::string::npos);
    EXPECT_EQ(lines(e), 3);
    EXPECT_NE(e.find("velmora convert: 4 archives: 2 written, 2 failed, "), std::string::npos) << e;
}

TEST_F(BatchConvertTest, AllWritten_PrintsTheSummaryLineAlone)
{
    std::ostringstream err;
    const int status = BatchConvert::run(
        jobs(1), 4, [](const std::string&, const std::string&, std::ostream&) { return exit_success; }, err, false);
    EXPECT_EQ(status, exit_success);
    EXPECT_EQ(lines(err.str()), 1);
    EXPECT_EQ(err.str().rfind("velmora convert: 1 archive: 1 written, 0 failed, ", 0), 0u) << err.str();
    // No progress line off a terminal: no carriage return.
    EXPECT_EQ(err.str().find('\r'), std::string::npos);
}

TEST_F(BatchConvertTest, WorkerKilledBySignal_FailsItsFileAlone)
{
    std::ostringstream err;
    const int status = BatchConvert::run(
        jobs(2), 2,
        [](const std::string& in, const std::string&, std::ostream&) {
            if (in == "in0.vlm") std::raise(SIGKILL);
            return exit_success;
        },
        err, false);
    EXPECT_EQ(status, exit_unreadable);
    EXPECT_NE(err.str().find("velmora convert: in0.vlm: the conversion ended by signal 9 ("), std::string::npos)
        << err.str();
    EXPECT_NE(err.str().find("2 archives: 1 written, 1 failed"), std::string::npos);
}

TEST_F(BatchConvertTest, Progress_RedrawsOneLineAndClearsItBeforeTheSummary)
{
    std::ostringstream err;
    BatchConvert::run(
        jobs(3), 1,
        [](const std::string& in, const std::string&, std::ostream& e) {
            if (in == "in1.vlm") e << "velmora convert: in1.vlm: no such file\n";
            return in == "in1.vlm" ? exit_unreadable : exit_success;
        },
        err, true);
    const std::string e = err.str();
    EXPECT_NE(e.find("\r\033[Kvelmora convert: 0 of 3 done, 0 failed, "), std::string::npos) << e;
    EXPECT_NE(e.find("\r\033[Kvelmora convert: 3 of 3 done, 1 failed, "), std::string::npos) << e;
    // The failure is on a line of its own, the progress line cleared first.
    EXPECT_NE(e.find("\r\033[Kvelmora convert: in1.vlm: no such file\n"), std::string::npos) << e;
    EXPECT_NE(e.find("\r\033[Kvelmora convert: 3 archives: 2 written, 1 failed, "), std::string::npos) << e;
}

TEST(BatchConvert, Plan_PutsEachStemIntoTheFolderWithTheExtension)
{
    std::vector<BatchConvert::Job> jobs;
    ASSERT_EQ(BatchConvert::plan({"a/left.vlm", "right.VLM", "/x/y/z"}, "out", "stl", jobs), "");
    ASSERT_EQ(jobs.size(), 3u);
    EXPECT_EQ(jobs[0].input, "a/left.vlm");
    EXPECT_EQ(jobs[0].output, "out/left.stl");
    EXPECT_EQ(jobs[1].output, "out/right.stl");
    EXPECT_EQ(jobs[2].output, "out/z.stl");
}

TEST(BatchConvert, Plan_RefusesTwoInputsWritingOneFile)
{
    std::vector<BatchConvert::Job> jobs;
    EXPECT_EQ(BatchConvert::plan({"a/left.vlm", "b/left.vlm"}, "out", "glb", jobs),
              "out/left.glb: both a/left.vlm and b/left.vlm would be written there");
    EXPECT_EQ(BatchConvert::plan({"a.vlm", "a.vlm"}, "out", "glb", jobs),
              "out/a.glb: both a.vlm and a.vlm would be written there");
}

TEST(BatchConvert, Plan_RefusesStandardInput)
{
    std::vector<BatchConvert::Job> jobs;
    EXPECT_EQ(BatchConvert::plan({"a.vlm", "-"}, "out", "glb", jobs),
              "-: standard input cannot be one of several archives");
}

TEST(BatchConvert, Jobs_AcceptsOneToTheBound)
{
    EXPECT_EQ(BatchConvert::jobs_error("1"), "");
    EXPECT_EQ(BatchConvert::jobs_error(std::to_string(BatchConvert::max_jobs)), "");
    const std::string expected = ": expected a whole number from 1 to " + std::to_string(BatchConvert::max_jobs);
    EXPECT_EQ(BatchConvert::jobs_error(std::to_string(BatchConvert::max_jobs + 1)),
              std::to_string(BatchConvert::max_jobs + 1) + expected);
    for (const char* t : {"0", "-2", "", "2x", "1.5", "99999999999999999999"})
        EXPECT_EQ(BatchConvert::jobs_error(t), t + expected) << t;
}

TEST(BatchConvert, DefaultJobs_IsTheProcessorsWithinTheBound)
{
    const long online = sysconf(_SC_NPROCESSORS_ONLN);
    const int n = BatchConvert::default_jobs();
    EXPECT_GE(n, 1);
    EXPECT_LE(n, BatchConvert::max_jobs);
    if (online >= 1 && online <= BatchConvert::max_jobs) {
        EXPECT_EQ(n, online);
    }
}
