#pragma once
// apByteOrderHandler: turns 4-byte groups read from a file into 32-bit
// integers and floats.
//
// Contract for a host's vendor (what the plug-in relies on):
// - The two constructor arguments name the file's and the machine's byte
//   orders. When they are equal, the default (0, 0) included, a group is read
//   least significant byte first (little-endian): the bytes 78 56 34 12 are
//   the integer 0x12345678 and 00 00 80 3F the float 1.0. When they differ,
//   the group is read most significant byte first.
// - The result does not depend on the machine's own byte order.
// - Floats are IEEE single precision, bit for bit: NaNs, infinities and
//   subnormals come back as stored.
// - The caller guarantees 4 readable bytes at p; nothing else is read.
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
