#pragma once

#include "render/bgfx/Pixels.h"

#include <array>
#include <bit>
#include <cstdint>

namespace vantoraudio::vantor3D {

/** A colour of four components between 0 and 1. */
struct Color
{
    float red = 0.0F;
    float green = 0.0F;
    float blue = 0.0F;
    float alpha = 1.0F;

    /** 0xRRGGBBAA, as a view's clear colour is written. */
    [[nodiscard]] std::uint32_t ToRGBA() const noexcept
    {
        std::uint32_t rgba = 0;
        for (const float component : {red, green, blue, alpha}) {
            rgba = rgba << 8 | bgfx::ToByte(component);
        }
        return rgba;
    }
    /** One byte a channel, red first in memory, as vertices carry it. Both forms cut components to 0..1. */
    [[nodiscard]] std::uint32_t ToVertexColor() const noexcept
    {
        return std::bit_cast<std::uint32_t>(
            std::array{bgfx::ToByte(red), bgfx::ToByte(green), bgfx::ToByte(blue), bgfx::ToByte(alpha)});
    }
};

} // namespace vantoraudio::vantor3D
