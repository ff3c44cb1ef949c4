#include "cli/preview/Canvas.h"

#include <algorithm>
#include <cmath>

Canvas::Canvas(int width, int height, CanvasRgb background)
{
    if (width < 1 || height < 1) return;
    width_ = width;
    height_ = height;
    rgb_.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 3);
    for (std::size_t i = 0; i < rgb_.size(); i += 3) {
        rgb_[i] = background[0];
        rgb_[i + 1] = background[1];
        rgb_[i + 2] = background[2];
    }
}

CanvasRgb Canvas::get(int x, int y) const
{
    if (!inside(x, y)) return {0, 0, 0};
    const std::size_t i = (static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) + static_cast<std::size_t>(x)) * 3;
    return {rgb_[i], rgb_[i + 1], rgb_[i + 2]};
}

void Canvas::set(int x, int y, CanvasRgb c)
{
    if (!inside(x, y)) return;
    const std::size_t i = (static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) + static_cast<std::size_t>(x)) * 3;
    rgb_[i] = c[0];
    rgb_[i + 1] = c[1];
    rgb_[i + 2] = c[2];
}

void Canvas::fill(int x, int y, int w, int h, CanvasRgb c)
{
    const int x0 = std::max(x, 0), y0 = std::max(y, 0);
    const int x1 = static_cast<int>(std::min<long long>(static_cast<long long>(x) + w, width_));
    const int y1 = static_cast<int>(std::min<long long>(static_cast<long long>(y) + h, height_));
    for (int j = y0; j < y1; ++j)
        for (int i = x0; i < x1; ++i) set(i, j, c);
}

void Canvas::line(double x0, double y0, double x1, double y1, CanvasRgb c)
{
    if (empty() || !std::isfinite(x0) || !std::isfinite(y0) || !std::isfinite(x1) || !std::isfinite(y1)) return;
    // Liang-Barsky against the picture widened by half a pixel, so that a
    // line along an edge pixel's centre is kept.
    const double lo_x = -0.5, hi_x = width_ - 0.5, lo_y = -0.5, hi_y = height_ - 0.5;
    const double dx = x1 - x0, dy = y1 - y0;
    double t0 = 0.0, t1 = 1.0;
    const double p[4] = {-dx, dx, -dy, dy};
    const double q[4] = {x0 - lo_x, hi_x - x0, y0 - lo_y, hi_y - y0};
    for (int k = 0; k < 4; ++k) {
        if (p[k] == 0.0) {
            if (q[k] < 0.0) return;
            continue;
        }
        const double r = q[k] / p[k];
        if (p[k] < 0.0) t0 = std::max(t0, r);
        else t1 = std::min(t1, r);
    }
    if (t0 > t1) return;
    const long long ax = std::llround(x0 + t0 * dx), ay = std::llround(y0 + t0 * dy);
    const long long bx = std::llround(x0 + t1 * dx), by = std::llround(y0 + t1 * dy);
    // Bresenham between the clipped ends: at most width + height steps.
    long long x = ax, y = ay;
    const long long sx = bx >= ax ? 1 : -1, sy = by >= ay ? 1 : -1;
    const long long ddx = std::llabs(bx - ax), ddy = -std::llabs(by - ay);
    long long e = ddx + ddy;
    for (;;) {
        set(static_cast<int>(x), static_cast<int>(y), c);
        if (x == bx && y == by) break;
        const long long e2 = 2 * e;
        if (e2 >= ddy) {
            e += ddy;
            x += sx;
        }
        if (e2 <= ddx) {
            e += ddx;
            y += sy;
        }
    }
}

void Canvas::paste(const Canvas& src, int x, int y)
{
    for (int j = 0; j < src.height(); ++j)
        for (int i = 0; i < src.width(); ++i) set(x + i, y + j, src.get(i, j));
}

Canvas Canvas::shrunk_to(int max_width, int max_height) const
{
    if (empty() || max_width < 1 || max_height < 1) return {};
    if (width_ <= max_width && height_ <= max_height) return *this;
    // One factor for both ways, in whole pixels of the result.
    const double f = std::min(static_cast<double>(max_width) / width_, static_cast<double>(max_height) / height_);
    const int w = std::max(1, static_cast<int>(width_ * f));
    const int h = std::max(1, static_cast<int>(height_ * f));
    Canvas out(w, h, {0, 0, 0});
    for (int j = 0; j < h; ++j) {
        const int sy0 = static_cast<int>(static_cast<long long>(j) * height_ / h);
        const int sy1 = std::max(sy0 + 1, static_cast<int>(static_cast<long long>(j + 1) * height_ / h));
        for (int i = 0; i < w; ++i) {
            const int sx0 = static_cast<int>(static_cast<long long>(i) * width_ / w);
            const int sx1 = std::max(sx0 + 1, static_cast<int>(static_cast<long long>(i + 1) * width_ / w));
            unsigned long long sum[3] = {0, 0, 0};
            for (int y = sy0; y < sy1; ++y)
                for (int x = sx0; x < sx1; ++x) {
                    const CanvasRgb c = get(x, y);
                    for (int k = 0; k < 3; ++k) sum[k] += c[static_cast<std::size_t>(k)];
                }
            const unsigned long long n = static_cast<unsigned long long>(sy1 - sy0) * static_cast<unsigned long long>(sx1 - sx0);
            out.set(i, j, {static_cast<std::uint8_t>((sum[0] + n / 2) / n), static_cast<std::uint8_t>((sum[1] + n / 2) / n),
                           static_cast<std::uint8_t>((sum[2] + n / 2) / n)});
        }
    }
    return out;
}
