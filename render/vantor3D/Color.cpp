#include "render/vantor3D/Color.h"

#include "render/bgfx/Rounding.h"

#include <array>
#include <bit>

namespace vantoraudio::vantor3D {

std::uint32_t Color::ToRGBA() const noexcept
{
    std::uint32_t rgba = 0;
    for (const float component : {red, green, blue, alpha}) {
        rgba = rgba << 8 | bgfx::ToByte(component);
    }
    return rgba;
}

std::uint32_t Color::ToVertexColor() const noexcept
{
    return std::bit_cast<std::uint32_t>(
        std::array{bgfx::ToByte(red), bgfx::ToByte(green), bgfx::ToByte(blue), bgfx::ToByte(alpha)});
}

} // namespace vantoraudio::vantor3D
