#include "engine/BatchThreads.h"

#include <QtCore/QDir>
#include <QtCore/QScopeGuard>

#include <algorithm>
#include <utility>

#ifdef Q_OS_LINUX
#    include <sched.h>
#endif

namespace vantoraudio::AudioEngine {

#ifdef Q_OS_LINUX

namespace {

constexpr int callingThread = 0;

// Not by way of pthreads, which remember a policy that others may have changed since.
bool ChangeScheduling(int thread, int from, int to)
{
    const sched_param parameters{};
    return sched_getscheduler(thread) == from && sched_setscheduler(thread, to, &parameters) == 0;
}

std::vector<int> ThreadsOfThisProgram()
{
    std::vector<int> threads;
    for (const QString& name :
         QDir(QStringLiteral("/proc/self/task")).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        threads.push_back(name.toInt());
    }
    return threads;
}

} // namespace

void BatchThreads::Start(const std::function<void()>& start)
{
    const std::vector<int> former = ThreadsOfThisProgram();
    // A thread inherits how it is scheduled from the one that starts it.
    if (former.empty() || !ChangeScheduling(callingThread, SCHED_OTHER, SCHED_BATCH)) {
        start();
        return;
    }
    {
        const auto reset = qScopeGuard([] { ChangeScheduling(callingThread, SCHED_BATCH, SCHED_OTHER); });
        start();
    }
    for (const int thread : ThreadsOfThisProgram()) {
        if (std::ranges::find(former, thread) == former.end() && sched_getscheduler(thread) == SCHED_BATCH) {
            m_threads.push_back(thread);
        }
    }
}

void BatchThreads::MakeOrdinary()
{
    for (const int thread : std::exchange(m_threads, {})) {
        ChangeScheduling(thread, SCHED_BATCH, SCHED_OTHER);
    }
}

#else

void BatchThreads::Start(const std::function<void()>& start)
{
    start();
}

void BatchThreads::MakeOrdinary() {}

#endif

} // namespace vantoraudio::AudioEngine
