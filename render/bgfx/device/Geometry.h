#pragma once

#include "render/bgfx/device/Device.h"

#include <cstring>

namespace vantoraudio::bgfx::device {

/** Window coordinates as OpenGL has them: pixels, y counts from the bottom, pixel centres at halves. */
struct WindowPoint
{
    double x = 0.0;
    double y = 0.0;
};

struct ClipPoint
{
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
};

/** A rectangle of whole pixels, upper bounds exclusive, y from the bottom. */
struct PixelBox
{
    int left = 0;
    int right = 0;
    int bottom = 0;
    int top = 0;

    [[nodiscard]] bool IsEmpty() const { return left >= right || bottom >= top; }
};

/** The part of `rect` inside a target of this size. */
PixelBox ClipToTarget(const Rect& rect, int targetWidth, int targetHeight);

/** Up to three floats of a vertex's position; what it lacks is 0. */
struct PositionReader
{
    PositionReader(const VertexLayout& layout, std::span<const std::uint8_t> bytes);

    [[nodiscard]] ClipPoint operator()(std::uint32_t vertex) const
    {
        float position[3] = {0.0F, 0.0F, 0.0F};
        std::memcpy(position, m_data + std::size_t{vertex} * m_stride, m_bytes);
        return {position[0], position[1], position[2]};
    }

private:
    const std::uint8_t* m_data;
    std::size_t m_stride;
    std::size_t m_bytes;
};

/** Affine: the matrix's last row is taken as (0, 0, 0, 1). */
ClipPoint Transform(const Matrix& matrix, const ClipPoint& point);
WindowPoint ToWindow(const Rect& viewport, int targetHeight, const ClipPoint& point);

} // namespace vantoraudio::bgfx::device
