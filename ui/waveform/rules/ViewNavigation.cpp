#include "ui/waveform/rules/ViewNavigation.h"

#include "ui/waveform/rules/TimeScale.h"

#include <algorithm>
#include <cmath>

namespace vantoraudio::vantorAudioEngine::UI {
namespace {

constexpr double FinestUsefulScale = 0.01;
/** In seconds: what players play past the end of a selection before they notice, at four times the speed, too. */
constexpr double LongestOverrun = 0.5;
/** In seconds, and far more than edges that were computed differ by. */
constexpr double RoundingError = 1e-6;
/** No view is wide enough for more of them at once, and a float holds the factor. */
constexpr double MostNotches = 30.0;

/** Notches of a standard wheel; a pixel counts as a sixteenth of one. */
double Notches(double delta, bool inPixels)
{
    const double degrees = delta * 0.125;
    return inPixels ? degrees * 0.5 : degrees / 15.0;
}

} // namespace

double PannedLeft(const ViewRange& view, const WheelTurn& turn, double totalLength)
{
    const double notches = Notches(turn.x != 0.0 ? turn.x : turn.y, turn.inPixels);
    const double shift = view.width * -(notches / 30.0);
    double left = std::max(0.0, view.left + shift);
    left -= std::max(0.0, view.width + left - totalLength);
    return std::max(0.0, left);
}

double ScrolledByDrag(const ViewRange& view, int x, int widgetWidth, double totalLength)
{
    const double outside = x < 0 ? -double(x) : double(x) - widgetWidth + 1.0;
    const double share = std::clamp(outside / std::max(1, widgetWidth), 0.01, 0.1);
    const double left = view.left + (x < 0 ? -share : share) * view.width;
    return std::max(0.0, std::min(left, totalLength - view.width));
}

float ZoomFactor(const WheelTurn& turn, bool inverted, bool scrollBackToZoomOut, std::optional<double> perNotch)
{
    const double notches = Notches(turn.y, turn.inPixels);
    const double outward = inverted != scrollBackToZoomOut ? -notches : notches;
    if (perNotch) {
        return static_cast<float>(std::pow(*perNotch, std::clamp(outward, -MostNotches, MostNotches)));
    }
    return static_cast<float>(outward / 15.0 + 1.0);
}

std::optional<ViewEdges> ZoomedAround(const ViewRange& view, double anchor, float factor, double totalLength)
{
    const double scale = factor;
    const ViewEdges edges = {.left = std::max(0.0, anchor - (anchor - view.left) * scale),
                             .right = std::min(totalLength, anchor + (view.Right() - anchor) * scale)};
    const bool useful = edges.left < edges.right && CalculateScale(edges.right - edges.left) > FinestUsefulScale;
    return useful ? std::optional(edges) : std::nullopt;
}

std::optional<double> PageFor(const ViewRange& view, double position, double duration)
{
    if (!(position > view.Right())) {
        return std::nullopt;
    }
    return duration >= view.Right() + view.width ? view.Right() : duration - view.width;
}

std::optional<double> LeftThatShows(const ViewRange& view, double position, double duration)
{
    const bool isBehind = position > view.Right();
    if (!isBehind && !(position < view.left)) {
        return std::nullopt;
    }
    const bool isOnNextPage = isBehind && position <= view.Right() + view.width;
    const double left = isOnNextPage ? view.Right() : position - view.width * 0.5;
    const double limited = std::max(0.0, std::min(left, duration - view.width));
    return limited != view.left ? std::optional(limited) : std::nullopt;
}

bool IsOverrun(const SelectionTimes& selection, const ViewRange& view, double position)
{
    const bool shows =
        view.left <= selection.first + RoundingError && selection.second <= view.Right() + RoundingError;
    return shows && selection.second < position && position < selection.second + LongestOverrun;
}

} // namespace vantoraudio::vantorAudioEngine::UI
