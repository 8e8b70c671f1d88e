#pragma once

#include <chrono>

namespace vantoraudio::AudioEngine {

/**
 * Gives a decoder time to catch up. Qt 6.4's sleeps for 10 ms whenever it is asked for a buffer and has none
 * ready.
 *
 * It keeps nine buffers ready, so a reader that is a little faster than the decoder waits most of the time. A
 * reader that rests after every eight buffers seldom meets such a nap. How long it must rest differs from file to
 * file, and most files need no rest: the pause begins at 0, grows with each nap and shrinks when there are none.
 */
class ReadingPauses
{
public:
    /** To be called for each buffer, with the time that it was waited for. Returns how long to rest before it is
     *  read. */
    std::chrono::microseconds OnBuffer(std::chrono::nanoseconds wait);

private:
    int m_buffers = 0;
    int m_buffersWithoutNap = 0;
    std::chrono::microseconds m_pause{0};
};

} // namespace vantoraudio::AudioEngine
