#include "render/bgfx/device/bgfx/BgfxInstance.h"

/** Stands in for bgfx in builds without it. */
namespace vantoraudio::bgfx::device {

// The real ones keep what they are given.
// NOLINTBEGIN(performance-unnecessary-value-param)

std::unique_ptr<BgfxInstance> StartOwnBgfx(BgfxInstance::News)
{
    return nullptr;
}

std::unique_ptr<BgfxInstance> JoinHostBgfx(const HostRenderer&, BgfxInstance::News)
{
    return nullptr;
}

// NOLINTEND(performance-unnecessary-value-param)

} // namespace vantoraudio::bgfx::device
