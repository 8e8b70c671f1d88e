#include "playback/SoundSettling.h"

#include "engine/QtDefects.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QThread>

#include <atomic>
#include <chrono>

namespace vantoraudio::AudioEngine {

namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

/** 20 ms were enough for each of 200 programs. */
constexpr auto settling = 30ms;

std::atomic<Clock::time_point> settled;
std::atomic<bool> isWaitPlanned;

void WaitUntilSettled()
{
    isWaitPlanned = false;
    const auto left = settled.load() - Clock::now();
    if (left > 0ms) {
        QThread::usleep(static_cast<unsigned long>(std::chrono::ceil<std::chrono::microseconds>(left).count()));
    }
}

} // namespace

void LetSoundSettleBeforeTheEnd()
{
    if (!QtDefects::FreesItsConnectionInUse()) {
        return;
    }
    settled = Clock::now() + settling;
    if (!isWaitPlanned.exchange(true)) {
        qAddPostRoutine(WaitUntilSettled);
    }
}

} // namespace vantoraudio::AudioEngine
