#include "engine/QtDefects.h"
#include "tests/support/SoundServer.h"
#include "tests/support/Tone.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>
#include <QtCore/QTemporaryDir>
#include <QtCore/QUrl>
#include <QtMultimedia/QAudioDecoder>
#include <QtMultimedia/QAudioDevice>
#include <QtMultimedia/QAudioOutput>
#include <QtMultimedia/QMediaDevices>
#include <QtMultimedia/QMediaPlayer>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

namespace QtDefects = vantoraudio::AudioEngine::QtDefects;
using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int patience = 30000;

QStringList ListedDevices()
{
    QStringList names;
    for (const QAudioDevice& device : QMediaDevices::audioOutputs()) {
        names << QString::fromUtf8(device.id());
    }
    names.sort();
    return names;
}

/** Whether the condition comes true in the time in which a sound Qt would have made it so many times over. */
template<typename Condition>
bool Happens(Condition condition)
{
    return QTest::qWaitFor(condition, 1500);
}

} // namespace

/**
 * Each defect that the library works round, in plain Qt, where the workaround is not. A row that fails with a new
 * Qt tells that the defect is gone, or has come back. Those that show only once in hundreds of times, or only in
 * how long something takes, have no row here: NapsWhileDecoding(), LosesSeeks(), MissesItsOwnSignals() and
 * FreesItsConnectionInUse(). The program rare_qt_defects counts these. The program sound_faults counts
 * LosesTheSoundServer() and KeepsItsLock().
 */
class QtDefectsTest : public QObject
{
    Q_OBJECT

public:
    explicit QtDefectsTest(SoundServer& server) : m_server(server) {}

private Q_SLOTS:
    void initTestCase()
    {
        QTRY_COMPARE_WITH_TIMEOUT(QMediaDevices::audioOutputs().size(), 1, patience);
        QVERIFY(WriteToneFile(m_long, {.seconds = 30.0}));
        QVERIFY(WriteToneFile(m_short, {.seconds = 0.1}));
    }

    void missesDeviceChanges()
    {
        const QMediaDevices devices;
        QSignalSpy changes(&devices, &QMediaDevices::audioOutputsChanged);
        QVERIFY(m_server.AddSink(u"two"_s));
        const bool tellsOfNewOnes = Happens([&] { return !changes.isEmpty(); });
        QTRY_COMPARE_WITH_TIMEOUT(ListedDevices(), (QStringList{u"one"_s, u"two"_s}), patience);
        changes.clear();
        QVERIFY(m_server.RemoveSink(u"two"_s));
        const bool forgetsLostOnes = Happens([] { return ListedDevices() == QStringList{u"one"_s}; });
        const bool tellsOfLostOnes = !changes.isEmpty();
        QCOMPARE(!tellsOfNewOnes || !forgetsLostOnes || !tellsOfLostOnes, QtDefects::MissesDeviceChanges());
    }

    void runsOnWithoutOutput()
    {
        QMediaPlayer player;
        player.setSource(QUrl::fromLocalFile(m_long));
        QTRY_COMPARE_WITH_TIMEOUT(player.mediaStatus(), QMediaPlayer::LoadedMedia, patience);
        player.play();
        QCOMPARE(Happens([&] { return player.position() > 500; }), QtDefects::RunsOnWithoutOutput());
    }

    void losesSeeksWhileLoading()
    {
        QMediaPlayer player;
        player.setSource(QUrl::fromLocalFile(m_long));
        QCOMPARE(player.mediaStatus(), QMediaPlayer::LoadingMedia);
        player.setPosition(5000);
        QTRY_COMPARE_WITH_TIMEOUT(player.mediaStatus(), QMediaPlayer::LoadedMedia, patience);
        QCOMPARE(player.position() != 5000, QtDefects::LosesSeeksWhileLoading());
    }

    void garblesNames()
    {
        const QString path = m_folder.filePath(u"g\u00E4rbled.wav"_s);
        QVERIFY(WriteToneFile(path, {.seconds = 1.0}));
        QMediaPlayer player;
        player.setSource(QUrl::fromLocalFile(path));
        QTRY_VERIFY_WITH_TIMEOUT(player.mediaStatus() != QMediaPlayer::LoadingMedia, patience);
        QCOMPARE(player.duration() != 1000, QtDefects::GarblesNames());
    }

    void losesThePlaybackRate()
    {
        QMediaPlayer player;
        QAudioOutput output;
        player.setAudioOutput(&output);
        player.setSource(QUrl::fromLocalFile(m_short));
        player.setPlaybackRate(4.0);
        player.setSource(QUrl::fromLocalFile(m_long));
        QCOMPARE(player.playbackRate(), 4.0);
        QTRY_COMPARE_WITH_TIMEOUT(player.mediaStatus(), QMediaPlayer::LoadedMedia, patience);
        QElapsedTimer clock;
        clock.start();
        player.play();
        QCOMPARE(!Happens([&] { return player.position() > clock.elapsed() + 500; }),
                 QtDefects::LosesThePlaybackRate());
    }

    void reportsTheEndTwice()
    {
        QMediaPlayer player;
        QAudioOutput output;
        player.setAudioOutput(&output);
        player.setSource(QUrl::fromLocalFile(m_short));
        player.play();
        QTRY_COMPARE_WITH_TIMEOUT(player.mediaStatus(), QMediaPlayer::EndOfMedia, patience);
        player.setPosition(player.duration());
        player.pause();
        QCOMPARE(player.playbackState(), QMediaPlayer::PausedState);
        QCOMPARE(Happens([&] { return player.playbackState() == QMediaPlayer::StoppedState; }),
                 QtDefects::ReportsTheEndTwice());
    }

    void isSilentAboutWhatItCannotDecode_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("missing") << QByteArray();
        QTest::newRow("empty") << QByteArray("");
        QTest::newRow("text") << QByteArray(1000, 't');
    }
    void isSilentAboutWhatItCannotDecode()
    {
        QFETCH(QByteArray, content);
        QFile file(m_folder.filePath(u"undecodable.mp3"_s));
        file.remove();
        if (!content.isNull()) {
            QVERIFY(file.open(QIODevice::WriteOnly));
            QCOMPARE(file.write(content), content.size());
            file.close();
        }
        QAudioDecoder decoder;
        QSignalSpy errors(&decoder, qOverload<QAudioDecoder::Error>(&QAudioDecoder::error));
        QSignalSpy ends(&decoder, &QAudioDecoder::finished);
        decoder.setSource(QUrl::fromLocalFile(file.fileName()));
        decoder.start();
        QCOMPARE(!Happens([&] { return !errors.isEmpty() || !ends.isEmpty(); }),
                 QtDefects::IsSilentAboutWhatItCannotDecode());
    }

private:
    SoundServer& m_server;
    const QTemporaryDir m_folder;
    const QString m_long = m_folder.filePath(u"long.wav"_s);
    const QString m_short = m_folder.filePath(u"short.wav"_s);
};

int main(int argc, char** argv)
{
    SoundServer server({u"one"_s});
    QCoreApplication application(argc, argv);
    QtDefectsTest test(server);
    return QTest::qExec(&test, argc, argv);
}

#include "tst_qtdefects.moc"
