#pragma once
// PluginIdentity: what an import library says about itself when a host asks
// it (library_name, format_name, option, file_filter, database_number,
// translator_category, add_file_types, add_extensions), read from an instance
// the library's get_instance made (see PluginLoader), as a host reads it.
#include <optional>
#include <string>
#include <vector>

class qorabsLibBase;

struct PluginIdentity {
    // A slot that answers a null pointer is kept as "none".
    std::optional<std::string> library_name;
    std::optional<std::string> format_name;
    std::optional<std::string> option;
    std::optional<std::string> file_filter;
    int database_number = 0;
    // The category's name; none when the library has no category.
    std::optional<std::string> translator_category;
    std::vector<int> file_types;
    std::vector<std::string> extensions;

    // The identity of an instance.
    static PluginIdentity of(const qorabsLibBase& library);
};
