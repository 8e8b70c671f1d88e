#include "ui/waveform/rules/MovingPosition.h"

#include <algorithm>

namespace vantoraudio::vantorAudioEngine::UI {
namespace {

constexpr std::int64_t LongestGuess = 500;
constexpr double LatestReport = 0.1;

} // namespace

void MovingPosition::SetRate(double rate, std::int64_t now)
{
    m_from = At(now);
    m_least = m_from;
    m_since = now;
    m_rate = rate;
}

void MovingPosition::Report(double position, std::int64_t now)
{
    const double guessed = At(now);
    const double ahead = guessed - position;
    m_least = ahead > 0.0 && ahead <= LatestReport * std::max(1.0, m_rate) ? guessed : position;
    m_reported = position;
    m_from = position;
    m_since = now;
}

double MovingPosition::At(std::int64_t now) const
{
    const auto elapsed = static_cast<double>(std::clamp<std::int64_t>(now - m_since, 0, LongestGuess));
    return std::max(m_least, m_from + elapsed / 1000.0 * m_rate);
}

} // namespace vantoraudio::vantorAudioEngine::UI
