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

    void restsAtEverySixthBufferAfterASleep()
    {
        ReadingPace pace;
        pace.RestAfter(10ms);
        for (int buffer = 2; buffer <= 30; ++buffer) {
            QCOMPARE(pace.RestAfter(40us) > 0us, buffer % 6 == 0);
        }
    }

    void restsLongerWithEverySleep()
    {
        ReadingPace once;
        ReadingPace thrice;
        LongestRest(once, 1, 10ms);
        LongestRest(thrice, 3, 10ms);
        QVERIFY(LongestRest(thrice, 6, 40us) > 2 * LongestRest(once, 6, 40us));
    }

    void neverRestsForLong()
    {
        ReadingPace pace;
        const auto longest = LongestRest(pace, 10'000, 10ms);
        QVERIFY(longest > 200us && longest <= 250us);
    }

    void forgetsASleepInTheEnd()
    {
        ReadingPace pace;
        LongestRest(pace, 1, 10ms);
        QVERIFY(LongestRest(pace, 6, 40us) > 0us);
        LongestRest(pace, 600, 40us);
        QCOMPARE(LongestRest(pace, 600, 40us).count(), 0);
    }
};

QTEST_GUILESS_MAIN(ReadingPaceTest)
#include "tst_readingpace.moc"
