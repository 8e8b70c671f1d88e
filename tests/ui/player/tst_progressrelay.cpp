#include "ui/player/ProgressRelay.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QStringList>
#include <QtCore/QThread>
#include <QtTest/QTest>

#include <functional>
#include <memory>

using namespace Qt::Literals::StringLiterals;
using vantoraudio::vantorAudioEngine::UI::ProgressRelay;

namespace {

/** Runs the function on another thread while this one handles no events. */
void RunElsewhere(const std::function<void()>& function)
{
    const std::unique_ptr<QThread> thread(QThread::create(function));
    thread->start();
    thread->wait();
}

/** Writes down what a relay passes on. */
class Reports : public QStringList
{
public:
    explicit Reports(ProgressRelay& relay)
    {
        QObject::connect(&relay, &ProgressRelay::Reported, &relay,
                         [this](int progress, int min, int max, const QString& text) {
                             append(u"%1 of %2..%3 %4"_s.arg(progress).arg(min).arg(max).arg(text));
                         });
    }
};

void ReportOften(ProgressRelay& relay)
{
    for (int i = 0; i < 100; ++i) {
        relay.Report(i, 0, 100, QString::number(i));
    }
}

} // namespace

class ProgressRelayTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void passesOnAtOnceOnItsOwnThread();
    void isHeardOnItsOwnThread();
    void mergesWhatCameMeanwhileIntoTheLatest();
    void hearsWhatIsReportedAfterwards();
    void aDirectReportTakesThePlaceOfOneThatWaits();
    void reportsFromWithinAReportArrive();
    void aRelayThatIsGoneReportsNothing();
};

void ProgressRelayTest::passesOnAtOnceOnItsOwnThread()
{
    ProgressRelay relay;
    const Reports reports(relay);
    relay.Report(1, 0, 3, u"one"_s);
    QCOMPARE(reports, QStringList(u"1 of 0..3 one"_s));
    relay.Report(2, 0, 3, u"two"_s);
    QCOMPARE(reports, QStringList({u"1 of 0..3 one"_s, u"2 of 0..3 two"_s}));
}

void ProgressRelayTest::isHeardOnItsOwnThread()
{
    ProgressRelay relay;
    QThread* heardOn = nullptr;
    connect(
        &relay, &ProgressRelay::Reported, &relay, [&heardOn] { heardOn = QThread::currentThread(); },
        Qt::DirectConnection);
    RunElsewhere([&relay] { relay.Report(1, 0, 3, u"one"_s); });
    QCOMPARE(heardOn, nullptr);
    QTRY_COMPARE(heardOn, QThread::currentThread());
}

void ProgressRelayTest::mergesWhatCameMeanwhileIntoTheLatest()
{
    ProgressRelay relay;
    const Reports reports(relay);
    RunElsewhere([&relay] { ReportOften(relay); });
    QCOMPARE(reports.size(), 0);
    QTRY_COMPARE(reports.size(), 1);
    QCoreApplication::processEvents();
    QCOMPARE(reports, QStringList(u"99 of 0..100 99"_s));
}

void ProgressRelayTest::hearsWhatIsReportedAfterwards()
{
    ProgressRelay relay;
    Reports reports(relay);
    RunElsewhere([&relay] { ReportOften(relay); });
    QTRY_COMPARE(reports.size(), 1);
    reports.clear();
    RunElsewhere([&relay] { relay.Report(1, 0, 3, u"one"_s); });
    QTRY_COMPARE(reports, QStringList(u"1 of 0..3 one"_s));
}

void ProgressRelayTest::aDirectReportTakesThePlaceOfOneThatWaits()
{
    ProgressRelay relay;
    const Reports reports(relay);
    RunElsewhere([&relay] { relay.Report(1, 0, 3, u"one"_s); });
    relay.Report(2, 0, 3, u"two"_s);
    QCoreApplication::processEvents();
    QCOMPARE(reports, QStringList(u"2 of 0..3 two"_s));
}

void ProgressRelayTest::reportsFromWithinAReportArrive()
{
    ProgressRelay relay;
    const Reports reports(relay);
    connect(&relay, &ProgressRelay::Reported, &relay, [&relay](int progress) {
        if (progress == 1) {
            relay.Report(2, 0, 3, u"two"_s);
        }
    });
    relay.Report(1, 0, 3, u"one"_s);
    QCOMPARE(reports, QStringList({u"1 of 0..3 one"_s, u"2 of 0..3 two"_s}));
}

void ProgressRelayTest::aRelayThatIsGoneReportsNothing()
{
    bool isHeard = false;
    {
        ProgressRelay relay;
        connect(&relay, &ProgressRelay::Reported, this, [&isHeard] { isHeard = true; });
        RunElsewhere([&relay] { relay.Report(1, 0, 3, u"one"_s); });
    }
    QCoreApplication::processEvents();
    QVERIFY(!isHeard);
}

QTEST_GUILESS_MAIN(ProgressRelayTest)

#include "tst_progressrelay.moc"
