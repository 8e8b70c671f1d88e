#include "engine/decoding/ReadingPauses.h"

#include <QtTest/QtTest>

using namespace std::chrono_literals;
using vantoraudio::AudioEngine::ReadingPauses;

namespace {

constexpr auto noWait = 30us;
constexpr auto nap = 10ms;

/** The pause that comes with the next eight buffers, after `first` was waited for at the first of them. */
std::chrono::microseconds PauseOfEight(ReadingPauses& pauses, std::chrono::nanoseconds first)
{
    std::chrono::microseconds sum = pauses.OnBuffer(first);
    for (int i = 1; i < 8; ++i) {
        sum += pauses.OnBuffer(noWait);
    }
    return sum;
}

} // namespace

class TestReadingPauses : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isNeverNeededWithoutNaps()
    {
        ReadingPauses pauses;
        for (int i = 0; i < 1000; ++i) {
            QCOMPARE(pauses.OnBuffer(noWait), 0us);
        }
    }

    void takesTheStartForNoNap()
    {
        ReadingPauses pauses;
        QCOMPARE(PauseOfEight(pauses, 100ms), 0us);
    }

    void growsAtEachNapAndComesWithEveryEighthBuffer()
    {
        ReadingPauses pauses;
        PauseOfEight(pauses, noWait);
        QCOMPARE(PauseOfEight(pauses, nap), 20us);
        QCOMPARE(PauseOfEight(pauses, noWait), 20us);
        QCOMPARE(PauseOfEight(pauses, nap), 40us);
        for (int i = 0; i < 7; ++i) {
            QCOMPARE(pauses.OnBuffer(noWait), 0us);
        }
        QCOMPARE(pauses.OnBuffer(noWait), 40us);
    }

    void shrinksWithoutNaps()
    {
        ReadingPauses pauses;
        PauseOfEight(pauses, noWait);
        PauseOfEight(pauses, nap);
        QCOMPARE(PauseOfEight(pauses, nap), 40us);
        // 7 buffers since the last nap.
        for (int i = 0; i < 124; ++i) {
            QCOMPARE(PauseOfEight(pauses, noWait), 40us);
        }
        QCOMPARE(PauseOfEight(pauses, noWait), 20us);
        for (int i = 0; i < 125; ++i) {
            PauseOfEight(pauses, noWait);
        }
        QCOMPARE(PauseOfEight(pauses, noWait), 0us);
    }

    void knowsANapThatBeganBeforeTheWaiting()
    {
        ReadingPauses pauses;
        PauseOfEight(pauses, noWait);
        QCOMPARE(PauseOfEight(pauses, 5ms), 0us);
        QCOMPARE(PauseOfEight(pauses, 5ms + 1ns), 20us);
    }

    void staysShortWhateverIsLate()
    {
        ReadingPauses pauses;
        for (int i = 0; i < 1000; ++i) {
            QVERIFY(pauses.OnBuffer(1s) <= 1ms);
        }
        QCOMPARE(PauseOfEight(pauses, noWait), 1000us);
    }
};

QTEST_GUILESS_MAIN(TestReadingPauses)
#include "tst_readingpauses.moc"
