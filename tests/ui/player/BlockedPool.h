#pragma once

#include <QtCore/QSemaphore>
#include <QtCore/QThreadPool>

/** Occupies every thread of the global pool, so that tasks wait in its queue for as long as this lives. */
class BlockedPool
{
public:
    BlockedPool()
    {
        for (int i = 0; i < m_count; ++i) {
            QThreadPool::globalInstance()->start([this] {
                m_occupied.release();
                m_freed.acquire();
            });
        }
        m_occupied.acquire(m_count);
    }
    ~BlockedPool()
    {
        m_freed.release(m_count);
        QThreadPool::globalInstance()->waitForDone();
    }
    Q_DISABLE_COPY_MOVE(BlockedPool)

private:
    const int m_count = QThreadPool::globalInstance()->maxThreadCount();
    QSemaphore m_occupied;
    QSemaphore m_freed;
};
