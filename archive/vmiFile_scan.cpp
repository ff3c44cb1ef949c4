// vmiFile: the scan data of an archive. A scan model ("PCSC") is a height
// grid that becomes a triangle block; a scan image ("PCIM") is a grey-level
// picture that becomes a flat coloured point cloud lying under the model.
// Both readers start with the cursor right behind the 4-byte magic.
#include <cstdint>
#include <new>
#include <string>

#include "archive/vmiFile.h"
#include "archive/vmiObjCloud.h"
#include "archive/vmiObjGrid.h"
#include "archive/vmiObject.h"
#include "curves/m03DPoint.h"
#include "grid/vmiBaseGrid.h"

namespace {

// Where the fields of a scan image lie behind its magic.
constexpr int image_sizes_at = 8;        // width, height
constexpr int image_spacings_gap = 12;   // unread bytes between height and sx
constexpr int image_pixels_gap = 468;    // unread bytes between the spacings and the pixels
// The image lies this far below the model.
constexpr double image_plane_z = -5.0;
// Pure white is drawn a light grey.
constexpr int white = 255;
constexpr int white_shown_as = 240;

} // namespace

vmiObject* vmiFile::create_triblock_from_pscs()
{
    utString name = utString("PSCS_") + utString(std::to_string(num_objects()));
    vmiBaseGrid* grid = create_base_grid();
    if (!grid)
        return nullptr;
    vmiObjGrid* rec = new (std::nothrow) vmiObjGrid(std::move(name), grid);
    if (!rec) {
        delete grid;
        return nullptr;
    }
    return vmiObject::wrap(rec);
}

vmiObject* vmiFile::create_cloud_from_pcim()
{
    utString name = utString("PCIM_") + utString(std::to_string(num_objects()));
    pass(image_sizes_at);
    const int width = int32();
    const int height = int32();
    pass(image_spacings_gap);
    const float sx = real32();
    const float sy = real32();
    const float sz = real32();
    pass(image_pixels_gap);
    if (width < 0 || height < 0 || sx < 0 || sy < 0 || sz < 0)
        return nullptr;
    if (!image_size_allowed(width, height))
        return nullptr;
    const std::size_t n = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    std::uint8_t* grey = new (std::nothrow) std::uint8_t[n];
    if (!grey)
        return nullptr;
    for (std::size_t k = 0; k < n; ++k) {
        // Missing pixels (a truncated record) read as black.
        int g = byte();
        if (g == white)
            g = white_shown_as;
        grey[k] = static_cast<std::uint8_t>(g);
    }
    // Each coordinate is a product in single precision, then widened.
    vmiObjCloud* rec = new (std::nothrow)
        vmiObjCloud(std::move(name), grey, width, height, sx, sy, image_plane_z);
    if (!rec) {
        delete[] grey;
        return nullptr;
    }
    return vmiObject::wrap(rec);
}
