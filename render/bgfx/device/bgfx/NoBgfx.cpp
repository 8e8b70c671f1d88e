#include "render/bgfx/device/bgfx/BgfxInstance.h"

/** Stands in for bgfx in builds without it. */
namespace vantoraudio::bgfx::device {

std::unique_ptr<BgfxInstance> StartOwnBgfx(BgfxInstance::News)
{
    return nullptr;
}

std::unique_ptr<BgfxInstance> JoinHostBgfx(const HostRenderer&, BgfxInstance::News)
{
    return nullptr;
}

} // namespace vantoraudio::bgfx::device
