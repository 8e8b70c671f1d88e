/**
 * Counts those defects of Qt that show once in hundreds of times only, or in how long something takes, in plain Qt
 * without the library. By hand, because a test of them would fail now and then with a sound Qt as well:
 *
 *   scripts/private-session.sh build/dev/tests/playback/rare_qt_defects naps          seconds for 2 min of audio
 *   scripts/private-session.sh build/dev/tests/playback/rare_qt_defects signals 100   decodes that stood still
 *   scripts/private-session.sh build/dev/tests/playback/rare_qt_defects seeks 200     seeks that were lost
 *   scripts/private-session.sh build/dev/tests/playback/rare_qt_defects ends 100      programs that crashed at
 * their end
 *
 * `signals` and `ends` show more beside other programs that keep the processors busy.
 */
#include "engine/QtDefects.h"
#include "tests/support/AudioPrograms.h"
#include "tests/support/SoundServer.h"
#include "tests/support/Tone.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>
#include <QtCore/QUrl>
#include <QtMultimedia/QAudioDecoder>
#include <QtMultimedia/QAudioOutput>
#include <QtMultimedia/QMediaDevices>
#include <QtMultimedia/QMediaPlayer>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <cstdio>
#include <memory>

namespace QtDefects = vantoraudio::AudioEngine::QtDefects;
using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int patience = 10000;

/** Reads all buffers as fast as they come. False when none came for ten seconds. */
bool Decodes(const QString& path)
{
    QAudioDecoder decoder;
    QSignalSpy ends(&decoder, &QAudioDecoder::finished);
    int buffers = 0;
    QObject::connect(&decoder, &QAudioDecoder::bufferReady, &decoder, [&] {
        decoder.read();
        ++buffers;
    });
    decoder.setSource(QUrl::fromLocalFile(path));
    decoder.start();
    int former = -1;
    while (ends.isEmpty() && former != buffers) {
        former = buffers;
        ends.wait(patience);
    }
    return !ends.isEmpty();
}

int CountNaps(const QString& path)
{
    QElapsedTimer timer;
    timer.start();
    const bool isDecoded = Decodes(path);
    std::printf("%.2f s for 2 min of audio\n", double(timer.elapsed()) / 1000.0);
    return isDecoded ? 0 : 1;
}

int CountSilentDecodes(const QString& path, int times)
{
    int silent = 0;
    for (int i = 0; i < times; ++i) {
        silent += Decodes(path) ? 0 : 1;
    }
    std::printf("%d of %d decodes stood still\n", silent, times);
    return 0;
}

int CountLostSeeks(const QString& path, int times)
{
    QMediaPlayer player;
    QAudioOutput output;
    player.setAudioOutput(&output);
    player.setSource(QUrl::fromLocalFile(path));
    player.play();
    QSignalSpy positions(&player, &QMediaPlayer::positionChanged);
    int lost = 0;
    for (int i = 0; i < times; ++i) {
        const qint64 target = i % 2 == 0 ? 60000 : 5000;
        player.setPosition(target);
        positions.wait(patience);
        positions.wait(patience);
        lost += qAbs(player.position() - target) > 2000 ? 1 : 0;
    }
    std::printf("%d of %d seeks were lost\n", lost, times);
    return 0;
}

/** A program that ends right after its last sound. */
int PlayBriefly(const QString& path)
{
    QMediaPlayer player;
    QAudioOutput output;
    player.setAudioOutput(&output);
    player.setSource(QUrl::fromLocalFile(path));
    player.play();
    return QTest::qWaitFor([&] { return player.mediaStatus() == QMediaPlayer::EndOfMedia; }, patience) ? 0 : 1;
}

int CountCrashesAtTheEnd(const QString& path, int times)
{
    int crashes = 0;
    for (int i = 0; i < times; ++i) {
        QProcess program;
        program.start(QCoreApplication::applicationFilePath(), {u"play"_s, path});
        program.waitForFinished();
        crashes += program.exitStatus() == QProcess::CrashExit ? 1 : 0;
    }
    std::printf("%d of %d programs crashed at their end\n", crashes, times);
    return 0;
}

int Count(const QString& what, int times)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"tone.wav"_s);
    const double seconds = what == u"ends"_s ? 0.2 : what == u"signals"_s ? 10.0 : 120.0;
    if (!WriteToneFile(path, {.seconds = seconds})) {
        return 1;
    }
    const QString compressed = folder.filePath(u"tone.mp3"_s);
    if (what == u"naps"_s) {
        return AudioPrograms::Encode(u"mp3"_s, path, compressed) ? CountNaps(compressed) : 1;
    }
    if (what == u"signals"_s) {
        return AudioPrograms::Encode(u"mp3"_s, path, compressed) ? CountSilentDecodes(compressed, times) : 1;
    }
    if (what == u"seeks"_s) {
        return CountLostSeeks(path, times);
    }
    return what == u"ends"_s ? CountCrashesAtTheEnd(path, times) : 2;
}

} // namespace

int main(int argc, char** argv)
{
    if (QtDefects::PrefersABackendWithoutPlugins()) {
        qputenv("QT_MEDIA_BACKEND", "ffmpeg");
    }
    const bool isChild = argc > 2 && QLatin1StringView(argv[1]) == "play"_L1;
    // Ahead of the application, which looks for the sound server.
    const std::unique_ptr<SoundServer> server(isChild ? nullptr : new SoundServer({u"one"_s}));
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    return isChild ? PlayBriefly(arguments.value(2))
                   : Count(arguments.value(1), qMax(1, arguments.value(2).toInt()));
}
