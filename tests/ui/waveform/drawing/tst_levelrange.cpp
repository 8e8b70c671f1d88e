#include "ui/waveform/drawing/LevelRange.h"

#include <QtTest/QtTest>

#include <cmath>
#include <limits>
#include <random>

using namespace vantoraudio::vantorAudioEngine::UI;

namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

/** A sample every second, from 0 on. */
std::optional<LevelRange> Levels(const QList<float>& samples, float left, float right, int silent = 0)
{
    const WaveformStrip strip(samples, static_cast<int>(samples.size()) + silent,
                              {.stepSize = 10, .sampleRate = 10});
    return LevelsWithin(strip, SampleExtremes(samples), left, right);
}

} // namespace

class TestLevelRange : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isThatOfTheSamples_data()
    {
        QTest::addColumn<float>("left");
        QTest::addColumn<float>("right");
        QTest::addColumn<float>("low");
        QTest::addColumn<float>("high");
        QTest::newRow("several") << 1.0F << 3.5F << -0.5F << 0.75F;
        QTest::newRow("one") << 0.5F << 1.5F << -0.5F << -0.5F;
        QTest::newRow("left counts, right does not") << 2.0F << 3.0F << 0.75F << 0.75F;
        QTest::newRow("all") << -10.0F << 10.0F << -0.5F << 1.0F;
        QTest::newRow("infinitely wide") << -infinity << infinity << -0.5F << 1.0F;
        QTest::newRow("on a line") << 1.25F << 1.75F << 0.125F << 0.125F;
        QTest::newRow("a moment on a line") << 2.5F << 2.5F << 0.5F << 0.5F;
    }

    void isThatOfTheSamples()
    {
        QFETCH(const float, left);
        QFETCH(const float, right);
        QFETCH(const float, low);
        QFETCH(const float, high);
        const auto found = Levels({1.0F, -0.5F, 0.75F, 0.25F}, left, right);
        QVERIFY(found);
        QCOMPARE(found->low, low);
        QCOMPARE(found->high, high);
    }

    void isEmptyWhereNothingIsDrawn_data()
    {
        QTest::addColumn<QList<float>>("samples");
        QTest::addColumn<float>("left");
        QTest::addColumn<float>("right");
        const QList<float> two = {1.0F, -0.5F};
        QTest::newRow("before") << two << -2.0F << -1.0F;
        QTest::newRow("behind") << two << 1.5F << 2.0F;
        QTest::newRow("no samples") << QList<float>{} << -1.0F << 1.0F;
        QTest::newRow("wrong order") << two << 1.0F << 0.0F;
        QTest::newRow("left not a number") << two << notANumber << 1.0F;
        QTest::newRow("right not a number") << two << 0.0F << notANumber;
        QTest::newRow("infinitely far") << two << infinity << infinity;
    }

    void isEmptyWhereNothingIsDrawn()
    {
        QFETCH(const QList<float>, samples);
        QFETCH(const float, left);
        QFETCH(const float, right);
        QVERIFY(!Levels(samples, left, right));
    }

    void silenceIsZero()
    {
        const QList<float> samples = {0.5F, 0.25F};
        QCOMPARE(Levels(samples, 3.0F, 4.0F, 100), (LevelRange{0.0F, 0.0F}));
        QCOMPARE(Levels(samples, 1.0F, 4.0F, 100), (LevelRange{0.0F, 0.25F}));
        QCOMPARE(Levels(samples, 2.0F, 2.5F, 100), (LevelRange{0.0F, 0.0F}));
        QCOMPARE(Levels({-0.5F, -0.25F}, 1.0F, 4.0F, 100), (LevelRange{-0.25F, 0.0F}));
        QVERIFY(!Levels(samples, 200.0F, 201.0F, 100));
    }

    void whatIsNotFiniteIsSilence()
    {
        QCOMPARE(Levels({infinity, notANumber, -infinity}, 0.0F, 5.0F), (LevelRange{0.0F, 0.0F}));
        QCOMPARE(Levels({0.5F, infinity}, 0.25F, 0.75F), (LevelRange{0.25F, 0.25F}));
    }

    void agreesWithASearchThroughAllSamples()
    {
        std::mt19937 random(3);
        std::uniform_real_distribution<float> level(-1.0F, 1.0F);
        QList<float> samples(20'000);
        std::ranges::generate(samples, [&] { return level(random); });
        const WaveformStrip strip(samples, 20'000, {.stepSize = 1, .sampleRate = 1000});
        const SampleExtremes extremes(samples);
        for (int round = 0; round < 500; ++round) {
            const int first = static_cast<int>(random() % 19'000);
            const int last = first + 1 + static_cast<int>(random() % 900);
            const auto found =
                LevelsWithin(strip, extremes, strip.TimeAt(std::size_t(first)), strip.TimeAt(std::size_t(last)));
            const auto [low, high] = std::minmax_element(samples.cbegin() + first, samples.cbegin() + last);
            QCOMPARE(found, (LevelRange{*low, *high}));
        }
    }
};

QTEST_APPLESS_MAIN(TestLevelRange)
#include "tst_levelrange.moc"
