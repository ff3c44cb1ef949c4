// The entry of libvelmora_cad.so, which velmora loads to write STEP, IGES and
// DXF (see cli/writers/CadWriters.h).
#include <exception>

#include "cli/cad/DxfWriter.h"
#include "cli/cad/IgesWriter.h"
#include "cli/cad/StepWriter.h"
#include "cli/writers/CadWriters.h"

extern "C" __attribute__((visibility("default"))) int velmora_cad_write_v1(int kind, const Scene* scene,
                                                                          double scale, int meshes,
                                                                          std::ostream* out,
                                                                          std::string* reason)
{
    static_assert(sizeof(&velmora_cad_write_v1) == sizeof(CadWriters::Entry));
    if (!scene || !out || !reason) return 0;
    // Nothing thrown leaves the library.
    try {
        switch (static_cast<CadWriters::Kind>(kind)) {
        case CadWriters::Kind::step: *reason = StepWriter::write(*scene, scale, meshes != 0, *out); break;
        case CadWriters::Kind::iges: *reason = IgesWriter::write(*scene, scale, meshes != 0, *out); break;
        case CadWriters::Kind::dxf: *reason = DxfWriter::write(*scene, scale, *out); break;
        default: *reason = "unknown CAD format"; break;
        }
    } catch (const std::exception& e) {
        *reason = std::string("the CAD writer failed: ") + e.what();
    } catch (...) {
        *reason = "the CAD writer failed";
    }
    return reason->empty() ? 1 : 0;
}
