#pragma once

#include <QtCore/QTimer>

#include <chrono>
#include <functional>

namespace vantoraudio::AudioEngine {

/** How long a decoder may be silent, counted in ticks of the event loop: while the program itself is busy and the
 *  loop stands still, only one tick is counted. */
struct SilenceLimits
{
    std::chrono::milliseconds tick{100};
    int beforeFirstSound = 9;
    int betweenSounds = 100;
};

/**
 * Tells when a decoder has been silent for too long.
 *
 * The shorter limit holds before the first sound, so that a decoder that will never say a word is found soon. The
 * longer one holds between two sounds.
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
    friend class SilenceWatchTestAccess;

    void OnTick();

    const std::function<void()> m_onSilence;
    SilenceLimits m_limits;
    QTimer m_timer;
    int m_silentTicks = 0;
    bool m_hasSounded = false;
};

} // namespace vantoraudio::AudioEngine
