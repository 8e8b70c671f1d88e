#include "render/bgfx/DrawingDevice.h"

#include "render/bgfx/device/bgfx/BgfxDevice.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QTimer>

#include <chrono>
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

/** With what `start` makes; null when it makes nothing. */
template<typename Start>
std::unique_ptr<device::Device> MakeBgfxDevice(Start start)
{
    auto device = std::make_unique<device::BgfxDevice>(
        [](const QImage* picture) { Q_EMIT DrawingDevice::Get().PictureArrived(picture); });
    return device->Use(start(device->News())) ? std::move(device) : nullptr;
}

std::unique_ptr<device::Device> MakeDevice(device::Kind kind)
{
    switch (kind) {
    case device::Kind::Bgfx:
        return MakeBgfxDevice(&device::StartOwnBgfx);
    case device::Kind::OpenGL:
        return device::MakeOpenGLDevice();
    case device::Kind::Software:
        return device::MakeSoftwareDevice();
    case device::Kind::None:
        break;
    }
    return nullptr;
}

const char* NameOf(device::Kind kind)
{
    switch (kind) {
    case device::Kind::Bgfx:
        return "bgfx";
    case device::Kind::OpenGL:
        return "OpenGL";
    case device::Kind::Software:
        return "the processor";
    case device::Kind::None:
        break;
    }
    return "nothing";
}

device::Kind Next(device::Kind kind)
{
    return kind == device::Kind::Bgfx ? device::Kind::OpenGL : device::Kind::Software;
}

} // namespace

DrawingDevice& DrawingDevice::Get()
{
    // Never destroyed: an application object that is never destroyed either may leave the device alive at exit,
    // when its driver is already gone.
    static DrawingDevice& drawingDevice = *new DrawingDevice;
    return drawingDevice;
}

DrawingDevice::DrawingDevice() : m_firstKind(device::Kind::VANTORAUDIO_FIRST_DEVICE) {}

bool DrawingDevice::Ensure()
{
    if (m_isLost) {
        return ReplaceLost();
    }
    if (m_device) {
        return true;
    }
    const bool hasApplication = QCoreApplication::instance() && !QCoreApplication::closingDown();
    return hasApplication && ((m_host && !m_isHostLost && UseHost(*m_host)) || MakeFirstFrom(m_firstKind));
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
    if (Make(kind) && m_device->WaitUntilReady()) {
        return true;
    }
    Shutdown();
    return false;
}

bool DrawingDevice::UseHost(const device::HostRenderer& host)
{
    auto device = MakeBgfxDevice([&](auto news) { return device::JoinHostBgfx(host, std::move(news)); });
    if (!device) {
        return false;
    }
    m_host = host;
    m_isHostLost = false;
    Adopt(std::move(device));
    return true;
}

void DrawingDevice::LeaveHost()
{
    if (std::exchange(m_host, std::nullopt)) {
        Shutdown();
    }
}

void DrawingDevice::OnHostFrame(std::uint32_t number)
{
    if (m_device) {
        m_device->OnHostFrame(number);
    }
}

bool DrawingDevice::ReplaceLost()
{
    const device::Kind lost = Kind();
    if (lost == device::Kind::Bgfx && m_host && !m_isHostLost) {
        // Nothing is known of a bgfx of our own, which may have to wait until the host's is gone.
        m_isHostLost = true;
    } else if (lost == device::Kind::Bgfx) {
        // It is not tried again and again: starting it takes long, and there is a warning each time.
        m_firstKind = Next(lost);
    }
    const bool isReplaced = MakeFirstFrom(Next(lost));
    qWarning("vantorAudioEngine: %s does not draw the waveforms (any more); %s does from now on", NameOf(lost),
             NameOf(Kind()));
    return isReplaced;
}

bool DrawingDevice::MakeFirstFrom(device::Kind kind)
{
    return Make(kind) || (kind != device::Kind::Software && MakeFirstFrom(Next(kind)));
}

bool DrawingDevice::Make(device::Kind kind)
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

QString DrawingDevice::RendererName() const
{
    return m_device ? m_device->RendererName() : QString();
}

int DrawingDevice::MaxSide() const
{
    return m_device ? m_device->MaxSide() : 0;
}

bool DrawingDevice::DrawInto(QImage& picture, bool mayLag)
{
    if (!m_device || m_isLost) {
        return false;
    }
    const Frame& frame = RecordedFrame();
    m_isLost = !(mayLag ? m_device->DrawSoon(frame, picture) : m_device->Draw(frame, picture));
    return !m_isLost;
}

void DrawingDevice::Forget(const QImage* picture)
{
    if (m_device) {
        m_device->Forget(picture);
    }
}

void DrawingDevice::RemoveView()
{
    // Not at once: who closes one view and opens the next would start bgfx twice.
    constexpr std::chrono::seconds Rest(3);
    if (--m_views == 0 && Kind() == device::Kind::Bgfx) {
        QTimer::singleShot(Rest, this, [this] {
            if (m_views == 0 && Kind() == device::Kind::Bgfx) {
                Shutdown();
            }
        });
    }
}

} // namespace vantoraudio::bgfx
