#include "ui/waveform/rules/SelectionRules.h"

#include <QtTest/QtTest>

#include <cmath>
#include <limits>

using namespace vantoraudio::vantorAudioEngine::UI;

namespace {
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
} // namespace

class TestSelectionRules : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void grabsWhatLiesUnderThePointer_data()
    {
        QTest::addColumn<double>("pointer");
        QTest::addColumn<bool>("start");
        QTest::addColumn<bool>("end");
        QTest::addColumn<bool>("body");
        QTest::newRow("on the start edge") << 200.0 << true << false << false;
        QTest::newRow("five pixels left of it") << 195.0 << true << false << false;
        QTest::newRow("six pixels left of it") << 194.0 << false << false << false;
        QTest::newRow("five pixels right of it") << 205.0 << true << false << false;
        QTest::newRow("six pixels right of it") << 206.0 << false << false << false;
        QTest::newRow("five pixels before the end") << 395.0 << false << true << false;
        QTest::newRow("on the end edge") << 400.0 << false << true << false;
        QTest::newRow("five pixels behind the end") << 405.0 << false << true << false;
        QTest::newRow("six pixels behind the end") << 406.0 << false << false << false;
        QTest::newRow("in the middle") << 300.0 << false << false << true;
        QTest::newRow("five pixels from the middle") << 305.0 << false << false << true;
        QTest::newRow("six pixels from the middle") << 306.0 << false << false << false;
        QTest::newRow("inside, off the middle") << 250.0 << false << false << false;
    }

    void grabsWhatLiesUnderThePointer()
    {
        QFETCH(const double, pointer);
        const Grab grab = GrabAt(pointer, {.left = 10.0, .width = 100.0}, 1000, {30.0, 50.0});
        QTEST(grab.startEdge, "start");
        QTEST(grab.endEdge, "end");
        QTEST(grab.body, "body");
        QCOMPARE(grab.Any(), grab.AnyEdge() || grab.body);
    }

    void grabsBothEdgesThatStandClose()
    {
        const Grab grab = GrabAt(300.0, {.left = 0.0, .width = 100.0}, 1000, {29.6, 30.4});
        QCOMPARE(grab, (Grab{.startEdge = true, .endEdge = true, .body = false}));
    }

    void grabsNothingWhereThereIsNoScale()
    {
        QCOMPARE(GrabAt(3.0, {.left = 1.0, .width = 0.0}, 1000, {1.0, 2.0}), Grab{});
        QCOMPARE(GrabAt(3.0, {.left = notANumber, .width = 5.0}, 1000, {1.0, 2.0}), Grab{});
        QCOMPARE(GrabAt(3.0, {.left = 1.0, .width = 5.0}, 1000, {notANumber, infinity}), Grab{});
    }

    void ordersTwoTimes()
    {
        QCOMPARE(Ordered(3.0, 1.0), SelectionTimes(1.0, 3.0));
        QCOMPARE(Ordered(1.0, 3.0), SelectionTimes(1.0, 3.0));
    }

    void movesAsAWhole()
    {
        QCOMPARE(MovedTo({10.0, 14.0}, 50.0), SelectionTimes(48.0, 52.0));
        QCOMPARE(MovedTo({14.0, 10.0}, 1.0), SelectionTimes(-1.0, 3.0));
    }

    void grabsAnywhereInsideWhenAsked_data()
    {
        QTest::addColumn<double>("pointer");
        QTest::addColumn<bool>("start");
        QTest::addColumn<bool>("body");
        QTest::newRow("inside, off the middle") << 250.0 << false << true;
        QTest::newRow("six pixels right of the start") << 206.0 << false << true;
        QTest::newRow("five pixels right of it") << 205.0 << true << false;
        QTest::newRow("outside") << 194.0 << false << false;
        QTest::newRow("behind the end") << 406.0 << false << false;
    }

    void grabsAnywhereInsideWhenAsked()
    {
        QFETCH(const double, pointer);
        const Grab grab = GrabAt(pointer, {.left = 10.0, .width = 100.0}, 1000, {30.0, 50.0}, true);
        QTEST(grab.startEdge, "start");
        QTEST(grab.body, "body");
        QVERIFY(!grab.endEdge);
    }

    void movesIntoBounds()
    {
        const ViewRange bounds{.left = 0.0, .width = 100.0};
        QCOMPARE(MovedInto({-5.0, 15.0}, bounds), SelectionTimes(0.0, 20.0));
        QCOMPARE(MovedInto({90.0, 110.0}, bounds), SelectionTimes(80.0, 100.0));
        QCOMPARE(MovedInto({30.0, 50.0}, bounds), SelectionTimes(30.0, 50.0));
        QCOMPARE(MovedInto({-5.0, 150.0}, bounds), SelectionTimes(0.0, 100.0));
    }

    void limitsASnippet_data()
    {
        QTest::addColumn<double>("a");
        QTest::addColumn<double>("b");
        QTest::addColumn<double>("start");
        QTest::addColumn<double>("end");
        QTest::newRow("inside") << 200.0 << 300.0 << 200.0 << 300.0;
        QTest::newRow("longest") << 200.0 << 5600.0 << 200.0 << 5600.0;
        QTest::newRow("longer is cut at the end") << 200.0 << 5601.0 << 200.0 << 5600.0;
        QTest::newRow("left of the view") << 50.0 << 300.0 << 100.0 << 300.0;
        QTest::newRow("right of the view") << 9000.0 << 12000.0 << 9000.0 << 10000.0;
        QTest::newRow("cut before it is moved into the view") << -5000.0 << 9000.0 << 100.0 << 400.0;
        QTest::newRow("wholly outside") << 20000.0 << 21000.0 << 10000.0 << 10000.0;
        QTest::newRow("inverted") << 300.0 << 200.0 << 200.0 << 300.0;
        QTest::newRow("infinite") << -infinity << infinity << 100.0 << 100.0;
        QTest::newRow("not a number") << notANumber << notANumber << 100.0 << 100.0;
    }

    void limitsASnippet()
    {
        QFETCH(const double, a);
        QFETCH(const double, b);
        const SelectionTimes limited = LimitSelection({a, b}, {.left = 100.0, .width = 9900.0}, 5400.0);
        QTEST(limited.first, "start");
        QTEST(limited.second, "end");
    }

    void putsZeroInPlaceOfWhatIsNoTime()
    {
        QCOMPARE(Finite({1.5, 2.5}), SelectionTimes(1.5, 2.5));
        QCOMPARE(Finite({notANumber, 2.5}), SelectionTimes(0.0, 2.5));
        QCOMPARE(Finite({-infinity, infinity}), SelectionTimes(0.0, 0.0));
    }

    void takesSnippetsWithinAMillisecondForTheSame()
    {
        QVERIFY(IsSameSelection({1.0, 2.0}, {1.0009, 1.9991}));
        QVERIFY(!IsSameSelection({1.0, 2.0}, {1.0011, 2.0}));
        QVERIFY(!IsSameSelection({1.0, 2.0}, {1.0, 2.0011}));
        QVERIFY(!IsSameSelection({1.0, 2.0}, {notANumber, 2.0}));
    }
};

QTEST_APPLESS_MAIN(TestSelectionRules)
#include "tst_selectionrules.moc"
