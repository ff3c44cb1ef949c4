#include "cli/PluginLoader.h"

#include <dlfcn.h>

#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "host/qorResourceTable.h"
#include "host/qorabsAppInfo.h"
#include "host/qorabsContext.h"
#include "host/qorabsIfStream.h"
#include "host/qorabsLibBase.h"
#include "host/qorabsLibInputEx.h"
#include "host/utBoolcoResourceKey.h"

#ifndef VELMORA_VERSION
#define VELMORA_VERSION "unknown"
#endif

namespace {

// What the library exports: a new instance for the host, which owns it.
// The framework's export hands over its input object; a pointer of any
// other function type would be a call through the wrong type.
using get_instance_fn = qorabsLibInputEx* (*)(const qorabsAppInfo*);

const qorabsAppInfo& app_info()
{
    static const qorabsAppInfo info(utString("velmora"), utString(VELMORA_VERSION));
    return info;
}

} // namespace

const std::vector<std::string>& PluginLoader::option_names()
{
    static const std::vector<std::string> names = {"vmiOptProcessScanData", "vmiOptProcessImageData",
                                                   "vmiOptProcessOrthoticData"};
    return names;
}

std::string PluginLoader::command_lib_dir()
{
    std::error_code ec;
    const std::filesystem::path exe = std::filesystem::read_symlink("/proc/self/exe", ec);
    if (ec) return {};
    return (exe.parent_path().parent_path() / "lib").string();
}

std::string PluginLoader::library_path()
{
    return library_path(command_lib_dir());
}

std::string PluginLoader::library_path(const std::string& lib_dir)
{
    if (const char* v = std::getenv(library_variable); v && *v) return v;
    if (lib_dir.empty()) return library_file;
    return (std::filesystem::path(lib_dir) / library_file).string();
}

PluginLoader::PluginLoader(const std::string& library) : path_(library.empty() ? library_path() : library)
{
    void* handle = dlopen(path_.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!handle) {
        const char* e = dlerror();
        fail(e ? e : "cannot open the library");
        return;
    }
    auto get_instance = reinterpret_cast<get_instance_fn>(dlsym(handle, "get_instance"));
    if (!get_instance) {
        fail("no get_instance");
        return;
    }
    instance_.reset(get_instance(&app_info()));
    if (!instance_) fail("get_instance gave no instance");
}

PluginLoader::~PluginLoader() = default;

void PluginLoader::fail(std::string why)
{
    // dlerror starts with the file's name, which the caller names already.
    const std::string prefix = path_ + ": ";
    if (why.rfind(prefix, 0) == 0) why.erase(0, prefix.size());
    reason_ = "cannot load the plug-in: " + why;
}

PluginIdentity PluginLoader::identity() const
{
    return instance_ ? PluginIdentity::of(*instance_) : PluginIdentity{};
}

PluginLoader::Outcome PluginLoader::import_archive(const std::string& archive,
                                                   const std::vector<std::pair<std::string, int>>& options,
                                                   qorabsOutputSink& sink)
{
    auto* input = dynamic_cast<qorabsLibInputEx*>(instance_.get());
    if (!input) {
        if (instance_) fail("get_instance gave no input library");
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
