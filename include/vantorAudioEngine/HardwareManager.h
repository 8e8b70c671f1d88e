#pragma once

#include <vantorAudioEngine/Export.h>

#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtMultimedia/QAudioDevice>
#include <QtMultimedia/QAudioFormat>
#include <QtMultimedia/QAudioInput>
#include <QtMultimedia/QAudioOutput>

namespace vantoraudio::AudioEngine {

/**
 * Lists the machine's audio output devices, for a host that lets its user choose one and hands the choice to
 * AudioPlayer::SetAudioOutputDevice().
 *
 * Every call asks again; nothing fails: an empty list means that no device fits. Use it on
 * the GUI thread.
 */
class VANTORAUDIOENGINE_EXPORT HardwareManager : public QObject
{
    Q_OBJECT

public:
    explicit HardwareManager(QObject* parent = nullptr);
    ~HardwareManager() override;

    /** Takes over the two devices of other; the input and output objects, parent and connections stay. */
    HardwareManager& operator=(const HardwareManager& other);

    /** The output devices that support format, in the order of QMediaDevices::audioOutputs(), without those that
     * have gone and that Qt still lists. Always outputs: mode is not looked at, whatever it asks for. */
    QList<QAudioDevice> GetAvailableDevices(const QAudioFormat& format, QAudioDevice::Mode mode);

    /** The same for 16-bit stereo at 44100 Hz. */
    QList<QAudioDevice> GetAvailableDevices(QAudioDevice::Mode mode);

Q_SIGNALS:
    /** For the owner to emit; nothing in here does. On Linux Qt 6.4 never emits
     * QMediaDevices::audioOutputsChanged(), and 6.8 not for every device that goes: ask again whenever you open a
     * menu. */
    void AudioDeviceListChanged(const QList<QAudioDevice>& deviceList);

private:
    friend class HardwareManagerTestAccess;

    // The class lists devices and opens none. The assignment copies the two devices. Input and output are unused;
    // they only keep the class's layout.
    QAudioDevice m_inputDevice;
    QAudioInput m_audioInput;
    QAudioDevice m_outputDevice;
    QAudioOutput m_audioOutput;
};

} // namespace vantoraudio::AudioEngine
