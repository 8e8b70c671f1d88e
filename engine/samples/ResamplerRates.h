#pragma once

#include <algorithm>
#include <numeric>

namespace vantoraudio::AudioEngine {

/**
 * Whether FFmpeg's resampler may lower one rate to the other, both in Hz. Its filter grows with the ratio by which
 * the rate falls: from 1.9 GHz to 192 kHz it takes gigabytes and most of a minute. Refused is what takes more than
 * some 32 MB, which no ratio below 200 does. Rates that are not above 0 are left to FFmpeg, which refuses them.
 */
[[nodiscard]] inline bool CanFall(int sourceRate, int targetRate)
{
    if (sourceRate < 1 || targetRate < 1) {
        return true;
    }
    constexpr double mostCoefficients = 1 << 23;
    constexpr int mostPhases = 1024;
    constexpr double tapsOfEqualRates = 32.0;
    constexpr double passedPart = 0.97;
    const double taps = tapsOfEqualRates * std::max(1.0, double(sourceRate) / (double(targetRate) * passedPart));
    const int phases = std::min(mostPhases, targetRate / std::gcd(sourceRate, targetRate));
    return taps * phases <= mostCoefficients;
}

/**
 * Whether FFmpeg's resampler may raise one rate to the other. The resampler holds back some tens of source frames,
 * for which it makes room several times over: from 1 Hz to 768 kHz that takes a gigabyte, to 192 kHz a third of
 * one.
 */
[[nodiscard]] inline bool CanRise(int sourceRate, int targetRate)
{
    constexpr double steepestRise = 200000.0;
    return sourceRate < 1 || targetRate <= steepestRise * sourceRate;
}

[[nodiscard]] inline bool CanBeResampled(int sourceRate, int targetRate)
{
    return CanFall(sourceRate, targetRate) && CanRise(sourceRate, targetRate);
}

} // namespace vantoraudio::AudioEngine
