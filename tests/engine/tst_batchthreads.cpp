#include "engine/BatchThreads.h"

#include <QtTest/QTest>

#include <atomic>
#include <optional>
#include <thread>

#ifdef Q_OS_LINUX
#    include <pthread.h>
#    include <sched.h>
#endif

using vantoraudio::AudioEngine::BatchThreads;

#ifdef Q_OS_LINUX

namespace {

int Policy()
{
    int policy = -1;
    sched_param parameters{};
    pthread_getschedparam(pthread_self(), &policy, &parameters);
    return policy;
}

int PolicyOfNewThread()
{
    int policy = -1;
    std::thread([&] { policy = Policy(); }).join();
    return policy;
}

bool SetPolicy(int policy)
{
    const sched_param parameters{};
    return pthread_setschedparam(pthread_self(), policy, &parameters) == 0;
}

} // namespace

#endif

class BatchThreadsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
#ifdef Q_OS_LINUX
    void init()
    {
        if (!SetPolicy(SCHED_BATCH) || !SetPolicy(SCHED_OTHER)) {
            QSKIP("threads may not be scheduled otherwise here");
        }
    }

    void makeNewThreadsBatchWorkersWhileTheyLive()
    {
        QCOMPARE(PolicyOfNewThread(), SCHED_OTHER);
        {
            const BatchThreads threads;
            QCOMPARE(PolicyOfNewThread(), SCHED_BATCH);
        }
        QCOMPARE(Policy(), SCHED_OTHER);
        QCOMPARE(PolicyOfNewThread(), SCHED_OTHER);
    }

    void leaveThreadsBatchWorkersForGood()
    {
        std::optional<BatchThreads> threads(std::in_place);
        std::atomic<bool> isOver = false;
        int policy = -1;
        std::thread worker([&] {
            isOver.wait(false);
            policy = Policy();
        });
        threads.reset();
        isOver = true;
        isOver.notify_one();
        worker.join();
        QCOMPARE(policy, SCHED_BATCH);
    }

    void canBeNested()
    {
        const BatchThreads outer;
        {
            const BatchThreads inner;
            QCOMPARE(PolicyOfNewThread(), SCHED_BATCH);
        }
        QCOMPARE(PolicyOfNewThread(), SCHED_BATCH);
    }

    void leaveAThreadOfASpecialKindAlone()
    {
        int during = -1;
        int after = -1;
        // On a thread of its own, since nobody may leave this policy without privileges.
        std::thread([&] {
            if (SetPolicy(SCHED_IDLE)) {
                {
                    const BatchThreads threads;
                    during = Policy();
                }
                after = Policy();
            }
        }).join();
        QCOMPARE(during, SCHED_IDLE);
        QCOMPARE(after, SCHED_IDLE);
    }
#else
    void doNothing()
    {
        const BatchThreads threads;
    }
#endif
};

QTEST_GUILESS_MAIN(BatchThreadsTest)
#include "tst_batchthreads.moc"
