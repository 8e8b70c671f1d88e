#include "render/vantor3D/Color.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>

namespace vantoraudio::vantor3D {
namespace {

/** Written so that what is not a number becomes 0. */
std::uint32_t ToByte(float component)
{
    return component > 0.0F ? static_cast<std::uint32_t>(std::lround(std::min(component, 1.0F) * 255.0F)) : 0U;
}

} // namespace

std::uint32_t Color::ToRGBA() const noexcept
{
    return ToByte(red) << 24 | ToByte(green) << 16 | ToByte(blue) << 8 | ToByte(alpha);
}

std::uint32_t Color::ToVertexColor() const noexcept
{
    const std::uint32_t rgba = ToRGBA();
    const auto byte = [&](int shift) { return static_cast<std::uint8_t>(rgba >> shift); };
    return std::bit_cast<std::uint32_t>(std::array{byte(24), byte(16), byte(8), byte(0)});
}

} // namespace vantoraudio::vantor3D
