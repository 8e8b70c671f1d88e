#pragma once

#include <chrono>
#include <optional>

namespace vantoraudio::AudioEngine {

/** What all threads of this program but the calling one have used of the processors until now. Nothing where the
 *  system does not tell. */
std::optional<std::chrono::nanoseconds> ProcessorTimeOfOtherThreads();

/** What other threads use of the processors for each piece that they deliver to this one. All threads of the
 * program count, those that have nothing to do with the pieces as well. */
class WorkPerPiece
{
public:
    /** To be called at each piece; measures every 64 of them together. */
    std::optional<std::chrono::nanoseconds> OnPiece();

private:
    int m_pieces = 0;
    std::optional<std::chrono::nanoseconds> m_measuredAt;
};

} // namespace vantoraudio::AudioEngine
