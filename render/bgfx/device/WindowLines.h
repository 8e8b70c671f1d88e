#pragma once

#include "render/bgfx/device/Geometry.h"

#include <array>
#include <vector>

namespace vantoraudio::bgfx::device {

/** An end of a line, in the window coordinates of a picture. */
struct LineVertex
{
    float x = 0.0F;
    float y = 0.0F;
    std::array<std::uint8_t, 4> color{};
};

inline constexpr VertexLayout LineVertexLayout{.coordinates = 2, .hasColor = true};

/**
 * The lines of a line list or strip, two vertices each, ready to be drawn with FromWindow(). Each has the colour
 * of its first vertex. Lines at vertices that are not finite are left out, and so is what lies outside the
 * picture: any coordinates are safe for drivers.
 */
[[nodiscard]] std::vector<LineVertex> ToWindowLines(const Draw& draw, const View& view, QSize picture);

/** From window coordinates to -1..1 in the viewport. */
[[nodiscard]] QMatrix4x4 FromWindow(const QRect& viewport, QSize picture);

} // namespace vantoraudio::bgfx::device
