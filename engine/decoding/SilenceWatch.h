#pragma once

#include <QtCore/QTimer>

#include <chrono>
#include <functional>

namespace vantoraudio::AudioEngine {

/** How long a decoder may be silent, counted in ticks of the event loop's time: a loop that stood still, because
 * the program was busy itself, counts one tick only. */
struct SilenceLimits
{
    std::chrono::milliseconds tick{100};
    int beforeFirstSound = 9;
    int betweenSounds = 100;
};

/**
 * Tells when a decoder has been silent for too long.
 *
 * Before its first sound the shorter limit holds, so that a decoder that will never say a word is soon found out;
 * between two sounds the longer one.
 *
 * Belongs to one thread, whose event loop must run.
 */
class SilenceWatch
{
public:
    /** `onSilence` is called once for each Start() at most, from the event loop. */
    explicit SilenceWatch(std::function<void()> onSilence);

    void Start(const SilenceLimits& limits);
    void OnSound();
    void Stop();

private:
    void OnTick();

    const std::function<void()> m_onSilence;
    SilenceLimits m_limits;
    QTimer m_timer;
    int m_silentTicks = 0;
    bool m_hasSounded = false;
};

} // namespace vantoraudio::AudioEngine
