#include "cli/CommandInputs.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "cli/PluginImport.h"

bool parse_plugin_option(const std::string& text, std::pair<std::string, int>& option)
{
    const std::size_t eq = text.find('=');
    if (eq == std::string::npos) return false;
    const std::string name = text.substr(0, eq), value = text.substr(eq + 1);
    bool known = false;
    for (const std::string& n : PluginImport::option_names()) known = known || n == name;
    if (!known || (value != "0" && value != "1")) return false;
    option = {name, value == "1" ? 1 : 0};
    return true;
}

std::string unreadable_archive(const std::string& path)
{
    std::error_code ec;
    if (!std::filesystem::exists(path, ec)) return "no such file";
    if (!std::filesystem::is_regular_file(path, ec)) return "not a regular file";
    std::ifstream in(path, std::ios::binary);
    if (!in) return std::strerror(errno);
    return {};
}
