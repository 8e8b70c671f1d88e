#include "ui/player/ProgressQueue.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QStringList>
#include <QtCore/QThread>
#include <QtTest/QTest>

#include <functional>
#include <memory>

using namespace Qt::Literals::StringLiterals;
using vantoraudio::vantorAudioEngine::UI::ProgressQueue;

namespace {

constexpr qint64 tooLong = ProgressQueue::patience + 1;

/** Runs the function on another thread while this one handles no events. */
void RunElsewhere(const std::function<void()>& function)
{
    const std::unique_ptr<QThread> thread(QThread::create(function));
    thread->start();
    thread->wait();
}

/** A queue with a clock that the test moves, and all that is heard from it. */
class QueueSetup
{
public:
    QueueSetup()
    {
        QObject::connect(queue.get(), &ProgressQueue::Reported, queue.get(),
                         [this](int progress, int, int, const QString&) { heard.append(progress); });
        QObject::connect(queue.get(), &ProgressQueue::Reached, queue.get(),
                         [this](int note) { heard.append(-note); });
    }

    void Report(int progress) { queue->Report(progress, 0, 100, u"text"_s); }
    void ReportTask(int first, int last)
    {
        const ProgressQueue::Task task(*queue);
        for (int i = first; i <= last; ++i) {
            Report(i);
        }
    }

    std::atomic<qint64> time = 0;
    std::unique_ptr<ProgressQueue> queue = std::make_unique<ProgressQueue>([this] { return time.load(); });
    /** Reports by their progress, notes by their negative number. */
    QList<int> heard;
};

QList<int> Range(int first, int last)
{
    QList<int> numbers;
    for (int i = first; i <= last; ++i) {
        numbers.append(i);
    }
    return numbers;
}

} // namespace

class ProgressQueueTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void passesOnWhatWasReported();
    void passesOnEveryReportInOrder();
    void passesOnTheReportsOfTwoThreadsInTheirOrders();
    void isHeardOnItsOwnThread();
    void isHeardFromTheEventLoop();
    void leavesTimeForOtherWork();
    void goesOnAfterATimeSlice();
    void passesOnAllAtOnceWhenAsked();

    void keepsWhatIsFetchedInTime();
    void leavesOutWhatWaitsForTooLong();
    void keepsReportsThatComeSeldom();
    void keepsTheFirstAndTheLastReportOfEachTask();
    void keepsTheFirstAndTheLastReportOfTasksAtTheSameTime();
    void keepsTheLastReportOfATaskThatGoesOn();
    void keepsReportsOutsideOfTasks();
    void keepsNotes();

    void notesComeBehindWhatWasReportedBefore();
    void holdsANoteUntilItIsHeard();
    void forgetsANoteButNoReport_data();
    void forgetsANoteButNoReport();

    void aReceiverMayReport();
    void aReceiverMayRunAnEventLoop();
    void aReceiverMayDestroyTheQueue_data();
    void aReceiverMayDestroyTheQueue();
    void aQueueThatIsGonePassesOnNothing();
};

void ProgressQueueTest::passesOnWhatWasReported()
{
    QueueSetup setup;
    QStringList reports;
    connect(setup.queue.get(), &ProgressQueue::Reported, this,
            [&reports](int progress, int min, int max, const QString& text) {
                reports.append(u"%1 of %2..%3 %4"_s.arg(progress).arg(min).arg(max).arg(text));
            });
    setup.queue->Report(1, 0, 3, u"one"_s);
    setup.queue->Report(-2, -5, 7, QString());
    QCoreApplication::processEvents();
    QCOMPARE(reports, QStringList({u"1 of 0..3 one"_s, u"-2 of -5..7 "_s}));
}

void ProgressQueueTest::passesOnEveryReportInOrder()
{
    QueueSetup setup;
    RunElsewhere([&setup] { setup.ReportTask(1, 10000); });
    QCOMPARE(setup.heard, QList<int>());
    QCoreApplication::processEvents();
    QCOMPARE(setup.heard, Range(1, 10000));
}

void ProgressQueueTest::passesOnTheReportsOfTwoThreadsInTheirOrders()
{
    constexpr int count = 10000;
    QueueSetup setup;
    const std::unique_ptr<QThread> one(QThread::create([&setup] { setup.ReportTask(1, count); }));
    const std::unique_ptr<QThread> two(QThread::create([&setup] { setup.ReportTask(count + 1, 2 * count); }));
    one->start();
    two->start();
    QTRY_COMPARE(setup.heard.size(), 2 * count);
    QVERIFY(one->wait() && two->wait());
    QList<int> ofOne;
    QList<int> ofTwo;
    for (const int progress : std::as_const(setup.heard)) {
        (progress > count ? ofTwo : ofOne).append(progress);
    }
    QCOMPARE(ofOne, Range(1, count));
    QCOMPARE(ofTwo, Range(count + 1, 2 * count));
}

void ProgressQueueTest::isHeardOnItsOwnThread()
{
    QueueSetup setup;
    QThread* heardOn = nullptr;
    connect(
        setup.queue.get(), &ProgressQueue::Reported, this, [&heardOn] { heardOn = QThread::currentThread(); },
        Qt::DirectConnection);
    RunElsewhere([&setup] { setup.Report(1); });
    QCOMPARE(heardOn, nullptr);
    QTRY_COMPARE(heardOn, QThread::currentThread());
}

void ProgressQueueTest::isHeardFromTheEventLoop()
{
    QueueSetup setup;
    setup.Report(1);
    setup.queue->Leave(2);
    QCOMPARE(setup.heard, QList<int>());
    QCoreApplication::processEvents();
    QCOMPARE(setup.heard, (QList<int>{1, -2}));
}

void ProgressQueueTest::leavesTimeForOtherWork()
{
    QueueSetup setup;
    setup.ReportTask(1, 6);
    QList<int> heardByThen;
    QMetaObject::invokeMethod(
        this, [&] { heardByThen = setup.heard; }, Qt::QueuedConnection);
    connect(setup.queue.get(), &ProgressQueue::Reported, this,
            [&setup] { setup.time += (ProgressQueue::timeSlice + 1) / 2; });
    QCoreApplication::sendPostedEvents();
    QCOMPARE(heardByThen, Range(1, 2));
}

void ProgressQueueTest::goesOnAfterATimeSlice()
{
    QueueSetup setup;
    setup.ReportTask(1, 6);
    connect(setup.queue.get(), &ProgressQueue::Reported, this,
            [&setup] { setup.time += ProgressQueue::timeSlice; });
    for (int round = 1; round <= 6; ++round) {
        QCoreApplication::sendPostedEvents(setup.queue.get());
        QCOMPARE(setup.heard, Range(1, round));
    }
}

void ProgressQueueTest::passesOnAllAtOnceWhenAsked()
{
    QueueSetup setup;
    setup.ReportTask(1, 100);
    setup.queue->Leave(1);
    connect(setup.queue.get(), &ProgressQueue::Reported, this, [&setup] { ++setup.time; });
    setup.queue->PassOnAll();
    QCOMPARE(setup.heard, Range(1, 100) + QList<int>{-1});
    QCoreApplication::processEvents();
    QCOMPARE(setup.heard.size(), 101);
}

void ProgressQueueTest::keepsWhatIsFetchedInTime()
{
    QueueSetup setup;
    setup.ReportTask(1, 1000);
    setup.time += ProgressQueue::patience;
    QCoreApplication::processEvents();
    QCOMPARE(setup.heard, Range(1, 1000));
}

void ProgressQueueTest::leavesOutWhatWaitsForTooLong()
{
    QueueSetup setup;
    {
        const ProgressQueue::Task task(*setup.queue);
        for (int i = 1; i <= 100; ++i) {
            setup.Report(i);
            setup.time += 10;
        }
    }
    QCoreApplication::processEvents();
    // The first one, and those of the last 250 milliseconds.
    QCOMPARE(setup.heard, QList<int>{1} + Range(76, 100));
}

void ProgressQueueTest::keepsReportsThatComeSeldom()
{
    QueueSetup setup;
    {
        const ProgressQueue::Task task(*setup.queue);
        for (int i = 1; i <= 10; ++i) {
            setup.Report(i);
            setup.time += tooLong;
        }
    }
    QCoreApplication::processEvents();
    // Each of them was the last one when its time was over, so that none could go.
    QCOMPARE(setup.heard, Range(1, 10));
}

void ProgressQueueTest::keepsTheFirstAndTheLastReportOfEachTask()
{
    QueueSetup setup;
    setup.ReportTask(1, 10);
    setup.ReportTask(11, 20);
    setup.ReportTask(21, 21);
    setup.ReportTask(22, 23);
    setup.time += tooLong;
    QCoreApplication::processEvents();
    QCOMPARE(setup.heard, (QList<int>{1, 10, 11, 20, 21, 22, 23}));
}

void ProgressQueueTest::keepsTheFirstAndTheLastReportOfTasksAtTheSameTime()
{
    QueueSetup setup;
    const ProgressQueue::Task task(*setup.queue);
    setup.Report(1);
    setup.Report(2);
    RunElsewhere([&setup] { setup.ReportTask(11, 15); });
    setup.Report(3);
    setup.Report(4);
    setup.time += tooLong;
    QCoreApplication::processEvents();
    QCOMPARE(setup.heard, (QList<int>{1, 11, 15, 4}));
}

void ProgressQueueTest::keepsTheLastReportOfATaskThatGoesOn()
{
    QueueSetup setup;
    const ProgressQueue::Task task(*setup.queue);
    setup.Report(1);
    setup.Report(2);
    setup.Report(3);
    setup.time += tooLong;
    setup.Report(4);
    QCoreApplication::processEvents();
    QCOMPARE(setup.heard, (QList<int>{1, 3, 4}));
}

void ProgressQueueTest::keepsReportsOutsideOfTasks()
{
    QueueSetup setup;
    for (const int progress : Range(1, 10)) {
        setup.Report(progress);
    }
    setup.time += tooLong;
    QCoreApplication::processEvents();
    QCOMPARE(setup.heard, Range(1, 10));
}

void ProgressQueueTest::keepsNotes()
{
    QueueSetup setup;
    {
        const ProgressQueue::Task task(*setup.queue);
        setup.Report(1);
        setup.Report(2);
        setup.queue->Leave(1);
        setup.Report(3);
        setup.queue->Leave(2);
    }
    setup.time += tooLong;
    QCoreApplication::processEvents();
    QCOMPARE(setup.heard, (QList<int>{1, -1, 3, -2}));
}

void ProgressQueueTest::notesComeBehindWhatWasReportedBefore()
{
    QueueSetup setup;
    RunElsewhere([&setup] { setup.ReportTask(1, 1000); });
    setup.queue->Leave(1);
    setup.Report(1001);
    QCoreApplication::processEvents();
    QCOMPARE(setup.heard, Range(1, 1000) + QList<int>({-1, 1001}));
}

void ProgressQueueTest::holdsANoteUntilItIsHeard()
{
    QueueSetup setup;
    QList<bool> held;
    connect(setup.queue.get(), &ProgressQueue::Reported, this, [&] { held.append(setup.queue->Holds(1)); });
    QVERIFY(!setup.queue->Holds(1));
    setup.Report(1);
    setup.queue->Leave(1);
    setup.Report(2);
    QVERIFY(setup.queue->Holds(1));
    QVERIFY(!setup.queue->Holds(2));
    QCoreApplication::processEvents();
    QCOMPARE(held, (QList<bool>{true, false}));
    QVERIFY(!setup.queue->Holds(1));
}

void ProgressQueueTest::forgetsANoteButNoReport_data()
{
    QTest::addColumn<qint64>("wait");
    QTest::addColumn<bool>("isWithinASlice");
    QTest::newRow("that waits") << qint64(0) << false;
    QTest::newRow("that waits for long") << tooLong << false;
    QTest::newRow("that is about to be heard") << qint64(0) << true;
}

void ProgressQueueTest::forgetsANoteButNoReport()
{
    QFETCH(qint64, wait);
    QFETCH(bool, isWithinASlice);
    QueueSetup setup;
    setup.Report(1);
    setup.queue->Leave(1);
    setup.queue->Leave(2);
    setup.queue->Leave(1);
    setup.time += wait;
    setup.Report(2);
    if (isWithinASlice) {
        connect(setup.queue.get(), &ProgressQueue::Reported, this, [&setup] { setup.queue->Forget(1); });
    } else {
        setup.queue->Forget(1);
    }
    QCoreApplication::processEvents();
    QCOMPARE(setup.heard, (QList<int>{1, -2, 2}));
    QVERIFY(!setup.queue->Holds(1));
    setup.queue->Leave(1);
    QCoreApplication::processEvents();
    QCOMPARE(setup.heard.last(), -1);
}

void ProgressQueueTest::aReceiverMayReport()
{
    QueueSetup setup;
    connect(setup.queue.get(), &ProgressQueue::Reported, this, [&setup](int progress) {
        if (progress == 1) {
            setup.Report(3);
        }
    });
    setup.Report(1);
    setup.Report(2);
    QCoreApplication::processEvents();
    QCOMPARE(setup.heard, Range(1, 3));
}

void ProgressQueueTest::aReceiverMayRunAnEventLoop()
{
    QueueSetup setup;
    QList<int> heardWithin;
    connect(setup.queue.get(), &ProgressQueue::Reported, this, [&](int progress) {
        if (progress == 1) {
            QCoreApplication::processEvents();
            heardWithin = setup.heard;
        }
    });
    setup.ReportTask(1, 1000);
    QCoreApplication::processEvents();
    QCOMPARE(heardWithin, Range(1, 1000));
    QCOMPARE(setup.heard, Range(1, 1000));
}

void ProgressQueueTest::aReceiverMayDestroyTheQueue_data()
{
    QTest::addColumn<bool>("isAtOnce");
    QTest::addColumn<bool>("isNote");
    QTest::newRow("with a report") << false << false;
    QTest::newRow("with a note") << false << true;
    QTest::newRow("with a report of all") << true << false;
    QTest::newRow("with a note of all") << true << true;
}

void ProgressQueueTest::aReceiverMayDestroyTheQueue()
{
    QFETCH(bool, isAtOnce);
    QFETCH(bool, isNote);
    QueueSetup setup;
    const auto destroy = [&setup] { setup.queue.reset(); };
    if (isNote) {
        connect(setup.queue.get(), &ProgressQueue::Reached, this, destroy);
    } else {
        connect(setup.queue.get(), &ProgressQueue::Reported, this, destroy);
    }
    setup.queue->Leave(1);
    setup.ReportTask(1, 100);
    if (isAtOnce) {
        setup.queue->PassOnAll();
    }
    QCoreApplication::processEvents();
    QVERIFY(!setup.queue);
    QCOMPARE(setup.heard, isNote ? QList<int>{-1} : QList<int>({-1, 1}));
}

void ProgressQueueTest::aQueueThatIsGonePassesOnNothing()
{
    QueueSetup setup;
    RunElsewhere([&setup] { setup.ReportTask(1, 100); });
    setup.queue.reset();
    QCoreApplication::processEvents();
    QCOMPARE(setup.heard, QList<int>());
}

QTEST_GUILESS_MAIN(ProgressQueueTest)

#include "tst_progressqueue.moc"
