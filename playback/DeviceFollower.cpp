#include "playback/DeviceFollower.h"

#include "engine/QtDefects.h"
#include "playback/OutputDevices.h"
#include "playback/QtSoundConnection.h"
#include "playback/SoundServerSinks.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QPointer>
#include <QtCore/QUrl>
#include <QtMultimedia/QAudioOutput>
#include <QtMultimedia/QMediaPlayer>

#include <algorithm>
#include <chrono>
#include <utility>

namespace vantoraudio::AudioEngine {

namespace {

using namespace std::chrono_literals;

/** Qt's list may be behind the sound server's for this long. */
constexpr auto betweenChecks = 50ms;
constexpr int checksAfterAChange = 20;
/** Qt looks for a server three seconds after it has learned of the former one's end. */
constexpr int checksAfterANewServer = 200;

/** A playback rate that no one hears or sees. Qt divides by it. */
constexpr qreal standingStill = 1e-6;

// By id: two descriptions of one device differ as soon as another device becomes the default one.
const QAudioDevice* Find(const QList<QAudioDevice>& devices, const QByteArray& id)
{
    const auto isWanted = [&id](const QAudioDevice& device) { return device.id() == id; };
    const auto found = std::find_if(devices.cbegin(), devices.cend(), isWanted);
    return found == devices.cend() ? nullptr : &*found;
}

} // namespace

DeviceFollower::DeviceFollower(QMediaPlayer& player, QAudioOutput& output) : m_player(player), m_output(output)
{
    const auto refresh = [this] { Refresh(); };
    QObject::connect(&m_devices, &QMediaDevices::audioOutputsChanged, &m_context, refresh);
    QObject::connect(&player, &QMediaPlayer::sourceChanged, &m_context, [this] { OnSourceChanged(); });
    QObject::connect(&player, &QMediaPlayer::playbackStateChanged, &m_context, refresh);
    if (QtDefects::MissesDeviceChanges()) {
        ListenToTheSoundServer();
    }
}

void DeviceFollower::ListenToTheSoundServer()
{
    m_catchingUp.setInterval(betweenChecks);
    QObject::connect(&m_catchingUp, &QTimer::timeout, &m_context, [this] {
        if (--m_checksLeft <= 0) {
            m_catchingUp.stop();
        }
        const QPointer<QObject> self(&m_context);
        Refresh();
        if (self && !m_catchingUp.isActive()) {
            TellIfSoundIsLost();
        }
    });
    QObject::connect(&SoundServerSinks::Shared(), &SoundServerSinks::Changed, &m_context, [this] {
        const bool isNew = QtSoundConnection::Shared().IsLost() || PresentOutputs().isEmpty();
        RefreshForAWhile(isNew ? checksAfterANewServer : checksAfterAChange);
    });
    QObject::connect(&QtSoundConnection::Shared(), &QtSoundConnection::Restored, &m_context,
                     [this] { RefreshForAWhile(checksAfterANewServer); });
}

DeviceFollower::~DeviceFollower()
{
    if (m_isInUse) {
        m_player.setAudioOutput(nullptr);
        TellWhetherInUse(false);
    }
}

/** A server is there, and Qt does not come back to it, or did not find it when the program began. */
void DeviceFollower::TellIfSoundIsLost()
{
    const auto present = SoundServerSinks::Shared().Present();
    const bool isNews = m_isDetached && !m_hasTold;
    if (isNews && present && (QtSoundConnection::Shared().IsLost() || !present->isEmpty())) {
        m_hasTold = true;
        Q_EMIT m_player.errorOccurred(
            QMediaPlayer::ResourceError,
            QCoreApplication::translate("AudioPlayer", "The connection to the sound server was lost for good. "
                                                       "Start the program again to hear sound."));
    }
}

void DeviceFollower::RefreshForAWhile(int checks)
{
    m_checksLeft = std::max(m_checksLeft, checks);
    m_catchingUp.start();
    Refresh();
}

void DeviceFollower::OnSourceChanged()
{
    m_hasTold = false;
    const QPointer<QObject> self(&m_context);
    Refresh();
    if (self && m_isDetached && QtDefects::MissesDeviceChanges()) {
        // Nothing else would tell that this file will not sound either.
        RefreshForAWhile(checksAfterANewServer);
    }
}

void DeviceFollower::Prefer(const QAudioDevice& device)
{
    m_preferred = device;
    Refresh();
}

void DeviceFollower::Refresh()
{
    // A receiver of the player's signals may delete it, and this object with it.
    const QPointer<QObject> self(&m_context);
    FollowDevices();
    if (self) {
        TellWhetherInUse(HasMedia() && m_player.audioOutput() == &m_output);
    }
}

void DeviceFollower::TellWhetherInUse(bool isInUse)
{
    if (!QtDefects::LosesTheSoundServer() || std::exchange(m_isInUse, isInUse) == isInUse) {
        return;
    }
    QtSoundConnection& connection = QtSoundConnection::Shared();
    isInUse ? connection.AddUser() : connection.RemoveUser();
}

void DeviceFollower::FollowDevices()
{
    const QList<QAudioDevice> available = PresentOutputs();
    if (available.isEmpty()) {
        Detach();
        return;
    }
    const QAudioDevice device = ChooseDevice(available);
    if (QtDefects::LosesTheSoundServer()) {
        QtSoundConnection::Shared().Make(device);
    }
    const QPointer<QObject> self(&m_context);
    if (device.id() != m_output.device().id()) {
        m_output.setDevice(device);
    }
    if (self) {
        Attach();
    }
}

bool DeviceFollower::HasMedia() const
{
    return !m_player.source().isEmpty() || m_player.sourceDevice();
}

QAudioDevice DeviceFollower::ChooseDevice(const QList<QAudioDevice>& available) const
{
    for (const QByteArray& id :
         {m_preferred.id(), m_output.device().id(), QMediaDevices::defaultAudioOutput().id()}) {
        if (const QAudioDevice* device = Find(available, id)) {
            return *device;
        }
    }
    return available.constFirst();
}

void DeviceFollower::Detach()
{
    if (!HasMedia() || m_player.audioOutput() != &m_output) {
        return;
    }
    const QPointer<QObject> self(&m_context);
    m_player.setAudioOutput(nullptr);
    if (self && !std::exchange(m_isDetached, true) && QtDefects::RunsOnWithoutOutput()) {
        m_playbackRate = m_player.playbackRate();
        m_player.setPlaybackRate(standingStill);
    }
}

void DeviceFollower::Attach()
{
    if (!m_isDetached) {
        return;
    }
    m_isDetached = false;
    m_hasTold = false;
    const QPointer<QObject> self(&m_context);
    if (QtDefects::RunsOnWithoutOutput() && m_player.playbackRate() < 2.0 * standingStill) {
        m_player.setPlaybackRate(m_playbackRate);
    }
    if (!self || m_player.audioOutput()) {
        return; // the host's own
    }
    m_player.setAudioOutput(&m_output);
    if (self && m_player.playbackState() == QMediaPlayer::PlayingState) {
        // Meanwhile the source was read to its end unheard, and an output that joins a running player starts there
        // or not at all.
        PlayAgain(m_player);
    }
}

void PlayAgain(QMediaPlayer& player)
{
    const QPointer<QMediaPlayer> self(&player);
    const qint64 position = player.position();
    const QUrl source = player.source();
    player.pause();
    // A receiver of the pause may have done something else.
    if (self && player.playbackState() == QMediaPlayer::PausedState && player.source() == source) {
        player.setPosition(position);
        if (self) {
            player.play();
        }
    }
}

} // namespace vantoraudio::AudioEngine
