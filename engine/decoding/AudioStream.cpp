#include "engine/decoding/AudioStream.h"

#include "engine/files/RegularFile.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QtEndian>

#include <algorithm>
#include <array>
#include <span>
#include <tuple>
#include <utility>

extern "C" {
#include <libavutil/mathematics.h>
}

namespace vantoraudio::AudioEngine {

namespace {

using Problem = AudioFileInfo::Problem;

/** With its scheme, so that no part of a name is taken for another one. */
QByteArray UrlOf(const QString& path)
{
    return "file:" + QFile::encodeName(QFileInfo(path).absoluteFilePath());
}

/** What can be told of a file without FFmpeg. */
Problem ProblemOfFile(const QString& path)
{
    if (path.isEmpty() || !QFileInfo::exists(path)) {
        return Problem::NotFound;
    }
    if (!IsRegularFile(path)) {
        return Problem::NotAFile;
    }
    if (!QFile(path).open(QIODevice::ReadOnly)) {
        return Problem::NoPermission;
    }
    return IsEmptyFile(path) ? Problem::NoAudio : Problem::None;
}

int IsInterrupted(void* check)
{
    return IsCancelled(*static_cast<const CancelCheck*>(check)) ? 1 : 0;
}

bool Has(const AVDictionary* entries, const char* key)
{
    return av_dict_get(entries, key, nullptr, 0) != nullptr;
}

/** Each container says it in its own way. */
bool IsEncrypted(const AVFormatContext& format, const AVStream& stream)
{
    constexpr std::array<uint32_t, 3> encryptedKinds{MKTAG('d', 'r', 'm', 's'), MKTAG('e', 'n', 'c', 'a'),
                                                     MKTAG('a', 'a', 'v', 'd')};
    const QByteArrayView container(format.iformat->name);
    const bool isOfEncryptedKind = std::ranges::count(encryptedKinds, stream.codecpar->codec_tag) > 0;
    const bool isEncryptedAsf =
        container == "asf" && (Has(format.metadata, "ASF_Protection_Type") || Has(format.metadata, "encryption"));
    const bool isEncryptedMatroska = container.startsWith("matroska") && Has(stream.metadata, "enc_key_id");
    return isOfEncryptedKind || isEncryptedAsf || isEncryptedMatroska;
}

bool IsEncrypted(const AVPacket& packet)
{
    return av_packet_get_side_data(&packet, AV_PKT_DATA_ENCRYPTION_INFO, nullptr) != nullptr;
}

bool IsMpegAudio(AVCodecID codec)
{
    return codec == AV_CODEC_ID_MP1 || codec == AV_CODEC_ID_MP2 || codec == AV_CODEC_ID_MP3;
}

/** The size of the ID3 tag that begins with the packet; 0 where none does. */
qint64 TagSize(const AVPacket& packet)
{
    const std::span<const uint8_t> bytes(packet.data, static_cast<std::size_t>(packet.size));
    if (bytes.size() < 10 || !QByteArrayView(bytes).startsWith("ID3")) {
        return 0;
    }
    qint64 size = 0;
    for (const uint8_t byte : bytes.subspan(6, 4)) {
        size = size * 128 + (byte & 0x7F);
    }
    return 10 + size;
}

/** How many samples at the end of the packet only fill it up. */
quint32 PaddingOf(const AVPacket& packet)
{
    std::size_t size = 0;
    const uint8_t* skipped = av_packet_get_side_data(&packet, AV_PKT_DATA_SKIP_SAMPLES, &size);
    return skipped != nullptr && size >= 8 ? qFromLittleEndian<quint32>(skipped + 4) : 0;
}

/** Greater for a stream that ffmpeg prefers: one with packets, marked as the usual one, of more channels. */
std::tuple<bool, bool, int> RankOf(const AVStream& stream)
{
    return {(stream.event_flags & AVSTREAM_EVENT_FLAG_NEW_PACKETS) != 0,
            (stream.disposition & AV_DISPOSITION_DEFAULT) != 0, stream.codecpar->ch_layout.nb_channels};
}

/** The one that the ffmpeg program takes; av_find_best_stream() sometimes takes another. Null without audio. */
AVStream* ChosenStream(const AVFormatContext& format)
{
    AVStream* chosen = nullptr;
    for (AVStream* stream : std::span(format.streams, format.nb_streams)) {
        const bool isAudio = stream->codecpar->codec_type == AVMEDIA_TYPE_AUDIO;
        if (isAudio && (chosen == nullptr || RankOf(*stream) > RankOf(*chosen))) {
            chosen = stream;
        }
    }
    return chosen;
}

/** FFmpeg reads the samples of big-endian WAV files as if they were little-endian. */
AVCodecID BigEndianOf(AVCodecID codec)
{
    switch (codec) {
    case AV_CODEC_ID_PCM_S16LE:
        return AV_CODEC_ID_PCM_S16BE;
    case AV_CODEC_ID_PCM_S24LE:
        return AV_CODEC_ID_PCM_S24BE;
    case AV_CODEC_ID_PCM_S32LE:
        return AV_CODEC_ID_PCM_S32BE;
    case AV_CODEC_ID_PCM_F32LE:
        return AV_CODEC_ID_PCM_F32BE;
    case AV_CODEC_ID_PCM_F64LE:
        return AV_CODEC_ID_PCM_F64BE;
    default:
        return codec;
    }
}

bool IsBigEndianWav(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && file.peek(4) == "RIFX";
}

/** Only the chosen stream is read. */
void DiscardOthers(AVFormatContext& format, const AVStream& chosen)
{
    for (AVStream* stream : std::span(format.streams, format.nb_streams)) {
        stream->discard = stream == &chosen ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
    }
}

} // namespace

AudioStream::AudioStream(const QString& path, CancelCheck isCancelled)
    : m_isCancelled(std::move(isCancelled)), m_problem(ProblemOfFile(path))
{
    if (m_problem == Problem::None) {
        m_problem = Open(path);
    }
    if (m_problem == Problem::None) {
        m_problem = FindStream(path);
    }
    if (IsCancelled(m_isCancelled)) {
        m_problem = Problem::Cancelled;
    }
}

void AudioStream::LimitAllocations(qint64 bytes)
{
    if (bytes >= 1) {
        av_max_alloc(std::size_t(bytes));
    }
}

Problem AudioStream::Open(const QString& path)
{
    const QByteArray url = UrlOf(path);
    const AVIOInterruptCB interrupt{&IsInterrupted, &m_isCancelled};
    AVIOContext* input = nullptr;
    if (avio_open2(&input, url.constData(), AVIO_FLAG_READ, &interrupt, nullptr) < 0) {
        return Problem::CannotBeRead;
    }
    m_input.reset(input);
    AVFormatContext* format = avformat_alloc_context();
    if (format == nullptr) {
        return Problem::CannotBeRead;
    }
    format->pb = input;
    format->interrupt_callback = interrupt;
    // A play list may name other files, pipes and addresses. None of them is opened.
    format->protocol_whitelist = av_strdup("none");
    // Frees the context when it fails.
    const int status = avformat_open_input(&format, url.constData(), nullptr, nullptr);
    m_format.reset(format);
    if (status == AVERROR(EIO)) {
        return Problem::CannotBeRead;
    }
    return status == 0 ? Problem::None : Problem::NoAudio;
}

Problem AudioStream::FindStream(const QString& path)
{
    if (avformat_find_stream_info(m_format.get(), nullptr) < 0) {
        return Problem::NoAudio;
    }
    m_stream = ChosenStream(*m_format);
    if (m_stream == nullptr) {
        return Problem::NoAudio;
    }
    DiscardOthers(*m_format, *m_stream);
    AVCodecParameters& parameters = *m_stream->codecpar;
    if (IsBigEndianWav(path)) {
        parameters.codec_id = BigEndianOf(parameters.codec_id);
    }
    if (IsEncrypted(*m_format, *m_stream)) {
        return Problem::Protected;
    }
    m_decoder = avcodec_find_decoder(parameters.codec_id);
    if (m_decoder == nullptr) {
        return Problem::NoAudio;
    }
    const bool hasFormat = parameters.sample_rate > 0 && parameters.ch_layout.nb_channels > 0;
    return hasFormat ? Problem::None : Problem::Damaged;
}

double AudioStream::Duration() const
{
    if (m_format == nullptr || m_stream == nullptr) {
        return 0.0;
    }
    double duration = 0.0;
    if (m_stream->duration != AV_NOPTS_VALUE) {
        duration = double(m_stream->duration) * av_q2d(m_stream->time_base);
    } else if (m_format->duration != AV_NOPTS_VALUE) {
        duration = double(m_format->duration) / AV_TIME_BASE;
    }
    return std::max(duration, 0.0);
}

bool AudioStream::IsDurationCertain() const
{
    return Duration() > 0.0 && m_format->duration_estimation_method != AVFMT_DURATION_FROM_BITRATE;
}

void AudioStream::CheckFirstPacket()
{
    constexpr int mostPackets = 100;
    // Only MP4 tells it in its packets. In other files the first packet of audio may lie far away.
    bool isFound = m_problem != Problem::None || !QByteArrayView(m_format->iformat->name).startsWith("mov");
    for (int i = 0; !isFound && i < mostPackets && av_read_frame(m_format.get(), m_packet.get()) == 0; ++i) {
        isFound = m_packet->stream_index == m_stream->index;
        m_problem = isFound && IsEncrypted(*m_packet) ? Problem::Protected : Problem::None;
        av_packet_unref(m_packet.get());
    }
}

bool AudioStream::OpenDecoder()
{
    m_codec.reset(avcodec_alloc_context3(m_decoder));
    if (m_codec == nullptr || avcodec_parameters_to_context(m_codec.get(), m_stream->codecpar) < 0) {
        m_problem = Problem::Damaged;
        return false;
    }
    // The decoder needs it to cut off what encoders add at both ends.
    m_codec->pkt_timebase = m_stream->time_base;
    // As many threads as there are processors, where the decoder can use them.
    m_codec->thread_count = 0;
    if (avcodec_open2(m_codec.get(), m_decoder, nullptr) < 0) {
        m_problem = Problem::Damaged;
    }
    return m_problem == Problem::None;
}

bool AudioStream::ReadFrame(AVFrame& frame)
{
    while (m_problem == Problem::None) {
        if (IsCancelled(m_isCancelled)) {
            m_problem = Problem::Cancelled;
            return false;
        }
        const int status = avcodec_receive_frame(m_codec.get(), &frame);
        if (status == AVERROR_EOF) {
            OnReadingEnded(m_format->pb != nullptr ? m_format->pb->error : 0);
            return false;
        }
        if (status == 0 && frame.nb_samples > 0 && frame.sample_rate > 0 && frame.ch_layout.nb_channels > 0) {
            ++m_frames;
            m_decodedSeconds += double(frame.nb_samples) / frame.sample_rate;
            NoteGap(frame);
            return true;
        }
        if (status < 0 && status != AVERROR(EAGAIN)) {
            ++m_damagedPackets;
        } else if (status < 0 && !Feed()) {
            return false;
        }
    }
    return false;
}

/** Gives the decoder the next packet, or tells it that there is none left. False with a problem. */
bool AudioStream::Feed()
{
    const int status = av_read_frame(m_format.get(), m_packet.get());
    if (status == AVERROR(EAGAIN)) {
        return true;
    }
    if (status < 0) {
        // ffmpeg takes every error of the demuxer for the end.
        m_damagedPackets += status == AVERROR_EOF ? 0 : 1;
        avcodec_send_packet(m_codec.get(), nullptr);
        return true;
    }
    // An empty packet would tell the decoder that there is none left.
    if (m_packet->stream_index == m_stream->index && m_packet->size > 0) {
        NotePacket();
        const bool isRefused =
            m_problem == Problem::None && avcodec_send_packet(m_codec.get(), m_packet.get()) < 0;
        m_damagedPackets += isRefused && !IsInTag() ? 1 : 0;
    }
    av_packet_unref(m_packet.get());
    return m_problem == Problem::None;
}

void AudioStream::NotePacket()
{
    ++m_packets;
    NoteProgress();
    NoteTimeWithoutAudio();
    if (IsEncrypted(*m_packet)) {
        m_problem = Problem::Protected;
    }
}

/** Where files were joined, the padding of the first and the tag of the second one lie in the middle. */
void AudioStream::NoteTimeWithoutAudio()
{
    const AVPacket& packet = *m_packet;
    m_emptyTime += double(PaddingOf(packet)) / m_stream->codecpar->sample_rate / av_q2d(m_stream->time_base);
    if (IsMpegAudio(m_stream->codecpar->codec_id)) {
        if (const qint64 size = TagSize(packet); size > 0) {
            m_tagEnd = std::max(m_tagEnd, packet.pos + size);
        }
        m_emptyTime += IsInTag() ? double(packet.duration) : 0.0;
    }
}

bool AudioStream::IsInTag() const
{
    return m_packet->pos >= 0 && m_packet->pos < m_tagEnd;
}

/** Sets the problem of a stream that could not be read to its end, or that gave nothing although it stated a
 * length or had packets. */
void AudioStream::OnReadingEnded(int error)
{
    if (IsCancelled(m_isCancelled)) {
        m_problem = Problem::Cancelled;
    } else if (error < 0 && error != AVERROR_EOF) {
        m_problem = Problem::CannotBeRead;
    } else if (m_frames == 0 && (m_packets > 0 || IsDurationCertain())) {
        m_problem = Problem::Damaged;
    } else if (m_damagedPackets == 0 && IsCutOff()) {
        m_damagedPackets = 1;
    }
}

/** Whether much less was there than the file states. */
bool AudioStream::IsCutOff() const
{
    return IsDurationCertain() && m_decodedSeconds < 0.98 * Duration() - 1.0;
}

/** Some demuxers skip what is damaged without a word, and only the times show it. */
void AudioStream::NoteGap(const AVFrame& frame)
{
    const AVRational timeBase = m_stream->time_base;
    const double length = double(frame.nb_samples) / frame.sample_rate / av_q2d(timeBase);
    const double time = frame.pts == AV_NOPTS_VALUE ? m_nextTime : double(frame.pts);
    // Not a number where no time is known; no comparison takes that for a gap.
    const double gap = time - m_nextTime;
    m_longestFrame = std::max(m_longestFrame, length);
    // One packet without audio is no loss: it may be the table of contents of a file that was joined on.
    m_damagedPackets += gap - m_emptyTime > 1.5 * m_longestFrame ? 1 : 0;
    m_emptyTime -= std::min(m_emptyTime, std::max(0.0, gap));
    m_nextTime = time + length;
}

void AudioStream::NoteProgress()
{
    const double duration = Duration();
    if (duration > 0.0 && m_packet->pts != AV_NOPTS_VALUE) {
        const qint64 start = m_stream->start_time == AV_NOPTS_VALUE ? 0 : m_stream->start_time;
        m_progress = (double(m_packet->pts) - double(start)) * av_q2d(m_stream->time_base) / duration;
    } else if (m_format->pb != nullptr && avio_size(m_format->pb) > 0) {
        m_progress = double(avio_tell(m_format->pb)) / double(avio_size(m_format->pb));
    }
}

double AudioStream::Progress() const
{
    return std::clamp(m_progress, 0.0, 1.0);
}

} // namespace vantoraudio::AudioEngine
