#include "engine/files/BlockWalk.h"
#include "engine/samples/SampleBlocks.h"
#include "engine/wav/WavAudio.h"

#include <vantorAudioEngine/WavFile.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>
#include <utility>

using namespace vantoraudio::AudioEngine;

namespace {

/** How many values a block of an extraction yields. */
constexpr qint64 valuesPerBlock = 200;

/** Memory for this many values at most is reserved in advance, however long the file is. */
constexpr qint64 mostReservedValues = qint64(1) << 30;

/** From one wanted frame to the next one, in bytes. */
qint64 BytesPerValue(const StoredFormat& format, int step)
{
    // More than any file holds. What a refused header left behind may multiply to far more, or to a negative
    // number.
    constexpr qint64 most = qint64(1) << 40;
    return qBound(qint64(0), qint64(step) * format.FrameSize(), most);
}

/** Takes every step-th frame of audio that arrives in pieces of any length. */
class FramePicker
{
public:
    FramePicker(const StoredFormat& format, BlockPick pick)
        : m_coding(format.Coding())
        , m_channelCount(format.audio.channelCount())
        , m_frameSize(format.CodedFrameSize())
        , m_pick(pick)
    {
    }

    void Append(QList<float>& values, QByteArrayView piece)
    {
        const qint64 frameCount = m_frameSize < 1 ? 0 : piece.size() / m_frameSize;
        if (m_next < frameCount) {
            AppendBlock(values, piece.sliced(m_next * m_frameSize), m_coding, m_channelCount, m_pick);
            m_next += (frameCount - m_next + m_pick.step - 1) / m_pick.step * m_pick.step;
        }
        m_next -= frameCount;
    }

private:
    SampleCoding m_coding;
    int m_channelCount;
    qsizetype m_frameSize;
    BlockPick m_pick;
    /** How many frames of the next piece come before the next wanted one. */
    qint64 m_next = 0;
};

/** Takes the lowest and the highest sample of every two steps of audio that arrives in pieces of any length. */
class PeakPicker
{
public:
    PeakPicker(const StoredFormat& format, BlockPick pick)
        : m_coding(format.Coding()), m_channelCount(format.audio.channelCount()), m_pick(pick)
    {
    }

    void Append(QList<float>& values, QByteArrayView piece)
    {
        m_samples.resize(0);
        AppendBlock(m_samples, piece, m_coding, m_channelCount, {1, m_pick.channel});
        for (qsizetype i = 0; i < m_samples.size();) {
            const qint64 wanted = 2 * qint64(m_pick.step) - m_count;
            const qsizetype end = i + qMin(wanted, m_samples.size() - i);
            Take({m_samples.constData() + i, m_samples.constData() + end});
            i = end;
            if (m_count == 2 * qint64(m_pick.step)) {
                AppendBoth(values);
            }
        }
    }

    /** What is left at the end. A single step has room for one of the two. */
    void AppendRest(QList<float>& values)
    {
        if (m_count > m_pick.step) {
            AppendBoth(values);
        } else if (m_count > 0) {
            values.append(std::abs(m_low) > std::abs(m_high) ? m_low : m_high);
        }
    }

private:
    static constexpr float infinity = std::numeric_limits<float>::infinity();

    void Take(std::span<const float> samples)
    {
        float low = m_low;
        float high = m_high;
        for (const float sample : samples) {
            const float shown = std::isfinite(sample) ? sample : 0.0F;
            low = std::min(low, shown);
            high = std::max(high, shown);
        }
        m_low = low;
        m_high = high;
        m_count += qint64(samples.size());
    }

    void AppendBoth(QList<float>& values)
    {
        values.append(std::exchange(m_low, infinity));
        values.append(std::exchange(m_high, -infinity));
        m_count = 0;
    }

    SampleCoding m_coding;
    int m_channelCount;
    BlockPick m_pick;
    /** Those of one piece. */
    QList<float> m_samples;
    /** Of the frames since the last two values. */
    qint64 m_count = 0;
    float m_low = infinity;
    float m_high = -infinity;
};

} // namespace

void WavFile::ReadData(double startTime, double endTime, int stepSize)
{
    const WavAudio audio = StartTask(*this, m_mutex, m_abortRead);
    const BlockPick pick{qMax(1, stepSize), audio.channel};
    const qint64 bytesPerValue = BytesPerValue(audio.format, pick.step);
    const BlockRange range{.end = audio.PositionOf(endTime),
                           .blockSize = valuesPerBlock * bytesPerValue,
                           .frameSize = audio.format.CodedFrameSize()};
    SharedFileCursor cursor(*this, m_deviceMutex, audio.PositionOf(startTime));
    const qint64 bytes = qMin(range.SizeFrom(cursor.Position()), cursor.BytesLeft());
    QList<float> samples;
    samples.reserve(qMin(bytes / qMax(qint64(1), bytesPerValue) + 1, mostReservedValues));

    FramePicker frames(audio.format, pick);
    PeakPicker peaks(audio.format, pick);
    const bool keepsPeaks = audio.keepsPeaks && pick.step > 1;
    const auto isAborted = [this] { return LoadShared(m_abortRead); };
    const auto report = [this, text = tr("Updating...")](int progress) {
        Q_EMIT ProgressChanged(progress, 0, 100, text);
    };
    const auto take = [&](QByteArrayView piece) {
        keepsPeaks ? peaks.Append(samples, piece) : frames.Append(samples, piece);
        return true;
    };
    const WalkResult result = WalkBlocks(cursor, range, {report, isAborted, take});
    if (result == WalkResult::FileEnded || result == WalkResult::FileFailed) {
        // The block that cannot be read is also reported.
        report(ProgressAt(cursor.Position(), range.end));
    }
    peaks.AppendRest(samples);
    if (!isAborted()) {
        {
            const QMutexLocker lock(&m_mutex);
            m_samples.swap(samples);
        }
        Q_EMIT NewData();
    }
    Q_EMIT ProgressChanged(0, 0, 1, tr("Updated"));
}
