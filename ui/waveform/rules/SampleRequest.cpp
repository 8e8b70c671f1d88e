#include "ui/waveform/rules/SampleRequest.h"

#include <algorithm>
#include <cmath>

namespace vantoraudio::vantorAudioEngine::UI {
namespace {

constexpr double TouchingEdge = 0.001;

} // namespace

std::optional<SampleRequest> RequestFor(const ViewRange& view, const BufferedRange& buffer, double totalLength)
{
    const double margin = view.width * 0.5;
    const double start = std::max(0.0, view.left - margin);
    const bool isCovered =
        !(start - buffer.start > margin || buffer.start > view.left || view.Right() > buffer.end);
    if (isCovered) {
        return std::nullopt;
    }
    const double end = std::max(buffer.start, std::min(totalLength, view.Right() + margin));
    const double nearestEdge = std::min(std::abs(view.Right() - end), std::abs(view.left - start));
    return SampleRequest{.start = start, .end = end, .isSent = nearestEdge > TouchingEdge};
}

} // namespace vantoraudio::vantorAudioEngine::UI
