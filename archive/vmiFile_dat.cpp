// vmiFile: the cursor over one data buffer with its little readers, and the
// binary height-grid record that scan models and orthotic models share.
#include <new>

#include "archive/vmiArchiveElement.h"
#include "archive/vmiFile.h"
#include "grid/vmiBaseGrid.h"
#include "grid/vmiGridMemory.h"

namespace {

// Where the fields of a height-grid record lie behind its 4-byte magic.
constexpr int grid_sizes_at = 8;       // nx, ny
constexpr int grid_spacings_gap = 12;  // unread bytes between ny and dx
constexpr int grid_codes_gap = 466;    // unread bytes between nodata and the codes
// The height a missing node gets, in height units.
constexpr float missing_code = -1000000000.0f;

} // namespace

void vmiFile::init_dat(char* buf, const int& len)
{
    const int n = (buf && len > 0) ? len : 0;
    start_ = pos_ = buf;
    len_ = n;
    end_ = buf ? buf + n : buf;
}

int vmiFile::byte()
{
    if (end_ - pos_ < 1)
        return 0;
    return static_cast<unsigned char>(*pos_++);
}

int vmiFile::int16()
{
    if (end_ - pos_ < 2)
        return 0;
    // The two bytes followed by two zero bytes, taken as one 32-bit group:
    // the value is unsigned, 0 to 65535.
    const unsigned char group[4] = {static_cast<unsigned char>(pos_[0]), static_cast<unsigned char>(pos_[1]), 0, 0};
    pos_ += 2;
    return byte_order_.int32(group);
}

int vmiFile::int32()
{
    if (end_ - pos_ < 4)
        return 0;
    const int v = byte_order_.int32(reinterpret_cast<const unsigned char*>(pos_));
    pos_ += 4;
    return v;
}

float vmiFile::real32()
{
    if (end_ - pos_ < 4)
        return 0.0f;
    const float v = byte_order_.float32(reinterpret_cast<const unsigned char*>(pos_));
    pos_ += 4;
    return v;
}

void vmiFile::pass(const int& n)
{
    // Clamped at both ends: the cursor never leaves its buffer.
    if (n >= end_ - pos_)
        pos_ = end_;
    else if (n <= start_ - pos_)
        pos_ = start_;
    else
        pos_ += n;
}

int vmiFile::is_end(const int& n)
{
    return end_ - pos_ < n ? 1 : 0;
}

vmiBaseGrid* vmiFile::create_base_grid()
{
    pass(grid_sizes_at);
    const int nx = int32();
    const int ny = int32();
    pass(grid_spacings_gap);
    const float dx = real32();
    const float dy = real32();
    const float dz = real32();
    const int nodata = int16();
    pass(grid_codes_gap);
    if (nx < 0 || ny < 0 || dx < 0 || dy < 0 || dz < 0)
        return nullptr;
    // A record asking for more nodes than a grid may hold yields no grid.
    if (!vmiBaseGrid::size_allowed(nx, ny))
        return nullptr;
    const std::size_t n = static_cast<std::size_t>(nx) * static_cast<std::size_t>(ny);
    long long held = 0;
    m03DPoint* points = vmiGridMemory::take(static_cast<long long>(n), &held);
    if (!points)
        return nullptr;
    // A code is read as int16() reads it: its two bytes, then two zero bytes,
    // taken as one group by the host's byte order. The handler only places
    // bytes, so a code's value is that of its first byte alone or'd with
    // that of its second alone: two tables made once a grid spare a call
    // per node. A code cut off by the end of the data reads as 0.
    int first_byte[256], second_byte[256];
    for (int b = 0; b < 256; ++b) {
        const unsigned char a[4] = {static_cast<unsigned char>(b), 0, 0, 0};
        const unsigned char c[4] = {0, static_cast<unsigned char>(b), 0, 0};
        first_byte[b] = byte_order_.int32(a);
        second_byte[b] = byte_order_.int32(c);
    }
    const auto next_code = [&]() {
        if (end_ - pos_ < 2)
            return 0;
        const int h = first_byte[static_cast<unsigned char>(pos_[0])] | second_byte[static_cast<unsigned char>(pos_[1])];
        pos_ += 2;
        return h;
    };
    // With no column there is nothing to read, however many rows are declared.
    for (int j = 0; nx > 0 && j < ny; ++j) {
        for (int i = 0; i < nx; ++i) {
            const int h = next_code();
            float code = static_cast<float>(h);
            // With nodata 0 a zero code is missing; otherwise a zero code is
            // height 1 and the nodata code is missing.
            if (nodata == 0) {
                if (h == 0)
                    code = missing_code;
            } else if (h == 0) {
                code = 1.0f;
            } else if (h == nodata) {
                code = missing_code;
            }
            // Each product in single precision, then widened.
            const float x = static_cast<float>(i) * dx;
            const float y = static_cast<float>(j) * dy;
            const float z = code * dz;
            points[static_cast<std::size_t>(j) * static_cast<std::size_t>(nx) + static_cast<std::size_t>(i)] =
                m03DPoint(static_cast<double>(x), static_cast<double>(y), static_cast<double>(z));
        }
    }
    vmiBaseGrid* grid =
        new (std::nothrow) vmiBaseGrid(points, held, nx, ny, static_cast<double>(dx), static_cast<double>(dy));
    if (!grid)
        vmiGridMemory::give(points, held);
    return grid;
}

vmiBaseGrid* vmiFile::get_base_grid(const int& indx)
{
    vmiArchiveElement* e = archive_.get(vmiEntryKind::data, indx);
    if (!e)
        return nullptr;
    init_dat(e->buf(), e->len());
    pass(4);
    return create_base_grid();
}
