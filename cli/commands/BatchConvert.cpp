#include "cli/commands/BatchConvert.h"

#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <map>
#include <sstream>

#include "cli/ExitCode.h"

namespace {

struct Worker {
    pid_t pid = -1;
    int fd = -1;
    std::size_t job = 0;
    std::string text;
};

// Writes all of text to fd, across interrupted and partial writes.
void write_all(int fd, const std::string& text)
{
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t n = ::write(fd, text.data() + done, text.size() - done);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return;
        done += static_cast<std::size_t>(n);
    }
}

// Forks a worker for job; its diagnostics come back through the pipe.
Worker start(std::size_t job, const BatchConvert::Job& j, const BatchConvert::Convert& convert, std::string& failure)
{
    int fds[2];
    if (pipe(fds) != 0) {
        failure = std::string("cannot start a worker: ") + std::strerror(errno);
        return {};
    }
    // Whatever the streams hold would otherwise be written again by the worker.
    std::cout.flush();
    std::cerr.flush();
    const pid_t pid = fork();
    if (pid < 0) {
        failure = std::string("cannot start a worker: ") + std::strerror(errno);
        close(fds[0]);
        close(fds[1]);
        return {};
    }
    if (pid == 0) {
        close(fds[0]);
        std::ostringstream err;
        int status = exit_unreadable;
        try {
            status = convert(j.input, j.output, err);
        } catch (const std::exception& e) {
            err << "velmora convert: " << j.input << ": " << e.what() << '\n';
        }
        write_all(fds[1], err.str());
        close(fds[1]);
        // No exit handlers: they belong to the command, which goes on.
        _exit(status);
    }
    close(fds[1]);
    Worker w;
    w.pid = pid;
    w.fd = fds[0];
    w.job = job;
    return w;
}

// The exit status of an ended worker, and what to say when it did not exit.
int ended(pid_t pid, std::string& why)
{
    int st = 0;
    while (waitpid(pid, &st, 0) < 0)
        if (errno != EINTR) {
            why = std::string("lost its worker: ") + std::strerror(errno);
            return exit_unreadable;
        }
    if (WIFEXITED(st)) return WEXITSTATUS(st);
    if (WIFSIGNALED(st)) {
        why = "the conversion ended by signal " + std::to_string(WTERMSIG(st)) + " (" + strsignal(WTERMSIG(st)) + ")";
        return exit_unreadable;
    }
    why = "the conversion ended in an unknown way";
    return exit_unreadable;
}

std::string seconds(double s)
{
    char b[32];
    std::snprintf(b, sizeof b, "%.1f s", s);
    return b;
}

} // namespace

int BatchConvert::default_jobs()
{
    const long n = sysconf(_SC_NPROCESSORS_ONLN);
    return n < 1 ? 1 : n > max_jobs ? max_jobs : static_cast<int>(n);
}

std::string BatchConvert::jobs_error(const std::string& text)
{
    char* end = nullptr;
    errno = 0;
    const long n = text.empty() ? 0 : std::strtol(text.c_str(), &end, 10);
    if (end != nullptr && *end == '\0' && errno == 0 && n >= 1 && n <= max_jobs) return {};
    return text + ": expected a whole number from 1 to " + std::to_string(max_jobs);
}

std::string BatchConvert::plan(const std::vector<std::string>& inputs, const std::string& folder,
                               const std::string& extension, std::vector<Job>& jobs)
{
    std::map<std::string, std::string> writer_of;
    jobs.clear();
    for (const std::string& in : inputs) {
        if (in == "-") return "-: standard input cannot be one of several archives";
        const std::string out =
            (std::filesystem::path(folder) / (std::filesystem::path(in).stem().string() + "." + extension)).string();
        if (auto [it, fresh] = writer_of.emplace(out, in); !fresh)
            return out + ": both " + it->second + " and " + in + " would be written there";
        jobs.push_back({in, out});
    }
    return {};
}

int BatchConvert::run(const std::vector<Job>& jobs, int workers, const Convert& convert, std::ostream& err,
                      bool progress)
{
    const auto t0 = std::chrono::steady_clock::now();
    const auto elapsed = [&] { return std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count(); };
    std::size_t next = 0, done = 0, failed = 0;
    int worst = exit_success;
    bool line_shown = false;
    const auto clear_line = [&] {
        if (line_shown) err << "\r\033[K";
        line_shown = false;
    };
    const auto draw = [&] {
        if (!progress) return;
        err << "\r\033[Kvelmora convert: " << done << " of " << jobs.size() << " done, " << failed << " failed, "
            << seconds(elapsed()) << std::flush;
        line_shown = true;
    };
    const auto finish = [&](std::size_t job, int status, const std::string& text, const std::string& why) {
        ++done;
        if (status != exit_success) ++failed;
        if (status > worst) worst = status;
        if (!text.empty() || !why.empty()) {
            clear_line();
            err << text;
            if (!why.empty()) err << "velmora convert: " << jobs[job].input << ": " << why << '\n';
        }
        draw();
    };

    std::vector<Worker> running;
    draw();
    while (next < jobs.size() || !running.empty()) {
        while (static_cast<int>(running.size()) < workers && next < jobs.size()) {
            std::string failure;
            Worker w = start(next, jobs[next], convert, failure);
            if (w.pid < 0)
                finish(next, exit_unreadable, {}, failure);
            else
                running.push_back(std::move(w));
            ++next;
        }
        if (running.empty()) continue;
        std::vector<pollfd> fds;
        for (const Worker& w : running) fds.push_back({w.fd, POLLIN, 0});
        if (poll(fds.data(), fds.size(), progress ? progress_interval_ms : -1) < 0) {
            if (errno == EINTR) continue;
            // Without poll, each worker is read to its end in turn.
            for (pollfd& p : fds) p.revents = POLLIN;
        }
        for (std::size_t k = fds.size(); k-- > 0;) {
            if (fds[k].revents == 0) continue;
            Worker& w = running[k];
            char buf[4096];
            const ssize_t got = read(w.fd, buf, sizeof buf);
            if (got < 0 && errno == EINTR) continue;
            if (got > 0) {
                w.text.append(buf, static_cast<std::size_t>(got));
                continue;
            }
            close(w.fd);
            std::string why;
            const int status = ended(w.pid, why);
            finish(w.job, status, w.text, why);
            running.erase(running.begin() + static_cast<std::ptrdiff_t>(k));
        }
        draw();
    }
    clear_line();
    err << "velmora convert: " << jobs.size() << (jobs.size() == 1 ? " archive: " : " archives: ")
        << jobs.size() - failed << " written, " << failed << " failed, " << seconds(elapsed()) << '\n';
    return worst;
}
