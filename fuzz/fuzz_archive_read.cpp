// libFuzzer target: a whole ".vlm" file through vmiFile::read, with the
// inspect listing attached, as `velmora inspect` reads it. The reader opens
// its archive by name; the unzip service reads it from memory under a name
// of this process.
#include <cstdint>
#include <string>
#include <unistd.h>

#include "FuzzLimits.h"
#include "archive/vmiFile.h"
#include "cli/ArchiveListing.h"
#include "host/qozUnZip.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const utString name(std::string("velmora_fuzz_read_") + std::to_string(getpid()) + ".vlm");
    qozMemoryArchive held(name, data, size);
    ArchiveListing listing;
    vmiFile reader;
    reader.set_observer(&listing);
    reader.set_design_work_limit(fuzz_design_work);
    reader.read(name);
    return 0;
}
