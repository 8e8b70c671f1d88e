#pragma once

#include "render/bgfx/device/Geometry.h"

#include <array>
#include <vector>

namespace vantoraudio::bgfx::device {

/** An end of a line, in the window coordinates of a target. */
struct LineVertex
{
    float x = 0.0F;
    float y = 0.0F;
    std::array<std::uint8_t, 4> color{};
};

VertexLayout LineVertexLayout();

/**
 * The lines of a line list or strip, two vertices each, ready to be drawn with FromWindow(). Lines at vertices
 * that are not finite are left out, and so is what lies outside the picture: any coordinates are safe for drivers.
 */
std::vector<LineVertex> ToWindowLines(const DrawCall& call, int targetWidth, int targetHeight);

/** From window coordinates to -1..1 in the viewport. */
Matrix FromWindow(const Rect& viewport, int targetHeight);

} // namespace vantoraudio::bgfx::device
