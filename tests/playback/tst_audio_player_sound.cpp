#include "tests/playback/AudioPlayerTestAccess.h"
#include "tests/support/SoundRecording.h"
#include "tests/support/SoundServer.h"
#include "tests/support/Tone.h"

#include <vantorAudioEngine/AudioPlayer.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtMultimedia/QAudioOutput>
#include <QtMultimedia/QMediaDevices>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <algorithm>
#include <cmath>

namespace {

constexpr int patience = 30000;

bool Hears(const SoundRecording& recording, int left, int right)
{
    return recording.Frequency(SoundRecording::Left) == left &&
           recording.Frequency(SoundRecording::Right) == right;
}

bool HearsAmplitude(const SoundRecording& recording, double amplitude)
{
    return std::abs(recording.Amplitude(SoundRecording::Left, 440) - amplitude) < amplitude * 0.02;
}

QAudioDevice Device(const QByteArray& id)
{
    const QList<QAudioDevice> devices = QMediaDevices::audioOutputs();
    const auto found = std::find_if(devices.cbegin(), devices.cend(),
                                    [&id](const QAudioDevice& device) { return device.id() == id; });
    return found == devices.cend() ? QAudioDevice() : *found;
}

} // namespace

/** What comes out of the sound server when a player plays: 440 Hz at the left, 880 Hz at the right. */
class AudioPlayerSoundTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void playsBothChannelsUnchanged();
    void playsFilesWithOddNames_data();
    void playsFilesWithOddNames();
    void pausesInSilenceAtTheSelectionStartBehindItsEnd();
    void loopsOverTheSelection();
    void halfTheVolumeIsHalfTheAmplitude();
    void muteIsSilence();
    void pauseIsSilenceAndResumeGoesOn();
    void movesToAnotherDeviceWhilePlaying();
    void pitchFollowsTheRate_data();
    void pitchFollowsTheRate();
    void loopsOverTheSelectionAtAnotherRate();
    void positionsStayTrueWhenTheRateChanges();

private:
    QTemporaryDir m_folder;
    QString m_file;
};

void AudioPlayerSoundTest::initTestCase()
{
    QTRY_COMPARE_WITH_TIMEOUT(QMediaDevices::audioOutputs().size(), 2, patience);
    m_file = m_folder.filePath(QStringLiteral("tone.wav"));
    QVERIFY(WriteToneFile(m_file, {.seconds = 60.0}));
}

void AudioPlayerSoundTest::playsBothChannelsUnchanged()
{
    const SoundRecording one(QStringLiteral("one"));
    AudioPlayer player;
    player.SetAudioOutputDevice(Device("one"));
    player.SetAudio(m_file, 60.0);
    player.PauseResume();
    QTRY_VERIFY_WITH_TIMEOUT(Hears(one, 440, 880) && HearsAmplitude(one, 0.4), patience);
    QVERIFY(one.Amplitude(SoundRecording::Left, 880) < 0.01);
    QVERIFY(one.Amplitude(SoundRecording::Right, 440) < 0.01);
}

void AudioPlayerSoundTest::playsFilesWithOddNames_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("ASCII") << QStringLiteral("a b#c%20d?.wav");
    QTest::newRow("beyond ASCII") << QStringLiteral("übung #1 音楽 100%?.wav");
}

void AudioPlayerSoundTest::playsFilesWithOddNames()
{
    QFETCH(QString, name);
    const QString path = m_folder.filePath(name);
    QVERIFY(WriteToneFile(path, {.leftFrequency = 555, .rightFrequency = 1110, .seconds = 20.0}));
    const SoundRecording one(QStringLiteral("one"));
    AudioPlayer player;
    player.SetAudioOutputDevice(Device("one"));
    player.SetAudio(path, 20.0);
    player.SetSelection(1.0, 20.0);
    player.PauseResume();
    QTRY_VERIFY_WITH_TIMEOUT(Hears(one, 555, 1110), patience);
    QVERIFY(player.position() >= 1000);
}

void AudioPlayerSoundTest::pausesInSilenceAtTheSelectionStartBehindItsEnd()
{
    SoundRecording one(QStringLiteral("one"));
    AudioPlayer player;
    player.SetAudioOutputDevice(Device("one"));
    player.SetAudio(m_file, 60.0);
    player.SetSelection(1.5, 4.5);
    player.PauseResume();
    QTRY_VERIFY_WITH_TIMEOUT(Hears(one, 440, 880), patience);
    QTRY_COMPARE_WITH_TIMEOUT(player.playbackState(), QMediaPlayer::PausedState, patience);
    QCOMPARE(player.position(), 1500);
    one.Clear();
    QTRY_VERIFY_WITH_TIMEOUT(one.IsSilent(), patience);
    QCOMPARE(player.playbackState(), QMediaPlayer::PausedState);
    QCOMPARE(player.position(), 1500);
}

void AudioPlayerSoundTest::loopsOverTheSelection()
{
    SoundRecording one(QStringLiteral("one"));
    AudioPlayer player;
    player.SetAudioOutputDevice(Device("one"));
    player.SetAudio(m_file, 60.0);
    player.SetSelection(10.0, 10.6);
    player.LoopPlayback(true);
    int rounds = 0;
    connect(&player, &QMediaPlayer::positionChanged, this,
            [&rounds](qint64 position) { rounds += position == 10000 ? 1 : 0; });
    player.PauseResume();
    QTRY_VERIFY_WITH_TIMEOUT(rounds >= 5, patience);
    QVERIFY(player.playbackState() == QMediaPlayer::PlayingState);
    one.Clear();
    QTRY_VERIFY_WITH_TIMEOUT(Hears(one, 440, 880), patience);
    player.LoopPlayback(false);
    QTRY_COMPARE_WITH_TIMEOUT(player.playbackState(), QMediaPlayer::PausedState, patience);
    QCOMPARE(player.position(), 10000);
}

void AudioPlayerSoundTest::halfTheVolumeIsHalfTheAmplitude()
{
    const SoundRecording one(QStringLiteral("one"));
    AudioPlayer player;
    player.SetAudioOutputDevice(Device("one"));
    player.SetAudio(m_file, 60.0);
    player.PauseResume();
    QTRY_VERIFY_WITH_TIMEOUT(HearsAmplitude(one, 0.4), patience);
    player.SetVolume(50);
    QTRY_VERIFY_WITH_TIMEOUT(HearsAmplitude(one, 0.2), patience);
    player.SetVolume(100);
    QTRY_VERIFY_WITH_TIMEOUT(HearsAmplitude(one, 0.4), patience);
}

void AudioPlayerSoundTest::muteIsSilence()
{
    SoundRecording one(QStringLiteral("one"));
    AudioPlayer player;
    player.SetAudioOutputDevice(Device("one"));
    player.SetAudio(m_file, 60.0);
    player.PauseResume();
    QTRY_VERIFY_WITH_TIMEOUT(Hears(one, 440, 880), patience);
    player.SetMuted(true);
    one.Clear();
    QTRY_VERIFY_WITH_TIMEOUT(one.IsSilent(), patience);
    QCOMPARE(player.playbackState(), QMediaPlayer::PlayingState);
    player.SetMuted(false);
    QTRY_VERIFY_WITH_TIMEOUT(Hears(one, 440, 880), patience);
}

void AudioPlayerSoundTest::pauseIsSilenceAndResumeGoesOn()
{
    SoundRecording one(QStringLiteral("one"));
    AudioPlayer player;
    player.SetAudioOutputDevice(Device("one"));
    player.SetAudio(m_file, 60.0);
    player.PauseResume();
    QTRY_VERIFY_WITH_TIMEOUT(Hears(one, 440, 880), patience);
    player.PauseResume();
    one.Clear();
    QTRY_VERIFY_WITH_TIMEOUT(one.IsSilent(), patience);
    const qint64 position = player.position();
    player.PauseResume();
    QTRY_VERIFY_WITH_TIMEOUT(Hears(one, 440, 880), patience);
    QTRY_VERIFY_WITH_TIMEOUT(player.position() > position, patience);
}

void AudioPlayerSoundTest::movesToAnotherDeviceWhilePlaying()
{
    SoundRecording one(QStringLiteral("one"));
    SoundRecording two(QStringLiteral("two"));
    AudioPlayer player;
    player.SetAudioOutputDevice(Device("one"));
    player.SetVolume(50);
    player.SetAudio(m_file, 60.0);
    player.PauseResume();
    QTRY_VERIFY_WITH_TIMEOUT(Hears(one, 440, 880), patience);
    QTRY_VERIFY_WITH_TIMEOUT(two.IsSilent(), patience);
    player.SetAudioOutputDevice(Device("two"));
    one.Clear();
    QTRY_VERIFY_WITH_TIMEOUT(HearsAmplitude(two, 0.2), patience);
    QTRY_VERIFY_WITH_TIMEOUT(one.IsSilent(), patience);
    QCOMPARE(player.playbackState(), QMediaPlayer::PlayingState);
}

void AudioPlayerSoundTest::pitchFollowsTheRate_data()
{
    QTest::addColumn<double>("rate");
    QTest::addColumn<int>("left");
    QTest::newRow("a quarter") << 0.25 << 110;
    QTest::newRow("a half") << 0.5 << 220;
    QTest::newRow("double") << 2.0 << 880;
    QTest::newRow("fourfold") << 4.0 << 1760;
}

void AudioPlayerSoundTest::pitchFollowsTheRate()
{
    QFETCH(double, rate);
    QFETCH(int, left);
    SoundRecording one(QStringLiteral("one"));
    AudioPlayer player;
    player.SetAudioOutputDevice(Device("one"));
    player.SetPlaybackRate(rate);
    for (int source = 0; source < 2; ++source) {
        player.SetAudio(m_file, 60.0);
        one.Clear();
        player.play();
        QTRY_COMPARE_WITH_TIMEOUT(one.Frequency(SoundRecording::Left), left, patience);
    }
    player.SetPlaybackRate(1.0);
    QTRY_VERIFY_WITH_TIMEOUT(Hears(one, 440, 880) && HearsAmplitude(one, 0.4), patience);
}

void AudioPlayerSoundTest::loopsOverTheSelectionAtAnotherRate()
{
    SoundRecording one(QStringLiteral("one"));
    AudioPlayer player;
    player.SetAudioOutputDevice(Device("one"));
    player.SetPlaybackRate(2.0);
    player.SetAudio(m_file, 60.0);
    player.SetSelection(10.0, 11.0);
    player.LoopPlayback(true);
    int rounds = 0;
    qint64 last = 0;
    connect(&player, &QMediaPlayer::positionChanged, this, [&](qint64 position) {
        rounds += position == 10000 ? 1 : 0;
        last = std::max(last, position);
    });
    player.play();
    QTRY_VERIFY_WITH_TIMEOUT(rounds >= 4, patience);
    QVERIFY(last >= 11000);
    one.Clear();
    QTRY_VERIFY_WITH_TIMEOUT(Hears(one, 880, 1760), patience);
    player.LoopPlayback(false);
    QTRY_COMPARE_WITH_TIMEOUT(player.playbackState(), QMediaPlayer::PausedState, patience);
    QCOMPARE(player.position(), 10000);
}

/** The tone changes in the middle of the file. */
void AudioPlayerSoundTest::positionsStayTrueWhenTheRateChanges()
{
    const QByteArray low = ToneFileBytes({.leftFrequency = 440, .seconds = 40.0});
    const QByteArray high = ToneFileBytes({.leftFrequency = 1000, .seconds = 40.0});
    const qsizetype half = low.size() / 2;
    QFile file(m_folder.filePath(QStringLiteral("two tones.wav")));
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(low.left(half) + high.mid(half)) == low.size());
    file.close();
    SoundRecording one(QStringLiteral("one"));
    AudioPlayer player;
    player.SetAudioOutputDevice(Device("one"));
    player.SetAudio(file.fileName(), 40.0);
    player.play();
    QTRY_COMPARE_WITH_TIMEOUT(one.Frequency(SoundRecording::Left), 440, patience);
    const QSignalSpy positions(&player, &QMediaPlayer::positionChanged);
    for (int i = 0; i < 30; ++i) {
        player.SetPlaybackRate(i % 2 == 0 ? 1.25 : 1.0);
        const qsizetype count = positions.count();
        QTRY_VERIFY_WITH_TIMEOUT(positions.count() > count + 1, patience);
    }
    QVERIFY2(player.position() < 15000, qPrintable(QString::number(player.position())));
    QTRY_COMPARE_WITH_TIMEOUT(one.Frequency(SoundRecording::Left), 1000, patience);
    QVERIFY2(std::abs(player.position() - 20000) < 1500, qPrintable(QString::number(player.position())));
}

int main(int argc, char** argv)
{
    const SoundServer server({QStringLiteral("one"), QStringLiteral("two")});
    QCoreApplication application(argc, argv);
    AudioPlayerSoundTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_audio_player_sound.moc"
