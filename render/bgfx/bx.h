#pragma once

#include <algorithm>

/** The few routines of bx, the base library of bgfx, that the drawing code needs: same names, same meaning. */
namespace vantoraudio::bx {

struct Handedness
{
    enum Enum
    {
        Left,
        Right
    };
};

/**
 * Writes the 16 floats of an orthographic projection to `result`, the translation last (the memory order of
 * QMatrix4x4::data()). With `homogeneousNdc` depth maps to -1..1, else to 0..1. An empty range gives infinite
 * entries; nothing is drawn with such a matrix.
 */
inline void mtxOrtho(float* result, float left, float right, float bottom, float top, float nearPlane,
                     float farPlane, float offset, bool homogeneousNdc,
                     Handedness::Enum handedness = Handedness::Left) noexcept
{
    const float depthScale = (homogeneousNdc ? 2.0F : 1.0F) / (farPlane - nearPlane);
    std::fill_n(result, 16, 0.0F);
    result[0] = 2.0F / (right - left);
    result[5] = 2.0F / (top - bottom);
    result[10] = handedness == Handedness::Left ? depthScale : -depthScale;
    result[12] = (left + right) / (left - right) + offset;
    result[13] = (top + bottom) / (bottom - top);
    result[14] =
        homogeneousNdc ? (nearPlane + farPlane) / (nearPlane - farPlane) : nearPlane / (nearPlane - farPlane);
    result[15] = 1.0F;
}

} // namespace vantoraudio::bx
