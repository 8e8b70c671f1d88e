#include "tests/support/SoundRecording.h"
#include "tests/support/SoundServer.h"
#include "tests/support/Tone.h"
#include "tests/ui/player/LoadedPlayer.h"

#include <QtCore/QDir>
#include <QtTest/QSignalSpy>
#include <QtWidgets/QApplication>
#include <QtWidgets/QPushButton>

#include <functional>
#include <utility>

using namespace Qt::Literals::StringLiterals;
using vantoraudio::vantorAudioEngine::UI::AudioPlayerWidget;
using vantoraudio::vantorAudioEngine::UI::AudioPlayerWidgetTestAccess;
using vantoraudio::vantorAudioEngine::UI::RecordingPlayerWidget;
using WavTest::LittleEndian;

namespace {

constexpr int patience = 30000;

using Step = std::function<void(AudioPlayerWidget&)>;

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

    void anotherChannelIsPlayedFromTheSamePlace_data()
    {
        QTest::addColumn<Step>("meanwhile");
        QTest::addColumn<bool>("plays");
        QTest::addColumn<int>("position");
        QTest::newRow("nothing else") << Step([](auto&) {}) << true << 6000;
        QTest::newRow("a click on stop") << Step([](auto& widget) {
            QTest::mouseClick(widget.template findChild<QPushButton*>(u"btnStop"_s), Qt::LeftButton);
        }) << false << 0;
        QTest::newRow("a pause") << Step([](auto& widget) { widget.Pause(); }) << false << 6000;
        QTest::newRow("a stop by the program") << Step([](auto& widget) { widget.StopPlayback(); }) << false << 0;
        QTest::newRow("another device")
            << Step([](auto& widget) { widget.SetAudioOutputDevice({}); }) << false << 6000;
        QTest::newRow("another position")
            << Step([](auto& widget) { widget.UpdateAudioPosition(5.5); }) << true << 5500;
        QTest::newRow("a click in the view") << Step([](auto& widget) {
            auto* diagram = widget.template findChild<QWidget*>(u"BGFXWaveformDiagramWidget"_s);
            QTest::mouseClick(diagram, Qt::LeftButton, {}, {diagram->width() / 2, 20});
        }) << true << 7000;
        QTest::newRow("yet another channel")
            << Step([](auto& widget) { widget.SetSelectedChannel(WavFile::ChannelRight); }) << true << 6000;
    }
    void anotherChannelIsPlayedFromTheSamePlace()
    {
        QFETCH(const Step, meanwhile);
        QFETCH(const bool, plays);
        QFETCH(const int, position);
        const TemporaryFiles files;
        const TemporaryFiles copies;
        RecordingPlayerWidget widget;
        widget.SetWritableDirectoryPath(copies.Path(QString()));
        widget.SetChannelChangeKeepsPlace(true);
        widget.resize(800, 400);
        widget.show();
        widget.SetAudioFile(files.Write(u"fast.wav"_s, FastTone(10.0)));
        const AudioPlayer& player = AudioPlayerWidgetTestAccess::Player(widget);
        QTRY_COMPARE_WITH_TIMEOUT(player.duration(), 10000, patience);
        widget.ShowRange(5.0, 9.0);
        widget.UpdateAudioPosition(6.0);
        widget.Play();
        QTRY_VERIFY_WITH_TIMEOUT(widget.IsPlaying(), patience);
        const QUrl former = player.source();
        bool awaitedCopy = false;
        const auto happens = [&] {
            awaitedCopy = player.source().isEmpty();
            meanwhile(widget);
        };
        // Ahead of the news of the copy, which the event loop brings, too.
        connect(&player, &QMediaPlayer::sourceChanged, &widget, happens,
                Qt::ConnectionType(Qt::QueuedConnection | Qt::SingleShotConnection));
        widget.SetSelectedChannel(WavFile::ChannelLeft);
        QTRY_VERIFY_WITH_TIMEOUT(awaitedCopy, patience);
        QTRY_VERIFY_WITH_TIMEOUT(!player.source().isEmpty() && player.duration() > 0 && !widget.IsBusy(),
                                 patience);
        QVERIFY(player.source() != former);
        QTRY_COMPARE_WITH_TIMEOUT(widget.IsPlaying(), plays, patience);
        const auto isThere = [&] {
            return player.position() >= position - 5 && player.position() < position + 2500;
        };
        QTRY_VERIFY2_WITH_TIMEOUT(isThere(), qPrintable(QString::number(player.position())), patience);
        if (plays) {
            QCOMPARE(widget.GetVisibleRange(), std::pair(5.0, 9.0));
        }
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
