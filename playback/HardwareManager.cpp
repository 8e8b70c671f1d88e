#include "playback/OutputDevices.h"

#include <vantorAudioEngine/HardwareManager.h>

#include <algorithm>
#include <iterator>

namespace vantoraudio::AudioEngine {

namespace {

// Hosts connect to the signal by name and across threads, before any manager exists.
[[maybe_unused]] const int deviceListType = qRegisterMetaType<QList<QAudioDevice>>("QList<QAudioDevice>");

QAudioFormat CompactDiscFormat()
{
    QAudioFormat format;
    format.setSampleFormat(QAudioFormat::Int16);
    format.setChannelCount(2);
    format.setSampleRate(44100);
    return format;
}

} // namespace

HardwareManager::HardwareManager(QObject* parent) : QObject(parent)
{
    // What goes from now on is known to have gone.
    PresentOutputs();
}

HardwareManager::~HardwareManager() = default;

HardwareManager& HardwareManager::operator=(const HardwareManager& other)
{
    m_inputDevice = other.m_inputDevice;
    m_outputDevice = other.m_outputDevice;
    return *this;
}

QList<QAudioDevice> HardwareManager::GetAvailableDevices(const QAudioFormat& format, QAudioDevice::Mode)
{
    const QList<QAudioDevice> all = PresentOutputs();
    const auto fits = [&format](const QAudioDevice& device) { return device.isFormatSupported(format); };
    QList<QAudioDevice> fitting;
    std::copy_if(all.cbegin(), all.cend(), std::back_inserter(fitting), fits);
    return fitting;
}

QList<QAudioDevice> HardwareManager::GetAvailableDevices(QAudioDevice::Mode mode)
{
    return GetAvailableDevices(CompactDiscFormat(), mode);
}

} // namespace vantoraudio::AudioEngine
