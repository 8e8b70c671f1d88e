#include "engine/files/BlockWalk.h"

#include "engine/samples/Truncation.h"

namespace vantoraudio::AudioEngine {

namespace {

/** So much is read and handed over at once, which costs the system far less than block by block. */
constexpr qint64 bytesPerPiece = qint64(512) * 1024;

qint64 PieceSize(const BlockRange& range)
{
    const qint64 frameSize = qMax(qint64(1), range.frameSize);
    return qMax(qint64(1), bytesPerPiece / frameSize) * frameSize;
}

WalkResult EndOf(const SharedFileCursor& cursor, const BlockRange& range, const BlockTask& task)
{
    if (cursor.Position() >= range.end) {
        return WalkResult::Complete;
    }
    if (task.isAborted()) {
        return WalkResult::Aborted;
    }
    const bool isShorter = cursor.IsPlaced() && cursor.Position() < range.fileSize;
    return cursor.HasFailed() || isShorter ? WalkResult::FileFailed : WalkResult::FileEnded;
}

} // namespace

qint64 BlockRange::SizeFrom(qint64 start) const
{
    if (start >= end || blockSize < 1) {
        return 0;
    }
    return (end - start + blockSize - 1) / blockSize * blockSize;
}

int ProgressAt(qint64 position, qint64 end)
{
    return TruncateToInt32(double(position) / double(end) * 100.0);
}

WalkResult WalkBlocks(SharedFileCursor& cursor, const BlockRange& range, const BlockTask& task)
{
    qint64 nextBlock = cursor.Position();
    const qint64 lastEnd = nextBlock + range.SizeFrom(nextBlock);
    qint64 stop = lastEnd;
    QByteArray piece;
    while (cursor.Position() < stop) {
        const qint64 position = cursor.Position();
        if (!cursor.Read(qMin(PieceSize(range), stop - position), piece)) {
            return EndOf(cursor, range, task);
        }
        while (nextBlock < position + piece.size() && nextBlock < stop) {
            if (task.isAborted()) {
                stop = nextBlock;
            } else {
                task.report(ProgressAt(nextBlock, range.end));
                nextBlock += range.blockSize;
            }
        }
        piece.truncate(qMin(qint64(piece.size()), stop - position));
        if (!task.take(piece)) {
            return WalkResult::Stopped;
        }
        cursor.MoveTo(position + piece.size());
    }
    return stop < lastEnd ? WalkResult::Aborted : WalkResult::Complete;
}

} // namespace vantoraudio::AudioEngine
