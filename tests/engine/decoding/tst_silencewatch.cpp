#include "engine/decoding/SilenceWatch.h"

#include <QtCore/QThread>
#include <QtTest/QtTest>

using namespace std::chrono_literals;

namespace vantoraudio::AudioEngine {

/** The clock of these tests. */
class SilenceWatchTestAccess
{
public:
    static bool IsTicking(const SilenceWatch& watch) { return watch.m_timer.isActive(); }
    static std::chrono::milliseconds Tick(const SilenceWatch& watch) { return watch.m_timer.intervalAsDuration(); }
    static void LetTicksPass(SilenceWatch& watch, int count)
    {
        for (int i = 0; i < count && IsTicking(watch); ++i) {
            watch.OnTick();
        }
    }
};

} // namespace vantoraudio::AudioEngine

using vantoraudio::AudioEngine::SilenceLimits;
using vantoraudio::AudioEngine::SilenceWatch;
using Access = vantoraudio::AudioEngine::SilenceWatchTestAccess;

namespace {

/** No real tick comes while a test runs. */
constexpr SilenceLimits limits{.tick = 1h, .beforeFirstSound = 3, .betweenSounds = 8};

} // namespace

class TestSilenceWatch : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void isPatientForLessThanASecondAtFirstAndForTenBetweenSounds();
    void ticksAtTheRateOfItsLimits();
    void ticksWithTheEventLoop();
    void tellsOnceOfADecoderThatNeverSounds();
    void waitsLongerBetweenSounds();
    void countsFromTheLastSound();
    void tellsAgainWhenStartedAgain();
    void forgetsTheSoundsBeforeAStart();
    void countsAStandstillOfTheEventLoopOnce();
    void isQuietUnlessStarted();
    void isQuietOnceStopped();

private:
    int m_silences = 0;
    SilenceWatch m_watch{[this] { ++m_silences; }};
};

void TestSilenceWatch::init()
{
    m_silences = 0;
    m_watch.Stop();
}

void TestSilenceWatch::isPatientForLessThanASecondAtFirstAndForTenBetweenSounds()
{
    const SilenceLimits usual;
    QCOMPARE(usual.tick * usual.beforeFirstSound, 900ms);
    QCOMPARE(usual.tick * usual.betweenSounds, 10s);
}

void TestSilenceWatch::ticksAtTheRateOfItsLimits()
{
    m_watch.Start({.tick = 123ms});
    QVERIFY(Access::IsTicking(m_watch));
    QCOMPARE(Access::Tick(m_watch), 123ms);
}

void TestSilenceWatch::ticksWithTheEventLoop()
{
    m_watch.Start({.tick = 1ms, .beforeFirstSound = 3});
    QTRY_COMPARE(m_silences, 1);
}

void TestSilenceWatch::tellsOnceOfADecoderThatNeverSounds()
{
    m_watch.Start(limits);
    Access::LetTicksPass(m_watch, 2);
    QCOMPARE(m_silences, 0);
    Access::LetTicksPass(m_watch, 100);
    QCOMPARE(m_silences, 1);
}

void TestSilenceWatch::waitsLongerBetweenSounds()
{
    m_watch.Start(limits);
    m_watch.OnSound();
    Access::LetTicksPass(m_watch, 7);
    QCOMPARE(m_silences, 0);
    Access::LetTicksPass(m_watch, 1);
    QCOMPARE(m_silences, 1);
}

void TestSilenceWatch::countsFromTheLastSound()
{
    m_watch.Start(limits);
    Access::LetTicksPass(m_watch, 2);
    m_watch.OnSound();
    Access::LetTicksPass(m_watch, 7);
    m_watch.OnSound();
    Access::LetTicksPass(m_watch, 7);
    QCOMPARE(m_silences, 0);
    Access::LetTicksPass(m_watch, 1);
    QCOMPARE(m_silences, 1);
}

void TestSilenceWatch::tellsAgainWhenStartedAgain()
{
    m_watch.Start(limits);
    Access::LetTicksPass(m_watch, 3);
    QCOMPARE(m_silences, 1);
    m_watch.Start(limits);
    Access::LetTicksPass(m_watch, 2);
    QCOMPARE(m_silences, 1);
    Access::LetTicksPass(m_watch, 1);
    QCOMPARE(m_silences, 2);
}

void TestSilenceWatch::forgetsTheSoundsBeforeAStart()
{
    m_watch.Start(limits);
    m_watch.OnSound();
    m_watch.Start(limits);
    Access::LetTicksPass(m_watch, 3);
    QCOMPARE(m_silences, 1);
}

void TestSilenceWatch::countsAStandstillOfTheEventLoopOnce()
{
    m_watch.Start({.tick = 1ms, .beforeFirstSound = 2});
    // Sleeps because it is Qt's timer that is asked: it has missed 20 ticks then.
    QThread::msleep(20);
    QCoreApplication::processEvents();
    QCOMPARE(m_silences, 0);
    QTRY_COMPARE(m_silences, 1);
}

void TestSilenceWatch::isQuietUnlessStarted()
{
    QVERIFY(!Access::IsTicking(SilenceWatch([] {})));
}

void TestSilenceWatch::isQuietOnceStopped()
{
    m_watch.Start(limits);
    m_watch.Stop();
    QVERIFY(!Access::IsTicking(m_watch));
}

QTEST_GUILESS_MAIN(TestSilenceWatch)
#include "tst_silencewatch.moc"
