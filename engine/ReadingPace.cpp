#include "engine/ReadingPace.h"

#include <algorithm>

using namespace std::chrono_literals;

namespace vantoraudio::AudioEngine {
namespace {

constexpr auto sleep = 5ms;
/** Half of what a thousand and some samples of a common format take to decode: the first sleep may mean nothing.
 */
constexpr std::chrono::duration<double, std::nano> firstInterval = 12us;
constexpr std::chrono::duration<double, std::nano> longestInterval = 200us;
constexpr double slowing = 1.25;
/** Takes back one slowing in some 4,000 buffers: a sleep costs as much as 250 of them. */
constexpr double quickening = 1.0 - 1.0 / 16384.0;

} // namespace

ReadingPace::ReadingPace() : m_longest(longestInterval) {}

ReadingPace::Duration ReadingPace::IntervalAfter(Duration wait)
{
    if (wait > sleep) {
        m_interval = std::max(m_interval * slowing, firstInterval);
    } else {
        m_interval *= quickening;
    }
    m_interval = std::min(m_interval, m_longest);
    return std::chrono::duration_cast<Duration>(m_interval);
}

void ReadingPace::SetWork(Duration work)
{
    m_longest = std::min<decltype(m_longest)>(work, longestInterval);
}

} // namespace vantoraudio::AudioEngine
