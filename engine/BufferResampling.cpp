#include "engine/BufferResampling.h"

#include "engine/Truncation.h"

#include <algorithm>
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

/** A value between two samples: never outside the range of their type, so that the conversion is safe. */
template<typename Sample>
Sample Between(Sample first, Sample second, double fraction)
{
    return static_cast<Sample>(first * (1.0 - fraction) + second * fraction);
}

template<typename Sample>
void Interpolate(const SampleBuffer<Sample>& buffer, int frames, int targetFrames, Sample* out)
{
    const int channels = buffer.channelCount;
    for (int i = 0; i < targetFrames; ++i) {
        const double position = static_cast<double>(i) * frames / targetFrames;
        const int index = static_cast<int>(position);
        const double fraction = position - index;
        const Sample* frame = buffer.samples.data() + static_cast<qsizetype>(index) * channels;
        if (index + 1 < frames) {
            for (int channel = 0; channel < channels; ++channel) {
                *out++ = Between(frame[channel], frame[channel + channels], fraction);
            }
        } else {
            out = std::copy_n(frame, channels, out);
        }
    }
}

} // namespace

template<typename Sample>
QByteArray Resample(const SampleBuffer<Sample>& buffer, int targetRate)
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

template<typename Sample>
QList<float> ToFloat(std::span<const Sample> samples)
{
    // 8 bits are unsigned around 128; all types reach -1 exactly and 1 not quite.
    constexpr double scale = -static_cast<double>(std::numeric_limits<std::make_signed_t<Sample>>::min());
    constexpr double zero = std::is_unsigned_v<Sample> ? scale : 0.0;
    QList<float> floats(static_cast<qsizetype>(samples.size()));
    std::transform(samples.begin(), samples.end(), floats.begin(),
                   [](Sample sample) { return static_cast<float>((sample - zero) / scale); });
    return floats;
}

template QByteArray Resample(const SampleBuffer<quint8>&, int);
template QByteArray Resample(const SampleBuffer<qint16>&, int);
template QByteArray Resample(const SampleBuffer<qint32>&, int);
template QByteArray Resample(const SampleBuffer<float>&, int);

template QList<float> ToFloat(std::span<const quint8>);
template QList<float> ToFloat(std::span<const qint16>);
template QList<float> ToFloat(std::span<const qint32>);

} // namespace vantoraudio::AudioEngine
