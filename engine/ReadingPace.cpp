#include "engine/ReadingPace.h"

using namespace std::chrono_literals;

namespace vantoraudio::AudioEngine {
namespace {

constexpr auto sleep = 5ms;
/** Enough for the decoder, which needs some 30 us a buffer, to stay ahead: the shortest rest takes about twice
 * that. */
constexpr int buffersToARest = 2;
constexpr auto shortestRest = 1us;
/** How long a sleep is remembered. */
constexpr int restsAfterASleep = 5000;

} // namespace

ReadingPace::Duration ReadingPace::RestAfter(Duration wait)
{
    if (wait > sleep) {
        m_restsLeft = restsAfterASleep;
    }
    if (++m_buffers % buffersToARest != 0 || m_restsLeft == 0) {
        return 0us;
    }
    --m_restsLeft;
    return shortestRest;
}

} // namespace vantoraudio::AudioEngine
