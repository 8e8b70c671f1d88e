#include "tests/support/BrokenFiles.h"
#include "tests/support/SoundServer.h"
#include "tests/ui/player/PlayerSetup.h"

#include <vantorAudioEngine/AudioFileInfo.h>
#include <vantorAudioEngine/AudioImporter.h>

#include <QtWidgets/QApplication>

#include <cmath>
#include <optional>

using namespace Qt::Literals::StringLiterals;
using BrokenFiles::Audio;
using BrokenFiles::File;
using vantoraudio::AudioEngine::AudioFileInfo;
using vantoraudio::AudioEngine::ImportResult;
using vantoraudio::vantorAudioEngine::UI::AudioPlayerWidget;
using Errors = QList<WavFile::AudioEngineReturnValue>;
using Problem = AudioFileInfo::Problem;

namespace {

/** How the latest load ended. */
struct LoadLog
{
    explicit LoadLog(AudioPlayerWidget& player)
    {
        QObject::connect(&player, &AudioPlayerWidget::LoadFinished, &context,
                         [this](const QString&) { problem = Problem::None; });
        QObject::connect(&player, &AudioPlayerWidget::LoadFailed, &context,
                         [this](const QString&, Problem reason, const QString& text) {
                             problem = reason;
                             sentence = text;
                         });
    }
    bool HasEnded() const
    {
        return QTest::qWaitFor([this] { return problem.has_value(); }, PlayerSetup::patience);
    }

    std::optional<Problem> problem;
    QString sentence;
    QObject context;
};

/** Whether the player has told that it cannot play. */
struct FailureLog
{
    explicit FailureLog(AudioPlayerWidget& player)
    {
        QObject::connect(&player, &AudioPlayerWidget::PlaybackFailed, &context, [this] { hasFailed = true; });
    }

    bool hasFailed = false;
    QObject context;
};

/** Plays until something is heard, the end is reached or the player tells that it cannot; false when it stands
 * still instead. What cannot be played by itself is played as a copy, which takes a moment. */
bool PlaysOrTellsWhyNot(const PlayerSetup& setup, const FailureLog& failure)
{
    using Status = QMediaPlayer::MediaStatus;
    const AudioPlayer& audio = setup.Audio();
    const auto hasSource = [&] {
        return failure.hasFailed ||
               (audio.mediaStatus() != Status::NoMedia && audio.mediaStatus() != Status::LoadingMedia);
    };
    if (!QTest::qWaitFor(hasSource, PlayerSetup::patience)) {
        return false;
    }
    bool isHeard = false;
    const QObject context;
    QObject::connect(&audio, &QMediaPlayer::positionChanged, &context,
                     [&](qint64 position) { isHeard = isHeard || position > 0; });
    QObject::connect(&audio, &QMediaPlayer::mediaStatusChanged, &context,
                     [&](Status status) { isHeard = isHeard || status == Status::EndOfMedia; });
    setup.player->Play();
    const bool isAnswered = QTest::qWaitFor([&] { return isHeard || failure.hasFailed; }, PlayerSetup::patience);
    setup.player->StopPlayback();
    return isAnswered && !setup.player->IsPlaying();
}

} // namespace

/** What a player makes of files that are broken or odd. One player meets them all, one after the other. */
class PlayerBrokenFilesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_setup = std::make_unique<PlayerSetup>(); }
    void cleanupTestCase() { m_setup.reset(); }
    void init() { m_setup->player->errors.clear(); }

    void loadsOrTellsWhyNot_data() { BrokenFiles::AddRows(); }
    void loadsOrTellsWhyNot();
    void opensWavNamesAsTheirHeaderSays_data();
    void opensWavNamesAsTheirHeaderSays();

private:
    std::unique_ptr<PlayerSetup> m_setup;
};

void PlayerBrokenFilesTest::loadsOrTellsWhyNot()
{
    QFETCH(const File, file);
    AudioPlayerWidget& player = *m_setup->player;
    const QString path = m_setup->originals.Write(file.name, file.bytes);
    const QString former = player.GetAudioFileName();
    const LoadLog log(player);
    const FailureLog failure(player);
    player.LoadFile(path);
    QVERIFY(log.HasEnded());
    const bool isLoaded = log.problem == Problem::None;
    if (file.loaded != Audio::Clear) {
        QCOMPARE(isLoaded, file.loaded == Audio::Readable);
    }
    if (isLoaded) {
        QCOMPARE(m_setup->player->errors, Errors());
        QCOMPARE(player.GetOriginalAudioFilePath(), path);
        QVERIFY(player.GetAudioDuration() > 0.0 && std::isfinite(player.GetAudioDuration()));
        QVERIFY(m_setup->HasRead());
        QVERIFY(PlaysOrTellsWhyNot(*m_setup, failure));
    } else {
        QCOMPARE(m_setup->player->errors, Errors{ImportResult{.problem = *log.problem}.Code()});
        QVERIFY(log.problem == Problem::NoAudio || log.problem == Problem::Damaged);
        QVERIFY(log.sentence.contains(path));
        QCOMPARE(player.GetAudioFileName(), former);
    }
    QCOMPARE(TemporaryFiles::Read(path), file.bytes);
}

/** Names that this road decodes are of another kind. */
void PlayerBrokenFilesTest::opensWavNamesAsTheirHeaderSays_data()
{
    QTest::addColumn<File>("file");
    for (const File& file : BrokenFiles::All()) {
        if (file.name == u"file.wav") {
            QTest::newRow(file.row.constData()) << file;
        }
    }
}

void PlayerBrokenFilesTest::opensWavNamesAsTheirHeaderSays()
{
    QFETCH(const File, file);
    AudioPlayerWidget& player = *m_setup->player;
    const QString path = m_setup->originals.Write(file.name, file.bytes);
    // A copy that is there already would be used as it is.
    player.Reset();
    QFile::remove(m_setup->copies.Path(file.name));
    const FailureLog failure(player);
    player.SetAudioFile(path);
    QCOMPARE(m_setup->player->errors, file.open == WavFile::Success ? Errors() : Errors{file.open});
    QCOMPARE(player.GetAudioFileName().isEmpty(), file.open != WavFile::Success);
    QVERIFY(m_setup->HasRead());
    QVERIFY(file.open != WavFile::Success || PlaysOrTellsWhyNot(*m_setup, failure));
    QCOMPARE(TemporaryFiles::Read(path), file.bytes);
}

int main(int argc, char* argv[])
{
    const SoundServer server({u"one"_s});
    QApplication application(argc, argv);
    PlayerBrokenFilesTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_playerbrokenfiles.moc"
