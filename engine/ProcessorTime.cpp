#include "engine/ProcessorTime.h"

#include <ctime>
#include <utility>

namespace vantoraudio::AudioEngine {
namespace {

/** Asking takes about a microsecond. */
constexpr int measuredTogether = 64;

} // namespace

#if defined(CLOCK_PROCESS_CPUTIME_ID) && defined(CLOCK_THREAD_CPUTIME_ID)

namespace {

std::optional<std::chrono::nanoseconds> TimeOf(clockid_t clock)
{
    std::timespec time{};
    if (clock_gettime(clock, &time) != 0) {
        return {};
    }
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

} // namespace

std::optional<std::chrono::nanoseconds> ProcessorTimeOfOtherThreads()
{
    // In this order the difference is never below 0.
    const auto own = TimeOf(CLOCK_THREAD_CPUTIME_ID);
    const auto all = TimeOf(CLOCK_PROCESS_CPUTIME_ID);
    return all && own ? std::optional(*all - *own) : std::nullopt;
}

#else

std::optional<std::chrono::nanoseconds> ProcessorTimeOfOtherThreads()
{
    return {};
}

#endif

std::optional<std::chrono::nanoseconds> WorkPerPiece::OnPiece()
{
    if (++m_pieces < measuredTogether) {
        return {};
    }
    const auto now = ProcessorTimeOfOtherThreads();
    const auto before = std::exchange(m_measuredAt, now);
    const int pieces = std::exchange(m_pieces, 0);
    return now && before ? std::optional((*now - *before) / pieces) : std::nullopt;
}

} // namespace vantoraudio::AudioEngine
