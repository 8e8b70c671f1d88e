#include "engine/LargePages.h"
#include "engine/SampleBlocks.h"
#include "engine/SharedFileCursor.h"
#include "engine/SharedValue.h"
#include "engine/Truncation.h"

#include <vantorAudioEngine/WavFile.h>

#include <QtCore/QMutexLocker>

using namespace vantoraudio::AudioEngine;

namespace {

/** How many values a block of an extraction yields. */
constexpr qint64 valuesPerBlock = 200;

/** So many bytes are read at once, in whole blocks and at least one of them. */
constexpr qint64 pieceSize = qint64(1024) * 1024;

} // namespace

/** What one extraction reads, taken once when it starts. */
struct WavFile::Extraction
{
    BlockFormat format;
    BlockPick pick;
    int frameSize = 0;
    /** Positions in the file, in bytes. */
    qint64 start = 0;
    qint64 end = 0;

    qint64 BlockSize() const { return valuesPerBlock * BytesPerValue(); }
    /** How much to read at once at a place, in bytes. */
    qint64 PieceSize(qint64 position) const;
    /** Whole blocks are read, so it may be more than lies between start and end. */
    qint64 BytesToRead() const;
    qint64 ValueCount(qint64 bytes) const;

private:
    qint64 BytesPerValue() const;
};

qint64 WavFile::Extraction::BytesPerValue() const
{
    // More than any file holds; what a refused header left behind may multiply to far more, or to less than
    // nothing.
    constexpr qint64 most = qint64(1) << 40;
    return qBound(qint64(0), qint64(pick.step) * frameSize, most);
}

qint64 WavFile::Extraction::BytesToRead() const
{
    if (start >= end || frameSize < 1) {
        return 0;
    }
    const qint64 blockCount = (end - start + BlockSize() - 1) / BlockSize();
    return blockCount * BlockSize();
}

qint64 WavFile::Extraction::PieceSize(qint64 position) const
{
    if (BlockSize() < 1) {
        return 0;
    }
    const qint64 blocksLeft = (end - position + BlockSize() - 1) / BlockSize();
    return qBound(qint64(1), pieceSize / BlockSize(), blocksLeft) * BlockSize();
}

qint64 WavFile::Extraction::ValueCount(qint64 bytes) const
{
    return BytesPerValue() < 1 ? 0 : (bytes + BytesPerValue() - 1) / BytesPerValue();
}

void WavFile::ReadData(double startTime, double endTime, int stepSize)
{
    QList<float> samples = Extract(StartExtraction(startTime, endTime, stepSize));
    if (!LoadShared(m_abortRead)) {
        StoreSamples(samples);
        Q_EMIT NewData();
    }
    Q_EMIT ProgressChanged(0, 0, 1, tr("Updated"));
}

WavFile::Extraction WavFile::StartExtraction(double startTime, double endTime, int stepSize)
{
    const QMutexLocker lock(&m_mutex);
    StoreShared(m_abortRead, false);

    const int frameSize = m_fileFormat.channelCount() * (m_sampleSize / 8);
    // Offsets are 32-bit on purpose: those past 2 GiB of sample data wrap.
    const auto position = [=, this](double time) {
        const int frame = TruncateToInt32(double(m_fileFormat.sampleRate()) * time);
        return m_dataOffset + MultiplyWrapping(frameSize, frame);
    };
    return {.format = {m_fileFormat, m_sampleSize},
            .pick = {qMax(1, stepSize), GetSelectedChannel()},
            .frameSize = frameSize,
            .start = position(startTime),
            .end = position(endTime)};
}

QList<float> WavFile::Extract(const Extraction& extraction)
{
    const QString progressText = tr("Updating...");
    SharedFileCursor cursor(*this, m_deviceMutex, extraction.start);
    QList<float> values;
    values.reserve(extraction.ValueCount(qMin(extraction.BytesToRead(), cursor.BytesLeft())));
    PreferLargePages(values.constData(), values.capacity() * qsizetype(sizeof(float)));
    const auto report = [&](qint64 position) {
        // Measured from the beginning of the file on purpose: a range that starts late does not start at 0.
        const double progress = double(position) / double(extraction.end) * 100.0;
        Q_EMIT ProgressChanged(TruncateToInt32(progress), 0, 100, progressText);
    };
    QByteArray piece;
    while (cursor.Position() < extraction.end && !LoadShared(m_abortRead)) {
        const qint64 position = cursor.Position();
        if (!cursor.ReadBlock(extraction.PieceSize(position), piece)) {
            report(position);
            break;
        }
        qint64 passed = 0;
        do {
            report(position + passed);
            passed = qMin(passed + extraction.BlockSize(), qint64(piece.size()));
        } while (passed < piece.size() && !LoadShared(m_abortRead));
        AppendBlock(values, QByteArrayView(piece).first(passed), extraction.format, extraction.pick);
        cursor.MoveTo(position + passed);
    }
    return values;
}

void WavFile::StoreSamples(QList<float>& samples)
{
    const QMutexLocker lock(&m_mutex);
    m_samples.swap(samples);
}
