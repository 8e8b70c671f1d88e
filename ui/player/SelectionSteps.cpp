#include "ui/player/SelectionSteps.h"

#include <cmath>

namespace vantoraudio::vantorAudioEngine::UI {
namespace {

std::optional<double> If(bool isAllowed, double time)
{
    return isAllowed ? std::optional(time) : std::nullopt;
}

} // namespace

std::optional<double> StartMovedBack(const Selection& selection, double step)
{
    const double moved = selection.start - step;
    return If(moved >= 0.0, moved);
}

std::optional<double> StartMovedOn(const Selection& selection, double step)
{
    const double moved = selection.start + step;
    return If(selection.end > moved, moved);
}

std::optional<double> EndMovedBack(const Selection& selection, double step)
{
    const double moved = selection.end - step;
    return If(moved > selection.start, moved);
}

std::optional<double> EndMovedOn(const Selection& selection, double step, double duration)
{
    const double moved = selection.end + step;
    return If(moved <= duration, moved);
}

bool LiesInFile(double time, double duration)
{
    return 0.0 <= time && time <= duration;
}

double LengthOf(const Selection& selection)
{
    return std::abs(selection.start - selection.end);
}

} // namespace vantoraudio::vantorAudioEngine::UI
