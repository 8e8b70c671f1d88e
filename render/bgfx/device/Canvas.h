#pragma once

#include "render/bgfx/device/StripColumns.h"

#include <QtGui/QImage>

#include <array>
#include <cstdint>

namespace vantoraudio::bgfx::device {

/** Red, green, blue and alpha, each 0 to 1. */
using Rgba = std::array<float, 4>;

struct Pixel
{
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
    std::uint8_t alpha = 0;
};

/** A corner of a triangle with its colour. */
struct Corner
{
    WindowPoint at;
    Rgba color{};
};

/**
 * Draws into a picture by OpenGL's rules. Any coordinates are safe: what is not finite is left out, and time is
 * bounded by the number of pixels inside the box.
 */
class Canvas
{
public:
    /** `picture` has the format RGBA8888 and outlives the canvas. */
    explicit Canvas(QImage& picture);

    [[nodiscard]] QSize Size() const { return {m_width, m_height}; }

    /** `rgba` is 0xRRGGBBAA. */
    void Fill(const PixelBox& box, std::uint32_t rgba);
    void FillColumns(const StripColumns& columns, const Rgba& color);
    void DrawLine(const WindowPoint& start, const WindowPoint& end, const PixelBox& box, const Rgba& color);
    void DrawTriangle(const std::array<Corner, 3>& corners, const PixelBox& box);

private:
    Pixel& At(int x, int yFromBottom)
    {
        return m_pixels[std::size_t(m_height - 1 - yFromBottom) * std::size_t(m_width) + std::size_t(x)];
    }

    int m_width;
    int m_height;
    Pixel* m_pixels;
};

} // namespace vantoraudio::bgfx::device
