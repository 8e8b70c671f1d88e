#include "ui/waveform/rules/SelectionRules.h"

#include <algorithm>
#include <cmath>

namespace vantoraudio::vantorAudioEngine::UI {
namespace {

constexpr double GrabDistance = 5.0;
constexpr double SameTime = 0.001;

} // namespace

Grab GrabAt(double pointerX, const ViewRange& view, int widgetWidth, const SelectionTimes& selection,
            bool bodyAnywhere)
{
    const auto isNear = [&](double time) {
        return std::abs(PixelAtTime(view, time, widgetWidth) - pointerX) <= GrabDistance;
    };
    Grab grab = {.startEdge = isNear(selection.first), .endEdge = isNear(selection.second), .body = false};
    const bool isInside = PixelAtTime(view, selection.first, widgetWidth) < pointerX &&
                          pointerX < PixelAtTime(view, selection.second, widgetWidth);
    grab.body = !grab.AnyEdge() && (isNear(MiddleOf(selection)) || (bodyAnywhere && isInside));
    return grab;
}

double MiddleOf(const SelectionTimes& selection)
{
    return selection.first + std::abs(selection.second - selection.first) * 0.5;
}

SelectionTimes Ordered(double a, double b)
{
    return {std::min(a, b), std::max(a, b)};
}

SelectionTimes MovedTo(const SelectionTimes& selection, double middle)
{
    const double half = std::abs(selection.second - selection.first) * 0.5;
    return Ordered(middle - half, middle + half);
}

SelectionTimes MovedInto(const SelectionTimes& selection, const ViewRange& bounds)
{
    const double length = selection.second - selection.first;
    const double start = ClampTime(selection.first, bounds.left, std::max(bounds.left, bounds.Right() - length));
    return {start, std::min(start + length, bounds.Right())};
}

SelectionTimes LimitSelection(const SelectionTimes& candidate, const ViewRange& bounds, double longest)
{
    const double end = std::min(candidate.first + longest, candidate.second);
    return Ordered(ClampTime(candidate.first, bounds.left, bounds.Right()),
                   ClampTime(end, bounds.left, bounds.Right()));
}

SelectionTimes Finite(const SelectionTimes& times)
{
    return Ordered(std::isfinite(times.first) ? times.first : 0.0,
                   std::isfinite(times.second) ? times.second : 0.0);
}

bool IsSameSelection(const SelectionTimes& a, const SelectionTimes& b)
{
    return std::abs(a.first - b.first) < SameTime && std::abs(a.second - b.second) < SameTime;
}

} // namespace vantoraudio::vantorAudioEngine::UI
