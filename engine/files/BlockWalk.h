#pragma once

#include "engine/files/SharedFileCursor.h"

#include <functional>

/** How every long task passes over a stretch of a file: in whole blocks, with a report and a look for each. */
namespace vantoraudio::AudioEngine {

/** Positions and sizes in bytes. */
struct BlockRange
{
    /** The last block is whole all the same and may reach behind it. */
    qint64 end = 0;
    qint64 blockSize = 0;
    /** Never torn apart; a block is a multiple of it. */
    qint64 frameSize = 1;
    /** How long the file was when it was opened; 0 where that does not count. */
    qint64 fileSize = 0;

    /** Of all blocks from `start` on; 0 where there is none. */
    qint64 SizeFrom(qint64 start) const;
};

struct BlockTask
{
    /** Called for every block, with the percentage that is done. */
    std::function<void(int progress)> report;
    /** Asked before every block. */
    std::function<bool()> isAborted;
    /** Takes whole frames: many blocks at once, or a part of a long one. False stops the walk. */
    std::function<bool(QByteArrayView frames)> take;
};

enum class WalkResult
{
    Complete,
    /** The file ended before the range, as it did when it was opened. */
    FileEnded,
    /** The file could not be read, or is shorter than it was. */
    FileFailed,
    Aborted,
    /** By take(). */
    Stopped
};

/** How far behind the beginning of the file `position` is, as a percentage of `end`. A range that starts late does
 *  not start at 0, on purpose. */
int ProgressAt(qint64 position, qint64 end);

/** From where the cursor stands. It ends behind the last block that was taken. */
WalkResult WalkBlocks(SharedFileCursor& cursor, const BlockRange& range, const BlockTask& task);

} // namespace vantoraudio::AudioEngine
