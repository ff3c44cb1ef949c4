#pragma once
// vmiObjCloud: a coloured point cloud (a scan image). The record owns its
// arrays. A scan image is kept as it was read, one grey byte a pixel and the
// spacings of its lattice, and its points and colours are made only when the
// host asks for them: an image's cloud would take 28 bytes a pixel for the
// whole import otherwise.
#include <cstdint>

#include "archive/vmiObjAttr.h"
#include "curves/m03DPoint.h"

class vmiObjCloud : public vmiObjAttr {
public:
    // A grey level copied into the red, green and blue bytes: 0x00gggggg.
    static constexpr int grey_to_rgb = 65793;

    // Takes ownership of points (new m03DPoint[size]) and colours (new int[size]);
    // either may be null.
    vmiObjCloud(utString name, m03DPoint* points, int* colours, const int& size);
    // A scan image of width x height pixels, row by row: takes ownership of
    // grey (new std::uint8_t[width * height], may be null when there are no
    // pixels). Pixel (i, j) lies at (float(i) * sx, float(j) * sy) widened, at
    // height z, coloured grey_to_rgb times its grey level.
    vmiObjCloud(utString name, std::uint8_t* grey, const int& width, const int& height,
                const float& sx, const float& sy, const double& z);
    ~vmiObjCloud();
    vmiObjCloud(const vmiObjCloud&) = delete;
    vmiObjCloud& operator=(const vmiObjCloud&) = delete;

    int size() const { return size_; }
    // Whether the cloud has points at all (a cloud built over no point array
    // has none, whatever its size says).
    bool has_points() const { return points_ != nullptr || image_; }
    // Point k and its packed 0xRRGGBB colour (0 without colours), for k in
    // 0 ... size() - 1 of a cloud with points; unchecked.
    m03DPoint point(const int& k) const
    {
        if (!image_)
            return points_[k];
        const int i = k % width_;
        const int j = k / width_;
        const float x = static_cast<float>(i) * sx_;
        const float y = static_cast<float>(j) * sy_;
        return m03DPoint(static_cast<double>(x), static_cast<double>(y), z_);
    }
    int point_colour(const int& k) const
    {
        if (image_)
            return grey_ ? grey_[k] * grey_to_rgb : 0;
        return colours_ ? colours_[k] : 0;
    }
    // Bounding box of the points; invalid when there are none.
    giBox3 box() const;

private:
    m03DPoint* points_ = nullptr;
    int size_ = 0;
    int* colours_ = nullptr;
    // The scan image form.
    bool image_ = false;
    std::uint8_t* grey_ = nullptr;
    int width_ = 0;
    float sx_ = 0.0f;
    float sy_ = 0.0f;
    double z_ = 0.0;
};
