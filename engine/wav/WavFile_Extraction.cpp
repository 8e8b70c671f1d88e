#include "engine/SharedValue.h"
#include "engine/files/SharedFileCursor.h"
#include "engine/samples/SampleBlocks.h"
#include "engine/samples/Truncation.h"
#include "engine/wav/ByteCounting.h"

#include <vantorAudioEngine/WavFile.h>

#include <QtCore/QMutexLocker>

using namespace vantoraudio::AudioEngine;

namespace {

/** How many values a block of an extraction yields. */
constexpr qint64 valuesPerBlock = 200;

/** So many bytes are read at once: many short blocks, or a part of a long one. */
constexpr qint64 pieceSize = qint64(1024) * 1024;

/** Memory for so many values is taken at once; the length of a file is no reason to take more than that. */
constexpr qint64 mostReservedValues = qint64(1) << 30;

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
    /** Whether a block is read by itself, and in parts. */
    bool HasLongBlocks() const { return BlockSize() > pieceSize; }
    /** Of one wanted frame from the next one, in bytes, as the block readers count them; 0 where they take none.
     */
    qint64 Distance() const { return pick.step * BytesPerFrame(format); }
    /** How much to read at once at a place, in bytes: whole blocks, at least one of them. */
    qint64 PieceSize(qint64 position) const;
    /** How much to read at once of a long block, in bytes: whole distances, or all that is left of it. */
    qint64 PartSize(qint64 left) const;
    /** Whole blocks are read, so it may be more than lies between start and end. */
    qint64 BytesToRead() const;
    qint64 ValueCount(qint64 bytes) const;
    bool AppendLongBlock(QList<float>& values, SharedFileCursor& cursor, QByteArray& buffer) const;

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
    if (start >= end || BlockSize() < 1) {
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

qint64 WavFile::Extraction::PartSize(qint64 left) const
{
    const qint64 distance = qMax(qint64(1), Distance());
    return qMin(left, qMax(qint64(1), pieceSize / distance) * distance);
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
    const auto position = [=, this, counting = ByteCounting(GetLargeFiles())](double time) {
        return counting.PositionOf(time, m_fileFormat.sampleRate(), frameSize, m_dataOffset);
    };
    return {.format = {m_fileFormat, m_sampleSize},
            .pick = {qMax(1, stepSize), GetSelectedChannel()},
            .frameSize = frameSize,
            .start = position(startTime),
            .end = position(endTime)};
}

/** Reads a block and appends its values. False when nothing of it arrives. */
bool WavFile::Extraction::AppendLongBlock(QList<float>& values, SharedFileCursor& cursor, QByteArray& buffer) const
{
    bool hasArrived = false;
    bool isWhole = true;
    for (qint64 left = BlockSize(); left > 0 && isWhole; left -= buffer.size()) {
        const qint64 size = PartSize(left);
        hasArrived = cursor.ReadBlock(size, buffer) || hasArrived;
        isWhole = buffer.size() == size;
        AppendBlock(values, buffer, format, pick);
    }
    return hasArrived;
}

QList<float> WavFile::Extract(const Extraction& extraction)
{
    const QString progressText = tr("Updating...");
    SharedFileCursor cursor(*this, m_deviceMutex, extraction.start);
    QList<float> values;
    const qint64 valueCount = extraction.ValueCount(qMin(extraction.BytesToRead(), cursor.BytesLeft()));
    values.reserve(qMin(valueCount, mostReservedValues));
    const auto report = [&](qint64 position) {
        // Measured from the beginning of the file on purpose: a range that starts late does not start at 0.
        const double progress = double(position) / double(extraction.end) * 100.0;
        Q_EMIT ProgressChanged(TruncateToInt32(progress), 0, 100, progressText);
    };
    QByteArray buffer;
    const auto appendLongBlock = [&](qint64 position) {
        report(position);
        return extraction.AppendLongBlock(values, cursor, buffer);
    };
    const auto appendShortBlocks = [&](qint64 position) {
        if (!cursor.ReadBlock(extraction.PieceSize(position), buffer)) {
            report(position);
            return false;
        }
        qint64 passed = 0;
        do {
            report(position + passed);
            passed = qMin(passed + extraction.BlockSize(), qint64(buffer.size()));
        } while (passed < buffer.size() && !LoadShared(m_abortRead));
        AppendBlock(values, QByteArrayView(buffer).first(passed), extraction.format, extraction.pick);
        cursor.MoveTo(position + passed);
        return true;
    };
    bool hasMore = true;
    while (hasMore && cursor.Position() < extraction.end && !LoadShared(m_abortRead)) {
        const qint64 position = cursor.Position();
        hasMore = extraction.HasLongBlocks() ? appendLongBlock(position) : appendShortBlocks(position);
    }
    return values;
}

void WavFile::StoreSamples(QList<float>& samples)
{
    const QMutexLocker lock(&m_mutex);
    m_samples.swap(samples);
}
