#include "ui/waveform/rules/ViewNavigation.h"

#include <QtTest/QtTest>

#include <limits>

using namespace vantoraudio::vantorAudioEngine::UI;

namespace {
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
} // namespace

class TestViewNavigation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void pansByTheWheel_data()
    {
        QTest::addColumn<double>("x");
        QTest::addColumn<double>("y");
        QTest::addColumn<bool>("inPixels");
        QTest::addColumn<double>("left");
        QTest::newRow("one notch forward: a thirtieth toward the start") << 0.0 << 120.0 << false << 39.0;
        QTest::newRow("one notch back") << 0.0 << -120.0 << false << 41.0;
        QTest::newRow("horizontal wheels win") << -240.0 << 120.0 << false << 42.0;
        QTest::newRow("a pixel is a sixteenth of a notch") << 0.0 << -16.0 << true << 41.0;
        QTest::newRow("horizontal pixels") << 32.0 << 99.0 << true << 38.0;
        QTest::newRow("nothing") << 0.0 << 0.0 << false << 40.0;
        QTest::newRow("not before the start") << 0.0 << 120000.0 << false << 0.0;
        QTest::newRow("not past the end") << 0.0 << -120000.0 << false << 70.0;
    }

    void pansByTheWheel()
    {
        QFETCH(const double, x);
        QFETCH(const double, y);
        QFETCH(const bool, inPixels);
        const ViewRange view = {.left = 40.0, .width = 30.0};
        QTEST(PannedLeft(view, {.x = x, .y = y, .inPixels = inPixels}, 100.0), "left");
    }

    void panningAViewLongerThanTheAudioShowsItsStart()
    {
        QCOMPARE(PannedLeft({.left = 5.0, .width = 30.0}, {.x = 0.0, .y = -120.0, .inPixels = false}, 20.0), 0.0);
    }

    void computesTheZoomFactor_data()
    {
        QTest::addColumn<double>("y");
        QTest::addColumn<bool>("inPixels");
        QTest::addColumn<bool>("inverted");
        QTest::addColumn<bool>("backZoomsOut");
        QTest::addColumn<float>("factor");
        const float in = 14.0F / 15.0F;
        const float out = 16.0F / 15.0F;
        QTest::newRow("forward zooms in") << 120.0 << false << false << true << in;
        QTest::newRow("back zooms out") << -120.0 << false << false << true << out;
        QTest::newRow("inverted scrolling") << 120.0 << false << true << true << out;
        QTest::newRow("other convention") << 120.0 << false << false << false << out;
        QTest::newRow("both") << 120.0 << false << true << false << in;
        QTest::newRow("pixels") << 16.0 << true << false << true << in;
        QTest::newRow("nothing") << 0.0 << false << false << true << 1.0F;
        QTest::newRow("beyond zero") << 120.0 * 30.0 << false << false << true << -1.0F;
    }

    void computesTheZoomFactor()
    {
        QFETCH(const double, y);
        QFETCH(const bool, inPixels);
        QFETCH(const bool, inverted);
        QFETCH(const bool, backZoomsOut);
        QTEST(ZoomFactor({.x = 500.0, .y = y, .inPixels = inPixels}, inverted, backZoomsOut), "factor");
    }

    void aChosenFactorCountsForEachNotch_data()
    {
        QTest::addColumn<double>("notches");
        QTest::addColumn<double>("perNotch");
        QTest::addColumn<float>("factor");
        QTest::newRow("in") << 1.0 << 2.0 << 0.5F;
        QTest::newRow("out") << -1.0 << 2.0 << 2.0F;
        QTest::newRow("three in") << 3.0 << 2.0 << 0.125F;
        QTest::newRow("half a notch out") << -0.5 << 4.0 << 2.0F;
        QTest::newRow("nothing") << 0.0 << 10.0 << 1.0F;
        QTest::newRow("the most out") << -1e6 << 10.0 << 1e30F;
        QTest::newRow("the most in") << 1e6 << 10.0 << 1e-30F;
    }

    void aChosenFactorCountsForEachNotch()
    {
        QFETCH(const double, notches);
        QFETCH(const double, perNotch);
        const WheelTurn turn = {.x = 500.0, .y = notches * 120.0, .inPixels = false};
        QTEST(ZoomFactor(turn, false, true, perNotch), "factor");
    }

    void zoomsAroundTheAnchor()
    {
        const auto edges = ZoomedAround({.left = 20.0, .width = 40.0}, 30.0, 0.5F, 100.0);
        QVERIFY(edges);
        QCOMPARE(edges->left, 25.0);
        QCOMPARE(edges->right, 45.0);
    }

    void zoomingOutStopsAtBothEndsOfTheAudio()
    {
        const auto edges = ZoomedAround({.left = 20.0, .width = 40.0}, 30.0, 10.0F, 100.0);
        QVERIFY(edges);
        QCOMPARE(edges->left, 0.0);
        QCOMPARE(edges->right, 100.0);
    }

    void refusesAZoom_data()
    {
        QTest::addColumn<double>("width");
        QTest::addColumn<float>("factor");
        QTest::addColumn<double>("total");
        QTest::addColumn<bool>("isRefused");
        QTest::newRow("to a tenth of a second") << 0.2 << 0.5F << 100.0 << true;
        QTest::newRow("to 0.11 seconds") << 0.22 << 0.5F << 100.0 << false;
        QTest::newRow("to nothing") << 10.0 << 0.0F << 100.0 << true;
        QTest::newRow("to less than nothing") << 10.0 << -1.0F << 100.0 << true;
        QTest::newRow("no audio") << 10.0 << 1.0F << 0.0 << true;
        QTest::newRow("infinite") << infinity << 0.5F << infinity << true;
        QTest::newRow("width not a number: back to everything") << notANumber << 0.5F << 100.0 << false;
        QTest::newRow("factor not a number: back to everything")
            << 10.0 << static_cast<float>(notANumber) << 100.0 << false;
        QTest::newRow("total not a number") << 10.0 << 0.5F << notANumber << true;
        QTest::newRow("a span without a scale") << 2e9 << 0.5F << 2e9 << true;
    }

    void refusesAZoom()
    {
        QFETCH(const double, width);
        QFETCH(const float, factor);
        QFETCH(const double, total);
        QFETCH(const bool, isRefused);
        QCOMPARE(!ZoomedAround({.left = 0.0, .width = width}, 0.0, factor, total), isRefused);
    }

    void scrollsTheFasterTheFartherADragIsOutside_data()
    {
        QTest::addColumn<int>("x");
        QTest::addColumn<double>("left");
        QTest::newRow("one pixel right: a hundredth") << 1000 << 40.2;
        QTest::newRow("50 pixels right") << 1049 << 41.0;
        QTest::newRow("far right: a tenth") << 5000 << 42.0;
        QTest::newRow("one pixel left") << -1 << 39.8;
        QTest::newRow("far left") << -5000 << 38.0;
    }

    void scrollsTheFasterTheFartherADragIsOutside()
    {
        QFETCH(const int, x);
        QTEST(ScrolledByDrag({.left = 40.0, .width = 20.0}, x, 1000, 100.0), "left");
    }

    void aDragScrollsNoFartherThanTheFile()
    {
        QCOMPARE(ScrolledByDrag({.left = 79.0, .width = 20.0}, 5000, 1000, 100.0), 80.0);
        QCOMPARE(ScrolledByDrag({.left = 1.0, .width = 20.0}, -5000, 1000, 100.0), 0.0);
        QCOMPARE(ScrolledByDrag({.left = 0.0, .width = 20.0}, 5000, 1000, 10.0), 0.0);
        QCOMPARE(ScrolledByDrag({.left = 0.0, .width = 20.0}, 1, 0, 100.0), 2.0);
    }

    void turnsThePageAfterThePosition_data()
    {
        QTest::addColumn<double>("position");
        QTest::addColumn<double>("duration");
        QTest::addColumn<double>("left");
        QTest::newRow("a whole page is left") << 30.5 << 100.0 << 30.0;
        QTest::newRow("just a whole page") << 30.5 << 50.0 << 30.0;
        QTest::newRow("less than a page: the end") << 30.5 << 49.0 << 29.0;
        QTest::newRow("far away is still one page") << 95.0 << 100.0 << 30.0;
        QTest::newRow("infinity") << infinity << 100.0 << 30.0;
        QTest::newRow("on the right edge") << 30.0 << 100.0 << -1.0;
        QTest::newRow("in the view") << 20.0 << 100.0 << -1.0;
        QTest::newRow("left of the view") << 1.0 << 100.0 << -1.0;
        QTest::newRow("not a number") << notANumber << 100.0 << -1.0;
    }

    void turnsThePageAfterThePosition()
    {
        QFETCH(const double, position);
        QFETCH(const double, duration);
        QTEST(PageFor({.left = 10.0, .width = 20.0}, position, duration).value_or(-1.0), "left");
    }

    void showsAnyPositionAtOnce_data()
    {
        QTest::addColumn<double>("position");
        QTest::addColumn<double>("duration");
        QTest::addColumn<double>("left");
        QTest::newRow("in the view") << 20.0 << 100.0 << -1.0;
        QTest::newRow("on the left edge") << 10.0 << 100.0 << -1.0;
        QTest::newRow("on the right edge") << 30.0 << 100.0 << -1.0;
        QTest::newRow("on the next page: a page on") << 50.0 << 100.0 << 30.0;
        QTest::newRow("on the next page, which is the last") << 45.0 << 45.0 << 25.0;
        QTest::newRow("behind the next page: in the middle") << 51.0 << 100.0 << 41.0;
        QTest::newRow("close to the end") << 95.0 << 100.0 << 80.0;
        QTest::newRow("left of the view: in the middle") << 9.0 << 15.0 << 0.0;
        QTest::newRow("at the start") << 0.0 << 100.0 << 0.0;
        QTest::newRow("behind an end that shows") << 40.0 << 30.0 << -1.0;
        QTest::newRow("in a view longer than the audio") << 40.0 << 15.0 << 0.0;
        QTest::newRow("infinity") << infinity << 100.0 << 80.0;
        QTest::newRow("minus infinity") << -infinity << 100.0 << 0.0;
        QTest::newRow("not a number") << notANumber << 100.0 << -1.0;
    }

    void showsAnyPositionAtOnce()
    {
        QFETCH(const double, position);
        QFETCH(const double, duration);
        QTEST(LeftThatShows({.left = 10.0, .width = 20.0}, position, duration).value_or(-1.0), "left");
    }

    void tellsAnOverrunFromPlayingOn_data()
    {
        QTest::addColumn<double>("end");
        QTest::addColumn<double>("position");
        QTest::addColumn<bool>("isOverrun");
        QTest::newRow("at the end") << 30.0 << 30.0 << false;
        QTest::newRow("just past it") << 30.0 << 30.45 << true;
        QTest::newRow("long past it") << 30.0 << 30.51 << false;
        QTest::newRow("before it") << 30.0 << 29.0 << false;
        QTest::newRow("the selection goes on behind the view") << 30.1 << 30.2 << false;
    }

    void tellsAnOverrunFromPlayingOn()
    {
        QFETCH(const double, end);
        QFETCH(const double, position);
        QTEST(IsOverrun({10.0, end}, {.left = 10.0, .width = 20.0}, position), "isOverrun");
        QVERIFY(!IsOverrun({9.0, end}, {.left = 10.0, .width = 20.0}, position));
        // A view whose edges were computed.
        QTEST(IsOverrun({10.0, end}, {.left = 10.0 + 1e-12, .width = 20.0 - 2e-12}, position), "isOverrun");
    }
};

QTEST_APPLESS_MAIN(TestViewNavigation)
#include "tst_viewnavigation.moc"
