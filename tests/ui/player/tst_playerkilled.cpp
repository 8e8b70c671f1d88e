#include "tests/support/AudioPrograms.h"
#include "tests/support/FileFaults.h"
#include "tests/support/TemporaryFiles.h"
#include "tests/support/TestAudio.h"
#include "ui/player/FileCopy.h"
#include "ui/player/FileLoad.h"
#include "ui/player/PlayableCopy.h"

#include <vantorAudioEngine/AudioPlayerWidget.h>
#include <vantorAudioEngine/WavFile.h>

#include <QtCore/QEventLoop>
#include <QtTest/QtTest>
#include <QtWidgets/QApplication>

#include <cerrno>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;
using namespace vantoraudio::vantorAudioEngine::UI;

namespace {

/** A program of its own, in the child process: it loads a file and ends as if it were killed then. */
using Load = bool (*)(const QString& source, const QString& directory);

bool LoadFile(const QString& source, const QString& directory)
{
    int count = 0;
    const QCoreApplication application(count, nullptr);
    FileLoad load(source, directory, {});
    QEventLoop loop;
    QObject::connect(&load, &FileLoad::Ended, &loop, &QEventLoop::quit);
    load.Start();
    loop.exec();
    WavFile copy;
    return load.GetProblem() == FileLoad::Problem::None && copy.Open(load.GetCopy().path) == WavFile::Success &&
           copy.GetDataLength() == copy.size() - copy.GetDataOffset() && copy.GetDuration() > 0.1;
}

/** What the player does for a file that no output plays. */
bool MakePlayableCopy(const QString& source, const QString& directory)
{
    int count = 0;
    const QCoreApplication application(count, nullptr);
    PlayableCopy copy(source, directory);
    QEventLoop loop;
    QObject::connect(&copy, &PlayableCopy::Ended, &loop, &QEventLoop::quit);
    loop.exec();
    return copy.GetPath() != source && QFile::exists(copy.GetPath());
}

bool SetAudioFile(const QString& source, const QString& directory)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    int count = 0;
    const QApplication application(count, nullptr);
    AudioPlayerWidget player;
    player.SetWritableDirectoryPath(directory);
    player.SetAudioFile(source);
    return player.GetAudioDuration() > 0.1;
}

/** More calls than any load makes. */
constexpr int mostCalls = 100;

} // namespace

Q_DECLARE_METATYPE(Load)

/** What a load leaves in the writable directory when the program is killed, and what the next load makes of it. */
class PlayerKilledTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void theNextLoadFindsNothingThatIsNotWhole_data();
    void theNextLoadFindsNothingThatIsNotWhole();
    void aLoadLeavesAloneWhatIsInUse();
    void aSourceThatCannotBeReadIsNoCopy_data();
    void aSourceThatCannotBeReadIsNoCopy();

private:
    /** Of all files that are not hidden. */
    static QList<QByteArray> Visible(const TemporaryFiles& files);

    TemporaryFiles m_files;
};

void PlayerKilledTest::initTestCase()
{
    const WavTest::TestAudio audio{.channels = 2, .rate = 44100, .frames = 8000};
    const QString wav = m_files.Write(u"tone.wav"_s, audio.File());
    QVERIFY(AudioPrograms::Encode(u"mp3"_s, wav, m_files.Path(u"tone.mp3"_s)));
}

void PlayerKilledTest::theNextLoadFindsNothingThatIsNotWhole_data()
{
    QTest::addColumn<Load>("load");
    QTest::addColumn<QString>("name");
    QTest::addRow("LoadFile, WAV") << Load(&LoadFile) << u"tone.wav"_s;
    QTest::addRow("LoadFile, MP3") << Load(&LoadFile) << u"tone.mp3"_s;
    QTest::addRow("a copy to be played") << Load(&MakePlayableCopy) << u"tone.wav"_s;
    QTest::addRow("SetAudioFile, WAV") << Load(&SetAudioFile) << u"tone.wav"_s;
    QTest::addRow("SetAudioFile, MP3") << Load(&SetAudioFile) << u"tone.mp3"_s;
}

QList<QByteArray> PlayerKilledTest::Visible(const TemporaryFiles& files)
{
    QList<QByteArray> all;
    for (const QString& name : files.Names()) {
        if (!name.startsWith(u'.')) {
            all.append(TemporaryFiles::Read(files.Path(name)));
        }
    }
    return all;
}

void PlayerKilledTest::theNextLoadFindsNothingThatIsNotWhole()
{
    QFETCH(const Load, load);
    QFETCH(const QString, name);
    const QString source = m_files.Path(name);
    const QByteArray bytes = TemporaryFiles::Read(source);
    const auto run = [&source](Load chosen, const QString& directory) {
        if (!chosen(source, directory)) {
            ::_exit(1);
        }
        ::_exit(0);
    };
    // The next load is what removes the copy.
    const Load next = load == &MakePlayableCopy ? &LoadFile : load;
    QList<QList<QByteArray>> left;
    bool isKilled = true;
    for (int call = 1; isKilled && call < mostCalls; ++call) {
        const TemporaryFiles directory;
        isKilled = IsKilledAtCall(call, directory.Path({}), [&] { run(load, directory.Path({})); });
        QCOMPARE(TemporaryFiles::Read(source), bytes);
        left.append(Visible(directory));
        // A program with a widget takes its time to start.
        if (isKilled && (load != &SetAudioFile || call % 4 == 0)) {
            QVERIFY(!IsKilledAtCall(mostCalls, directory.Path({}), [&] { run(next, directory.Path({})); }));
            // The second program may leave its own folder, too, but nothing else is there.
            const QStringList names = directory.Names();
            QCOMPARE_LE(names.size(), 1);
            QCOMPARE(names.contains(name), load == &SetAudioFile);
        }
    }
    QVERIFY(!isKilled);
    QCOMPARE_GT(left.size(), 3);
    const QList<QByteArray> whole = left.last();
    QCOMPARE(whole.size(), load == &SetAudioFile ? 1 : 0);
    for (const QList<QByteArray>& each : left) {
        // Nothing yet, the copy of the source, or what was decoded from it.
        QVERIFY(each.isEmpty() || each == QList{bytes} || each == whole);
    }
}

/** The one lock looks like that of another program. */
void PlayerKilledTest::aLoadLeavesAloneWhatIsInUse()
{
    const QString source = m_files.Path(u"tone.wav"_s);
    const TemporaryFiles directory;
    const auto loadTwice = [&] {
        int count = 0;
        const QCoreApplication application(count, nullptr);
        FileLoad first(source, directory.Path({}), {});
        FileLoad second(source, directory.Path({}), {});
        for (FileLoad* load : {&first, &second}) {
            QEventLoop loop;
            QObject::connect(load, &FileLoad::Ended, &loop, &QEventLoop::quit);
            load->Start();
            loop.exec();
        }
        const bool areBoth = first.GetCopy().path != second.GetCopy().path &&
                             QFile::exists(first.GetCopy().path) && QFile::exists(second.GetCopy().path);
        ::_exit(areBoth ? 0 : 1);
    };
    QVERIFY(!IsKilledAtCall(mostCalls, directory.Path({}), loadTwice));
    QCOMPARE(directory.Names().size(), 2);
}

void PlayerKilledTest::aSourceThatCannotBeReadIsNoCopy_data()
{
    QTest::addColumn<bool>("becomesShorter");
    QTest::addRow("a read error") << false;
    QTest::addRow("shorter than it was") << true;
}

/** The last one: its threads would be missing in a child process. */
void PlayerKilledTest::aSourceThatCannotBeReadIsNoCopy()
{
    QFETCH(const bool, becomesShorter);
    int count = 0;
    const QCoreApplication application(count, nullptr);
    const TemporaryFiles files;
    const QByteArray bytes = TemporaryFiles::Read(m_files.Path(u"tone.wav"_s));
    FileFault fault{.calls = ReadCall, .part = u"source.wav"_s, .effect = FileFault::Fails, .error = EIO};
    if (becomesShorter) {
        fault.effect = FileFault::HappensLater;
        fault.meanwhile = [&files] { QVERIFY(QFile::resize(files.Path(u"source.wav"_s), 10000)); };
    }
    const QString source = files.Write(u"source.wav"_s, bytes);
    const TemporaryFiles directory;
    {
        const FileFaults faults(fault);
        const bool isCopied = ProvideCopy(source, directory.Path(u"source.wav"_s));
        if (FileFaults::Count() == 0) {
            QSKIP("This file system copies without reading.");
        }
        QVERIFY(!isCopied);
    }
    QCOMPARE(directory.Names(), QStringList());
    // The copying comes after a look at the header.
    QList<FileLoad::Problem> problems;
    for (; fault.first <= 8; ++fault.first) {
        files.Write(u"source.wav"_s, bytes);
        FileLoad load(source, directory.Path({}), {});
        QEventLoop loop;
        QObject::connect(&load, &FileLoad::Ended, &loop, &QEventLoop::quit);
        const FileFaults faults(fault);
        load.Start();
        loop.exec();
        problems.append(load.GetProblem());
    }
    QVERIFY(problems.contains(FileLoad::Problem::CannotBeRead));
    QTRY_COMPARE(directory.Names(), QStringList());
}

QTEST_APPLESS_MAIN(PlayerKilledTest)
#include "tst_playerkilled.moc"
