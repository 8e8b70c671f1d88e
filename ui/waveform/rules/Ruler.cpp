#include "ui/waveform/rules/Ruler.h"

#include "engine/samples/Truncation.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace vantoraudio::vantorAudioEngine::UI {
namespace {

using AudioEngine::TruncateToInt32;
using AudioEngine::TruncateToInt64;

/** A view holds at most ten steps and one on its edge; one more on both sides lets rounding decide at the edges.
 */
constexpr int MostCandidates = 14;
/** From here on a double does not count single steps any more. */
constexpr double LastCountableStep = 9007199254740992.0;

/** Calls visit(i × scale) for the steps in and just beside the view: the audio's length costs nothing. */
template<typename Visit>
void ForEachStepNearView(const TimeAxis& axis, double scale, Visit visit)
{
    const double firstInView = axis.view.left / scale;
    if (!(scale > 0.0) || !(std::abs(firstInView) < LastCountableStep)) {
        return;
    }
    const std::int64_t firstOfBuffer = TruncateToInt32(axis.bufferStart / scale);
    const std::int64_t first = std::max(firstOfBuffer, TruncateToInt64(firstInView) - 1);
    const double steps = axis.totalLength / scale;
    for (std::int64_t i = first; i < first + MostCandidates && steps > static_cast<double>(i); ++i) {
        visit(scale * static_cast<double>(i));
    }
}

} // namespace

std::vector<double> RulerTimes(const TimeAxis& axis, double scale)
{
    std::vector<double> times;
    ForEachStepNearView(axis, scale, [&](double time) {
        if (axis.view.left <= time && time <= axis.view.Right()) {
            times.push_back(time);
        }
    });
    return times;
}

std::vector<double> GridOffsets(const TimeAxis& axis, double scale)
{
    const double left = axis.view.left - axis.bufferStart;
    const double right = axis.view.Right() - axis.bufferStart;
    std::vector<double> offsets;
    ForEachStepNearView(axis, scale, [&](double time) {
        if (const double x = time - axis.bufferStart; left <= x && x <= right) {
            offsets.push_back(x);
        }
    });
    return offsets;
}

} // namespace vantoraudio::vantorAudioEngine::UI
