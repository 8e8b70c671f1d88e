#pragma once

#include <QtCore/QTimer>

#include <chrono>
#include <ctime>
#include <functional>

namespace vantoraudio::AudioEngine {

/** How long a decoder may be silent, counted in ticks of the event loop's time: a loop that stood still, because
 * the program was busy itself, counts one tick only. */
struct SilenceLimits
{
    std::chrono::milliseconds tick{250};
    int beforeFirstSound = 3;
    int atMost = 40;
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
    /** Who may be silent for the longer time also before the first sound: a program that uses the processor
     *  meanwhile may be one whose decoder has to work slowly on a loaded machine. */
    enum class Patience
    {
        WithNobody,
        WithTheBusy
    };

    /** `onSilence` is called once for each Start(), from the event loop. */
    explicit SilenceWatch(std::function<void()> onSilence, SilenceLimits limits = {});

    void Start(Patience patience);
    void OnSound();

private:
    void OnTick();
    bool IsTooLong(bool isSpared) const;
    bool HasWorked();

    const std::function<void()> m_onSilence;
    const SilenceLimits m_limits;
    Patience m_patience = Patience::WithNobody;
    QTimer m_timer;
    int m_silentTicks = 0;
    bool m_hasSounded = false;
    std::clock_t m_processorTime = 0;
};

} // namespace vantoraudio::AudioEngine
