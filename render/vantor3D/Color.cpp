#include "render/vantor3D/Color.h"

namespace vantoraudio::vantor3D {
namespace {

/** Written so that what is not a number becomes 0. */
std::uint32_t ToByte(float component)
{
    if (!(component > 0.0F))
        return 0;
    return component < 1.0F ? static_cast<std::uint32_t>(component * 255.0F + 0.5F) : 255;
}

} // namespace

std::uint32_t Color::ToRGBA() const noexcept
{
    return ToByte(red) << 24 | ToByte(green) << 16 | ToByte(blue) << 8 | ToByte(alpha);
}

} // namespace vantoraudio::vantor3D
