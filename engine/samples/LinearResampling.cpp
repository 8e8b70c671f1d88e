#include "engine/samples/LinearResampling.h"

#include "engine/samples/Truncation.h"

#include <algorithm>
#include <array>
#include <limits>
#include <type_traits>

namespace vantoraudio::AudioEngine {

namespace {

template<typename Sample>
QByteArray Bytes(std::span<const Sample> samples)
{
    return {reinterpret_cast<const char*>(samples.data()), static_cast<qsizetype>(samples.size_bytes())};
}

template<typename Sample>
int FrameCount(const SampleBuffer<Sample>& buffer)
{
    return buffer.channelCount < 1 ? 0 : static_cast<int>(buffer.samples.size()) / buffer.channelCount;
}

int TargetFrameCount(int frames, int rate, int targetRate)
{
    return frames < 1 || rate < 1 ? 0 : MultiplyWrapping(frames, targetRate) / rate;
}

/** A value between two samples. It never leaves the range of their type, so the conversion is safe. */
template<typename Sample>
Sample Between(Sample first, Sample second, double fraction)
{
    return static_cast<Sample>(first * (1.0 - fraction) + second * fraction);
}

/** Where some successive target frames lie between the frames of a buffer. */
struct Positions
{
    static constexpr int Most = 256;

    /** Found before they are used, and in two arrays, so that the compiler can vectorise the loop. */
    void Find(int first, std::size_t count, int frames, int targetFrames)
    {
        for (std::size_t i = 0; i < count; ++i) {
            const double position = static_cast<double>(first + static_cast<int>(i)) * frames / targetFrames;
            indices[i] = static_cast<int>(position);
            fractions[i] = position - indices[i];
        }
    }

    std::array<int, Most> indices{};
    std::array<double, Most> fractions{};
};

/** The compiler inlines it where the channel count is a constant. */
template<typename Sample>
inline Sample* InterpolateFrames(const Sample* samples, int channels, const Positions& positions,
                                 std::size_t count, Sample* out)
{
    for (std::size_t i = 0; i < count; ++i) {
        const Sample* frame = samples + static_cast<qsizetype>(positions.indices[i]) * channels;
        for (int channel = 0; channel < channels; ++channel) {
            out[channel] = Between(frame[channel], frame[channel + channels], positions.fractions[i]);
        }
        out += channels;
    }
    return out;
}

template<typename Sample>
void Interpolate(const SampleBuffer<Sample>& buffer, int frames, int targetFrames, Sample* out)
{
    const Sample* samples = buffer.samples.data();
    const int channels = buffer.channelCount;
    const Sample* lastFrame = samples + static_cast<qsizetype>(frames - 1) * channels;
    Positions positions;
    for (qsizetype first = 0; first < targetFrames; first += Positions::Most) {
        const auto count = static_cast<std::size_t>(std::min<qsizetype>(Positions::Most, targetFrames - first));
        positions.Find(static_cast<int>(first), count, frames, targetFrames);
        const std::span<const int> indices(positions.indices.data(), count);
        const auto last = std::ranges::lower_bound(indices, frames - 1);
        const auto between = static_cast<std::size_t>(last - indices.begin());
        switch (channels) {
        case 1:
            out = InterpolateFrames(samples, 1, positions, between, out);
            break;
        case 2:
            out = InterpolateFrames(samples, 2, positions, between, out);
            break;
        default:
            out = InterpolateFrames(samples, channels, positions, between, out);
        }
        for (std::size_t i = between; i < count; ++i) {
            out = std::copy_n(lastFrame, channels, out);
        }
    }
}

} // namespace

template<typename Sample>
QByteArray ResampleLinearly(const SampleBuffer<Sample>& buffer, int targetRate)
{
    if (buffer.sampleRate == targetRate) {
        return Bytes(buffer.samples);
    }
    const int frames = FrameCount(buffer);
    const int targetFrames = TargetFrameCount(frames, buffer.sampleRate, targetRate);
    if (targetFrames < 1) {
        return {};
    }
    QByteArray resampled(static_cast<qsizetype>(sizeof(Sample)) * targetFrames * buffer.channelCount,
                         Qt::Uninitialized);
    Interpolate(buffer, frames, targetFrames, reinterpret_cast<Sample*>(resampled.data()));
    return resampled;
}

template QByteArray ResampleLinearly(const SampleBuffer<quint8>&, int);
template QByteArray ResampleLinearly(const SampleBuffer<qint16>&, int);
template QByteArray ResampleLinearly(const SampleBuffer<qint32>&, int);
template QByteArray ResampleLinearly(const SampleBuffer<float>&, int);

} // namespace vantoraudio::AudioEngine
