#include "playback/OutputDevices.h"
#include "tests/playback/AudioPlayerTestAccess.h"
#include "tests/support/SoundRecording.h"
#include "tests/support/SoundServer.h"
#include "tests/support/Tone.h"

#include <vantorAudioEngine/AudioPlayer.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QTemporaryDir>
#include <QtCore/QTimer>
#include <QtCore/QUrl>
#include <QtMultimedia/QAudioOutput>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <memory>

using Access = AudioPlayerTestAccess;
using vantoraudio::AudioEngine::PresentOutputs;

namespace {

constexpr int patience = 30000;

QStringList DeviceNames()
{
    QStringList names;
    for (const QAudioDevice& device : PresentOutputs()) {
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

/** Counts every timer event of the program. */
class TimerCounter : public QObject
{
public:
    explicit TimerCounter(const QTimer& clock) : m_clock(clock)
    {
        QCoreApplication::instance()->installEventFilter(this);
    }

    bool eventFilter(QObject* receiver, QEvent* event) override
    {
        if (event->type() == QEvent::Timer) {
            ++(receiver == &m_clock ? ticks : count);
        }
        return QObject::eventFilter(receiver, event);
    }

    /** Of the clock. */
    int ticks = 0;
    /** Of all other timers. */
    int count = 0;

private:
    const QTimer& m_clock;
};

} // namespace

/** A player on a machine whose output devices come and go. */
class DeviceFollowerTest : public QObject
{
    Q_OBJECT

public:
    explicit DeviceFollowerTest(SoundServer& server) : m_server(server) {}

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
    void playsAtTheRateThatWasSetWithoutADevice();
    void goesOnWhenTheLastRealDeviceLeavesWhilePlaying();
    void playsElsewhereWhenItsDeviceLeftWhileStopped();
    void goesOnElsewhereWhenItsDeviceLeavesWhilePlaying();
    void returnsToTheChosenDevice();
    void noTimerWakesAProgramOften_data();
    void noTimerWakesAProgramOften();
    void ignoresADeviceThatHasGone();
    void leavesAnOutputOfTheHostAlone();

private:
    void SetSinks(const QStringList& names);
    std::unique_ptr<AudioPlayer> Player();

    SoundServer& m_server;
    QTemporaryDir m_folder;
    QString m_file;
};

void DeviceFollowerTest::SetSinks(const QStringList& names)
{
    m_server.RemoveAllSinks();
    for (const QString& name : names) {
        QVERIFY(m_server.AddSink(name));
    }
    QTRY_COMPARE_WITH_TIMEOUT(DeviceNames(), names, patience);
}

std::unique_ptr<AudioPlayer> DeviceFollowerTest::Player()
{
    auto player = std::make_unique<AudioPlayer>();
    player->SetAudio(m_file, 60.0);
    QSignalSpy statuses(player.get(), &QMediaPlayer::mediaStatusChanged);
    while (player->mediaStatus() == QMediaPlayer::LoadingMedia && statuses.wait(patience)) {
    }
    return player;
}

void DeviceFollowerTest::initTestCase()
{
    QVERIFY(m_server.IsRunning());
    m_file = m_folder.filePath(QStringLiteral("tone.wav"));
    QVERIFY(WriteToneFile(m_file, {.seconds = 60.0}));
}

void DeviceFollowerTest::init()
{
    SetSinks({});
}

void DeviceFollowerTest::anIdlePlayerKeepsItsOutputWithoutDevices()
{
    AudioPlayer player;
    player.PauseResume();
    QVERIFY(player.audioOutput());
    QCOMPARE(player.audioOutput(), Access::Output(player));
}

void DeviceFollowerTest::playsIntoNothingWithoutDevices_data()
{
    QTest::addColumn<bool>("bySetAudio");
    QTest::newRow("SetAudio") << true;
    QTest::newRow("setSource") << false;
}

void DeviceFollowerTest::playsIntoNothingWithoutDevices()
{
    QFETCH(bool, bySetAudio);
    AudioPlayer player;
    if (bySetAudio) {
        player.SetAudio(m_file, 60.0);
    } else {
        player.setSource(QUrl::fromLocalFile(m_file));
        player.ClearSelection();
    }
    QTRY_COMPARE_WITH_TIMEOUT(player.mediaStatus(), QMediaPlayer::LoadedMedia, patience);
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

void DeviceFollowerTest::everyOperationIsHarmlessWithoutDevices()
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

void DeviceFollowerTest::goesOnWhenTheFirstDeviceAppears()
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

void DeviceFollowerTest::playsOnANewDeviceWhenTheLastOneLeftWhilePausedOrStopped_data()
{
    QTest::addColumn<bool>("pause");
    QTest::addColumn<bool>("atOnce");
    QTest::newRow("paused, played at once") << true << true;
    QTest::newRow("stopped, played at once") << false << true;
    QTest::newRow("paused, played through the base class") << true << false;
    QTest::newRow("stopped, played through the base class") << false << false;
}

void DeviceFollowerTest::playsOnANewDeviceWhenTheLastOneLeftWhilePausedOrStopped()
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

void DeviceFollowerTest::playsAtTheRateThatWasSetWithoutADevice()
{
    SetSinks({QStringLiteral("one")});
    const auto player = Player();
    player->SetPlaybackRate(2.0);
    player->play();
    QTRY_VERIFY_WITH_TIMEOUT(player->position() > 0, patience);
    player->pause();
    SetSinks({});
    player->play();
    QTRY_VERIFY_WITH_TIMEOUT(!player->audioOutput(), patience);
    player->SetPlaybackRate(3.0);
    LetRun(*player);

    SetSinks({QStringLiteral("two")});
    const SoundRecording two(QStringLiteral("two"));
    QTRY_COMPARE_WITH_TIMEOUT(two.Frequency(SoundRecording::Left), 3 * 440, patience);
    QCOMPARE(player->GetPlaybackRate(), 3.0);
}

void DeviceFollowerTest::goesOnWhenTheLastRealDeviceLeavesWhilePlaying()
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

void DeviceFollowerTest::playsElsewhereWhenItsDeviceLeftWhileStopped()
{
    SetSinks({QStringLiteral("one"), QStringLiteral("two")});
    const auto player = Player();
    for (const QAudioDevice& device : PresentOutputs()) {
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

void DeviceFollowerTest::goesOnElsewhereWhenItsDeviceLeavesWhilePlaying()
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

void DeviceFollowerTest::returnsToTheChosenDevice()
{
    SetSinks({QStringLiteral("one")});
    const auto player = Player();
    player->SetAudioOutputDevice(PresentOutputs().constFirst());
    SetSinks({QStringLiteral("two")});
    QTRY_COMPARE_WITH_TIMEOUT(Access::Output(*player)->device().id(), QByteArray("two"), patience);
    QCOMPARE(player->GetAudioOutputDevice().id(), QByteArray("one"));
    QVERIFY(m_server.AddSink(QStringLiteral("one")));
    QTRY_COMPARE_WITH_TIMEOUT(Access::Output(*player)->device().id(), QByteArray("one"), patience);
}

void DeviceFollowerTest::noTimerWakesAProgramOften_data()
{
    QTest::addColumn<bool>("playing");
    QTest::newRow("playing") << true;
    QTest::newRow("idle") << false;
}

void DeviceFollowerTest::noTimerWakesAProgramOften()
{
    QFETCH(bool, playing);
    SetSinks({QStringLiteral("one")});
    const auto player = Player();
    if (playing) {
        player->play();
        QTRY_VERIFY_WITH_TIMEOUT(player->position() > 0, patience);
    }
    // What catches up with the device that has just come ends by itself.
    QSignalSpy positions(player.get(), &QMediaPlayer::positionChanged);
    positions.wait(playing ? 1 : 1500);
    QTRY_VERIFY_WITH_TIMEOUT(!playing || player->position() > 2000, patience);

    // Twenty times a second, as often as Qt 6.8 looks at the position. A slow machine slows all timers down.
    constexpr int ticks = 40;
    QTimer clock;
    clock.start(50);
    TimerCounter counter(clock);
    QTRY_VERIFY_WITH_TIMEOUT(counter.ticks >= ticks, patience);
    QVERIFY2(counter.count <= counter.ticks + 2, qPrintable(QString::number(counter.count)));
    QVERIFY(playing || counter.count <= 2);
}

void DeviceFollowerTest::ignoresADeviceThatHasGone()
{
    SetSinks({QStringLiteral("one")});
    const QAudioDevice gone = PresentOutputs().constFirst();
    SetSinks({QStringLiteral("two")});
    const auto player = Player();
    player->SetAudioOutputDevice(gone);
    QVERIFY(player->GetAudioOutputDevice().isNull());
    QCOMPARE(player->audioOutput()->device().id(), QByteArray("two"));
}

void DeviceFollowerTest::leavesAnOutputOfTheHostAlone()
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
    DeviceFollowerTest test(server);
    return QTest::qExec(&test, argc, argv);
}

#include "tst_device_follower.moc"
