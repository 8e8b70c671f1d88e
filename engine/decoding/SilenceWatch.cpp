#include "engine/decoding/SilenceWatch.h"

#include <QtCore/QObject>

#include <utility>

namespace vantoraudio::AudioEngine {

SilenceWatch::SilenceWatch(std::function<void()> onSilence) : m_onSilence(std::move(onSilence))
{
    m_timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { OnTick(); });
}

void SilenceWatch::Start(const SilenceLimits& limits)
{
    m_limits = limits;
    m_silentTicks = 0;
    m_hasSounded = false;
    m_timer.start(m_limits.tick);
}

void SilenceWatch::OnSound()
{
    m_silentTicks = 0;
    m_hasSounded = true;
}

void SilenceWatch::Stop()
{
    m_timer.stop();
}

void SilenceWatch::OnTick()
{
    ++m_silentTicks;
    if (m_silentTicks >= (m_hasSounded ? m_limits.betweenSounds : m_limits.beforeFirstSound)) {
        m_timer.stop();
        m_onSilence();
    }
}

} // namespace vantoraudio::AudioEngine
