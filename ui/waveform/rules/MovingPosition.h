#pragma once

#include <cstdint>

namespace vantoraudio::vantorAudioEngine::UI {

/**
 * Where the position of a file that plays is between two reports of it, in seconds. The moments are milliseconds
 * of any clock that never goes back.
 *
 * It moves on from the latest report for half a second at most: a player that reports no longer has stalled. A
 * report that lies behind by up to a tenth of a second was late: the position then waits instead of going back.
 */
class MovingPosition
{
public:
    MovingPosition() = default;
    explicit MovingPosition(double position) : m_reported(position), m_from(position), m_least(position) {}

    /** Seconds of the file a second, not negative. */
    void SetRate(double rate, std::int64_t now);
    void Report(double position, std::int64_t now);

    /** What was reported last. */
    [[nodiscard]] double Reported() const { return m_reported; }
    [[nodiscard]] double At(std::int64_t now) const;

private:
    double m_reported = 0.0;
    double m_from = 0.0;
    double m_least = 0.0;
    double m_rate = 0.0;
    std::int64_t m_since = 0;
};

} // namespace vantoraudio::vantorAudioEngine::UI
