#pragma once

#include <QtCore/QList>
#include <QtMultimedia/QAudioDevice>

namespace vantoraudio::AudioEngine {

/** QMediaDevices::audioOutputs(), without the devices that have gone and that Qt still lists. */
QList<QAudioDevice> PresentOutputs();

} // namespace vantoraudio::AudioEngine
