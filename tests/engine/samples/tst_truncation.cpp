#include "engine/samples/Truncation.h"

#include <QtTest/QtTest>

#include <limits>

using namespace vantoraudio::AudioEngine;

namespace {
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
} // namespace

class TestTruncation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void truncatesToThirtyTwoBits_data()
    {
        QTest::addColumn<double>("value");
        QTest::addColumn<qint32>("expected");
        QTest::newRow("zero") << 0.0 << 0;
        QTest::newRow("minus zero") << -0.0 << 0;
        QTest::newRow("toward zero from above") << 1.999 << 1;
        QTest::newRow("toward zero from below") << -1.999 << -1;
        QTest::newRow("largest") << 2147483647.0 << 2147483647;
        QTest::newRow("just below one past the largest") << 2147483647.9 << 2147483647;
        QTest::newRow("one past the largest") << 2147483648.0 << 2147483647;
        QTest::newRow("smallest") << -2147483648.0 << -2147483647 - 1;
        QTest::newRow("a fraction past the smallest") << -2147483648.9 << -2147483647 - 1;
        QTest::newRow("past the smallest") << -1e300 << -2147483647 - 1;
        QTest::newRow("infinity") << infinity << 2147483647;
        QTest::newRow("minus infinity") << -infinity << -2147483647 - 1;
        QTest::newRow("not a number") << notANumber << 0;
    }

    void truncatesToThirtyTwoBits()
    {
        QFETCH(const double, value);
        QTEST(TruncateToInt32(value), "expected");
    }

    void truncatesToSixtyFourBits_data()
    {
        constexpr qint64 smallest = -9223372036854775807LL - 1;
        QTest::addColumn<double>("value");
        QTest::addColumn<qint64>("expected");
        QTest::newRow("past 32 bits") << 4294967296.75 << 4294967296LL;
        QTest::newRow("largest double below 2^63") << 9223372036854774784.0 << 9223372036854774784LL;
        QTest::newRow("2^63") << 9223372036854775808.0 << 9223372036854775807LL;
        QTest::newRow("-2^63") << -9223372036854775808.0 << smallest;
        QTest::newRow("infinity") << infinity << 9223372036854775807LL;
        QTest::newRow("minus infinity") << -infinity << smallest;
        QTest::newRow("not a number") << notANumber << 0LL;
    }

    void truncatesToSixtyFourBits()
    {
        QFETCH(const double, value);
        QTEST(qint64(TruncateToInt64(value)), "expected");
    }

    void wrapsToThirtyTwoBits()
    {
        QCOMPARE(WrapToInt32(2147483647), 2147483647);
        QCOMPARE(WrapToInt32(2147483648LL), -2147483647 - 1);
        QCOMPARE(WrapToInt32(4294967295LL), -1);
        QCOMPARE(WrapToInt32(4294967296LL + 7), 7);
        QCOMPARE(WrapToInt32(-5), -5);
    }

    void multipliesWithWrapAround_data()
    {
        QTest::addColumn<qint32>("a");
        QTest::addColumn<qint32>("b");
        QTest::addColumn<qint32>("expected");
        QTest::newRow("small") << 6 << -7 << -42;
        QTest::newRow("2 GiB turns negative") << 4 << 536870912 << -2147483647 - 1;
        QTest::newRow("4 GiB turns zero") << 4 << 1073741824 << 0;
        QTest::newRow("4 GiB and a little starts again") << 4 << 1073741834 << 40;
        QTest::newRow("largest squared") << 2147483647 << 2147483647 << 1;
        QTest::newRow("smallest negated") << -2147483647 - 1 << -1 << -2147483647 - 1;
    }

    void multipliesWithWrapAround()
    {
        QFETCH(const qint32, a);
        QFETCH(const qint32, b);
        QTEST(MultiplyWrapping(a, b), "expected");
    }
};

QTEST_APPLESS_MAIN(TestTruncation)
#include "tst_truncation.moc"
