#include "tests/playback/AudioPlayerTestAccess.h"
#include "tests/support/SoundRecording.h"
#include "tests/support/SoundServer.h"
#include "tests/support/Tone.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QTemporaryDir>
#include <QtCore/QUrl>
#include <QtMultimedia/QAudioOutput>
#include <QtMultimedia/QMediaDevices>
#include <QtMultimedia/QMediaPlayer>
#include <QtTest/QTest>

using vantoraudio::AudioEngine::StandstillWatch;
using Access = vantoraudio::AudioEngine::StandstillWatchTestAccess;

namespace {

constexpr int patience = 30000;

} // namespace

/** A player of Qt's own under watch, whether this version of Qt needs it or not. */
class StandstillWatchTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QTRY_COMPARE_WITH_TIMEOUT(QMediaDevices::audioOutputs().size(), 1, patience);
        m_file = m_folder.filePath(QStringLiteral("tone.wav"));
        QVERIFY(WriteToneFile(m_file, {.seconds = 60.0}));
    }

    void restartsOnlyAPlayerThatStandsStillThoughItShouldSound_data()
    {
        QTest::addColumn<QString>("what");
        QTest::addColumn<QList<QMediaPlayer::PlaybackState>>("states");
        using States = QList<QMediaPlayer::PlaybackState>;
        QTest::newRow("standing still")
            << QStringLiteral("still") << States{QMediaPlayer::PausedState, QMediaPlayer::PlayingState};
        QTest::newRow("getting on") << QStringLiteral("on") << States();
        QTest::newRow("paused") << QStringLiteral("paused") << States();
        QTest::newRow("stopped") << QStringLiteral("stopped") << States();
        QTest::newRow("without an output") << QStringLiteral("mute") << States();
        QTest::newRow("without media") << QStringLiteral("empty") << States();
    }
    void restartsOnlyAPlayerThatStandsStillThoughItShouldSound()
    {
        QFETCH(QString, what);
        QFETCH(QList<QMediaPlayer::PlaybackState>, states);
        QMediaPlayer player;
        QAudioOutput output;
        player.setAudioOutput(&output);
        StandstillWatch watch(player);
        if (what != u"empty") {
            player.setSource(QUrl::fromLocalFile(m_file));
            QTRY_COMPARE_WITH_TIMEOUT(player.mediaStatus(), QMediaPlayer::LoadedMedia, patience);
            player.setPosition(20000);
        }
        player.play();
        if (what == u"paused") {
            player.pause();
        } else if (what == u"stopped") {
            player.stop();
        } else if (what == u"mute") {
            player.setAudioOutput(nullptr);
        }
        const qint64 position = player.position();

        // No event is handled from here on, so nothing but the watch changes the player.
        QList<QMediaPlayer::PlaybackState> changes;
        connect(&player, &QMediaPlayer::playbackStateChanged, this,
                [&changes](QMediaPlayer::PlaybackState state) { changes << state; });
        if (what != u"on") {
            Access::LetProgressBeDue(watch);
        }
        Access::EndStandstill(watch);
        QCOMPARE(changes, states);
        QVERIFY(qAbs(player.position() - position) < 20);
        // The restarted player has as much time again.
        Access::EndStandstill(watch);
        QCOMPARE(changes, states);
    }

    void onlyAPositionThatMovesMoreThanItCreepsIsProgress_data()
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
    void onlyAPositionThatMovesMoreThanItCreepsIsProgress()
    {
        QFETCH(qint64, position);
        QFETCH(bool, isProgress);
        QMediaPlayer player;
        StandstillWatch watch(player);
        Access::NoteProgress(watch, 5000);
        Access::LetProgressBeDue(watch);
        Access::NoteProgress(watch, position);
        QCOMPARE(Access::IsProgressDue(watch), !isProgress);
    }

    void looksAfterAPlayerOnlyWhileItPlays()
    {
        QMediaPlayer player;
        QAudioOutput output;
        player.setAudioOutput(&output);
        StandstillWatch watch(player);
        QVERIFY(!Access::IsLooking(watch));
        player.setSource(QUrl::fromLocalFile(m_file));
        player.play();
        QTRY_VERIFY_WITH_TIMEOUT(Access::IsLooking(watch), patience);
        QVERIFY(Access::TimeBetweenLooks(watch) >= std::chrono::milliseconds(50));
        player.pause();
        QVERIFY(!Access::IsLooking(watch));
    }

    void setsAPlayerGoingAgainThatStandsStill()
    {
        const SoundRecording one(QStringLiteral("one"));
        QMediaPlayer player;
        QAudioOutput output;
        player.setAudioOutput(&output);
        StandstillWatch watch(player);
        player.setSource(QUrl::fromLocalFile(m_file));
        player.play();
        QTRY_COMPARE_WITH_TIMEOUT(one.Frequency(SoundRecording::Left), 440, patience);
        // An output that comes back to a running player of Qt 6.4 gets nothing to play.
        player.setAudioOutput(nullptr);
        QTRY_VERIFY_WITH_TIMEOUT(one.IsSilent(), patience);
        player.setAudioOutput(&output);
        QTRY_COMPARE_WITH_TIMEOUT(one.Frequency(SoundRecording::Left), 440, patience);
        QCOMPARE(player.playbackState(), QMediaPlayer::PlayingState);
    }

private:
    QTemporaryDir m_folder;
    QString m_file;
};

int main(int argc, char** argv)
{
    const SoundServer server({QStringLiteral("one")});
    QCoreApplication application(argc, argv);
    StandstillWatchTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_standstill_watch.moc"
