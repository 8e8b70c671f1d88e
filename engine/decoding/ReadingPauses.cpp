#include "engine/decoding/ReadingPauses.h"

#include <algorithm>

using namespace std::chrono_literals;

namespace vantoraudio::AudioEngine {

namespace {

constexpr int readTogether = 8;
/** Part of a nap may be over when the reader begins to wait. */
constexpr auto nap = 5ms;
constexpr auto step = 20us;
/** On a busy machine buffers are late for other reasons too, and then no pause helps. */
constexpr std::chrono::microseconds longest = 1ms;
/** So many buffers' pauses cost about as much as a nap. */
constexpr int worthANap = 1000;

} // namespace

std::chrono::microseconds ReadingPauses::OnBuffer(std::chrono::nanoseconds wait)
{
    ++m_buffers;
    ++m_buffersWithoutNap;
    // The first one always takes a while.
    if (m_buffers > 1 && wait > nap) {
        m_pause = std::min<std::chrono::microseconds>(m_pause + step, longest);
        m_buffersWithoutNap = 0;
    } else if (m_buffersWithoutNap >= worthANap) {
        m_pause = std::max<std::chrono::microseconds>(m_pause - step, 0us);
        m_buffersWithoutNap = 0;
    }
    return m_buffers % readTogether == 0 ? m_pause : 0us;
}

} // namespace vantoraudio::AudioEngine
