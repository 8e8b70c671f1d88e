#pragma once

#include "ui/waveform/rules/ViewRange.h"

#include <vector>

/** The times at which grid lines and ruler ticks stand. */
namespace vantoraudio::vantorAudioEngine::UI {

/** The time axis that grid and ruler divide into steps, in seconds. */
struct TimeAxis
{
    ViewRange view;
    /** Time of the first vertex of the samples at hand; no step stands before the one that it falls into. */
    double bufferStart = 0.0;
    /** Steps end before this time. */
    double totalLength = 0.0;
};

/** The visible multiples of `scale`; none for a scale of 0. */
[[nodiscard]] std::vector<double> RulerTimes(const TimeAxis& axis, double scale);

/** The visible multiples of `scale`, relative to the axis' buffer start. */
[[nodiscard]] std::vector<double> GridOffsets(const TimeAxis& axis, double scale);

} // namespace vantoraudio::vantorAudioEngine::UI
