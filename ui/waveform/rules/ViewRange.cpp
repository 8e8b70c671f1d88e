#include "ui/waveform/rules/ViewRange.h"

#include "engine/samples/Truncation.h"

#include <algorithm>
#include <limits>

namespace vantoraudio::vantorAudioEngine::UI {
namespace {

using AudioEngine::MultiplyWrapping;
using AudioEngine::TruncateToInt32;

/** Shorter views ask for every sample. */
constexpr double DecimatedSpan = 300.0;
constexpr int VerticesPerPixelColumn = 1000;

/** Sliders negate what they are given, which the lowest int cannot bear. */
int Milliseconds(double seconds)
{
    return std::max(TruncateToInt32(seconds * 1000.0), -std::numeric_limits<int>::max());
}

} // namespace

ViewRange HorizontalRange(const QRectF& sceneRect)
{
    return {.left = sceneRect.x(), .width = sceneRect.width()};
}

double ClampTime(double value, double low, double high)
{
    return std::min(high, std::max(low, value));
}

double TimeAtPixel(const ViewRange& view, double x, int widgetWidth)
{
    return widgetWidth > 0 ? view.left + view.width * (x + 0.5) / widgetWidth : view.left;
}

double PixelAtTime(const ViewRange& view, double time, int widgetWidth)
{
    return (time - view.left) / view.width * widgetWidth;
}

int StepSizeForSpan(double span, int sampleRate, int widgetWidth)
{
    if (span < DecimatedSpan) {
        return 1;
    }
    const int samples = TruncateToInt32(sampleRate * span);
    const int vertices = MultiplyWrapping(std::max(widgetWidth, 1), VerticesPerPixelColumn);
    return vertices > 0 ? std::max(1, samples / vertices) : 1;
}

ScrollBarState ScrollBarFor(const ViewRange& view, double totalLength)
{
    return {.maximum = Milliseconds(totalLength - view.width),
            .pageStep = Milliseconds(view.width),
            .value = Milliseconds(view.left)};
}

} // namespace vantoraudio::vantorAudioEngine::UI
