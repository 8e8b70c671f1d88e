#include "tests/ui/player/PlayerTestAccess.h"
#include "ui/player/TimeText.h"

#include <QtTest/QTest>

#include <limits>

using namespace Qt::Literals::StringLiterals;
using namespace vantoraudio::vantorAudioEngine::UI;

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();

} // namespace

class TimeTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsATime_data();
    void showsATime();
    void readsATime_data();
    void readsATime();
    void countsInWholeMilliseconds_data();
    void countsInWholeMilliseconds();
};

void TimeTextTest::showsATime_data()
{
    QTest::addColumn<double>("seconds");
    QTest::addColumn<QString>("text");
    QTest::newRow("the start") << 0.0 << u"00:00:00.000"_s;
    QTest::newRow("hours, minutes, seconds") << 3723.4567 << u"01:02:03.457"_s;
    QTest::newRow("rounded down") << 1.2344 << u"00:00:01.234"_s;
    QTest::newRow("half a millisecond rounds away from zero") << 0.0005 << u"00:00:00.001"_s;
    QTest::newRow("less than half a millisecond") << 0.00049 << u"00:00:00.000"_s;
    QTest::newRow("half of an even millisecond") << 0.0625 << u"00:00:00.063"_s;
    QTest::newRow("half a millisecond below zero") << -0.0005 << u"23:59:59.999"_s;
    QTest::newRow("below zero") << -1.0 << u"23:59:59.000"_s;
    QTest::newRow("the last of a day") << 86399.999 << u"23:59:59.999"_s;
    QTest::newRow("rounded up to a day") << 86399.9996 << u"00:00:00.000"_s;
    QTest::newRow("a day") << 86400.0 << u"00:00:00.000"_s;
    QTest::newRow("a day and more") << 90061.5 << u"01:01:01.500"_s;
    QTest::newRow("more milliseconds than an int holds") << 3000000.123 << u"17:20:00.123"_s;
    QTest::newRow("longer than all time") << 1e300 << u"07:12:55.807"_s;
    QTest::newRow("endless") << infinite << u"07:12:55.807"_s;
    QTest::newRow("endless backwards") << -infinite << u"16:47:04.192"_s;
    QTest::newRow("not a number") << notANumber << u"00:00:00.000"_s;
}

void TimeTextTest::showsATime()
{
    QFETCH(double, seconds);
    QTEST(TimeText(seconds), "text");
    QTEST(AudioPlayerWidgetTestAccess::ToText(seconds), "text");
}

void TimeTextTest::readsATime_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("seconds");
    QTest::newRow("the start") << u"00:00:00.000"_s << 0.0;
    QTest::newRow("hours, minutes, seconds") << u"01:02:03.457"_s << 3723.457;
    QTest::newRow("milliseconds") << u"00:00:00.001"_s << 0.001;
    QTest::newRow("the last of a day") << u"23:59:59.999"_s << 86399.999;
    QTest::newRow("a reset text") << u"00:00:00,000"_s << 0.0;
    QTest::newRow("a comma does not parse") << u"00:00:05,500"_s << 0.0;
    QTest::newRow("beyond a day") << u"24:00:00.000"_s << 0.0;
    QTest::newRow("60 minutes") << u"00:60:00.000"_s << 0.0;
    QTest::newRow("60 seconds") << u"00:00:60.000"_s << 0.0;
    QTest::newRow("no milliseconds") << u"00:00:05"_s << 0.0;
    QTest::newRow("an empty mask") << u"::."_s << 0.0;
    QTest::newRow("garbage") << u"garbage"_s << 0.0;
    QTest::newRow("nothing") << QString() << 0.0;
}

void TimeTextTest::readsATime()
{
    QFETCH(QString, text);
    QTEST(SecondsOf(text), "seconds");
    QTEST(AudioPlayerWidgetTestAccess::FromText(text), "seconds");
}

void TimeTextTest::countsInWholeMilliseconds_data()
{
    QTest::addColumn<double>("seconds");
    QTest::addColumn<qint64>("milliseconds");
    QTest::newRow("whole") << 1.5 << qint64(1500);
    QTest::newRow("cut") << 1.9999 << qint64(1999);
    QTest::newRow("cut toward zero") << -1.9999 << qint64(-1999);
    QTest::newRow("hours") << 36000.25 << qint64(36000250);
    QTest::newRow("more than an int holds") << 3000000.0 << qint64(3000000000);
    QTest::newRow("endless") << infinite << std::numeric_limits<qint64>::max();
    QTest::newRow("not a number") << notANumber << qint64(0);
}

void TimeTextTest::countsInWholeMilliseconds()
{
    QFETCH(double, seconds);
    QTEST(MillisecondsOf(seconds), "milliseconds");
}

QTEST_APPLESS_MAIN(TimeTextTest)

#include "tst_timetext.moc"
