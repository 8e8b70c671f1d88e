#include "engine/SilenceWatch.h"

#include <QtCore/QObject>

#include <utility>

namespace vantoraudio::AudioEngine {

namespace {

/** A program that only waits uses less than this part of the time; one that works, on a machine shared with many
 *  others, more. */
constexpr double usedByWaiting = 0.02;

} // namespace

SilenceWatch::SilenceWatch(std::function<void()> onSilence, SilenceLimits limits)
    : m_onSilence(std::move(onSilence)), m_limits(limits)
{
    m_timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { OnTick(); });
}

void SilenceWatch::Start(Patience patience)
{
    m_patience = patience;
    m_silentTicks = 0;
    m_hasSounded = false;
    m_processorTime = std::clock();
    m_timer.start(m_limits.tick);
}

void SilenceWatch::OnSound()
{
    m_silentTicks = 0;
    m_hasSounded = true;
}

void SilenceWatch::OnTick()
{
    ++m_silentTicks;
    if (IsTooLong(HasWorked() && m_patience == Patience::WithTheBusy)) {
        m_timer.stop();
        m_onSilence();
    }
}

bool SilenceWatch::IsTooLong(bool isSpared) const
{
    return m_silentTicks >= (m_hasSounded || isSpared ? m_limits.atMost : m_limits.beforeFirstSound);
}

/** Whether the program has used the processor during this tick. */
bool SilenceWatch::HasWorked()
{
    const std::clock_t former = std::exchange(m_processorTime, std::clock());
    const std::chrono::duration<double> used(double(m_processorTime - former) / CLOCKS_PER_SEC);
    return used > usedByWaiting * m_limits.tick;
}

} // namespace vantoraudio::AudioEngine
