#include "tests/support/SoundRecording.h"
#include "tests/support/SoundServer.h"
#include "tests/support/Tone.h"
#include "tests/ui/player/BlockedPool.h"
#include "tests/ui/player/LoadedPlayer.h"
#include "ui/player/LoadThreads.h"

#include <QtCore/QDir>
#include <QtTest/QSignalSpy>
#include <QtWidgets/QApplication>
#include <QtWidgets/QPushButton>

#include <functional>
#include <optional>
#include <utility>

using namespace Qt::Literals::StringLiterals;
using vantoraudio::vantorAudioEngine::UI::AudioPlayerWidget;
using vantoraudio::vantorAudioEngine::UI::AudioPlayerWidgetTestAccess;
using vantoraudio::vantorAudioEngine::UI::RecordingPlayerWidget;
namespace LoadThreads = vantoraudio::vantorAudioEngine::UI::LoadThreads;
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
        QTest::addColumn<int>("chunks");
        QTest::newRow("SetAudioFile") << false << 0;
        QTest::newRow("LoadFile") << true << 0;
        QTest::newRow("the rate stands behind 1001 chunks") << false << 1001;
    }
    void playsACopyOfARateThatNoOutputPlays()
    {
        QFETCH(bool, inBackground);
        QFETCH(int, chunks);
        const TemporaryFiles files;
        const TemporaryFiles copies;
        RecordingPlayerWidget widget;
        widget.SetWritableDirectoryPath(copies.Path(QString()));
        const QByteArray emptyChunks = QByteArray("JUNK\0\0\0\0", 8).repeated(chunks);
        const QString path = files.Write(u"fast.wav"_s, FastTone(4.0).insert(12, emptyChunks));
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
        QTest::newRow("a pause and going on") << Step([](auto& widget) {
            widget.Pause();
            widget.Play();
        }) << true << 6000;
        QTest::newRow("a pause and the space key") << Step([](auto& widget) {
            widget.Pause();
            QTest::keyClick(&widget, Qt::Key_Space);
        }) << true << 6000;
        QTest::newRow("two clicks on play") << Step([](auto& widget) {
            auto* play = widget.template findChild<QPushButton*>(u"btnPlayPause"_s);
            QTest::mouseClick(play, Qt::LeftButton);
            QTest::mouseClick(play, Qt::LeftButton);
        }) << false << 6000;
        QTest::newRow("a stop by the program") << Step([](auto& widget) { widget.StopPlayback(); }) << false << 0;
        QTest::newRow("another device")
            << Step([](auto& widget) { widget.SetAudioOutputDevice({}); }) << false << 6000;
        QTest::newRow("another position")
            << Step([](auto& widget) { widget.UpdateAudioPosition(8.0); }) << true << 8000;
        QTest::newRow("a click in the view") << Step([](auto& widget) {
            auto* diagram = widget.template findChild<QWidget*>(u"BGFXWaveformDiagramWidget"_s);
            QTest::mouseClick(diagram, Qt::LeftButton, {}, {diagram->width() * 3 / 4, 20});
        }) << true << 8000;
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
        // Later ones would pass every place behind it, too.
        std::optional<qint64> firstPlayed;
        const QObject context;
        connect(&player, &QMediaPlayer::positionChanged, &context, [&](qint64 at) {
            const bool isOfCopy = !player.source().isEmpty() && player.source() != former;
            if (isOfCopy && widget.IsPlaying() && !firstPlayed) {
                firstPlayed = at;
            }
        });
        {
            const BlockedPool noCopyYet(*LoadThreads::Pool());
            widget.SetSelectedChannel(WavFile::ChannelLeft);
            QTRY_VERIFY_WITH_TIMEOUT(player.source().isEmpty(), patience);
            meanwhile(widget);
            QTRY_VERIFY_WITH_TIMEOUT(!widget.IsBusy(), patience);
            QVERIFY(player.source().isEmpty());
        }
        QTRY_VERIFY_WITH_TIMEOUT(!player.source().isEmpty() && player.duration() > 0, patience);
        QVERIFY(player.source() != former);
        QTRY_COMPARE_WITH_TIMEOUT(widget.IsPlaying(), plays, patience);
        const auto place = [&] { return plays ? firstPlayed.value_or(-1) : player.position(); };
        const auto isThere = [&] { return place() >= position - 5 && place() < position + 2500; };
        QTRY_VERIFY2_WITH_TIMEOUT(isThere(), qPrintable(QString::number(place())), patience);
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
        const QSignalSpy failures(&widget, &AudioPlayerWidget::PlaybackFailed);
        widget.SetAudioFile(files.Write(u"empty.wav"_s, bytes));
        QTRY_VERIFY_WITH_TIMEOUT(!failures.isEmpty(), patience);
        QTRY_COMPARE(failures.size(), errors.size());
        QCOMPARE(failures.first(), QVariantList{errors.first().at(1)});
        QVERIFY(!failures.first().first().toString().isEmpty());
        QVERIFY(widget.errors.isEmpty());
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
