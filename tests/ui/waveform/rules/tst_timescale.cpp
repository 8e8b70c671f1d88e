#include "ui/waveform/rules/TimeScale.h"

#include <vantorAudioEngine/BGFXWaveformWidget.h>

#include <QtTest/QtTest>

#include <cstdint>
#include <limits>

using namespace vantoraudio::vantorAudioEngine::UI;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

/** The step for a span in whole microseconds, found with integers only: the coarsest base whose multiples fit. */
std::int64_t StepInMicroseconds(std::int64_t span)
{
    for (const std::int64_t base :
         {3'600'000'000LL, 60'000'000LL, 1'000'000LL, 100'000LL, 10'000LL, 1'000LL, 100LL}) {
        for (const std::int64_t multiple : {1, 2, 5, 10, 15, 20, 30}) {
            const std::int64_t step = base * multiple;
            if (3 * step < span && span < 10 * step) {
                return step;
            }
        }
    }
    return 0;
}

} // namespace

class TestTimeScale : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void dividesASpanIntoRoundSteps_data()
    {
        QTest::addColumn<double>("span");
        QTest::addColumn<double>("step");
        const auto row = [](double span, double step) {
            QTest::newRow(qPrintable(QString::number(span))) << span << step;
        };
        row(0.1, 0.01);
        row(0.11, 0.02);
        row(0.5, 0.1);
        row(1, 0.1);
        row(2, 0.5);
        row(5, 1);
        row(10, 1);
        row(20, 5);
        row(30, 5);
        row(60, 10);
        row(100, 15);
        row(120, 15);
        row(300, 60);
        row(600, 60);
        row(900, 120);
        row(1800, 300);
        row(3600, 600);
        row(5400, 600);
        row(7200, 900);
        row(10800, 3600);
        row(36000, 3600);
        row(100000, 18000);
        row(1079999, 108000);
        row(0.001, 0.0001);
    }

    void dividesASpanIntoRoundSteps()
    {
        QFETCH(const double, span);
        QFETCH(const double, step);
        QCOMPARE(CalculateScale(span), step);
        QCOMPARE(BGFXWaveformWidget::CalculateScale(span), step);
    }

    void takesAWholeBaseAtBothInclusiveBounds()
    {
        QCOMPARE(CalculateScale(10800.0), 3600.0); // 3 hours exactly
        QCOMPARE(CalculateScale(36000.0), 3600.0); // 10 hours exactly
        QCOMPARE(CalculateScale(std::nextafter(10800.0, 0.0)), 1200.0);
        QCOMPARE(CalculateScale(std::nextafter(36000.0, 1e9)), 7200.0);
    }

    void refusesBothBoundsOfAMultiple()
    {
        QCOMPARE(CalculateScale(6.0 * 3600.0), 3600.0);
        QCOMPARE(CalculateScale(72000.0), 18000.0); // ten times two hours
        QCOMPARE(CalculateScale(std::nextafter(72000.0, 0.0)), 7200.0);
    }

    void agreesWithIntegerArithmetic()
    {
        int compared = 0;
        // Steps of about 0.07 %, and odd, so that no span is an exact multiple of a step.
        for (std::int64_t span = 3'001; span < 1'080'000'000'000; span += 2 * (span / 3000) + 2) {
            const double expected = static_cast<double>(StepInMicroseconds(span)) / 1e6;
            QCOMPARE(CalculateScale(static_cast<double>(span) / 1e6), expected);
            ++compared;
        }
        QVERIFY(compared > 20'000);
    }

    void endsForAnySpan_data()
    {
        QTest::addColumn<double>("span");
        QTest::newRow("zero") << 0.0;
        QTest::newRow("minus zero") << -0.0;
        QTest::newRow("negative") << -1.0;
        QTest::newRow("minus infinity") << -infinity;
        QTest::newRow("infinity") << infinity;
        QTest::newRow("not a number") << notANumber;
        QTest::newRow("ten times thirty hours") << 1'080'000.0;
        QTest::newRow("two billion seconds") << 2e9;
        QTest::newRow("largest double") << std::numeric_limits<double>::max();
        QTest::newRow("smallest double") << std::numeric_limits<double>::denorm_min();
    }

    void endsForAnySpan()
    {
        QFETCH(const double, span);
        QVERIFY(CalculateScale(span) == 0.0);
    }

    void findsAStepForTinySpans_data()
    {
        QTest::addColumn<double>("span");
        QTest::newRow("1e-6") << 1e-6;
        QTest::newRow("1e-12") << 1e-12;
        QTest::newRow("1e-100") << 1e-100;
        QTest::newRow("1e-300") << 1e-300;
        QTest::newRow("smallest normal double") << std::numeric_limits<double>::min();
    }

    void findsAStepForTinySpans()
    {
        QFETCH(const double, span);
        const double step = CalculateScale(span);
        QVERIFY(step > 0.0);
        QVERIFY(span / step >= 3.0 && span / step <= 10.0);
    }

    void writesATimeInItsLargestUnit_data()
    {
        QTest::addColumn<double>("seconds");
        QTest::addColumn<QString>("label");
        QTest::newRow("hours") << 3723.5 << QStringLiteral("1:02:03.500 hr");
        QTest::newRow("minutes") << 75.25 << QStringLiteral("1:15.250 min");
        QTest::newRow("seconds") << 5.1 << QStringLiteral("5.100 sec");
        QTest::newRow("milliseconds") << 0.045 << QStringLiteral("045 msec");
        QTest::newRow("zero") << 0.0 << QStringLiteral("0 sec");
        QTest::newRow("a whole hour") << 3600.0 << QStringLiteral("1:00:00.000 hr");
        QTest::newRow("a whole minute") << 60.0 << QStringLiteral("1:00.000 min");
        QTest::newRow("the last second of a day") << 86399.0 << QStringLiteral("23:59:59.000 hr");
        QTest::newRow("half a millisecond rounds up") << 0.0005 << QStringLiteral("001 msec");
        QTest::newRow("less than half a millisecond") << 0.0004 << QStringLiteral("0 sec");
        QTest::newRow("a day") << 86400.0 << QStringLiteral(" hr");
        QTest::newRow("minus one second") << -1.0 << QStringLiteral(" sec");
        QTest::newRow("minus half a millisecond rounds away from zero") << -0.0005 << QStringLiteral(" msec");
        QTest::newRow("minus half a second") << -0.5 << QStringLiteral(" msec");
        QTest::newRow("minus a minute") << -60.0 << QStringLiteral(" min");
        QTest::newRow("minus an hour") << -3600.0 << QStringLiteral(" hr");
        QTest::newRow("past 32 bits") << 1e12 << QStringLiteral(" hr");
        QTest::newRow("infinity") << infinity << QStringLiteral(" hr");
        QTest::newRow("minus infinity") << -infinity << QStringLiteral(" hr");
        QTest::newRow("not a number") << notANumber << QStringLiteral("0 sec");
    }

    void writesATimeInItsLargestUnit()
    {
        QFETCH(const double, seconds);
        QFETCH(const QString, label);
        QCOMPARE(FormatToTime(seconds), label);
        QCOMPARE(BGFXWaveformWidget::FormatToTime(seconds), label);
    }

    void cutsSecondsButRoundsMillisecondsWithoutCarrying()
    {
        QCOMPARE(FormatToTime(1.9996), QStringLiteral("1.000 sec"));
        QCOMPARE(FormatToTime(59.9996), QStringLiteral("59.000 sec"));
        QCOMPARE(FormatToTime(0.9996), QStringLiteral("0 sec"));
    }

    void allowsSelectionsOfNinetyMinutes() { QCOMPARE(BGFXWaveformWidget::MAX_SNIPPET_LENGTH, 5400); }
};

QTEST_APPLESS_MAIN(TestTimeScale)
#include "tst_timescale.moc"
