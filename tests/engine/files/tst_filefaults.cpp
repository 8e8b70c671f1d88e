#include "tests/engine/files/FileTasks.h"
#include "tests/support/FileFaults.h"

#include <vantorAudioEngine/AudioFileInfo.h>
#include <vantorAudioEngine/Decoder.h>

#include <QtTest/QtTest>

#include <cerrno>
#include <sys/stat.h>

using namespace Qt::Literals::StringLiterals;

namespace {

/** A source, and an older file under the name of the output where one is wanted. */
class TaskFolder
{
public:
    explicit TaskFolder(const FileTask& task, bool hasOlder = false) : m_task(task)
    {
        if (hasOlder) {
            m_files.Write(u"out.wav"_s, older);
        }
    }

    int Run() const { return m_task.run(m_source, Out()); }
    QString Path() const { return m_files.Path({}); }
    QString Source() const { return m_source; }
    QString Out() const { return m_files.Path(u"out.wav"_s); }
    QByteArray Result() const { return TemporaryFiles::Read(m_task.isInPlace ? m_source : Out()); }
    QStringList Names() const { return m_files.Names(); }

    bool HasSource() const { return TemporaryFiles::Read(m_source) == m_bytes; }
    bool HasOlder() const { return TemporaryFiles::Read(Out()) == older; }

private:
    static constexpr const char* older = "an older file";

    const FileTask& m_task;
    const TemporaryFiles m_files;
    const QByteArray m_bytes = FileTasks::SourceBytes();
    const QString m_source = m_files.Write(u"source.wav"_s, m_bytes);
};

} // namespace

/** What every way to write a file does when the disk does not do as it is told. */
class TestFileFaults : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tellsThatTheDiskIsFull_data() { FileTasks::AddRows(); }
    void tellsThatTheDiskIsFull();
    void leavesAnOlderFileWhenTheDiskIsFull_data() { FileTasks::AddRows(); }
    void leavesAnOlderFileWhenTheDiskIsFull();
    void tellsThatNoNameCanBeGiven_data() { FileTasks::AddRows(); }
    void tellsThatNoNameCanBeGiven();
    void keepsTheSourceThatCannotBeFlushed();
    void tellsThatTheSourceCannotBeRead_data() { FileTasks::AddRows(); }
    void tellsThatTheSourceCannotBeRead();
    void mindsNeitherSignalsNorShortCalls_data() { FileTasks::AddRows(); }
    void mindsNeitherSignalsNorShortCalls();
    void leavesASourceThatIsChangedWhileItIsConverted_data();
    void leavesASourceThatIsChangedWhileItIsConverted();
    void refusesToDecodeWhatCannotBeRead();
    void refusesSpecialFilesAtOnce_data();
    void refusesSpecialFilesAtOnce();
};

void TestFileFaults::tellsThatTheDiskIsFull()
{
    QFETCH(const FileTask, task);
    const QByteArray whole = FileTasks::WholeResult(task);
    for (int first = 1; true; ++first) {
        const TaskFolder folder(task);
        int result = 0;
        {
            const FileFaults faults({.calls = WriteCall,
                                     .part = folder.Path(),
                                     .effect = FileFault::Fails,
                                     .error = ENOSPC,
                                     .first = first});
            result = folder.Run();
        }
        if (FileFaults::Count() < first) {
            QCOMPARE(result, 0);
            QCOMPARE_GT(first, 2);
            break;
        }
        QCOMPARE(result, task.writingFailure);
        QVERIFY(folder.HasSource());
        // The header comes first. An output without it would be of no use to anybody.
        const bool hasPart = task.keepsPart && first > 1;
        QCOMPARE(folder.Names(),
                 hasPart ? QStringList({u"out.wav"_s, u"source.wav"_s}) : QStringList{u"source.wav"_s});
        if (hasPart) {
            QCOMPARE_LT(folder.Result().size(), whole.size());
            QVERIFY(whole.startsWith(folder.Result()));
        }
    }
}

void TestFileFaults::leavesAnOlderFileWhenTheDiskIsFull()
{
    QFETCH(const FileTask, task);
    for (const int first : {1, 2, 3}) {
        const TaskFolder folder(task, true);
        const FileFaults faults({.calls = WriteCall,
                                 .part = folder.Path(),
                                 .effect = FileFault::Fails,
                                 .error = ENOSPC,
                                 .first = first});
        QCOMPARE(folder.Run(), task.overwrites ? task.writingFailure : 0);
        QVERIFY(folder.HasSource() && folder.HasOlder());
        QCOMPARE(folder.Names(), (QStringList{u"out.wav"_s, u"source.wav"_s}));
    }
}

void TestFileFaults::tellsThatNoNameCanBeGiven()
{
    QFETCH(const FileTask, task);
    for (const bool hasOlder : {false, true}) {
        const TaskFolder folder(task, hasOlder);
        const FileFaults faults(
            {.calls = NameCall, .part = folder.Path(), .effect = FileFault::Fails, .error = EIO});
        QCOMPARE(folder.Run(), hasOlder && !task.overwrites ? 0 : task.writingFailure);
        QVERIFY(folder.HasSource());
        QCOMPARE(folder.HasOlder(), hasOlder);
        QCOMPARE(folder.Names().size(), hasOlder ? 2 : 1);
    }
}

void TestFileFaults::keepsTheSourceThatCannotBeFlushed()
{
    const FileTask task{.run = &FileTasks::ConvertInPlace, .isInPlace = true};
    const TaskFolder folder(task);
    const FileFaults faults({.calls = SyncCall, .part = folder.Path(), .effect = FileFault::Fails, .error = EIO});
    QCOMPARE(folder.Run(), 1);
    QCOMPARE(FileFaults::Count(), 1);
    QVERIFY(folder.HasSource());
    QCOMPARE(folder.Names(), QStringList{u"source.wav"_s});
}

void TestFileFaults::tellsThatTheSourceCannotBeRead()
{
    QFETCH(const FileTask, task);
    const QByteArray whole = FileTasks::WholeResult(task);
    for (const bool hasOlder : {false, true}) {
        bool hasFailed = true;
        for (int first = 1; hasFailed; ++first) {
            const TaskFolder folder(task, hasOlder);
            const FileFaults faults({.calls = ReadCall,
                                     .part = folder.Source(),
                                     .effect = FileFault::Fails,
                                     .error = EIO,
                                     .first = first});
            const int result = folder.Run();
            hasFailed = FileFaults::Count() >= first;
            if (!hasFailed) {
                QCOMPARE(result, 0);
                break;
            }
            // The header is read before anything is written.
            if (result != WavFile::ErrorReadFile) {
                QCOMPARE(result, task.readingFailure);
            }
            const bool hasPart = !hasOlder && QFile::exists(folder.Out());
            if (hasOlder) {
                QVERIFY(folder.HasOlder());
            } else if (hasPart) {
                // Only a conversion leaves what it had.
                QVERIFY(task.run == &FileTasks::Convert);
                QVERIFY(whole.startsWith(folder.Result()) && folder.Result().size() <= whole.size());
            }
            QCOMPARE(folder.Names().size(), hasOlder || hasPart ? 2 : 1);
        }
    }
}

void TestFileFaults::mindsNeitherSignalsNorShortCalls()
{
    QFETCH(const FileTask, task);
    const QByteArray whole = FileTasks::WholeResult(task);
    for (const auto effect : {FileFault::IsInterrupted, FileFault::IsShort}) {
        const TaskFolder folder(task);
        const FileFaults faults(
            {.calls = ReadCall | WriteCall | SyncCall, .part = folder.Path(), .effect = effect});
        QCOMPARE(folder.Run(), 0);
        QCOMPARE_GT(FileFaults::Count(), 5);
        QVERIFY(folder.Result() == whole);
    }
}

void TestFileFaults::leavesASourceThatIsChangedWhileItIsConverted_data()
{
    QTest::addColumn<unsigned>("moment");
    QTest::addColumn<bool>("isReplaced");
    QTest::addRow("replaced while it is written") << unsigned(WriteCall) << true;
    QTest::addRow("changed while it is written") << unsigned(WriteCall) << false;
    QTest::addRow("replaced while it is flushed") << unsigned(SyncCall) << true;
    QTest::addRow("changed while it is flushed") << unsigned(SyncCall) << false;
}

void TestFileFaults::leavesASourceThatIsChangedWhileItIsConverted()
{
    QFETCH(const unsigned, moment);
    QFETCH(const bool, isReplaced);
    const FileTask task{.run = &FileTasks::ConvertInPlace, .isInPlace = true};
    const TaskFolder folder(task);
    WavFile file;
    QCOMPARE(file.Open(folder.Source()), WavFile::Success);
    const auto change = [&] {
        QFile other(folder.Source());
        QVERIFY(!isReplaced || other.remove());
        QVERIFY(other.open(isReplaced ? QIODevice::WriteOnly : QIODevice::Append) && other.write("new") == 3);
    };
    QAudioFormat format = file.GetFileFormat();
    format.setSampleFormat(QAudioFormat::Int32);
    {
        const FileFaults faults({.calls = moment,
                                 .part = folder.Path(),
                                 .effect = FileFault::HappensLater,
                                 .error = 0,
                                 .first = 1,
                                 .meanwhile = change});
        QVERIFY(!file.Convert(format, {}));
    }
    QCOMPARE(file.errorString(), u"Another program has changed the file"_s);
    QVERIFY(file.isOpen());
    QVERIFY(folder.Result() == (isReplaced ? QByteArray() : FileTasks::SourceBytes()) + "new");
    QCOMPARE(folder.Names(), QStringList{u"source.wav"_s});
}

/** Qt would decode it up to there and say that all is well. */
void TestFileFaults::refusesToDecodeWhatCannotBeRead()
{
    const TemporaryFiles files;
    const QString source = files.Write(u"source.wav"_s, FileTasks::SourceBytes());
    const QString out = files.Path(u"out.wav"_s);
    for (const int first : {1, 2, 3, 5, 10, 20}) {
        const FileFaults faults(
            {.calls = ReadCall, .part = source, .effect = FileFault::Fails, .error = EIO, .first = first});
        QCOMPARE(Decoder::Convert(source, out, 8000), WavFile::ErrorInvalidFormat);
        QCOMPARE(files.Names(), QStringList{u"source.wav"_s});
    }
}

void TestFileFaults::refusesSpecialFilesAtOnce_data()
{
    QTest::addColumn<QString>("path");
    for (const char* path :
         {"/dev/zero", "/dev/full", "/dev/null", "/dev/random", "/dev/tty", "/proc", "/proc/kmsg",
          "/proc/self/mem", "/proc/self/status", "/proc/self/fd/0", "/proc/sys/kernel/hostname",
          "/sys/kernel/tracing/trace_pipe", "/missing", "a pipe", "a folder"}) {
        QTest::addRow("%s", path) << QString::fromLatin1(path);
    }
}

void TestFileFaults::refusesSpecialFilesAtOnce()
{
    QFETCH(QString, path);
    const TemporaryFiles files;
    if (path == u"a pipe") {
        path = files.Path(path);
        QCOMPARE(::mkfifo(QFile::encodeName(path).constData(), 0600), 0);
    } else if (path == u"a folder") {
        path = files.Path({});
    }
    const QStringList names = files.Names();
    const QString out = files.Path(u"out.wav"_s);
    WavFile file;
    QVERIFY(file.Open(path) != WavFile::Success);
    QVERIFY(!vantoraudio::AudioEngine::AudioFileInfo::Probe(path).CanBeLoaded());
    QVERIFY(FileTasks::Import(path, out) != WavFile::Success);
    QVERIFY(Decoder::Convert(path, out, 48000) != WavFile::Success);
    QCOMPARE(Decoder::GetDuration(path), 0);
    QCOMPARE(files.Names(), names);
}

QTEST_GUILESS_MAIN(TestFileFaults)
#include "tst_filefaults.moc"
