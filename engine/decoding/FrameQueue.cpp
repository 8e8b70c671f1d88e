#include "engine/decoding/FrameQueue.h"

#include <utility>

namespace vantoraudio::AudioEngine {

bool FrameQueue::Push(FrameBatch batch)
{
    std::unique_lock lock(m_mutex);
    while (!m_isClosed && !m_batches.empty() && m_bytes + batch.bytes > mostBytes) {
        m_changed.wait(lock);
    }
    if (m_isClosed) {
        return false;
    }
    m_bytes += batch.bytes;
    m_batches.push_back(std::move(batch));
    m_changed.notify_all();
    return true;
}

FrameBatch FrameQueue::Pop()
{
    std::unique_lock lock(m_mutex);
    while (!m_isClosed && m_batches.empty()) {
        m_changed.wait(lock);
    }
    if (m_batches.empty()) {
        return {};
    }
    FrameBatch batch = std::move(m_batches.front());
    m_batches.pop_front();
    m_bytes -= batch.bytes;
    m_changed.notify_all();
    return batch;
}

void FrameQueue::Close()
{
    const std::lock_guard lock(m_mutex);
    m_isClosed = true;
    m_changed.notify_all();
}

} // namespace vantoraudio::AudioEngine
