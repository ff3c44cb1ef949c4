#pragma once
// fileEntries: data and catalogue entries put straight into a vmiFile, and
// a catalogue processed against them, as the reader does once it has read
// them from an archive.
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "archive/vmiArchiveElement.h"
#include "archive/vmiFile.h"
#include "tests/support/vlmWriter.h"

namespace vlm {

// An entry of the given kind and number holding bytes.
inline void add_entry(vmiFile& f, vmiEntryKind type, int indx, const std::string& bytes)
{
    char* buf = new char[bytes.size() + 1];
    std::memcpy(buf, bytes.data(), bytes.size());
    f.archive().add(new vmiArchiveElement(utString(type == vmiEntryKind::data ? "VLM00000.dat" : "00000.vlk"), buf,
                                          static_cast<int>(bytes.size()), type, indx));
}

// Data entries (number, content) then the catalogue processed against them;
// the entries are let go afterwards, the tree stays.
inline void process(vmiFile& f, const std::vector<std::pair<int, std::string>>& data, const catalogue& c)
{
    for (const auto& d : data)
        add_entry(f, vmiEntryKind::data, d.first, d.second);
    add_entry(f, vmiEntryKind::catalogue, 0, c.text());
    f.proc_vlk();
    f.catalogue().free();
    f.archive().free();
}

}  // namespace vlm
