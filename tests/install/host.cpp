// A host built against the installed package: it loads the plug-in from the path the package gives and imports an archive.
#include <dlfcn.h>
#include <cstdio>
#include <memory>
#include "host/qorabsAppInfo.h"
#include "host/qorabsContext.h"
#include "host/qorabsIfStream.h"
#include "host/qorabsLibInputEx.h"
int main(int argc, char** argv)
{
    void* library = argc == 2 ? dlopen(VELMORA2RNX_PLUGIN, RTLD_NOW | RTLD_LOCAL) : nullptr;
    auto get_instance = library ? reinterpret_cast<qorabsLibInputEx* (*)(const qorabsAppInfo*)>(dlsym(library, "get_instance")) : nullptr;
    const qorabsAppInfo app(utString("install-test"), utString("1"));
    const std::unique_ptr<qorabsLibInputEx> input(get_instance ? get_instance(&app) : nullptr);
    qorabsIfStream stream{utString(argv[argc - 1])};
    const int read = input ? input->read_input(qorabsContext(&app), stream) : 0;
    std::printf("%s: read_input %d, %d objects\n", input ? input->library_name() : dlerror(), read, read ? input->num_objects() : 0);
    return read && input->num_objects() > 0 ? 0 : 1;
}
