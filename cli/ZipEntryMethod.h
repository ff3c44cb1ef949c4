#pragma once
// ZipEntryMethod: how one entry of a ZIP archive is stored, asked of libzip
// directly. The plug-in's reader only sees the unzip service's stream, which
// ends early for an entry it cannot decode; the command line looks behind it
// to say why.
#include <optional>
#include <string>

struct ZipEntryMethod {
    int method = 0;          // the ZIP compression method number
    bool encrypted = false;
    bool supported = true;   // whether this build's libzip can decode the method

    // The entry named name (byte for byte) in the archive at path, or none
    // when the archive or the entry cannot be found.
    static std::optional<ZipEntryMethod> of(const std::string& path, const std::string& name);

    // The method's usual name ("deflate", "LZMA"), or "unknown".
    static std::string name_of(int method);
};
