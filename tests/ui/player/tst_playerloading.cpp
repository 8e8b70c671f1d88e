#include "tests/support/AudioPrograms.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/SoundServer.h"
#include "tests/support/TestAudio.h"
#include "tests/ui/player/BlockedPool.h"
#include "tests/ui/player/PlayerSetup.h"
#include "tests/ui/waveform/WaveformTestAccess.h"

#include <QtCore/QDir>
#include <QtCore/QThreadPool>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLabel>

#include <optional>
#include <sys/stat.h>

using namespace Qt::Literals::StringLiterals;
using namespace WavTest;
using vantoraudio::vantorAudioEngine::UI::AudioPlayerWidget;
using vantoraudio::vantorAudioEngine::UI::WaveformTestAccess;
using Access = PlayerSetup::Access;

namespace {

const QString emptyText = u"00:00:00,000"_s;

QByteArray Stereo(int frames = 4000)
{
    return TestAudio{.coding = S16, .channels = 2, .rate = 8000, .frames = frames}.File();
}

QByteArray Mono(int frames = 4000)
{
    return TestAudio{.coding = S16, .channels = 1, .rate = 8000, .frames = frames}.File();
}

QStringList Entries(const QComboBox& box)
{
    QStringList entries;
    for (int i = 0; i < box.count(); ++i) {
        entries.append(box.itemText(i) + u'=' + QString::number(box.itemData(i).value<WavFile::ChannelFormat>()));
    }
    return entries;
}

QByteArray SampleBytes(const QString& path)
{
    return TemporaryFiles::Read(path).mid(44);
}

bool SoundsLikeTheTone(const QList<float>& channel, double frequency)
{
    return qAbs(AudioPrograms::MiddleFrequency(channel, 96000) - frequency) < 4.0 &&
           qAbs(AudioPrograms::MiddleRms(channel) - 0.2828) < 0.02;
}

QList<float> FromInt16(const QByteArray& bytes)
{
    QList<float> floats;
    for (qsizetype i = 0; i + 1 < bytes.size(); i += 2) {
        floats.append(qFromLittleEndian<qint16>(bytes.constData() + i) / 32768.0F);
    }
    return floats;
}

/** Nothing is loaded, and it shows. */
bool IsEmpty(const PlayerSetup& setup)
{
    return setup.player->GetAudioFileName().isEmpty() && setup.player->GetAudioDuration() == 0.0 &&
           !setup.Controls().btnPlayPause->isEnabled() && setup.Controls().edTotalDuration->text() == emptyText &&
           setup.player->GetSelectedSnippet() == std::pair(0.0, 0.0);
}

} // namespace

class PlayerLoadingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void anEmptyWidgetHasNothing();
    void loadsACopyOfAWavFile();
    void offersTheChannelsOfTheFile_data();
    void offersTheChannelsOfTheFile();
    void showsTheDurationOfTheFile_data();
    void showsTheDurationOfTheFile();
    void thePlayerGetsTheCopyAndTheWaveformItsLength();
    void loadingTheSameFileAgainDoesNothing();
    void usesAFileOfTheSameNameThatIsThereAlready();
    void anotherFilePassesThroughReset();
    void anEmptyPathUnloads();

    void onlyPlainWavNamesAreNotDecoded_data();
    void onlyPlainWavNamesAreNotDecoded();
    void aNameInMp3HoldsWavData();
    void keepsIntegerSamplesUnderAFloatHeader_data();
    void keepsIntegerSamplesUnderAFloatHeader();
    void decodesToFloatWhenAsked_data();
    void decodesToFloatWhenAsked();
    void decodesAWriteProtectedFile();
    void decodesAFileThatIsItsOwnCopy();
    void aLinkInTheWritableDirectoryLeadsNowhere_data();
    void aLinkInTheWritableDirectoryLeadsNowhere();
    void aCallersOwnLinkBecomesACopy();

    void aFailedCopyKeepsTheFormerFile_data();
    void aFailedCopyKeepsTheFormerFile();
    void aFailedDecodeLeavesNothingLoaded();
    void aFailedDecodeIsReportedAgainAndTheFormerFileLoadsAgain();
    void aFailedOpenLeavesNothingLoadedAndIsReportedAgain_data();
    void aFailedOpenLeavesNothingLoadedAndIsReportedAgain();
    void refusesAFourChannelFileBeforeTheListIsFilled();
    void everyReturnReleasesTheTotalDurationField();

    void theControlsForEditingFollowTheEditMode_data();
    void theControlsForEditingFollowTheEditMode();
    void theTotalDurationSignalsNothingWhileLoading();
    void theTotalDurationSignalsNothingWhenItIsReset();
    void convertsAnotherFileInPlace();
    void convertIgnoresTheResultOfOpening();

    void readsSamplesUntilTheyAreShown();
    void aNewRequestForSamplesEndsTheRunningOne();
    void ignoresNewsOfFormerSamples();
    void asksForSamplesWithoutTheFormerDelay();
    void busyDisablesInOrderAndTellsLast();
    void anEmptyHintHidesItsSection();
    void remembersTheWritableDirectoryUnchecked();
    void metaTypesTravelInAVariant();

private:
    TemporaryFiles m_tones;
};

void PlayerLoadingTest::initTestCase()
{
    const QString tone = m_tones.Path(u"tone.wav"_s);
    QVERIFY(AudioPrograms::MakeTone(tone, 44100, 2, 1.0));
    QVERIFY(AudioPrograms::Encode(u"mp3"_s, tone, m_tones.Path(u"tone.mp3"_s)));
    QVERIFY(AudioPrograms::Encode(u"flac"_s, tone, m_tones.Path(u"tone.flac"_s)));
}

void PlayerLoadingTest::anEmptyWidgetHasNothing()
{
    AudioPlayerWidget player;
    QCOMPARE(player.GetAudioFileName(), QString());
    QCOMPARE(player.GetAudioDuration(), 0.0);
    QCOMPARE(player.GetOriginalAudioFilePath(), QString());
    QCOMPARE(player.GetWritableDirectoryPath(), QString());
    QCOMPARE(player.GetAudioFileFormat().sampleRate(), 0);
    QCOMPARE(player.GetAudioFileFormat().channelCount(), 0);
    QCOMPARE(player.GetSelectedChannel(), WavFile::ChannelNone);
    QCOMPARE(player.GetSelectedSnippet(), std::pair(0.0, 0.0));
    QCOMPARE(player.GetDelay(), 0.0);
    QVERIFY(!player.IsBusy());
    QVERIFY(!player.GetDecodeToFloat());
    QCOMPARE(player.focusPolicy(), Qt::StrongFocus);
    QVERIFY(!Access::Controls(player).btnPlayPause->isEnabled());
    QCOMPARE(Access::Controls(player).edTotalDuration->text(), emptyText);
}

void PlayerLoadingTest::loadsACopyOfAWavFile()
{
    PlayerSetup setup;
    QSignalSpy changed(setup.player.get(), &AudioPlayerWidget::AudioFileChanged);
    const QString path = setup.originals.Write(u"take.wav"_s, Stereo());
    setup.player->SetAudioFile(path);
    const QString copy = setup.copies.Path(u"take.wav"_s);
    QCOMPARE(changed, QList<QVariantList>{{copy}});
    QCOMPARE(setup.player->GetAudioFileName(), copy);
    QCOMPARE(setup.player->GetOriginalAudioFilePath(), path);
    QCOMPARE(setup.player->GetAudioDuration(), 0.5);
    QCOMPARE(setup.player->GetAudioFileFormat().sampleRate(), 8000);
    QCOMPARE(setup.player->GetAudioFileFormat().channelCount(), 2);
    QCOMPARE(setup.player->GetAudioFileFormat().sampleFormat(), QAudioFormat::Int16);
    QVERIFY(setup.Controls().btnPlayPause->isEnabled());
    QCOMPARE(TemporaryFiles::Read(copy), Stereo());
    QCOMPARE(TemporaryFiles::Read(path), Stereo());
    QVERIFY(setup.player->errors.isEmpty());
}

void PlayerLoadingTest::offersTheChannelsOfTheFile_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QStringList>("entries");
    QTest::addColumn<WavFile::ChannelFormat>("channel");
    QTest::newRow("mono") << Mono() << QStringList{u"Mono=1"_s} << WavFile::ChannelMono;
    QTest::newRow("stereo") << Stereo() << QStringList{u"Channel L + R=4"_s, u"Channel L=2"_s, u"Channel R=3"_s}
                            << WavFile::ChannelLeftRight;
}

void PlayerLoadingTest::offersTheChannelsOfTheFile()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QStringList, entries);
    QFETCH(WavFile::ChannelFormat, channel);
    PlayerSetup setup;
    // What another file left is replaced.
    QVERIFY(setup.Load(u"former.wav"_s, Stereo()));
    QSignalSpy busy(setup.player.get(), &AudioPlayerWidget::BusyChanged);
    QVERIFY(setup.Load(u"take.wav"_s, bytes));
    QCOMPARE(Entries(*setup.Controls().cmbboxChannelSelector), entries);
    QCOMPARE(setup.Controls().cmbboxChannelSelector->currentIndex(), 0);
    QCOMPARE(setup.player->GetSelectedChannel(), channel);
    QVERIFY(busy.isEmpty());
}

void PlayerLoadingTest::showsTheDurationOfTheFile_data()
{
    QTest::addColumn<quint32>("statedFrames");
    QTest::addColumn<QString>("text");
    QTest::newRow("none") << 0U << u"00:00:00.000"_s;
    QTest::newRow("half a second") << 500U << u"00:00:00.500"_s;
    QTest::newRow("a minute and more") << 61250U << u"00:01:01.250"_s;
    QTest::newRow("an hour and more") << 3723004U << u"01:02:03.004"_s;
}

void PlayerLoadingTest::showsTheDurationOfTheFile()
{
    QFETCH(quint32, statedFrames);
    QFETCH(QString, text);
    PlayerSetup setup;
    const WavBytes bytes{.sampleRate = 1000, .data = QByteArray(20, '\0'), .statedDataSize = statedFrames * 2};
    QVERIFY(setup.Load(u"take.wav"_s, bytes.Build()));
    QCOMPARE(setup.Controls().edTotalDuration->text(), text);
}

void PlayerLoadingTest::thePlayerGetsTheCopyAndTheWaveformItsLength()
{
    PlayerSetup setup;
    QSignalSpy requests(&setup.View(), &PlayerSetup::Waveform::GetSamples);
    QVERIFY(setup.Load(u"take.wav"_s, Stereo(16000)));
    QCOMPARE(setup.Audio().source(), QUrl::fromLocalFile(setup.copies.Path(u"take.wav"_s)));
    QCOMPARE(requests.size(), 1);
    QCOMPARE(requests[0][0].toDouble(), 0.0);
    QCOMPARE(requests[0][1].toDouble(), 2.0);
    const auto& diagram = WaveformTestAccess::DiagramOf(setup.View());
    QCOMPARE(WaveformTestAccess::Duration(diagram), 2.0);
    QCOMPARE(WaveformTestAccess::Format(diagram).sampleRate(), 8000);
    QTRY_VERIFY(WaveformTestAccess::Buffer(WaveformTestAccess::DiagramOf(setup.View())).end >= 2.0);
}

void PlayerLoadingTest::loadingTheSameFileAgainDoesNothing()
{
    PlayerSetup setup;
    QVERIFY(setup.Load(u"take.wav"_s, Stereo()));
    setup.player->SetSelectedSnippet({0.1, 0.2});
    QSignalSpy changed(setup.player.get(), &AudioPlayerWidget::AudioFileChanged);
    QSignalSpy requests(&setup.View(), &PlayerSetup::Waveform::GetSamples);
    setup.player->SetAudioFile(setup.originals.Write(u"take.wav"_s, Stereo(8000)));
    QVERIFY(changed.isEmpty());
    QVERIFY(requests.isEmpty());
    QCOMPARE(setup.player->GetSelectedSnippet(), std::pair(0.1, 0.2));
    QCOMPARE(setup.player->GetAudioDuration(), 0.5);
    QCOMPARE(TemporaryFiles::Read(setup.copies.Path(u"take.wav"_s)), Stereo());
    // Of another folder, too: the name alone tells the copy.
    const TemporaryFiles elsewhere;
    const QString other = elsewhere.Write(u"take.wav"_s, Mono());
    setup.player->SetAudioFile(other);
    QVERIFY(changed.isEmpty());
    QCOMPARE(setup.player->GetOriginalAudioFilePath(), other);
}

void PlayerLoadingTest::usesAFileOfTheSameNameThatIsThereAlready()
{
    PlayerSetup setup;
    setup.copies.Write(u"take.wav"_s, Mono(8000));
    QVERIFY(setup.Load(u"take.wav"_s, Stereo()));
    QCOMPARE(setup.player->GetAudioDuration(), 1.0);
    QCOMPARE(setup.player->GetAudioFileFormat().channelCount(), 1);
    QCOMPARE(TemporaryFiles::Read(setup.copies.Path(u"take.wav"_s)), Mono(8000));
    // The caller's file need not even be there.
    setup.copies.Write(u"gone.wav"_s, Mono(4000));
    QVERIFY(setup.Load(setup.originals.Path(u"gone.wav"_s)));
    QCOMPARE(setup.player->GetAudioDuration(), 0.5);
}

void PlayerLoadingTest::anotherFilePassesThroughReset()
{
    PlayerSetup setup;
    QVERIFY(setup.Load(u"first.wav"_s, Stereo()));
    setup.player->SetSelectedSnippet({0.1, 0.2});
    QSignalSpy selections(setup.player.get(), &AudioPlayerWidget::WaveFormSelectionChanged);
    QVERIFY(setup.Load(u"second.wav"_s, Mono(8000)));
    QVERIFY(!selections.isEmpty());
    QCOMPARE(setup.player->GetSelectedSnippet(), std::pair(0.0, 0.0));
    QVERIFY(!Access::HasSelection(*setup.player));
    QCOMPARE(setup.player->GetAudioFileName(), setup.copies.Path(u"second.wav"_s));
    QVERIFY(QFile::exists(setup.copies.Path(u"first.wav"_s)));
}

void PlayerLoadingTest::anEmptyPathUnloads()
{
    PlayerSetup setup;
    QVERIFY(setup.Load(u"take.wav"_s, Stereo()));
    setup.player->SetSelectedSnippet({0.1, 0.2});
    QSignalSpy changed(setup.player.get(), &AudioPlayerWidget::AudioFileChanged);
    setup.player->SetAudioFile(QString());
    QVERIFY(IsEmpty(setup));
    QVERIFY(changed.isEmpty());
    QVERIFY(setup.player->errors.isEmpty());
    QCOMPARE(WaveformTestAccess::Duration(WaveformTestAccess::DiagramOf(setup.View())), 0.0);
    // It is no longer the file that is loaded.
    QVERIFY(setup.Load(setup.originals.Path(u"take.wav"_s)));
    QCOMPARE(changed.size(), 1);
    QVERIFY(setup.Controls().btnPlayPause->isEnabled());
}

void PlayerLoadingTest::onlyPlainWavNamesAreNotDecoded_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("source");
    QTest::addColumn<int>("rate");
    QTest::newRow("take.wav") << u"take.wav"_s << u"tone.wav"_s << 44100;
    QTest::newRow(".wav") << u".wav"_s << u"tone.wav"_s << 44100;
    QTest::newRow("take.Wav") << u"take.Wav"_s << u"tone.wav"_s << 96000;
    QTest::newRow("take.WAV") << u"take.WAV"_s << u"tone.wav"_s << 96000;
    QTest::newRow("a.b.wav") << u"a.b.wav"_s << u"tone.wav"_s << 96000;
    QTest::newRow("wav") << u"wav"_s << u"tone.wav"_s << 96000;
    QTest::newRow("take.mp3") << u"take.mp3"_s << u"tone.mp3"_s << 96000;
    QTest::newRow("take.MP3") << u"take.MP3"_s << u"tone.mp3"_s << 96000;
    QTest::newRow("take") << u"take"_s << u"tone.mp3"_s << 96000;
    QTest::newRow("Übung #1 100%.mp3") << u"Übung #1 100%.mp3"_s << u"tone.mp3"_s << 96000;
}

void PlayerLoadingTest::onlyPlainWavNamesAreNotDecoded()
{
    QFETCH(QString, name);
    QFETCH(QString, source);
    QFETCH(int, rate);
    PlayerSetup setup;
    QVERIFY(setup.Load(name, TemporaryFiles::Read(m_tones.Path(source))));
    QCOMPARE(setup.player->GetAudioFileName(), setup.copies.Path(name));
    QCOMPARE(setup.player->GetAudioFileFormat().sampleRate(), rate);
    const auto format = rate == 96000 ? QAudioFormat::Float : QAudioFormat::Int16;
    QCOMPARE(setup.player->GetAudioFileFormat().sampleFormat(), format);
}

void PlayerLoadingTest::aNameInMp3HoldsWavData()
{
    PlayerSetup setup;
    const QByteArray mp3 = TemporaryFiles::Read(m_tones.Path(u"tone.mp3"_s));
    QVERIFY(setup.Load(u"take.mp3"_s, mp3));
    QVERIFY(TemporaryFiles::Read(setup.copies.Path(u"take.mp3"_s)).startsWith("RIFF"));
    QCOMPARE(TemporaryFiles::Read(setup.originals.Path(u"take.mp3"_s)), mp3);
    QVERIFY(qAbs(setup.player->GetAudioDuration() - 1.0) < 0.1);
    const QList<float> samples = AudioPrograms::Floats(SampleBytes(setup.copies.Path(u"take.mp3"_s)));
    QVERIFY(SoundsLikeTheTone(AudioPrograms::Channel(samples, 0, 2), 440.0));
    QVERIFY(SoundsLikeTheTone(AudioPrograms::Channel(samples, 1, 2), 880.0));
}

void PlayerLoadingTest::keepsIntegerSamplesUnderAFloatHeader_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("source");
    QTest::newRow("FLAC") << u"take.flac"_s << u"tone.flac"_s;
    QTest::newRow("16-bit WAV") << u"a.b.wav"_s << u"tone.wav"_s;
}

void PlayerLoadingTest::keepsIntegerSamplesUnderAFloatHeader()
{
    QFETCH(QString, name);
    QFETCH(QString, source);
    PlayerSetup setup;
    QVERIFY(setup.Load(name, TemporaryFiles::Read(m_tones.Path(source))));
    QCOMPARE(setup.player->GetAudioFileFormat().sampleFormat(), QAudioFormat::Float);
    // Which halves the length that the header gives.
    QVERIFY(qAbs(setup.player->GetAudioDuration() - 0.5) < 0.01);
    const QByteArray bytes = SampleBytes(setup.copies.Path(name));
    QVERIFY(!SoundsLikeTheTone(AudioPrograms::Channel(AudioPrograms::Floats(bytes), 0, 2), 440.0));
    QVERIFY(SoundsLikeTheTone(AudioPrograms::Channel(FromInt16(bytes), 0, 2), 440.0));
}

void PlayerLoadingTest::decodesToFloatWhenAsked_data()
{
    keepsIntegerSamplesUnderAFloatHeader_data();
}

void PlayerLoadingTest::decodesToFloatWhenAsked()
{
    QFETCH(QString, name);
    QFETCH(QString, source);
    PlayerSetup setup;
    setup.player->SetDecodeToFloat(true);
    QVERIFY(setup.player->GetDecodeToFloat());
    QVERIFY(setup.Load(name, TemporaryFiles::Read(m_tones.Path(source))));
    QVERIFY(qAbs(setup.player->GetAudioDuration() - 1.0) < 0.01);
    const QList<float> samples = AudioPrograms::Floats(SampleBytes(setup.copies.Path(name)));
    QVERIFY(SoundsLikeTheTone(AudioPrograms::Channel(samples, 0, 2), 440.0));
    QVERIFY(SoundsLikeTheTone(AudioPrograms::Channel(samples, 1, 2), 880.0));
}

void PlayerLoadingTest::decodesAWriteProtectedFile()
{
    PlayerSetup setup;
    const QString path = setup.originals.Write(u"take.mp3"_s, TemporaryFiles::Read(m_tones.Path(u"tone.mp3"_s)));
    QVERIFY(QFile::setPermissions(path, QFile::ReadOwner));
    for (const QString& own : {path, setup.originals.Path(QString()), setup.copies.Path(QString())}) {
        QVERIFY(OrdinaryUser::TakesOver(own));
    }
    const OrdinaryUser user;
    if (!user.IsOrdinary()) {
        QSKIP("No permission stops this user.");
    }
    setup.player->SetAudioFile(path);
    QCOMPARE(setup.player->errors, {});
    QCOMPARE(setup.player->GetAudioFileFormat().sampleRate(), 96000);
    QVERIFY(!QFile::permissions(path).testFlag(QFile::WriteOwner));
    QVERIFY(setup.HasRead());
}

void PlayerLoadingTest::decodesAFileThatIsItsOwnCopy()
{
    PlayerSetup setup;
    const QString path = setup.copies.Write(u"take.mp3"_s, TemporaryFiles::Read(m_tones.Path(u"tone.mp3"_s)));
    QVERIFY(setup.Load(path));
    QVERIFY(TemporaryFiles::Read(path).startsWith("RIFF"));
    QVERIFY(qAbs(setup.player->GetAudioDuration() - 1.0) < 0.1);
}

void PlayerLoadingTest::aLinkInTheWritableDirectoryLeadsNowhere_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("leadsTo");
    for (const QString& source : {u"tone.wav"_s, u"tone.mp3"_s}) {
        for (const QString& leadsTo : {u"the file"_s, u"another file"_s, u"nothing"_s, u"a folder"_s}) {
            QTest::addRow("%s, %s", qPrintable(source), qPrintable(leadsTo)) << source << leadsTo;
        }
    }
}

void PlayerLoadingTest::aLinkInTheWritableDirectoryLeadsNowhere()
{
    QFETCH(const QString, source);
    QFETCH(const QString, leadsTo);
    PlayerSetup setup;
    const QByteArray bytes = TemporaryFiles::Read(m_tones.Path(source));
    const QString path = setup.originals.Write(source, bytes);
    const QString precious = setup.originals.Write(u"precious"_s, "precious");
    const QMap<QString, QString> targets{{u"the file"_s, path},
                                         {u"another file"_s, precious},
                                         {u"nothing"_s, setup.originals.Path(u"nothing"_s)},
                                         {u"a folder"_s, setup.originals.Path(QString())}};
    const QString copy = setup.copies.Path(source);
    QVERIFY(QFile::link(targets[leadsTo], copy));
    QVERIFY(setup.Load(path));
    setup.player->SetSelectedChannel(WavFile::ChannelLeft);
    QVERIFY(setup.IsIdle());
    QVERIFY(!QFileInfo(copy).isSymLink());
    QVERIFY(TemporaryFiles::Read(copy).startsWith("RIFF"));
    QCOMPARE(TemporaryFiles::Read(path), bytes);
    QCOMPARE(TemporaryFiles::Read(precious), QByteArray("precious"));
    QCOMPARE(
        QDir(setup.originals.Path(QString())).entryList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name),
        (QStringList{u"precious"_s, source}));
}

/** It stands in the writable directory itself. */
void PlayerLoadingTest::aCallersOwnLinkBecomesACopy()
{
    PlayerSetup setup;
    const QByteArray bytes = TemporaryFiles::Read(m_tones.Path(u"tone.mp3"_s));
    const QString song = setup.originals.Write(u"song.mp3"_s, bytes);
    const QString link = setup.copies.Path(u"link.mp3"_s);
    QVERIFY(QFile::link(song, link));
    QVERIFY(setup.Load(link));
    QVERIFY(!QFileInfo(link).isSymLink());
    QVERIFY(TemporaryFiles::Read(link).startsWith("RIFF"));
    QCOMPARE(TemporaryFiles::Read(song), bytes);
}

void PlayerLoadingTest::aFailedCopyKeepsTheFormerFile_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("folder");
    QTest::newRow("the file is missing") << u"missing.wav"_s << QString();
    QTest::newRow("the file is a folder") << u"folder"_s << QString();
    QTest::newRow("the file is a pipe") << u"pipe.wav"_s << QString();
    QTest::newRow("the writable directory is missing") << u"there.wav"_s << u"missing"_s;
    QTest::newRow("the writable directory is a file") << u"there.wav"_s << u"former.wav"_s;
}

void PlayerLoadingTest::aFailedCopyKeepsTheFormerFile()
{
    QFETCH(QString, name);
    QFETCH(QString, folder);
    PlayerSetup setup;
    QVERIFY(setup.Load(u"former.wav"_s, Stereo()));
    setup.player->SetSelectedSnippet({0.1, 0.2});
    setup.originals.Write(u"there.wav"_s, Mono());
    QVERIFY(QDir(setup.originals.Path(QString())).mkdir(u"folder"_s));
    QVERIFY(::mkfifo(qPrintable(setup.originals.Path(u"pipe.wav"_s)), 0600) == 0);
    setup.player->SetWritableDirectoryPath(setup.copies.Path(folder));

    QSignalSpy changed(setup.player.get(), &AudioPlayerWidget::AudioFileChanged);
    setup.player->SetAudioFile(setup.originals.Path(name));
    QCOMPARE(setup.player->errors, {WavFile::ErrorWriteHeader});
    QVERIFY(changed.isEmpty());
    QCOMPARE(setup.player->GetAudioFileName(), setup.copies.Path(u"former.wav"_s));
    QCOMPARE(setup.player->GetOriginalAudioFilePath(), setup.originals.Path(u"former.wav"_s));
    QCOMPARE(setup.player->GetSelectedSnippet(), std::pair(0.1, 0.2));
    QCOMPARE(setup.Controls().edTotalDuration->text(), u"00:00:00.500"_s);
    QVERIFY(setup.Controls().btnPlayPause->isEnabled());
    QCOMPARE(QDir(setup.copies.Path(QString())).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList{u"former.wav"_s});
}

void PlayerLoadingTest::aFailedDecodeLeavesNothingLoaded()
{
    PlayerSetup setup;
    QVERIFY(setup.Load(u"former.wav"_s, Stereo()));
    QSignalSpy changed(setup.player.get(), &AudioPlayerWidget::AudioFileChanged);
    const QString junk = setup.originals.Write(u"junk.mp3"_s, "This is no audio.");
    setup.player->SetAudioFile(junk);
    QCOMPARE(setup.player->errors, {WavFile::ErrorInvalidFormat});
    QVERIFY(changed.isEmpty());
    QVERIFY(IsEmpty(setup));
    QCOMPARE(setup.player->GetOriginalAudioFilePath(), junk);
}

void PlayerLoadingTest::aFailedDecodeIsReportedAgainAndTheFormerFileLoadsAgain()
{
    PlayerSetup setup;
    QVERIFY(setup.Load(u"former.wav"_s, Stereo()));
    const QString junk = setup.originals.Write(u"junk.mp3"_s, "This is no audio.");
    setup.player->SetAudioFile(junk);
    setup.player->SetAudioFile(junk);
    QCOMPARE(setup.player->errors, (QList{WavFile::ErrorInvalidFormat, WavFile::ErrorInvalidFormat}));
    QSignalSpy changed(setup.player.get(), &AudioPlayerWidget::AudioFileChanged);
    setup.player->SetAudioFile(setup.originals.Path(u"former.wav"_s));
    QCOMPARE(changed.size(), 1);
    QCOMPARE(setup.player->GetAudioDuration(), 0.5);
    QVERIFY(setup.Controls().btnPlayPause->isEnabled());
}

void PlayerLoadingTest::aFailedOpenLeavesNothingLoadedAndIsReportedAgain_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<WavFile::AudioEngineReturnValue>("error");
    QTest::newRow("text") << QByteArray(100, 'x') << WavFile::ErrorInvalidFormat;
    QTest::newRow("8 bits") << WavBytes{.bits = 8, .data = QByteArray(100, '\0')}.Build()
                            << WavFile::ErrorInvalidFormat;
    QTest::newRow("MP3 in a WAV name") << TemporaryFiles::Read(m_tones.Path(u"tone.mp3"_s))
                                       << WavFile::ErrorInvalidFormat;
    QTest::newRow("six channels") << WavBytes{.channels = 6, .data = QByteArray(96, '\0')}.Build()
                                  << WavFile::ErrorChannelCount;
    QTest::newRow("empty") << QByteArray("") << WavFile::ErrorReadFile;
}

void PlayerLoadingTest::aFailedOpenLeavesNothingLoadedAndIsReportedAgain()
{
    QFETCH(QByteArray, bytes);
    QFETCH(WavFile::AudioEngineReturnValue, error);
    PlayerSetup setup;
    QVERIFY(setup.Load(u"former.wav"_s, Stereo()));
    QSignalSpy changed(setup.player.get(), &AudioPlayerWidget::AudioFileChanged);
    const QString bad = setup.originals.Write(u"bad.wav"_s, bytes);
    setup.player->SetAudioFile(bad);
    QCOMPARE(setup.player->errors, {error});
    QVERIFY(IsEmpty(setup));
    QCOMPARE(setup.player->GetOriginalAudioFilePath(), bad);
    setup.player->SetAudioFile(bad);
    QCOMPARE(setup.player->errors, (QList{error, error}));
    QVERIFY(changed.isEmpty());
    // A sound copy under the same name is taken.
    setup.copies.Write(u"bad.wav"_s, Mono());
    setup.player->SetAudioFile(bad);
    QCOMPARE(changed.size(), 1);
    QCOMPARE(setup.player->errors.size(), 2);
}

void PlayerLoadingTest::refusesAFourChannelFileBeforeTheListIsFilled()
{
    PlayerSetup setup;
    QVERIFY(setup.Load(u"former.wav"_s, Stereo()));
    setup.player->SetAudioFile(
        setup.originals.Write(u"four.wav"_s, WavBytes{.channels = 4, .data = QByteArray(80, '\0')}.Build()));
    QCOMPARE(setup.player->errors, {WavFile::ErrorChannelCount});
    QVERIFY(IsEmpty(setup));
    QCOMPARE(setup.Controls().cmbboxChannelSelector->count(), 3);
    QCOMPARE(setup.player->GetSelectedChannel(), WavFile::ChannelLeftRight);
}

void PlayerLoadingTest::everyReturnReleasesTheTotalDurationField()
{
    PlayerSetup setup;
    const QStringList paths{setup.originals.Path(u"missing.wav"_s),
                            setup.originals.Write(u"junk.mp3"_s, "This is no audio."),
                            setup.originals.Write(u"bad.wav"_s, QByteArray(100, 'x')),
                            setup.originals.Write(u"take.wav"_s, Stereo()),
                            setup.originals.Path(u"take.wav"_s),
                            QString()};
    for (const QString& path : paths) {
        setup.player->SetAudioFile(path);
        QVERIFY2(!setup.Controls().edTotalDuration->signalsBlocked(), qPrintable(path));
    }
    QCOMPARE(setup.player->errors.size(), 3);
}

void PlayerLoadingTest::theControlsForEditingFollowTheEditMode_data()
{
    QTest::addColumn<bool>("isEditing");
    QTest::newRow("edit mode") << true;
    QTest::newRow("no edit mode") << false;
}

void PlayerLoadingTest::theControlsForEditingFollowTheEditMode()
{
    QFETCH(bool, isEditing);
    PlayerSetup setup;
    setup.player->SetEditMode(isEditing);
    QCOMPARE(setup.Controls().frmEditingControls->isHidden(), !isEditing);
    QVERIFY(setup.Load(u"take.wav"_s, Stereo()));
    const auto areEnabled = [&setup](bool isEnabled) {
        return setup.Controls().cmbboxChannelSelector->isEnabled() == isEnabled &&
               setup.Controls().frmSelectionStart->isEnabled() == isEnabled &&
               setup.Controls().frmSelectionEnd->isEnabled() == isEnabled;
    };
    QVERIFY(areEnabled(isEditing));
    QVERIFY(setup.Controls().btnPlayPause->isEnabled());
    setup.player->Reset();
    QVERIFY(areEnabled(isEditing));
    QVERIFY(!setup.Controls().btnPlayPause->isEnabled());
}

void PlayerLoadingTest::theTotalDurationSignalsNothingWhenItIsReset()
{
    PlayerSetup setup;
    QVERIFY(setup.Load(u"take.wav"_s, Stereo()));
    const QLineEdit* field = setup.Controls().edTotalDuration;
    const QSignalSpy changed(field, &QLineEdit::textChanged);
    setup.player->Reset();
    QCOMPARE(field->text(), emptyText);
    QVERIFY(changed.isEmpty());
    QVERIFY(!field->signalsBlocked());
}

void PlayerLoadingTest::theTotalDurationSignalsNothingWhileLoading()
{
    PlayerSetup setup;
    QSignalSpy texts(setup.Controls().edTotalDuration, &QLineEdit::textChanged);
    QVERIFY(setup.Load(u"first.wav"_s, Stereo()));
    QVERIFY(setup.Load(u"second.wav"_s, Stereo(8000)));
    QVERIFY(texts.isEmpty());
}

void PlayerLoadingTest::convertsAnotherFileInPlace()
{
    PlayerSetup setup;
    QVERIFY(setup.Load(u"take.wav"_s, Stereo()));
    const QString other = setup.originals.Write(u"other.wav"_s, Stereo());
    QAudioFormat format;
    format.setSampleRate(8000);
    format.setChannelCount(1);
    format.setSampleFormat(QAudioFormat::Float);
    QVERIFY(setup.player->Convert(other, format));
    WavFile converted;
    QCOMPARE(converted.Open(other), WavFile::Success);
    QCOMPARE(converted.GetFileFormat().channelCount(), 1);
    QCOMPARE(converted.GetFileFormat().sampleFormat(), QAudioFormat::Float);
    QCOMPARE(setup.player->GetAudioFileName(), setup.copies.Path(u"take.wav"_s));
    QCOMPARE(setup.player->GetAudioFileFormat().channelCount(), 2);
    QCOMPARE(TemporaryFiles::Read(setup.copies.Path(u"take.wav"_s)), Stereo());
}

void PlayerLoadingTest::convertIgnoresTheResultOfOpening()
{
    PlayerSetup setup;
    QAudioFormat format;
    format.setSampleRate(8000);
    format.setChannelCount(1);
    format.setSampleFormat(QAudioFormat::Float);
    QVERIFY(!setup.player->Convert(setup.originals.Path(u"missing.wav"_s), format));
    const QString junk = setup.originals.Write(u"junk.wav"_s, QByteArray(100, 'x'));
    bool isConverted = false;
    try {
        isConverted = setup.player->Convert(junk, format);
    } catch (const std::bad_optional_access&) {
        // What a header that was not read has for a channel count is no layout.
    }
    QVERIFY(!isConverted);
    QCOMPARE(TemporaryFiles::Read(junk), QByteArray(100, 'x'));
    QVERIFY(setup.player->errors.isEmpty());
}

void PlayerLoadingTest::readsSamplesUntilTheyAreShown()
{
    PlayerSetup setup;
    setup.player->SetAudioFile(setup.originals.Write(u"take.wav"_s, Mono()));
    auto& diagram = WaveformTestAccess::DiagramOf(setup.View());
    // They are read, but this thread has not heard of it.
    QThreadPool::globalInstance()->waitForDone();
    QVERIFY(setup.player->IsReadingSamples());
    QCOMPARE(WaveformTestAccess::Buffer(diagram).end, 0.0);
    QTRY_VERIFY(!setup.player->IsReadingSamples());
    QVERIFY(WaveformTestAccess::Buffer(diagram).end > 0.0);
    // The same when reading is cut short, which brings no samples.
    Q_EMIT setup.View().GetSamples(0.0, 1.0, 1);
    setup.player->Close();
    QTRY_VERIFY(!setup.player->IsReadingSamples());
}

void PlayerLoadingTest::aNewRequestForSamplesEndsTheRunningOne()
{
    PlayerSetup setup;
    QVERIFY(setup.Load(u"take.wav"_s, Mono(80000)));
    QSignalSpy news(&setup.File(), &WavFile::NewData);
    HeldTask held(setup.File());
    Q_EMIT setup.View().GetSamples(0.0, 10.0, 1);
    QVERIFY(held.HasBegun());
    held.ReleaseUpon(WavFileTestAccess(setup.File()).IsReadAborted());
    Q_EMIT setup.View().GetSamples(0.0, 0.5, 1);
    QVERIFY(setup.HasRead());
    QTRY_COMPARE(news.size(), 1);
    QCOMPARE(setup.File().GetSamples().size(), 4000);
}

void PlayerLoadingTest::ignoresNewsOfFormerSamples()
{
    PlayerSetup setup;
    QVERIFY(setup.Load(u"take.wav"_s, Mono()));
    auto& diagram = WaveformTestAccess::DiagramOf(setup.View());
    QTRY_VERIFY(WaveformTestAccess::Buffer(diagram).end > 0.0);
    std::optional<BlockedPool> pool(std::in_place);
    Q_EMIT setup.View().GetSamples(0.0, 0.25, 1);
    QSignalSpy updates(&diagram, &WaveformTestAccess::Diagram::Update);
    Q_EMIT setup.File().NewData();
    QVERIFY(updates.isEmpty());
    pool.reset();
    QTRY_VERIFY(!updates.isEmpty());
    QCOMPARE(setup.File().GetSamples().size(), 2000);
}

void PlayerLoadingTest::asksForSamplesWithoutTheFormerDelay()
{
    PlayerSetup setup;
    QVERIFY(setup.Load(u"take.wav"_s, Mono(800000)));
    QSignalSpy requests(&setup.View(), &PlayerSetup::Waveform::GetSamples);
    QVERIFY(setup.Load(u"other.wav"_s, Mono(800000)));
    const QVariantList plain = requests.last();
    setup.player->SetDelay(1000.0);
    QVERIFY(setup.Load(u"take.wav"_s, Mono(800000)));
    QCOMPARE(requests.last(), plain);
    QCOMPARE(setup.player->GetDelay(), 0.0);
}

void PlayerLoadingTest::busyDisablesInOrderAndTellsLast()
{
    PlayerSetup setup;
    QVERIFY(setup.Load(u"take.wav"_s, Stereo()));
    QStringList log;
    const auto& controls = setup.Controls();
    const QList<QWidget*> widgets{&setup.View(), controls.btnLoadFile, controls.frmSelectionStart,
                                  controls.frmSelectionEnd, controls.cmbboxChannelSelector};
    class Filter : public QObject
    {
    public:
        explicit Filter(QStringList& lines) : m_lines(lines) {}
        bool eventFilter(QObject* object, QEvent* event) override
        {
            if (event->type() == QEvent::EnabledChange) {
                m_lines.append(object->objectName());
            }
            return false;
        }

    private:
        QStringList& m_lines;
    } filter(log);
    for (QWidget* widget : widgets) {
        widget->installEventFilter(&filter);
    }
    connect(setup.player.get(), &AudioPlayerWidget::BusyChanged, this,
            [&](bool state) { log.append(state ? u"busy"_s : u"idle"_s); });
    Access::SetBusy(*setup.player, true);
    const QStringList names{setup.View().objectName(), u"btnLoadFile"_s, u"frmSelectionStart"_s,
                            u"frmSelectionEnd"_s, u"cmbboxChannelSelector"_s};
    QCOMPARE(log, names + QStringList{u"busy"_s});
    QVERIFY(setup.player->IsBusy());
    for (const QWidget* widget : widgets) {
        QVERIFY2(!widget->isEnabled(), qPrintable(widget->objectName()));
    }
    QVERIFY(controls.btnPlayPause->isEnabled());
    QVERIFY(controls.btnStop->isEnabled());
    log.clear();
    Access::SetBusy(*setup.player, false);
    QCOMPARE(log, names + QStringList{u"idle"_s});
    QVERIFY(!setup.player->IsBusy());
}

void PlayerLoadingTest::anEmptyHintHidesItsSection()
{
    AudioPlayerWidget player;
    const auto& controls = Access::Controls(player);
    player.SetHint(u"Choose a passage"_s);
    QVERIFY(!controls.frmAudioPlayerHint->isHidden());
    QCOMPARE(controls.lblAudioPlayerHint->text(), u"Choose a passage"_s);
    player.SetHint(QString());
    QVERIFY(controls.frmAudioPlayerHint->isHidden());
    QCOMPARE(controls.lblAudioPlayerHint->text(), QString());
}

void PlayerLoadingTest::remembersTheWritableDirectoryUnchecked()
{
    AudioPlayerWidget player;
    const TemporaryFiles files;
    player.SetWritableDirectoryPath(files.Path(u"missing/../missing"_s));
    QCOMPARE(player.GetWritableDirectoryPath(), files.Path(u"missing/../missing"_s));
    QVERIFY(!QFile::exists(files.Path(u"missing"_s)));
}

void PlayerLoadingTest::metaTypesTravelInAVariant()
{
    using Pair = std::pair<double, double>;
    QCOMPARE(QMetaType::fromName("std::pair<double,double>"), QMetaType::fromType<Pair>());
    QCOMPARE(QMetaType::fromName("WavFile::ChannelFormat"), QMetaType::fromType<WavFile::ChannelFormat>());
    QCOMPARE(QMetaType::fromName("QMediaPlayer::PlaybackState"),
             QMetaType::fromType<QMediaPlayer::PlaybackState>());
    const auto selection = QVariant::fromValue(Pair(1.0, 2.0));
    QCOMPARE(selection.value<Pair>(), Pair(1.0, 2.0));
    QVERIFY((QMetaType::hasRegisteredConverterFunction(
        QMetaType::fromType<Pair>(), QMetaType::fromType<QtMetaTypePrivate::QPairVariantInterfaceImpl>())));
    QCOMPARE(QVariant::fromValue(WavFile::ChannelRight).value<WavFile::ChannelFormat>(), WavFile::ChannelRight);
    QCOMPARE(QVariant::fromValue(QMediaPlayer::PausedState).value<QMediaPlayer::PlaybackState>(),
             QMediaPlayer::PausedState);
}

int main(int argc, char* argv[])
{
    const SoundServer server({QStringLiteral("one")});
    QApplication application(argc, argv);
    PlayerLoadingTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_playerloading.moc"
