#include "tests/playback/AudioPlayerTestAccess.h"
#include "tests/support/SoundServer.h"
#include "tests/support/Tone.h"

#include <vantorAudioEngine/AudioPlayer.h>

#include <QtCore/QBuffer>
#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QMetaMethod>
#include <QtCore/QScopeGuard>
#include <QtCore/QTemporaryDir>
#include <QtCore/QUrl>
#include <QtMultimedia/QAudioOutput>
#include <QtMultimedia/QMediaDevices>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <limits>
#include <sys/stat.h>
#include <utility>

using Access = AudioPlayerTestAccess;
using Status = QMediaPlayer::MediaStatus;

namespace {

constexpr int patience = 30000;

/** Every change of the playback state, from here on. */
class StateLog
{
public:
    explicit StateLog(const QMediaPlayer& player) : m_spy(&player, &QMediaPlayer::playbackStateChanged) {}

    QList<QMediaPlayer::PlaybackState> States() const
    {
        QList<QMediaPlayer::PlaybackState> states;
        for (const QList<QVariant>& change : m_spy) {
            states << change.at(0).value<QMediaPlayer::PlaybackState>();
        }
        return states;
    }

private:
    QSignalSpy m_spy;
};

quintptr StackPointer()
{
    return reinterpret_cast<quintptr>(__builtin_frame_address(0));
}

} // namespace

/** What a player does with a file, a selection and a volume; how that sounds is tst_audio_player_sound's. */
class AudioPlayerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void registersTheTypesOfItsSignalsWhenTheProgramLoads();
    void hasTwoPrivateSlotsAndNothingElseInItsMetaObject();
    void startsWithoutDeviceLoopAndSelectionAndWithAnOutputOfItsOwn();

    void setAudioSelectsTheWholeFileAndDoesNotPlay();
    void setAudioKeepsTheLoopFlag();
    void followsWhatWasAskedForWhileLoading_data();
    void followsWhatWasAskedForWhileLoading();
    void forgetsWhatWasAskedForWithTheFormerFile();
    void setAudioReportsAMissingFileAndKeepsTheNewSelection();
    void setAudioReportsAPipeInsteadOfWaitingForItsOtherEnd();
    void setAudioReportsWhatIsNoFileAtOnce_data();
    void setAudioReportsWhatIsNoFileAtOnce();
    void theSelectionStaysWhenTheHostSetsAnotherSource();
    void setAudioReadsARewrittenFileAgain();
    void setAudioLoadsThePathThatItWasGiven();
    void aFileLoadedByASlotStays_data();
    void aFileLoadedByASlotStays();
    void loadsFilesWithOddNames_data();
    void loadsFilesWithOddNames();
    void letsGoOfItsOwnSourceFileWhenTheHostSetsAnotherSource();
    void survivesChangingOddlyNamedFilesWhilePlaying();

    void pauseResumeFollowsTheState();
    void pauseResumeFromStoppedPlaysFromTheSelectionStart();
    void setSelectionMovesThePositionAndKeepsTheState();
    void setSelectionAcceptsTimesThatNoPositionCanHold_data();
    void setSelectionAcceptsTimesThatNoPositionCanHold();
    void setSelectionAcceptsAStartBehindTheFile_data();
    void setSelectionAcceptsAStartBehindTheFile();
    void clearSelectionTakesTheDurationAndKeepsThePosition();
    void clearSelectionOfAnEmptyPlayerEndsAtZero();
    void loopPlaybackChangesNothingElse();

    void setVolumePassesPercentagesOn_data();
    void setVolumePassesPercentagesOn();
    void setVolumeLeavesAnOutputThatHoldsTheValueQuiet();
    void volumeIsTruncatedNotRounded();
    void setMutedForwardsToTheOutput();
    void playbackRateTakesWhatItCanPlay_data();
    void playbackRateTakesWhatItCanPlay();
    void playbackRateHoldsForEverySource();
    void leavesTheBaseClasssRateAlone();
    void playbackRateWaitsForAnOutput();
    void everyOutputOperationIsHarmlessWithoutAnOutput();

    void acceptsOnlyListedDevices();
    void takesTheFirstListedDeviceThatIsEqual();

    void playbackLoopDoesNothingUnlessPlaying();
    void playbackLoopRestartsAtTheSelectionEnd_data();
    void playbackLoopRestartsAtTheSelectionEnd();
    void anInvertedSelectionRestartsAtItsStart();
    void anEmptySelectionPausesAtTheFirstPosition();
    void ignoresEveryMediaStatusButTheEnd();
    void theEndOfTheMediaRestartsInOrder();
    void whatEndsAtOnceStaysPausedAtItsStart_data();
    void whatEndsAtOnceStaysPausedAtItsStart();
    void pausesAtTheSelectionStartBehindTheEndOfTheFile();
    void loopsOverTheEndOfTheFile();
    void stoppingAtTheEndOfTheFileStaysStopped();
    void aNewFileAtTheEndOfTheOldOneIsNotRestarted();
    void deletingThePlayerAtTheEndOfTheFileIsSafe();
    void manyRoundsOverTheFileNeedNoMoreStackThanTen();
    void aThousandRoundsOverTheSelectionNeedNoMoreStackThanTen();

private:
    QString File(const QString& name, double seconds);
    void Load(AudioPlayer& player, const QString& file);

    QTemporaryDir m_folder;
    QString m_long;
    QString m_empty;
    QString m_short;
};

QString AudioPlayerTest::File(const QString& name, double seconds)
{
    const QString path = m_folder.filePath(name);
    Tone tone;
    tone.seconds = seconds;
    return WriteToneFile(path, tone) ? path : QString();
}

/** Takes the file and waits until it is there, which is at once or a moment later. */
void AudioPlayerTest::Load(AudioPlayer& player, const QString& file)
{
    player.SetAudio(file, file == m_long ? 30.0 : 0.0);
    QTRY_COMPARE_WITH_TIMEOUT(player.mediaStatus(), QMediaPlayer::LoadedMedia, patience);
}

void AudioPlayerTest::initTestCase()
{
    QTRY_COMPARE_WITH_TIMEOUT(QMediaDevices::audioOutputs().size(), 2, patience);
    m_long = File(QStringLiteral("long.wav"), 30.0);
    m_empty = File(QStringLiteral("empty.wav"), 0.0);
    m_short = File(QStringLiteral("short.wav"), 0.3);
    QVERIFY(QFile::exists(m_long) && QFile::exists(m_short));
}

void AudioPlayerTest::registersTheTypesOfItsSignalsWhenTheProgramLoads()
{
    QVERIFY(QMetaType::fromName("QMediaPlayer::MediaStatus").isRegistered());
    QVERIFY(QMetaType::fromName("QMediaPlayer::PlaybackState").isRegistered());
    QVERIFY(QMetaType::fromName("QList<QAudioDevice>").isRegistered());
}

void AudioPlayerTest::hasTwoPrivateSlotsAndNothingElseInItsMetaObject()
{
    const QMetaObject& meta = AudioPlayer::staticMetaObject;
    QCOMPARE(meta.className(), "AudioPlayer");
    QCOMPARE(meta.superClass(), &QMediaPlayer::staticMetaObject);
    QCOMPARE(meta.propertyCount(), meta.propertyOffset());
    QCOMPARE(meta.methodCount() - meta.methodOffset(), 2);
    const QMetaMethod first = meta.method(meta.methodOffset());
    const QMetaMethod second = meta.method(meta.methodOffset() + 1);
    QCOMPARE(first.methodSignature(), QByteArray("PlaybackLoop(qlonglong)"));
    QCOMPARE(second.methodSignature(), QByteArray("OnMediaStatusChanged(QMediaPlayer::MediaStatus)"));
    for (const QMetaMethod& method : {first, second}) {
        QCOMPARE(method.methodType(), QMetaMethod::Slot);
        QCOMPARE(method.access(), QMetaMethod::Private);
    }
    QCOMPARE(second.parameterMetaType(0), QMetaType::fromType<QMediaPlayer::MediaStatus>());
}

void AudioPlayerTest::startsWithoutDeviceLoopAndSelectionAndWithAnOutputOfItsOwn()
{
    QObject parent;
    AudioPlayer player(&parent);
    QCOMPARE(player.parent(), &parent);
    QVERIFY(player.GetAudioOutputDevice().isNull());
    QVERIFY(!Access::IsLooping(player));
    QCOMPARE(Access::SelectionStart(player), 0.0);
    QCOMPARE(Access::SelectionEnd(player), 0.0);
    QVERIFY(player.audioOutput());
    QCOMPARE(player.audioOutput(), Access::Output(player));
    QCOMPARE(player.audioOutput()->parent(), &player);
    QCOMPARE(player.audioOutput()->device().id(), QMediaDevices::defaultAudioOutput().id());
    QCOMPARE(player.playbackState(), QMediaPlayer::StoppedState);
}

void AudioPlayerTest::setAudioSelectsTheWholeFileAndDoesNotPlay()
{
    AudioPlayer player;
    player.SetSelection(3.0, 4.0);
    const StateLog log(player);
    player.SetAudio(m_long, 29.5);
    QCOMPARE(player.source(), QUrl::fromLocalFile(m_long));
    QVERIFY(!player.sourceDevice());
    QCOMPARE(Access::SelectionStart(player), 0.0);
    QCOMPARE(Access::SelectionEnd(player), 29.5);
    QTRY_COMPARE_WITH_TIMEOUT(player.mediaStatus(), QMediaPlayer::LoadedMedia, patience);
    QCOMPARE(player.duration(), 30000);
    QCOMPARE(player.position(), 0);
    QCOMPARE(log.States(), {});
}

void AudioPlayerTest::setAudioKeepsTheLoopFlag()
{
    AudioPlayer player;
    player.LoopPlayback(true);
    player.SetAudio(m_long, 30.0);
    QVERIFY(Access::IsLooping(player));
}

void AudioPlayerTest::followsWhatWasAskedForWhileLoading_data()
{
    QTest::addColumn<QStringList>("requests");
    QTest::addColumn<double>("start");
    QTest::addColumn<double>("end");
    QTest::addColumn<qint64>("position");
    using L = QStringList;
    QTest::newRow("a selection") << L{QStringLiteral("select")} << 5.0 << 6.0 << qint64(5000);
    QTest::newRow("a position") << L{QStringLiteral("seek")} << 0.0 << 25.0 << qint64(20000);
    QTest::newRow("no selection") << L{QStringLiteral("select"), QStringLiteral("clear")} << 0.0 << 30.0
                                  << qint64(5000);
    QTest::newRow("a selection after none")
        << L{QStringLiteral("clear"), QStringLiteral("select")} << 5.0 << 6.0 << qint64(5000);
    QTest::newRow("a selection after a position")
        << L{QStringLiteral("seek"), QStringLiteral("select")} << 5.0 << 6.0 << qint64(5000);
    QTest::newRow("a stop after a position")
        << L{QStringLiteral("seek"), QStringLiteral("stop")} << 0.0 << 25.0 << qint64(0);
    QTest::newRow("a position after a selection")
        << L{QStringLiteral("select"), QStringLiteral("seek")} << 5.0 << 6.0 << qint64(20000);
}

void AudioPlayerTest::followsWhatWasAskedForWhileLoading()
{
    QFETCH(QStringList, requests);
    QFETCH(double, start);
    QFETCH(double, end);
    QFETCH(qint64, position);
    AudioPlayer player;
    player.SetAudio(m_long, 25.0);
    for (const QString& request : requests) {
        if (request == u"select") {
            player.SetSelection(5.0, 6.0);
        } else if (request == u"seek") {
            player.setPosition(20000);
        } else if (request == u"stop") {
            player.stop();
        } else {
            player.ClearSelection();
        }
    }
    QTRY_COMPARE_WITH_TIMEOUT(player.mediaStatus(), QMediaPlayer::LoadedMedia, patience);
    QCOMPARE(player.position(), position);
    QCOMPARE(Access::SelectionStart(player), start);
    QCOMPARE(Access::SelectionEnd(player), end);
}

void AudioPlayerTest::forgetsWhatWasAskedForWithTheFormerFile()
{
    AudioPlayer player;
    player.SetAudio(m_long, 30.0);
    player.SetSelection(5.0, 6.0);
    player.setPosition(7000);
    Load(player, m_long);
    QCOMPARE(player.position(), 0);
    QCOMPARE(Access::SelectionEnd(player), 30.0);
}

void AudioPlayerTest::setAudioReportsAMissingFileAndKeepsTheNewSelection()
{
    for (const QString& name : {QStringLiteral("none.wav"), QStringLiteral("fehlt-ä.wav")}) {
        AudioPlayer player;
        QSignalSpy errors(&player, &QMediaPlayer::errorOccurred);
        player.SetAudio(m_folder.filePath(name), 7.0);
        QTRY_COMPARE_WITH_TIMEOUT(errors.size(), 1, patience);
        QCOMPARE(player.source(), QUrl::fromLocalFile(m_folder.filePath(name)));
        QCOMPARE(Access::SelectionEnd(player), 7.0);
    }
}

void AudioPlayerTest::setAudioReportsAPipeInsteadOfWaitingForItsOtherEnd()
{
    for (const QString& name : {QStringLiteral("pipe.wav"), QStringLiteral("röhre.wav")}) {
        const QString path = m_folder.filePath(name);
        QCOMPARE(::mkfifo(QFile::encodeName(path).constData(), 0600), 0);
        AudioPlayer player;
        QSignalSpy errors(&player, &QMediaPlayer::errorOccurred);
        player.SetAudio(path, 7.0);
        QTRY_COMPARE_WITH_TIMEOUT(errors.size(), 1, patience);
        QCOMPARE(player.source(), QUrl::fromLocalFile(path));
    }
}

void AudioPlayerTest::setAudioReportsWhatIsNoFileAtOnce_data()
{
    QTest::addColumn<QString>("path");
    for (const char* path :
         {"/dev/zero", "/dev/full", "/dev/null", "/dev/random", "/dev/tty", "/proc", "/proc/kmsg",
          "/proc/self/mem", "/proc/self/status", "/proc/self/fd/0", "/proc/sys/kernel/hostname",
          "/sys/kernel/tracing/trace_pipe", "a folder", "empty.wav"}) {
        QTest::addRow("%s", path) << QString::fromLatin1(path);
    }
}

/** Some of these never come to an end, and some make whoever opens or reads them wait. */
void AudioPlayerTest::setAudioReportsWhatIsNoFileAtOnce()
{
    QFETCH(QString, path);
    if (path == QLatin1String("a folder")) {
        path = m_folder.path();
    } else if (path == QLatin1String("empty.wav")) {
        path = m_folder.filePath(QStringLiteral("nothing.wav"));
        QVERIFY(QFile(path).open(QIODevice::WriteOnly));
    }
    AudioPlayer player;
    QSignalSpy errors(&player, &QMediaPlayer::errorOccurred);
    player.SetAudio(path, 7.0);
    QTRY_COMPARE_WITH_TIMEOUT(errors.size(), 1, patience);
    QCOMPARE(player.source(), QUrl::fromLocalFile(path));
    QCOMPARE(Access::SelectionEnd(player), 7.0);
    player.play();
    QCOMPARE(player.position(), 0);
}

void AudioPlayerTest::theSelectionStaysWhenTheHostSetsAnotherSource()
{
    AudioPlayer player;
    player.SetAudio(File(QStringLiteral("first.wav"), 2.0), 2.0);
    player.SetSelection(0.5, 1.5);
    player.LoopPlayback(true);
    player.setSource(QUrl::fromLocalFile(File(QStringLiteral("second.wav"), 3.0)));
    QTRY_COMPARE_WITH_TIMEOUT(player.duration(), 3000, patience);
    QCOMPARE(Access::SelectionStart(player), 0.5);
    QCOMPARE(Access::SelectionEnd(player), 1.5);
    QVERIFY(Access::IsLooping(player));
}

void AudioPlayerTest::setAudioReadsARewrittenFileAgain()
{
    for (const QString& name : {QStringLiteral("again.wav"), QStringLiteral("nochmäl.wav")}) {
        AudioPlayer player;
        player.SetAudio(File(name, 2.0), 2.0);
        QTRY_COMPARE_WITH_TIMEOUT(player.duration(), 2000, patience);
        player.SetAudio(File(name, 5.0), 5.0);
        QTRY_COMPARE_WITH_TIMEOUT(player.duration(), 5000, patience);
        QCOMPARE(player.source(), QUrl::fromLocalFile(m_folder.filePath(name)));
    }
}

/** Whoever the path belongs to may change it, or go, upon a signal. */
void AudioPlayerTest::setAudioLoadsThePathThatItWasGiven()
{
    const QString first = File(QStringLiteral("first.wav"), 2.0);
    QString path = first;
    AudioPlayer player;
    player.SetAudio(path, 2.0);
    QTRY_COMPARE_WITH_TIMEOUT(player.duration(), 2000, patience);
    connect(&player, &QMediaPlayer::sourceChanged, this, [&] { path = File(QStringLiteral("second.wav"), 3.0); });
    player.SetAudio(path, 2.0);
    QVERIFY(path != first);
    QCOMPARE(player.source(), QUrl::fromLocalFile(first));
    player.disconnect(this);
}

void AudioPlayerTest::aFileLoadedByASlotStays_data()
{
    QTest::addColumn<bool>("again");
    QTest::addRow("upon another file") << false;
    QTest::addRow("upon the same file again") << true;
}

void AudioPlayerTest::aFileLoadedByASlotStays()
{
    QFETCH(bool, again);
    const QString first = File(QStringLiteral("first.wav"), 2.0);
    const QString second = File(QStringLiteral("second.wav"), 3.0);
    AudioPlayer player;
    if (again) {
        player.SetAudio(first, 2.0);
        QTRY_COMPARE_WITH_TIMEOUT(player.duration(), 2000, patience);
    }
    bool isNested = false;
    connect(&player, &QMediaPlayer::sourceChanged, this, [&] {
        if (!std::exchange(isNested, true)) {
            player.SetAudio(second, 3.0);
        }
    });
    player.SetAudio(first, 2.0);
    player.disconnect(this);
    QCOMPARE(player.source(), QUrl::fromLocalFile(second));
    QCOMPARE(Access::SelectionEnd(player), 3.0);
}

void AudioPlayerTest::loadsFilesWithOddNames_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("blanks") << QStringLiteral("two  blanks .wav");
    QTest::newRow("number sign") << QStringLiteral("a#b.wav");
    QTest::newRow("percent sign") << QStringLiteral("a%b.wav");
    QTest::newRow("percent escape") << QStringLiteral("a%41.wav");
    QTest::newRow("question mark") << QStringLiteral("what?.wav");
    QTest::newRow("colon") << QStringLiteral("a:b.wav");
    QTest::newRow("quotes and semicolon") << QStringLiteral("a';\"b.wav");
    QTest::newRow("umlauts") << QStringLiteral("äöüß.wav");
    QTest::newRow("CJK") << QStringLiteral("音楽 試聴.wav");
    QTest::newRow("beyond the basic plane") << QStringLiteral("🎵#%?.wav");
}

void AudioPlayerTest::loadsFilesWithOddNames()
{
    QFETCH(QString, name);
    const QString path = File(name, 2.0);
    AudioPlayer player;
    QSignalSpy errors(&player, &QMediaPlayer::errorOccurred);
    player.SetAudio(path, 2.0);
    QCOMPARE(player.source(), QUrl::fromLocalFile(path));
    QTRY_COMPARE_WITH_TIMEOUT(player.duration(), 2000, patience);
    player.PauseResume();
    QTRY_VERIFY_WITH_TIMEOUT(player.position() > 0, patience);
    QCOMPARE(errors.size(), 0);
}

void AudioPlayerTest::letsGoOfItsOwnSourceFileWhenTheHostSetsAnotherSource()
{
    AudioPlayer player;
    const QString pipe = m_folder.filePath(QStringLiteral("unlocked.wav"));
    QCOMPARE(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);

    player.SetAudio(pipe, 2.0);
    QVERIFY(Access::HoldsASourceFile(player));
    player.setSource(QUrl::fromLocalFile(m_long));
    QVERIFY(!Access::HoldsASourceFile(player));
    QTRY_COMPARE_WITH_TIMEOUT(player.duration(), 30000, patience);

    player.SetAudio(pipe, 2.0);
    QBuffer buffer;
    buffer.setData(ToneFileBytes({.seconds = 4.0}));
    QVERIFY(buffer.open(QIODevice::ReadOnly));
    player.setSourceDevice(&buffer, QUrl(QStringLiteral("memory.wav")));
    QVERIFY(!Access::HoldsASourceFile(player));
    QTRY_COMPARE_WITH_TIMEOUT(player.duration(), 4000, patience);
    player.setSource(QUrl());
}

void AudioPlayerTest::survivesChangingOddlyNamedFilesWhilePlaying()
{
    const QString first = File(QStringLiteral("öne.wav"), 20.0);
    const QString second = File(QStringLiteral("twö.wav"), 10.0);
    AudioPlayer player;
    for (int round = 0; round < 10; ++round) {
        player.SetAudio(round % 2 ? second : first, 10.0);
        player.play();
        QTRY_VERIFY_WITH_TIMEOUT(player.position() > 0, patience);
    }
}

void AudioPlayerTest::pauseResumeFollowsTheState()
{
    AudioPlayer player;
    Load(player, m_long);
    player.PauseResume();
    QCOMPARE(player.playbackState(), QMediaPlayer::PlayingState);
    player.PauseResume();
    QCOMPARE(player.playbackState(), QMediaPlayer::PausedState);
    player.PauseResume();
    QCOMPARE(player.playbackState(), QMediaPlayer::PlayingState);
}

void AudioPlayerTest::pauseResumeFromStoppedPlaysFromTheSelectionStart()
{
    AudioPlayer player;
    Load(player, m_long);
    player.SetSelection(12.5, 20.0);
    QCOMPARE(player.playbackState(), QMediaPlayer::StoppedState);
    QCOMPARE(player.position(), 12500);
    player.PauseResume();
    QSignalSpy positions(&player, &QMediaPlayer::positionChanged);
    QTRY_VERIFY_WITH_TIMEOUT(positions.size() >= 3, patience);
    QVERIFY(player.position() > 12500);
    QVERIFY(player.position() < 20000);
}

void AudioPlayerTest::setSelectionMovesThePositionAndKeepsTheState()
{
    AudioPlayer player;
    Load(player, m_long);
    player.play();
    QTRY_VERIFY_WITH_TIMEOUT(player.position() > 0, patience);
    const StateLog log(player);
    player.SetSelection(2.0019, 25.0);
    QCOMPARE(player.position(), 2001);
    player.pause();
    player.SetSelection(3.0, 25.0);
    QCOMPARE(player.position(), 3000);
    QCOMPARE(log.States(), {QMediaPlayer::PausedState});
    QCOMPARE(Access::SelectionStart(player), 3.0);
    QCOMPARE(Access::SelectionEnd(player), 25.0);
}

void AudioPlayerTest::setSelectionAcceptsTimesThatNoPositionCanHold_data()
{
    QTest::addColumn<double>("start");
    QTest::addColumn<double>("end");
    constexpr double infinity = std::numeric_limits<double>::infinity();
    QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN() << infinity;
    QTest::newRow("minus infinity") << -infinity << infinity;
    QTest::newRow("negative") << -5.0 << -1.0;
    QTest::newRow("largest negative") << std::numeric_limits<double>::lowest() << 0.0;
}

void AudioPlayerTest::setSelectionAcceptsAStartBehindTheFile_data()
{
    QTest::addColumn<double>("start");
    QTest::newRow("the end") << 30.0;
    QTest::newRow("behind the end") << 31.0;
    QTest::newRow("months") << 1e7;
    QTest::newRow("more microseconds than fit") << 1e15;
    QTest::newRow("the largest number") << std::numeric_limits<double>::max();
    QTest::newRow("infinity") << std::numeric_limits<double>::infinity();
}

void AudioPlayerTest::setSelectionAcceptsAStartBehindTheFile()
{
    QFETCH(double, start);
    for (const bool playing : {false, true}) {
        AudioPlayer player;
        Load(player, m_long);
        playing ? player.play() : player.pause();
        player.SetSelection(start, start);
        QCOMPARE(Access::SelectionStart(player), start);
        QCOMPARE(player.position(), 30000);
        QTRY_VERIFY_WITH_TIMEOUT(player.playbackState() != QMediaPlayer::PlayingState, patience);
        player.SetSelection(5.0, 20.0);
        QCOMPARE(player.position(), 5000);
        // The end that was just left may still be reported, and pauses once more.
        const auto playsOn = [&player] {
            if (player.playbackState() != QMediaPlayer::PlayingState) {
                player.play();
            }
            return player.position() > 5000;
        };
        QTRY_VERIFY_WITH_TIMEOUT(playsOn(), patience);
    }
}

void AudioPlayerTest::setSelectionAcceptsTimesThatNoPositionCanHold()
{
    QFETCH(double, start);
    QFETCH(double, end);
    AudioPlayer player;
    Load(player, m_long);
    player.SetSelection(5.0, 6.0);
    player.SetSelection(start, end);
    QCOMPARE(Access::SelectionStart(player), start);
    QCOMPARE(Access::SelectionEnd(player), end);
    QCOMPARE(player.position(), 0);
}

void AudioPlayerTest::clearSelectionTakesTheDurationAndKeepsThePosition()
{
    AudioPlayer player;
    Load(player, m_long);
    player.SetSelection(5.0, 6.0);
    player.ClearSelection();
    QCOMPARE(Access::SelectionStart(player), 0.0);
    QCOMPARE(Access::SelectionEnd(player), 30.0);
    QCOMPARE(player.position(), 5000);
}

void AudioPlayerTest::clearSelectionOfAnEmptyPlayerEndsAtZero()
{
    AudioPlayer player;
    player.SetSelection(5.0, 6.0);
    player.ClearSelection();
    QCOMPARE(Access::SelectionStart(player), 0.0);
    QCOMPARE(Access::SelectionEnd(player), 0.0);
}

void AudioPlayerTest::loopPlaybackChangesNothingElse()
{
    AudioPlayer player;
    Load(player, m_long);
    player.SetSelection(5.0, 6.0);
    player.LoopPlayback(true);
    QVERIFY(Access::IsLooping(player));
    QCOMPARE(player.playbackState(), QMediaPlayer::StoppedState);
    QCOMPARE(player.position(), 5000);
    player.LoopPlayback(false);
    QVERIFY(!Access::IsLooping(player));
}

void AudioPlayerTest::setVolumePassesPercentagesOn_data()
{
    QTest::addColumn<int>("percent");
    QTest::addColumn<float>("held");
    QTest::addColumn<int>("readBack");
    QTest::newRow("silence") << 0 << 0.0F << 0;
    QTest::newRow("half") << 50 << 0.5F << 50;
    QTest::newRow("a float just below its fraction") << 57 << 0.57F << 56;
    QTest::newRow("another one") << 29 << 0.29F << 28;
    QTest::newRow("a float just above its fraction") << 10 << 0.1F << 10;
    QTest::newRow("full") << 100 << 1.0F << 100;
}

void AudioPlayerTest::setVolumePassesPercentagesOn()
{
    QFETCH(int, percent);
    QFETCH(float, held);
    QFETCH(int, readBack);
    AudioPlayer player;
    player.SetVolume(25);
    player.SetVolume(percent);
    QCOMPARE(player.audioOutput()->volume(), held);
    QCOMPARE(player.Volume(), readBack);
}

void AudioPlayerTest::whatEndsAtOnceStaysPausedAtItsStart_data()
{
    QTest::addColumn<bool>("empty");
    QTest::addColumn<bool>("loop");
    QTest::newRow("selection at the end") << false << false;
    QTest::newRow("selection at the end, looping") << false << true;
    QTest::newRow("file without audio") << true << false;
    QTest::newRow("file without audio, looping") << true << true;
}

void AudioPlayerTest::whatEndsAtOnceStaysPausedAtItsStart()
{
    QFETCH(bool, empty);
    QFETCH(bool, loop);
    AudioPlayer player;
    QSignalSpy statuses(&player, &QMediaPlayer::mediaStatusChanged);
    QSignalSpy states(&player, &QMediaPlayer::playbackStateChanged);
    player.LoopPlayback(loop);
    if (empty) {
        Load(player, m_empty);
    } else {
        Load(player, m_long);
        player.SetSelection(30.0, 30.0);
    }
    const qint64 start = player.position();
    QAudioOutput* const output = player.audioOutput();
    for (int round = 0; round < 3; ++round) {
        player.play();
        QTRY_COMPARE_WITH_TIMEOUT(player.playbackState(), QMediaPlayer::PausedState, patience);
        // Nothing tells that Qt has nothing more to report. A second end would come in this time, a storm of them
        // thousands of times.
        QTest::qWait(300);
        QCOMPARE(player.playbackState(), QMediaPlayer::PausedState);
        QCOMPARE(player.position(), start);
        QCOMPARE(player.audioOutput(), output);
    }
    QVERIFY2(statuses.size() + states.size() < 40, qPrintable(QString::number(statuses.size() + states.size())));
}

void AudioPlayerTest::setVolumeLeavesAnOutputThatHoldsTheValueQuiet()
{
    AudioPlayer player;
    player.SetVolume(25);
    QSignalSpy changes(player.audioOutput(), &QAudioOutput::volumeChanged);
    player.SetVolume(25);
    QCOMPARE(changes.size(), 0);
    player.SetVolume(75);
    QCOMPARE(changes.size(), 1);
}

void AudioPlayerTest::volumeIsTruncatedNotRounded()
{
    AudioPlayer player;
    player.audioOutput()->setVolume(0.999F);
    QCOMPARE(player.Volume(), 99);
}

void AudioPlayerTest::setMutedForwardsToTheOutput()
{
    AudioPlayer player;
    QVERIFY(!player.IsMuted());
    player.SetMuted(true);
    QVERIFY(player.IsMuted());
    QVERIFY(player.audioOutput()->isMuted());
    player.SetMuted(false);
    QVERIFY(!player.IsMuted());
}

void AudioPlayerTest::playbackRateTakesWhatItCanPlay_data()
{
    QTest::addColumn<double>("rate");
    QTest::addColumn<double>("result");
    QTest::newRow("slowest") << 0.25 << 0.25;
    QTest::newRow("no float") << 0.7 << 0.7;
    QTest::newRow("fastest") << 4.0 << 4.0;
    QTest::newRow("too slow") << 0.2499 << 1.5;
    QTest::newRow("too fast") << 4.0001 << 1.5;
    QTest::newRow("standing still") << 0.0 << 1.5;
    QTest::newRow("backwards") << -1.0 << 1.5;
    QTest::newRow("infinite") << std::numeric_limits<double>::infinity() << 1.5;
    QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN() << 1.5;
}

void AudioPlayerTest::playbackRateTakesWhatItCanPlay()
{
    QFETCH(double, rate);
    QFETCH(double, result);
    AudioPlayer player;
    QCOMPARE(player.GetPlaybackRate(), 1.0);
    player.SetPlaybackRate(1.5);
    player.SetPlaybackRate(rate);
    QCOMPARE(player.GetPlaybackRate(), result);
    QCOMPARE(float(player.playbackRate()), float(result));
}

void AudioPlayerTest::playbackRateHoldsForEverySource()
{
    AudioPlayer player;
    player.SetPlaybackRate(4.0);
    for (const QString& file : {m_long, m_long}) {
        Load(player, file);
        QElapsedTimer clock;
        clock.start();
        player.play();
        QTRY_VERIFY_WITH_TIMEOUT(player.position() > clock.elapsed() + 1000, patience);
    }
    QCOMPARE(player.GetPlaybackRate(), 4.0);
}

void AudioPlayerTest::leavesTheBaseClasssRateAlone()
{
    AudioPlayer player;
    player.setPlaybackRate(2.0);
    player.setAudioOutput(nullptr);
    player.setAudioOutput(Access::Output(player));
    QCOMPARE(player.playbackRate(), 2.0);
    Load(player, m_long);
    QCOMPARE(player.playbackRate(), 2.0);
}

void AudioPlayerTest::playbackRateWaitsForAnOutput()
{
    AudioPlayer player;
    Load(player, m_long);
    player.setAudioOutput(nullptr);
    player.SetPlaybackRate(2.0);
    QCOMPARE(player.playbackRate(), 1.0);
    QCOMPARE(player.GetPlaybackRate(), 2.0);
    player.setAudioOutput(Access::Output(player));
    QCOMPARE(player.playbackRate(), 2.0);
}

void AudioPlayerTest::everyOutputOperationIsHarmlessWithoutAnOutput()
{
    AudioPlayer player;
    const QAudioOutput* output = Access::TakeOutput(player);
    player.SetVolume(30);
    player.SetMuted(true);
    player.SetAudioOutputDevice(QMediaDevices::audioOutputs().at(1));
    QCOMPARE(player.Volume(), 0);
    QVERIFY(!player.IsMuted());
    QVERIFY(player.GetAudioOutputDevice().isNull());
    QCOMPARE(output->volume(), 1.0F);
    QVERIFY(!output->isMuted());
}

void AudioPlayerTest::acceptsOnlyListedDevices()
{
    AudioPlayer player;
    const QAudioDevice before = player.audioOutput()->device();
    player.SetAudioOutputDevice(QAudioDevice());
    player.SetAudioOutputDevice(QMediaDevices::defaultAudioInput());
    QVERIFY(player.GetAudioOutputDevice().isNull());
    QCOMPARE(player.audioOutput()->device(), before);
}

void AudioPlayerTest::takesTheFirstListedDeviceThatIsEqual()
{
    AudioPlayer player;
    for (const QAudioDevice& device : QMediaDevices::audioOutputs()) {
        player.SetAudioOutputDevice(device);
        QCOMPARE(player.GetAudioOutputDevice(), device);
        QCOMPARE(player.audioOutput()->device(), device);
    }
}

void AudioPlayerTest::playbackLoopDoesNothingUnlessPlaying()
{
    AudioPlayer player;
    Load(player, m_long);
    player.SetSelection(2.0, 4.0);
    player.setPosition(10000);
    Access::PlaybackLoop(player, 10000);
    QCOMPARE(player.position(), 10000);
    QCOMPARE(player.playbackState(), QMediaPlayer::StoppedState);
    player.pause();
    Access::PlaybackLoop(player, 10000);
    QCOMPARE(player.position(), 10000);
}

void AudioPlayerTest::playbackLoopRestartsAtTheSelectionEnd_data()
{
    QTest::addColumn<qint64>("position");
    QTest::addColumn<bool>("loop");
    QTest::addColumn<QList<QMediaPlayer::PlaybackState>>("states");
    using States = QList<QMediaPlayer::PlaybackState>;
    const States none;
    const States paused{QMediaPlayer::PausedState};
    const States pausedAndPlaying{QMediaPlayer::PausedState, QMediaPlayer::PlayingState};
    QTest::newRow("just before") << qint64(3999) << false << none;
    QTest::newRow("just before, looping") << qint64(3999) << true << none;
    QTest::newRow("exactly there") << qint64(4000) << false << paused;
    QTest::newRow("exactly there, looping") << qint64(4000) << true << pausedAndPlaying;
    QTest::newRow("behind") << qint64(29000) << false << paused;
    QTest::newRow("as far as it gets, looping") << std::numeric_limits<qint64>::max() << true << pausedAndPlaying;
}

void AudioPlayerTest::playbackLoopRestartsAtTheSelectionEnd()
{
    QFETCH(qint64, position);
    QFETCH(bool, loop);
    QFETCH(QList<QMediaPlayer::PlaybackState>, states);
    AudioPlayer player;
    Load(player, m_long);
    player.SetSelection(2.5, 4.0);
    player.LoopPlayback(loop);
    player.setPosition(3000);
    player.play();
    const StateLog log(player);
    Access::PlaybackLoop(player, position);
    QCOMPARE(log.States(), states);
    QCOMPARE(player.position(), states.isEmpty() ? 3000 : 2500);
}

void AudioPlayerTest::anInvertedSelectionRestartsAtItsStart()
{
    AudioPlayer player;
    Load(player, m_long);
    player.SetSelection(10.0, 5.0);
    QCOMPARE(Access::SelectionStart(player), 10.0);
    QCOMPARE(Access::SelectionEnd(player), 5.0);
    player.play();
    QTRY_COMPARE_WITH_TIMEOUT(player.playbackState(), QMediaPlayer::PausedState, patience);
    QCOMPARE(player.position(), 10000);
}

void AudioPlayerTest::anEmptySelectionPausesAtTheFirstPosition()
{
    AudioPlayer player;
    player.setSource(QUrl::fromLocalFile(m_long));
    player.play();
    QTRY_COMPARE_WITH_TIMEOUT(player.playbackState(), QMediaPlayer::PausedState, patience);
    QCOMPARE(player.position(), 0);
}

void AudioPlayerTest::ignoresEveryMediaStatusButTheEnd()
{
    AudioPlayer player;
    Load(player, m_long);
    player.SetSelection(2.0, 4.0);
    player.setPosition(3000);
    player.play();
    for (const Status status :
         {QMediaPlayer::NoMedia, QMediaPlayer::LoadingMedia, QMediaPlayer::LoadedMedia, QMediaPlayer::StalledMedia,
          QMediaPlayer::BufferingMedia, QMediaPlayer::BufferedMedia, QMediaPlayer::InvalidMedia}) {
        Access::OnMediaStatusChanged(player, status);
        QCOMPARE(player.playbackState(), QMediaPlayer::PlayingState);
        QCOMPARE(player.position(), 3000);
    }
}

void AudioPlayerTest::theEndOfTheMediaRestartsInOrder()
{
    AudioPlayer player;
    Load(player, m_long);
    player.SetSelection(2.0, 4.0);
    player.setPosition(3000);

    QStringList order;
    connect(&player, &QMediaPlayer::positionChanged, this,
            [&order](qint64 position) { order << QString::number(position); });
    connect(&player, &QMediaPlayer::playbackStateChanged, this, [&order](QMediaPlayer::PlaybackState state) {
        order << (state == QMediaPlayer::PausedState ? QStringLiteral("paused") : QStringLiteral("playing"));
    });
    Access::OnMediaStatusChanged(player, QMediaPlayer::EndOfMedia);
    QCOMPARE(order, QStringList({QStringLiteral("2000"), QStringLiteral("paused")}));

    player.setPosition(3000);
    order.clear();
    player.LoopPlayback(true);
    Access::RestartPlayback(player);
    QCOMPARE(order, QStringList({QStringLiteral("2000"), QStringLiteral("playing")}));
}

void AudioPlayerTest::pausesAtTheSelectionStartBehindTheEndOfTheFile()
{
    // A selection that ends with the file, behind it, and just before it.
    for (const double end : {0.3, 1000.0, 0.299}) {
        AudioPlayer player;
        player.SetAudio(m_short, 0.3);
        player.SetSelection(0.1, end);
        player.play();
        QTRY_COMPARE_WITH_TIMEOUT(player.playbackState(), QMediaPlayer::PausedState, patience);
        QCOMPARE(player.position(), 100);

        // The file's end can be under way already when the selection's end just before it is reached. Its report
        // must lead back to the same place.
        QSignalSpy positions(&player, &QMediaPlayer::positionChanged);
        while (positions.wait(300)) {
        }
        QCOMPARE(player.playbackState(), QMediaPlayer::PausedState);
        QCOMPARE(player.position(), 100);

        player.PauseResume();
        QCOMPARE(player.playbackState(), QMediaPlayer::PlayingState);
        QTRY_COMPARE_WITH_TIMEOUT(player.playbackState(), QMediaPlayer::PausedState, patience);
        QCOMPARE(player.position(), 100);
    }
}

void AudioPlayerTest::loopsOverTheEndOfTheFile()
{
    for (const double end : {0.3, 1000.0}) {
        AudioPlayer player;
        player.SetAudio(m_short, end);
        player.LoopPlayback(true);
        QSignalSpy statuses(&player, &QMediaPlayer::mediaStatusChanged);
        const auto rounds = [&statuses] {
            return std::count_if(statuses.cbegin(), statuses.cend(), [](const QList<QVariant>& change) {
                return change.at(0).value<Status>() == QMediaPlayer::EndOfMedia;
            });
        };
        player.play();
        QTRY_VERIFY_WITH_TIMEOUT(rounds() >= 4, patience);
        player.LoopPlayback(false);
        QTRY_COMPARE_WITH_TIMEOUT(player.playbackState(), QMediaPlayer::PausedState, patience);
        QCOMPARE(player.position(), 0);
    }
}

void AudioPlayerTest::stoppingAtTheEndOfTheFileStaysStopped()
{
    AudioPlayer player;
    player.SetAudio(m_short, 1000.0);
    player.LoopPlayback(true);
    bool ended = false;
    connect(&player, &QMediaPlayer::mediaStatusChanged, &player, [&player, &ended](Status status) {
        if (status == QMediaPlayer::EndOfMedia) {
            ended = true;
            player.stop();
        }
    });
    player.play();
    QTRY_VERIFY_WITH_TIMEOUT(ended, patience);
    const StateLog log(player);
    QSignalSpy positions(&player, &QMediaPlayer::positionChanged);
    positions.wait(300);
    QCOMPARE(log.States(), {});
    QCOMPARE(player.playbackState(), QMediaPlayer::StoppedState);
}

void AudioPlayerTest::aNewFileAtTheEndOfTheOldOneIsNotRestarted()
{
    AudioPlayer player;
    player.SetAudio(m_short, 1000.0);
    player.LoopPlayback(true);
    connect(&player, &QMediaPlayer::mediaStatusChanged, &player, [this, &player](Status status) {
        if (status == QMediaPlayer::EndOfMedia) {
            player.SetAudio(m_long, 30.0);
        }
    });
    player.play();
    QTRY_COMPARE_WITH_TIMEOUT(player.duration(), 30000, patience);
    const StateLog log(player);
    QTRY_COMPARE_WITH_TIMEOUT(player.mediaStatus(), QMediaPlayer::LoadedMedia, patience);
    QCoreApplication::processEvents();
    QCOMPARE(log.States(), {});
    QCOMPARE(player.playbackState(), QMediaPlayer::StoppedState);
}

void AudioPlayerTest::deletingThePlayerAtTheEndOfTheFileIsSafe()
{
    for (int round = 0; round < 5; ++round) {
        auto player = std::make_unique<AudioPlayer>();
        player->SetAudio(File(QStringLiteral("kürz.wav"), 0.05), 0.05);
        player->LoopPlayback(true);
        QSignalSpy statuses(player.get(), &QMediaPlayer::mediaStatusChanged);
        player->play();
        while (player->mediaStatus() != QMediaPlayer::EndOfMedia) {
            QVERIFY(statuses.wait(patience));
        }
        player.reset();
        QCoreApplication::processEvents();
    }
}

void AudioPlayerTest::manyRoundsOverTheFileNeedNoMoreStackThanTen()
{
    AudioPlayer player;
    player.SetAudio(File(QStringLiteral("blip.wav"), 0.002), 0.002);
    player.LoopPlayback(true);
    int rounds = 0;
    quintptr lowest = std::numeric_limits<quintptr>::max();
    quintptr lowestOfTen = 0;
    connect(&player, &QMediaPlayer::mediaStatusChanged, this, [&](Status status) {
        if (status == QMediaPlayer::EndOfMedia) {
            lowest = std::min(lowest, StackPointer());
            if (++rounds == 10) {
                lowestOfTen = lowest;
            }
        }
    });
    player.play();
    QTRY_VERIFY_WITH_TIMEOUT(rounds >= 150, 2 * patience);
    QVERIFY2(lowestOfTen - lowest < 4096, qPrintable(QString::number(lowestOfTen - lowest)));
}

void AudioPlayerTest::aThousandRoundsOverTheSelectionNeedNoMoreStackThanTen()
{
    AudioPlayer player;
    player.SetAudio(m_long, 30.0);
    player.SetSelection(10.0, 5.0);
    player.LoopPlayback(true);
    int rounds = 0;
    quintptr lowest = std::numeric_limits<quintptr>::max();
    quintptr lowestOfTen = 0;
    connect(&player, &QMediaPlayer::positionChanged, this, [&](qint64 position) {
        lowest = std::min(lowest, StackPointer());
        if (++rounds == 10) {
            lowestOfTen = lowest;
        }
        // Away from the start and behind the end, from inside the report, so that the next restart moves.
        if (position == 10000 && rounds < 2000) {
            QMetaObject::invokeMethod(
                &player, [&player] { player.setPosition(20000); }, Qt::QueuedConnection);
        }
    });
    player.play();
    player.setPosition(20000);
    QTRY_VERIFY_WITH_TIMEOUT(rounds >= 2000, 2 * patience);
    QVERIFY2(lowestOfTen - lowest < 4096, qPrintable(QString::number(lowestOfTen - lowest)));
}

int main(int argc, char** argv)
{
    const SoundServer server({QStringLiteral("one"), QStringLiteral("two")});
    QCoreApplication application(argc, argv);
    AudioPlayerTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_audio_player.moc"
