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

    static const VertexLayout& Layout();
};

struct Pos3fColorRGBA
{
    float x = 0.0F;
    float y = 0.0F;
    float z = 0.0F;
    /** One byte a channel, red first in memory. */
    std::uint32_t rgba = 0;

    static const VertexLayout& Layout();
};

} // namespace Vertex
} // namespace vantoraudio::vantor3D
