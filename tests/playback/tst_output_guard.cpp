#include "tests/playback/AudioPlayerTestAccess.h"
#include "tests/support/SoundRecording.h"
#include "tests/support/SoundServer.h"
#include "tests/support/Tone.h"

#include <vantorAudioEngine/AudioPlayer.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QTemporaryDir>
#include <QtCore/QUrl>
#include <QtMultimedia/QAudioOutput>
#include <QtMultimedia/QMediaDevices>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <memory>

using Access = AudioPlayerTestAccess;
using GuardAccess = vantoraudio::AudioEngine::OutputGuardTestAccess;

namespace {

constexpr int patience = 30000;

QStringList DeviceNames()
{
    QStringList names;
    for (const QAudioDevice& device : QMediaDevices::audioOutputs()) {
        names << QString::fromUtf8(device.id());
    }
    names.sort();
    return names;
}

bool HearsTheTone(const SoundRecording& recording)
{
    return recording.Frequency(SoundRecording::Left) == 440;
}

/** Lets a player run that must not do anything: long enough for its audio thread to have come to grief. */
void LetRun(const AudioPlayer& player)
{
    QSignalSpy positions(&player, &QMediaPlayer::positionChanged);
    positions.wait(500);
}

} // namespace

/** A player on a machine whose output devices come and go. */
class OutputGuardTest : public QObject
{
    Q_OBJECT

public:
    explicit OutputGuardTest(SoundServer& server) : m_server(server) {}

private Q_SLOTS:
    void initTestCase();
    void init();

    void anIdlePlayerKeepsItsOutputWithoutDevices();
    void playsIntoNothingWithoutDevices_data();
    void playsIntoNothingWithoutDevices();
    void everyOperationIsHarmlessWithoutDevices();
    void goesOnWhenTheFirstDeviceAppears();
    void playsOnANewDeviceWhenTheLastOneLeftWhilePausedOrStopped_data();
    void playsOnANewDeviceWhenTheLastOneLeftWhilePausedOrStopped();
    void goesOnWhenTheLastRealDeviceLeavesWhilePlaying();
    void playsElsewhereWhenItsDeviceLeftWhileStopped();
    void goesOnElsewhereWhenItsDeviceLeavesWhilePlaying();
    void returnsToTheChosenDevice();
    void setsAPlayerGoingAgainThatStandsStill();
    void restartsOnlyAPlayerThatStandsStillThoughItShouldSound_data();
    void restartsOnlyAPlayerThatStandsStillThoughItShouldSound();
    void onlyAPositionThatMovesMoreThanItCreepsIsProgress_data();
    void onlyAPositionThatMovesMoreThanItCreepsIsProgress();
    void ignoresADeviceThatHasGone();
    void leavesAnOutputOfTheHostAlone();

private:
    void SetSinks(const QStringList& names);
    std::unique_ptr<AudioPlayer> Player();

    SoundServer& m_server;
    QTemporaryDir m_folder;
    QString m_file;
};

void OutputGuardTest::SetSinks(const QStringList& names)
{
    m_server.RemoveAllSinks();
    for (const QString& name : names) {
        QVERIFY(m_server.AddSink(name));
    }
    QTRY_COMPARE_WITH_TIMEOUT(DeviceNames(), names, patience);
}

std::unique_ptr<AudioPlayer> OutputGuardTest::Player()
{
    auto player = std::make_unique<AudioPlayer>();
    player->SetAudio(m_file, 60.0);
    return player;
}

void OutputGuardTest::initTestCase()
{
    QVERIFY(m_server.IsRunning());
    m_file = m_folder.filePath(QStringLiteral("tone.wav"));
    QVERIFY(WriteToneFile(m_file, {.seconds = 60.0}));
}

void OutputGuardTest::init()
{
    SetSinks({});
}

void OutputGuardTest::anIdlePlayerKeepsItsOutputWithoutDevices()
{
    AudioPlayer player;
    player.PauseResume();
    QVERIFY(player.audioOutput());
    QCOMPARE(player.audioOutput(), Access::Output(player));
}

void OutputGuardTest::playsIntoNothingWithoutDevices_data()
{
    QTest::addColumn<bool>("bySetAudio");
    QTest::newRow("SetAudio") << true;
    QTest::newRow("setSource") << false;
}

void OutputGuardTest::playsIntoNothingWithoutDevices()
{
    QFETCH(bool, bySetAudio);
    AudioPlayer player;
    if (bySetAudio) {
        player.SetAudio(m_file, 60.0);
    } else {
        player.setSource(QUrl::fromLocalFile(m_file));
        player.ClearSelection();
    }
    static_cast<QMediaPlayer&>(player).play();
    LetRun(player);
    QCOMPARE(player.playbackState(), QMediaPlayer::PlayingState);
    player.SetSelection(5.0, 10.0);
    LetRun(player);
    player.pause();
    QCOMPARE(player.playbackState(), QMediaPlayer::PausedState);
    player.stop();
    QCOMPARE(player.playbackState(), QMediaPlayer::StoppedState);
    QVERIFY(player.GetAudioOutputDevice().isNull());
}

void OutputGuardTest::everyOperationIsHarmlessWithoutDevices()
{
    const auto player = Player();
    player->SetAudioOutputDevice(QAudioDevice());
    player->SetVolume(30);
    player->SetMuted(true);
    QCOMPARE(player->Volume(), 30);
    QVERIFY(player->IsMuted());
    player->LoopPlayback(true);
    player->PauseResume();
    Access::PlaybackLoop(*player, 60000);
    Access::OnMediaStatusChanged(*player, QMediaPlayer::EndOfMedia);
    QCOMPARE(player->playbackState(), QMediaPlayer::PlayingState);
    LetRun(*player);
}

void OutputGuardTest::goesOnWhenTheFirstDeviceAppears()
{
    const auto player = Player();
    player->SetVolume(50);
    player->setPosition(20000);
    static_cast<QMediaPlayer&>(*player).play();
    LetRun(*player);

    SetSinks({QStringLiteral("one")});
    const SoundRecording one(QStringLiteral("one"));
    QTRY_VERIFY_WITH_TIMEOUT(HearsTheTone(one), patience);
    QTRY_VERIFY_WITH_TIMEOUT(player->position() > 20500, patience);
    QVERIFY(player->position() < 50000);
    QCOMPARE(player->Volume(), 50);
    QCOMPARE(player->audioOutput(), Access::Output(*player));
    QCOMPARE(player->audioOutput()->device().id(), QByteArray("one"));
    QVERIFY(player->GetAudioOutputDevice().isNull());
}

void OutputGuardTest::playsOnANewDeviceWhenTheLastOneLeftWhilePausedOrStopped_data()
{
    QTest::addColumn<bool>("pause");
    QTest::addColumn<bool>("atOnce");
    QTest::newRow("paused, played at once") << true << true;
    QTest::newRow("stopped, played at once") << false << true;
    QTest::newRow("paused, played through the base class") << true << false;
    QTest::newRow("stopped, played through the base class") << false << false;
}

void OutputGuardTest::playsOnANewDeviceWhenTheLastOneLeftWhilePausedOrStopped()
{
    QFETCH(bool, pause);
    QFETCH(bool, atOnce);
    SetSinks({QStringLiteral("one")});
    const auto player = Player();
    player->play();
    QTRY_VERIFY_WITH_TIMEOUT(player->position() > 0, patience);
    pause ? player->pause() : player->stop();
    SetSinks({});
    if (atOnce) {
        player->play();
    } else {
        QTRY_VERIFY_WITH_TIMEOUT(!player->audioOutput(), patience);
        static_cast<QMediaPlayer&>(*player).play();
    }
    LetRun(*player);

    SetSinks({QStringLiteral("two")});
    const SoundRecording two(QStringLiteral("two"));
    QTRY_VERIFY_WITH_TIMEOUT(HearsTheTone(two), patience);
}

void OutputGuardTest::goesOnWhenTheLastRealDeviceLeavesWhilePlaying()
{
    SetSinks({QStringLiteral("one")});
    QVERIFY(m_server.StandIn());
    const auto player = Player();
    player->SetVolume(50);
    player->play();
    QTRY_VERIFY_WITH_TIMEOUT(player->position() > 0, patience);
    QVERIFY(m_server.RemoveSink(QStringLiteral("one")));
    QTRY_COMPARE_WITH_TIMEOUT(DeviceNames(), QStringList(QStringLiteral("auto_null")), patience);
    {
        const SoundRecording dummy(QStringLiteral("auto_null"));
        QTRY_VERIFY_WITH_TIMEOUT(HearsTheTone(dummy), patience);
    }
    QVERIFY(m_server.AddSink(QStringLiteral("two")));
    QTRY_COMPARE_WITH_TIMEOUT(DeviceNames(), QStringList(QStringLiteral("two")), patience);
    const SoundRecording two(QStringLiteral("two"));
    QTRY_VERIFY_WITH_TIMEOUT(HearsTheTone(two), patience);
    QCOMPARE(player->Volume(), 50);
    QCOMPARE(player->playbackState(), QMediaPlayer::PlayingState);
}

void OutputGuardTest::playsElsewhereWhenItsDeviceLeftWhileStopped()
{
    SetSinks({QStringLiteral("one"), QStringLiteral("two")});
    const auto player = Player();
    for (const QAudioDevice& device : QMediaDevices::audioOutputs()) {
        if (device.id() == "one") {
            player->SetAudioOutputDevice(device);
        }
    }
    const QAudioDevice chosen = player->GetAudioOutputDevice();
    QCOMPARE(chosen.id(), QByteArray("one"));
    QVERIFY(m_server.RemoveSink(QStringLiteral("one")));
    QTRY_COMPARE_WITH_TIMEOUT(DeviceNames(), QStringList(QStringLiteral("two")), patience);

    const SoundRecording two(QStringLiteral("two"));
    player->PauseResume();
    QTRY_VERIFY_WITH_TIMEOUT(HearsTheTone(two), patience);
    QCOMPARE(player->GetAudioOutputDevice(), chosen);
}

void OutputGuardTest::goesOnElsewhereWhenItsDeviceLeavesWhilePlaying()
{
    SetSinks({QStringLiteral("one"), QStringLiteral("two")});
    const auto player = Player();
    const QByteArray first = player->audioOutput()->device().id();
    const QString other = first == "one" ? QStringLiteral("two") : QStringLiteral("one");
    const SoundRecording recording(other);
    player->play();
    QTRY_VERIFY_WITH_TIMEOUT(player->position() > 0, patience);
    QVERIFY(m_server.RemoveSink(QString::fromUtf8(first)));
    QTRY_VERIFY_WITH_TIMEOUT(HearsTheTone(recording), patience);
    QTRY_COMPARE_WITH_TIMEOUT(player->audioOutput()->device().id(), other.toUtf8(), patience);
    player->PauseResume();
    player->PauseResume();
    const qint64 position = player->position();
    QTRY_VERIFY_WITH_TIMEOUT(player->position() > position, patience);
}

void OutputGuardTest::returnsToTheChosenDevice()
{
    SetSinks({QStringLiteral("one")});
    const auto player = Player();
    player->SetAudioOutputDevice(QMediaDevices::audioOutputs().constFirst());
    SetSinks({QStringLiteral("two")});
    QTRY_COMPARE_WITH_TIMEOUT(Access::Output(*player)->device().id(), QByteArray("two"), patience);
    QCOMPARE(player->GetAudioOutputDevice().id(), QByteArray("one"));
    QVERIFY(m_server.AddSink(QStringLiteral("one")));
    QTRY_COMPARE_WITH_TIMEOUT(Access::Output(*player)->device().id(), QByteArray("one"), patience);
}

void OutputGuardTest::setsAPlayerGoingAgainThatStandsStill()
{
    SetSinks({QStringLiteral("one")});
    const SoundRecording one(QStringLiteral("one"));
    const auto player = Player();
    player->play();
    QTRY_VERIFY_WITH_TIMEOUT(HearsTheTone(one), patience);
    // An output that comes back to a running player gets nothing to play.
    player->setAudioOutput(nullptr);
    QTRY_VERIFY_WITH_TIMEOUT(one.IsSilent(), patience);
    player->setAudioOutput(Access::Output(*player));
    QTRY_VERIFY_WITH_TIMEOUT(HearsTheTone(one), patience);
    QCOMPARE(player->playbackState(), QMediaPlayer::PlayingState);
}

void OutputGuardTest::restartsOnlyAPlayerThatStandsStillThoughItShouldSound_data()
{
    QTest::addColumn<QString>("what");
    QTest::addColumn<QList<QMediaPlayer::PlaybackState>>("states");
    using States = QList<QMediaPlayer::PlaybackState>;
    QTest::newRow("standing still") << QStringLiteral("still")
                                    << States{QMediaPlayer::PausedState, QMediaPlayer::PlayingState};
    QTest::newRow("getting on") << QStringLiteral("on") << States();
    QTest::newRow("paused") << QStringLiteral("paused") << States();
    QTest::newRow("stopped") << QStringLiteral("stopped") << States();
    QTest::newRow("without an output") << QStringLiteral("mute") << States();
    QTest::newRow("without media") << QStringLiteral("empty") << States();
}

void OutputGuardTest::restartsOnlyAPlayerThatStandsStillThoughItShouldSound()
{
    QFETCH(QString, what);
    QFETCH(QList<QMediaPlayer::PlaybackState>, states);
    SetSinks({QStringLiteral("one")});
    const auto player = what == u"empty" ? std::make_unique<AudioPlayer>() : Player();
    player->setPosition(20000);
    player->play();
    if (what == u"paused") {
        player->pause();
    } else if (what == u"stopped") {
        player->stop();
    } else if (what == u"mute") {
        player->setAudioOutput(nullptr);
    }
    const qint64 position = player->position();

    // No event is handled from here on, so nothing but the guard changes the player.
    QList<QMediaPlayer::PlaybackState> changes;
    connect(player.get(), &QMediaPlayer::playbackStateChanged, this,
            [&changes](QMediaPlayer::PlaybackState state) { changes << state; });
    auto& guard = Access::Guard(*player);
    if (what != u"on") {
        GuardAccess::LetProgressBeDue(guard);
    }
    GuardAccess::EndStandstill(guard);
    QCOMPARE(changes, states);
    QCOMPARE(player->position(), position);
    // The restarted player has as much time again.
    GuardAccess::EndStandstill(guard);
    QCOMPARE(changes, states);
}

void OutputGuardTest::onlyAPositionThatMovesMoreThanItCreepsIsProgress_data()
{
    QTest::addColumn<qint64>("position");
    QTest::addColumn<bool>("isProgress");
    QTest::newRow("none") << qint64(5000) << false;
    QTest::newRow("creeping on") << qint64(5002) << false;
    QTest::newRow("creeping back") << qint64(4998) << false;
    QTest::newRow("getting on") << qint64(5003) << true;
    QTest::newRow("a step back") << qint64(4997) << true;
    QTest::newRow("back to the start") << qint64(0) << true;
}

void OutputGuardTest::onlyAPositionThatMovesMoreThanItCreepsIsProgress()
{
    QFETCH(qint64, position);
    QFETCH(bool, isProgress);
    AudioPlayer player;
    auto& guard = Access::Guard(player);
    GuardAccess::NoteProgress(guard, 5000);
    GuardAccess::LetProgressBeDue(guard);
    GuardAccess::NoteProgress(guard, position);
    QCOMPARE(GuardAccess::IsProgressDue(guard), !isProgress);
}

void OutputGuardTest::ignoresADeviceThatHasGone()
{
    SetSinks({QStringLiteral("one")});
    const QAudioDevice gone = QMediaDevices::audioOutputs().constFirst();
    SetSinks({QStringLiteral("two")});
    const auto player = Player();
    player->SetAudioOutputDevice(gone);
    QVERIFY(player->GetAudioOutputDevice().isNull());
    QCOMPARE(player->audioOutput()->device().id(), QByteArray("two"));
}

void OutputGuardTest::leavesAnOutputOfTheHostAlone()
{
    SetSinks({QStringLiteral("one")});
    const auto player = Player();
    QAudioOutput own;
    player->setAudioOutput(nullptr); // Qt 6.4 ends up with none when one output replaces another
    player->setAudioOutput(&own);
    player->play();
    player->pause();
    SetSinks({});
    SetSinks({QStringLiteral("two")});
    QTRY_COMPARE_WITH_TIMEOUT(Access::Output(*player)->device().id(), QByteArray("two"), patience);
    QCOMPARE(player->audioOutput(), &own);
}

int main(int argc, char** argv)
{
    SoundServer server;
    QCoreApplication application(argc, argv);
    OutputGuardTest test(server);
    return QTest::qExec(&test, argc, argv);
}

#include "tst_output_guard.moc"
