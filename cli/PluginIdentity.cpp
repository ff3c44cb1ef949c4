#include "cli/PluginIdentity.h"

#include <dlfcn.h>

#include <memory>

#include "cli/PluginImport.h"
#include "host/intcoSet.h"
#include "host/qorabsAppInfo.h"
#include "host/qorabsLibBase.h"
#include "host/utStringcoSet.h"

#ifndef VELMORA_VERSION
#define VELMORA_VERSION "unknown"
#endif

namespace {

using get_instance_fn = qorabsLibBase* (*)(const qorabsAppInfo*);

std::optional<std::string> text(const char* s)
{
    if (!s) return std::nullopt;
    return std::string(s);
}

} // namespace

PluginIdentity PluginIdentity::of(const qorabsLibBase& library)
{
    PluginIdentity id;
    id.library_name = text(library.library_name());
    id.format_name = text(library.format_name());
    id.option = text(library.option());
    id.file_filter = text(library.file_filter());
    id.database_number = library.database_number();
    if (const qorabsTranslatorCategoryPtr category = library.translator_category())
        id.translator_category = category->name().str();
    intcoSet types;
    library.add_file_types(types);
    id.file_types.assign(types.begin(), types.end());
    utStringcoSet extensions;
    library.add_extensions(extensions);
    for (const utString& e : extensions) id.extensions.push_back(e.str());
    return id;
}

bool PluginIdentity::query(const std::string& library, PluginIdentity& identity, std::string& reason)
{
    static const qorabsAppInfo app(utString("velmora"), utString(VELMORA_VERSION));
    const std::string path = library.empty() ? PluginImport::library_path() : library;
    // Kept loaded, as the import keeps it: the same handle serves the read.
    void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!handle) {
        const char* e = dlerror();
        reason = e ? e : "cannot load " + path;
        return false;
    }
    auto get_instance = reinterpret_cast<get_instance_fn>(dlsym(handle, "get_instance"));
    if (!get_instance) {
        reason = path + ": no get_instance";
        return false;
    }
    const std::unique_ptr<qorabsLibBase> instance(get_instance(&app));
    if (!instance) {
        reason = path + ": get_instance gave no instance";
        return false;
    }
    identity = of(*instance);
    return true;
}
