#pragma once

#include <QtCore/QRectF>

/** Where a time stands in the visible range, and what a range means for sample request and scroll bar. */
namespace vantoraudio::vantorAudioEngine::UI {

/** A stretch of the time axis, in seconds. */
struct ViewRange
{
    double left = 0.0;
    double width = 0.0;

    [[nodiscard]] double Right() const { return left + width; }
};

[[nodiscard]] ViewRange HorizontalRange(const QRectF& sceneRect);

/** `value` kept between `low` and `high`; not-a-number becomes `low`, and `high` wins where the bounds are
 * inverted. */
[[nodiscard]] double ClampTime(double value, double low, double high);

/** The time under the centre of pixel column `x` of a widget `widgetWidth` pixels wide; the left edge's time where
 *  there is no width. */
[[nodiscard]] double TimeAtPixel(const ViewRange& view, double x, int widgetWidth);

/** The pixel position of `time`; infinite or not-a-number in a view without width. */
[[nodiscard]] double PixelAtTime(const ViewRange& view, double time, int widgetWidth);

/**
 * How many samples of the file one vertex stands for when `span` seconds are shown `widgetWidth` pixels wide: 1
 * below 300 seconds, otherwise such that about a thousand vertices share a pixel column. At least 1. A widget
 * without width counts as one pixel wide.
 */
[[nodiscard]] int StepSizeForSpan(double span, int sampleRate, int widgetWidth);

/** A horizontal scroll bar's settings in milliseconds, each within the range of an int. */
struct ScrollBarState
{
    int maximum = 0;
    int pageStep = 0;
    int value = 0;

    friend bool operator==(const ScrollBarState&, const ScrollBarState&) = default;
};

[[nodiscard]] ScrollBarState ScrollBarFor(const ViewRange& view, double totalLength);

} // namespace vantoraudio::vantorAudioEngine::UI
