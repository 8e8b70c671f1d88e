#include "engine/samples/PcmResampler.h"

#include "engine/samples/FFmpegPointers.h"
#include "engine/samples/ResamplerRates.h"

#include <algorithm>
#include <cstdio>
#include <limits>

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/mathematics.h>
#include <libavutil/mem.h>
#include <libavutil/samplefmt.h>
}

namespace vantoraudio::AudioEngine {

namespace {

/** How much a block may become at once; what is more is handed over in parts. */
constexpr int64_t mostTargetFrames = 1 << 20;

/** The planes of interleaved samples: one pointer to one buffer. */
class SampleArray
{
public:
    SampleArray() = default;
    ~SampleArray()
    {
        if (m_planes != nullptr) {
            av_freep(&m_planes[0]);
        }
        av_freep(&m_planes);
    }
    Q_DISABLE_COPY_MOVE(SampleArray)

    int Allocate(const PcmLayout& layout, int frames)
    {
        return av_samples_alloc_array_and_samples(&m_planes, nullptr, layout.channelCount, frames,
                                                  AVSampleFormat(layout.sampleFormat), 0);
    }
    int AllocateAgain(const PcmLayout& layout, int frames)
    {
        av_freep(&m_planes[0]);
        return av_samples_alloc(m_planes, nullptr, layout.channelCount, frames,
                                AVSampleFormat(layout.sampleFormat), 1);
    }
    uint8_t** Planes() { return m_planes; }

private:
    uint8_t** m_planes = nullptr;
};

AVChannelLayout ChannelLayoutOf(const PcmLayout& layout)
{
    AVChannelLayout result{};
    av_channel_layout_from_mask(&result, layout.channelCount == 1 ? AV_CH_LAYOUT_MONO : AV_CH_LAYOUT_STEREO);
    return result;
}

bool Complain(const char* message)
{
    std::fputs(message, stderr);
    return false;
}

} // namespace

class PcmResampler::Data
{
public:
    Data(const PcmLayout& source, const PcmLayout& target, int blockFrames) : m_source(source), m_target(target)
    {
        m_isReady = SetUp() && AllocateSamples(blockFrames);
    }

    bool IsReady() const { return m_isReady; }
    int BlockFrames() const { return m_blockFrames; }
    std::optional<QByteArrayView> Convert(const uint8_t** source, int frames);

private:
    bool SetUp();
    bool AllocateSamples(int blockFrames);
    bool MakeRoom(int frames);
    int TargetFrames(int64_t sourceFrames) const;
    bool CanCountTarget(int blockFrames) const;

    PcmLayout m_source;
    PcmLayout m_target;
    ResamplerPointer m_context;
    SampleArray m_targetSamples;
    int m_targetCapacity = 0;
    int m_blockFrames = 0;
    bool m_isReady = false;
};

bool PcmResampler::Data::SetUp()
{
    AVChannelLayout sourceLayout = ChannelLayoutOf(m_source);
    AVChannelLayout targetLayout = ChannelLayoutOf(m_target);
    SwrContext* context = swr_alloc();
    const bool isAllocated = context != nullptr || Complain("Could not allocate resampler context\n");
    const int status =
        swr_alloc_set_opts2(&context, &targetLayout, AVSampleFormat(m_target.sampleFormat), m_target.sampleRate,
                            &sourceLayout, AVSampleFormat(m_source.sampleFormat), m_source.sampleRate, 0, nullptr);
    m_context.reset(context);
    if (status < 0) {
        return Complain("Failed to set resampler context options\n");
    }
    if (!isAllocated) {
        return false;
    }
    // FFmpeg may accept a missing sample format where it has nothing to resample.
    const bool hasFormats =
        m_source.sampleFormat != AV_SAMPLE_FMT_NONE && m_target.sampleFormat != AV_SAMPLE_FMT_NONE;
    return (hasFormats && CanFall(m_source.sampleRate, m_target.sampleRate) && swr_init(m_context.get()) >= 0) ||
           Complain("Failed to initialize the resampling context\n");
}

bool PcmResampler::Data::AllocateSamples(int blockFrames)
{
    // The source's samples are passed on where they lie. This buffer only shows whether a block can exist at all:
    // a source without frames fails here.
    SampleArray sourceSamples;
    if (sourceSamples.Allocate(m_source, blockFrames) < 0) {
        return Complain("Could not allocate source samples\n");
    }
    const int64_t bearable = av_rescale(mostTargetFrames, m_source.sampleRate, m_target.sampleRate);
    m_blockFrames = static_cast<int>(std::clamp<int64_t>(bearable, 1, blockFrames));
    m_targetCapacity = TargetFrames(m_blockFrames);
    return (CanCountTarget(blockFrames) && CanRise(m_source.sampleRate, m_target.sampleRate) &&
            m_targetSamples.Allocate(m_target, m_targetCapacity) >= 0) ||
           Complain("Could not allocate destination samples\n");
}

/** Rates that are too far apart for a whole block are refused, though a part of it would find room. */
bool PcmResampler::Data::CanCountTarget(int blockFrames) const
{
    return av_samples_get_buffer_size(nullptr, m_target.channelCount, TargetFrames(blockFrames),
                                      AVSampleFormat(m_target.sampleFormat), 0) >= 0;
}

/** More frames than an int counts are more than can be allocated, and fail there. */
int PcmResampler::Data::TargetFrames(int64_t sourceFrames) const
{
    const int64_t frames = av_rescale_rnd(sourceFrames, m_target.sampleRate, m_source.sampleRate, AV_ROUND_UP);
    return static_cast<int>(std::clamp<int64_t>(frames, 0, std::numeric_limits<int>::max()));
}

bool PcmResampler::Data::MakeRoom(int frames)
{
    if (frames <= m_targetCapacity) {
        return true;
    }
    m_targetCapacity = frames;
    return m_targetSamples.AllocateAgain(m_target, frames) >= 0;
}

std::optional<QByteArrayView> PcmResampler::Data::Convert(const uint8_t** source, int frames)
{
    const int room = TargetFrames(swr_get_delay(m_context.get(), m_source.sampleRate) + frames);
    if (!MakeRoom(room)) {
        return {};
    }
    if (room < 1) {
        return QByteArrayView();
    }
    const int count = swr_convert(m_context.get(), m_targetSamples.Planes(), room, source, frames);
    if (count < 0) {
        Complain("Error while converting\n");
        return {};
    }
    // No frames yet is no failure, but av_samples_get_buffer_size() would call it one.
    if (count == 0) {
        return QByteArrayView();
    }
    const int size = av_samples_get_buffer_size(nullptr, m_target.channelCount, count,
                                                AVSampleFormat(m_target.sampleFormat), 1);
    if (size < 0) {
        Complain("Could not get sample buffer size\n");
        return {};
    }
    return QByteArrayView(m_targetSamples.Planes()[0], size);
}

PcmResampler::PcmResampler(const PcmLayout& source, const PcmLayout& target, int blockFrames)
    : m_data(std::make_unique<Data>(source, target, blockFrames))
{
}

PcmResampler::~PcmResampler() = default;

bool PcmResampler::IsReady() const
{
    return m_data->IsReady();
}

int PcmResampler::BlockFrames() const
{
    return m_data->BlockFrames();
}

std::optional<QByteArrayView> PcmResampler::Convert(const char* source, int frames)
{
    const auto* plane = reinterpret_cast<const uint8_t*>(source);
    return m_data->Convert(&plane, frames);
}

std::optional<QByteArrayView> PcmResampler::Drain()
{
    return m_data->Convert(nullptr, 0);
}

} // namespace vantoraudio::AudioEngine
