#include "ui/waveform/WaveformVertices.h"

#include "engine/Truncation.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

namespace vantoraudio::vantorAudioEngine::UI {
namespace {

using AudioEngine::MultiplyWrapping;
using AudioEngine::TruncateToInt32;
using vantor3D::Vertex::Pos2f;

bool IsFinite(float value)
{
    return std::abs(value) <= std::numeric_limits<float>::max();
}

/** The product is taken in double precision, which is exact for it and, unlike 64-bit integers, vectorised. */
float VertexTime(std::size_t index, double stepSize, float sampleRate)
{
    return static_cast<float>(static_cast<double>(static_cast<std::int32_t>(index)) * stepSize) / sampleRate;
}

} // namespace

double AmplitudeExtent(std::span<const float> samples)
{
    float peak = 0.0F;
    for (const float sample : samples) {
        const float magnitude = std::abs(sample);
        peak = magnitude > peak && magnitude <= std::numeric_limits<float>::max() ? magnitude : peak;
    }
    return std::max(1.0, std::trunc(static_cast<double>(peak)));
}

std::int32_t VertexCount(std::size_t sampleCount, double delay, int sampleRate)
{
    // One vertex per sample of silence, even where the audio's own vertices stand for many samples each: the
    // silence is then deliberately longer than the delay, and the requests for samples reckon with that end.
    const auto silent = static_cast<std::size_t>(std::max(0, TruncateToInt32(sampleRate * delay)));
    constexpr std::size_t most = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::min(sampleCount + silent, most));
}

std::vector<Pos2f> BuildVertices(std::span<const float> samples, std::int32_t vertexCount,
                                 const SampleSpacing& spacing)
{
    const bool hasTimes = spacing.sampleRate > 0;
    const double step = hasTimes ? spacing.stepSize : 0.0;
    const float rate = hasTimes ? static_cast<float>(spacing.sampleRate) : 1.0F;
    const auto end = static_cast<std::size_t>(vertexCount);
    const std::size_t silent = end > samples.size() ? end - samples.size() : 0;

    std::vector<Pos2f> vertices(samples.size() + std::min<std::size_t>(silent, 2));
    for (std::size_t i = 0; i < samples.size(); ++i) {
        vertices[i] = {.x = VertexTime(i, step, rate), .y = IsFinite(samples[i]) ? samples[i] : 0.0F};
    }
    if (silent > 0) {
        vertices[samples.size()].x = VertexTime(samples.size(), step, rate);
        vertices.back().x = VertexTime(end - 1, step, rate);
    }
    return vertices;
}

VertexRange VisibleVertices(std::span<const Pos2f> vertices, float left, float right)
{
    const auto [low, high] = std::minmax(left, right);
    const auto begin = std::ranges::lower_bound(vertices, low, {}, &Pos2f::x);
    const auto end = std::ranges::upper_bound(begin, vertices.end(), high, {}, &Pos2f::x);
    const auto first = std::max<std::ptrdiff_t>(begin - vertices.begin() - 1, 0);
    const auto last = std::min<std::ptrdiff_t>(end - vertices.begin() + 1, std::ssize(vertices));
    constexpr std::ptrdiff_t most = std::numeric_limits<std::uint32_t>::max();
    return {.first = static_cast<std::uint32_t>(std::min(first, most)),
            .count = static_cast<std::uint32_t>(std::min(last - first, most))};
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
