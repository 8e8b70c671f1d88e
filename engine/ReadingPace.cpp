#include "engine/ReadingPace.h"

#include <algorithm>

using namespace std::chrono_literals;

namespace vantoraudio::AudioEngine {
namespace {

constexpr auto sleep = 5ms;
/** What a thousand and some samples of a common format take to decode on a slow processor. */
constexpr std::chrono::duration<double, std::nano> firstInterval = 36us;
constexpr std::chrono::duration<double, std::nano> longestInterval = 200us;
constexpr double slowing = 1.125;
/** Takes back one slowing in some 4,000 buffers: a sleep costs as much as 200 of them. */
constexpr double quickening = 1.0 - 1.0 / 32768.0;

} // namespace

ReadingPace::Duration ReadingPace::IntervalAfter(Duration wait)
{
    if (wait > sleep) {
        m_interval = std::clamp(m_interval * slowing, firstInterval, longestInterval);
    } else {
        m_interval *= quickening;
    }
    return std::chrono::duration_cast<Duration>(m_interval);
}

} // namespace vantoraudio::AudioEngine
