#pragma once
// Checks of what a user hands the import commands (dump, convert): an option
// setting NAME=0|1 and the archive path.
#include <string>
#include <utility>

// NAME=0|1 into its parts; false when NAME is not one of the plug-in's
// options or the value is not 0 or 1.
bool parse_plugin_option(const std::string& text, std::pair<std::string, int>& option);

// Empty when path names a regular file that opens for reading, else why not.
std::string unreadable_archive(const std::string& path);
