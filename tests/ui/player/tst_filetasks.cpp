#include "tests/support/TemporaryFiles.h"
#include "tests/support/WavBytes.h"
#include "tests/support/WavFileTestAccess.h"
#include "tests/ui/player/BlockedPool.h"
#include "ui/player/LoadedFile.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QMutexLocker>
#include <QtCore/QPointer>
#include <QtTest/QTest>

using namespace vantoraudio::vantorAudioEngine::UI;

namespace {

using Result = WavFile::AudioEngineReturnValue;

/** Reads the flag that AbortRead() sets and clears it, as a task does that starts. */
bool TakeAbort(WavFile& file)
{
    WavFileTestAccess access(file);
    const QMutexLocker lock(&access.Mutex());
    return std::exchange(access.IsReadAborted(), false);
}

void TakeWriteAbort(WavFile& file)
{
    WavFileTestAccess access(file);
    const QMutexLocker lock(&access.Mutex());
    access.IsWriteAborted() = false;
}

void WaitForAbort(WavFile& file)
{
    while (!TakeAbort(file)) {
        QThread::yieldCurrentThread();
    }
}

FileTasks<int>::Work ReturnTheAnswer()
{
    return [](WorkingFile&) { return 42; };
}

} // namespace

class FileTasksTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void runsOnAThreadOfThePool();
    void stopsNothingWhenNothingRuns();
    void keepsTheResultOfATaskThatHasEnded();
    void endsAQueuedTaskAtOnceWhileThePoolIsBlocked();
    void endsEveryQueuedTask();
    void stopsARunningTask();
    void stopsATaskThatClearsItsAbortFlagWhenItStarts();
    void asksToStopWithoutWaiting();
    void leavesNothingOfAStoppedSnippet();
    void aWholeSnippetThatIsStoppedStays();
    void keepsTheFileForATaskThatOutlivesItsOwner();
    void releasesTheFileOnItsOwnThread();
    void startsAgainAfterAStop();

private:
    std::shared_ptr<WorkingFile> m_file;
};

void FileTasksTest::init()
{
    m_file = WorkingFile::Create();
}

void FileTasksTest::runsOnAThreadOfThePool()
{
    FileTasks<int> tasks(&WavFile::AbortRead);
    const WavFile* seen = nullptr;
    bool isElsewhere = false;
    QFuture<int> future = tasks.Start(m_file, [&](WorkingFile& working) {
        seen = &working.file;
        isElsewhere = QThread::currentThread() != thread();
        return 42;
    });
    // Not waitForFinished(), which would run the task here if it had not begun.
    QTRY_VERIFY(future.isFinished());
    QCOMPARE(future.result(), 42);
    QCOMPARE(seen, &m_file->file);
    QVERIFY(isElsewhere);
}

void FileTasksTest::stopsNothingWhenNothingRuns()
{
    FileTasks<int> tasks(&WavFile::AbortRead);
    tasks.Stop();
    tasks.RequestStop();
    QVERIFY(!TakeAbort(m_file->file));
}

void FileTasksTest::keepsTheResultOfATaskThatHasEnded()
{
    FileTasks<int> tasks(&WavFile::AbortRead);
    const QFuture<int> future = tasks.Start(m_file, ReturnTheAnswer());
    QTRY_VERIFY(future.isFinished());
    tasks.Stop();
    QCOMPARE(future.result(), 42);
}

void FileTasksTest::endsAQueuedTaskAtOnceWhileThePoolIsBlocked()
{
    FileTasks<int> tasks(&WavFile::AbortRead);
    const BlockedPool blocked;
    std::atomic<bool> hasWorked = false;
    const QFuture<int> future = tasks.Start(m_file, [&hasWorked](WorkingFile&) {
        hasWorked = true;
        return 42;
    });
    tasks.Stop();
    QVERIFY(future.isFinished());
    QCOMPARE(future.result(), 0);
    QVERIFY(!hasWorked);
}

void FileTasksTest::endsEveryQueuedTask()
{
    FileTasks<int> tasks(&WavFile::AbortRead);
    const BlockedPool blocked;
    const QFuture<int> one = tasks.Start(m_file, ReturnTheAnswer());
    const QFuture<int> two = tasks.Start(m_file, ReturnTheAnswer());
    tasks.Stop();
    QVERIFY(one.isFinished() && two.isFinished());
    QCOMPARE(one.result() + two.result(), 0);
}

void FileTasksTest::stopsARunningTask()
{
    FileTasks<int> tasks(&WavFile::AbortRead);
    QSemaphore hasBegun;
    const QFuture<int> future = tasks.Start(m_file, [&hasBegun](WorkingFile& working) {
        hasBegun.release();
        WaitForAbort(working.file);
        return 42;
    });
    hasBegun.acquire();
    tasks.Stop();
    QVERIFY(future.isFinished());
    QCOMPARE(future.result(), 42);
}

void FileTasksTest::stopsATaskThatClearsItsAbortFlagWhenItStarts()
{
    FileTasks<int> tasks(&WavFile::AbortRead);
    QSemaphore hasBegun;
    const QFuture<int> future = tasks.Start(m_file, [&hasBegun](WorkingFile& working) {
        hasBegun.release();
        WaitForAbort(working.file);
        // When the flag is cleared again, it is set again by a stop that does not give up.
        WaitForAbort(working.file);
        return 42;
    });
    hasBegun.acquire();
    tasks.Stop();
    QCOMPARE(future.result(), 42);
}

void FileTasksTest::asksToStopWithoutWaiting()
{
    FileTasks<int> tasks(&WavFile::AbortRead);
    QSemaphore mayEnd;
    QSemaphore hasBegun;
    const QFuture<int> future = tasks.Start(m_file, [&](WorkingFile& working) {
        hasBegun.release();
        WaitForAbort(working.file);
        mayEnd.acquire();
        return 42;
    });
    hasBegun.acquire();
    tasks.RequestStop();
    QVERIFY(!future.isFinished());
    mayEnd.release();
    QTRY_VERIFY(future.isFinished());
    QCOMPARE(future.result(), 42);
}

void FileTasksTest::leavesNothingOfAStoppedSnippet()
{
    const TemporaryFiles files;
    constexpr quint32 bytes = 1'000'000'000;
    const QString source = files.Write(QStringLiteral("long.wav"),
                                       WavTest::WavBytes{.sampleRate = 8000, .statedDataSize = bytes}.Build());
    // Silence that takes no room, and far more of it than can be written before the stop.
    QVERIFY(QFile::resize(source, bytes + 44));
    QCOMPARE(m_file->file.Open(source), WavFile::Success);
    const QString target = files.Path(QStringLiteral("snippet.wav"));

    QSemaphore hasBegun;
    connect(
        &m_file->file, &WavFile::ProgressChanged, &m_file->file, [&hasBegun] { hasBegun.release(); },
        Qt::DirectConnection);
    FileTasks<Result> tasks(&WavFile::AbortWrite);
    const QFuture<Result> future = tasks.Start(
        m_file, [target](WorkingFile& working) { return working.file.CreateSnippet(target, 0.0, 60000.0); });
    hasBegun.acquire();
    tasks.Stop();
    QCOMPARE(future.result(), WavFile::Success);
    QVERIFY(!QFile::exists(target));
}

void FileTasksTest::aWholeSnippetThatIsStoppedStays()
{
    for (const bool hasFormer : {false, true}) {
        const TemporaryFiles files;
        const QString target = files.Path(QStringLiteral("snippet.wav"));
        QVERIFY(!hasFormer || files.Write(QStringLiteral("snippet.wav"), "former") == target);
        LoadedFile loaded;
        const QByteArray source = WavTest::WavBytes{.sampleRate = 8000, .data = QByteArray(400, '\1')}.Build();
        QCOMPARE(loaded.File().Open(files.Write(QStringLiteral("source.wav"), source)), WavFile::Success);
        QSemaphore hasBegun;
        QSemaphore mayEnd;
        connect(
            &loaded.File(), &WavFile::ProgressChanged, &loaded.File(),
            [&] {
                hasBegun.release();
                mayEnd.acquire();
                mayEnd.release();
            },
            Qt::DirectConnection);
        const QFuture<Result> future = loaded.WriteSnippet(target, {0.0, 0.025});
        hasBegun.acquire();
        loaded.snippet.RequestStop();
        // As if it came so late that the writing did not notice it any more.
        TakeWriteAbort(loaded.File());
        mayEnd.release();
        QTRY_VERIFY(future.isFinished());
        QCOMPARE(future.result(), WavFile::Success);
        QVERIFY(TemporaryFiles::Read(target).startsWith("RIFF"));
    }
}

void FileTasksTest::keepsTheFileForATaskThatOutlivesItsOwner()
{
    const QPointer<WorkingFile> file(m_file.get());
    QSemaphore mayEnd;
    {
        FileTasks<int> tasks(&WavFile::AbortRead);
        QSemaphore hasBegun;
        tasks.Start(m_file, [&](WorkingFile&) {
            hasBegun.release();
            mayEnd.acquire();
            return 42;
        });
        hasBegun.acquire();
    }
    m_file.reset();
    QVERIFY(file);
    mayEnd.release();
    QTRY_VERIFY(!file);
}

void FileTasksTest::releasesTheFileOnItsOwnThread()
{
    QThread* releasedOn = nullptr;
    connect(
        m_file.get(), &QObject::destroyed, this, [&releasedOn] { releasedOn = QThread::currentThread(); },
        Qt::DirectConnection);
    FileTasks<int> tasks(&WavFile::AbortRead);
    QSemaphore mayEnd;
    QSemaphore hasBegun;
    tasks.Start(m_file, [&](WorkingFile&) {
        hasBegun.release();
        mayEnd.acquire();
        return 42;
    });
    hasBegun.acquire();
    tasks = FileTasks<int>(&WavFile::AbortRead);
    m_file.reset();
    mayEnd.release();
    QTRY_COMPARE(releasedOn, thread());
}

void FileTasksTest::startsAgainAfterAStop()
{
    FileTasks<int> tasks(&WavFile::AbortRead);
    {
        const BlockedPool blocked;
        tasks.Start(m_file, ReturnTheAnswer());
        tasks.Stop();
    }
    const QFuture<int> future = tasks.Start(m_file, ReturnTheAnswer());
    QTRY_VERIFY(future.isFinished());
    QCOMPARE(future.result(), 42);
}

QTEST_GUILESS_MAIN(FileTasksTest)

#include "tst_filetasks.moc"
