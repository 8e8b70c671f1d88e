#pragma once

#include "ui/waveform/rules/ViewRange.h"

#include <utility>

/** What the pointer grabs of a selection, and which selections a drag and a limit allow. */
namespace vantoraudio::vantorAudioEngine::UI {

/** Start and end of a selection, in seconds. */
using SelectionTimes = std::pair<double, double>;

/** What of the selection lies under the pointer. Edges that stand close together are both grabbed. */
struct Grab
{
    bool startEdge = false;
    bool endEdge = false;
    bool body = false;

    [[nodiscard]] bool AnyEdge() const { return startEdge || endEdge; }
    [[nodiscard]] bool Any() const { return AnyEdge() || body; }
    friend bool operator==(const Grab&, const Grab&) = default;
};

/** Edges are grabbed within 5 pixels; the body only where no edge is, within 5 pixels of its middle, or anywhere
 *  inside the selection. */
[[nodiscard]] Grab GrabAt(double pointerX, const ViewRange& view, int widgetWidth, const SelectionTimes& selection,
                          bool bodyAnywhere = false);

/** The earlier time first. */
[[nodiscard]] SelectionTimes Ordered(double a, double b);

[[nodiscard]] double MiddleOf(const SelectionTimes& selection);

/** The selection moved, in its length, so that its middle is at `middle`. */
[[nodiscard]] SelectionTimes MovedTo(const SelectionTimes& selection, double middle);

/** The selection moved, in its length, so that it lies within `bounds`; one that is longer begins where they do.
 */
[[nodiscard]] SelectionTimes MovedInto(const SelectionTimes& selection, const ViewRange& bounds);

/** The candidate cut to `longest` seconds, then to `bounds`. */
[[nodiscard]] SelectionTimes LimitSelection(const SelectionTimes& candidate, const ViewRange& bounds,
                                            double longest);

/** The times with 0 in place of those that are infinite or not-a-number, as a view of no sensible length makes
 * them.
 */
[[nodiscard]] SelectionTimes Finite(const SelectionTimes& times);

/** True when both ends lie within a millisecond of each other. */
[[nodiscard]] bool IsSameSelection(const SelectionTimes& a, const SelectionTimes& b);

} // namespace vantoraudio::vantorAudioEngine::UI
