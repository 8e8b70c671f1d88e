#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QFile>
#include <QtCore/QMutex>

namespace vantoraudio::AudioEngine {

/**
 * A task's own place in a file that other tasks read through the same QFile.
 *
 * The position of the file is moved only under the device lock, for one block at a time, so no task disturbs
 * another one. After a single task the file stands where the cursor stands. File and lock must outlive the cursor,
 * and nobody may open or close the file meanwhile. A cursor belongs to one thread.
 */
class SharedFileCursor
{
public:
    /** Moves the file to `position`, in bytes, which may lie behind its end. In a closed file, or for a negative
     *  position, the cursor stands at 0 and reads nothing. */
    SharedFileCursor(QFile& file, QMutex& deviceLock, qint64 position);

    /** In bytes from the start of the file. */
    qint64 Position() const { return m_position; }

    /** Whether it stands where it was to begin. */
    bool IsPlaced() const { return m_isPlaced; }

    /** How much of the file lies behind the cursor, in bytes. */
    qint64 BytesLeft() const;

    /**
     * Reads up to `size` bytes into `block` and moves behind them. `block` gets the size of what arrived and never
     * grows beyond what the file still holds; its memory is used again from call to call. False, and an empty
     * block, at the end of the file or after a failure.
     */
    bool Read(qint64 size, QByteArray& block);

    /** Whether the last Read() ended with an error instead of the end of the file. */
    bool HasFailed() const { return m_hasFailed; }

    /** Goes to another place. A negative one, or one in a file that cannot be read, changes nothing. */
    void MoveTo(qint64 position);

private:
    qint64 BytesLeftLocked() const;
    qint64 ReadLocked(char* bytes, qint64 size);

    QFile& m_file;
    QMutex& m_deviceLock;
    qint64 m_position = 0;
    bool m_isPlaced = false;
    bool m_hasFailed = false;
};

} // namespace vantoraudio::AudioEngine
