#include "tests/support/AudioPrograms.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/HeldFile.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/SoundServer.h"
#include "tests/support/TestAudio.h"
#include "tests/ui/player/BlockedPool.h"
#include "tests/ui/player/LongFile.h"
#include "tests/ui/player/PlayerSetup.h"

#include <QtCore/QDateTime>
#include <QtCore/QDir>
#include <QtCore/QDirIterator>
#include <QtCore/QFileInfo>
#include <QtCore/QPointer>
#include <QtCore/QTimer>
#include <QtWidgets/QApplication>

#include <algorithm>
#include <optional>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

using namespace Qt::Literals::StringLiterals;
using namespace WavTest;
using vantoraudio::AudioEngine::AudioFileInfo;
using vantoraudio::vantorAudioEngine::UI::AudioPlayerWidget;
using Errors = QList<WavFile::AudioEngineReturnValue>;
using Problem = AudioFileInfo::Problem;

namespace {

const TestAudio stereo{.coding = S16, .channels = 2, .rate = 8000, .frames = 8000};
const TestAudio mono{.coding = S16, .channels = 1, .rate = 8000, .frames = 4000};

/** A player that writes down what it tells of loading, without its reports of progress. */
class LoadSetup : public PlayerSetup
{
public:
    LoadSetup()
    {
        const auto write = [this](const char* what) {
            return [this, what](const QString& path) {
                log.append(QString::fromLatin1(what) + u' ' + QFileInfo(path).fileName());
            };
        };
        QObject::connect(player.get(), &AudioPlayerWidget::LoadStarted, &m_context, write("started"));
        QObject::connect(player.get(), &AudioPlayerWidget::AudioFileChanged, &m_context, write("changed"));
        QObject::connect(player.get(), &AudioPlayerWidget::LoadFinished, &m_context, write("finished"));
        QObject::connect(player.get(), &AudioPlayerWidget::LoadCancelled, &m_context, write("cancelled"));
        QObject::connect(player.get(), &AudioPlayerWidget::LoadFailed, &m_context, write("failed"));
        QObject::connect(player.get(), &AudioPlayerWidget::LoadFailed, &m_context,
                         [this](const QString&, Problem reason, const QString& text) {
                             problem = reason;
                             sentence = text;
                             errorsAtFailure = player->errors.size();
                         });
    }

    /** True when LoadFile() has loaded the file and its samples are there. */
    bool LoadCompletely(const QString& path)
    {
        player->LoadFile(path);
        return HasEnded() && player->errors.isEmpty() && player->GetOriginalAudioFilePath() == path &&
               File().isOpen() && HasRead();
    }
    bool HasEnded() const
    {
        return QTest::qWaitFor([this] { return !player->IsLoading(); }, patience);
    }
    /** Waits until the background is in the midst of the work. */
    bool HasProgressed() const
    {
        QSignalSpy progress(player.get(), &AudioPlayerWidget::ProgressChanged);
        return QTest::qWaitFor([&] { return !progress.isEmpty() && progress.last()[0].toInt() > 0; }, patience);
    }
    /** Everything in the working directory but `path` and the folders that lead there. */
    QStringList OtherFiles(const QString& path = {}) const
    {
        QStringList files;
        QDirIterator it(copies.Path(QString()),
                        QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                        QDirIterator::Subdirectories);
        while (it.hasNext()) {
            const QString file = it.next();
            if (file != path && !path.startsWith(file + u'/')) {
                files.append(file);
            }
        }
        return files;
    }

    QStringList log;
    std::optional<Problem> problem;
    QString sentence;
    qsizetype errorsAtFailure = 0;

private:
    QObject m_context;
};

QByteArray Rf64(const QByteArray& data)
{
    const QByteArray sizes = LittleEndian(quint64(1000)) + LittleEndian(quint64(data.size())) +
                             LittleEndian(quint64(data.size() / 4)) + LittleEndian(quint32(0));
    return WavBytes{.riff = "RF64",
                    .statedRiffSize = 0xFFFFFFFF,
                    .beforeFmt = {{"ds64", sizes}},
                    .channels = 2,
                    .sampleRate = 8000,
                    .data = data,
                    .statedDataSize = 0xFFFFFFFF}
        .Build();
}

/** Notes which names are given in a folder from now on. */
class NameWatch
{
public:
    explicit NameWatch(const QString& folder)
    {
        ::inotify_add_watch(m_events, qPrintable(folder), IN_CREATE | IN_MOVED_TO);
    }
    ~NameWatch() { ::close(m_events); }
    Q_DISABLE_COPY_MOVE(NameWatch)

    bool WasGiven(const QByteArray& name) const
    {
        QByteArray events(1 << 16, '\0');
        const ssize_t size = ::read(m_events, events.data(), std::size_t(events.size()));
        return events.first(qMax<qsizetype>(0, size)).contains(name);
    }

private:
    const int m_events = ::inotify_init1(IN_NONBLOCK);
};

/** Writes a WAV file that sounds like `wav`, with the usual header of 44 bytes, so many times in a row. */
bool Repeat(const QByteArray& wav, int times, const QString& path)
{
    const QByteArray data = wav.mid(44);
    const auto size = static_cast<quint32>(data.size() * times);
    QFile file(path);
    bool isWritten = file.open(QIODevice::WriteOnly) &&
                     file.write(wav.left(4) + LittleEndian(size + 36) + wav.mid(8, 32) + LittleEndian(size)) == 44;
    for (int i = 0; i < times; ++i) {
        isWritten = isWritten && file.write(data) == data.size();
    }
    return isWritten && file.flush();
}

void SetTime(const QString& path, const QDateTime& time)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadWrite) && file.setFileTime(time, QFileDevice::FileModificationTime));
}

} // namespace

/** Loading in the background, with files of every kind and at every moment. */
class PlayerLoadFileTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();

    void goesByContentNotByName_data();
    void goesByContentNotByName();
    void tellsStartProgressAndEndInOrder_data();
    void tellsStartProgressAndEndInOrder();
    void showsTheFileAsSetAudioFileDoes();
    void loadsFilesWith64BitSizes();
    void showsOnlyWhatIsThereOfAFileThatPromisesMore();
    void anEmptyPathUnloads();
    void doesNotWaitForTasksOfOtherFiles();
    void withoutADirectoryTheCurrentOneIsUsed();

    void theFormerFileStaysUntilTheNextIsReady();
    void aFailureTellsItsReasonAndKeepsTheFormerFile_data();
    void aFailureTellsItsReasonAndKeepsTheFormerFile();
    void refusesAFileWithoutPermission();
    void refusesAReadOnlyWorkingDirectory();
    void refusesAMissingWorkingDirectory();
    void refusesAFullDisk_data();
    void refusesAFullDisk();

    void cancelsAtEveryMoment_data();
    void cancelsAtEveryMoment();
    void cancellingNothingTellsNothing();
    void aNewLoadOvertakesTheFormer();
    void theSameFileOvertakesItself();
    void othersEndALoad_data();
    void othersEndALoad();
    void aLoadOvertakesSetAudioFile();
    void isDestroyedWithoutWaiting_data();
    void isDestroyedWithoutWaiting();
    void destroyingItCancelsTheImport();
    void mayBeDestroyedByEverySignal_data();
    void mayBeDestroyedByEverySignal();
    void theEndOfABusyTimeMayEndALoad_data();
    void theEndOfABusyTimeMayEndALoad();
    void mayLoadAnotherFileUponEverySignal_data();
    void mayLoadAnotherFileUponEverySignal();

    void anUnchangedFileStays();
    void anUnchangedFileIsOpenedAgainAfterClosing();
    void aChangedFileIsReadAgain_data();
    void aChangedFileIsReadAgain();
    void tellsFilesOfTheSameNameApart();
    void channelFilesBelongToTheirFile();
    void removesWhatItMade();
    void readsAWriteProtectedFile();
    void touchesNothingInTheWorkingDirectory_data();
    void touchesNothingInTheWorkingDirectory();
    void loadsItsOwnWorkingCopy();
    void setAudioFileStaysAsItWas();

private:
    TemporaryFiles m_files;
    QByteArray m_tone;
};

void PlayerLoadFileTest::initTestCase()
{
    const QString tone = m_files.Path(u"tone.wav"_s);
    QVERIFY(AudioPrograms::MakeTone(tone, 44100, 2, 1.0));
    QVERIFY(AudioPrograms::Encode(u"mp3"_s, tone, m_files.Path(u"tone.mp3"_s)));
    QVERIFY(AudioPrograms::Encode(u"flac"_s, tone, m_files.Path(u"tone.flac"_s)));
    m_tone = TemporaryFiles::Read(tone);
    const QString longTone = m_files.Path(u"long tone.wav"_s);
    QVERIFY(Repeat(m_tone, 900, longTone));
    QVERIFY(AudioPrograms::Encode(u"flac"_s, longTone, m_files.Path(u"long.flac"_s)));
    QVERIFY(QFile::remove(longTone));
    QVERIFY(MakeLongFile(m_files.Path(u"long.wav"_s)));
}

void PlayerLoadFileTest::cleanup()
{
    QThreadPool::globalInstance()->waitForDone();
    QCoreApplication::processEvents();
}

void PlayerLoadFileTest::goesByContentNotByName_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("name");
    const std::pair<const char*, const char*> names[]{
        {"wav", "take.wav"},        {"wav", "take.WAV"},  {"wav", "a.b.wav"},
        {"wav", "take.mp3"},        {"wav", "take"},      {"flac", "take.flac"},
        {"flac", "take.wav"},       {"flac", "take.mp3"}, {"mp3", "take.mp3"},
        {"mp3", "take.wav"},        {"mp3", "take.WAV"},  {"mp3", "take"},
        {"flac", "tâke #1 %20.wav"}};
    for (const auto& [kind, name] : names) {
        QTest::addRow("%s called %s", kind, name)
            << QString(u"tone."_s + QString::fromLatin1(kind)) << QString::fromUtf8(name);
    }
}

void PlayerLoadFileTest::goesByContentNotByName()
{
    QFETCH(const QString, source);
    QFETCH(const QString, name);
    LoadSetup setup;
    const QString path = setup.originals.Path(name);
    QVERIFY(QFile::copy(m_files.Path(source), path));
    QVERIFY(setup.LoadCompletely(path));
    const QString copy = setup.player->GetAudioFileName();
    QCOMPARE(QFileInfo(copy).fileName(), name);
    QVERIFY(copy.startsWith(setup.copies.Path(QString())));
    // MP3 has a delay at its start and fills its last frame.
    QVERIFY(qAbs(setup.player->GetAudioDuration() - 1.0) < (source == u"tone.mp3" ? 0.1 : 1e-9));
    QCOMPARE(setup.player->GetAudioFileFormat().sampleRate(), 44100);
    QCOMPARE(setup.player->GetAudioFileFormat().channelCount(), 2);
    if (source == u"tone.wav") {
        QCOMPARE(TemporaryFiles::Read(copy), m_tone);
    } else {
        QCOMPARE(TemporaryFiles::Read(copy).mid(44),
                 AudioPrograms::DecodedByFFmpeg(m_files.Path(source), u"f32le"_s));
    }
    QTRY_COMPARE_WITH_TIMEOUT(setup.Audio().mediaStatus(), QMediaPlayer::LoadedMedia, PlayerSetup::patience);
}

void PlayerLoadFileTest::tellsStartProgressAndEndInOrder_data()
{
    QTest::addColumn<QString>("source");
    QTest::addRow("copied") << u"long.wav"_s;
    QTest::addRow("imported") << u"long.flac"_s;
}

void PlayerLoadFileTest::tellsStartProgressAndEndInOrder()
{
    QFETCH(const QString, source);
    LoadSetup setup;
    QList<int> reports;
    QObject::connect(setup.player.get(), &AudioPlayerWidget::ProgressChanged, this,
                     [&](int progress, int min, int max, const QString& text) {
                         if (text == u"Loading...") {
                             QCOMPARE(min, 0);
                             QCOMPARE(max, 1000);
                             QCOMPARE(setup.log, QStringList(u"started "_s + source));
                             reports.append(progress);
                         }
                     });
    setup.player->LoadFile(m_files.Path(source));
    QCOMPARE(setup.log, QStringList(u"started "_s + source));
    QCOMPARE(reports, QList<int>{0});
    QVERIFY(setup.player->IsLoading());
    QVERIFY(setup.HasEnded());
    QCOMPARE(setup.log, QStringList({u"started "_s + source, u"changed "_s + source, u"finished "_s + source}));
    QVERIFY(std::is_sorted(reports.cbegin(), reports.cend()));
    QVERIFY2(reports.size() > 2 && reports.last() <= 1000, qPrintable(QString::number(reports.size())));
    QVERIFY(std::any_of(reports.cbegin(), reports.cend(), [](int report) { return report > 0 && report < 1000; }));
    QVERIFY(setup.player->errors.isEmpty());
    QCOMPARE(setup.player->GetAudioDuration(), source == u"long.wav" ? 1800.0 : 900.0);
}

void PlayerLoadFileTest::showsTheFileAsSetAudioFileDoes()
{
    LoadSetup byName;
    LoadSetup byContent;
    const QString path = m_files.Path(u"tone.wav"_s);
    QVERIFY(byName.Load(path));
    QVERIFY(byContent.LoadCompletely(path));
    QCOMPARE(byContent.Controls().edTotalDuration->text(), u"00:00:01.000"_s);
    QCOMPARE(byName.Controls().edTotalDuration->text(), u"00:00:01.000"_s);
    QVERIFY(byContent.Controls().btnPlayPause->isEnabled());
    QCOMPARE(byContent.Controls().cmbboxChannelSelector->count(), 3);
    QCOMPARE(byContent.player->GetSelectedChannel(), WavFile::ChannelLeftRight);
    QCOMPARE(byContent.File().GetSamples(), byName.File().GetSamples());
    QCOMPARE(byContent.Audio().source().toLocalFile(), byContent.player->GetAudioFileName());
}

void PlayerLoadFileTest::loadsFilesWith64BitSizes()
{
    LoadSetup setup;
    const QByteArray bytes = Rf64(stereo.Data());
    QVERIFY(setup.LoadCompletely(setup.originals.Write(u"take.wav"_s, bytes)));
    QCOMPARE(setup.player->GetAudioDuration(), 1.0);
    QCOMPARE(TemporaryFiles::Read(setup.player->GetAudioFileName()), bytes);
}

void PlayerLoadFileTest::showsOnlyWhatIsThereOfAFileThatPromisesMore()
{
    LoadSetup setup;
    TestAudio recording = stereo;
    // What a recorder states that cannot go back to its header.
    recording.statedDataSize = 0x7FFFF000;
    QVERIFY(setup.LoadCompletely(setup.originals.Write(u"take.wav"_s, recording.File())));
    QCOMPARE(setup.player->GetAudioDuration(), 1.0);
}

void PlayerLoadFileTest::anEmptyPathUnloads()
{
    LoadSetup setup;
    QVERIFY(setup.LoadCompletely(m_files.Path(u"tone.wav"_s)));
    setup.log.clear();
    setup.player->LoadFile({});
    QCOMPARE(setup.player->GetAudioFileName(), QString());
    QCOMPARE(setup.Controls().edTotalDuration->text(), u"00:00:00,000"_s);
    QCOMPARE(setup.log, QStringList());
}

void PlayerLoadFileTest::withoutADirectoryTheCurrentOneIsUsed()
{
    LoadSetup setup;
    setup.player->SetWritableDirectoryPath({});
    const QString former = QDir::currentPath();
    QVERIFY(QDir::setCurrent(setup.copies.Path(QString())));
    const bool isLoaded = setup.LoadCompletely(setup.originals.Write(u"take.wav"_s, stereo.File()));
    QVERIFY(QDir::setCurrent(former));
    QVERIFY(isLoaded);
    const QString folder = QFileInfo(setup.copies.Path(QString())).canonicalFilePath();
    QVERIFY(QFileInfo(setup.player->GetAudioFileName()).canonicalFilePath().startsWith(folder + u'/'));
}

void PlayerLoadFileTest::doesNotWaitForTasksOfOtherFiles()
{
    LoadSetup setup;
    const BlockedPool pool;
    setup.player->LoadFile(m_files.Path(u"tone.flac"_s));
    QVERIFY(setup.HasEnded());
    QCOMPARE(setup.log.last(), u"finished tone.flac"_s);
}

void PlayerLoadFileTest::theFormerFileStaysUntilTheNextIsReady()
{
    LoadSetup setup;
    QVERIFY(setup.LoadCompletely(setup.originals.Write(u"former.wav"_s, stereo.File())));
    const QString copy = setup.player->GetAudioFileName();
    setup.player->SetSelectedSnippet({0.25, 0.5});
    const QString next = setup.originals.Write(u"next.wav"_s, mono.File());
    const HeldFile held(next);
    if (!held.IsHeld()) {
        QSKIP("This file system lets every reader in.");
    }
    setup.player->LoadFile(next);
    QVERIFY(held.HasReader());
    QVERIFY(setup.player->IsLoading());
    QCOMPARE(setup.player->GetAudioFileName(), copy);
    QCOMPARE(setup.player->GetOriginalAudioFilePath(), setup.originals.Path(u"former.wav"_s));
    QCOMPARE(setup.player->GetSelectedSnippet(), std::pair(0.25, 0.5));
    QVERIFY(setup.Controls().btnLoadFile->isEnabled());
    // Its samples are still read, its selection written and its channels filtered.
    Q_EMIT setup.View().GetSamples(0.0, 1.0, 1);
    QVERIFY(setup.HasRead());
    QCOMPARE(setup.File().GetSamples().size(), 8000);
    QSignalSpy written(setup.player.get(), &AudioPlayerWidget::CreateSnippetFinished);
    setup.player->CreateSnippet(setup.originals.Path(u"snippet.wav"_s));
    QTRY_COMPARE_WITH_TIMEOUT(written.size(), 1, PlayerSetup::patience);
    setup.player->SetSelectedChannel(WavFile::ChannelLeft);
    QVERIFY(setup.IsIdle());
    QVERIFY(setup.Audio().source().toLocalFile().endsWith(u"former_Left.wav"));
    setup.Controls().btnPlayPause->click();
    QTRY_VERIFY_WITH_TIMEOUT(setup.Audio().position() > 0, PlayerSetup::patience);
    QVERIFY(setup.player->IsLoading());

    held.Release();
    QVERIFY(setup.HasEnded());
    QCOMPARE(setup.player->GetAudioDuration(), 0.5);
    QCOMPARE(setup.player->GetSelectedSnippet(), std::pair(0.0, 0.0));
    QVERIFY(!setup.Controls().btnPlayPause->isChecked());
    QCOMPARE(setup.player->errors, Errors());
}

void PlayerLoadFileTest::aFailureTellsItsReasonAndKeepsTheFormerFile_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<Problem>("problem");
    QTest::addColumn<WavFile::AudioEngineReturnValue>("code");
    QTest::addColumn<QString>("sentence");
    const auto add = [](const char* row, const QByteArray& bytes, Problem problem,
                        WavFile::AudioEngineReturnValue code, const QString& sentence) {
        QTest::newRow(row) << QString::fromLatin1(row) << bytes << problem << code << sentence;
    };
    const QByteArray text(5000, 'a');
    add("missing.wav", {}, Problem::NotFound, WavFile::ErrorOpenFile, u"There is no file “%1”."_s);
    add("folder", {}, Problem::NotAFile, WavFile::ErrorOpenFile, u"“%1” is not a file."_s);
    add("pipe.wav", {}, Problem::NotAFile, WavFile::ErrorOpenFile, u"“%1” is not a file."_s);
    add("text.wav", text, Problem::NoAudio, WavFile::ErrorInvalidFormat,
        u"“%1” holds no audio that can be decoded."_s);
    add("text.mp3", text, Problem::NoAudio, WavFile::ErrorInvalidFormat,
        u"“%1” holds no audio that can be decoded."_s);
    add("empty.wav", "", Problem::NoAudio, WavFile::ErrorInvalidFormat,
        u"“%1” holds no audio that can be decoded."_s);
}

void PlayerLoadFileTest::aFailureTellsItsReasonAndKeepsTheFormerFile()
{
    QFETCH(const QString, name);
    QFETCH(const QByteArray, bytes);
    QFETCH(const Problem, problem);
    QFETCH(const WavFile::AudioEngineReturnValue, code);
    QFETCH(const QString, sentence);
    LoadSetup setup;
    QVERIFY(setup.LoadCompletely(setup.originals.Write(u"former.wav"_s, stereo.File())));
    const QString copy = setup.player->GetAudioFileName();
    setup.player->SetSelectedSnippet({0.25, 0.5});
    const QString path = setup.originals.Path(name);
    if (name == u"folder") {
        QVERIFY(QDir().mkdir(path));
    } else if (name == u"pipe.wav") {
        QCOMPARE(::mkfifo(qPrintable(path), 0600), 0);
    } else if (!bytes.isNull()) {
        QCOMPARE(setup.originals.Write(name, bytes), path);
    }
    setup.log.clear();
    setup.player->LoadFile(path);
    QVERIFY(setup.HasEnded());
    QCOMPARE(setup.log, QStringList({u"started "_s + name, u"failed "_s + name}));
    QCOMPARE(setup.problem, problem);
    QCOMPARE(setup.sentence, sentence.arg(path));
    QCOMPARE(setup.player->errors, Errors{code});
    QCOMPARE(setup.errorsAtFailure, 1);
    QCOMPARE(setup.player->GetAudioFileName(), copy);
    QCOMPARE(setup.player->GetOriginalAudioFilePath(), setup.originals.Path(u"former.wav"_s));
    QCOMPARE(setup.player->GetSelectedSnippet(), std::pair(0.25, 0.5));
    QTRY_COMPARE(setup.OtherFiles(copy), QStringList());
}

void PlayerLoadFileTest::refusesAFileWithoutPermission()
{
    LoadSetup setup;
    for (const QString& name : {u"tone.wav"_s, u"tone.mp3"_s}) {
        const QString path = setup.originals.Path(name);
        QVERIFY(QFile::copy(m_files.Path(name), path));
        QVERIFY(QFile::setPermissions(path, QFile::Permissions()));
        for (const QString& each : {path, setup.originals.Path(QString()), setup.copies.Path(QString())}) {
            QVERIFY(OrdinaryUser::TakesOver(each));
        }
        const OrdinaryUser user;
        if (!user.IsOrdinary()) {
            QSKIP("No permission stops this user.");
        }
        setup.player->LoadFile(path);
        QVERIFY(setup.HasEnded());
        QCOMPARE(setup.problem, Problem::NoPermission);
        QCOMPARE(setup.sentence, u"You have no permission to read “%1”."_s.arg(path));
    }
}

void PlayerLoadFileTest::refusesAReadOnlyWorkingDirectory()
{
    LoadSetup setup;
    const QString folder = setup.copies.Path(QString());
    const QString path = setup.originals.Write(u"take.wav"_s, stereo.File());
    for (const QString& each : {path, setup.originals.Path(QString()), folder}) {
        QVERIFY(OrdinaryUser::TakesOver(each));
    }
    const OrdinaryUser user;
    if (!user.IsOrdinary()) {
        QSKIP("No permission stops this user.");
    }
    QVERIFY(QFile::setPermissions(folder, QFile::ReadOwner | QFile::ExeOwner));
    setup.player->LoadFile(path);
    QVERIFY(setup.HasEnded());
    QCOMPARE(setup.problem, Problem::CannotBeCreated);
    // What is wrong with the file itself comes first.
    setup.player->LoadFile(setup.originals.Path(u"missing.wav"_s));
    QVERIFY(setup.HasEnded());
    QCOMPARE(setup.problem, Problem::NotFound);
    QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

void PlayerLoadFileTest::refusesAMissingWorkingDirectory()
{
    LoadSetup setup;
    setup.player->SetWritableDirectoryPath(setup.copies.Path(u"nowhere"_s));
    const QString path = m_files.Path(u"tone.wav"_s);
    setup.player->LoadFile(path);
    QVERIFY(setup.HasEnded());
    QCOMPARE(setup.problem, Problem::CannotBeCreated);
    QCOMPARE(setup.sentence, u"The audio of “%1” may not be written to that folder."_s.arg(path));
    QCOMPARE(setup.player->errors, Errors{WavFile::ErrorOpenFile});
    QCOMPARE(setup.OtherFiles(), QStringList());
}

void PlayerLoadFileTest::refusesAFullDisk_data()
{
    QTest::addColumn<QString>("name");
    for (const char* name : {"tone.wav", "tone.flac"}) {
        QTest::newRow(name) << QString::fromLatin1(name);
    }
}

void PlayerLoadFileTest::refusesAFullDisk()
{
    QFETCH(const QString, name);
    LoadSetup setup;
    {
        const FileSizeLimit limit(50000);
        setup.player->LoadFile(m_files.Path(name));
        QVERIFY(setup.HasEnded());
    }
    QCOMPARE(setup.problem, Problem::CannotBeWritten);
    QCOMPARE(setup.player->errors, Errors{WavFile::ErrorWriteHeader});
    QTRY_COMPARE(setup.OtherFiles(), QStringList());
    setup.player->errors.clear();
    QVERIFY(setup.LoadCompletely(m_files.Path(name)));
}

void PlayerLoadFileTest::cancelsAtEveryMoment_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<bool>("isInTheMidst");
    QTest::addRow("before it begins to copy") << u"long.wav"_s << false;
    QTest::addRow("before it begins to import") << u"long.flac"_s << false;
    QTest::addRow("while it copies") << u"long.wav"_s << true;
    QTest::addRow("while it imports") << u"long.flac"_s << true;
}

void PlayerLoadFileTest::cancelsAtEveryMoment()
{
    QFETCH(const QString, source);
    QFETCH(const bool, isInTheMidst);
    LoadSetup setup;
    QVERIFY(setup.LoadCompletely(m_files.Path(u"tone.wav"_s)));
    const QString copy = setup.player->GetAudioFileName();
    setup.log.clear();
    setup.player->LoadFile(m_files.Path(source));
    QVERIFY(!isInTheMidst || setup.HasProgressed());
    setup.player->CancelLoad();
    QVERIFY(!setup.player->IsLoading());
    const QStringList told{u"started "_s + source, u"cancelled "_s + source};
    QCOMPARE(setup.log, told);
    QTRY_COMPARE_WITH_TIMEOUT(setup.OtherFiles(copy), QStringList(), PlayerSetup::patience);
    QCoreApplication::processEvents();
    QCOMPARE(setup.log, told);
    QCOMPARE(setup.player->GetAudioFileName(), copy);
    QCOMPARE(setup.player->errors, Errors());
}

void PlayerLoadFileTest::cancellingNothingTellsNothing()
{
    LoadSetup setup;
    setup.player->CancelLoad();
    QCOMPARE(setup.log, QStringList());
    QVERIFY(setup.LoadCompletely(m_files.Path(u"tone.wav"_s)));
    setup.player->CancelLoad();
    QCOMPARE(setup.log.last(), u"finished tone.wav"_s);
    QVERIFY(setup.File().isOpen());
}

void PlayerLoadFileTest::aNewLoadOvertakesTheFormer()
{
    LoadSetup setup;
    const QString stuck = setup.originals.Write(u"stuck.wav"_s, stereo.File());
    const HeldFile held(stuck);
    if (!held.IsHeld()) {
        QSKIP("This file system lets every reader in.");
    }
    setup.player->LoadFile(stuck);
    QVERIFY(held.HasReader());
    setup.player->LoadFile(m_files.Path(u"tone.flac"_s));
    QVERIFY(setup.HasEnded());
    const QStringList told{u"started stuck.wav"_s, u"cancelled stuck.wav"_s, u"started tone.flac"_s,
                           u"changed tone.flac"_s, u"finished tone.flac"_s};
    QCOMPARE(setup.log, told);
    held.Release();
    QTRY_COMPARE_WITH_TIMEOUT(setup.OtherFiles(setup.player->GetAudioFileName()), QStringList(),
                              PlayerSetup::patience);
    QCoreApplication::processEvents();
    QCOMPARE(setup.log, told);
}

void PlayerLoadFileTest::theSameFileOvertakesItself()
{
    LoadSetup setup;
    const QString path = m_files.Path(u"tone.flac"_s);
    setup.player->LoadFile(path);
    setup.player->LoadFile(path);
    setup.player->LoadFile(path);
    QVERIFY(setup.HasEnded());
    const QString s = u"started tone.flac"_s;
    const QString c = u"cancelled tone.flac"_s;
    QCOMPARE(setup.log, QStringList({s, c, s, c, s, u"changed tone.flac"_s, u"finished tone.flac"_s}));
    QTRY_COMPARE_WITH_TIMEOUT(setup.OtherFiles(setup.player->GetAudioFileName()), QStringList(),
                              PlayerSetup::patience);
}

void PlayerLoadFileTest::othersEndALoad_data()
{
    QTest::addColumn<QString>("other");
    for (const char* other : {"SetAudioFile", "unloading", "Reset", "Close"}) {
        QTest::newRow(other) << QString::fromLatin1(other);
    }
}

void PlayerLoadFileTest::othersEndALoad()
{
    QFETCH(const QString, other);
    LoadSetup setup;
    QVERIFY(setup.LoadCompletely(setup.originals.Write(u"former.wav"_s, stereo.File())));
    setup.log.clear();
    setup.player->LoadFile(m_files.Path(u"long.flac"_s));
    QVERIFY(setup.HasProgressed());
    if (other == u"SetAudioFile") {
        setup.player->SetAudioFile(m_files.Path(u"tone.wav"_s));
    } else if (other == u"unloading") {
        setup.player->SetAudioFile({});
    } else if (other == u"Reset") {
        setup.player->Reset();
    } else {
        setup.player->Close();
    }
    QVERIFY(!setup.player->IsLoading());
    const bool isLoaded = other == u"SetAudioFile";
    QStringList told{u"started long.flac"_s, u"cancelled long.flac"_s};
    told += isLoaded ? QStringList(u"changed tone.wav"_s) : QStringList();
    QCOMPARE(setup.log, told);
    QCOMPARE(setup.player->GetAudioFileName(), isLoaded ? setup.copies.Path(u"tone.wav"_s) : QString());
    const auto hasImports = [&] { return !setup.OtherFiles().filter(u"long.flac"_s).isEmpty(); };
    QTRY_VERIFY_WITH_TIMEOUT(!hasImports(), PlayerSetup::patience);
    QCoreApplication::processEvents();
    QCOMPARE(setup.log, told);
    QCOMPARE(setup.player->errors, Errors());
}

void PlayerLoadFileTest::aLoadOvertakesSetAudioFile()
{
    LoadSetup setup;
    // In the event loop of the decoding.
    QTimer::singleShot(0, this, [&] { setup.player->LoadFile(m_files.Path(u"tone.wav"_s)); });
    setup.player->SetAudioFile(m_files.Path(u"tone.mp3"_s));
    QVERIFY(setup.HasEnded());
    QCOMPARE(setup.log, QStringList({u"started tone.wav"_s, u"changed tone.wav"_s, u"finished tone.wav"_s}));
    QCOMPARE(setup.player->GetOriginalAudioFilePath(), m_files.Path(u"tone.wav"_s));
}

void PlayerLoadFileTest::isDestroyedWithoutWaiting_data()
{
    QTest::addColumn<QString>("source");
    QTest::addRow("its file cannot be read") << QString();
    QTest::addRow("copying") << u"long.wav"_s;
    QTest::addRow("importing") << u"long.flac"_s;
}

void PlayerLoadFileTest::isDestroyedWithoutWaiting()
{
    QFETCH(const QString, source);
    LoadSetup setup;
    std::optional<HeldFile> held;
    if (source.isEmpty()) {
        const QString stuck = setup.originals.Write(u"stuck.wav"_s, stereo.File());
        held.emplace(stuck);
        if (!held->IsHeld()) {
            QSKIP("This file system lets every reader in.");
        }
        setup.player->LoadFile(stuck);
        QVERIFY(held->HasReader());
    } else {
        setup.player->LoadFile(m_files.Path(source));
        QVERIFY(setup.HasProgressed());
    }
    const QStringList told = setup.log;
    // Would wait for ever if it waited for the reader.
    setup.player.reset();
    held.reset();
    QTRY_COMPARE_WITH_TIMEOUT(setup.OtherFiles(), QStringList(), PlayerSetup::patience);
    QCOMPARE(setup.log, told);
}

/** An import that went on unseen would give its file a name in the end, and then have it removed. */
void PlayerLoadFileTest::destroyingItCancelsTheImport()
{
    LoadSetup setup;
    setup.player->LoadFile(m_files.Path(u"long.flac"_s));
    QVERIFY(setup.HasProgressed());
    const QStringList folders = QDir(setup.copies.Path({})).entryList({u".loaded-*"_s}, QDir::Dirs | QDir::Hidden);
    QCOMPARE(folders.size(), 1);
    const NameWatch names(setup.copies.Path(folders.first()));
    setup.player.reset();
    QTRY_COMPARE_WITH_TIMEOUT(setup.OtherFiles(), QStringList(), PlayerSetup::patience);
    QVERIFY(!names.WasGiven("long.flac"));
}

void PlayerLoadFileTest::mayBeDestroyedByEverySignal_data()
{
    QTest::addColumn<QString>("signal");
    for (const char* signal : {"LoadStarted", "ProgressChanged", "AudioFileChanged", "LoadFinished", "LoadFailed",
                               "LoadCancelled by CancelLoad", "LoadCancelled by LoadFile",
                               "LoadCancelled by SetAudioFile", "LoadCancelled by Reset"}) {
        QTest::newRow(signal) << QString::fromLatin1(signal);
    }
}

void PlayerLoadFileTest::mayBeDestroyedByEverySignal()
{
    QFETCH(const QString, signal);
    LoadSetup setup;
    const QPointer<AudioPlayerWidget> player = setup.player.get();
    const auto destroy = [&] { setup.player.reset(); };
    const QString path = m_files.Path(signal == u"LoadFailed" ? u"missing.wav"_s : u"tone.flac"_s);
    if (signal == u"LoadStarted") {
        QObject::connect(player, &AudioPlayerWidget::LoadStarted, this, destroy);
    } else if (signal == u"ProgressChanged") {
        QObject::connect(player, &AudioPlayerWidget::ProgressChanged, this, destroy);
    } else if (signal == u"AudioFileChanged") {
        QObject::connect(player, &AudioPlayerWidget::AudioFileChanged, this, destroy);
    } else if (signal == u"LoadFinished") {
        QObject::connect(player, &AudioPlayerWidget::LoadFinished, this, destroy);
    } else if (signal == u"LoadFailed") {
        QObject::connect(player, &AudioPlayerWidget::LoadFailed, this, destroy);
    } else {
        QObject::connect(player, &AudioPlayerWidget::LoadCancelled, this, destroy);
    }
    player->LoadFile(path);
    if (signal == u"LoadCancelled by CancelLoad") {
        player->CancelLoad();
    } else if (signal == u"LoadCancelled by LoadFile") {
        player->LoadFile(m_files.Path(u"tone.wav"_s));
    } else if (signal == u"LoadCancelled by SetAudioFile") {
        player->SetAudioFile(m_files.Path(u"tone.wav"_s));
    } else if (signal == u"LoadCancelled by Reset") {
        player->Reset();
    }
    QTRY_VERIFY_WITH_TIMEOUT(!player, PlayerSetup::patience);
    QTRY_COMPARE_WITH_TIMEOUT(setup.OtherFiles(), QStringList(), PlayerSetup::patience);
}

void PlayerLoadFileTest::theEndOfABusyTimeMayEndALoad_data()
{
    QTest::addColumn<QString>("call");
    for (const char* call : {"CancelLoad", "Close", "Reset", "LoadFile"}) {
        QTest::newRow(call) << QString::fromLatin1(call);
    }
}

/** The former file is closed when the next one is ready, which ends the writing of a snippet of it. */
void PlayerLoadFileTest::theEndOfABusyTimeMayEndALoad()
{
    QFETCH(const QString, call);
    LoadSetup setup;
    AudioPlayerWidget& player = *setup.player;
    QVERIFY(setup.LoadCompletely(m_files.Path(u"long.wav"_s)));
    player.SetSelectedSnippet({0.0, player.GetAudioDuration()});
    const TemporaryFiles outputs;
    player.CreateSnippet(outputs.Path(u"snippet.wav"_s));
    QVERIFY(player.IsBusy());
    setup.log.clear();
    QObject::connect(&player, &AudioPlayerWidget::BusyChanged, this, [&] {
        if (call == u"CancelLoad") {
            player.CancelLoad();
        } else if (call == u"Close") {
            player.Close();
        } else if (call == u"Reset") {
            player.Reset();
        } else {
            player.LoadFile(m_files.Path(u"tone.wav"_s));
        }
    });
    player.LoadFile(m_files.Path(u"tone.flac"_s));
    QTRY_VERIFY_WITH_TIMEOUT(setup.log.contains(u"cancelled tone.flac"_s), PlayerSetup::patience);
    QVERIFY(setup.HasEnded());
    QVERIFY(!setup.log.contains(u"changed tone.flac"_s));
    QVERIFY(!setup.log.contains(u"finished tone.flac"_s));
    QCOMPARE(setup.log.contains(u"finished tone.wav"_s), call == u"LoadFile");
}

void PlayerLoadFileTest::mayLoadAnotherFileUponEverySignal_data()
{
    QTest::addColumn<QString>("signal");
    QTest::addColumn<QStringList>("told");
    const QStringList other{u"started tone.wav"_s, u"changed tone.wav"_s, u"finished tone.wav"_s};
    QTest::addRow("LoadStarted") << u"LoadStarted"_s
                                 << QStringList({u"started tone.flac"_s, u"cancelled tone.flac"_s}) + other;
    QTest::addRow("ProgressChanged") << u"ProgressChanged"_s
                                     << QStringList({u"started tone.flac"_s, u"cancelled tone.flac"_s}) + other;
    QTest::addRow("AudioFileChanged") << u"AudioFileChanged"_s
                                      << QStringList({u"started tone.flac"_s, u"changed tone.flac"_s, other[0],
                                                      u"finished tone.flac"_s, other[1], other[2]});
    QTest::addRow("LoadFinished") << u"LoadFinished"_s
                                  << QStringList({u"started tone.flac"_s, u"changed tone.flac"_s,
                                                  u"finished tone.flac"_s}) +
                                         other;
    QTest::addRow("LoadFailed") << u"LoadFailed"_s
                                << QStringList({u"started missing.wav"_s, u"failed missing.wav"_s}) + other;
    QTest::addRow("LoadCancelled") << u"LoadCancelled"_s
                                   << QStringList({u"started tone.flac"_s, u"cancelled tone.flac"_s}) + other;
}

void PlayerLoadFileTest::mayLoadAnotherFileUponEverySignal()
{
    QFETCH(const QString, signal);
    QFETCH(const QStringList, told);
    LoadSetup setup;
    AudioPlayerWidget* player = setup.player.get();
    bool isDone = false;
    const auto loadOther = [&] {
        if (!std::exchange(isDone, true)) {
            player->LoadFile(m_files.Path(u"tone.wav"_s));
        }
    };
    const QString path = m_files.Path(signal == u"LoadFailed" ? u"missing.wav"_s : u"tone.flac"_s);
    if (signal == u"LoadStarted") {
        QObject::connect(player, &AudioPlayerWidget::LoadStarted, player, loadOther);
    } else if (signal == u"ProgressChanged") {
        QObject::connect(player, &AudioPlayerWidget::ProgressChanged, player, loadOther);
    } else if (signal == u"AudioFileChanged") {
        QObject::connect(player, &AudioPlayerWidget::AudioFileChanged, player, loadOther);
    } else if (signal == u"LoadFinished") {
        QObject::connect(player, &AudioPlayerWidget::LoadFinished, player, loadOther);
    } else if (signal == u"LoadFailed") {
        QObject::connect(player, &AudioPlayerWidget::LoadFailed, player, loadOther);
    } else {
        QObject::connect(player, &AudioPlayerWidget::LoadCancelled, player, loadOther);
    }
    player->LoadFile(path);
    if (signal == u"LoadCancelled") {
        // The one that the slot asks for is the latest.
        player->LoadFile(m_files.Path(u"tone.mp3"_s));
    }
    QTRY_COMPARE_WITH_TIMEOUT(setup.log, told, PlayerSetup::patience);
    QVERIFY(!player->IsLoading());
    QCOMPARE(player->GetOriginalAudioFilePath(), m_files.Path(u"tone.wav"_s));
}

void PlayerLoadFileTest::anUnchangedFileStays()
{
    LoadSetup setup;
    const QString path = m_files.Path(u"tone.flac"_s);
    QVERIFY(setup.LoadCompletely(path));
    const QString copy = setup.player->GetAudioFileName();
    setup.player->SetSelectedSnippet({0.25, 0.5});
    setup.log.clear();
    QVERIFY(setup.LoadCompletely(path));
    QCOMPARE(setup.log, QStringList({u"started tone.flac"_s, u"finished tone.flac"_s}));
    QCOMPARE(setup.player->GetAudioFileName(), copy);
    QCOMPARE(setup.player->GetSelectedSnippet(), std::pair(0.25, 0.5));
}

void PlayerLoadFileTest::anUnchangedFileIsOpenedAgainAfterClosing()
{
    LoadSetup setup;
    const QString path = m_files.Path(u"tone.flac"_s);
    QVERIFY(setup.LoadCompletely(path));
    const QString copy = setup.player->GetAudioFileName();
    setup.player->Reset();
    setup.log.clear();
    QVERIFY(setup.LoadCompletely(path));
    QCOMPARE(setup.log, QStringList({u"started tone.flac"_s, u"changed tone.flac"_s, u"finished tone.flac"_s}));
    QCOMPARE(setup.player->GetAudioFileName(), copy);
}

void PlayerLoadFileTest::aChangedFileIsReadAgain_data()
{
    QTest::addColumn<QString>("change");
    QTest::addRow("another size") << u"size"_s;
    QTest::addRow("another time") << u"time"_s;
    QTest::addRow("another file behind the link") << u"link"_s;
}

void PlayerLoadFileTest::aChangedFileIsReadAgain()
{
    QFETCH(const QString, change);
    LoadSetup setup;
    const QDateTime then = QDateTime::fromSecsSinceEpoch(1700000000);
    const auto write = [&](const QString& name, const TestAudio& audio, const QDateTime& time) {
        SetTime(setup.originals.Write(name, audio.File()), time);
    };
    TestAudio other = stereo;
    other.rate = 16000;
    const QString path = setup.originals.Path(u"take.wav"_s);
    if (change == u"link") {
        write(u"one.wav"_s, stereo, then);
        write(u"two.wav"_s, other, then);
        QVERIFY(QFile::link(setup.originals.Path(u"one.wav"_s), path));
    } else {
        write(u"take.wav"_s, stereo, then);
    }
    QVERIFY(setup.LoadCompletely(path));
    QCOMPARE(setup.player->GetAudioFileFormat().sampleRate(), 8000);
    if (change == u"size") {
        other.frames = 100;
        write(u"take.wav"_s, other, then);
    } else if (change == u"time") {
        write(u"take.wav"_s, other, then.addSecs(1));
    } else {
        QVERIFY(QFile::remove(path));
        QVERIFY(QFile::link(setup.originals.Path(u"two.wav"_s), path));
    }
    QVERIFY(setup.LoadCompletely(path));
    QCOMPARE(setup.player->GetAudioFileFormat().sampleRate(), 16000);
    QCOMPARE(TemporaryFiles::Read(setup.player->GetAudioFileName()), TemporaryFiles::Read(path));
}

void PlayerLoadFileTest::tellsFilesOfTheSameNameApart()
{
    LoadSetup setup;
    const TemporaryFiles others;
    const QString one = setup.originals.Write(u"take.wav"_s, stereo.File());
    const QString two = others.Write(u"take.wav"_s, mono.File());
    SetTime(two, QFileInfo(one).lastModified());
    QVERIFY(setup.LoadCompletely(one));
    QCOMPARE(setup.player->GetAudioDuration(), 1.0);
    QVERIFY(setup.LoadCompletely(two));
    QCOMPARE(setup.player->GetAudioDuration(), 0.5);
    QVERIFY(setup.LoadCompletely(one));
    QCOMPARE(setup.player->GetAudioDuration(), 1.0);
}

void PlayerLoadFileTest::channelFilesBelongToTheirFile()
{
    LoadSetup setup;
    const TemporaryFiles others;
    TestAudio shorter = stereo;
    shorter.frames = 2000;
    QVERIFY(setup.LoadCompletely(setup.originals.Write(u"take.wav"_s, stereo.File())));
    setup.player->SetSelectedChannel(WavFile::ChannelLeft);
    QVERIFY(setup.IsIdle());
    QVERIFY(setup.LoadCompletely(others.Write(u"take.wav"_s, shorter.File())));
    setup.player->SetSelectedChannel(WavFile::ChannelLeft);
    QVERIFY(setup.IsIdle());
    QCOMPARE(TemporaryFiles::Read(setup.Audio().source().toLocalFile()),
             shorter.Exported(shorter.ExportedData(0, 2000, WavFile::ChannelLeft), 4000));
}

void PlayerLoadFileTest::removesWhatItMade()
{
    LoadSetup setup;
    QVERIFY(setup.LoadCompletely(setup.originals.Write(u"take.wav"_s, stereo.File())));
    setup.player->SetSelectedChannel(WavFile::ChannelLeft);
    QVERIFY(setup.IsIdle());
    QVERIFY(setup.LoadCompletely(m_files.Path(u"tone.flac"_s)));
    QTRY_COMPARE_WITH_TIMEOUT(setup.OtherFiles(setup.player->GetAudioFileName()), QStringList(),
                              PlayerSetup::patience);
    setup.player.reset();
    QTRY_COMPARE_WITH_TIMEOUT(setup.OtherFiles(), QStringList(), PlayerSetup::patience);
}

void PlayerLoadFileTest::readsAWriteProtectedFile()
{
    LoadSetup setup;
    for (const QString& name : {u"tone.wav"_s, u"tone.mp3"_s}) {
        const QString path = setup.originals.Path(name);
        QVERIFY(QFile::copy(m_files.Path(name), path));
        QVERIFY(QFile::setPermissions(path, QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther));
        for (const QString& each : {path, setup.originals.Path(QString()), setup.copies.Path(QString())}) {
            QVERIFY(OrdinaryUser::TakesOver(each));
        }
        const OrdinaryUser user;
        if (!user.IsOrdinary()) {
            QSKIP("No permission stops this user.");
        }
        QVERIFY(setup.LoadCompletely(path));
        QVERIFY(!QFile::permissions(path).testFlag(QFile::WriteOwner));
        setup.player->SetSelectedChannel(WavFile::ChannelRight);
        QVERIFY(setup.IsIdle());
        QCOMPARE(setup.player->errors, Errors());
    }
}

void PlayerLoadFileTest::touchesNothingInTheWorkingDirectory_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<bool>("isInside");
    QTest::addRow("a WAV file in it") << u"tone.wav"_s << true;
    QTest::addRow("a compressed file in it") << u"tone.mp3"_s << true;
    QTest::addRow("a WAV file of the name of another one") << u"tone.wav"_s << false;
    QTest::addRow("a compressed file of the name of another one") << u"tone.mp3"_s << false;
}

void PlayerLoadFileTest::touchesNothingInTheWorkingDirectory()
{
    QFETCH(const QString, source);
    QFETCH(const bool, isInside);
    LoadSetup setup;
    const QString there = setup.copies.Path(source);
    const QString precious = setup.originals.Path(u"precious"_s);
    if (isInside) {
        QVERIFY(QFile::copy(m_files.Path(source), there));
    } else {
        // A link that a copy under its name would follow.
        QVERIFY(!setup.originals.Write(u"precious"_s, "precious").isEmpty() && QFile::link(precious, there));
    }
    QVERIFY(setup.LoadCompletely(isInside ? there : m_files.Path(source)));
    QVERIFY(qAbs(setup.player->GetAudioDuration() - 1.0) < 0.1);
    setup.player->SetSelectedChannel(WavFile::ChannelLeft);
    QVERIFY(setup.IsIdle());
    setup.player.reset();
    QTRY_COMPARE_WITH_TIMEOUT(setup.OtherFiles(), QStringList(there), PlayerSetup::patience);
    QCOMPARE(TemporaryFiles::Read(there), isInside ? TemporaryFiles::Read(m_files.Path(source)) : "precious");
    QCOMPARE(QFileInfo(there).isSymLink(), !isInside);
}

void PlayerLoadFileTest::loadsItsOwnWorkingCopy()
{
    LoadSetup setup;
    QVERIFY(setup.LoadCompletely(m_files.Path(u"tone.wav"_s)));
    const QString copy = setup.player->GetAudioFileName();
    QVERIFY(setup.LoadCompletely(copy));
    QVERIFY(setup.player->GetAudioFileName() != copy);
    QCOMPARE(TemporaryFiles::Read(setup.player->GetAudioFileName()), m_tone);
}

void PlayerLoadFileTest::setAudioFileStaysAsItWas()
{
    LoadSetup setup;
    QVERIFY(setup.LoadCompletely(m_files.Path(u"tone.flac"_s)));
    QVERIFY(setup.File().GetLargeFiles());
    QVERIFY(setup.Load(m_files.Path(u"tone.wav"_s)));
    QVERIFY(!setup.File().GetLargeFiles());
    QCOMPARE(setup.player->GetAudioFileName(), setup.copies.Path(u"tone.wav"_s));
    QTRY_COMPARE_WITH_TIMEOUT(setup.OtherFiles(), QStringList(setup.copies.Path(u"tone.wav"_s)),
                              PlayerSetup::patience);
    // A copy that is there already is not LoadFile()'s to use.
    setup.player->Reset();
    QVERIFY(QFile::resize(setup.copies.Path(u"tone.wav"_s), 100));
    QVERIFY(setup.LoadCompletely(m_files.Path(u"tone.wav"_s)));
    QCOMPARE(setup.player->GetAudioDuration(), 1.0);
    QCOMPARE(QFileInfo(setup.copies.Path(u"tone.wav"_s)).size(), 100);
}

int main(int argc, char* argv[])
{
    const SoundServer server({QStringLiteral("one")});
    QApplication application(argc, argv);
    PlayerLoadFileTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_playerloadfile.moc"
