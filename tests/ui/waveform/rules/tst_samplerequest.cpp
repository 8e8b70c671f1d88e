#include "ui/waveform/rules/SampleRequest.h"

#include <QtTest/QtTest>

#include <limits>

using namespace vantoraudio::vantorAudioEngine::UI;

namespace {
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
} // namespace

class TestSampleRequest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void asksForHalfAViewMoreOnBothSides()
    {
        const auto request = RequestFor({.left = 40.0, .width = 10.0}, {.start = 0.0, .end = 0.0}, 100.0);
        QVERIFY(request);
        QCOMPARE(request->start, 35.0);
        QCOMPARE(request->end, 55.0);
        QVERIFY(request->isSent);
    }

    void needsSamples_data()
    {
        QTest::addColumn<double>("bufferStart");
        QTest::addColumn<double>("bufferEnd");
        QTest::addColumn<bool>("isNeeded");
        QTest::newRow("covered") << 35.0 << 50.0 << false;
        QTest::newRow("covered from half a view before the request") << 30.0 << 50.0 << false;
        QTest::newRow("starts more than half a view before the request") << 29.999 << 50.0 << true;
        QTest::newRow("starts on the left edge") << 40.0 << 50.0 << false;
        QTest::newRow("starts right of the left edge") << 40.001 << 60.0 << true;
        QTest::newRow("ends before the right edge") << 35.0 << 49.999 << true;
    }

    void needsSamples()
    {
        QFETCH(const double, bufferStart);
        QFETCH(const double, bufferEnd);
        const auto request =
            RequestFor({.left = 40.0, .width = 10.0}, {.start = bufferStart, .end = bufferEnd}, 100.0);
        QTEST(request.has_value(), "isNeeded");
    }

    void staysWithinTheAudio()
    {
        const auto atStart = RequestFor({.left = 2.0, .width = 10.0}, {.start = 0.0, .end = 0.0}, 100.0);
        QCOMPARE(atStart->start, 0.0);
        QCOMPARE(atStart->end, 17.0);
        QVERIFY(atStart->isSent);
        const auto atEnd = RequestFor({.left = 88.0, .width = 10.0}, {.start = 0.0, .end = 0.0}, 100.0);
        QCOMPARE(atEnd->start, 83.0);
        QCOMPARE(atEnd->end, 100.0);
        QVERIFY(atEnd->isSent);
    }

    void endsNoEarlierThanTheBufferStarts()
    {
        const auto request = RequestFor({.left = 1.0, .width = 2.0}, {.start = 50.0, .end = 60.0}, 100.0);
        QCOMPARE(request->start, 0.0);
        QCOMPARE(request->end, 50.0);
        QVERIFY(request->isSent);
    }

    void isNotSentWhenItTouchesAVisibleEdge_data()
    {
        QTest::addColumn<double>("left");
        QTest::addColumn<double>("width");
        QTest::addColumn<bool>("isSent");
        QTest::newRow("view begins at 0") << 0.0 << 10.0 << false;
        QTest::newRow("view begins within a millisecond of 0") << 0.0009 << 10.0 << false;
        QTest::newRow("view begins just past a millisecond") << 0.0011 << 10.0 << true;
        QTest::newRow("view ends with the audio") << 90.0 << 10.0 << false;
        QTest::newRow("view ends within a millisecond of the audio's end") << 89.9991 << 10.0 << false;
        QTest::newRow("view ends just before a millisecond") << 89.9989 << 10.0 << true;
        QTest::newRow("everything visible") << 0.0 << 100.0 << false;
    }

    void isNotSentWhenItTouchesAVisibleEdge()
    {
        QFETCH(const double, left);
        QFETCH(const double, width);
        const auto request = RequestFor({.left = left, .width = width}, {.start = 0.0, .end = 0.0}, 100.0);
        QVERIFY(request);
        QTEST(request->isSent, "isSent");
    }

    void sendsNothingForNonsense_data()
    {
        QTest::addColumn<double>("left");
        QTest::addColumn<double>("width");
        QTest::addColumn<double>("total");
        QTest::newRow("not a number") << notANumber << notANumber << notANumber;
        QTest::newRow("infinite view") << 0.0 << infinity << infinity;
        QTest::newRow("empty") << 0.0 << 0.0 << 0.0;
    }

    void sendsNothingForNonsense()
    {
        QFETCH(const double, left);
        QFETCH(const double, width);
        QFETCH(const double, total);
        const auto request = RequestFor({.left = left, .width = width}, {}, total);
        QVERIFY(!request || !request->isSent);
        QVERIFY(!FillingRequestFor({.left = left, .width = width}, total).isSent);
    }

    void fillsTheViewAtTheEdgesToo_data()
    {
        QTest::addColumn<double>("left");
        QTest::addColumn<double>("width");
        QTest::addColumn<double>("start");
        QTest::addColumn<double>("end");
        QTest::newRow("in the middle") << 40.0 << 10.0 << 35.0 << 55.0;
        QTest::newRow("view begins at 0") << 0.0 << 10.0 << 0.0 << 15.0;
        QTest::newRow("view ends with the audio") << 90.0 << 10.0 << 85.0 << 100.0;
        QTest::newRow("everything visible") << 0.0 << 100.0 << 0.0 << 100.0;
    }

    void fillsTheViewAtTheEdgesToo()
    {
        QFETCH(const double, left);
        QFETCH(const double, width);
        const auto request = FillingRequestFor({.left = left, .width = width}, 100.0);
        QTEST(request.start, "start");
        QTEST(request.end, "end");
        QVERIFY(request.isSent);
    }
};

QTEST_APPLESS_MAIN(TestSampleRequest)
#include "tst_samplerequest.moc"
