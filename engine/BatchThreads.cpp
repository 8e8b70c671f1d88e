#include "engine/BatchThreads.h"

#include <QtCore/qsystemdetection.h>

#ifdef Q_OS_LINUX
#    include <pthread.h>
#    include <sched.h>
#endif

namespace vantoraudio::AudioEngine {

#ifdef Q_OS_LINUX

namespace {

bool ChangeScheduling(int from, int to)
{
    int policy = 0;
    sched_param parameters{};
    return pthread_getschedparam(pthread_self(), &policy, &parameters) == 0 && policy == from &&
           pthread_setschedparam(pthread_self(), to, &parameters) == 0;
}

} // namespace

// A thread inherits how it is scheduled from the one that starts it.
BatchThreads::BatchThreads() : m_isSet(ChangeScheduling(SCHED_OTHER, SCHED_BATCH)) {}

BatchThreads::~BatchThreads()
{
    if (m_isSet) {
        ChangeScheduling(SCHED_BATCH, SCHED_OTHER);
    }
}

#else

BatchThreads::BatchThreads() = default;

BatchThreads::~BatchThreads() = default;

#endif

} // namespace vantoraudio::AudioEngine
