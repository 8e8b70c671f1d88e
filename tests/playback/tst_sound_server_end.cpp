#include "engine/QtDefects.h"
#include "playback/OutputDevices.h"
#include "playback/SoundServerSinks.h"
#include "tests/support/SoundRecording.h"
#include "tests/support/SoundServer.h"
#include "tests/support/Tone.h"
#include "tests/support/WaitAwake.h"

#include <vantorAudioEngine/AudioPlayer.h>
#include <vantorAudioEngine/HardwareManager.h>

#include <QtConcurrent/QtConcurrentRun>
#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>
#include <QtMultimedia/QAudioDevice>
#include <QtMultimedia/QAudioOutput>
#include <QtTest/QTest>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>

namespace QtDefects = vantoraudio::AudioEngine::QtDefects;
using vantoraudio::AudioEngine::HardwareManager;
using vantoraudio::AudioEngine::PresentOutputs;
using vantoraudio::AudioEngine::SoundServerSinks;
using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int patience = 30000;
/** In real time, because that is what an end of the server must not cost. */
constexpr qint64 longest = 100;

/** Qt 6.4.2 keeps the lock of its connection if it writes just then; nothing sounds in this program any more. */
std::atomic<bool> isSoundLost;
/** Qt looks for another server only once, three seconds after the end of the former one. */
std::atomic<bool> hasQtGivenUp;
QtMessageHandler formerHandler;

void NoteLostSound(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    if (QtDefects::KeepsItsLock() && text.startsWith(u"pa_stream_begin_write error"_s)) {
        isSoundLost = true;
    }
    if (text.startsWith(u"PulseAudioService: pa_context_connect() failed"_s)) {
        hasQtGivenUp = true;
    }
    formerHandler(type, context, text);
}

qint64 TimeOf(const std::function<void()>& action)
{
    QElapsedTimer timer;
    timer.start();
    action();
    return timer.elapsed();
}

} // namespace

/** Players whose sound server ends under them and comes back, as it does when its package is updated. */
class SoundServerEndTest : public QObject
{
    Q_OBJECT

public:
    explicit SoundServerEndTest(SoundServer& server) : m_server(server) {}

private Q_SLOTS:
    void initTestCase();
    void init();

    void playsOnWhenTheServerComesBack_data();
    void playsOnWhenTheServerComesBack();
    void loadsPlaysAndDestroysWithoutAServer_data() { AddWaysToEnd(); }
    void loadsPlaysAndDestroysWithoutAServer();
    void aPlayerThatIsPausedSoundsAgainWhenItIsResumed();
    void severalPlayersGoOn();
    void playsOnADeviceOfAnotherName();
    void noDeviceIsListedWhileTheServerIsAway();
    void aPlayerThatWasMadeWithoutAServerTellsThatNothingSounds();
    // In the end: Qt's own list of devices stays empty from then on.
    void playsOnWhenTheServerComesBackLate();
    void playsOnWhereAServerCameForAMomentOnly();

private:
    static void AddWaysToEnd();
    void EndServer(bool isKilled);
    void StartServer(const QString& sink);
    std::unique_ptr<AudioPlayer> PlayingPlayer() const;

    SoundServer& m_server;
    QTemporaryDir m_folder;
    QString m_file;
};

void SoundServerEndTest::AddWaysToEnd()
{
    QTest::addColumn<bool>("isKilled");
    QTest::newRow("ended in good order") << false;
    QTest::newRow("killed") << true;
}

void SoundServerEndTest::EndServer(bool isKilled)
{
    const QFuture<void> ending = QtConcurrent::run([&] { isKilled ? m_server.Kill() : m_server.End(); });
    WaitAwake([&] { return ending.isFinished(); });
    WaitAwake([] { return PresentOutputs().isEmpty(); });
    if (isSoundLost) {
        QSKIP("Qt has lost its connection to the sound server in a way that nobody can mend.");
    }
}

void SoundServerEndTest::StartServer(const QString& sink)
{
    m_server.Start();
    QVERIFY(m_server.AddSink(sink));
}

std::unique_ptr<AudioPlayer> SoundServerEndTest::PlayingPlayer() const
{
    auto player = std::make_unique<AudioPlayer>();
    player->SetAudio(m_file, 60.0);
    player->play();
    return QTest::qWaitFor([&] { return player->position() > 100; }, patience) ? std::move(player) : nullptr;
}

void SoundServerEndTest::initTestCase()
{
    formerHandler = qInstallMessageHandler(NoteLostSound);
    QVERIFY(m_server.IsRunning());
    m_file = m_folder.filePath(u"tone.wav"_s);
    QVERIFY(WriteToneFile(m_file, {.seconds = 60.0}));
}

void SoundServerEndTest::init()
{
    if (isSoundLost) {
        QSKIP("There is no sound any more.");
    }
    if (!m_server.IsRunning()) {
        StartServer(u"one"_s);
    }
    QTRY_COMPARE_WITH_TIMEOUT(PresentOutputs().size(), 1, patience);
}

void SoundServerEndTest::playsOnWhenTheServerComesBack_data()
{
    AddWaysToEnd();
}

void SoundServerEndTest::playsOnWhenTheServerComesBack()
{
    QFETCH(bool, isKilled);
    const auto player = PlayingPlayer();
    QVERIFY(player);
    player->SetVolume(50);
    const qint64 position = player->position();
    EndServer(isKilled);
    if (isSoundLost) {
        return;
    }
    QTRY_VERIFY_WITH_TIMEOUT(!player->audioOutput(), patience);
    QCOMPARE(player->playbackState(), QMediaPlayer::PlayingState);
    StartServer(u"one"_s);
    const SoundRecording one(u"one"_s);
    QTRY_COMPARE_WITH_TIMEOUT(one.Frequency(SoundRecording::Left), 440, patience);
    QCOMPARE(player->Volume(), 50);
    QCOMPARE(player->playbackState(), QMediaPlayer::PlayingState);
    QVERIFY(player->position() > position);
}

void SoundServerEndTest::loadsPlaysAndDestroysWithoutAServer()
{
    QFETCH(bool, isKilled);
    auto player = PlayingPlayer();
    QVERIFY(player);
    EndServer(isKilled);
    if (isSoundLost) {
        return;
    }
    QTRY_VERIFY_WITH_TIMEOUT(!player->audioOutput(), patience);
    QVERIFY(TimeOf([&] { player->SetAudio(m_file, 60.0); }) < longest);
    QVERIFY(TimeOf([&] { player->play(); }) < longest);
    QVERIFY(TimeOf([&] { player->setPosition(5000); }) < longest);
    QVERIFY(TimeOf([&] { player->stop(); }) < longest);
    QVERIFY(TimeOf([&] { player.reset(); }) < longest);
}

void SoundServerEndTest::aPlayerThatIsPausedSoundsAgainWhenItIsResumed()
{
    const auto player = PlayingPlayer();
    QVERIFY(player);
    player->pause();
    EndServer(false);
    if (isSoundLost) {
        return;
    }
    QTRY_VERIFY_WITH_TIMEOUT(!player->audioOutput(), patience);
    StartServer(u"one"_s);
    QTRY_VERIFY_WITH_TIMEOUT(player->audioOutput(), patience);
    QCOMPARE(player->playbackState(), QMediaPlayer::PausedState);
    player->play();
    const SoundRecording one(u"one"_s);
    QTRY_COMPARE_WITH_TIMEOUT(one.Frequency(SoundRecording::Left), 440, patience);
}

void SoundServerEndTest::severalPlayersGoOn()
{
    auto first = PlayingPlayer();
    const auto second = PlayingPlayer();
    QVERIFY(first && second);
    EndServer(false);
    if (isSoundLost) {
        return;
    }
    QTRY_VERIFY_WITH_TIMEOUT(!first->audioOutput() && !second->audioOutput(), patience);
    // Qt's connection was made for this one.
    first.reset();
    StartServer(u"one"_s);
    const SoundRecording one(u"one"_s);
    QTRY_COMPARE_WITH_TIMEOUT(one.Frequency(SoundRecording::Left), 440, patience);
    const auto third = PlayingPlayer();
    QVERIFY(third);
}

void SoundServerEndTest::playsOnADeviceOfAnotherName()
{
    const auto player = PlayingPlayer();
    QVERIFY(player);
    EndServer(false);
    if (isSoundLost) {
        return;
    }
    QTRY_VERIFY_WITH_TIMEOUT(!player->audioOutput(), patience);
    StartServer(u"other"_s);
    const SoundRecording other(u"other"_s);
    QTRY_COMPARE_WITH_TIMEOUT(other.Frequency(SoundRecording::Left), 440, patience);
    QCOMPARE(player->audioOutput()->device().id(), QByteArray("other"));
}

void SoundServerEndTest::noDeviceIsListedWhileTheServerIsAway()
{
    HardwareManager manager;
    QCOMPARE(manager.GetAvailableDevices(QAudioDevice::Output).size(), 1);
    EndServer(false);
    if (isSoundLost) {
        return;
    }
    QTRY_COMPARE_WITH_TIMEOUT(manager.GetAvailableDevices(QAudioDevice::Output).size(), 0, patience);
    StartServer(u"one"_s);
    QTRY_COMPARE_WITH_TIMEOUT(manager.GetAvailableDevices(QAudioDevice::Output).size(), 1, patience);
}

void SoundServerEndTest::aPlayerThatWasMadeWithoutAServerTellsThatNothingSounds()
{
    EndServer(false);
    if (isSoundLost) {
        return;
    }
    QProcess program;
    program.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    program.start(QCoreApplication::applicationFilePath(), {u"without-server"_s, m_file});
    QTRY_VERIFY_WITH_TIMEOUT(program.canReadLine(), patience);
    QCOMPARE(program.readLine(), "waiting\n");
    StartServer(u"one"_s);
    // Once for the file that it has, and once for one that it gets later, but not for a new device.
    for (int i = 0; i < 2; ++i) {
        QTRY_VERIFY_WITH_TIMEOUT(program.canReadLine(), patience);
        QCOMPARE(program.readLine(), "The connection to the sound server was lost for good. "
                                     "Start the program again to hear sound.\n");
        QVERIFY(i > 0 || m_server.AddSink(u"two"_s));
    }
    QTRY_COMPARE_WITH_TIMEOUT(program.state(), QProcess::NotRunning, patience);
    QVERIFY(m_server.RemoveSink(u"two"_s));
    QCOMPARE(program.exitStatus(), QProcess::NormalExit);
    QCOMPARE(program.exitCode(), 0);
}

void SoundServerEndTest::playsOnWhenTheServerComesBackLate()
{
    const auto player = PlayingPlayer();
    QVERIFY(player);
    EndServer(true);
    if (isSoundLost) {
        return;
    }
    QTRY_VERIFY_WITH_TIMEOUT(hasQtGivenUp, patience);
    QVERIFY(!player->audioOutput());
    StartServer(u"one"_s);
    const SoundRecording one(u"one"_s);
    QTRY_COMPARE_WITH_TIMEOUT(one.Frequency(SoundRecording::Left), 440, patience);
}

void SoundServerEndTest::playsOnWhereAServerCameForAMomentOnly()
{
    const auto player = PlayingPlayer();
    QVERIFY(player);
    EndServer(true);
    if (isSoundLost) {
        return;
    }
    QTRY_VERIFY_WITH_TIMEOUT(!player->audioOutput(), patience);
    StartServer(u"one"_s);
    QTRY_VERIFY_WITH_TIMEOUT(SoundServerSinks::Shared().Present(), patience);
    EndServer(true);
    if (isSoundLost) {
        return;
    }
    // Qt would look for a server within this time, and never again.
    hasQtGivenUp = false;
    static_cast<void>(QTest::qWaitFor([] { return hasQtGivenUp.load(); }, 5000));
    StartServer(u"one"_s);
    const SoundRecording one(u"one"_s);
    QTRY_COMPARE_WITH_TIMEOUT(one.Frequency(SoundRecording::Left), 440, patience);
}

namespace {

void Say(const QString& line)
{
    std::puts(qUtf8Printable(line));
    std::fflush(stdout);
}

/** The lasting loss that another player tells of. Then nothing that came before it is left to be told. */
bool IsToldByAnotherPlayer(const QString& path)
{
    AudioPlayer player;
    bool isTold = false;
    QObject::connect(&player, &QMediaPlayer::errorOccurred, &player, [&] { isTold = true; });
    player.SetAudio(path, 60.0);
    return QTest::qWaitFor([&] { return isTold; }, patience);
}

/** A program of its own: says that it waits for a server, and what its player tells of two files. */
int PlayWithoutServer(const QString& path)
{
    AudioPlayer player;
    // Behind the player's own connection to the signal.
    bool areTwoSinks = false;
    QObject::connect(&SoundServerSinks::Shared(), &SoundServerSinks::Changed, &player, [&] {
        const auto present = SoundServerSinks::Shared().Present();
        areTwoSinks = present && present->size() == 2;
    });
    int told = 0;
    QObject::connect(&player, &QMediaPlayer::errorOccurred, &player,
                     [&](QMediaPlayer::Error, const QString& text) {
                         ++told;
                         Say(text);
                     });
    player.SetAudio(path, 60.0);
    player.play();
    Say(u"waiting"_s);
    if (!QTest::qWaitFor([&] { return told == 1 && areTwoSinks; }, patience) || !IsToldByAnotherPlayer(path) ||
        told != 1) {
        return 1;
    }
    player.SetAudio(path, 60.0);
    return QTest::qWaitFor([&] { return told == 2; }, patience) ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc == 3 && qstrcmp(argv[1], "without-server") == 0) {
        const QCoreApplication application(argc, argv);
        return PlayWithoutServer(QString::fromLocal8Bit(argv[2]));
    }
    SoundServer server({u"one"_s});
    QCoreApplication application(argc, argv);
    SoundServerEndTest test(server);
    const int result = QTest::qExec(&test, argc, argv);
    qInstallMessageHandler(nullptr);
    if (isSoundLost) {
        std::_Exit(result);
    }
    return result;
}

#include "tst_sound_server_end.moc"
