#pragma once

#include "render/vantor3D/Vertex.h"

#include <QtCore/QList>

#include <cstddef>
#include <cstdint>
#include <limits>

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
 *  more. */
[[nodiscard]] double AmplitudeExtent(float peak);

/** How many vertices stand for some samples and `delay` seconds of silence behind them; at most what an int holds.
 */
[[nodiscard]] std::int32_t VertexCount(std::size_t sampleCount, double delay, int sampleRate);

/** The height at which a sample is drawn: samples that are infinite or not-a-number count as silence. */
[[nodiscard]] inline float DrawnLevel(float sample)
{
    constexpr float largest = std::numeric_limits<float>::max();
    return sample >= -largest && sample <= largest ? sample : 0.0F;
}

/**
 * The waveform's line strip: one vertex a sample, then silence up to `vertexCount`; x in seconds from the first
 * vertex, in ascending order. Silence is a straight line, so only the first and the last of its vertices exist: a
 * long delay costs nothing.
 *
 * Vertices are made when they are asked for. The samples are shared with whoever supplied them, so that the strip
 * itself takes no memory, however long it is.
 */
class WaveformStrip
{
public:
    WaveformStrip() = default;
    WaveformStrip(const QList<float>& samples, std::int32_t vertexCount, const SampleSpacing& spacing);

    [[nodiscard]] std::size_t Size() const { return SampleCount() + m_silentCount; }
    [[nodiscard]] bool IsEmpty() const { return Size() == 0; }
    /** `index` is below Size(). */
    [[nodiscard]] vantor3D::Vertex::Pos2f operator[](std::size_t index) const;
    [[nodiscard]] float TimeAt(std::size_t index) const;

    /** What the first vertices stand for. */
    [[nodiscard]] const QList<float>& Samples() const { return m_samples; }
    [[nodiscard]] std::size_t SampleCount() const { return static_cast<std::size_t>(m_samples.size()); }

private:
    QList<float> m_samples;
    std::size_t m_silentCount = 0;
    std::size_t m_lastSilent = 0;
    double m_step = 0.0;
    float m_rate = 1.0F;
};

/** The first number from `low` on for which `holds` is false, at most `high`. For numbers as
 * std::partition_point() is for elements: once false, it must stay false. */
template<typename Predicate>
[[nodiscard]] std::size_t PartitionPoint(std::size_t low, std::size_t high, Predicate holds)
{
    while (low < high) {
        const std::size_t middle = low + (high - low) / 2;
        if (holds(middle)) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    return low;
}

/** Neighbours in a strip. */
struct VertexRange
{
    std::size_t first = 0;
    std::size_t count = 0;

    friend bool operator==(const VertexRange&, const VertexRange&) = default;
};

/**
 * The vertices between two times, edges included, and one more on both sides: lines lead there from the edges.
 * `left` and `right` come in either order.
 *
 * They are searched for, not computed from the spacing: x is rounded to single precision, which late in a
 * long file is many vertices off.
 */
[[nodiscard]] VertexRange VisibleVertices(const WaveformStrip& strip, float left, float right);

/** The length in seconds that `vertexCount` vertices stand for. */
[[nodiscard]] double BufferLength(std::int32_t vertexCount, const SampleSpacing& spacing);

} // namespace vantoraudio::vantorAudioEngine::UI
