#pragma once

#include "ui/waveform/rules/ViewRange.h"

#include <utility>

/** What the pointer grabs of a selection, and which selections a drag and a limit allow. */
namespace vantoraudio::vantorAudioEngine::UI {

/** Start and end of a selection, in seconds. */
using Snippet = std::pair<double, double>;

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

/** Edges are grabbed within 5 pixels; the body only where no edge is, within 5 pixels of its middle. */
[[nodiscard]] Grab GrabAt(double pointerX, const ViewRange& view, int widgetWidth, const Snippet& selection);

/** The earlier time first. */
[[nodiscard]] Snippet Ordered(double a, double b);

/** The selection moved, in its length, so that its middle is at `middle`. */
[[nodiscard]] Snippet MovedTo(const Snippet& selection, double middle);

/** The candidate cut to `longest` seconds, then to the visible range. */
[[nodiscard]] Snippet LimitSnippet(const Snippet& candidate, const ViewRange& view, double longest);

/** True when both ends lie within a millisecond of each other. */
[[nodiscard]] bool IsSameSnippet(const Snippet& a, const Snippet& b);

} // namespace vantoraudio::vantorAudioEngine::UI
