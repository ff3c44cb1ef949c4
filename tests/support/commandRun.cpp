#include "tests/support/commandRun.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <thread>

#include "tests/support/vlmWriter.h"

namespace vlm {

namespace {

std::string quoted(const std::string& s)
{
    std::string q(1, '\'');
    for (char c : s) {
        if (c == '\'')
            q.append("'\\''");
        else
            q.push_back(c);
    }
    q.push_back('\'');
    return q;
}

}  // namespace

command_result run_command(const std::string& program, const std::vector<std::string>& args,
                           const std::string& env)
{
    const std::string err_path = temp_path("command_stderr.txt");
    std::string cmd = env + (env.empty() ? "" : " ") + quoted(program);
    for (const std::string& a : args)
        cmd.append(" ").append(quoted(a));
    cmd.append(" 2>").append(quoted(err_path));
    command_result r;
    FILE* p = popen(cmd.c_str(), "r");
    if (!p)
        return r;
    char buf[65536];
    for (std::size_t n; (n = fread(buf, 1, sizeof buf, p)) > 0;)
        r.out.append(buf, n);
    const int st = pclose(p);
    r.status = WIFEXITED(st) ? WEXITSTATUS(st) : -1;
    r.err = read_file(err_path);
    std::remove(err_path.c_str());
    return r;
}

measured_run run_measured(const std::string& program, const std::vector<std::string>& args,
                          double patience_seconds)
{
    measured_run r;
    const std::string err_path = temp_path("measured_stderr.txt");
    std::vector<std::string> argv_text{program};
    argv_text.insert(argv_text.end(), args.begin(), args.end());
    std::vector<char*> argv;
    for (std::string& a : argv_text)
        argv.push_back(a.data());
    argv.push_back(nullptr);

    // posix_spawn starts the program without copying this process's pages
    // first, so that its peak memory is its own.
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 2, err_path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    const auto start = std::chrono::steady_clock::now();
    pid_t pid = -1;
    const int spawned = posix_spawn(&pid, program.c_str(), &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (spawned != 0)
        return r;
    int st = 0;
    rusage usage{};
    for (;;) {
        const pid_t done = wait4(pid, &st, WNOHANG, &usage);
        if (done == pid)
            break;
        const std::chrono::duration<double> spent = std::chrono::steady_clock::now() - start;
        if (done < 0)
            return r;
        if (spent.count() > patience_seconds && !r.killed) {
            r.killed = true;
            kill(pid, SIGKILL);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    const std::chrono::duration<double> spent = std::chrono::steady_clock::now() - start;
    r.seconds = spent.count();
    r.cpu_seconds = static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec)
        + static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) * 1e-6;
    r.max_rss_kb = usage.ru_maxrss;
    r.status = WIFEXITED(st) ? WEXITSTATUS(st) : -1;
    r.signal = WIFSIGNALED(st) ? WTERMSIG(st) : 0;
    r.err = read_file(err_path);
    std::remove(err_path.c_str());
    return r;
}

}  // namespace vlm
