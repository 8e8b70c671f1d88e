#include "engine/ReadingPace.h"

#include <algorithm>

using namespace std::chrono_literals;

namespace vantoraudio::AudioEngine {
namespace {

/** Somewhat fewer than the decoder keeps ready. */
constexpr int buffersToARest = 6;
constexpr auto sleep = 5ms;
constexpr auto growth = 40us;
constexpr auto shrinkage = 1us;
constexpr auto longestRest = 250us;

} // namespace

ReadingPace::Duration ReadingPace::RestAfter(Duration wait)
{
    if (wait > sleep) {
        m_rest = std::min<Duration>(m_rest + growth, longestRest);
    }
    if (++m_buffers % buffersToARest != 0) {
        return 0us;
    }
    m_rest = std::max<Duration>(m_rest - shrinkage, 0us);
    return m_rest;
}

} // namespace vantoraudio::AudioEngine
