#include "tests/support/BrokenReading.h"
#include "tests/support/ContextTranslator.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/OpenedWav.h"
#include "tests/support/WavFileTestAccess.h"

#include <QtTest/QtTest>

#include <cstdio>
#include <semaphore>
#include <thread>

using namespace Qt::Literals::StringLiterals;
using namespace WavTest;

namespace {

/** Frames of 4 bytes. At this rate a block of 200 has whole milliseconds, as the header of a snippet counts them.
 */
TestAudio Stereo(int frames)
{
    return {.channels = 2, .rate = 8000, .frames = frames};
}

constexpr int blockFrames = 200;

/** Long enough to be read in more than one piece. */
constexpr int manyBlocks = 700;

/** A task over all of a file's right channel. All of them pass over the same blocks of 200 frames. */
struct Task
{
    WavFile::AudioEngineReturnValue (*run)(WavFile& file, const QString& out) = nullptr;
    void (WavFile::*abort)() = nullptr;
    bool& (WavFileTestAccess::*abortFlag)() = nullptr;
    QString text;
    /** The last report of an extraction, or of an export that was aborted. */
    QString lastReport;
    bool isExtraction = false;
    /** When the file cannot be read; an extraction tells of no result. */
    WavFile::AudioEngineReturnValue failure = WavFile::Success;
};

class TaskSetup : public ExportSetup
{
public:
    explicit TaskSetup(const TestAudio& source, const Task& tested)
        : ExportSetup(source, WavFile::ChannelRight), audio(source), task(tested)
    {
    }

    void Run() { QCOMPARE(task.run(file, out), WavFile::Success); }
    void Abort() { (file.*task.abort)(); }
    bool& AbortFlag() { return (access.*task.abortFlag)(); }

    /** Aborts during the report of so many blocks. */
    void AbortDuringBlock(int block)
    {
        QObject::connect(&file, &WavFile::ProgressChanged, &file, [this, block] {
            if (log.size() == block) {
                Abort();
            }
        });
    }

    /** What the task has left: its samples or its file. */
    QByteArray Left() const
    {
        const QList<float> samples = file.GetSamples();
        return task.isExtraction ? PackF32(samples) : Result();
    }
    QByteArray Expected(int frames) const
    {
        if (!task.isExtraction) {
            return audio.Exported(audio.ExportedData(0, frames, WavFile::ChannelRight), audio.frames * 2);
        }
        QList<float> values;
        for (int frame = 0; frame < frames; ++frame) {
            values.append(static_cast<float>(audio.Integer(frame, 1)) / 32767.0F);
        }
        return PackF32(values);
    }
    /** An extraction that was aborted stores nothing. */
    QByteArray ExpectedWhenAborted(int frames) const
    {
        return task.isExtraction ? QByteArray() : Expected(frames);
    }

    const TestAudio audio;
    const Task task;
    WavFileTestAccess access{file};

private:
    static QByteArray PackF32(const QList<float>& values)
    {
        QByteArray bytes;
        for (const float value : values) {
            bytes += LittleEndian(value);
        }
        return bytes;
    }
};

void AddTasks()
{
    QTest::addColumn<Task>("task");
    QTest::addRow("extraction") << Task{.run =
                                            [](WavFile& file, const QString&) {
                                                file.ReadData(0, file.GetDuration(), 1);
                                                return WavFile::Success;
                                            },
                                        .abort = &WavFile::AbortRead,
                                        .abortFlag = &WavFileTestAccess::IsReadAborted,
                                        .text = u"Updating..."_s,
                                        .lastReport = u"0 of 0..1 Updated"_s,
                                        .isExtraction = true};
    QTest::addRow("snippet") << Task{
        .run = [](WavFile& file, const QString& out) { return file.CreateSnippet(out, 0, file.GetDuration()); },
        .abort = &WavFile::AbortWrite,
        .abortFlag = &WavFileTestAccess::IsWriteAborted,
        .text = u"Creating snippet..."_s,
        .lastReport = u"0 of 0..100 "_s,
        .failure = WavFile::ErrorCreateSnippet};
    QTest::addRow("channel") << Task{
        .run = [](WavFile& file, const QString& out) { return file.FilterChannel(out); },
        .abort = &WavFile::AbortChannelFilter,
        .abortFlag = &WavFileTestAccess::IsChannelFilterAborted,
        .text = u"Updating..."_s,
        .lastReport = u"0 of 0..100 "_s,
        .failure = WavFile::ErrorFilterChannel};
}

} // namespace

/** What an extraction, a snippet and a channel filter have in common. */
class TestWavTasks : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void stopsAfterTheBlockDuringWhichItWasAborted_data() { AddTasks(); }
    void stopsAfterTheBlockDuringWhichItWasAborted();
    void reportsNoFurtherBlockWhenAbortedDuringTheLastOne_data() { AddTasks(); }
    void reportsNoFurtherBlockWhenAbortedDuringTheLastOne();
    void noticesAnAbortWhereTheFileEndsEarly_data() { AddTasks(); }
    void noticesAnAbortWhereTheFileEndsEarly();
    void stopsWhenAbortedFromAnotherThread_data() { AddTasks(); }
    void stopsWhenAbortedFromAnotherThread();
    void ignoresAnAbortBeforeItStarts_data() { AddTasks(); }
    void ignoresAnAbortBeforeItStarts();
    void ignoresTheOtherAbortFlags_data() { AddTasks(); }
    void ignoresTheOtherAbortFlags();
    void runsAgainAfterAnAbort_data() { AddTasks(); }
    void runsAgainAfterAnAbort();
    void translatesItsTexts_data() { AddTasks(); }
    void translatesItsTexts();
    void holdsNoLockWhileItEmits_data() { AddTasks(); }
    void holdsNoLockWhileItEmits();
    void usesTheChannelSelectedWhenItStarted_data() { AddTasks(); }
    void usesTheChannelSelectedWhenItStarted();
    void endsWhereTheFileCannotBeRead_data() { AddTasks(); }
    void endsWhereTheFileCannotBeRead();
    void endsWhereTheFileHasBecomeShorter_data() { AddTasks(); }
    void endsWhereTheFileHasBecomeShorter();
    void readsTheFileThatWasOpenedAlsoWhereAnotherTookItsName_data() { AddTasks(); }
    void readsTheFileThatWasOpenedAlsoWhereAnotherTookItsName();
    void leavesAnOlderFileUntilItIsWhole_data() { AddTasks(); }
    void leavesAnOlderFileUntilItIsWhole();
    void leavesNoPartWhereNoneIsWanted_data() { AddTasks(); }
    void leavesNoPartWhereNoneIsWanted();
};

void TestWavTasks::stopsAfterTheBlockDuringWhichItWasAborted()
{
    QFETCH(const Task, task);
    // A piece of 512 KiB ends within block 656.
    for (const int block : {1, 2, 655, 656, 657}) {
        TaskSetup setup(Stereo(manyBlocks * blockFrames), task);
        setup.AbortDuringBlock(block);
        setup.Run();
        QCOMPARE(setup.log.size(), block + 1);
        QCOMPARE(setup.log.last(), task.lastReport);
        QCOMPARE(setup.file.pos(), 44 + qint64(block) * blockFrames * 4);
        QVERIFY(setup.Left() == setup.ExpectedWhenAborted(block * blockFrames));
    }
}

void TestWavTasks::reportsNoFurtherBlockWhenAbortedDuringTheLastOne()
{
    QFETCH(const Task, task);
    TaskSetup setup(Stereo(2 * blockFrames), task);
    setup.AbortDuringBlock(2);
    setup.Run();
    // An export is complete then, so that nothing resets its progress.
    QCOMPARE(setup.log.size(), task.isExtraction ? 3 : 2);
    QVERIFY(setup.Left() == setup.ExpectedWhenAborted(2 * blockFrames));
}

void TestWavTasks::noticesAnAbortWhereTheFileEndsEarly()
{
    QFETCH(const Task, task);
    TestAudio audio = Stereo(2 * blockFrames);
    audio.statedDataSize = 100000;
    TaskSetup setup(audio, task);
    setup.AbortDuringBlock(2);
    setup.Run();
    QCOMPARE(setup.log.size(), 3);
    QCOMPARE(setup.log.last(), task.lastReport);
}

void TestWavTasks::stopsWhenAbortedFromAnotherThread()
{
    QFETCH(const Task, task);
    TaskSetup setup(Stereo(manyBlocks * blockFrames), task);
    std::binary_semaphore isRunning(0);
    std::binary_semaphore isAborted(0);
    connect(
        &setup.file, &WavFile::ProgressChanged, &setup.file,
        [&] {
            if (setup.log.size() == 1) {
                isRunning.release();
                isAborted.acquire();
            }
        },
        Qt::DirectConnection);
    std::thread worker([&] { setup.Run(); });
    isRunning.acquire();
    setup.Abort();
    isAborted.release();
    worker.join();
    QCOMPARE(setup.log.size(), 2);
    QCOMPARE(setup.log.last(), task.lastReport);
    QVERIFY(setup.Left() == setup.ExpectedWhenAborted(blockFrames));
}

void TestWavTasks::ignoresAnAbortBeforeItStarts()
{
    QFETCH(const Task, task);
    TaskSetup setup(Stereo(400), task);
    setup.Abort();
    QVERIFY(setup.AbortFlag());
    setup.Run();
    QVERIFY(setup.Left() == setup.Expected(400));
    QVERIFY(!setup.AbortFlag());
}

void TestWavTasks::ignoresTheOtherAbortFlags()
{
    QFETCH(const Task, task);
    TaskSetup setup(Stereo(1000), task);
    connect(&setup.file, &WavFile::ProgressChanged, &setup.file, [&] {
        setup.file.AbortRead();
        setup.file.AbortWrite();
        setup.file.AbortChannelFilter();
        setup.AbortFlag() = false;
    });
    setup.Run();
    QVERIFY(setup.Left() == setup.Expected(1000));
    setup.AbortFlag() = true;
    QVERIFY(setup.access.IsReadAborted() && setup.access.IsWriteAborted() &&
            setup.access.IsChannelFilterAborted());
}

void TestWavTasks::runsAgainAfterAnAbort()
{
    QFETCH(const Task, task);
    TaskSetup setup(Stereo(1000), task);
    setup.AbortDuringBlock(1);
    setup.Run();
    QVERIFY(setup.Left() == setup.ExpectedWhenAborted(blockFrames));
    // A channel file that is there would be used as it is.
    QFile::remove(setup.out);
    setup.Run();
    QVERIFY(setup.Left() == setup.Expected(1000));
}

void TestWavTasks::translatesItsTexts()
{
    QFETCH(const Task, task);
    const ContextTranslator translator;
    TaskSetup setup(Stereo(1000), task);
    setup.AbortDuringBlock(1);
    setup.Run();
    QString lastReport = task.lastReport;
    lastReport.insert(lastReport.lastIndexOf(u' ') + 1, u"WavFile/"_s);
    QCOMPARE(QStringList(setup.log), QStringList({u"1 of 0..100 WavFile/"_s + task.text, lastReport}));
}

void TestWavTasks::holdsNoLockWhileItEmits()
{
    QFETCH(const Task, task);
    TaskSetup setup(Stereo(1000), task);
    int count = 0;
    const auto takeBothLocks = [&] {
        QVERIFY(setup.access.Mutex().tryLock());
        setup.access.Mutex().unlock();
        QVERIFY(setup.access.DeviceMutex().tryLock());
        setup.access.DeviceMutex().unlock();
        ++count;
    };
    connect(&setup.file, &WavFile::ProgressChanged, &setup.file, takeBothLocks);
    connect(&setup.file, &WavFile::NewData, &setup.file, takeBothLocks);
    setup.Run();
    QCOMPARE(count, task.isExtraction ? 5 + 2 : 5);
}

void TestWavTasks::usesTheChannelSelectedWhenItStarted()
{
    QFETCH(const Task, task);
    TaskSetup setup(Stereo(manyBlocks * blockFrames), task);
    connect(&setup.file, &WavFile::ProgressChanged, &setup.file,
            [&] { setup.file.SetSelectedChannel(WavFile::ChannelLeft); });
    setup.Run();
    QVERIFY(setup.Left() == setup.Expected(manyBlocks * blockFrames));
}

void TestWavTasks::endsWhereTheFileCannotBeRead()
{
    QFETCH(const Task, task);
    TaskSetup setup(Stereo(manyBlocks * blockFrames), task);
    QVERIFY(BreakReading(setup.file));
    QCOMPARE(task.run(setup.file, setup.out), task.failure);
    // It would look whole.
    QVERIFY(!QFile::exists(setup.out));
    const QByteArray whole = setup.Expected(manyBlocks * blockFrames);
    QCOMPARE_LT(setup.Left().size(), whole.size());
    QVERIFY(setup.Left() == whole.left(setup.Left().size()));
}

void TestWavTasks::endsWhereTheFileHasBecomeShorter()
{
    QFETCH(const Task, task);
    for (const int frames : {0, 1, 100, 200, 50000, manyBlocks * blockFrames - 1}) {
        TaskSetup setup(Stereo(manyBlocks * blockFrames), task);
        QVERIFY(QFile::resize(setup.file.fileName(), 44 + frames * 4));
        QCOMPARE(task.run(setup.file, setup.out), task.failure);
        QVERIFY(!QFile::exists(setup.out));
        QCOMPARE(setup.Left().size(), task.isExtraction ? frames * 4 : 0);
        QCOMPARE(setup.files.Names(), QStringList{u"source.wav"_s});
    }
}

void TestWavTasks::readsTheFileThatWasOpenedAlsoWhereAnotherTookItsName()
{
    QFETCH(const Task, task);
    TaskSetup setup(Stereo(manyBlocks * blockFrames), task);
    const QString other = setup.files.Write(u"other.wav"_s, Stereo(blockFrames).File());
    const QString name = setup.file.fileName();
    QCOMPARE(std::rename(QFile::encodeName(other).constData(), QFile::encodeName(name).constData()), 0);
    setup.Run();
    QCOMPARE(setup.Left(), setup.Expected(manyBlocks * blockFrames));
    QVERIFY(TemporaryFiles::Read(name) == Stereo(blockFrames).File());
}

void TestWavTasks::leavesAnOlderFileUntilItIsWhole()
{
    QFETCH(const Task, task);
    if (task.failure != WavFile::ErrorCreateSnippet) {
        QSKIP("Only a snippet overwrites a file.");
    }
    TaskSetup setup(Stereo(manyBlocks * blockFrames), task);
    setup.files.Write(u"out.wav"_s, "older");
    const auto watch = connect(&setup.file, &WavFile::ProgressChanged, &setup.file,
                               [&] { QCOMPARE(setup.Result(), QByteArray("older")); });
    setup.Run();
    QObject::disconnect(watch);
    QVERIFY(setup.Result() == setup.Expected(manyBlocks * blockFrames));
    // Neither of the two failures takes it away.
    const QByteArray former = setup.Result();
    {
        const FileSizeLimit limit(100000);
        QCOMPARE(task.run(setup.file, setup.out), task.failure);
    }
    QVERIFY(setup.Result() == former);
    QVERIFY(QFile::resize(setup.file.fileName(), 444));
    QCOMPARE(task.run(setup.file, setup.out), task.failure);
    QVERIFY(setup.Result() == former);
    QCOMPARE(setup.files.Names(), (QStringList{u"out.wav"_s, u"source.wav"_s}));
}

void TestWavTasks::leavesNoPartWhereNoneIsWanted()
{
    QFETCH(const Task, task);
    TaskSetup setup(Stereo(manyBlocks * blockFrames), task);
    QVERIFY(setup.file.GetKeepParts());
    setup.file.SetKeepParts(false);
    QVERIFY(!setup.file.GetKeepParts());
    {
        const FileSizeLimit limit(100000);
        QCOMPARE(task.run(setup.file, setup.out), task.failure);
    }
    QCOMPARE(setup.files.Names(), QStringList{u"source.wav"_s});
    setup.log.clear();
    setup.AbortDuringBlock(1);
    setup.Run();
    QCOMPARE(setup.files.Names(), QStringList{u"source.wav"_s});
}

QTEST_GUILESS_MAIN(TestWavTasks)
#include "tst_wavtasks.moc"
