// An archive from a pipe is held in a copy that has no name to leave behind.
#include "cli/StandardInput.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

namespace {

namespace fs = std::filesystem;

std::string read(const std::string& p)
{
    std::ifstream in(p, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

} // namespace

TEST(StandardInput, PipedBytes_ReadBackWholeThroughThePath)
{
    const fs::path tmp = fs::path(VELMORA_BINARY_DIR) / "standard-input-test";
    fs::remove_all(tmp);
    fs::create_directories(tmp);
    setenv("TMPDIR", tmp.c_str(), 1);
    int fds[2];
    ASSERT_EQ(pipe(fds), 0);
    // More than a pipe holds at once, with every byte value.
    std::string bytes;
    for (int k = 0; k < 300000; ++k) bytes += static_cast<char>(k * 7);
    std::thread writer([&] {
        std::size_t done = 0;
        while (done < bytes.size()) {
            const ssize_t n = write(fds[1], bytes.data() + done, bytes.size() - done);
            if (n <= 0) break;
            done += static_cast<std::size_t>(n);
        }
        close(fds[1]);
    });
    StandardInput in(fds[0]);
    writer.join();
    close(fds[0]);
    unsetenv("TMPDIR");
    ASSERT_TRUE(in.ok()) << in.error();
    EXPECT_EQ(read(in.path()), bytes);
    EXPECT_TRUE(fs::is_empty(tmp));
}

TEST(StandardInput, UnreadableDescriptor_IsAnErrorNamingWhy)
{
    StandardInput in(-1);
    EXPECT_FALSE(in.ok());
    EXPECT_EQ(in.error(), "cannot read: Bad file descriptor");
}
