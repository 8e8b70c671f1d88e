#pragma once

#include "engine/samples/Truncation.h"

#include <algorithm>
#include <cstdint>
#include <limits>

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
 * stream's own duration. The lowest number is FFmpeg's mark for "unknown", which counts as 0.
 */
inline int DurationInMilliseconds(std::int64_t containerMicroseconds, const StreamDuration& stream)
{
    const bool isKnown = containerMicroseconds != std::numeric_limits<std::int64_t>::min();
    const std::int64_t container = isKnown ? containerMicroseconds / 1000 : 0;
    const bool asksStream = container < 1 && stream.isStated;
    const std::int64_t duration = asksStream ? std::max(container, Milliseconds(stream)) : container;
    return TruncateToInt32(static_cast<double>(duration));
}

} // namespace vantoraudio::AudioEngine
