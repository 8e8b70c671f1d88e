#pragma once

#include "render/bgfx/bgfx.h"

#include <cstdint>

namespace vantoraudio::vantor3D {

using bgfx::VertexLayout;

namespace Vertex {

struct Pos2f
{
    float x = 0.0F;
    float y = 0.0F;

    static constexpr VertexLayout Layout() { return {.coordinates = 2, .hasColor = false}; }
};

struct Pos3fColorRGBA
{
    float x = 0.0F;
    float y = 0.0F;
    float z = 0.0F;
    /** One byte a channel, red first in memory. */
    std::uint32_t rgba = 0;

    static constexpr VertexLayout Layout() { return {.coordinates = 3, .hasColor = true}; }
};

} // namespace Vertex
} // namespace vantoraudio::vantor3D
