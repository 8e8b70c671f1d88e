#pragma once

#include "ui/waveform/rules/SelectionRules.h"
#include "ui/waveform/rules/ViewRange.h"

#include <optional>

/** How a turn of the wheel moves and zooms the visible range. */
namespace vantoraudio::vantorAudioEngine::UI {

/** What one wheel event reports: pixels from a touch pad, eighths of a degree from a wheel. */
struct WheelTurn
{
    double x = 0.0;
    double y = 0.0;
    bool inPixels = false;
};

/** The left edge after panning: a standard notch moves by a thirtieth of the view, forward toward the start; never
 *  before 0, and not past the point where the view ends with the audio. */
[[nodiscard]] double PannedLeft(const ViewRange& view, const WheelTurn& turn, double totalLength);

/** The left edge after a step of scrolling while a drag holds the pointer at column `x` outside a widget of this
 *  width: the farther away, the faster, from a hundredth to a tenth of the view; never out of 0 to `totalLength`.
 */
[[nodiscard]] double ScrolledByDrag(const ViewRange& view, int x, int widgetWidth, double totalLength);

/**
 * The factor by which the view's width changes. Turning forward (away from the user) zooms in when exactly one of
 * `inverted` (the system's reversed scrolling) and `scrollBackToZoomOut` holds. A notch that zooms out multiplies
 * by `perNotch`, which is above 1 and at most 10; without it a notch adds or takes a fifteenth.
 */
[[nodiscard]] float ZoomFactor(const WheelTurn& turn, bool inverted, bool scrollBackToZoomOut,
                               std::optional<double> perNotch = std::nullopt);

struct ViewEdges
{
    double left = 0.0;
    double right = 0.0;
};

/** The edges after zooming around the time `anchor`, within 0 and `totalLength`. Empty when the zoom is refused:
 *  nothing would remain, or the grid's step would reach 0.01 seconds. */
[[nodiscard]] std::optional<ViewEdges> ZoomedAround(const ViewRange& view, double anchor, float factor,
                                                    double totalLength);

/** The left edge that a view needs in order to show the playback position; empty where it does already or shows a
 *  later time. Turns a whole page while `duration` leaves one, otherwise shows the end of the audio. */
[[nodiscard]] std::optional<double> PageFor(const ViewRange& view, double position, double duration);

/** The same for views that show any position at once: a page on where that suffices, otherwise the position in the
 *  middle, within the audio. Empty where nothing has to move. */
[[nodiscard]] std::optional<double> LeftThatShows(const ViewRange& view, double position, double duration);

/** The view shows the whole selection, and the position has just left it at its end: players notice that a moment
 *  later, and return to its start. */
[[nodiscard]] bool IsOverrun(const SelectionTimes& selection, const ViewRange& view, double position);

} // namespace vantoraudio::vantorAudioEngine::UI
