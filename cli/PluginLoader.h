#pragma once
// PluginLoader: the plug-in loaded once, the way any host loads it: dlopen
// the library and make one instance with get_instance. That instance answers
// what the library says about itself and does the import: set the options in
// the host's resource table, read_input, then walk every translator it handed
// over into the caller's output sink. Nothing of the library's inside is read.
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "cli/PluginIdentity.h"

class qorabsLibBase;
class qorabsOutputSink;

class PluginLoader {
public:
    // The file name of the plug-in next to the command: <bin>/../lib/<name>.
    static constexpr const char* library_file = "libvelmora2rnx.so";
    // The environment variable that names another plug-in file to load.
    static constexpr const char* library_variable = "VELMORA_PLUGIN";
    // The three options a host may set before a read.
    static const std::vector<std::string>& option_names();

    // The folder of the libraries beside the running command, <bin>/../lib;
    // empty when the command's own path cannot be read.
    static std::string command_lib_dir();
    // The plug-in file to load: the variable's value when set, else the file
    // next to the running command.
    static std::string library_path();
    // The same for a host that keeps the plug-in in lib_dir: the variable's
    // value when set, else lib_dir/library_file.
    static std::string library_path(const std::string& lib_dir);

    // Loads the plug-in at library (library_path() when empty) and makes its
    // instance; loaded() says whether that worked, reason() why not. The
    // library stays loaded after the loader is gone: the host's types it made
    // may outlive a close.
    explicit PluginLoader(const std::string& library = {});
    ~PluginLoader();
    PluginLoader(const PluginLoader&) = delete;
    PluginLoader& operator=(const PluginLoader&) = delete;

    bool loaded() const { return instance_ != nullptr; }
    // The plug-in file, as loaded or tried.
    const std::string& path() const { return path_; }
    // Why the plug-in could not be loaded ("cannot load the plug-in: ..."),
    // without its file name, which the caller names before it.
    const std::string& reason() const { return reason_; }

    // What the instance says about itself; only when loaded().
    PluginIdentity identity() const;

    enum Outcome {
        imported,          // read_input gave 1 and its translators were walked
        nothing_imported,  // read_input gave 0
        no_library,        // the plug-in was not loaded or is no input library
    };

    // Imports archive with every option at its default but those given
    // (name, 0 or 1), and walks the result into sink. On no_library, reason()
    // says why. One import per loader, as a host reads one file with one
    // instance: the instance keeps the translators of its read.
    Outcome import_archive(const std::string& archive, const std::vector<std::pair<std::string, int>>& options,
                           qorabsOutputSink& sink);

private:
    void fail(std::string why);

    std::string path_;
    std::string reason_;
    std::unique_ptr<qorabsLibBase> instance_;
};
