#pragma once

#include "engine/FFmpegPointers.h"

#include <QtCore/QMutex>
#include <QtCore/QWaitCondition>

#include <deque>
#include <vector>

namespace vantoraudio::AudioEngine {

/** Frames that go together from one thread to another; single ones would wake it too often. */
using FrameBatch = std::vector<FramePointer>;

/** Decoded frames on their way from the thread that decodes to the thread that writes. It holds a few at most. */
class FrameQueue
{
public:
    /** Waits for a place. False when the other side has left. */
    bool Push(FrameBatch batch);
    /** Waits for the next batch; empty when the other side has left and all was taken. */
    FrameBatch Pop();
    /** Either side leaves. What was pushed can still be taken. */
    void Close();

private:
    static constexpr std::size_t mostBatches = 4;

    QMutex m_mutex;
    QWaitCondition m_changed;
    std::deque<FrameBatch> m_batches;
    bool m_isClosed = false;
};

} // namespace vantoraudio::AudioEngine
