#include "engine/decoding/SilenceWatch.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QThread>
#include <QtTest/QtTest>

using namespace std::chrono_literals;
using vantoraudio::AudioEngine::SilenceLimits;
using vantoraudio::AudioEngine::SilenceWatch;

namespace {

constexpr SilenceLimits shortLimits{.tick = 100ms, .beforeFirstSound = 3, .betweenSounds = 8};

} // namespace

class TestSilenceWatch : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void isPatientForLessThanASecondAtFirstAndForTenBetweenSounds();
    void tellsOnceOfADecoderThatNeverSounds();
    void waitsLongerBetweenSounds();
    void tellsAgainWhenStartedAgain();
    void forgetsTheSoundsBeforeAStart();
    void countsAStandstillOfTheEventLoopOnce();
    void isQuietUnlessStarted();
    void isQuietOnceStopped();

private:
    void WaitForAnother();

    int m_silences = 0;
    SilenceWatch m_watch{[this] { ++m_silences; }};
    QElapsedTimer m_time;
};

void TestSilenceWatch::init()
{
    m_silences = 0;
    m_watch.Stop();
    m_time.start();
}

/** Longer than the first one would take. */
void TestSilenceWatch::WaitForAnother()
{
    bool isOver = false;
    SilenceWatch another([&] { isOver = true; });
    another.Start({.tick = 100ms, .beforeFirstSound = 9});
    QTRY_VERIFY(isOver);
}

void TestSilenceWatch::isPatientForLessThanASecondAtFirstAndForTenBetweenSounds()
{
    const SilenceLimits limits;
    QCOMPARE(limits.tick * limits.beforeFirstSound, 900ms);
    QCOMPARE(limits.tick * limits.betweenSounds, 10s);
}

void TestSilenceWatch::tellsOnceOfADecoderThatNeverSounds()
{
    m_watch.Start(shortLimits);
    QTRY_COMPARE(m_silences, 1);
    QVERIFY(m_time.elapsed() >= 290);
    WaitForAnother();
    QCOMPARE(m_silences, 1);
}

void TestSilenceWatch::waitsLongerBetweenSounds()
{
    m_watch.Start(shortLimits);
    m_watch.OnSound();
    QTRY_COMPARE(m_silences, 1);
    QVERIFY(m_time.elapsed() >= 790);
}

void TestSilenceWatch::tellsAgainWhenStartedAgain()
{
    m_watch.Start(shortLimits);
    QTRY_COMPARE(m_silences, 1);
    m_watch.Start(shortLimits);
    QTRY_COMPARE(m_silences, 2);
}

void TestSilenceWatch::forgetsTheSoundsBeforeAStart()
{
    m_watch.Start(shortLimits);
    m_watch.OnSound();
    m_watch.Start(shortLimits);
    // Otherwise the other one would end first.
    bool isOver = false;
    SilenceWatch another([&] { isOver = true; });
    another.Start({.tick = 100ms, .beforeFirstSound = 6});
    QTRY_COMPARE(m_silences, 1);
    QVERIFY(!isOver);
}

void TestSilenceWatch::countsAStandstillOfTheEventLoopOnce()
{
    m_watch.Start(shortLimits);
    QThread::msleep(1500);
    QCoreApplication::processEvents();
    QCOMPARE(m_silences, 0);
    QTRY_COMPARE(m_silences, 1);
    QVERIFY(m_time.elapsed() >= 1500 + 90);
}

void TestSilenceWatch::isQuietUnlessStarted()
{
    WaitForAnother();
    QCOMPARE(m_silences, 0);
}

void TestSilenceWatch::isQuietOnceStopped()
{
    m_watch.Start(shortLimits);
    m_watch.Stop();
    WaitForAnother();
    QCOMPARE(m_silences, 0);
}

QTEST_GUILESS_MAIN(TestSilenceWatch)
#include "tst_silencewatch.moc"
