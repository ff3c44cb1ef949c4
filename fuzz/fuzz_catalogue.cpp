// libFuzzer target: catalogue text through the catalogue parser, as the
// reader hands it over: at most catalogue_buffer bytes in an element of type
// 2 and number 0 of the archive directory.
#include <algorithm>
#include <cstdint>
#include <cstring>

#include "archive/vmiArchiveElement.h"
#include "archive/vmiFile.h"
#include "cli/ArchiveListing.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const int len = static_cast<int>(std::min<std::size_t>(size, vmiFile::catalogue_buffer));
    if (len == 0) return 0;
    // Exactly len bytes, so that a read past the catalogue's end shows.
    char* buf = new char[static_cast<std::size_t>(len)];
    std::memcpy(buf, data, static_cast<std::size_t>(len));
    ArchiveListing listing;
    vmiFile reader;
    reader.set_observer(&listing);
    reader.archive().add(new vmiArchiveElement(utString("00000.vlk"), buf, len, vmiEntryKind::catalogue, 0));
    reader.proc_vlk();
    reader.catalogue().free();
    reader.archive().free();
    return 0;
}
