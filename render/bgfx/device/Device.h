#pragma once

#include "render/bgfx/Frame.h"

#include <QtGui/QImage>

#include <cstdint>

/**
 * The seam between what records a frame and what draws it. A device gets a recorded frame and a target, nothing
 * else: bgfx itself, for example, would be one more of them.
 */
namespace vantoraudio::bgfx::device {

enum class Kind : std::uint8_t
{
    None,
    OpenGL,
    Software
};

/** Used on the GUI thread only. */
class Device
{
public:
    virtual ~Device() = default;

    [[nodiscard]] virtual device::Kind Kind() const = 0;
    /** The largest width and height of a picture, pixels. */
    [[nodiscard]] virtual int MaxSide() const = 0;
    /** Replaces all pixels of `picture`, which is not empty and has the format RGBA8888, by the frame; what no
     * view covers becomes transparent black. False: the device is lost, or has no memory for such a picture. The
     * picture is as it was then, and the device is not asked again. */
    virtual bool Draw(const Frame& frame, QImage& picture) = 0;
};

} // namespace vantoraudio::bgfx::device
