#include "engine/ReadingPace.h"

#include <QtTest/QTest>

using namespace std::chrono_literals;
using vantoraudio::AudioEngine::ReadingPace;

namespace {

/** The interval after several buffers that were each waited for that long. */
ReadingPace::Duration IntervalAfter(ReadingPace& pace, int buffers, ReadingPace::Duration wait)
{
    ReadingPace::Duration interval{0};
    for (int i = 0; i < buffers; ++i) {
        interval = pace.IntervalAfter(wait);
    }
    return interval;
}

} // namespace

class ReadingPaceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void asksForNothingWhileTheDecoderKeepsUp()
    {
        ReadingPace pace;
        QCOMPARE(IntervalAfter(pace, 1000, 40us).count(), 0);
    }

    void slowsDownAtEverySleep()
    {
        ReadingPace pace;
        const auto first = pace.IntervalAfter(10ms);
        QVERIFY(first > 5us && first < 100us);
        const auto second = pace.IntervalAfter(10ms);
        QVERIFY(second > first && second < first * 3 / 2);
    }

    void quickensWhileThereIsNoSleep()
    {
        ReadingPace pace;
        const auto first = pace.IntervalAfter(10ms);
        const auto later = IntervalAfter(pace, 1000, 40us);
        QVERIFY(later < first && later > first * 9 / 10);
        QVERIFY(IntervalAfter(pace, 100'000, 40us) < first / 10);
    }

    void neverWaitsLongHoweverManySleepsThereAre()
    {
        ReadingPace pace;
        QVERIFY(IntervalAfter(pace, 10'000, 10ms) <= 200us);
    }

    void isNeverSlowerThanTheWork()
    {
        ReadingPace pace;
        pace.SetWork(40us);
        QCOMPARE(IntervalAfter(pace, 100, 10ms), 40us);
        pace.SetWork(30us);
        QVERIFY(pace.IntervalAfter(20us) <= 30us);
        pace.SetWork(5us);
        QCOMPARE(pace.IntervalAfter(10ms), 5us);
        pace.SetWork(10s);
        QCOMPARE(IntervalAfter(pace, 100, 10ms), 200us);
    }

    void doesNotForgetItsPaceOverAShortMeasurement()
    {
        ReadingPace pace;
        const auto found = IntervalAfter(pace, 5, 10ms);
        pace.SetWork(0us);
        pace.IntervalAfter(20us);
        pace.SetWork(100us);
        QVERIFY(pace.IntervalAfter(20us) > found * 9 / 10);
    }

    void isNeverBelowNothing()
    {
        ReadingPace pace;
        pace.SetWork(-1ms);
        QCOMPARE(IntervalAfter(pace, 100, 10ms).count(), 0);
    }

    void takesForASleepWhatLastsHalfAsLong()
    {
        ReadingPace pace;
        QCOMPARE(IntervalAfter(pace, 3, 4ms).count(), 0);
        QVERIFY(IntervalAfter(pace, 1, 6ms) > 0us);
    }

    void isHopelessWhereMostBuffersAreLate()
    {
        ReadingPace pace;
        IntervalAfter(pace, 15, 10ms);
        QVERIFY(!pace.IsHopeless());
        IntervalAfter(pace, 10, 2ms);
        QVERIFY(pace.IsHopeless());
    }

    void isNotHopelessWhereBuffersAreLateNowAndThen()
    {
        ReadingPace pace;
        for (int i = 0; i < 1000; ++i) {
            pace.IntervalAfter(10ms);
            IntervalAfter(pace, 20, 40us);
            QVERIFY(!pace.IsHopeless());
        }
    }

    void isNoneWhereThereIsNoWork()
    {
        ReadingPace pace;
        pace.SetWork(0us);
        QCOMPARE(IntervalAfter(pace, 100, 10ms).count(), 0);
    }
};

QTEST_GUILESS_MAIN(ReadingPaceTest)
#include "tst_readingpace.moc"
