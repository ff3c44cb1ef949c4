#pragma once
// apByteOrderHandler: turns 4-byte groups read from a file into 32-bit
// integers and floats. The two constructor arguments name the file's and the
// machine's byte orders; (0, 0), the default state, takes a group in the
// machine's own order (little-endian on every machine the plug-in runs on).
#include <cstdint>

class apByteOrderHandler {
public:
    explicit apByteOrderHandler(int file_order = 0, int machine_order = 0);

    // The 4 bytes at p as a signed 32-bit integer.
    std::int32_t int32(const unsigned char* p) const;
    // The 4 bytes at p as an IEEE single-precision float.
    float float32(const unsigned char* p) const;

private:
    bool swap_;
};
