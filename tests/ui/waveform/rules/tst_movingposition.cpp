#include "ui/waveform/rules/MovingPosition.h"

#include <QtTest/QtTest>

#include <cmath>
#include <limits>
#include <random>

using namespace vantoraudio::vantorAudioEngine::UI;

namespace {

/** Plays from 10 seconds on, since the moment 1000. */
MovingPosition Playing(double rate = 1.0)
{
    MovingPosition position(10.0);
    position.SetRate(rate, 1000);
    return position;
}

} // namespace

class TestMovingPosition : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void standsStillWithoutARate()
    {
        MovingPosition position(10.0);
        QCOMPARE(position.At(0), 10.0);
        QCOMPARE(position.At(100'000), 10.0);
        position.Report(3.0, 200'000);
        QCOMPARE(position.At(200'400), 3.0);
    }

    void movesAtItsRate_data()
    {
        QTest::addColumn<double>("rate");
        QTest::newRow("half") << 0.5;
        QTest::newRow("usual") << 1.0;
        QTest::newRow("double") << 2.0;
    }

    void movesAtItsRate()
    {
        QFETCH(const double, rate);
        const MovingPosition position = Playing(rate);
        QCOMPARE(position.At(1000), 10.0);
        QCOMPARE(position.At(1250), 10.0 + 0.25 * rate);
        QCOMPARE(position.Reported(), 10.0);
    }

    void waitsWhenNoReportComes()
    {
        const MovingPosition position = Playing();
        QCOMPARE(position.At(1500), 10.5);
        QCOMPARE(position.At(1501), 10.5);
        QCOMPARE(position.At(std::numeric_limits<std::int64_t>::max()), 10.5);
    }

    void goesOnFromAReport()
    {
        MovingPosition position = Playing();
        position.Report(10.3, 1250);
        QCOMPARE(position.Reported(), 10.3);
        QCOMPARE(position.At(1250), 10.3);
        QCOMPARE(position.At(1350), 10.4);
    }

    void waitsForALateReportInsteadOfGoingBack()
    {
        MovingPosition position = Playing();
        position.Report(10.2, 1250);
        QCOMPARE(position.At(1250), 10.25);
        QCOMPARE(position.At(1290), 10.25);
        QVERIFY(std::abs(position.At(1350) - 10.3) < 1e-9);
    }

    void jumpsBackToWhatIsFarBehind()
    {
        MovingPosition position = Playing();
        position.Report(10.1, 1250);
        QCOMPARE(position.At(1250), 10.1);
        position.Report(0.0, 1300);
        QCOMPARE(position.At(1300), 0.0);
    }

    void aNewRateHoldsFromNowOn()
    {
        MovingPosition position = Playing();
        position.SetRate(2.0, 1200);
        QCOMPARE(position.At(1200), 10.2);
        QCOMPARE(position.At(1300), 10.4);
        position.SetRate(0.0, 1300);
        QCOMPARE(position.At(9000), 10.4);
    }

    void neverGoesBackWhileReportsAreNearlyRight()
    {
        std::mt19937 random(8);
        std::uniform_int_distribution<int> late(0, 90);
        MovingPosition position(0.0);
        position.SetRate(1.0, 0);
        double last = 0.0;
        for (int now = 0; now < 60'000; now += 16) {
            if (now % 96 == 0) {
                position.Report(std::max(0, now - late(random)) / 1000.0, now);
            }
            const double at = position.At(now);
            QVERIFY(at >= last);
            QVERIFY(std::abs(at - now / 1000.0) <= 0.1);
            last = at;
        }
    }

    void bearsWhatIsNotFinite()
    {
        for (const double value :
             {std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()}) {
            MovingPosition position = Playing();
            position.Report(value, 1100);
            QVERIFY(!std::isfinite(position.At(1200)));
            position.Report(7.0, 1300);
            QCOMPARE(position.At(1300), 7.0);
        }
    }
};

QTEST_APPLESS_MAIN(TestMovingPosition)
#include "tst_movingposition.moc"
