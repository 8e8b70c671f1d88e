#include "render/bgfx/bgfx.h"

#include "render/bgfx/Context.h"
#include "render/bgfx/DeviceLifetime.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QScopeGuard>

namespace vantoraudio::bgfx {
namespace {

/** Keeps Qt from calling into this library once it is unloaded. */
struct ExitHook
{
    ExitHook() { qAddPostRoutine(&shutdown); }
    ~ExitHook() { qRemovePostRoutine(&shutdown); }
};

std::unique_ptr<ExitHook>& TheExitHook()
{
    static std::unique_ptr<ExitHook> hook;
    return hook;
}

void Carry(Context& context)
{
    Resources& resources = context.resources;
    if (!resources.device || resources.deviceLost) {
        return;
    }
    if (!resources.device->BeginFrame()) {
        resources.deviceLost = true;
        return;
    }
    // Also when memory runs out in between: the host's own context must be current again.
    const auto end = qScopeGuard([&] { resources.device->EndFrame(); });
    context.lastDrawCount = Execute(resources, context.recorder);
}

} // namespace

Context& TheContext()
{
    static Context& context = *new Context;
    return context;
}

DeviceLifetime& DeviceLifetime::Get()
{
    // As long-lived as the context, for the same reason.
    static DeviceLifetime& lifetime = *new DeviceLifetime;
    return lifetime;
}

bool DeviceLifetime::IsLost()
{
    return Objects().deviceLost;
}

bool DeviceLifetime::Ensure()
{
    if (Objects().deviceLost) {
        shutdown();
        return init({RendererType::Software});
    }
    if (Objects().device) {
        return true;
    }
    return QCoreApplication::instance() && !QCoreApplication::closingDown() && init();
}

bool init(const Init& wanted)
{
    if (Objects().device) {
        return false;
    }
    auto device = device::MakeDevice(wanted.type);
    if (!device) {
        return false;
    }
    Objects().AdoptDevice(std::move(device));
    if (QCoreApplication::instance()) {
        TheExitHook() = std::make_unique<ExitHook>();
    }
    return true;
}

void shutdown()
{
    if (!Objects().device) {
        return;
    }
    Q_EMIT DeviceLifetime::Get().AboutToShutDown();
    Recorder().Clear();
    Objects().ReleaseDevice();
    TheExitHook().reset();
    Q_EMIT DeviceLifetime::Get().HasShutDown();
}

RendererType::Enum getRendererType()
{
    return Objects().caps.rendererType;
}

const char* getRendererName(RendererType::Enum type)
{
    switch (type) {
    case RendererType::OpenGL:
        return "OpenGL";
    case RendererType::Software:
        return "Software";
    default:
        return "Noop";
    }
}

const Caps* getCaps()
{
    return &Objects().caps;
}

const Stats* getStats()
{
    Context& context = TheContext();
    context.stats = context.resources.Count();
    context.stats.numDraw = context.lastDrawCount;
    return &context.stats;
}

std::uint32_t frame(std::uint8_t flags)
{
    Context& context = TheContext();
    context.lastDrawCount = 0;
    if (!(flags & BGFX_FRAME_DISCARD)) {
        Carry(context);
    }
    context.recorder.Clear();
    return ++context.frameNumber;
}

} // namespace vantoraudio::bgfx
