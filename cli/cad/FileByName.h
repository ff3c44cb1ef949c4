#pragma once
// FileByName: for a library that writes a file only by its name (Open
// CASCADE's STEP writer, dxflib), so that its writer can still hand its bytes
// to a stream like the others.
#include <functional>
#include <ostream>
#include <string>

class FileByName {
public:
    // Calls write with the name of a fresh temporary file ending in suffix,
    // copies what it wrote to out and removes the file. Returns write's
    // reason, or why the temporary file could not be had; empty on success.
    static std::string write(std::ostream& out, const std::string& suffix,
                             const std::function<std::string(const std::string& path)>& write);
};
