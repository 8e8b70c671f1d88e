#include "ui/waveform/rules/ViewRange.h"

#include <QtTest/QtTest>

#include <cmath>
#include <limits>

using namespace vantoraudio::vantorAudioEngine::UI;

namespace {
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr int intMax = std::numeric_limits<int>::max();
} // namespace

class TestViewRange : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void takesTheHorizontalPartOfTheSceneRect()
    {
        const ViewRange view = HorizontalRange(QRectF(2.0, 7.0, 3.0, 9.0));
        QCOMPARE(view.left, 2.0);
        QCOMPARE(view.width, 3.0);
        QCOMPARE(view.Right(), 5.0);
    }

    void clampsATime_data()
    {
        QTest::addColumn<double>("value");
        QTest::addColumn<double>("low");
        QTest::addColumn<double>("high");
        QTest::addColumn<double>("expected");
        QTest::newRow("inside") << 2.0 << 1.0 << 3.0 << 2.0;
        QTest::newRow("below") << -2.0 << 1.0 << 3.0 << 1.0;
        QTest::newRow("above") << 5.0 << 1.0 << 3.0 << 3.0;
        QTest::newRow("infinity") << infinity << 1.0 << 3.0 << 3.0;
        QTest::newRow("not a number") << notANumber << 1.0 << 3.0 << 1.0;
        QTest::newRow("inverted bounds") << 2.0 << 3.0 << 1.0 << 1.0;
    }

    void clampsATime()
    {
        QFETCH(const double, value);
        QFETCH(const double, low);
        QFETCH(const double, high);
        QTEST(ClampTime(value, low, high), "expected");
    }

    void findsTheTimeUnderTheMiddleOfAPixel()
    {
        const ViewRange view = {.left = 10.0, .width = 20.0};
        QCOMPARE(TimeAtPixel(view, 0.0, 100), 10.1);
        QCOMPARE(TimeAtPixel(view, 49.0, 100), 19.9);
        QCOMPARE(TimeAtPixel(view, 99.0, 100), 29.9);
        QCOMPARE(TimeAtPixel(view, 99.5, 100), 30.0);
        QCOMPARE(TimeAtPixel(view, -10.0, 100), 8.1);
    }

    void givesTheLeftTimeInAWidgetWithoutWidth()
    {
        QCOMPARE(TimeAtPixel({.left = 10.0, .width = 20.0}, 5.0, 0), 10.0);
        QCOMPARE(TimeAtPixel({.left = 10.0, .width = 20.0}, 5.0, -3), 10.0);
    }

    void findsThePixelOfATime()
    {
        const ViewRange view = {.left = 10.0, .width = 20.0};
        QCOMPARE(PixelAtTime(view, 10.0, 100), 0.0);
        QCOMPARE(PixelAtTime(view, 20.0, 100), 50.0);
        QCOMPARE(PixelAtTime(view, 0.0, 100), -50.0);
    }

    void findsNoPixelInAViewWithoutWidth()
    {
        QVERIFY(std::isnan(PixelAtTime({.left = 1.0, .width = 0.0}, 1.0, 100)));
        QVERIFY(std::isinf(PixelAtTime({.left = 1.0, .width = 0.0}, 2.0, 100)));
    }

    void choosesTheStepSize_data()
    {
        QTest::addColumn<double>("span");
        QTest::addColumn<int>("rate");
        QTest::addColumn<int>("width");
        QTest::addColumn<int>("expected");
        QTest::newRow("just below five minutes") << 299.999 << 48000 << 1 << 1;
        QTest::newRow("five minutes") << 300.0 << 48000 << 1000 << 14;
        QTest::newRow("five minutes, quotient below 1") << 300.0 << 8000 << 4000 << 1;
        QTest::newRow("one hour") << 3600.0 << 44100 << 800 << 198;
        QTest::newRow("quotient is cut, not rounded") << 399.9 << 1000 << 200 << 1;
        QTest::newRow("fractions of a sample are cut first") << 300.9999 << 1000 << 300 << 1;
        QTest::newRow("zero") << 0.0 << 48000 << 100 << 1;
        QTest::newRow("negative") << -500.0 << 48000 << 100 << 1;
        QTest::newRow("product beyond 32 bits") << 2e9 << 48000 << 100 << 21474;
        QTest::newRow("infinite span") << infinity << 48000 << 100 << 21474;
        QTest::newRow("span not a number") << notANumber << 48000 << 100 << 1;
        QTest::newRow("no rate") << 3600.0 << 0 << 100 << 1;
        QTest::newRow("negative rate") << 3600.0 << -48000 << 100 << 1;
        QTest::newRow("no width counts as one pixel") << 3600.0 << 48000 << 0 << 172800;
        QTest::newRow("negative width counts as one pixel") << 3600.0 << 48000 << -7 << 172800;
        QTest::newRow("width whose product wraps to a negative") << 3600.0 << 48000 << 2147484 << 1;
        QTest::newRow("width whose product wraps to zero") << 3600.0 << 48000 << 536870912 << 1;
    }

    void choosesTheStepSize()
    {
        QFETCH(const double, span);
        QFETCH(const int, rate);
        QFETCH(const int, width);
        QTEST(StepSizeForSpan(span, rate, width), "expected");
    }

    void setsTheScrollBarInMilliseconds_data()
    {
        QTest::addColumn<double>("left");
        QTest::addColumn<double>("width");
        QTest::addColumn<double>("total");
        QTest::addColumn<int>("maximum");
        QTest::addColumn<int>("page");
        QTest::addColumn<int>("value");
        QTest::newRow("everything visible") << 0.0 << 10.0 << 10.0 << 0 << 10000 << 0;
        QTest::newRow("a part") << 2.5 << 4.0 << 10.0 << 6000 << 4000 << 2500;
        QTest::newRow("fractions are cut") << 1.0009 << 2.0009 << 5.0 << 2999 << 2000 << 1000;
        QTest::newRow("empty") << 0.0 << 1.0 << 0.0 << -1000 << 1000 << 0;
        QTest::newRow("two billion seconds") << 3e8 << 4e8 << 2e9 << intMax << intMax << intMax;
        QTest::newRow("infinite") << infinity << infinity << 1.0 << -intMax << intMax << intMax;
        QTest::newRow("not a number") << notANumber << notANumber << notANumber << 0 << 0 << 0;
        QTest::newRow("hugely negative") << -1e300 << -1e300 << -1e300 << 0 << -intMax << -intMax;
    }

    void setsTheScrollBarInMilliseconds()
    {
        QFETCH(const double, left);
        QFETCH(const double, width);
        QFETCH(const double, total);
        const ScrollBarState state = ScrollBarFor({.left = left, .width = width}, total);
        QTEST(state.maximum, "maximum");
        QTEST(state.pageStep, "page");
        QTEST(state.value, "value");
    }
};

QTEST_APPLESS_MAIN(TestViewRange)
#include "tst_viewrange.moc"
