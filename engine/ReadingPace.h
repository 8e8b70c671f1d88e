#pragma once

#include <chrono>

namespace vantoraudio::AudioEngine {

/**
 * How fast to read what a decoder on another thread prepares.
 *
 * Qt 6.4's decoder keeps a few buffers ready and goes to sleep for 10 ms when it is asked for one and has none. A
 * reader that asks as fast as it can so waits most of the time, while one that is a little slower than the decoder
 * hardly meets such a sleep. How fast that is differs from file to file, so the pace feels its way: it slows down
 * at a sleep and quickens again while there is none. Where there are no sleeps there is no pace to keep, and none
 * is slower than the decoder's work on a buffer takes: sleeps that come then are other programs' doing.
 */
class ReadingPace
{
public:
    using Duration = std::chrono::nanoseconds;

    ReadingPace();

    /** To be told how long a buffer was waited for. Gives the shortest time from the last reading to the next. */
    Duration IntervalAfter(Duration wait);
    /** What the decoder's work on a buffer takes, at most. */
    void SetWork(Duration work);
    /** Whether buffers are late so often that no pace helps: other work keeps the processors busy. */
    [[nodiscard]] bool IsHopeless() const;

private:
    std::chrono::duration<double, std::nano> m_interval{0};
    std::chrono::duration<double, std::nano> m_longest;
    double m_lateness = 0.0;
};

} // namespace vantoraudio::AudioEngine
