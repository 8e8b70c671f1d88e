#include "tests/support/AudioPrograms.h"
#include "tests/support/SoundServer.h"
#include "tests/support/TestAudio.h"
#include "tests/ui/player/PlayerSetup.h"
#include "tests/ui/waveform/WaveformTestAccess.h"

#include <QtCore/QLoggingCategory>
#include <QtMultimedia/QMediaDevices>
#include <QtWidgets/QApplication>

using namespace Qt::Literals::StringLiterals;
using namespace WavTest;
using vantoraudio::vantorAudioEngine::UI::AudioPlayerWidget;
using vantoraudio::vantorAudioEngine::UI::WaveformTestAccess;
using Access = PlayerSetup::Access;

namespace {

constexpr int rate = 44100;
constexpr int frames = rate;
constexpr std::pair selection(0.25, 0.35);

QByteArray Wav(Coding coding, quint16 channels)
{
    return TestAudio{.coding = coding, .channels = channels, .rate = rate, .frames = frames}.File();
}

QByteArray Extensible(Coding coding, quint16 channels)
{
    const TestAudio audio{.coding = coding, .channels = channels, .rate = rate, .frames = frames};
    const auto bits = static_cast<quint16>(TestAudio::Bits(coding));
    return WavBytes{.formatTag = 0xFFFE,
                    .channels = channels,
                    .sampleRate = rate,
                    .bits = bits,
                    .extension = Extension(coding == F32 ? FloatGuid() : PcmGuid(), 22, bits),
                    .data = audio.Data()}
        .Build();
}

/** A tone as another program encodes it. */
QByteArray Encoded(const QString& format, int channels)
{
    const TemporaryFiles files;
    const QString wav = files.Path(u"tone.wav"_s);
    const QString path = files.Path(u"tone."_s + format);
    const bool isMade =
        AudioPrograms::MakeTone(wav, rate, channels, 1.0) && AudioPrograms::Encode(format, wav, path);
    return isMade ? TemporaryFiles::Read(path) : QByteArray();
}

/** What the engine alone makes of a copy of the file. */
class Alone
{
public:
    Alone(const QString& path, WavFile::ChannelFormat channel)
    {
        m_file.Open(m_files.Write(u"source.wav"_s, TemporaryFiles::Read(path)));
        m_file.SetSelectedChannel(channel);
    }
    QByteArray Filtered() { return ReadIf(m_file.FilterChannel(m_out)); }
    QByteArray Snippet(double start, double end) { return ReadIf(m_file.CreateSnippet(m_out, start, end)); }

private:
    QByteArray ReadIf(WavFile::AudioEngineReturnValue result)
    {
        return result == WavFile::Success ? TemporaryFiles::Read(m_out) : QByteArray();
    }

    const TemporaryFiles m_files;
    const QString m_out = m_files.Path(u"out.wav"_s);
    WavFile m_file;
};

} // namespace

/** A file on its way through the player, as a program and its user lead it. */
class PlayerRoadTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void walksTheWholeRoad_data();
    void walksTheWholeRoad();

private:
    void Load();
    void See();
    void Play();
    void SelectAndLoop();
    void ChooseEveryChannel();
    void ChooseChannel(WavFile::ChannelFormat channel, const QString& playedPath);
    void PlayTheChannel();
    void ExportSnippet();

    std::unique_ptr<PlayerSetup> m_setup;
    QString m_name;
    QByteArray m_bytes;
    QImage m_emptyPicture;
};

void PlayerRoadTest::initTestCase()
{
    QLoggingCategory::setFilterRules(u"*.debug=false"_s);
    QTRY_COMPARE_WITH_TIMEOUT(QMediaDevices::audioOutputs().size(), 1, PlayerSetup::patience);
}

void PlayerRoadTest::walksTheWholeRoad_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("WAV 16 bit mono") << u"take.wav"_s << Wav(S16, 1);
    QTest::newRow("WAV 16 bit stereo") << u"take.wav"_s << Wav(S16, 2);
    QTest::newRow("WAV 24 bit mono") << u"take.wav"_s << Wav(S24, 1);
    QTest::newRow("WAV 24 bit stereo") << u"take.wav"_s << Wav(S24, 2);
    QTest::newRow("WAV 32 bit stereo") << u"take.wav"_s << Wav(S32, 2);
    QTest::newRow("WAV float stereo") << u"take.wav"_s << Wav(F32, 2);
    QTest::newRow("WAV extensible 16 bit stereo") << u"take.wav"_s << Extensible(S16, 2);
    QTest::newRow("WAV extensible float mono") << u"take.wav"_s << Extensible(F32, 1);
    QTest::newRow("WAV under another name") << u"one.two.wav"_s << Wav(S16, 2);
    QTest::newRow("MP3 stereo") << u"take.mp3"_s << Encoded(u"mp3"_s, 2);
    QTest::newRow("MP3 mono") << u"Übung 1.mp3"_s << Encoded(u"mp3"_s, 1);
    QTest::newRow("FLAC stereo") << u"take.flac"_s << Encoded(u"flac"_s, 2);
    QTest::newRow("Ogg stereo") << u"take.ogg"_s << Encoded(u"ogg"_s, 2);
}

#define STEP(step)                                                                                                \
    step;                                                                                                         \
    if (QTest::currentTestFailed()) {                                                                             \
        return;                                                                                                   \
    }

void PlayerRoadTest::walksTheWholeRoad()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, bytes);
    QVERIFY(!bytes.isEmpty());
    m_name = name;
    m_bytes = bytes;
    m_setup = std::make_unique<PlayerSetup>();
    m_setup->player->SetDecodeToFloat(true);
    m_setup->player->resize(900, 400);
    m_setup->player->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_setup->player.get()));
    m_emptyPicture = m_setup->View().grab().toImage();
    STEP(Load())
    STEP(See())
    STEP(Play())
    STEP(SelectAndLoop())
    STEP(ChooseEveryChannel())
    STEP(ExportSnippet())
    QVERIFY(m_setup->player->errors.isEmpty());
    m_setup.reset();
}

void PlayerRoadTest::Load()
{
    QSignalSpy changed(m_setup->player.get(), &AudioPlayerWidget::AudioFileChanged);
    QVERIFY(m_setup->Load(m_name, m_bytes));
    QCOMPARE(changed, QList<QVariantList>{{m_setup->copies.Path(m_name)}});
    QVERIFY(qAbs(m_setup->player->GetAudioDuration() - 1.0) < 0.1);
}

void PlayerRoadTest::See()
{
    auto& diagram = WaveformTestAccess::DiagramOf(m_setup->View());
    QTRY_VERIFY(WaveformTestAccess::Buffer(diagram).end > 0.9);
    QVERIFY(qAbs(diagram.GetSceneRect().width() - m_setup->player->GetAudioDuration()) < 1e-6);
    const QImage picture = m_setup->View().grab().toImage();
    QVERIFY(!picture.isNull());
    QVERIFY(picture != m_emptyPicture);
}

void PlayerRoadTest::Play()
{
    QList<double> positions;
    const auto connection = connect(m_setup->player.get(), &AudioPlayerWidget::AudioPositionChanged, this,
                                    [&positions](double position) { positions.append(position); });
    m_setup->Controls().btnPlayPause->click();
    QTRY_VERIFY_WITH_TIMEOUT(!positions.isEmpty() && positions.last() > 0.05, PlayerSetup::patience);
    QCOMPARE(m_setup->Audio().playbackState(), QMediaPlayer::PlayingState);
    m_setup->Controls().btnPlayPause->click();
    QCOMPARE(m_setup->Audio().playbackState(), QMediaPlayer::PausedState);
    QCOMPARE(m_setup->View().GetAudioPosition(), positions.last());
    QVERIFY(m_setup->Controls().edCurrentPosition->text() != u"00:00:00.000"_s);
    disconnect(connection);
}

void PlayerRoadTest::SelectAndLoop()
{
    QSignalSpy selections(m_setup->player.get(), &AudioPlayerWidget::WaveFormSelectionChanged);
    m_setup->player->SetSelectedSnippet(selection);
    QCOMPARE(selections.size(), 1);
    QCOMPARE((selections[0][0].value<std::pair<double, double>>()), selection);
    QCOMPARE(m_setup->Audio().position(), 250);
    int returns = 0;
    const auto connection = connect(&m_setup->Audio(), &QMediaPlayer::positionChanged, this,
                                    [&returns](qint64 position) { returns += position == 250 ? 1 : 0; });
    m_setup->Controls().btnLoop->click();
    m_setup->Controls().btnPlayPause->click();
    QTRY_VERIFY_WITH_TIMEOUT(returns >= 2, PlayerSetup::patience);
    QCOMPARE(m_setup->Audio().playbackState(), QMediaPlayer::PlayingState);
    m_setup->Controls().btnLoop->click();
    QTRY_COMPARE_WITH_TIMEOUT(m_setup->Audio().playbackState(), QMediaPlayer::PausedState, PlayerSetup::patience);
    QCOMPARE(m_setup->Audio().position(), 250);
    disconnect(connection);
}

void PlayerRoadTest::ChooseEveryChannel()
{
    const QString copy = m_setup->copies.Path(m_name);
    const QByteArray copied = TemporaryFiles::Read(copy);
    if (m_setup->player->GetAudioFileFormat().channelCount() == 1) {
        m_setup->player->SetSelectedChannel(WavFile::ChannelLeft);
        QVERIFY(!m_setup->player->IsBusy());
        QCOMPARE(m_setup->player->GetSelectedChannel(), WavFile::ChannelMono);
        return;
    }
    const QFileInfo info(copy);
    const auto path = [&info](const QString& side) -> QString {
        return info.path() + u'/' + info.completeBaseName() + side + u'.' + info.suffix();
    };
    STEP(ChooseChannel(WavFile::ChannelLeft, path(u"_Left"_s)))
    STEP(PlayTheChannel())
    STEP(ChooseChannel(WavFile::ChannelRight, path(u"_Right"_s)))
    const QByteArray left = TemporaryFiles::Read(path(u"_Left"_s));
    const QByteArray right = TemporaryFiles::Read(path(u"_Right"_s));
    QVERIFY(left.size() > 44 && left != right);
    QCOMPARE(left, Alone(copy, WavFile::ChannelLeft).Filtered());
    QCOMPARE(right, Alone(copy, WavFile::ChannelRight).Filtered());
    STEP(ChooseChannel(WavFile::ChannelLeftRight, copy))
    QCOMPARE(TemporaryFiles::Read(copy), copied);
    QCOMPARE(TemporaryFiles::Read(path(u"_Left"_s)), left);
    // The snippet is to be that of one channel.
    STEP(ChooseChannel(WavFile::ChannelRight, path(u"_Right"_s)))
}

void PlayerRoadTest::ChooseChannel(WavFile::ChannelFormat channel, const QString& playedPath)
{
    QSignalSpy busy(m_setup->player.get(), &AudioPlayerWidget::BusyChanged);
    m_setup->player->SetSelectedChannel(channel);
    QVERIFY(m_setup->IsIdle());
    QCOMPARE(busy, (QList<QVariantList>{{true}, {false}}));
    QVERIFY(m_setup->HasRead());
    QCOMPARE(m_setup->player->GetSelectedChannel(), channel);
    QCOMPARE(m_setup->Controls().cmbboxChannelSelector->currentData().value<WavFile::ChannelFormat>(), channel);
    QCOMPARE(m_setup->Audio().source().toLocalFile(), playedPath);
    QCOMPARE(m_setup->player->GetSelectedSnippet(), selection);
    QCOMPARE(m_setup->player->GetAudioFileName(), m_setup->copies.Path(m_name));
}

void PlayerRoadTest::PlayTheChannel()
{
    QSignalSpy positions(m_setup->player.get(), &AudioPlayerWidget::AudioPositionChanged);
    m_setup->Controls().btnPlayPause->click();
    // The selection is so short that its end may come before the next look.
    const auto hasMoved = [&positions] {
        return std::any_of(positions.cbegin(), positions.cend(),
                           [](const QVariantList& position) { return position[0].toDouble() > selection.first; });
    };
    QTRY_VERIFY_WITH_TIMEOUT(hasMoved(), PlayerSetup::patience);
    m_setup->player->StopPlayback();
}

void PlayerRoadTest::ExportSnippet()
{
    QSignalSpy finished(m_setup->player.get(), &AudioPlayerWidget::CreateSnippetFinished);
    QSignalSpy busy(m_setup->player.get(), &AudioPlayerWidget::BusyChanged);
    const QString path = m_setup->originals.Path(u"snippet.wav"_s);
    m_setup->player->CreateSnippet(path);
    QVERIFY(m_setup->IsIdle());
    QCOMPARE(busy, (QList<QVariantList>{{true}, {false}}));
    QCOMPARE(finished, QList<QVariantList>{{path}});
    Alone alone(m_setup->copies.Path(m_name), m_setup->player->GetSelectedChannel());
    const QByteArray snippet = TemporaryFiles::Read(path);
    QVERIFY(snippet.size() > 44);
    QCOMPARE(snippet, alone.Snippet(selection.first, selection.second));
}

int main(int argc, char* argv[])
{
    const SoundServer server({QStringLiteral("one")});
    QApplication application(argc, argv);
    PlayerRoadTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_playerroad.moc"
