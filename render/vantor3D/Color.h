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
};

} // namespace vantoraudio::vantor3D
