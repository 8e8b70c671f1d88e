#include "tests/support/SoundRecording.h"
#include "tests/support/SoundServer.h"
#include "tests/support/Tone.h"
#include "tests/ui/player/LoadedPlayer.h"

#include <QtCore/QDir>
#include <QtTest/QSignalSpy>
#include <QtWidgets/QApplication>

#include <utility>

using namespace Qt::Literals::StringLiterals;
using vantoraudio::vantorAudioEngine::UI::AudioPlayerWidgetTestAccess;
using vantoraudio::vantorAudioEngine::UI::RecordingPlayerWidget;
using WavTest::LittleEndian;

namespace {

constexpr int patience = 30000;

/** The tone of 440 Hz and 880 Hz at ten times the usual rate. */
QByteArray FastTone(double seconds)
{
    QByteArray bytes = ToneFileBytes({.leftFrequency = 44, .rightFrequency = 88, .seconds = seconds * 10.0});
    bytes.replace(24, 4, LittleEndian(quint32(441000)));
    return bytes;
}

QStringList Copies(const QString& folder)
{
    return QDir(folder).entryList({u".played-*"_s}, QDir::Dirs | QDir::Hidden);
}

} // namespace

/** A file with a rate that no output can play. */
class PlayableCopyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void playsACopyOfARateThatNoOutputPlays_data()
    {
        QTest::addColumn<bool>("inBackground");
        QTest::newRow("SetAudioFile") << false;
        QTest::newRow("LoadFile") << true;
    }
    void playsACopyOfARateThatNoOutputPlays()
    {
        QFETCH(bool, inBackground);
        const TemporaryFiles files;
        const TemporaryFiles copies;
        RecordingPlayerWidget widget;
        widget.SetWritableDirectoryPath(copies.Path(QString()));
        const QString path = files.Write(u"fast.wav"_s, FastTone(4.0));
        inBackground ? widget.LoadFile(path) : widget.SetAudioFile(path);
        AudioPlayer& player = AudioPlayerWidgetTestAccess::Player(widget);
        QTRY_COMPARE_WITH_TIMEOUT(player.duration(), 4000, patience);
        QCOMPARE(widget.GetAudioFileFormat().sampleRate(), 441000);
        const SoundRecording one(u"one"_s);
        AudioPlayerWidgetTestAccess::Player(widget).LoopPlayback(true);
        widget.Play();
        QTRY_COMPARE_WITH_TIMEOUT(one.Frequency(SoundRecording::Left), 440, patience);
        QCOMPARE(one.Frequency(SoundRecording::Right), 880);
        widget.Reset();
        QTRY_VERIFY_WITH_TIMEOUT(Copies(copies.Path(QString())).isEmpty(), patience);
    }

    void anotherFileMayBeLoadedWhileTheCopyIsHandedOver()
    {
        const TemporaryFiles files;
        const TemporaryFiles copies;
        RecordingPlayerWidget widget;
        widget.SetWritableDirectoryPath(copies.Path(QString()));
        const QString other = files.Write(u"other.wav"_s, ToneFileBytes({.seconds = 2.0}));
        AudioPlayer& player = AudioPlayerWidgetTestAccess::Player(widget);
        bool hasLoaded = false;
        connect(&player, &QMediaPlayer::sourceChanged, this, [&](const QUrl& source) {
            if (!std::exchange(hasLoaded, hasLoaded || !source.isEmpty()) && hasLoaded) {
                widget.SetAudioFile(other);
            }
        });
        widget.SetAudioFile(files.Write(u"fast.wav"_s, FastTone(4.0)));
        QTRY_VERIFY_WITH_TIMEOUT(hasLoaded, patience);
        QCOMPARE(widget.GetOriginalAudioFilePath(), other);
        QVERIFY(widget.errors.isEmpty());
    }

    void aWidgetThatIsDestroyedMeanwhileLeavesNothing()
    {
        const TemporaryFiles files;
        const TemporaryFiles copies;
        {
            RecordingPlayerWidget widget;
            widget.SetWritableDirectoryPath(copies.Path(QString()));
            widget.SetAudioFile(files.Write(u"fast.wav"_s, FastTone(5.0)));
            QTRY_COMPARE_WITH_TIMEOUT(Copies(copies.Path(QString())).size(), 1, patience);
        }
        QTRY_VERIFY_WITH_TIMEOUT(Copies(copies.Path(QString())).isEmpty(), patience);
    }

    void tellsOfAFileOfWhichThereCanBeNoCopy()
    {
        const TemporaryFiles files;
        const TemporaryFiles copies;
        RecordingPlayerWidget widget;
        widget.SetWritableDirectoryPath(copies.Path(QString()));
        const QByteArray bytes = WavTest::WavBytes{.sampleRate = 441000}.Build();
        AudioPlayer& player = AudioPlayerWidgetTestAccess::Player(widget);
        QSignalSpy errors(&player, &QMediaPlayer::errorOccurred);
        widget.SetAudioFile(files.Write(u"empty.wav"_s, bytes));
        QTRY_VERIFY_WITH_TIMEOUT(!errors.isEmpty(), patience);
        widget.Play();
        QCOMPARE(player.position(), 0);
    }
};

int main(int argc, char** argv)
{
    const SoundServer server({u"one"_s});
    QApplication application(argc, argv);
    PlayableCopyTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_playablecopy.moc"
