#include "engine/ReadingPace.h"

#include <QtTest/QTest>

#include <algorithm>

using namespace std::chrono_literals;
using vantoraudio::AudioEngine::ReadingPace;

namespace {

/** The longest rest of several buffers that were each waited for that long. */
ReadingPace::Duration LongestRest(ReadingPace& pace, int buffers, ReadingPace::Duration wait)
{
    ReadingPace::Duration longest{0};
    for (int i = 0; i < buffers; ++i) {
        longest = std::max(longest, pace.RestAfter(wait));
    }
    return longest;
}

} // namespace

class ReadingPaceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void neverRestsWhileTheDecoderKeepsUp()
    {
        ReadingPace pace;
        QCOMPARE(LongestRest(pace, 1000, 40us).count(), 0);
    }

    void restsAtEverySecondBufferAfterASleep()
    {
        ReadingPace pace;
        pace.RestAfter(10ms);
        for (int buffer = 2; buffer <= 30; ++buffer) {
            QCOMPARE(pace.RestAfter(40us) > 0us, buffer % 2 == 0);
        }
    }

    void restsForTheShortestTimeHoweverManySleepsThereWere()
    {
        ReadingPace pace;
        QCOMPARE(LongestRest(pace, 10'000, 10ms).count(), 1);
    }

    void forgetsASleepInTheEnd()
    {
        ReadingPace pace;
        LongestRest(pace, 1, 10ms);
        QCOMPARE(LongestRest(pace, 10'000, 40us).count(), 1);
        QCOMPARE(LongestRest(pace, 10'000, 40us).count(), 0);
    }
};

QTEST_GUILESS_MAIN(ReadingPaceTest)
#include "tst_readingpace.moc"
