#pragma once

#include "engine/samples/FFmpegPointers.h"

#include <QtCore/QtGlobal>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <vector>

namespace vantoraudio::AudioEngine {

/** Frames that go together from one thread to another; single ones would wake it too often. */
struct FrameBatch
{
    std::vector<FramePointer> frames;
    /** Of all samples. */
    qint64 bytes = 0;
};

/** Decoded frames on their way from the thread that decodes to the thread that writes. It holds few bytes. */
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
    /** A batch that is larger by itself goes alone. */
    static constexpr qint64 mostBytes = qint64(1) << 20;

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<FrameBatch> m_batches;
    qint64 m_bytes = 0;
    bool m_isClosed = false;
};

} // namespace vantoraudio::AudioEngine
