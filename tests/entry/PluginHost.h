#pragma once
// A host for the entry's tests: loads build/lib/libvelmora2rnx.so with dlopen
// as a host does, makes instances through its exported get_instance, sets the
// options in the host's resource table and runs an import with the host's
// walk into a recording sink.
#include <dlfcn.h>

#include <memory>
#include <string>
#include <vector>

#include "host/qorResourceTable.h"
#include "host/qorabsAppInfo.h"
#include "host/qorabsContext.h"
#include "host/qorabsIfStream.h"
#include "host/qorabsLibInputEx.h"
#include "tests/support/optionScope.h"
#include "tests/translate/RecordingSink.h"

namespace plugin_host {

using get_instance_fn = qorabsLibInputEx* (*)(const qorabsAppInfo*);
using convert_from_fn = void (*)();

inline std::string library_path()
{
    return std::string(VELMORA_BINARY_DIR) + "/lib/libvelmora2rnx.so";
}

// The library, loaded once for the test program (and never unloaded: the
// resource table keeps what it registered).
struct library {
    void* handle = nullptr;
    get_instance_fn get_instance = nullptr;
    convert_from_fn convert_from = nullptr;
    std::string error;

    static library& get()
    {
        static library lib = load();
        return lib;
    }

private:
    static library load()
    {
        library lib;
        lib.handle = dlopen(library_path().c_str(), RTLD_NOW | RTLD_LOCAL);
        if (!lib.handle) {
            const char* e = dlerror();
            lib.error = e ? e : "dlopen failed";
            return lib;
        }
        lib.get_instance = reinterpret_cast<get_instance_fn>(dlsym(lib.handle, "get_instance"));
        lib.convert_from = reinterpret_cast<convert_from_fn>(dlsym(lib.handle, "convert_from"));
        return lib;
    }
};

inline qorabsAppInfo& app_info()
{
    static qorabsAppInfo app(utString("plugin-host-test"), utString("1"));
    return app;
}

// A new instance of the library's input class; null when it did not load.
inline std::unique_ptr<qorabsLibInputEx> instance()
{
    library& lib = library::get();
    return std::unique_ptr<qorabsLibInputEx>(lib.get_instance ? lib.get_instance(&app_info()) : nullptr);
}

// One import as a host runs it: read_input, then the walk over every
// translator handed over.
struct import_result {
    int result = -1;
    int translators = -1;
    std::vector<SinkEvent> events;
};

inline import_result run_import(const std::string& path)
{
    import_result out;
    std::unique_ptr<qorabsLibInputEx> input = instance();
    if (!input)
        return out;
    qorabsContext context(&app_info());
    qorabsIfStream stream{utString(path)};
    out.result = input->read_input(context, stream);
    out.translators = input->num_objects();
    RecordingSink sink;
    for (int i = 0; i < input->num_objects(); ++i, ++*input)
        input->send_to(sink);
    out.events = sink.events;
    return out;
}

} // namespace plugin_host
