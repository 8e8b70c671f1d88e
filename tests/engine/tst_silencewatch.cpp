#include "engine/SilenceWatch.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QThread>
#include <QtTest/QtTest>

#include <atomic>
#include <thread>

using namespace std::chrono_literals;
using vantoraudio::AudioEngine::SilenceLimits;
using vantoraudio::AudioEngine::SilenceWatch;

namespace {

/** More than any of these tests waits for. */
constexpr int nearlyNever = 1000;

/** Uses the processor, as a decoder on another thread does. */
class Work
{
public:
    Work()
        : m_thread([this] {
            while (!m_isOver) {
            }
        })
    {
    }
    ~Work()
    {
        m_isOver = true;
        m_thread.join();
    }
    Q_DISABLE_COPY_MOVE(Work)

private:
    std::atomic<bool> m_isOver = false;
    std::thread m_thread;
};

} // namespace

class TestSilenceWatch : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isPatientForTwoSecondsWithTwoTriesAndTenBetweenSounds()
    {
        const SilenceLimits limits;
        QCOMPARE(2 * limits.tick * limits.beforeFirstSound, 1500ms);
        QCOMPARE(limits.tick * limits.atMost, 10s);
    }

    void tellsOnceOfADecoderThatNeverSounds()
    {
        SilenceWatch watch = Watch(nearlyNever);
        watch.Start(SilenceWatch::Patience::WithTheBusy);
        QTRY_COMPARE(m_silences, 1);
        QVERIFY(m_time.elapsed() >= 290);
        QTest::qWait(500);
        QCOMPARE(m_silences, 1);
    }

    void givesAWorkingProgramMoreTime()
    {
        SilenceWatch watch = Watch(nearlyNever);
        watch.Start(SilenceWatch::Patience::WithTheBusy);
        {
            const Work work;
            QTest::qWait(600);
            QCOMPARE(m_silences, 0);
        }
        QTRY_COMPARE(m_silences, 1);
    }

    void givesAWorkingProgramNoMoreTimeUnlessToldTo()
    {
        SilenceWatch watch = Watch(nearlyNever);
        const Work work;
        watch.Start(SilenceWatch::Patience::WithNobody);
        QTRY_COMPARE_WITH_TIMEOUT(m_silences, 1, 2000);
    }

    void losesPatienceWithAWorkingProgramToo()
    {
        SilenceWatch watch = Watch(8);
        const Work work;
        watch.Start(SilenceWatch::Patience::WithTheBusy);
        QTRY_COMPARE(m_silences, 1);
        QVERIFY(m_time.elapsed() >= 790);
    }

    void waitsLongerBetweenSounds()
    {
        SilenceWatch watch = Watch(8);
        watch.Start(SilenceWatch::Patience::WithTheBusy);
        watch.OnSound();
        QTest::qWait(350);
        watch.OnSound();
        m_time.restart();
        QTRY_COMPARE(m_silences, 1);
        // The tick under way counts as a whole one.
        QVERIFY(m_time.elapsed() >= 690);
    }

    void countsAStandstillOfTheEventLoopOnce()
    {
        SilenceWatch watch = Watch(nearlyNever);
        watch.Start(SilenceWatch::Patience::WithTheBusy);
        QThread::msleep(1500);
        QCoreApplication::processEvents();
        QCOMPARE(m_silences, 0);
        QTRY_COMPARE(m_silences, 1);
        QVERIFY(m_time.elapsed() >= 1500 + 90);
    }

    void isQuietUnlessStarted()
    {
        const SilenceWatch watch = Watch(8);
        QTest::qWait(500);
        QCOMPARE(m_silences, 0);
    }

private:
    SilenceWatch Watch(int atMost)
    {
        const SilenceLimits limits{.tick = 100ms, .beforeFirstSound = 3, .atMost = atMost};
        m_silences = 0;
        m_time.start();
        return SilenceWatch([this] { ++m_silences; }, limits);
    }

    int m_silences = 0;
    QElapsedTimer m_time;
};

QTEST_GUILESS_MAIN(TestSilenceWatch)
#include "tst_silencewatch.moc"
