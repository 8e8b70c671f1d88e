#pragma once

#include "render/bgfx/device/StripColumns.h"

#include <array>
#include <cstdint>
#include <vector>

namespace vantoraudio::bgfx::device {

struct Pixel
{
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
    std::uint8_t alpha = 0;
};

/** Red, green, blue and alpha, each 0 to 1. */
using Rgba = std::array<float, 4>;

struct Brush
{
    Blend blend = Blend::None;
    bool writeRgb = true;
    bool writeAlpha = true;
};

/** A point of a line or triangle with its colour. */
struct Corner
{
    WindowPoint at;
    Rgba color{};
};

/**
 * A picture in memory, drawn into by OpenGL's rules. Any coordinates are safe: what is not finite is left out, and
 * time is bounded by the number of pixels inside the box.
 */
class Canvas
{
public:
    Canvas(int width, int height);

    [[nodiscard]] int Width() const { return m_width; }
    [[nodiscard]] int Height() const { return m_height; }
    /** Rows from the top. */
    [[nodiscard]] const std::vector<Pixel>& Pixels() const { return m_pixels; }

    void Fill(const PixelBox& box, Pixel pixel);
    void FillColumns(const StripColumns& columns, const Rgba& color, const Brush& brush);
    void DrawLine(const Corner& start, const Corner& end, const PixelBox& box, const Brush& brush);
    void DrawTriangle(const std::array<Corner, 3>& corners, const PixelBox& box, const Brush& brush);

private:
    Pixel& At(int x, int yFromBottom)
    {
        return m_pixels[std::size_t(m_height - 1 - yFromBottom) * std::size_t(m_width) + std::size_t(x)];
    }
    template<typename Paint>
    void PaintColumns(const StripColumns& columns, const Rgba& color, Paint paint);
    template<typename Paint>
    void TraceLine(const Corner& start, const Corner& end, const PixelBox& box, Paint paint);
    template<typename Paint>
    void FillTriangle(const std::array<Corner, 3>& corners, const PixelBox& box, Paint paint);

    int m_width;
    int m_height;
    std::vector<Pixel> m_pixels;
};

Pixel Quantize(const Rgba& color);

} // namespace vantoraudio::bgfx::device
