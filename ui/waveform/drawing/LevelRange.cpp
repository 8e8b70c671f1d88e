#include "ui/waveform/drawing/LevelRange.h"

#include <algorithm>

namespace vantoraudio::vantorAudioEngine::UI {
namespace {

/** The height at `time` of the line that leads to the vertex `next`, which begins before that time. */
float LineTo(const WaveformStrip& strip, std::size_t next, double time)
{
    const auto from = strip[next - 1];
    const auto to = strip[next];
    const double share = (time - double(from.x)) / (double(to.x) - double(from.x));
    return static_cast<float>(double(from.y) + (double(to.y) - double(from.y)) * share);
}

} // namespace

std::optional<LevelRange> LevelsWithin(const WaveformStrip& strip, const SampleExtremes& extremes, float left,
                                       float right)
{
    if (!(left <= right)) {
        return std::nullopt;
    }
    const std::size_t size = strip.Size();
    const std::size_t first = PartitionPoint(0, size, [&](std::size_t i) { return strip.TimeAt(i) < left; });
    const std::size_t last = PartitionPoint(first, size, [&](std::size_t i) { return strip.TimeAt(i) < right; });
    if (first == last) {
        if (first == 0 || first == size) {
            return std::nullopt;
        }
        const float level = LineTo(strip, first, (double(left) + double(right)) / 2.0);
        return LevelRange{.low = level, .high = level};
    }
    const std::size_t samples = strip.SampleCount();
    if (first >= samples) {
        return LevelRange{};
    }
    const Extremes found = extremes.Within(strip.Samples(), first, std::min(last, samples));
    const bool endsInSilence = last > samples;
    return LevelRange{.low = endsInSilence ? std::min(found.low, 0.0F) : found.low,
                      .high = endsInSilence ? std::max(found.high, 0.0F) : found.high};
}

} // namespace vantoraudio::vantorAudioEngine::UI
