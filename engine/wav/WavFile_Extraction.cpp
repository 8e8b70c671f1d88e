#include "engine/files/BlockWalk.h"
#include "engine/samples/SampleBlocks.h"
#include "engine/wav/WavAudio.h"

#include <vantorAudioEngine/WavFile.h>

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

    FramePicker picker(audio.format, pick);
    const auto isAborted = [this] { return LoadShared(m_abortRead); };
    const auto report = [this, text = tr("Updating...")](int progress) {
        Q_EMIT ProgressChanged(progress, 0, 100, text);
    };
    const auto take = [&](QByteArrayView frames) {
        picker.Append(samples, frames);
        return true;
    };
    const WalkResult result = WalkBlocks(cursor, range, {report, isAborted, take});
    if (result == WalkResult::FileEnded || result == WalkResult::FileFailed) {
        // The block that cannot be read is also reported.
        report(ProgressAt(cursor.Position(), range.end));
    }
    if (!isAborted()) {
        {
            const QMutexLocker lock(&m_mutex);
            m_samples.swap(samples);
        }
        Q_EMIT NewData();
    }
    Q_EMIT ProgressChanged(0, 0, 1, tr("Updated"));
}
