#pragma once
// Canvas: an RGB picture in memory, 8 bits a channel, row 0 at the top, and
// the few drawing operations the preview pictures need. Every operation clips
// to the picture, so a caller may draw partly or wholly outside it.
#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

using CanvasRgb = std::array<std::uint8_t, 3>;

class Canvas {
public:
    Canvas() = default;
    // A width x height picture filled with background; a size below 1 makes
    // an empty picture.
    Canvas(int width, int height, CanvasRgb background);

    int width() const { return width_; }
    int height() const { return height_; }
    bool empty() const { return width_ == 0 || height_ == 0; }
    // The pixels row by row, three bytes each.
    const std::vector<std::uint8_t>& bytes() const { return rgb_; }

    bool inside(int x, int y) const { return x >= 0 && y >= 0 && x < width_ && y < height_; }
    // The pixel at (x, y); black outside the picture.
    CanvasRgb get(int x, int y) const;
    void set(int x, int y, CanvasRgb c);
    void fill(int x, int y, int w, int h, CanvasRgb c);
    // The straight line from (x0, y0) to (x1, y1), both ends included. The
    // line is clipped to the picture first, so its cost is at most the
    // picture's width plus height, wherever its ends are.
    void line(double x0, double y0, double x1, double y1, CanvasRgb c);
    // src copied with its top left corner at (x, y).
    void paste(const Canvas& src, int x, int y);
    // The picture shrunk to fit a box of max_width x max_height, keeping its
    // proportions; each pixel is the mean of the pixels it covers. A picture
    // that already fits is copied unchanged.
    Canvas shrunk_to(int max_width, int max_height) const;

private:
    int width_ = 0;
    int height_ = 0;
    std::vector<std::uint8_t> rgb_;
};
