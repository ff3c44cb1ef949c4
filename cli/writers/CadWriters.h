#pragma once
// CadWriters: the STEP, IGES and DXF writers. They bring Open CASCADE and
// dxflib, some seventy shared libraries whose loading alone would cost every
// run of velmora more than reading an archive does; so they live in a library
// of their own, libvelmora_cad.so beside the plug-in, loaded the first time a
// scene is written in one of their formats.
#include <ostream>
#include <string>

#include "cli/writers/Scene.h"

class CadWriters {
public:
    enum class Kind { step = 1, iges = 2, dxf = 3 };

    // The library's file name, and the function it exports. The number in
    // the name changes with the function's signature, so that a library of
    // another build is refused rather than called wrongly.
    static constexpr const char* library_file = "libvelmora_cad.so";
    static constexpr const char* entry_name = "velmora_cad_write_v1";
    // The exported function: writes scene as kind (meshes too when meshes is
    // not 0) to *out and gives 1, or gives 0 with the reason in *reason.
    using Entry = int (*)(int kind, const Scene* scene, double scale, int meshes, std::ostream* out,
                          std::string* reason);

    // The library next to the running command: <bin>/../lib/library_file.
    static std::string library_path();

    // Empty on success, else the reason; a library that cannot be loaded
    // gives "cannot load the CAD writers: " and why.
    static std::string write(Kind kind, const Scene& scene, double scale, bool meshes, std::ostream& out);
};
