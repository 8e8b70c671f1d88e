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

/** Where none is the server's, Qt plays by other means. */
bool AreTheServers(const QList<QAudioDevice>& devices)
{
    const auto isKnown = [](const QAudioDevice& device) { return SoundServerSinks::Shared().Knows(device.id()); };
    return std::any_of(devices.cbegin(), devices.cend(), isKnown);
}

/** Qt's list. It stays empty once Qt has given up a server that was away for longer: then the last one. */
QList<QAudioDevice> ListedOutputs()
{
    static QMutex mutex;
    static QList<QAudioDevice> last;
    const QList<QAudioDevice> listed = QMediaDevices::audioOutputs();
    const QMutexLocker lock(&mutex);
    if (!listed.isEmpty()) {
        last = listed;
    }
    return AreTheServers(last) ? last : listed;
}

} // namespace

QList<QAudioDevice> PresentOutputs()
{
    if (!QtDefects::MissesDeviceChanges()) {
        return QMediaDevices::audioOutputs();
    }
    const SoundServerSinks& sinks = SoundServerSinks::Shared();
    auto present = sinks.Present();
    QList<QAudioDevice> devices = ListedOutputs();
    if (sinks.IsAway() || QtSoundConnection::Shared().IsLost()) {
        present.emplace();
    }
    if (present && AreTheServers(devices)) {
        devices.removeIf([&present](const QAudioDevice& device) { return !present->contains(device.id()); });
    }
    return devices;
}

} // namespace vantoraudio::AudioEngine
