#include "playback/OutputDevices.h"

#include "engine/QtDefects.h"
#include "playback/QtSoundConnection.h"
#include "playback/SoundServerSinks.h"

#include <QtCore/QMutex>
#include <QtCore/QMutexLocker>
#include <QtMultimedia/QMediaDevices>

#include <algorithm>

namespace vantoraudio::AudioEngine {

namespace {

/** Qt's list. Qt gives up a server that was away for longer; then the last list that it had of it. */
QList<QAudioDevice> ListedOutputs(bool isServerThere)
{
    static QMutex mutex;
    static QList<QAudioDevice> last;
    const QList<QAudioDevice> listed = QMediaDevices::audioOutputs();
    const QMutexLocker lock(&mutex);
    if (!listed.isEmpty()) {
        last = listed;
    }
    return isServerThere ? last : listed;
}

} // namespace

QList<QAudioDevice> PresentOutputs()
{
    if (!QtDefects::MissesDeviceChanges()) {
        return QMediaDevices::audioOutputs();
    }
    const SoundServerSinks& sinks = SoundServerSinks::Shared();
    auto present = sinks.Present();
    QList<QAudioDevice> devices = ListedOutputs(present.has_value());
    if (sinks.IsAway() || QtSoundConnection::Shared().IsLost()) {
        present.emplace();
    }
    // Where none is the server's, Qt plays by other means.
    const bool areTheServers = std::any_of(devices.cbegin(), devices.cend(), [&sinks](const QAudioDevice& device) {
        return sinks.Knows(device.id());
    });
    if (present && areTheServers) {
        devices.removeIf([&present](const QAudioDevice& device) { return !present->contains(device.id()); });
    }
    return devices;
}

} // namespace vantoraudio::AudioEngine
