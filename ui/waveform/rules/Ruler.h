#pragma once

#include "ui/waveform/rules/ViewRange.h"

#include <QtCore/QString>

#include <cstdint>
#include <vector>

/** The times at which grid lines and ruler ticks stand, and which of the ticks' labels find room. */
namespace vantoraudio::vantorAudioEngine::UI {

/** How far the marker of the position reaches above the diagram, in pixels. */
inline constexpr int PositionMarkerReach = 12;

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

/** The text beside the amplitude axis that goes from minus to plus `extent`; label 0 is at the bottom, 1 in the
 *  middle, 2 at the top. */
[[nodiscard]] QString AmplitudeLabel(double extent, int label);

/** The place of a tick's label, in pixels. */
struct RulerLabel
{
    /** The tick's number, counted from the start of the audio. */
    std::int64_t step = 0;
    double left = 0.0;
    double width = 0.0;

    [[nodiscard]] double Right() const { return left + width; }
    friend bool operator==(const RulerLabel&, const RulerLabel&) = default;
};

/**
 * Those of the labels, which come in ascending order, that can stand between `left` and `right` with at least
 * `gap` pixels between each other.
 *
 * Where they are dense, only every second, fifth or tenth step keeps its label, so that the same labels stay while
 * the view is panned. One that would be cut off at an end moves inwards, and is left out if it has no room there.
 */
[[nodiscard]] std::vector<RulerLabel> LabelsThatFit(const std::vector<RulerLabel>& labels, double left,
                                                    double right, double gap);

} // namespace vantoraudio::vantorAudioEngine::UI
