#include "render/bgfx/DrawingDevice.h"

#include <QtCore/QCoreApplication>

#include <utility>

namespace vantoraudio::bgfx {
namespace {

void ShutdownWithApplication()
{
    DrawingDevice::Get().Shutdown();
}

/** Keeps Qt from calling into this library once it is unloaded. */
struct ExitHook
{
    ExitHook() { qAddPostRoutine(&ShutdownWithApplication); }
    ~ExitHook() { qRemovePostRoutine(&ShutdownWithApplication); }
};

std::unique_ptr<device::Device> MakeDevice(device::Kind kind)
{
    switch (kind) {
    case device::Kind::OpenGL:
        return device::MakeOpenGLDevice();
    case device::Kind::Software:
        return device::MakeSoftwareDevice();
    case device::Kind::None:
        break;
    }
    return nullptr;
}

} // namespace

DrawingDevice& DrawingDevice::Get()
{
    // Never destroyed: an application object that is never destroyed either may leave the device alive at exit,
    // when its driver is already gone.
    static DrawingDevice& drawingDevice = *new DrawingDevice;
    return drawingDevice;
}

bool DrawingDevice::Ensure()
{
    if (m_isLost) {
        return Use(device::Kind::Software);
    }
    if (m_device) {
        return true;
    }
    const bool hasApplication = QCoreApplication::instance() && !QCoreApplication::closingDown();
    return hasApplication && (Use(device::Kind::OpenGL) || Use(device::Kind::Software));
}

void DrawingDevice::Adopt(std::unique_ptr<device::Device> device)
{
    static std::unique_ptr<ExitHook> exitHook;
    if (m_device) {
        Q_EMIT AboutToShutDown();
        ClearFrame();
    }
    m_device = std::move(device);
    m_isLost = false;
    const bool needsHook = m_device && QCoreApplication::instance();
    // First the former one: removing it removes all that are equal.
    exitHook.reset();
    exitHook = needsHook ? std::make_unique<ExitHook>() : nullptr;
}

bool DrawingDevice::Use(device::Kind kind)
{
    // The former device goes first: two contexts at once are more than some drivers can do.
    Adopt(nullptr);
    Adopt(MakeDevice(kind));
    return m_device != nullptr;
}

device::Kind DrawingDevice::Kind() const
{
    return m_device ? m_device->Kind() : device::Kind::None;
}

int DrawingDevice::MaxSide() const
{
    return m_device ? m_device->MaxSide() : 0;
}

bool DrawingDevice::DrawInto(QImage& picture)
{
    if (!m_device || m_isLost) {
        return false;
    }
    m_isLost = !m_device->Draw(RecordedFrame(), picture);
    return !m_isLost;
}

} // namespace vantoraudio::bgfx
