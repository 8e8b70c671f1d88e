#include "engine/SharedValue.h"
#include "engine/files/FileReplacement.h"
#include "engine/files/SharedFileCursor.h"
#include "engine/samples/Truncation.h"
#include "engine/wav/ByteCounting.h"
#include "engine/wav/WavHeader.h"

#include <vantorAudioEngine/WavFile.h>

#include <QtCore/QFileInfo>
#include <QtCore/QMutexLocker>

#include <cmath>

using namespace vantoraudio::AudioEngine;

namespace {

/** A block is what lies between two looks at the abort flag. */
constexpr qint64 framesPerBlock = 200;

/** How much is read and written at once: many blocks, which costs the system far less than one by one. */
constexpr qint64 bytesPerPiece = qint64(512) * 1024;

} // namespace

/** One channel of a stretch of this file on its way into another file. */
struct WavFile::ChannelCopy
{
    QAudioFormat format;
    int sampleSize = 0;
    ChannelFormat channel = ChannelNone;
    qint64 dataOffset = 0;
    /** Of the whole file, in seconds. */
    double duration = 0.0;
    bool allowsLargeFiles = false;

    /** Positions in this file, in bytes. Whole blocks are copied, so audio behind the end may come along: the
     *  header's size does not tell of it, on purpose. */
    qint64 start = 0;
    qint64 end = 0;

    const bool* abortFlag = nullptr;
    QString progressText = {};
    AudioEngineReturnValue failure = Success;

    int FrameSize() const { return sampleSize / 8 * format.channelCount(); }
    qint64 BlockSize() const { return framesPerBlock * FrameSize(); }
    ByteCounting Counting() const { return ByteCounting(allowsLargeFiles); }
    qint64 PositionOf(double seconds) const;
    qint64 PieceSize(qint64 position) const;
    bool IsAborted() const { return LoadShared(*abortFlag); }
    QAudioFormat OutputFormat() const;
    BlockWriter Writer() const;
};

qint64 WavFile::ChannelCopy::PositionOf(double seconds) const
{
    return Counting().PositionOf(seconds, format.sampleRate(), FrameSize(), dataOffset);
}

/** As many whole blocks as are wanted from there, and as fit into a piece. */
qint64 WavFile::ChannelCopy::PieceSize(qint64 position) const
{
    if (BlockSize() < 1) {
        return 0;
    }
    const qint64 wantedBlocks = (end - position + BlockSize() - 1) / BlockSize();
    const qint64 fittingBlocks = qMax(qint64(1), bytesPerPiece / BlockSize());
    return qMin(wantedBlocks, fittingBlocks) * BlockSize();
}

QAudioFormat WavFile::ChannelCopy::OutputFormat() const
{
    QAudioFormat output = format;
    output.setChannelCount(1);
    output.setChannelConfig(QAudioFormat::ChannelConfigUnknown);
    if (sampleSize == 24) {
        output.setSampleFormat(QAudioFormat::Float);
    }
    return output;
}

WavFile::BlockWriter WavFile::ChannelCopy::Writer() const
{
    switch (format.sampleFormat()) {
    case QAudioFormat::Int16:
        return &WavFile::WriteS16Block;
    case QAudioFormat::Int32:
        return sampleSize == 24 ? &WavFile::ConvertS24BlockToF32Block : &WavFile::WriteS32Block;
    case QAudioFormat::Float:
        return &WavFile::WriteF32Block;
    default:
        return nullptr;
    }
}

WavFile::AudioEngineReturnValue WavFile::FilterChannel(const QString& outPath)
{
    ChannelCopy copy = SnapshotForCopy();
    if (copy.format.channelCount() != 2 || (copy.channel != ChannelLeft && copy.channel != ChannelRight)) {
        return Success;
    }
    ClearAbortFlag(m_abortChannelFilter);
    // A channel file that is there already is used as it is.
    if (QFileInfo::exists(outPath)) {
        return Success;
    }
    copy.start = copy.dataOffset;
    copy.end = copy.PositionOf(copy.duration);
    copy.abortFlag = &m_abortChannelFilter;
    copy.progressText = tr("Updating...");
    copy.failure = ErrorFilterChannel;

    const double bytesPerSecond = double(copy.format.sampleRate()) * copy.OutputFormat().bytesPerSample();
    return WriteChannelFile(outPath, copy, copy.Counting().Truncate(copy.duration * bytesPerSecond));
}

WavFile::AudioEngineReturnValue WavFile::CreateSnippet(const QString& outPath, double start, double end)
{
    // Opening it for writing would destroy the audio before it is read.
    if (IsSameFile(fileName(), outPath)) {
        return ErrorCreateSnippet;
    }
    ClearAbortFlag(m_abortWrite);
    ChannelCopy copy = SnapshotForCopy();
    copy.start = copy.PositionOf(start);
    copy.end = copy.PositionOf(end);
    copy.abortFlag = &m_abortWrite;
    copy.progressText = tr("Creating snippet...");
    copy.failure = ErrorCreateSnippet;

    // Whole milliseconds, so the size stated may differ from what the frame positions span. A snippet without a
    // frame states -1.
    const double milliseconds = std::round((end - start) * 1000.0);
    const ByteCounting counting = copy.Counting();
    const qint64 frames = counting.Truncate(double(copy.format.sampleRate()) * milliseconds / 1000.0);
    const int sampleSize = copy.OutputFormat().bytesPerSample();
    return WriteChannelFile(outPath, copy,
                            vantoraudio::AudioEngine::SamplesToBytes(frames, sampleSize, 1, counting));
}

WavFile::ChannelCopy WavFile::SnapshotForCopy() const
{
    const QMutexLocker lock(&m_mutex);
    return {.format = m_fileFormat,
            .sampleSize = m_sampleSize,
            .channel = GetSelectedChannel(),
            .dataOffset = m_dataOffset,
            .duration = m_duration,
            .allowsLargeFiles = GetLargeFiles()};
}

WavFile::AudioEngineReturnValue WavFile::WriteChannelFile(const QString& outPath, const ChannelCopy& copy,
                                                          qint64 dataSize)
{
    WavFile output;
    output.SetLargeFiles(copy.allowsLargeFiles);
    const bool isWritten = output.StartWriting(outPath, copy.OutputFormat(), dataSize) &&
                           CopyChannel(copy, output) && output.FinishWriting();
    return isWritten ? Success : copy.failure;
}

/** False when the output could not be filled; an abort and the end of this file are no failures. */
bool WavFile::CopyChannel(const ChannelCopy& copy, WavFile& output)
{
    SharedFileCursor cursor(*this, m_deviceMutex, copy.start);
    QByteArray piece;
    while (cursor.Position() < copy.end) {
        const qint64 position = cursor.Position();
        if (copy.IsAborted()) {
            Q_EMIT ProgressChanged(0, 0, 100, tr(""));
            return true;
        }
        if (!cursor.ReadBlock(copy.PieceSize(position), piece)) {
            return true;
        }
        const BlockWriter writeBlock = copy.Writer();
        if (writeBlock == nullptr) {
            Q_EMIT ProgressChanged(0, 0, 100, tr(""));
            return false;
        }
        piece.truncate(PassBlocks(copy, position, piece.size()));
        (this->*writeBlock)(piece, output, copy.format, copy.channel);
        cursor.MoveTo(position + piece.size());
        if (output.m_hasLostBytes) {
            return false;
        }
    }
    return true;
}

/** Reports every block of a piece, up to the one during which the copy was aborted. Returns their bytes. */
qsizetype WavFile::PassBlocks(const ChannelCopy& copy, qint64 position, qsizetype size)
{
    qint64 passed = 0;
    do {
        // Measured from the beginning of the file on purpose: a range that starts late does not start at 0.
        const double progress = double(position + passed) / double(copy.end) * 100.0;
        passed = qMin(passed + copy.BlockSize(), qint64(size));
        Q_EMIT ProgressChanged(TruncateToInt32(progress), 0, 100, copy.progressText);
    } while (passed < size && !copy.IsAborted());
    return passed;
}
