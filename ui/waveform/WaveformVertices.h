#pragma once

#include "render/vantor3D/Vertex.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

/** What the samples of the audio become on the time and amplitude axes. */
namespace vantoraudio::vantorAudioEngine::UI {

/** The times at which samples stand. */
struct SampleSpacing
{
    /** Samples of the file per vertex, at least 1. */
    int stepSize = 1;
    /** Hertz; without a rate above 0 there is no time axis and every time is 0. */
    int sampleRate = 0;
};

/** Half the height of the drawn amplitude range: 1.0, or the whole part of the greatest magnitude when that is
 *  more. Samples that are infinite or not-a-number do not count. */
[[nodiscard]] double AmplitudeExtent(std::span<const float> samples);

/** How many vertices stand for some samples and `delay` seconds of silence behind them; at most what an int holds.
 */
[[nodiscard]] std::int32_t VertexCount(std::size_t sampleCount, double delay, int sampleRate);

/**
 * One vertex a sample, then silence up to `vertexCount`; x in seconds from the first vertex. Samples that are
 * infinite or not-a-number are drawn as silence. Silence is a straight line, so only the first and the last of its
 * vertices are made: a long delay costs nothing.
 */
[[nodiscard]] std::vector<vantor3D::Vertex::Pos2f>
BuildVertices(std::span<const float> samples, std::int32_t vertexCount, const SampleSpacing& spacing);

/** Neighbours in a strip. */
struct VertexRange
{
    std::uint32_t first = 0;
    std::uint32_t count = 0;

    friend bool operator==(const VertexRange&, const VertexRange&) = default;
};

/**
 * The vertices between two times, edges included, and one more on both sides: lines lead there from the edges.
 * `vertices` stand in ascending x; `left` and `right` come in either order.
 *
 * They are searched for rather than reckoned from the spacing: x is rounded to single precision, which late in a
 * long file is many vertices off. A frame so costs what is visible, whatever the strip's length.
 */
[[nodiscard]] VertexRange VisibleVertices(std::span<const vantor3D::Vertex::Pos2f> vertices, float left,
                                          float right);

/** The length in seconds that `vertexCount` vertices stand for. */
[[nodiscard]] double BufferLength(std::int32_t vertexCount, const SampleSpacing& spacing);

} // namespace vantoraudio::vantorAudioEngine::UI
