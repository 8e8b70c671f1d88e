#pragma once

#include "render/bgfx/device/bgfx/FramePlan.h"

#include <QtCore/QString>
#include <QtGui/QImage>

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace vantoraudio::bgfx::device {

/** A running bgfx that makes pictures of plans, later. Used on the GUI thread. */
class BgfxInstance
{
public:
    enum class State : std::uint8_t
    {
        Starting,
        Running,
        /** It could not be started, or its graphics device is gone. Nothing comes any more. */
        Lost
    };
    struct Picture
    {
        /** What it was asked for with. */
        std::uint64_t id = 0;
        QImage image;
    };
    /** Called on any thread when there are pictures to take or the state has changed. */
    using News = std::function<void()>;

    virtual ~BgfxInstance() = default;

    [[nodiscard]] virtual State CurrentState() const = 0;
    /** What bgfx draws with, as "Vulkan"; empty until it runs. */
    [[nodiscard]] virtual QString RendererName() const = 0;
    [[nodiscard]] virtual int MaxSide() const = 0;

    /** Asks for a picture. It replaces one of the same id that is not begun yet. */
    virtual void Ask(std::uint64_t id, FramePlan plan) = 0;
    /** Nothing is asked for with this id any more. */
    virtual void Forget(std::uint64_t id) = 0;
    /** Waits until all that was asked for with this id is done. False where it does not come by waiting: bgfx is
     * still starting, is lost, or its frames are the host's business. */
    virtual bool WaitFor(std::uint64_t id) = 0;
    /** Waits until bgfx has started. False when it is lost. */
    virtual bool WaitForStart() = 0;
    /** The pictures that have come since the last call, oldest first. */
    [[nodiscard]] virtual std::vector<Picture> TakePictures() = 0;

    /** What the host's call of frame() returned. Means nothing to a bgfx of our own. */
    virtual void OnHostFrame(std::uint32_t) {}
};

/** A bgfx that the host runs. */
struct HostRenderer
{
    /** What bgfx_get_interface() returns. */
    const void* functions = nullptr;
    /** BGFX_API_VERSION of the host's bgfx. */
    std::uint32_t version = 0;
    /** The views of bgfx that are ours: two for each picture in one of the host's frames. */
    std::uint16_t firstView = 0;
    std::uint16_t viewCount = 0;
};

/** Starts a bgfx of our own, headless and on a thread of its own; the destructor ends it. Null in a build without
 * bgfx. */
[[nodiscard]] std::unique_ptr<BgfxInstance> StartOwnBgfx(BgfxInstance::News news);
/** Draws with the host's bgfx, in the host's frames. The destructor gives back what was made there, so bgfx must
 * still run then. Null in a build without bgfx, and where the host's is another version, does not run, leaves us
 * fewer than two views or some that it does not have, or cannot do what drawing takes. */
[[nodiscard]] std::unique_ptr<BgfxInstance> JoinHostBgfx(const HostRenderer& host, BgfxInstance::News news);

} // namespace vantoraudio::bgfx::device
