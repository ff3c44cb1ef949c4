#include "cli/OutputFile.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <vector>

namespace {

// The temporaries a signal removes: fixed storage, so that the handler
// touches nothing but these bytes and unlink.
char guarded_paths[OutputFile::max_guarded][PATH_MAX];
volatile std::sig_atomic_t guarded_used[OutputFile::max_guarded];

void remove_guarded_and_die(int sig)
{
    for (int i = 0; i < OutputFile::max_guarded; ++i)
        if (guarded_used[i]) unlink(guarded_paths[i]);
    std::signal(sig, SIG_DFL);
    std::raise(sig);
}

// The handlers go in once, and only over the default action: a signal the
// caller ignores (nohup's SIGHUP) or handles itself stays theirs.
void guard_signals()
{
    static bool installed = false;
    if (installed) return;
    installed = true;
    for (int sig : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction old {};
        if (sigaction(sig, nullptr, &old) != 0 || old.sa_handler != SIG_DFL) continue;
        struct sigaction act {};
        act.sa_handler = remove_guarded_and_die;
        sigemptyset(&act.sa_mask);
        sigaction(sig, &act, nullptr);
    }
}

int guard(const std::string& path)
{
    if (path.size() >= PATH_MAX) return -1;
    guard_signals();
    for (int i = 0; i < OutputFile::max_guarded; ++i) {
        if (guarded_used[i]) continue;
        std::memcpy(guarded_paths[i], path.c_str(), path.size() + 1);
        guarded_used[i] = 1;
        return i;
    }
    return -1;
}

} // namespace

std::string OutputFile::refusal(const std::string& input, const std::string& output)
{
    struct stat out {};
    if (stat(output.c_str(), &out) != 0) return {};
    if (S_ISDIR(out.st_mode)) return "is a directory";
    struct stat in {};
    if (stat(input.c_str(), &in) == 0 && in.st_dev == out.st_dev && in.st_ino == out.st_ino)
        return "is the input archive";
    return {};
}

OutputFile::OutputFile(const std::string& path) : path_(path)
{
    const std::filesystem::path target(path);
    const std::filesystem::path folder = target.has_parent_path() ? target.parent_path() : ".";
    std::string pattern = (folder / ("." + target.filename().string() + ".XXXXXX")).string();
    std::vector<char> name(pattern.begin(), pattern.end());
    name.push_back('\0');
    const int fd = mkstemp(name.data());
    if (fd < 0) {
        error_ = std::strerror(errno);
        return;
    }
    temporary_ = name.data();
    slot_ = guard(temporary_);
    // mkstemp makes the file for its owner alone; a result is as readable as
    // any file the user makes.
    const mode_t mask = umask(0);
    umask(mask);
    fchmod(fd, 0666 & ~mask);
    close(fd);
    out_.open(temporary_, std::ios::binary | std::ios::trunc);
    if (!out_) {
        error_ = std::strerror(errno);
        discard();
    }
}

OutputFile::~OutputFile()
{
    if (!done_) discard();
}

void OutputFile::discard()
{
    if (out_.is_open()) out_.close();
    if (!temporary_.empty()) std::remove(temporary_.c_str());
    if (slot_ >= 0) guarded_used[slot_] = 0;
    slot_ = -1;
    done_ = true;
}

std::string OutputFile::commit()
{
    if (done_ || !error_.empty()) return error_.empty() ? "already closed" : error_;
    out_.close();
    if (!out_) {
        discard();
        return "cannot write";
    }
    if (std::rename(temporary_.c_str(), path_.c_str()) != 0) {
        const std::string why = std::strerror(errno);
        discard();
        return why;
    }
    if (slot_ >= 0) guarded_used[slot_] = 0;
    slot_ = -1;
    done_ = true;
    return {};
}
