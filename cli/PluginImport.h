#pragma once
// PluginImport: one import through the plug-in, done the way any host does
// it: dlopen the library, get_instance, set the options in the host's
// resource table, read_input, then walk every translator it handed over into
// the caller's output sink. Nothing of the library's inside is read.
#include <string>
#include <utility>
#include <vector>

class qorabsOutputSink;

class PluginImport {
public:
    // The file name of the plug-in next to the command: <bin>/../lib/<name>.
    static constexpr const char* library_file = "libvelmora2rnx.so";
    // The environment variable that names another plug-in file to load.
    static constexpr const char* library_variable = "VELMORA_PLUGIN";
    // The three options a host may set before a read.
    static const std::vector<std::string>& option_names();

    enum Outcome {
        imported,          // read_input gave 1 and its translators were walked
        nothing_imported,  // read_input gave 0
        no_library,        // the plug-in could not be loaded or has no instance
    };

    // The plug-in file to load: the variable's value when set, else the file
    // next to the running command.
    static std::string library_path();

    // Imports archive through the plug-in at library (library_path() when
    // empty), with every option at its default but those given (name, 0 or
    // 1), and walks the result into sink. On no_library, reason says why.
    static Outcome import_archive(const std::string& archive,
                                  const std::vector<std::pair<std::string, int>>& options,
                                  qorabsOutputSink& sink, std::string& reason,
                                  const std::string& library = {});
};
