#include "render/bgfx/bx.h"

#include <algorithm>

namespace vantoraudio::bx {

void mtxOrtho(float* result, float left, float right, float bottom, float top, float nearPlane, float farPlane,
              float offset, bool homogeneousNdc, Handedness::Enum handedness) noexcept
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
