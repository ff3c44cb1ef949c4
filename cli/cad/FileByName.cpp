#include "cli/cad/FileByName.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <vector>

std::string FileByName::write(std::ostream& out, const std::string& suffix,
                              const std::function<std::string(const std::string& path)>& write)
{
    std::error_code ec;
    const std::string pattern = (std::filesystem::temp_directory_path(ec) / ("velmora-XXXXXX" + suffix)).string();
    if (ec) return "no temporary folder: " + ec.message();
    std::vector<char> name(pattern.begin(), pattern.end());
    name.push_back('\0');
    const int fd = mkstemps(name.data(), static_cast<int>(suffix.size()));
    if (fd < 0) return std::string("cannot make a temporary file: ") + std::strerror(errno);
    close(fd);
    const std::string path(name.data());
    std::string reason = write(path);
    if (reason.empty()) {
        std::ifstream in(path, std::ios::binary);
        if (!(in && out << in.rdbuf())) reason = "cannot copy the temporary file";
    }
    std::filesystem::remove(path, ec);
    return reason;
}
