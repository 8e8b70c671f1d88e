#include "engine/samples/FrameResampler.h"

#include "engine/samples/ResamplerRates.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <span>
#include <vector>

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/samplefmt.h>
}

namespace vantoraudio::AudioEngine {

namespace {

constexpr int mostChannels = 64;
/** About the most samples of a channel that go in or come out at once. */
constexpr qint64 framesAtOnce = 1 << 16;

/** Streams that do not name their channels have the usual ones. */
AVChannelLayout LayoutOf(const AVFrame& frame)
{
    AVChannelLayout layout = {};
    const AVChannelOrder order = frame.ch_layout.order;
    // The other orders own memory, and resampling needs only their channel count.
    if (order == AV_CHANNEL_ORDER_NATIVE) {
        layout = frame.ch_layout;
    } else {
        av_channel_layout_default(&layout, frame.ch_layout.nb_channels);
    }
    return layout;
}

bool IsEqual(const AVChannelLayout& a, const AVChannelLayout& b)
{
    return av_channel_layout_compare(&a, &b) == 0;
}

/** For channels without known places: each is heard equally on every side. */
bool SetAverage(SwrContext* resampler, int inputs, int outputs)
{
    // More than FFmpeg's own tables have room for.
    if (inputs > mostChannels) {
        return false;
    }
    const std::vector<double> matrix(std::size_t(inputs) * std::size_t(outputs), 1.0 / inputs);
    return swr_set_matrix(resampler, matrix.data(), inputs) >= 0;
}

/** Damaged streams hold infinities and values that are not numbers. They must not reach a file. */
void SilenceWhatIsNoNumber(char* bytes, qsizetype size)
{
    constexpr quint32 exponent = 0x7F800000;
    for (qsizetype i = 0; i + qsizetype(sizeof(quint32)) <= size; i += sizeof(quint32)) {
        quint32 bits = 0;
        std::memcpy(&bits, bytes + i, sizeof(bits));
        if ((bits & exponent) == exponent) {
            bits = 0;
            std::memcpy(bytes + i, &bits, sizeof(bits));
        }
    }
}

/** Where the samples of each plane begin, from `start` on. */
std::vector<const uint8_t*> PlanesFrom(const AVFrame& frame, int start)
{
    const auto format = AVSampleFormat(frame.format);
    const bool isPlanar = av_sample_fmt_is_planar(format) != 0;
    const int channels = frame.ch_layout.nb_channels;
    const qsizetype distance = qsizetype(start) * av_get_bytes_per_sample(format) * (isPlanar ? 1 : channels);
    std::vector<const uint8_t*> planes;
    for (const uint8_t* plane : std::span(frame.extended_data, std::size_t(isPlanar ? channels : 1))) {
        planes.push_back(plane + distance);
    }
    return planes;
}

} // namespace

AVChannelLayout FrameResampler::OutputLayoutFor(const AVFrame& frame)
{
    const AVChannelLayout layout = LayoutOf(frame);
    return layout.nb_channels <= 2 ? layout : AVChannelLayout AV_CHANNEL_LAYOUT_STEREO;
}

int FrameResampler::BytesPerFrame() const
{
    return av_get_bytes_per_sample(m_target.sampleFormat) * m_target.layout.nb_channels;
}

bool FrameResampler::FitsTo(const AVFrame& frame) const
{
    return m_resampler != nullptr && frame.sample_rate == m_sampleRate && frame.format == m_sampleFormat &&
           IsEqual(LayoutOf(frame), m_layout);
}

bool FrameResampler::StartAgain(const AVFrame& frame)
{
    m_sampleRate = frame.sample_rate;
    m_sampleFormat = frame.format;
    m_layout = LayoutOf(frame);
    SwrContext* resampler = nullptr;
    const int status =
        swr_alloc_set_opts2(&resampler, &m_target.layout, m_target.sampleFormat, m_target.sampleRate, &m_layout,
                            AVSampleFormat(m_sampleFormat), m_sampleRate, 0, nullptr);
    m_resampler.reset(resampler);
    if (status < 0 || !CanBeResampled(m_sampleRate, m_target.sampleRate)) {
        return false;
    }
    // FFmpeg does not know how to mix some layouts, such as ten channels without names.
    return swr_init(resampler) >= 0 ||
           (SetAverage(resampler, m_layout.nb_channels, m_target.layout.nb_channels) && swr_init(resampler) >= 0);
}

bool FrameResampler::Convert(const AVFrame& frame, int& start, QByteArray& samples)
{
    if (!FitsTo(frame) && !(Drain(samples) && StartAgain(frame))) {
        return false;
    }
    const qint64 fitting = std::min(framesAtOnce, framesAtOnce * m_sampleRate / m_target.sampleRate);
    const int count = static_cast<int>(qBound(qint64(1), fitting, qint64(frame.nb_samples - start)));
    const auto planes = PlanesFrom(frame, start);
    start += count;
    return Pass(planes.data(), count, samples);
}

bool FrameResampler::Drain(QByteArray& samples)
{
    return m_resampler == nullptr || Pass(nullptr, 0, samples);
}

bool FrameResampler::Pass(const uint8_t* const* planes, int frames, QByteArray& samples)
{
    const int room = swr_get_out_samples(m_resampler.get(), frames);
    const qsizetype former = samples.size();
    if (room < 0 || room > std::numeric_limits<int>::max() / BytesPerFrame()) {
        return false;
    }
    if (room == 0) {
        return true;
    }
    samples.resize(former + qsizetype(room) * BytesPerFrame());
    auto* target = reinterpret_cast<uint8_t*>(samples.data() + former);
    const int count = swr_convert(m_resampler.get(), &target, room, const_cast<const uint8_t**>(planes), frames);
    samples.resize(former + qsizetype(qMax(count, 0)) * BytesPerFrame());
    if (m_target.sampleFormat == AV_SAMPLE_FMT_FLT) {
        SilenceWhatIsNoNumber(samples.data() + former, samples.size() - former);
    }
    return count >= 0;
}

} // namespace vantoraudio::AudioEngine
