#pragma once

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
    [[nodiscard]] std::uint32_t ToRGBA() const noexcept;
    /** One byte a channel, red first in memory, as vertices carry it. Both forms cut components to 0..1. */
    [[nodiscard]] std::uint32_t ToVertexColor() const noexcept;
};

} // namespace vantoraudio::vantor3D
