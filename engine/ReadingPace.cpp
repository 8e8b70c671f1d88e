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

constexpr auto late = 1ms;
/** Late buffers among the last 256 or so. Finding the pace takes ten of them. */
constexpr double mostLateness = 20.0;
constexpr double forgetting = 1.0 - 1.0 / 256.0;

} // namespace

ReadingPace::ReadingPace() : m_longest(longestInterval) {}

ReadingPace::Duration ReadingPace::IntervalAfter(Duration wait)
{
    m_lateness *= forgetting;
    if (wait > late) {
        m_lateness += 1.0;
    }
    if (wait > sleep) {
        m_interval = std::clamp(m_interval * slowing, firstInterval, longestInterval);
    } else {
        m_interval *= quickening;
    }
    return std::chrono::duration_cast<Duration>(std::min(m_interval, m_longest));
}

void ReadingPace::SetWork(Duration work)
{
    m_longest = std::clamp<decltype(m_longest)>(work, Duration::zero(), longestInterval);
}

bool ReadingPace::IsHopeless() const
{
    return m_lateness > mostLateness;
}

} // namespace vantoraudio::AudioEngine
