#include "playback/SoundSettling.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QLibraryInfo>
#include <QtCore/QThread>
#include <QtCore/QVersionNumber>

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

bool ConnectionEndsSafely()
{
#ifdef Q_OS_LINUX
    return QLibraryInfo::version() >= QVersionNumber(6, 8);
#else
    return true;
#endif
}

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
    if (ConnectionEndsSafely()) {
        return;
    }
    settled = Clock::now() + settling;
    if (!isWaitPlanned.exchange(true)) {
        qAddPostRoutine(WaitUntilSettled);
    }
}

} // namespace vantoraudio::AudioEngine
