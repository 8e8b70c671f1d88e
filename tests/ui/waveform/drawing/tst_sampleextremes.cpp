#include "ui/waveform/drawing/SampleExtremes.h"

#include <QtTest/QtTest>

#include <cmath>
#include <limits>
#include <random>

using namespace vantoraudio::vantorAudioEngine::UI;

namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
constexpr float largest = std::numeric_limits<float>::max();

/** By looking at every sample. */
Extremes Searched(const std::vector<float>& samples, std::size_t first, std::size_t last)
{
    const auto level = [&](std::size_t i) { return std::isfinite(samples[i]) ? samples[i] : 0.0F; };
    Extremes found{.low = level(first), .high = level(first), .lowest = first, .highest = first};
    for (std::size_t i = first; i < last; ++i) {
        if (level(i) < found.low) {
            found.low = level(i);
            found.lowest = i;
        }
        if (level(i) > found.high) {
            found.high = level(i);
            found.highest = i;
        }
    }
    return found;
}

/** Coarse levels, so that many are equal. */
std::vector<float> Noise(std::size_t count)
{
    std::mt19937 random(5);
    std::uniform_int_distribution<int> level(-40, 40);
    std::vector<float> samples(count);
    std::ranges::generate(samples, [&] { return static_cast<float>(level(random)) / 40.0F; });
    return samples;
}

} // namespace

class TestSampleExtremes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsTheFirstLowestAndHighestSample()
    {
        const std::vector<float> samples = {0.5F, -0.25F, 0.75F, -0.25F, 0.75F, 0.0F};
        const SampleExtremes extremes(samples);
        QVERIFY(extremes.Within(samples, 0, 6) == (Extremes{-0.25F, 0.75F, 1, 2}));
        QVERIFY(extremes.Within(samples, 3, 6) == (Extremes{-0.25F, 0.75F, 3, 4}));
        QVERIFY(extremes.Within(samples, 5, 6) == (Extremes{0.0F, 0.0F, 5, 5}));
    }

    void findsTheSameAsASearchOfEverySample_data()
    {
        QTest::addColumn<int>("count");
        constexpr int block = SampleExtremes::BlockLength;
        constexpr int group = block * SampleExtremes::GroupLength;
        for (const int count :
             {1, 7, block - 1, block, block + 1, group, group + 3, 3 * group - 1, 20 * group + 77}) {
            QTest::addRow("%d samples", count) << count;
        }
    }

    void findsTheSameAsASearchOfEverySample()
    {
        QFETCH(const int, count);
        std::vector<float> samples = Noise(static_cast<std::size_t>(count));
        samples[samples.size() / 2] = notANumber;
        samples[samples.size() / 3] = infinity;
        samples[samples.size() / 4] = -infinity;
        const SampleExtremes extremes(samples);
        std::mt19937 random(9);
        for (int i = 0; i < 300; ++i) {
            const std::size_t first = random() % samples.size();
            const std::size_t last = first + 1 + random() % (samples.size() - first);
            QVERIFY(extremes.Within(samples, first, last) == Searched(samples, first, last));
        }
        QVERIFY(extremes.Within(samples, 0, samples.size()) == Searched(samples, 0, samples.size()));
    }

    void losesNoClick()
    {
        std::vector<float> samples(200'000, 0.0F);
        for (const std::size_t at :
             {std::size_t{0}, std::size_t{127}, std::size_t{128}, std::size_t{99'999}, std::size_t{199'999}}) {
            samples[at] = -0.5F;
            const SampleExtremes extremes(samples);
            QVERIFY(extremes.Within(samples, 0, samples.size()).lowest == at);
            QCOMPARE(extremes.Peak(), 0.5F);
            samples[at] = 0.0F;
        }
    }

    void countsWhatIsNoNumberAsSilence()
    {
        const std::vector<float> samples = {0.5F, notANumber, infinity, -infinity};
        const SampleExtremes extremes(samples);
        QVERIFY(extremes.Within(samples, 0, 4) == (Extremes{0.0F, 0.5F, 1, 0}));
        QVERIFY(extremes.Within(samples, 1, 4) == (Extremes{0.0F, 0.0F, 1, 1}));
        QCOMPARE(extremes.Peak(), 0.5F);
        QCOMPARE(SampleExtremes(std::vector<float>{largest, -largest}).Peak(), largest);
    }

    void findsTheSameInStretchesThatBeginAndEndWithBlocks()
    {
        constexpr std::size_t block = SampleExtremes::BlockLength;
        const std::vector<float> samples = Noise(block * SampleExtremes::GroupLength * 2);
        const SampleExtremes extremes(samples);
        for (std::size_t first = 0; first < samples.size(); first += 3 * block) {
            for (std::size_t last = first + block; last <= samples.size(); last += 5 * block) {
                QVERIFY(extremes.Within(samples, first, last) == Searched(samples, first, last));
                QVERIFY(extremes.Within(samples, first, last - 1) == Searched(samples, first, last - 1));
                QVERIFY(extremes.Within(samples, first + 1, last) == Searched(samples, first + 1, last));
            }
        }
    }

    void nothingIsSilent()
    {
        QCOMPARE(SampleExtremes().Peak(), 0.0F);
        QCOMPARE(SampleExtremes(std::vector<float>{}).Peak(), 0.0F);
    }
};

QTEST_APPLESS_MAIN(TestSampleExtremes)
#include "tst_sampleextremes.moc"
