#pragma once

#include <vantorAudioEngine/HardwareManager.h>

#include <QtCore/QList>
#include <QtCore/QTimer>
#include <QtMultimedia/QAudioDevice>
#include <QtMultimedia/QMediaDevices>
#include <QtWidgets/QMenu>

/** A menu of the audio output devices, one of them chosen. It follows devices that come and go. */
class DeviceMenu : public QMenu
{
    Q_OBJECT

public:
    explicit DeviceMenu(QWidget* parent = nullptr);

Q_SIGNALS:
    void DeviceChosen(const QAudioDevice& device);

private:
    void Choose(const QAudioDevice& device);
    void LookForChanges();
    void Fill();
    void AddDevice(const QAudioDevice& device, bool checked);
    QAudioDevice CurrentDevice() const;

    vantoraudio::AudioEngine::HardwareManager m_hardware;
    QMediaDevices m_mediaDevices;
    QTimer m_look;
    QList<QAudioDevice> m_listed;
    QAudioDevice m_chosen;
};
