#include "ui/waveform/rules/Ruler.h"

#include "engine/samples/Truncation.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iterator>

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

bool AreApart(const RulerLabel& a, const RulerLabel& b, double gap)
{
    return a.Right() + gap <= b.left || b.Right() + gap <= a.left;
}

bool AreAllApart(const std::vector<RulerLabel>& labels, double gap)
{
    const auto touch = [gap](const RulerLabel& a, const RulerLabel& b) { return !AreApart(a, b, gap); };
    return std::adjacent_find(labels.begin(), labels.end(), touch) == labels.end();
}

std::vector<RulerLabel> OnMultiplesOf(std::int64_t steps, const std::vector<RulerLabel>& labels)
{
    std::vector<RulerLabel> found;
    std::copy_if(labels.begin(), labels.end(), std::back_inserter(found),
                 [steps](const RulerLabel& label) { return label.step % steps == 0; });
    return found;
}

/** So many that they do not touch. A view too small for its labels may show no multiple of ten steps: then it
 *  keeps the first label. */
std::vector<RulerLabel> SparseEnough(const std::vector<RulerLabel>& labels, double gap)
{
    for (const std::int64_t steps : {1, 2, 5, 10}) {
        auto found = OnMultiplesOf(steps, labels);
        if (!found.empty() && AreAllApart(found, gap)) {
            return found;
        }
    }
    return {labels.begin(), labels.begin() + std::min<std::ptrdiff_t>(1, std::ssize(labels))};
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

QString AmplitudeLabel(double extent, int label)
{
    return QStringLiteral("%1 ").arg(extent * (label - 1), 0, 'g', -1, u' ');
}

std::vector<RulerLabel> LabelsThatFit(const std::vector<RulerLabel>& labels, double left, double right, double gap)
{
    const auto isInside = [&](const RulerLabel& label) { return left <= label.left && label.Right() <= right; };
    std::vector<RulerLabel> fitting;
    std::vector<RulerLabel> moved;
    for (RulerLabel label : SparseEnough(labels, gap)) {
        if (isInside(label)) {
            fitting.push_back(label);
        } else {
            label.left = std::max(left, std::min(label.left, right - label.width));
            moved.push_back(label);
        }
    }
    // Labels at their ticks come first: one that moved can only take what room they leave.
    for (const RulerLabel& label : moved) {
        const auto isApart = [&](const RulerLabel& other) { return AreApart(label, other, gap); };
        if (isInside(label) && std::all_of(fitting.begin(), fitting.end(), isApart)) {
            fitting.push_back(label);
        }
    }
    std::sort(fitting.begin(), fitting.end(),
              [](const RulerLabel& a, const RulerLabel& b) { return a.left < b.left; });
    return fitting;
}

} // namespace vantoraudio::vantorAudioEngine::UI
