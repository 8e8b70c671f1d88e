#pragma once

#include <optional>

/** What the buttons and fields beside the waveform make of a selection; all times are seconds. */
namespace vantoraudio::vantorAudioEngine::UI {

struct Selection
{
    double start = 0.0;
    double end = 0.0;

    friend bool operator==(const Selection&, const Selection&) = default;
};

[[nodiscard]] constexpr double SelectionStep(bool isCoarse)
{
    return isCoarse ? 1.0 : 0.01;
}

// A step that would cross a bound is dropped whole rather than cut, so that a coarse step never ends somewhere
// between the places that such steps lead to. These give the end's new place, or nothing.
[[nodiscard]] std::optional<double> StartMovedBack(const Selection& selection, double step);
[[nodiscard]] std::optional<double> StartMovedOn(const Selection& selection, double step);
[[nodiscard]] std::optional<double> EndMovedBack(const Selection& selection, double step);
[[nodiscard]] std::optional<double> EndMovedOn(const Selection& selection, double step, double duration);

/** Whether a typed time lies in a file of some duration, its ends included. */
[[nodiscard]] bool LiesInFile(double time, double duration);

/** A selection that is shorter than that counts as none. */
inline constexpr double shortestSelection = 1e-5;
[[nodiscard]] double LengthOf(const Selection& selection);

} // namespace vantoraudio::vantorAudioEngine::UI
