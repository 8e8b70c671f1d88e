#pragma once

#include "engine/files/CancelCheck.h"
#include "engine/samples/FFmpegPointers.h"

#include <vantorAudioEngine/AudioFileInfo.h>

#include <QtCore/QString>

#include <limits>

namespace vantoraudio::AudioEngine {

/**
 * The audio stream of a file, opened with FFmpeg. It is read frame by frame and gives exactly the frames that
 * ffmpeg decodes. Used on one thread at a time.
 */
class AudioStream
{
public:
    using Problem = AudioFileInfo::Problem;

    /** Looks into the file. What is wrong with it is told by GetProblem(). `isCancelled` is also asked while a
     * slow disk is waited for. */
    explicit AudioStream(const QString& path, CancelCheck isCancelled = {});
    Q_DISABLE_COPY_MOVE(AudioStream)

    /** Of FFmpeg, in the whole process; see AudioImporter. */
    static void LimitAllocations(qint64 bytes);

    /** None as long as frames can be expected. */
    Problem GetProblem() const { return m_problem; }

    /** These two only with a stream. */
    bool HasStream() const { return m_stream != nullptr; }
    const AVFormatContext& Format() const { return *m_format; }
    const AVStream& Stream() const { return *m_stream; }

    /** In seconds; 0 where the file does not tell. */
    double Duration() const;
    /** Whether the duration is more than a guess from the file's size. */
    bool IsDurationCertain() const;

    /** For those who only look into the file: some files say only in their packets that they are encrypted. Frames
     *  cannot be read after this. */
    void CheckFirstPacket();

    /** Prepares for reading frames. False, with a problem, when there is no decoder. */
    bool OpenDecoder();

    /** The next frame with samples; false at the end, or with a problem. Damaged packets are passed over. */
    bool ReadFrame(AVFrame& frame);

    /** Packets that could not be decoded, gaps that others left which were not even found, and a missing end. */
    qint64 DamagedPackets() const { return m_damagedPackets; }
    /** How much of the stream was read, from 0 to 1. */
    double Progress() const;

private:
    Problem Open(const QString& path);
    Problem FindStream(const QString& path);
    bool Feed();
    void NotePacket();
    void NoteTimeWithoutAudio();
    bool IsInTag() const;
    void OnReadingEnded(int error);
    bool IsCutOff() const;
    void NoteProgress();
    void NoteGap(const AVFrame& frame);

    CancelCheck m_isCancelled;
    /** Outlives the format that reads from it. */
    InputPointer m_input;
    FormatPointer m_format;
    AVStream* m_stream = nullptr;
    const AVCodec* m_decoder = nullptr;
    CodecPointer m_codec;
    PacketPointer m_packet{av_packet_alloc()};
    Problem m_problem = Problem::None;
    qint64 m_damagedPackets = 0;
    /** Where the next frame should begin, in the stream's time base. */
    double m_nextTime = std::numeric_limits<double>::quiet_NaN();
    /** In the stream's time base. */
    double m_longestFrame = 0.0;
    /** How much of the next gap in the time is known to hold no audio, in the stream's time base. */
    double m_emptyTime = 0.0;
    /** Where the latest tag among the packets ends in the file. */
    qint64 m_tagEnd = 0;
    qint64 m_packets = 0;
    qint64 m_frames = 0;
    double m_decodedSeconds = 0.0;
    double m_progress = 0.0;
};

} // namespace vantoraudio::AudioEngine
