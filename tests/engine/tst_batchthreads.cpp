#include "engine/BatchThreads.h"

#include <QtTest/QTest>

#include <chrono>
#include <optional>
#include <semaphore>
#include <stdexcept>
#include <thread>

#ifdef Q_OS_LINUX
#    include <pthread.h>
#    include <sched.h>
#endif

using vantoraudio::AudioEngine::BatchThreads;

#ifdef Q_OS_LINUX

namespace {

constexpr int callingThread = 0;

bool SetPolicy(int policy)
{
    const sched_param parameters{};
    return sched_setscheduler(callingThread, policy, &parameters) == 0;
}

int PolicyOfNewThread()
{
    int policy = -1;
    std::thread([&] { policy = sched_getscheduler(callingThread); }).join();
    return policy;
}

/** A thread that tells how it is scheduled when it is asked. */
class Worker
{
public:
    Worker() : m_thread([this] { Run(); }) {}
    ~Worker()
    {
        m_ends.release();
        m_thread.join();
    }
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    int Policy()
    {
        m_asked.release();
        m_answered.acquire();
        return m_policy;
    }

private:
    void Run()
    {
        while (!m_ends.try_acquire()) {
            if (m_asked.try_acquire_for(std::chrono::milliseconds(1))) {
                m_policy = sched_getscheduler(callingThread);
                m_answered.release();
            }
        }
    }

    std::binary_semaphore m_asked{0};
    std::binary_semaphore m_answered{0};
    std::binary_semaphore m_ends{0};
    int m_policy = -1;
    std::thread m_thread;
};

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

    void makesNewThreadsBatchWorkers()
    {
        Worker former;
        std::optional<Worker> worker;
        BatchThreads threads;
        threads.Start([&] { worker.emplace(); });
        QCOMPARE(worker->Policy(), SCHED_BATCH);
        QCOMPARE(former.Policy(), SCHED_OTHER);
        QCOMPARE(sched_getscheduler(callingThread), SCHED_OTHER);
        QCOMPARE(PolicyOfNewThread(), SCHED_OTHER);
    }

    void makesThemOrdinaryAgain()
    {
        std::optional<Worker> first;
        std::optional<Worker> second;
        std::optional<Worker> other;
        BatchThreads threads;
        BatchThreads otherThreads;
        threads.Start([&] {
            first.emplace();
            second.emplace();
        });
        otherThreads.Start([&] { other.emplace(); });
        threads.MakeOrdinary();
        QCOMPARE(first->Policy(), SCHED_OTHER);
        QCOMPARE(second->Policy(), SCHED_OTHER);
        QCOMPARE(other->Policy(), SCHED_BATCH);
    }

    void leavesTheCallingThreadAsItWasWhenStartingThrows()
    {
        BatchThreads threads;
        QVERIFY_THROWS_EXCEPTION(std::runtime_error, threads.Start([] { throw std::runtime_error("no thread"); }));
        QCOMPARE(sched_getscheduler(callingThread), SCHED_OTHER);
    }

    void leavesAThreadOfASpecialKindAlone()
    {
        int during = -1;
        int after = -1;
        // On a thread of its own, since nobody may leave this policy without privileges.
        std::thread([&] {
            BatchThreads threads;
            threads.Start([]{});
            if (SetPolicy(SCHED_IDLE)) {
                threads.Start([&] { during = sched_getscheduler(callingThread); });
                after = sched_getscheduler(callingThread);
            }
        }).join();
        QCOMPARE(during, SCHED_IDLE);
        QCOMPARE(after, SCHED_IDLE);
    }
#else
    void callsWhatStartsThem()
    {
        bool isCalled = false;
        BatchThreads().Start([&] { isCalled = true; });
        QVERIFY(isCalled);
    }
#endif
};

QTEST_GUILESS_MAIN(BatchThreadsTest)
#include "tst_batchthreads.moc"
