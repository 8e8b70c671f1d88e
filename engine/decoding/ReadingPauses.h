#pragma once

#include <chrono>

namespace vantoraudio::AudioEngine {

/**
 * Lets a decoder catch up that naps whenever it is asked for a buffer and has none.
 *
 * Qt 6.4's keeps nine buffers ready and naps for 10 ms, so a reader that is a little faster than the decoder waits
 * most of the time. One that rests after every eight buffers hardly meets a nap. How long the rest must be differs
 * from file to file, and most need none: it begins with nothing, grows at each nap and shrinks without.
 */
class ReadingPauses
{
public:
    /** To be told how long each buffer was waited for. Gives how long to rest before it is read. */
    std::chrono::microseconds OnBuffer(std::chrono::nanoseconds wait);

private:
    int m_buffers = 0;
    int m_buffersWithoutNap = 0;
    std::chrono::microseconds m_pause{0};
};

} // namespace vantoraudio::AudioEngine
