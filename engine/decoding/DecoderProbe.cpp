#include "engine/decoding/DecoderProbe.h"

#include "engine/decoding/ProbedDuration.h"
#include "engine/files/RegularFile.h"
#include "engine/samples/FFmpegPointers.h"

#include <QtCore/QDebug>

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <utility>

using namespace vantoraudio::AudioEngine;

namespace {

/** How far into a file the first sound is looked for. */
constexpr int probedPackets = 1000;

/** What no stream index can be: it tells that GetAudioCodecContext() has not got past the opening. */
constexpr int notOpened = -2;

std::span<AVStream* const> Streams(const AVFormatContext& format)
{
    return {format.streams, format.nb_streams};
}

bool OpenInput(AVFormatContext* format, const QString& path)
{
    if (IsFolderPipeOrDevice(path) || IsEmptyFile(path)) {
        avformat_free_context(format);
        return false;
    }
    return format != nullptr && avformat_open_input(&format, path.toStdString().c_str(), nullptr, nullptr) == 0;
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
    return avcodec_send_packet(&codec, packet) == 0 && avcodec_receive_frame(&codec, &frame) == 0;
}

/** Follows the number of channels from packet to packet, by what the codec's parser sees in them. */
class ChannelCounter
{
public:
    explicit ChannelCounter(AVCodecContext& codec)
        : m_codec(codec), m_parser(av_parser_init(codec.codec_id)), m_count(codec.ch_layout.nb_channels)
    {
    }
    ~ChannelCounter() { av_parser_close(m_parser); }
    Q_DISABLE_COPY_MOVE(ChannelCounter)

    bool IsSame(const AVPacket& packet, const AVStream& stream)
    {
        return IsSame(stream.codecpar->ch_layout.nb_channels) && IsSameInHeader(packet) && IsSameInAdts(packet) &&
               IsSameInParser(packet);
    }

private:
    bool IsSame(int count) const { return count == m_count || count <= 0 || m_count <= 0; }

    /** Joined Ogg streams bring a new header among their packets. */
    bool IsSameInHeader(const AVPacket& packet) const
    {
        const QByteArrayView bytes(packet.data, packet.size);
        const auto isSameAt = [&](qsizetype place) {
            return bytes.size() <= place || IsSame(uchar(bytes[place]));
        };
        return (!bytes.startsWith("\x01vorbis") || isSameAt(11)) && (!bytes.startsWith("OpusHead") || isSameAt(9));
    }

    /** The parser does not tell the channels of AAC, because its headers may not know of all of them. */
    bool IsSameInAdts(const AVPacket& packet)
    {
        const std::span<const uint8_t> bytes(packet.data, static_cast<std::size_t>(packet.size));
        if (m_codec.codec_id != AV_CODEC_ID_AAC || bytes.size() < 4 || bytes[0] != 0xFF ||
            (bytes[1] & 0xF6) != 0xF0) {
            return true;
        }
        const int configuration = ((bytes[2] & 1) << 2) | (bytes[3] >> 6);
        return std::exchange(m_adtsConfiguration, configuration).value_or(configuration) == configuration;
    }

    bool IsSameInParser(const AVPacket& packet)
    {
        std::span<const uint8_t> bytes(packet.data, static_cast<std::size_t>(packet.size));
        while (m_parser != nullptr && !bytes.empty()) {
            uint8_t* frame = nullptr;
            int frameSize = 0;
            const int used = av_parser_parse2(m_parser, &m_codec, &frame, &frameSize, bytes.data(),
                                              static_cast<int>(bytes.size()), packet.pts, packet.dts, packet.pos);
            if (!IsSame(m_codec.ch_layout.nb_channels)) {
                return false;
            }
            if (used <= 0) {
                break;
            }
            bytes = bytes.subspan(static_cast<std::size_t>(used));
        }
        return true;
    }

    AVCodecContext& m_codec;
    AVCodecParserContext* m_parser;
    int m_count;
    std::optional<int> m_adtsConfiguration;
};

} // namespace

/** A file whose audio stream is ready to be read. */
class Decoder::Probe::OpenAudio
{
public:
    explicit OpenAudio(const QString& path);

    bool IsOpen() const { return m_isOpen; }
    int Duration() const;
    /** Whether the first packets of audio can be decoded. A file without packets needs a format only. */
    bool BeginsWithSound();
    /** Reads all packets. */
    bool CanBeDecodedWhole();

private:
    FormatPointer m_format{avformat_alloc_context()};
    CodecPointer m_codec{avcodec_alloc_context3(nullptr)};
    int m_streamIndex = notOpened;
    bool m_isOpen = false;
};

Decoder::Probe::OpenAudio::OpenAudio(const QString& path)
    : m_isOpen(GetAudioCodecContext(m_format.get(), m_codec.get(), m_streamIndex, path) == 0)
{
    if (m_streamIndex == notOpened) {
        // A file that could not be opened has freed its context already.
        static_cast<void>(m_format.release());
    }
}

int Decoder::Probe::OpenAudio::Duration() const
{
    const AVStream& stream = *Streams(*m_format)[static_cast<std::size_t>(m_streamIndex)];
    return DurationInMilliseconds(m_format->duration, DurationOf(stream));
}

bool Decoder::Probe::OpenAudio::BeginsWithSound()
{
    const PacketPointer packet(av_packet_alloc());
    const FramePointer frame(av_frame_alloc());
    bool hasAudio = false;
    for (int i = 0; i < probedPackets && av_read_frame(m_format.get(), packet.get()) == 0; ++i) {
        const bool isAudio = packet->stream_index == m_streamIndex;
        const bool isSound = isAudio && YieldsSound(*m_codec, packet.get(), *frame);
        av_packet_unref(packet.get());
        if (isSound) {
            return true;
        }
        hasAudio = hasAudio || isAudio;
    }
    return hasAudio ? YieldsSound(*m_codec, nullptr, *frame) : HasFormat(*m_codec);
}

bool Decoder::Probe::OpenAudio::CanBeDecodedWhole()
{
    const PacketPointer packet(av_packet_alloc());
    const AVStream& stream = *Streams(*m_format)[static_cast<std::size_t>(m_streamIndex)];
    ChannelCounter counter(*m_codec);
    bool isSame = true;
    while (isSame && av_read_frame(m_format.get(), packet.get()) == 0) {
        isSame = packet->stream_index != m_streamIndex || counter.IsSame(*packet, stream);
        av_packet_unref(packet.get());
    }
    // To most demuxers a disk that fails is the end of the file.
    const AVIOContext* input = m_format->pb;
    const bool isReadable = input == nullptr || input->error >= 0 || input->error == AVERROR_EOF;
    return isSame && isReadable;
}

bool Decoder::Probe::HoldsAudio(const QString& path)
{
    OpenAudio audio(path);
    return audio.IsOpen() && audio.BeginsWithSound();
}

bool Decoder::Probe::CanBeDecodedWhole(const QString& path)
{
    OpenAudio audio(path);
    return audio.IsOpen() && audio.CanBeDecodedWhole();
}

int Decoder::Probe::Duration(const QString& path)
{
    const OpenAudio audio(path);
    return audio.IsOpen() ? audio.Duration() : 0;
}

int Decoder::GetAudioCodecContext(AVFormatContext* format, AVCodecContext* codec, int& streamIndex,
                                  const QString& path)
{
    if (!OpenInput(format, path)) {
        qDebug() << "Could not open file: " << path;
        return -1;
    }
    streamIndex = -1;
    if (avformat_find_stream_info(format, nullptr) < 0) {
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
    if (avcodec_parameters_to_context(codec, stream.codecpar) < 0) {
        qDebug() << "Error copying codec parameters to codec context:";
        return -1;
    }
    if (avcodec_open2(codec, avcodec_find_decoder(codec->codec_id), nullptr) < 0) {
        qDebug() << "Failed to open decoder for stream" << streamIndex << "in file " << path;
        return -1;
    }
    return 0;
}
