#pragma once

#include "ui/waveform/drawing/SampleExtremes.h"
#include "ui/waveform/drawing/WaveformVertices.h"

#include <optional>

namespace vantoraudio::vantorAudioEngine::UI {

/** How low and how high a stretch of the waveform goes. */
struct LevelRange
{
    float low = 0.0F;
    float high = 0.0F;

    friend bool operator==(const LevelRange&, const LevelRange&) = default;
};

/**
 * The levels of the vertices from `left` on and before `right`, in seconds from the first vertex; where there are
 * none, the height of the line through the middle. Empty where the strip does not reach, and for times that are
 * not numbers or in the wrong order. `extremes` are those of the strip's samples.
 */
[[nodiscard]] std::optional<LevelRange> LevelsWithin(const WaveformStrip& strip, const SampleExtremes& extremes,
                                                     float left, float right);

} // namespace vantoraudio::vantorAudioEngine::UI
