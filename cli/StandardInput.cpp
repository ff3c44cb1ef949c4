#include "cli/StandardInput.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <vector>

StandardInput::StandardInput(int fd)
{
    const char* tmp = std::getenv("TMPDIR");
    std::string pattern = std::string(tmp && *tmp ? tmp : "/tmp") + "/velmora-stdin.XXXXXX";
    std::vector<char> name(pattern.begin(), pattern.end());
    name.push_back('\0');
    copy_ = mkstemp(name.data());
    if (copy_ < 0) {
        error_ = std::string("cannot make a temporary copy: ") + std::strerror(errno);
        return;
    }
    unlink(name.data());
    path_ = "/proc/self/fd/" + std::to_string(copy_);
    std::vector<char> buf(1 << 16);
    for (;;) {
        const ssize_t got = ::read(fd, buf.data(), buf.size());
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) {
            error_ = std::string("cannot read: ") + std::strerror(errno);
            return;
        }
        if (got == 0) break;
        for (ssize_t done = 0; done < got;) {
            const ssize_t n = ::write(copy_, buf.data() + done, static_cast<std::size_t>(got - done));
            if (n < 0 && errno == EINTR) continue;
            if (n <= 0) {
                error_ = std::string("cannot make a temporary copy: ") + std::strerror(errno);
                return;
            }
            done += n;
        }
    }
}

StandardInput::~StandardInput()
{
    if (copy_ >= 0) close(copy_);
}
