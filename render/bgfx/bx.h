#pragma once

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
void mtxOrtho(float* result, float left, float right, float bottom, float top, float nearPlane, float farPlane,
              float offset, bool homogeneousNdc, Handedness::Enum handedness = Handedness::Left) noexcept;

} // namespace vantoraudio::bx
