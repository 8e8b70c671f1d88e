#include "playback/OutputDevices.h"
#include "tests/support/AudioPrograms.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/SoundServer.h"
#include "tests/support/TestAudio.h"
#include "tests/ui/player/LongFile.h"
#include "tests/ui/player/PlayerSetup.h"

#include <QtCore/QDir>
#include <QtWidgets/QApplication>

using namespace Qt::Literals::StringLiterals;
using namespace WavTest;
using vantoraudio::vantorAudioEngine::UI::AudioPlayerWidget;
using Errors = QList<WavFile::AudioEngineReturnValue>;

namespace {

const TestAudio stereo{.coding = S16, .channels = 2, .rate = 8000, .frames = 8000};

QStringList DeviceNames()
{
    QStringList names;
    for (const QAudioDevice& device : vantoraudio::AudioEngine::PresentOutputs()) {
        names.append(QString::fromUtf8(device.id()));
    }
    names.sort();
    return names;
}

QStringList EntriesOf(const TemporaryFiles& files)
{
    return QDir(files.Path(QString()))
        .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

} // namespace

/** Devices, disks and files that fail while the player is at work. */
class PlayerFailuresTest : public QObject
{
    Q_OBJECT

public:
    explicit PlayerFailuresTest(SoundServer& server) : m_server(server) {}

private Q_SLOTS:
    void init();

    void playsOnElsewhereWhenItsDeviceVanishes();
    void playsOnTheStandInWhenTheLastDeviceVanishes();

    void reportsAReadOnlyDirectory();
    void loadsAReadOnlyCompressedFile();
    void reportsAFullDirectoryWhileCopying();
    void reportsAFullDirectoryWhileDecoding();
    void reportsAFullDirectoryWhileExporting();
    void reportsAFullDirectoryWhileFiltering();
    void exportsAFileThatDisappeared();
    void survivesAFileThatShrinks();
    void aFileThatCannotBeOpenedIsReported();

private:
    SoundServer& m_server;
};

void PlayerFailuresTest::init()
{
    m_server.RemoveAllSinks();
    QVERIFY(m_server.AddSink(u"one"_s));
    QTRY_COMPARE_WITH_TIMEOUT(DeviceNames(), QStringList{u"one"_s}, PlayerSetup::patience);
}

void PlayerFailuresTest::playsOnElsewhereWhenItsDeviceVanishes()
{
    QVERIFY(m_server.AddSink(u"two"_s));
    QTRY_COMPARE_WITH_TIMEOUT(DeviceNames().size(), 2, PlayerSetup::patience);
    PlayerSetup setup;
    QVERIFY(MakeLongFile(setup.copies.Path(u"long.wav"_s)));
    QVERIFY(setup.Load(setup.originals.Path(u"long.wav"_s)));
    const QList<QAudioDevice> devices = vantoraudio::AudioEngine::PresentOutputs();
    setup.player->SetAudioOutputDevice(devices[0].id() == "two" ? devices[0] : devices[1]);
    setup.Controls().btnPlayPause->click();
    QTRY_VERIFY_WITH_TIMEOUT(setup.Audio().position() > 0, PlayerSetup::patience);
    QVERIFY(m_server.RemoveSink(u"two"_s));
    QTRY_COMPARE_WITH_TIMEOUT(DeviceNames(), QStringList{u"one"_s}, PlayerSetup::patience);
    const qint64 position = setup.Audio().position();
    QTRY_VERIFY_WITH_TIMEOUT(setup.Audio().position() > position + 500, PlayerSetup::patience);
    QVERIFY(setup.Controls().btnPlayPause->isChecked());
    setup.player->StopPlayback();
    QVERIFY(!setup.Controls().btnPlayPause->isChecked());
    QCOMPARE(setup.Audio().position(), 0);
}

void PlayerFailuresTest::playsOnTheStandInWhenTheLastDeviceVanishes()
{
    QVERIFY(m_server.StandIn());
    PlayerSetup setup;
    QVERIFY(MakeLongFile(setup.copies.Path(u"long.wav"_s)));
    QVERIFY(setup.Load(setup.originals.Path(u"long.wav"_s)));
    setup.Controls().btnPlayPause->click();
    QTRY_VERIFY_WITH_TIMEOUT(setup.Audio().position() > 0, PlayerSetup::patience);
    QVERIFY(m_server.RemoveSink(u"one"_s));
    QTRY_COMPARE_WITH_TIMEOUT(DeviceNames(), QStringList{u"auto_null"_s}, PlayerSetup::patience);
    const qint64 position = setup.Audio().position();
    QTRY_VERIFY_WITH_TIMEOUT(setup.Audio().position() > position + 500, PlayerSetup::patience);
    setup.player->Reset();
    QCOMPARE(setup.Audio().playbackState(), QMediaPlayer::StoppedState);
}

void PlayerFailuresTest::reportsAReadOnlyDirectory()
{
    PlayerSetup setup;
    QVERIFY(setup.Load(u"former.wav"_s, stereo.File()));
    const QString path = setup.originals.Write(u"take.wav"_s, stereo.File());
    const QString folder = setup.copies.Path(QString());
    QVERIFY(OrdinaryUser::TakesOver(folder));
    const OrdinaryUser user;
    if (!user.IsOrdinary()) {
        QSKIP("No permission stops this user.");
    }
    QVERIFY(QFile::setPermissions(folder, QFile::ReadOwner | QFile::ExeOwner));
    setup.player->SetAudioFile(path);
    QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    QCOMPARE(setup.player->errors, Errors{WavFile::ErrorWriteHeader});
    QCOMPARE(setup.player->GetAudioFileName(), setup.copies.Path(u"former.wav"_s));
}

void PlayerFailuresTest::loadsAReadOnlyCompressedFile()
{
    PlayerSetup setup;
    const QString tone = setup.originals.Path(u"tone.wav"_s);
    const QString path = setup.originals.Path(u"tone.mp3"_s);
    QVERIFY(AudioPrograms::MakeTone(tone, 44100, 2, 1.0));
    QVERIFY(AudioPrograms::Encode(u"mp3"_s, tone, path));
    QVERIFY(QFile::setPermissions(path, QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther));
    for (const QString& each : {path, setup.originals.Path(QString()), setup.copies.Path(QString())}) {
        QVERIFY(OrdinaryUser::TakesOver(each));
    }
    const OrdinaryUser user;
    if (!user.IsOrdinary()) {
        QSKIP("No permission stops this user.");
    }
    QVERIFY(setup.Load(path));
    QVERIFY(TemporaryFiles::Read(setup.copies.Path(u"tone.mp3"_s)).startsWith("RIFF"));
    QVERIFY(!QFile::permissions(path).testFlag(QFile::WriteOwner));
}

void PlayerFailuresTest::reportsAFullDirectoryWhileCopying()
{
    PlayerSetup setup;
    QVERIFY(setup.Load(u"former.wav"_s, stereo.File()));
    const QString path = setup.originals.Write(u"take.wav"_s, stereo.File());
    {
        const FileSizeLimit limit(10000);
        setup.player->SetAudioFile(path);
    }
    QCOMPARE(setup.player->errors, Errors{WavFile::ErrorWriteHeader});
    QCOMPARE(setup.player->GetAudioFileName(), setup.copies.Path(u"former.wav"_s));
    // A part of the file would be taken for its copy the next time.
    QCOMPARE(EntriesOf(setup.copies), QStringList{u"former.wav"_s});
    setup.player->SetAudioFile(path);
    QCOMPARE(setup.player->GetAudioFileName(), setup.copies.Path(u"take.wav"_s));
}

void PlayerFailuresTest::reportsAFullDirectoryWhileDecoding()
{
    PlayerSetup setup;
    const QString tone = setup.originals.Path(u"tone.wav"_s);
    const QString path = setup.originals.Path(u"tone.mp3"_s);
    QVERIFY(AudioPrograms::MakeTone(tone, 44100, 2, 10.0) && AudioPrograms::Encode(u"mp3"_s, tone, path));
    {
        const FileSizeLimit limit(2000000);
        setup.player->SetAudioFile(path);
    }
    QCOMPARE(setup.player->errors, Errors{WavFile::ErrorWriteHeader});
    QCOMPARE(setup.player->GetAudioFileName(), QString());
    QCOMPARE(setup.player->GetOriginalAudioFilePath(), path);
    QCOMPARE(EntriesOf(setup.copies), QStringList());
    setup.player->SetAudioFile(path);
    QCOMPARE(setup.player->errors.size(), 1);
    QVERIFY(qAbs(setup.player->GetAudioDuration() - 10.0) < 0.1);
}

void PlayerFailuresTest::reportsAFullDirectoryWhileExporting()
{
    PlayerSetup setup;
    QVERIFY(setup.Load(u"take.wav"_s, stereo.File()));
    setup.player->SetSelectedSnippet({0.0, 1.0});
    {
        const FileSizeLimit limit(5000);
        setup.player->CreateSnippet(setup.originals.Path(u"snippet.wav"_s));
        QVERIFY(setup.IsIdle());
    }
    QCOMPARE(setup.player->errors, Errors{WavFile::ErrorCreateSnippet});
}

void PlayerFailuresTest::reportsAFullDirectoryWhileFiltering()
{
    PlayerSetup setup;
    QVERIFY(setup.Load(u"take.wav"_s, stereo.File()));
    QSignalSpy busy(setup.player.get(), &AudioPlayerWidget::BusyChanged);
    {
        const FileSizeLimit limit(5000);
        setup.player->SetSelectedChannel(WavFile::ChannelLeft);
        QTRY_COMPARE(busy.size(), 4);
    }
    QCOMPARE(setup.player->errors, Errors{WavFile::ErrorFilterChannel});
    QCOMPARE(setup.player->GetSelectedChannel(), WavFile::ChannelLeftRight);
    // With room again the whole channel is to be had, not the part that there was room for.
    setup.player->SetSelectedChannel(WavFile::ChannelLeft);
    QVERIFY(setup.IsIdle());
    QCOMPARE(TemporaryFiles::Read(setup.copies.Path(u"take_Left.wav"_s)),
             stereo.Exported(stereo.ExportedData(0, 8000, WavFile::ChannelLeft), 16000));
}

void PlayerFailuresTest::exportsAFileThatDisappeared()
{
    PlayerSetup setup;
    QVERIFY(setup.Load(u"take.wav"_s, stereo.File()));
    QSignalSpy finished(setup.player.get(), &AudioPlayerWidget::CreateSnippetFinished);
    QVERIFY(QFile::remove(setup.copies.Path(u"take.wav"_s)));
    setup.player->SetSelectedSnippet({0.25, 0.5});
    setup.player->CreateSnippet(setup.originals.Path(u"snippet.wav"_s));
    QVERIFY(setup.IsIdle());
    QCOMPARE(finished.size(), 1);
    QCOMPARE(TemporaryFiles::Read(setup.originals.Path(u"snippet.wav"_s)),
             stereo.Exported(stereo.ExportedData(2000, 4000, WavFile::ChannelLeftRight), 4000));
    setup.player->SetSelectedChannel(WavFile::ChannelLeft);
    QVERIFY(setup.IsIdle());
    QCOMPARE(setup.player->errors, Errors());
    QCOMPARE(setup.Audio().source().toLocalFile(), setup.copies.Path(u"take_Left.wav"_s));
    // Both channels are the missing file itself.
    QSignalSpy busy(setup.player.get(), &AudioPlayerWidget::BusyChanged);
    setup.player->SetSelectedChannel(WavFile::ChannelLeftRight);
    QTRY_COMPARE(busy.size(), 4);
    QCOMPARE(setup.player->errors, Errors{WavFile::Success});
    QCOMPARE(setup.player->GetSelectedChannel(), WavFile::ChannelLeft);
}

void PlayerFailuresTest::survivesAFileThatShrinks()
{
    PlayerSetup setup;
    QVERIFY(setup.Load(u"take.wav"_s, stereo.File()));
    QVERIFY(QFile::resize(setup.copies.Path(u"take.wav"_s), 44 + 4000 * 4));
    Q_EMIT setup.View().GetSamples(0.0, 1.0, 1);
    QVERIFY(setup.HasRead());
    QCOMPARE(setup.File().GetSamples().size(), 4000);
    setup.player->SetSelectedSnippet({0.25, 0.75});
    setup.player->CreateSnippet(setup.originals.Path(u"snippet.wav"_s));
    QVERIFY(setup.IsIdle());
    QCOMPARE(setup.player->errors, Errors{WavFile::ErrorCreateSnippet});
    QVERIFY(!QFile::exists(setup.originals.Path(u"snippet.wav"_s)));
    // What is still there can be had.
    setup.player->SetSelectedSnippet({0.125, 0.5});
    setup.player->CreateSnippet(setup.originals.Path(u"snippet.wav"_s));
    QVERIFY(setup.IsIdle());
    QCOMPARE(TemporaryFiles::Read(setup.originals.Path(u"snippet.wav"_s)),
             stereo.Exported(stereo.ExportedData(1000, 4000, WavFile::ChannelLeftRight), 6000));
    QVERIFY(QFile::resize(setup.copies.Path(u"take.wav"_s), 20));
    QSignalSpy busy(setup.player.get(), &AudioPlayerWidget::BusyChanged);
    setup.player->SetSelectedChannel(WavFile::ChannelRight);
    QTRY_COMPARE(busy.size(), 4);
    QCOMPARE(setup.player->errors, (Errors{WavFile::ErrorCreateSnippet, WavFile::ErrorFilterChannel}));
    QCOMPARE(EntriesOf(setup.copies), QStringList{u"take.wav"_s});
    QVERIFY(setup.HasRead());
    QCOMPARE(setup.File().GetSamples().size(), 0);
}

void PlayerFailuresTest::aFileThatCannotBeOpenedIsReported()
{
    PlayerSetup setup;
    const QString copy = setup.copies.Write(u"take.wav"_s, stereo.File());
    QVERIFY(QFile::setPermissions(copy, {}));
    QVERIFY(OrdinaryUser::TakesOver(setup.copies.Path(QString())));
    const OrdinaryUser user;
    if (!user.IsOrdinary()) {
        QSKIP("No permission stops this user.");
    }
    setup.player->SetAudioFile(u"/"_s);
    setup.player->SetAudioFile(setup.originals.Path(u"take.wav"_s));
    QCOMPARE(setup.player->errors, (Errors{WavFile::ErrorOpenFile, WavFile::ErrorOpenFile}));
    QCOMPARE(setup.player->GetAudioFileName(), QString());
}

int main(int argc, char* argv[])
{
    SoundServer server;
    QApplication application(argc, argv);
    PlayerFailuresTest test(server);
    return QTest::qExec(&test, argc, argv);
}

#include "tst_playerfailures.moc"
