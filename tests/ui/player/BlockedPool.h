#pragma once

#include <QtCore/QSemaphore>
#include <QtCore/QThreadPool>

/** Occupies every thread of a pool, so that tasks wait in its queue for as long as this lives. */
class BlockedPool
{
public:
    explicit BlockedPool(QThreadPool& pool = *QThreadPool::globalInstance()) : m_pool(pool)
    {
        for (int i = 0; i < m_count; ++i) {
            m_pool.start([this] {
                m_occupied.release();
                m_freed.acquire();
            });
        }
        m_occupied.acquire(m_count);
    }
    ~BlockedPool()
    {
        m_freed.release(m_count);
        m_pool.waitForDone();
    }
    Q_DISABLE_COPY_MOVE(BlockedPool)

private:
    QThreadPool& m_pool;
    const int m_count = m_pool.maxThreadCount();
    QSemaphore m_occupied;
    QSemaphore m_freed;
};
