#include "cli/PluginImport.h"

#include <dlfcn.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <system_error>

#include "host/qorResourceTable.h"
#include "host/qorabsAppInfo.h"
#include "host/qorabsContext.h"
#include "host/qorabsIfStream.h"
#include "host/qorabsLibInputEx.h"
#include "host/utBoolcoResourceKey.h"

#ifndef VELMORA_VERSION
#define VELMORA_VERSION "unknown"
#endif

namespace {

// What the library exports: a new input object for the host, which owns it.
using get_instance_fn = qorabsLibBase* (*)(const qorabsAppInfo*);

const qorabsAppInfo& app_info()
{
    static const qorabsAppInfo info(utString("velmora"), utString(VELMORA_VERSION));
    return info;
}

} // namespace

const std::vector<std::string>& PluginImport::option_names()
{
    static const std::vector<std::string> names = {"vmiOptProcessScanData", "vmiOptProcessImageData",
                                                   "vmiOptProcessOrthoticData"};
    return names;
}

std::string PluginImport::library_path()
{
    if (const char* v = std::getenv(library_variable); v && *v) return v;
    std::error_code ec;
    const std::filesystem::path exe = std::filesystem::read_symlink("/proc/self/exe", ec);
    if (ec) return library_file;
    return (exe.parent_path().parent_path() / "lib" / library_file).string();
}

PluginImport::Outcome PluginImport::import_archive(const std::string& archive,
                                                   const std::vector<std::pair<std::string, int>>& options,
                                                   qorabsOutputSink& sink, std::string& reason,
                                                   const std::string& library)
{
    const std::string path = library.empty() ? library_path() : library;
    // The library stays loaded: the host's types it made may outlive a close.
    void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!handle) {
        const char* e = dlerror();
        reason = e ? e : "cannot load " + path;
        return no_library;
    }
    auto get_instance = reinterpret_cast<get_instance_fn>(dlsym(handle, "get_instance"));
    if (!get_instance) {
        reason = path + ": no get_instance";
        return no_library;
    }
    std::unique_ptr<qorabsLibBase> base(get_instance(&app_info()));
    auto* input = dynamic_cast<qorabsLibInputEx*>(base.get());
    if (!input) {
        reason = path + ": get_instance gave no input library";
        return no_library;
    }
    // The library entered its options when it was loaded; each import starts
    // from their defaults, and the caller's values go over them before the
    // read, which looks them up.
    if (qorResourceTable* table = qor_resource_table_inquire()) {
        table->reset();
        for (const auto& [name, value] : options) table->set_bool(utBoolcoResourceKey(utString(name)), value);
    }
    const qorabsContext context(&app_info());
    qorabsIfStream stream{utString(archive)};
    if (!input->read_input(context, stream)) return nothing_imported;
    for (int i = 0; i < input->num_objects(); ++i, ++*input) input->send_to(sink);
    return imported;
}
