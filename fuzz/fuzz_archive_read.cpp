// libFuzzer target: a whole ".vlm" file through vmiFile::read, with the
// inspect listing attached, as `velmora inspect` reads it. The unzip service
// opens files by name, so each input is written to a file of this process.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <unistd.h>

#include "archive/vmiFile.h"
#include "cli/ArchiveListing.h"

namespace {

std::string input_path()
{
    const char* dir = std::getenv("TMPDIR");
    return std::string(dir && *dir ? dir : "/tmp") + "/velmora_fuzz_" + std::to_string(getpid()) + ".vlm";
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const std::string path = input_path();
    std::FILE* f = std::fopen(path.c_str(), "wb");
    if (!f) return 0;
    const bool written = std::fwrite(data, 1, size, f) == size;
    std::fclose(f);
    if (!written) return 0;
    ArchiveListing listing;
    vmiFile reader;
    reader.set_observer(&listing);
    reader.read(utString(path));
    return 0;
}
