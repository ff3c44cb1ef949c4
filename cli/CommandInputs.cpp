#include "cli/CommandInputs.h"

#include <CLI/CLI.hpp>

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "cli/PluginLoader.h"

namespace {

// NAME=0|1 into its parts; false when NAME is not one of the plug-in's
// options or the value is not 0 or 1.
bool split_plugin_option(const std::string& text, std::pair<std::string, int>& option)
{
    const std::size_t eq = text.find('=');
    if (eq == std::string::npos) return false;
    const std::string name = text.substr(0, eq), value = text.substr(eq + 1);
    bool known = false;
    for (const std::string& n : PluginLoader::option_names()) known = known || n == name;
    if (!known || (value != "0" && value != "1")) return false;
    option = {name, value == "1" ? 1 : 0};
    return true;
}

} // namespace

CLI::Option* CommandInputs::add_plugin_option(CLI::App& cmd, std::vector<std::string>& options)
{
    return cmd
        .add_option("--option", options,
                    "Set an option of the plug-in before the read: vmiOptProcessScanData, "
                    "vmiOptProcessImageData or vmiOptProcessOrthoticData, =0 or =1 (repeatable)")
        ->type_name("NAME=0|1")
        ->allow_extra_args(false)
        ->check(CLI::Validator([](std::string& text) { return plugin_option_error(text); }, ""));
}

std::string CommandInputs::plugin_option_error(const std::string& text)
{
    std::pair<std::string, int> option;
    if (split_plugin_option(text, option)) return {};
    return text + ": expected vmiOptProcessScanData, vmiOptProcessImageData or vmiOptProcessOrthoticData =0 or =1";
}

std::vector<std::pair<std::string, int>> CommandInputs::plugin_options(const std::vector<std::string>& texts)
{
    std::vector<std::pair<std::string, int>> options;
    for (const std::string& t : texts)
        if (std::pair<std::string, int> o; split_plugin_option(t, o)) options.push_back(o);
    return options;
}

std::string CommandInputs::scale_error(const std::string& text)
{
    // Read as the parser reads a number: the whole text or nothing.
    char* end = nullptr;
    const double s = text.empty() ? 0.0 : std::strtod(text.c_str(), &end);
    if (end != nullptr && *end == '\0' && std::isfinite(s) && s > 0.0) return {};
    return text + ": expected a finite number above 0";
}

std::string CommandInputs::unreadable_file(const std::string& path)
{
    std::error_code ec;
    const auto status = std::filesystem::status(path, ec);
    if (ec || !std::filesystem::exists(status)) return "no such file";
    if (std::filesystem::is_directory(status)) return "is a directory";
    // A pipe or a device could block the read or never end.
    if (!std::filesystem::is_regular_file(status)) return "not a regular file";
    std::ifstream probe(path, std::ios::binary);
    if (!probe) return std::string("cannot open: ") + std::strerror(errno);
    return {};
}

void CommandInputs::report(std::ostream& err, const std::string& command, const std::string& subject,
                           const std::string& reason)
{
    err << "velmora " << command << ": " << subject << ": " << reason << '\n';
}
