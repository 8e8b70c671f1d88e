#include "DeviceMenu.h"

#include "MenuText.h"

#include <QtCore/QHash>
#include <QtCore/QSettings>
#include <QtGui/QActionGroup>

#include <algorithm>
#include <chrono>

using namespace std::chrono_literals;

namespace {

constexpr QLatin1StringView Key("outputDevice");

} // namespace

DeviceMenu::DeviceMenu(QWidget* parent) : QMenu(tr("&Output device"), parent)
{
    connect(&m_mediaDevices, &QMediaDevices::audioOutputsChanged, this, &DeviceMenu::LookForChanges);
    // On PulseAudio Qt does not tell of every change.
    m_look.callOnTimeout(this, &DeviceMenu::LookForChanges);
    m_look.start(1s);
    connect(&m_hardware, &vantoraudio::AudioEngine::HardwareManager::AudioDeviceListChanged, this,
            &DeviceMenu::Fill);
    Fill();
}

void DeviceMenu::Restore()
{
    const QByteArray id = QSettings().value(Key).toByteArray();
    const auto device = std::find_if(m_listed.cbegin(), m_listed.cend(),
                                     [&](const QAudioDevice& listed) { return listed.id() == id; });
    if (device != m_listed.cend()) {
        Choose(*device);
        Fill();
    }
}

void DeviceMenu::Choose(const QAudioDevice& device)
{
    m_chosen = device;
    QSettings().setValue(Key, device.id());
    Q_EMIT DeviceChosen(device);
}

void DeviceMenu::LookForChanges()
{
    const QList<QAudioDevice> devices = m_hardware.GetAvailableDevices(QAudioDevice::Output);
    if (devices != m_listed) {
        Q_EMIT m_hardware.AudioDeviceListChanged(devices);
    }
}

void DeviceMenu::Fill()
{
    clear();
    delete findChild<QActionGroup*>();
    auto* group = new QActionGroup(this);
    m_listed = m_hardware.GetAvailableDevices(QAudioDevice::Output);
    const QAudioDevice current = CurrentDevice();
    QHash<QString, int> counts;
    for (const QAudioDevice& device : m_listed) {
        const int number = ++counts[device.description()];
        //: %1: name of an output device, %2: its number among the devices of that name
        const QString name =
            number == 1 ? device.description() : tr("%1 (%2)").arg(device.description(), QString::number(number));
        AddDevice(device, name, device == current);
    }
    for (QAction* action : actions()) {
        group->addAction(action);
    }
    if (m_listed.isEmpty()) {
        addAction(tr("No output device"))->setEnabled(false);
    }
}

void DeviceMenu::AddDevice(const QAudioDevice& device, const QString& name, bool checked)
{
    QAction* action = addAction(AsMenuText(name), this, [this, device] { Choose(device); });
    action->setData(device.id());
    action->setCheckable(true);
    action->setChecked(checked);
}

QAudioDevice DeviceMenu::CurrentDevice() const
{
    return m_listed.contains(m_chosen) ? m_chosen : QMediaDevices::defaultAudioOutput();
}
