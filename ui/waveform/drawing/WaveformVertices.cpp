#include "ui/waveform/drawing/WaveformVertices.h"

#include "engine/samples/Truncation.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

namespace vantoraudio::vantorAudioEngine::UI {
namespace {

using AudioEngine::MultiplyWrapping;
using AudioEngine::TruncateToInt32;
using vantor3D::Vertex::Pos2f;

} // namespace

double AmplitudeExtent(float peak)
{
    return std::max(1.0, std::trunc(static_cast<double>(peak)));
}

std::int32_t VertexCount(std::size_t sampleCount, double delay, int sampleRate)
{
    // One vertex per sample of silence, even where the audio's own vertices stand for many samples each: the
    // silence is then deliberately longer than the delay, and the requests for samples count on that end.
    const auto silent = static_cast<std::size_t>(std::max(0, TruncateToInt32(sampleRate * delay)));
    constexpr std::size_t most = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::min(sampleCount + silent, most));
}

WaveformStrip::WaveformStrip(const QList<float>& samples, std::int32_t vertexCount, const SampleSpacing& spacing)
    : m_samples(samples)
{
    const auto end = static_cast<std::size_t>(vertexCount);
    if (end > SampleCount()) {
        m_silentCount = std::min<std::size_t>(end - SampleCount(), 2);
        m_lastSilent = end - 1;
    }
    if (spacing.sampleRate > 0) {
        m_step = spacing.stepSize;
        m_rate = static_cast<float>(spacing.sampleRate);
    }
}

Pos2f WaveformStrip::operator[](std::size_t index) const
{
    const bool isSilent = index >= SampleCount();
    return {.x = TimeAt(index), .y = isSilent ? 0.0F : DrawnLevel(m_samples[static_cast<qsizetype>(index)])};
}

float WaveformStrip::TimeAt(std::size_t index) const
{
    const std::size_t sample = index > SampleCount() ? m_lastSilent : index;
    // In double precision the product is exact.
    return static_cast<float>(static_cast<double>(static_cast<std::int32_t>(sample)) * m_step) / m_rate;
}

VertexRange VisibleVertices(const WaveformStrip& strip, float left, float right)
{
    const float low = std::min(left, right);
    const float high = std::max(left, right);
    const std::size_t begin =
        PartitionPoint(0, strip.Size(), [&](std::size_t i) { return strip.TimeAt(i) < low; });
    const std::size_t end =
        PartitionPoint(begin, strip.Size(), [&](std::size_t i) { return strip.TimeAt(i) <= high; });
    const std::size_t first = begin > 0 ? begin - 1 : 0;
    const std::size_t last = std::min(end + 1, strip.Size());
    return {.first = first, .count = last - first};
}

double BufferLength(std::int32_t vertexCount, const SampleSpacing& spacing)
{
    if (spacing.sampleRate <= 0) {
        return 0.0;
    }
    const auto samples = MultiplyWrapping(vertexCount, spacing.stepSize);
    return static_cast<double>(samples) / spacing.sampleRate;
}

} // namespace vantoraudio::vantorAudioEngine::UI
