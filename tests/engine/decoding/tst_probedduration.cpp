#include "engine/decoding/ProbedDuration.h"

#include <QtTest/QTest>

#include <limits>

using namespace vantoraudio::AudioEngine;

class TestProbedDuration : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void takesTheContainersDuration_data()
    {
        QTest::addColumn<qint64>("microseconds");
        QTest::addColumn<int>("milliseconds");
        QTest::addRow("a second") << qint64(1'000'000) << 1000;
        QTest::addRow("truncated, not rounded") << qint64(1'999'999) << 1999;
        QTest::addRow("less than a millisecond") << qint64(999) << 0;
        QTest::addRow("negative, toward zero") << qint64(-1999) << -1;
        QTest::addRow("unknown") << std::numeric_limits<qint64>::min() << 0;
        QTest::addRow("hundreds of years") << std::numeric_limits<qint64>::max() << 2147483647;
        QTest::addRow("more than an int holds") << qint64(3'000'000'000'000) << 2147483647;
    }
    void takesTheContainersDuration()
    {
        QFETCH(const qint64, microseconds);
        QTEST(DurationInMilliseconds(microseconds, {}), "milliseconds");
    }

    void takesTheStreamsDurationWhereTheContainerStatesNone_data()
    {
        QTest::addColumn<qint64>("microseconds");
        QTest::addColumn<qint64>("ticks");
        QTest::addColumn<int>("numerator");
        QTest::addColumn<int>("denominator");
        QTest::addColumn<int>("milliseconds");
        QTest::addRow("unknown container")
            << std::numeric_limits<qint64>::min() << qint64(66150) << 1 << 44100 << 1500;
        QTest::addRow("container of zero") << qint64(0) << qint64(48) << 1 << 48000 << 1;
        QTest::addRow("truncated") << qint64(0) << qint64(95) << 1 << 48000 << 1;
        QTest::addRow("container below a millisecond, stream longer")
            << qint64(999) << qint64(2) << 1 << 1 << 2000;
        QTest::addRow("container of a millisecond counts") << qint64(1000) << qint64(2) << 1 << 1 << 1;
        QTest::addRow("the larger of two below one") << qint64(-5000) << qint64(-9) << 1 << 1000 << -5;
        QTest::addRow("time base without denominator") << qint64(0) << qint64(5) << 1 << 0 << 2147483647;
        QTest::addRow("time base of nothing") << qint64(0) << qint64(5) << 0 << 0 << 0;
    }
    void takesTheStreamsDurationWhereTheContainerStatesNone()
    {
        QFETCH(const qint64, microseconds);
        QFETCH(const qint64, ticks);
        QFETCH(const int, numerator);
        QFETCH(const int, denominator);
        const StreamDuration stream{true, ticks, numerator, denominator};
        QTEST(DurationInMilliseconds(microseconds, stream), "milliseconds");
    }
};

QTEST_APPLESS_MAIN(TestProbedDuration)
#include "tst_probedduration.moc"
