#include "ui/waveform/rules/Ruler.h"
#include "ui/waveform/rules/TimeScale.h"

#include <QtTest/QtTest>

#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

using namespace vantoraudio::vantorAudioEngine::UI;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

/** Walks over every step of the audio, as a reader would count them. */
std::vector<double> AllRulerTimes(const TimeAxis& axis, double scale)
{
    std::vector<double> times;
    for (int i = static_cast<int>(axis.bufferStart / scale); axis.totalLength / scale > i; ++i) {
        const double time = i * scale;
        if (axis.view.left <= time && time <= axis.view.Right()) {
            times.push_back(time);
        }
    }
    return times;
}

std::vector<double> AllGridOffsets(const TimeAxis& axis, double scale)
{
    std::vector<double> offsets;
    for (int i = static_cast<int>(axis.bufferStart / scale); axis.totalLength / scale > i; ++i) {
        const double x = scale * i - axis.bufferStart;
        if (axis.view.left - axis.bufferStart <= x && x <= axis.view.Right() - axis.bufferStart) {
            offsets.push_back(x);
        }
    }
    return offsets;
}

TimeAxis Axis(double left, double width, double bufferStart, double totalLength)
{
    return {.view = {.left = left, .width = width}, .bufferStart = bufferStart, .totalLength = totalLength};
}

} // namespace

class TestRuler : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void putsAStepOnEveryMultipleInView()
    {
        QCOMPARE(RulerTimes(Axis(2.0, 4.0, 0.0, 10.0), 1.0), (std::vector<double>{2, 3, 4, 5, 6}));
        QCOMPARE(GridOffsets(Axis(2.0, 4.0, 1.5, 10.0), 1.0), (std::vector<double>{0.5, 1.5, 2.5, 3.5, 4.5}));
    }

    void putsNoStepOnTheVeryEndOfTheAudio()
    {
        QCOMPARE(RulerTimes(Axis(0.0, 5.0, 0.0, 5.0), 1.0), (std::vector<double>{0, 1, 2, 3, 4}));
        QCOMPARE(GridOffsets(Axis(0.0, 5.0, 0.0, 5.0), 1.0), (std::vector<double>{0, 1, 2, 3, 4}));
    }

    void putsNoStepBeforeTheOneThatTheSamplesBeginIn()
    {
        QCOMPARE(RulerTimes(Axis(0.0, 5.0, 3.7, 9.0), 1.0), (std::vector<double>{3, 4, 5}));
    }

    void hasNoStepsWithoutAudioOrScale_data()
    {
        QTest::addColumn<double>("left");
        QTest::addColumn<double>("width");
        QTest::addColumn<double>("start");
        QTest::addColumn<double>("total");
        QTest::addColumn<double>("scale");
        QTest::newRow("no audio") << 0.0 << 1.0 << 0.0 << 0.0 << 0.1;
        QTest::newRow("no scale") << 0.0 << 2e9 << 0.0 << 2e9 << 0.0;
        QTest::newRow("negative scale") << 0.0 << 10.0 << 0.0 << 10.0 << -1.0;
        QTest::newRow("scale not a number") << 0.0 << 10.0 << 0.0 << 10.0 << notANumber;
        QTest::newRow("view not a number") << notANumber << 10.0 << 0.0 << 10.0 << 1.0;
        QTest::newRow("total not a number") << 0.0 << 10.0 << 0.0 << notANumber << 1.0;
        QTest::newRow("infinite view") << infinity << 10.0 << 0.0 << infinity << 1.0;
        QTest::newRow("farther than steps can be counted") << 1e300 << 10.0 << 0.0 << infinity << 1.0;
        QTest::newRow("negative audio") << 0.0 << 10.0 << 0.0 << -5.0 << 1.0;
    }

    void hasNoStepsWithoutAudioOrScale()
    {
        QFETCH(const double, left);
        QFETCH(const double, width);
        QFETCH(const double, start);
        QFETCH(const double, total);
        QFETCH(const double, scale);
        QVERIFY(RulerTimes(Axis(left, width, start, total), scale).empty());
        QVERIFY(GridOffsets(Axis(left, width, start, total), scale).empty());
    }

    void agreesWithAWalkOverTheWholeAudio()
    {
        std::mt19937 random(20240917);
        std::uniform_real_distribution<double> share(0.0, 1.0);
        std::size_t steps = 0;
        for (int round = 0; round < 3000; ++round) {
            const double total = std::pow(10.0, share(random) * 4.0);
            const double width = total * std::pow(10.0, -2.0 * share(random));
            const double left = round % 7 == 0 ? 0.0 : (total - width) * share(random);
            const double bufferStart = round % 3 == 0 ? 0.0 : left * share(random);
            const TimeAxis axis = Axis(left, width, bufferStart, total);
            const double scale = CalculateScale(axis.view.Right() - axis.view.left);
            const auto times = RulerTimes(axis, scale);
            QCOMPARE(times, AllRulerTimes(axis, scale));
            QCOMPARE(GridOffsets(axis, scale), AllGridOffsets(axis, scale));
            steps += times.size();
        }
        QVERIFY(steps > 9000);
    }

    void agreesWithAWalkWhereStepsFallOnTheEdges()
    {
        for (const double width : {1.0, 3.0, 5.0, 10.0, 30.0, 0.3, 0.5}) {
            for (int page = 0; page < 50; ++page) {
                const TimeAxis axis = Axis(page * width, width, page * width * 0.5, 50 * width);
                const double scale = CalculateScale(axis.view.Right() - axis.view.left);
                QCOMPARE(RulerTimes(axis, scale), AllRulerTimes(axis, scale));
                QCOMPARE(GridOffsets(axis, scale), AllGridOffsets(axis, scale));
            }
        }
    }

    void labelsWithRoomStay()
    {
        const std::vector<RulerLabel> labels = {{3, 10.0, 20.0}, {4, 34.0, 20.0}, {5, 58.0, 20.0}};
        QCOMPARE(LabelsThatFit(labels, 10.0, 78.0, 4.0), labels);
    }

    void ofDenseLabelsEverySecondFifthOrTenthStepRemains_data()
    {
        QTest::addColumn<double>("distance");
        QTest::addColumn<QList<int>>("steps");
        QTest::newRow("apart") << 24.0 << QList<int>{3, 4, 5, 6, 7, 8, 9, 10, 11};
        QTest::newRow("a little less") << 23.9 << QList<int>{4, 6, 8, 10};
        QTest::newRow("half") << 12.0 << QList<int>{4, 6, 8, 10};
        QTest::newRow("less than half") << 11.9 << QList<int>{5, 10};
        QTest::newRow("a fifth") << 4.8 << QList<int>{5, 10};
        QTest::newRow("less than a fifth") << 4.7 << QList<int>{10};
        QTest::newRow("all at one place") << 0.0 << QList<int>{10};
    }

    void ofDenseLabelsEverySecondFifthOrTenthStepRemains()
    {
        QFETCH(const double, distance);
        QFETCH(const QList<int>, steps);
        std::vector<RulerLabel> labels;
        for (int step = 3; step < 12; ++step) {
            labels.push_back({.step = step, .left = step * distance, .width = 20.0});
        }
        QList<int> kept;
        for (const RulerLabel& label : LabelsThatFit(labels, 0.0, 1000.0, 4.0)) {
            kept << static_cast<int>(label.step);
        }
        QCOMPARE(kept, steps);
    }

    void aViewTooSmallForItsLabelsKeepsTheFirst()
    {
        const std::vector<RulerLabel> labels = {{3, 0.0, 20.0}, {4, 1.0, 20.0}, {6, 2.0, 20.0}};
        QCOMPARE(LabelsThatFit(labels, 0.0, 50.0, 4.0), (std::vector<RulerLabel>{{3, 0.0, 20.0}}));
    }

    void labelsAtTheEndsMoveInwards()
    {
        const std::vector<RulerLabel> labels = {{0, -10.0, 20.0}, {1, 40.0, 20.0}, {2, 90.0, 20.0}};
        QCOMPARE(LabelsThatFit(labels, 6.0, 100.0, 4.0),
                 (std::vector<RulerLabel>{{0, 6.0, 20.0}, {1, 40.0, 20.0}, {2, 80.0, 20.0}}));
    }

    void labelsThatCannotMoveAreLeftOut()
    {
        const std::vector<RulerLabel> labels = {{0, -10.0, 20.0}, {1, 14.0, 20.0}, {2, 38.0, 20.0}};
        QCOMPARE(LabelsThatFit(labels, 0.0, 50.0, 4.0), (std::vector<RulerLabel>{{1, 14.0, 20.0}}));
        QCOMPARE(LabelsThatFit({{0, -10.0, 20.0}}, 0.0, 19.0, 4.0), std::vector<RulerLabel>{});
        QCOMPARE(LabelsThatFit({}, 0.0, 19.0, 4.0), std::vector<RulerLabel>{});
    }

    void labelsWithoutAPlaceAreLeftOut()
    {
        for (const double left : {notANumber, infinity, -infinity}) {
            for (const RulerLabel& label : LabelsThatFit({{0, left, 20.0}}, 0.0, 50.0, 4.0)) {
                QVERIFY(label.left >= 0.0 && label.Right() <= 50.0);
            }
            QVERIFY(LabelsThatFit({{0, 0.0, 20.0}, {1, left, notANumber}}, 0.0, 50.0, 4.0).size() <= 1);
        }
    }

    void costsNothingForTwoBillionSeconds()
    {
        const TimeAxis axis = Axis(1.999e9, 0.5, 0.0, 2e9);
        for (int frame = 0; frame < 10000; ++frame) {
            QVERIFY(RulerTimes(axis, 0.1).size() >= 5);
        }
        QVERIFY(GridOffsets(axis, 0.1).size() >= 5);
    }
};

QTEST_APPLESS_MAIN(TestRuler)
#include "tst_ruler.moc"
