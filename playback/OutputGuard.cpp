#include "playback/OutputGuard.h"

#include "playback/SoundSettling.h"

#include <QtCore/QLibraryInfo>
#include <QtCore/QUrl>
#include <QtCore/QVersionNumber>
#include <QtMultimedia/QAudioOutput>
#include <QtMultimedia/QMediaPlayer>

#include <algorithm>
#include <chrono>
#include <cstdlib>

namespace vantoraudio::AudioEngine {

namespace {

using namespace std::chrono_literals;

// Without another device to move to, PulseAudio kills a stream with its device. The audio thread's next write, up
// to 50 ms later, then makes Qt's output keep the sound system's lock for good: no further sound, and an abort
// when that thread ends. So it has to go before that write.
constexpr auto watchWhilePlaying = 1ms;
constexpr auto watchOtherwise = 50ms;

// Longer than a device needs to start. Without sound the position still creeps, a millisecond a second.
constexpr auto longestStandstill = 2000ms;
constexpr qint64 creep = 2;

bool DeviceChangesAreReported()
{
#ifdef Q_OS_LINUX
    return QLibraryInfo::version() >= QVersionNumber(6, 5);
#else
    return true;
#endif
}

// By name: two descriptions of one device differ as soon as another device becomes the default one.
const QAudioDevice* Find(const QList<QAudioDevice>& devices, const QByteArray& id)
{
    const auto isWanted = [&id](const QAudioDevice& device) { return device.id() == id; };
    const auto found = std::find_if(devices.cbegin(), devices.cend(), isWanted);
    return found == devices.cend() ? nullptr : &*found;
}

} // namespace

OutputGuard::OutputGuard(QMediaPlayer& player, QAudioOutput& output) : m_player(player), m_output(output)
{
    m_watch.setTimerType(Qt::PreciseTimer);
    const auto refresh = [this] { Refresh(); };
    QObject::connect(&m_watch, &QTimer::timeout, &m_watch, refresh);
    QObject::connect(&m_watch, &QTimer::timeout, &m_watch, [this] { EndStandstill(); });
    QObject::connect(&m_devices, &QMediaDevices::audioOutputsChanged, &m_watch, refresh);
    QObject::connect(&player, &QMediaPlayer::sourceChanged, &m_watch, refresh);
    QObject::connect(&player, &QMediaPlayer::playbackStateChanged, &m_watch, refresh);
    QObject::connect(&player, &QMediaPlayer::playbackStateChanged, &m_watch, [this] { ExpectProgress(); });
    QObject::connect(&player, &QMediaPlayer::positionChanged, &m_watch,
                     [this](qint64 position) { NoteProgress(position); });
    ExpectProgress();
}

OutputGuard::~OutputGuard()
{
    if (HasMedia()) {
        LetSoundSettleBeforeTheEnd();
    }
}

void OutputGuard::Prefer(const QAudioDevice& device)
{
    m_preferred = device;
    Refresh();
}

void OutputGuard::Refresh()
{
    MatchDevices();
    AdjustWatch();
}

void OutputGuard::MatchDevices()
{
    const QList<QAudioDevice> available = QMediaDevices::audioOutputs();
    if (available.isEmpty()) {
        Detach();
        return;
    }
    const QAudioDevice device = ChooseDevice(available);
    if (device.id() != m_output.device().id()) {
        m_output.setDevice(device);
    }
    Attach();
}

bool OutputGuard::HasMedia() const
{
    return !m_player.source().isEmpty() || m_player.sourceDevice();
}

QAudioDevice OutputGuard::ChooseDevice(const QList<QAudioDevice>& available) const
{
    for (const QByteArray& id : {m_preferred.id(), m_output.device().id()}) {
        if (const QAudioDevice* device = Find(available, id)) {
            return *device;
        }
    }
    return QMediaDevices::defaultAudioOutput();
}

void OutputGuard::AdjustWatch()
{
    if (DeviceChangesAreReported() || !HasMedia()) {
        m_watch.stop();
        return;
    }
    const bool isUrgent = m_player.playbackState() == QMediaPlayer::PlayingState && !m_detached;
    const std::chrono::milliseconds interval = isUrgent ? watchWhilePlaying : watchOtherwise;
    if (!m_watch.isActive() || m_watch.intervalAsDuration() != interval) {
        m_watch.start(interval);
    }
}

void OutputGuard::Detach()
{
    if (HasMedia() && m_player.audioOutput() == &m_output) {
        m_detached = true;
        m_player.setAudioOutput(nullptr);
    }
}

void OutputGuard::Attach()
{
    if (!m_detached) {
        return;
    }
    m_detached = false;
    if (m_player.audioOutput()) {
        return; // the host's own
    }
    m_player.setAudioOutput(&m_output);
    if (m_player.playbackState() == QMediaPlayer::PlayingState) {
        // Meanwhile the source was read to its end unheard, and an output that joins a running player starts
        // there or not at all.
        PlayAnew();
    }
}

void OutputGuard::PlayAnew()
{
    const qint64 position = m_player.position();
    m_player.pause();
    m_player.setPosition(position);
    m_player.play();
}

void OutputGuard::NoteProgress(qint64 position)
{
    if (std::abs(position - m_lastPosition) > creep) {
        ExpectProgress();
    }
    m_lastPosition = position;
}

void OutputGuard::ExpectProgress()
{
    m_progressIsDue.setRemainingTime(longestStandstill);
}

// The FFmpeg backend of Qt 6.4 now and then loses a seek that follows closely on the end of the media, and then
// plays nothing for ever: a loop would end after some thousand rounds.
void OutputGuard::EndStandstill()
{
    const bool isPlaying = m_player.playbackState() == QMediaPlayer::PlayingState;
    const bool canSound = m_player.audioOutput() && m_player.duration() > 0;
    if (isPlaying && canSound && m_progressIsDue.hasExpired()) {
        ExpectProgress();
        PlayAnew();
    }
}

} // namespace vantoraudio::AudioEngine
