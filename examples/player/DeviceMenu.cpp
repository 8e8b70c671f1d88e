#include "DeviceMenu.h"

#include <QtGui/QActionGroup>

DeviceMenu::DeviceMenu(QWidget* parent) : QMenu(tr("&Output device"), parent)
{
    connect(&m_mediaDevices, &QMediaDevices::audioOutputsChanged, this, [this] {
        Q_EMIT m_hardware.AudioDeviceListChanged(m_hardware.GetAvailableDevices(QAudioDevice::Output));
    });
    connect(&m_hardware, &vantoraudio::AudioEngine::HardwareManager::AudioDeviceListChanged, this,
            &DeviceMenu::Fill);
    Fill();
}

void DeviceMenu::Choose(const QAudioDevice& device)
{
    m_chosen = device;
    Q_EMIT DeviceChosen(device);
}

void DeviceMenu::Fill()
{
    clear();
    delete findChild<QActionGroup*>();
    auto* group = new QActionGroup(this);
    const QAudioDevice current = CurrentDevice();
    const QList<QAudioDevice> devices = m_hardware.GetAvailableDevices(QAudioDevice::Output);
    for (const QAudioDevice& device : devices) {
        AddDevice(device, device == current);
    }
    for (QAction* action : actions()) {
        group->addAction(action);
    }
    if (devices.isEmpty()) {
        addAction(tr("No output device"))->setEnabled(false);
    }
}

void DeviceMenu::AddDevice(const QAudioDevice& device, bool checked)
{
    QAction* action = addAction(device.description(), this, [this, device] { Choose(device); });
    action->setCheckable(true);
    action->setChecked(checked);
}

QAudioDevice DeviceMenu::CurrentDevice() const
{
    const bool stillThere = QMediaDevices::audioOutputs().contains(m_chosen);
    return stillThere ? m_chosen : QMediaDevices::defaultAudioOutput();
}
