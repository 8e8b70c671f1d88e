#pragma once

#include "ui/waveform/rules/ViewRange.h"

#include <optional>

/** When the view needs other samples than it holds, and which. */
namespace vantoraudio::vantorAudioEngine::UI {

/** The stretch of time that the vertices at hand stand for, in seconds. */
struct BufferedRange
{
    double start = 0.0;
    double end = 0.0;
};

struct SampleRequest
{
    double start = 0.0;
    double end = 0.0;
    /** False for a request that is only remembered, see RequestFor(). */
    bool isSent = false;
};

/**
 * The samples to ask for, half a view more on both sides; empty while the buffer covers the view.
 *
 * A request that touches an edge of the view within a millisecond is not sent: at the start and at the end of the
 * audio the buffer keeps the resolution it has.
 */
[[nodiscard]] std::optional<SampleRequest> RequestFor(const ViewRange& view, const BufferedRange& buffer,
                                                      double totalLength);

/** The samples to ask for where the view is to be filled everywhere, whatever the buffer covers. Sent unless there
 *  is nothing to ask for. */
[[nodiscard]] SampleRequest FillingRequestFor(const ViewRange& view, double totalLength);

} // namespace vantoraudio::vantorAudioEngine::UI
