#include "playback/OutputDevices.h"

#include "engine/QtDefects.h"
#include "playback/SoundServerSinks.h"

#include <QtMultimedia/QMediaDevices>

namespace vantoraudio::AudioEngine {

QList<QAudioDevice> PresentOutputs()
{
    QList<QAudioDevice> devices = QMediaDevices::audioOutputs();
    if (QtDefects::MissesDeviceChanges()) {
        const SoundServerSinks& sinks = SoundServerSinks::Shared();
        devices.removeIf([&sinks](const QAudioDevice& device) { return sinks.HasLost(device.id()); });
    }
    return devices;
}

} // namespace vantoraudio::AudioEngine
