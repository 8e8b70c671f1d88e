/**
 * Counts how programs survive what happens to the sound under them, each in a process of its own. By hand: each
 * count takes minutes, and what Qt does in such a moment is a matter of chance.
 *
 *   scripts/private-session.sh build/dev/tests/playback/sound_faults WHAT TIMES [busy] [plain]
 *
 *   end        the sound server ends in good order while the program plays, and another one starts
 *   kill       the same, but it is killed
 *   players    twenty players at once, which are paused, sought, stopped and destroyed as chance has it
 *
 * busy: the program's event loop comes round every 30 ms only. plain: with Qt's own player, without the library.
 */
#include "engine/QtDefects.h"
#include "tests/support/SoundServer.h"
#include "tests/support/Tone.h"

#include <vantorAudioEngine/AudioPlayer.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>
#include <QtCore/QProcess>
#include <QtCore/QRandomGenerator>
#include <QtCore/QSocketNotifier>
#include <QtCore/QTemporaryDir>
#include <QtCore/QThread>
#include <QtCore/QTimer>
#include <QtCore/QUrl>
#include <QtMultimedia/QAudioOutput>
#include <QtMultimedia/QMediaPlayer>
#include <QtTest/QTest>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <unistd.h>
#include <vector>

namespace QtDefects = vantoraudio::AudioEngine::QtDefects;
using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int patience = 20000;
constexpr double seconds = 120.0;

// What a program says at its end.
enum Outcome
{
    Survived = 0,
    DidNotStart = 3,
    DidNotGoOn = 4,
    TookLong = 5
};

/** A player to be treated alike, the library's or Qt's own. */
class AnyPlayer
{
public:
    explicit AnyPlayer(bool isPlain)
    {
        if (isPlain) {
            m_player = std::make_unique<QMediaPlayer>();
            m_player->setAudioOutput(new QAudioOutput(m_player.get()));
        } else {
            m_player = std::make_unique<AudioPlayer>();
        }
    }

    QMediaPlayer* operator->() const { return m_player.get(); }

    void Load(const QString& path) const
    {
        if (auto* const player = qobject_cast<AudioPlayer*>(m_player.get())) {
            player->SetAudio(path, seconds);
            return;
        }
        m_player->setSource(QUrl());
        m_player->setSource(QUrl::fromLocalFile(path));
    }

    void Play() const
    {
        auto* const player = qobject_cast<AudioPlayer*>(m_player.get());
        player ? player->play() : m_player->play();
    }

    void Reset() { m_player.reset(); }

private:
    std::unique_ptr<QMediaPlayer> m_player;
};

void Say(const char* word)
{
    std::printf("%s\n", word);
    std::fflush(stdout);
}

bool GoesOn(const AnyPlayer& player, const bool& isTold)
{
    const qint64 position = player->position();
    const auto isOver = [&] { return isTold || player->position() > position + 200; };
    return QTest::qWaitFor(isOver, patience) && !isTold;
}

void HearACommand()
{
    QEventLoop loop;
    const QSocketNotifier notifier(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&notifier, &QSocketNotifier::activated, &loop, &QEventLoop::quit);
    loop.exec();
    char ignored = 0;
    if (::read(STDIN_FILENO, &ignored, 1) != 1) {
        std::exit(DidNotStart);
    }
}

/** Plays; the server goes; loads, plays; the server comes; goes on or can be made to. */
int PlayWhileTheServerGoes(const QString& path, bool isPlain)
{
    AnyPlayer player(isPlain);
    player.Load(path);
    player.Play();
    if (!QTest::qWaitFor([&] { return player->position() > 300; }, patience)) {
        return DidNotStart;
    }
    Say("playing");
    HearACommand();
    QElapsedTimer timer;
    timer.start();
    player.Load(path);
    const qint64 loading = timer.restart();
    player.Play();
    bool isTold = false;
    QObject::connect(player.operator->(), &QMediaPlayer::errorOccurred, player.operator->(), [&] {
        isTold = true;
        Say("lost");
    });
    Say("loaded");
    HearACommand();
    const bool goesOn = GoesOn(player, isTold);
    timer.restart();
    player.Reset();
    const qint64 destroying = timer.elapsed();
    std::fprintf(stderr, "loading %lld ms, destroying %lld ms\n", loading, destroying);
    if (!goesOn) {
        return DidNotGoOn;
    }
    return std::max(loading, destroying) > 100 ? TookLong : Survived;
}

void TreatAtRandom(const AnyPlayer& player, const QString& path)
{
    QRandomGenerator& random = *QRandomGenerator::global();
    switch (random.bounded(6)) {
    case 0:
        player->pause();
        break;
    case 1:
        player->stop();
        break;
    case 2:
        player->setPosition(random.bounded(1000));
        break;
    case 3:
        player.Load(path);
        break;
    default:
        player.Play();
    }
}

int PlayTwentyAtOnce(const QString& path, bool isPlain)
{
    constexpr std::size_t count = 20;
    std::vector<AnyPlayer> players;
    const QDeadlineTimer end(4000);
    while (!end.hasExpired()) {
        while (players.size() < count) {
            players.emplace_back(isPlain);
            players.back().Load(path);
            players.back().Play();
        }
        QTest::qWait(20);
        const std::size_t chosen = QRandomGenerator::global()->bounded(static_cast<quint32>(count));
        if (QRandomGenerator::global()->bounded(3) == 0) {
            players.erase(players.begin() + static_cast<std::ptrdiff_t>(chosen));
        } else {
            TreatAtRandom(players[chosen], path);
        }
    }
    return Survived;
}

int RunChild(const QStringList& arguments)
{
    const bool isPlain = arguments.contains(u"plain"_s);
    QTimer work;
    QObject::connect(&work, &QTimer::timeout, &work, [] { QThread::msleep(30); });
    if (arguments.contains(u"busy"_s)) {
        work.start(0);
    }
    const QString path = arguments.value(2);
    return arguments.contains(u"players"_s) ? PlayTwentyAtOnce(path, isPlain)
                                            : PlayWhileTheServerGoes(path, isPlain);
}

struct Count
{
    int survived = 0;
    int crashed = 0;
    int hung = 0;
    int tookLong = 0;
    int told = 0;
    int other = 0;

    void Add(QProcess& program)
    {
        if (program.state() != QProcess::NotRunning) {
            ++hung;
        } else if (program.exitStatus() == QProcess::CrashExit) {
            ++crashed;
        } else if (program.readAll().contains("lost")) {
            ++told;
        } else {
            const int code = program.exitCode();
            ++(code == Survived ? survived : code == TookLong ? tookLong : other);
        }
    }
};

bool Hears(QProcess& program, const char* word)
{
    const QByteArray line(word);
    while (!program.canReadLine()) {
        if (!program.waitForReadyRead(patience)) {
            return false;
        }
    }
    return program.readLine().trimmed() == line;
}

void EndTheServerUnder(QProcess& program, SoundServer& server, bool isOrderly)
{
    if (!Hears(program, "playing")) {
        return;
    }
    isOrderly ? server.End() : server.Kill();
    program.write("l");
    if (!Hears(program, "loaded")) {
        return;
    }
    server.Start();
    server.AddSink(u"one"_s);
    program.write("g");
}

int CountSurvivors(const QStringList& arguments)
{
    const QString what = arguments.value(1);
    const int times = qMax(1, arguments.value(2).toInt());
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"tone.wav"_s);
    if (!WriteToneFile(path, {.seconds = what == u"players"_s ? 1.5 : seconds})) {
        return 1;
    }
    SoundServer server({u"one"_s});
    Count count;
    for (int i = 0; i < times; ++i) {
        if (!server.IsRunning()) {
            server.Start();
            server.AddSink(u"one"_s);
        }
        QProcess program;
        program.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        program.start(QCoreApplication::applicationFilePath(), QStringList{u"child"_s, path} + arguments.mid(1));
        if (what != u"players"_s) {
            EndTheServerUnder(program, server, what == u"end"_s);
        }
        program.waitForFinished(patience + 10000);
        count.Add(program);
        program.kill();
        program.waitForFinished();
    }
    std::printf(
        "%d of %d survived, %d told that sound is lost, %d crashed, %d hung, %d took longer than 100 ms, %d did "
        "not go on\n",
        count.survived, times, count.told, count.crashed, count.hung, count.tookLong, count.other);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    if (QtDefects::PrefersABackendWithoutPlugins()) {
        qputenv("QT_MEDIA_BACKEND", "ffmpeg");
    }
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    return arguments.value(1) == u"child"_s ? RunChild(arguments) : CountSurvivors(arguments);
}
