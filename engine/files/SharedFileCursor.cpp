#include "engine/files/SharedFileCursor.h"

#include <QtCore/QMutexLocker>

namespace vantoraudio::AudioEngine {

SharedFileCursor::SharedFileCursor(QFile& file, QMutex& deviceLock, qint64 position)
    : m_file(file), m_deviceLock(deviceLock)
{
    const QMutexLocker lock(&m_deviceLock);
    m_isPlaced = position >= 0 && m_file.isReadable() && m_file.seek(position);
    m_position = m_isPlaced ? position : 0;
}

qint64 SharedFileCursor::BytesLeft() const
{
    const QMutexLocker lock(&m_deviceLock);
    return BytesLeftLocked();
}

bool SharedFileCursor::Read(qint64 size, QByteArray& block)
{
    const QMutexLocker lock(&m_deviceLock);
    // Asking the file for its size takes time, so it is asked only when the block would have to grow.
    if (size > block.capacity()) {
        size = qMin(size, BytesLeftLocked());
        block.reserve(size);
    }
    block.resize(size);
    block.resize(ReadLocked(block.data(), size));
    m_position += block.size();
    return !block.isEmpty();
}

void SharedFileCursor::MoveTo(qint64 position)
{
    if (position == m_position) {
        return;
    }
    const QMutexLocker lock(&m_deviceLock);
    if (m_isPlaced && position >= 0 && m_file.seek(position)) {
        m_position = position;
    }
}

qint64 SharedFileCursor::BytesLeftLocked() const
{
    return m_isPlaced ? qMax(qint64(0), m_file.size() - m_position) : 0;
}

qint64 SharedFileCursor::ReadLocked(char* bytes, qint64 size)
{
    m_hasFailed = false;
    if (!m_isPlaced || size < 1) {
        return 0;
    }
    const bool isThere = m_file.pos() == m_position || m_file.seek(m_position);
    const qint64 count = isThere ? m_file.read(bytes, size) : -1;
    m_hasFailed = count < 0;
    return qMax(qint64(0), count);
}

} // namespace vantoraudio::AudioEngine
