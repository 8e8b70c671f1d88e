#pragma once

#include <chrono>

namespace vantoraudio::AudioEngine {

/**
 * How fast to read what a decoder on another thread prepares.
 *
 * Qt 6.4's decoder keeps a few buffers ready and goes to sleep for 10 ms when it is asked for one and has none. A
 * reader that is faster than the decoder so waits most of the time, while one that takes a short rest now and then
 * never meets such a sleep. The rest is found by trial: it grows with every sleep and shrinks while there is none.
 */
class ReadingPace
{
public:
    using Duration = std::chrono::microseconds;

    /** To be told how long a buffer was waited for. Gives the rest to take before the next one, mostly none. */
    Duration RestAfter(Duration wait);

private:
    int m_buffers = 0;
    Duration m_rest{0};
};

} // namespace vantoraudio::AudioEngine
