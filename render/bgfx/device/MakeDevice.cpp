#include "render/bgfx/device/Device.h"
#include "render/bgfx/device/NoopDevice.h"
#include "render/bgfx/device/OpenGLDevice.h"
#include "render/bgfx/device/SoftwareDevice.h"

namespace vantoraudio::bgfx::device {

std::unique_ptr<Device> MakeDevice(RendererType::Enum type)
{
    switch (type) {
    case RendererType::Noop:
        return std::make_unique<NoopDevice>();
    case RendererType::OpenGL:
        return MakeOpenGLDevice();
    case RendererType::Software:
        return std::make_unique<SoftwareDevice>();
    case RendererType::Count:
        break;
    }
    auto device = MakeOpenGLDevice();
    return device ? std::move(device) : std::make_unique<SoftwareDevice>();
}

} // namespace vantoraudio::bgfx::device
