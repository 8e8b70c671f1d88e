#pragma once

#include "engine/samples/Truncation.h"

#include <algorithm>
#include <cstdint>

namespace vantoraudio::AudioEngine {

/** What an audio stream states of its own length: `ticks` of numerator / denominator seconds each. */
struct StreamDuration
{
    bool isStated = false;
    std::int64_t ticks = 0;
    int numerator = 0;
    int denominator = 1;
};

inline std::int64_t Milliseconds(const StreamDuration& stream)
{
    const double secondsPerTick = static_cast<double>(stream.numerator) / stream.denominator;
    return TruncateToInt64(secondsPerTick * static_cast<double>(stream.ticks) * 1000.0);
}

/**
 * Milliseconds from a container's duration in microseconds. Where that is less than one, the longer of it and the
 * stream's own duration. The product wraps at 64 bits, which turns FFmpeg's mark for "unknown" into 0.
 */
inline int DurationInMilliseconds(std::int64_t containerMicroseconds, const StreamDuration& stream)
{
    const auto product = static_cast<std::int64_t>(static_cast<std::uint64_t>(containerMicroseconds) * 1000U);
    const std::int64_t container = product / 1'000'000;
    const bool asksStream = container < 1 && stream.isStated;
    const std::int64_t duration = asksStream ? std::max(container, Milliseconds(stream)) : container;
    return TruncateToInt32(static_cast<double>(duration));
}

} // namespace vantoraudio::AudioEngine
