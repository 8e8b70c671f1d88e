#include "tests/support/Deleter.h"
#include "tests/support/SoundServer.h"
#include "tests/support/Tone.h"

#include <vantorAudioEngine/AudioPlayer.h>
#include <vantorAudioEngine/HardwareManager.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QMetaMethod>
#include <QtCore/QPointer>
#include <QtCore/QTemporaryDir>
#include <QtCore/QUrl>
#include <QtMultimedia/QAudioOutput>
#include <QtMultimedia/QMediaDevices>
#include <QtMultimedia/QVideoSink>
#include <QtTest/QTest>
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
#    include <QtMultimedia/QAudioBufferOutput>
#endif

#include <functional>
#include <vector>

using vantoraudio::AudioEngine::HardwareManager;
using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int patience = 5000;

std::vector<QMetaMethod> SignalsOf(const QMetaObject& type, int first)
{
    std::vector<QMetaMethod> all;
    for (int i = first; i < type.methodCount(); ++i) {
        if (type.method(i).methodType() == QMetaMethod::Signal) {
            all.push_back(type.method(i));
        }
    }
    return all;
}

/** Emitted in the middle of functions of Qt's own, which go on with the player and crash; plain Qt does the same.
 */
const QList<QByteArray> emittedInTheMiddle{"playbackStateChanged",  "mediaStatusChanged", "durationChanged",
                                           "hasAudioChanged",       "seekableChanged",    "metaDataChanged",
                                           "tracksChanged",         "errorChanged",       "errorOccurred",
                                           "bufferProgressChanged", "playingChanged"};

void WaitFor(const std::function<bool()>& condition)
{
    static_cast<void>(QTest::qWaitFor(condition, patience));
}

void SetAudioBufferOutput([[maybe_unused]] AudioPlayer& player)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
    player.setAudioBufferOutput(new QAudioBufferOutput(&player));
#endif
}

/** Everything that makes a player emit, one thing after the other. */
std::vector<std::function<void(AudioPlayer&)>> ThingsToDo(const QString& folder)
{
    const QString path = folder + u"/tone.wav"_s;
    const QString shortPath = folder + u"/short.wav"_s;
    const auto reaches = [](AudioPlayer& player, const std::function<bool(AudioPlayer&)>& condition) {
        const QPointer<AudioPlayer> alive(&player);
        WaitFor([&] { return !alive || condition(*alive); });
    };
    return {
        [=](AudioPlayer& player) { player.SetAudio(path, 20.0); },
        [=](AudioPlayer& player) {
            reaches(player, [](auto& p) { return p.mediaStatus() == QMediaPlayer::LoadedMedia; });
        },
        [](AudioPlayer& player) { player.play(); },
        [=](AudioPlayer& player) { reaches(player, [](auto& p) { return p.position() > 200; }); },
        [](AudioPlayer& player) { player.SetSelection(5.0, 6.0); },
        [](AudioPlayer& player) { player.SetAudioOutputDevice(QMediaDevices::audioOutputs().constLast()); },
        [](AudioPlayer& player) { player.SetAudioOutputDevice(QMediaDevices::audioOutputs().constFirst()); },
        [](AudioPlayer& player) { player.SetPlaybackRate(2.0); },
        [](AudioPlayer& player) { player.setLoops(2); },
        [](AudioPlayer& player) { player.PauseResume(); },
        [](AudioPlayer& player) { player.PauseResume(); },
        [=](AudioPlayer& player) {
            reaches(player, [](auto& p) { return p.playbackState() == QMediaPlayer::PausedState; });
        },
        [](AudioPlayer& player) { player.stop(); },
        [=](AudioPlayer& player) { player.SetAudio(path, 20.0); },
        [=](AudioPlayer& player) { player.SetAudio(shortPath, 0.2); },
        [](AudioPlayer& player) { player.setLoops(1); },
        [](AudioPlayer& player) { player.play(); },
        [=](AudioPlayer& player) {
            reaches(player, [](auto& p) { return p.playbackState() == QMediaPlayer::PausedState; });
        },
        [](AudioPlayer& player) { player.setActiveAudioTrack(-1); },
        [](AudioPlayer& player) { player.setVideoSink(new QVideoSink(&player)); },
        SetAudioBufferOutput,
        [=](AudioPlayer& player) { player.SetAudio(folder + u"/missing.wav"_s, 1.0); },
        [=](AudioPlayer& player) { reaches(player, [](auto& p) { return p.error() != QMediaPlayer::NoError; }); },
        [=](AudioPlayer& player) { player.SetAudio(path, 20.0); },
        [](AudioPlayer& player) { player.play(); },
        [=](AudioPlayer& player) { reaches(player, [](auto& p) { return p.position() > 200; }); },
        [](AudioPlayer& player) { player.setAudioOutput(nullptr); },
        [](AudioPlayer& player) { player.setSource(QUrl()); },
    };
}

int DeleteAt(int signal, const QString& folder)
{
    auto* const player = new AudioPlayer;
    const Deleter deleter(*player, AudioPlayer::staticMetaObject.method(signal));
    for (const auto& todo : ThingsToDo(folder)) {
        todo(*player);
        if (deleter.HasDeleted()) {
            // Nothing tells when what was under way in Qt has come to its end.
            QTest::qWait(300);
            return 0;
        }
    }
    delete player;
    return Deleter::neverEmitted;
}

} // namespace

/** Objects that a receiver of any of their signals deletes. Each row is a program of its own, which may crash. */
class DeleteInSlotsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(WriteToneFile(m_folder.filePath(u"tone.wav"_s), {.seconds = 20.0}));
        QVERIFY(WriteToneFile(m_folder.filePath(u"short.wav"_s), {.seconds = 0.2}));
    }

    void aPlayerMayBeDeletedAtASignal_data()
    {
        QTest::addColumn<int>("signal");
        const QMetaObject& type = AudioPlayer::staticMetaObject;
        for (const QMetaMethod& signal : SignalsOf(type, QObject::staticMetaObject.methodCount())) {
            if (!emittedInTheMiddle.contains(signal.name())) {
                QTest::newRow(signal.methodSignature().constData()) << signal.methodIndex();
            }
        }
    }
    void aPlayerMayBeDeletedAtASignal()
    {
        QFETCH(int, signal);
        RunAsOwnProgram({u"delete"_s, QString::number(signal), m_folder.path()}, Silence::Skips);
    }

    void aHardwareManagerMayBeDeletedAtItsSignal()
    {
        auto* const manager = new HardwareManager;
        const Deleter deleter(*manager, QMetaMethod::fromSignal(&HardwareManager::AudioDeviceListChanged));
        Q_EMIT manager->AudioDeviceListChanged(manager->GetAvailableDevices(QAudioDevice::Output));
        QVERIFY(deleter.HasDeleted());
    }

private:
    QTemporaryDir m_folder;
};

int main(int argc, char** argv)
{
    if (argc == 4 && qstrcmp(argv[1], "delete") == 0) {
        QCoreApplication application(argc, argv);
        return DeleteAt(QByteArray(argv[2]).toInt(), QString::fromLocal8Bit(argv[3]));
    }
    const SoundServer server({u"one"_s, u"two"_s});
    QCoreApplication application(argc, argv);
    DeleteInSlotsTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_delete_in_slots.moc"
