#pragma once

#include <chrono>

namespace vantoraudio::AudioEngine {

/**
 * How fast to read what a decoder on another thread prepares.
 *
 * Qt 6.4's decoder keeps a few buffers ready and goes to sleep for 10 ms when it is asked for one and has none. A
 * reader that asks as fast as it can so waits most of the time, while one that takes the shortest of rests now and
 * then hardly meets such a sleep. Where there are no sleeps there are no rests.
 */
class ReadingPace
{
public:
    using Duration = std::chrono::microseconds;

    /** To be told how long a buffer was waited for. Gives the rest to take before the next one, mostly none. */
    Duration RestAfter(Duration wait);

private:
    int m_buffers = 0;
    int m_restsLeft = 0;
};

} // namespace vantoraudio::AudioEngine
