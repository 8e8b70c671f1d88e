#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

/**
 * In many places the library counts frames, bytes and milliseconds in 32-bit integers and lets them wrap around on
 * purpose. These functions give such conversions and products one defined meaning.
 */
namespace vantoraudio::AudioEngine {

/** Truncates toward zero. A value that Integer cannot hold becomes the nearest one that it can, and not-a-number
 *  becomes 0. */
template<typename Integer>
[[nodiscard]] inline Integer TruncateTo(double value) noexcept
{
    // Both limits are powers of two, so the comparisons below are exact in double precision.
    constexpr double lowest = static_cast<double>(std::numeric_limits<Integer>::min());
    constexpr double pastHighest = -lowest;
    static_assert(std::numeric_limits<Integer>::is_signed);
    if (std::isnan(value)) {
        return 0;
    }
    if (value >= pastHighest) {
        return std::numeric_limits<Integer>::max();
    }
    if (value <= lowest) {
        return std::numeric_limits<Integer>::min();
    }
    return static_cast<Integer>(value);
}

[[nodiscard]] inline std::int32_t TruncateToInt32(double value) noexcept
{
    return TruncateTo<std::int32_t>(value);
}

[[nodiscard]] inline std::int64_t TruncateToInt64(double value) noexcept
{
    return TruncateTo<std::int64_t>(value);
}

/** The lowest 32 bits, as two's complement. */
[[nodiscard]] constexpr std::int32_t WrapToInt32(std::int64_t value) noexcept
{
    return static_cast<std::int32_t>(value);
}

/** The lowest 32 bits of the product, as two's complement: offsets beyond 2 GiB wrap around. */
[[nodiscard]] constexpr std::int32_t MultiplyWrapping(std::int32_t a, std::int32_t b) noexcept
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) * static_cast<std::uint32_t>(b));
}

} // namespace vantoraudio::AudioEngine
