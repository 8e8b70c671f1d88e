#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace vantoraudio::bgfx {

/** A component between 0 and 1 as a byte. Written so that what is not a number becomes 0. */
[[nodiscard]] inline std::uint8_t ToByte(float component)
{
    return component > 0.0F ? static_cast<std::uint8_t>(std::lround(std::min(component, 1.0F) * 255.0F))
                            : std::uint8_t{0};
}

/** The first whole pixel whose centre is at or behind `position`, kept between two bounds. */
[[nodiscard]] inline int FirstCentre(double position, int lower, int upper)
{
    return static_cast<int>(std::clamp(std::ceil(position - 0.5), double(lower), double(upper)));
}

} // namespace vantoraudio::bgfx
