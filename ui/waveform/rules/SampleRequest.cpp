#include "ui/waveform/rules/SampleRequest.h"

#include <algorithm>
#include <cmath>

namespace vantoraudio::vantorAudioEngine::UI {
namespace {

constexpr double TouchingEdge = 0.001;

SampleRequest SamplesAround(const ViewRange& view, double totalLength)
{
    const double margin = view.width * 0.5;
    return {.start = std::max(0.0, view.left - margin), .end = std::min(totalLength, view.Right() + margin)};
}

} // namespace

std::optional<SampleRequest> RequestFor(const ViewRange& view, const BufferedRange& buffer, double totalLength)
{
    SampleRequest request = SamplesAround(view, totalLength);
    const bool isCovered = !(request.start - buffer.start > view.width * 0.5 || buffer.start > view.left ||
                             view.Right() > buffer.end);
    if (isCovered) {
        return std::nullopt;
    }
    request.end = std::max(buffer.start, request.end);
    const double nearestEdge = std::min(std::abs(view.Right() - request.end), std::abs(view.left - request.start));
    request.isSent = nearestEdge > TouchingEdge;
    return request;
}

SampleRequest FillingRequestFor(const ViewRange& view, double totalLength)
{
    SampleRequest request = SamplesAround(view, totalLength);
    request.isSent = request.start < request.end && std::isfinite(request.end);
    return request;
}

} // namespace vantoraudio::vantorAudioEngine::UI
