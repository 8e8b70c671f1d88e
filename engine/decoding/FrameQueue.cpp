#include "engine/decoding/FrameQueue.h"

#include <utility>

namespace vantoraudio::AudioEngine {

bool FrameQueue::Push(FrameBatch batch)
{
    QMutexLocker lock(&m_mutex);
    while (!m_isClosed && !m_batches.empty() && m_bytes + batch.bytes > mostBytes) {
        m_changed.wait(&m_mutex);
    }
    if (m_isClosed) {
        return false;
    }
    m_bytes += batch.bytes;
    m_batches.push_back(std::move(batch));
    m_changed.wakeAll();
    return true;
}

FrameBatch FrameQueue::Pop()
{
    QMutexLocker lock(&m_mutex);
    while (!m_isClosed && m_batches.empty()) {
        m_changed.wait(&m_mutex);
    }
    if (m_batches.empty()) {
        return {};
    }
    FrameBatch batch = std::move(m_batches.front());
    m_batches.pop_front();
    m_bytes -= batch.bytes;
    m_changed.wakeAll();
    return batch;
}

void FrameQueue::Close()
{
    const QMutexLocker lock(&m_mutex);
    m_isClosed = true;
    m_changed.wakeAll();
}

} // namespace vantoraudio::AudioEngine
