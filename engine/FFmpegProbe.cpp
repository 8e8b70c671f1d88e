// The part of Decoder that looks into files with FFmpeg.

#include "engine/FFmpegFunctions.h"
#include "engine/ProbedDuration.h"

#include <vantorAudioEngine/Decoder.h>

#include <QtCore/QDebug>
#include <QtCore/QFileInfo>

#include <cstddef>
#include <memory>
#include <span>

using namespace vantoraudio::AudioEngine;

namespace {

/** How far into a file the first sound is looked for. */
constexpr int probedPackets = 1000;

/** What no stream index can be: it tells that GetAudioCodecContext() has not got past the opening. */
constexpr int notOpened = -2;

template<typename Object, auto release>
struct Release
{
    void operator()(Object* object) const { (FFmpeg()->*release)(&object); }
};

struct ReleaseFrame
{
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
};

using FormatPointer =
    std::unique_ptr<AVFormatContext, Release<AVFormatContext, &FFmpegFunctions::avformat_close_input>>;
using CodecPointer =
    std::unique_ptr<AVCodecContext, Release<AVCodecContext, &FFmpegFunctions::avcodec_free_context>>;
using PacketPointer = std::unique_ptr<AVPacket, Release<AVPacket, &FFmpegFunctions::av_packet_free>>;
using FramePointer = std::unique_ptr<AVFrame, ReleaseFrame>;

std::span<AVStream* const> Streams(const AVFormatContext& format)
{
    return {format.streams, format.nb_streams};
}

/** Opening a pipe would wait for its other end. */
bool IsPipeOrDevice(const QString& path)
{
    const QFileInfo info(path);
    return info.exists() && !info.isFile();
}

bool OpenInput(AVFormatContext* format, const QString& path)
{
    if (IsPipeOrDevice(path)) {
        FFmpeg()->avformat_free_context(format);
        return false;
    }
    return format != nullptr &&
           FFmpeg()->avformat_open_input(&format, path.toStdString().c_str(), nullptr, nullptr) == 0;
}

int FindAudioStream(const AVFormatContext& format)
{
    for (const AVStream* stream : Streams(format)) {
        if (stream->codecpar->codec_type == AVMEDIA_TYPE_AUDIO) {
            return stream->index;
        }
    }
    return -1;
}

StreamDuration DurationOf(const AVStream& stream)
{
    return {stream.duration != AV_NOPTS_VALUE, stream.duration, stream.time_base.num, stream.time_base.den};
}

bool HasFormat(const AVCodecContext& codec)
{
    return codec.sample_rate > 0 && codec.ch_layout.nb_channels > 0;
}

/** Gives a packet to the decoder: true when sound comes out. No packet asks for what the decoder still holds. */
bool YieldsSound(AVCodecContext& codec, const AVPacket* packet, AVFrame& frame)
{
    return FFmpeg()->avcodec_send_packet(&codec, packet) == 0 &&
           FFmpeg()->avcodec_receive_frame(&codec, &frame) == 0;
}

} // namespace

/** A file whose audio stream is ready to be read. Only where FFmpeg is there. */
class Decoder::OpenAudio
{
public:
    explicit OpenAudio(const QString& path);

    bool IsOpen() const { return m_isOpen; }
    int Duration() const;
    /** Whether the first packets of audio can be decoded. A file without packets needs a format only. */
    bool BeginsWithSound();

private:
    FormatPointer m_format{FFmpeg()->avformat_alloc_context()};
    CodecPointer m_codec{FFmpeg()->avcodec_alloc_context3(nullptr)};
    int m_streamIndex = notOpened;
    bool m_isOpen = false;
};

Decoder::OpenAudio::OpenAudio(const QString& path)
    : m_isOpen(GetAudioCodecContext(m_format.get(), m_codec.get(), m_streamIndex, path) == 0)
{
    if (m_streamIndex == notOpened) {
        // A file that could not be opened has freed its context already.
        static_cast<void>(m_format.release());
    }
}

int Decoder::OpenAudio::Duration() const
{
    const AVStream& stream = *Streams(*m_format)[static_cast<std::size_t>(m_streamIndex)];
    return DurationInMilliseconds(m_format->duration, DurationOf(stream));
}

bool Decoder::OpenAudio::BeginsWithSound()
{
    const PacketPointer packet(FFmpeg()->av_packet_alloc());
    const FramePointer frame(av_frame_alloc());
    bool hasAudio = false;
    for (int i = 0; i < probedPackets && FFmpeg()->av_read_frame(m_format.get(), packet.get()) == 0; ++i) {
        const bool isAudio = packet->stream_index == m_streamIndex;
        const bool isSound = isAudio && YieldsSound(*m_codec, packet.get(), *frame);
        FFmpeg()->av_packet_unref(packet.get());
        if (isSound) {
            return true;
        }
        hasAudio = hasAudio || isAudio;
    }
    return hasAudio ? YieldsSound(*m_codec, nullptr, *frame) : HasFormat(*m_codec);
}

int Decoder::GetDuration(const QString& path)
{
    if (path.isEmpty() || FFmpeg() == nullptr) {
        return 0;
    }
    const OpenAudio audio(path);
    return audio.IsOpen() ? audio.Duration() : 0;
}

bool Decoder::HoldsAudio(const QString& path)
{
    if (FFmpeg() == nullptr) {
        return false;
    }
    OpenAudio audio(path);
    return audio.IsOpen() && audio.BeginsWithSound();
}

int Decoder::GetAudioCodecContext(AVFormatContext* format, AVCodecContext* codec, int& streamIndex,
                                  const QString& path)
{
    if (!OpenInput(format, path)) {
        qDebug() << "Could not open file: " << path;
        return -1;
    }
    streamIndex = -1;
    if (FFmpeg()->avformat_find_stream_info(format, nullptr) < 0) {
        qDebug() << "Could not retrieve stream info from file: " << path;
        return -1;
    }
    streamIndex = FindAudioStream(*format);
    if (streamIndex < 0) {
        qDebug() << "Could not retrieve audio stream from file: " << path;
        return -1;
    }
    if (codec == nullptr) {
        qDebug() << "Source codec context in not initialized correctly";
        return -1;
    }
    const AVStream& stream = *Streams(*format)[static_cast<std::size_t>(streamIndex)];
    if (FFmpeg()->avcodec_parameters_to_context(codec, stream.codecpar) < 0) {
        qDebug() << "Error copying codec parameters to codec context:";
        return -1;
    }
    if (FFmpeg()->avcodec_open2(codec, FFmpeg()->avcodec_find_decoder(codec->codec_id), nullptr) < 0) {
        qDebug() << "Failed to open decoder for stream" << streamIndex << "in file " << path;
        return -1;
    }
    return 0;
}
