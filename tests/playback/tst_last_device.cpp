#include "playback/OutputDevices.h"
#include "tests/support/SoundRecording.h"
#include "tests/support/SoundServer.h"
#include "tests/support/Tone.h"
#include "tests/support/WaitAwake.h"

#include <vantorAudioEngine/AudioPlayer.h>

#include <QtConcurrent/QtConcurrentRun>
#include <QtCore/QCoreApplication>
#include <QtCore/QTemporaryDir>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

using vantoraudio::AudioEngine::PresentOutputs;

namespace {

constexpr int patience = 30000;

} // namespace

/**
 * A player whose only device goes away under it, on a sound server that puts no other one in its place. Qt 6.4's
 * sound thread can block for good there, in about one of several hundred times however quick the player is; this
 * stands in a program of its own for that.
 */
class LastDeviceTest : public QObject
{
    Q_OBJECT

public:
    explicit LastDeviceTest(SoundServer& server) : m_server(server) {}

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_server.IsRunning());
        m_file = m_folder.filePath(QStringLiteral("tone.wav"));
        QVERIFY(WriteToneFile(m_file, {.seconds = 60.0}));
    }

    void goesOnWithTheNextDeviceAfterItsOnlyOneLeft()
    {
        AudioPlayer player;
        player.SetAudio(m_file, 60.0);
        for (const QString& name : {QStringLiteral("one"), QStringLiteral("two")}) {
            QVERIFY(m_server.AddSink(name));
            player.play();
            {
                const SoundRecording recording(name);
                QTRY_COMPARE_WITH_TIMEOUT(recording.Frequency(SoundRecording::Left), 440, patience);
            }
            QFuture<bool> removal = QtConcurrent::run([&] { return m_server.RemoveSink(name); });
            WaitAwake([] { return PresentOutputs().isEmpty(); });
            QVERIFY(removal.result());
            const qint64 position = player.position();
            QSignalSpy positions(&player, &QMediaPlayer::positionChanged);
            positions.wait(500);
            QCOMPARE(player.playbackState(), QMediaPlayer::PlayingState);
            QVERIFY(player.position() - position < 400);
        }
    }

private:
    SoundServer& m_server;
    QTemporaryDir m_folder;
    QString m_file;
};

int main(int argc, char* argv[])
{
    SoundServer server;
    QCoreApplication application(argc, argv);
    LastDeviceTest test(server);
    return QTest::qExec(&test, argc, argv);
}

#include "tst_last_device.moc"
