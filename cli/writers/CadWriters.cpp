#include "cli/writers/CadWriters.h"

#include <dlfcn.h>

#include <filesystem>

#include "cli/PluginLoader.h"

std::string CadWriters::library_path()
{
    const std::string dir = PluginLoader::command_lib_dir();
    if (dir.empty()) return library_file;
    return (std::filesystem::path(dir) / library_file).string();
}

namespace {

// The entry, looked up once; null with the reason when the library is not
// there. The library stays loaded until the process ends.
CadWriters::Entry load_entry(std::string& reason)
{
    static std::string failure;
    static const CadWriters::Entry entry = [] {
        const std::string path = CadWriters::library_path();
        void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
        if (!handle) {
            const char* why = dlerror();
            // dlerror names the file.
            failure = std::string("cannot load the CAD writers: ") + (why ? why : path.c_str());
            return CadWriters::Entry(nullptr);
        }
        void* symbol = dlsym(handle, CadWriters::entry_name);
        if (!symbol) {
            failure = "cannot load the CAD writers (" + path + "): it has no " + CadWriters::entry_name;
            return CadWriters::Entry(nullptr);
        }
        return reinterpret_cast<CadWriters::Entry>(symbol);
    }();
    reason = failure;
    return entry;
}

}  // namespace

std::string CadWriters::write(Kind kind, const Scene& scene, double scale, bool meshes, std::ostream& out)
{
    std::string reason;
    const Entry entry = load_entry(reason);
    if (!entry) return reason;
    if (entry(static_cast<int>(kind), &scene, scale, meshes ? 1 : 0, &out, &reason) == 1) return {};
    return reason.empty() ? std::string("cannot write") : reason;
}
