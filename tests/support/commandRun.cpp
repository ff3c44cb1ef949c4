#include "tests/support/commandRun.h"

#include <sys/wait.h>

#include <cstdio>

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

}  // namespace vlm
