#pragma once

#include <vantorAudioEngine/HardwareManager.h>

#include <QtCore/QList>
#include <QtCore/QTimer>
#include <QtMultimedia/QAudioDevice>
#include <QtMultimedia/QMediaDevices>
#include <QtWidgets/QMenu>

/** A menu of the audio output devices, one of them chosen. It follows devices that come and go, and remembers the
 *  choice from one start to the next. */
class DeviceMenu : public QMenu
{
    Q_OBJECT

public:
    explicit DeviceMenu(QWidget* parent = nullptr);

    /** Chooses the remembered device again, if it is there. */
    void Restore();

Q_SIGNALS:
    void DeviceChosen(const QAudioDevice& device);

private:
    void Choose(const QAudioDevice& device);
    void LookForChanges();
    void Fill();
    void AddDevice(const QAudioDevice& device, const QString& name, bool checked);
    QAudioDevice CurrentDevice() const;

    vantoraudio::AudioEngine::HardwareManager m_hardware;
    QMediaDevices m_mediaDevices;
    QTimer m_look;
    QList<QAudioDevice> m_listed;
    QAudioDevice m_chosen;
};
