#include "playback/OutputDevices.h"

#include "engine/QtDefects.h"
#include "playback/QtSoundConnection.h"
#include "playback/SoundServerSinks.h"

#include <QtMultimedia/QMediaDevices>

#include <algorithm>

namespace vantoraudio::AudioEngine {

QList<QAudioDevice> PresentOutputs()
{
    QList<QAudioDevice> devices = QMediaDevices::audioOutputs();
    if (!QtDefects::MissesDeviceChanges()) {
        return devices;
    }
    const SoundServerSinks& sinks = SoundServerSinks::Shared();
    auto present = sinks.Present();
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
