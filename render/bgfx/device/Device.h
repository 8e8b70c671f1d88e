#pragma once

#include "render/bgfx/Frame.h"

#include <QtGui/QImage>

#include <cstdint>
#include <memory>

/**
 * The seam between what records a frame and what draws it. To draw, a device gets a recorded frame and a target,
 * nothing else.
 */
namespace vantoraudio::bgfx::device {

enum class Kind : std::uint8_t
{
    None,
    Bgfx,
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
     * picture is as it was then, or right, and the device is not asked again. */
    virtual bool Draw(const Frame& frame, QImage& picture) = 0;

    // What follows is for devices whose pictures take their time.

    /** As Draw(), but `picture` may get a former frame of its own, or the processor's drawing; the device tells
     * when it is worth drawing the frame again. Such pictures stay where they are until Forget(). */
    virtual bool DrawSoon(const Frame& frame, QImage& picture) { return Draw(frame, picture); }
    /** Gives back what is kept for a picture, which may be gone already. */
    virtual void Forget(const QImage*) {}
    /** Waits until the device draws by itself. False when it cannot. */
    virtual bool WaitUntilReady() { return true; }
    /** What a device that has a choice draws with; empty for others, and while it is being found out. */
    [[nodiscard]] virtual QString RendererName() const { return {}; }
    /** A renderer that the host runs has ended a frame with this number. */
    virtual void OnHostFrame(std::uint32_t) {}
};

/** Null where no usable OpenGL context can be made (no such platform, too old, no application object) or none that
 *  can build the programs and draw a picture. */
std::unique_ptr<Device> MakeOpenGLDevice();

/**
 * Draws with the processor, pixel for pixel by OpenGL's rules of coverage: pixel centres, line ends half open, no
 * smoothing. Transforms are affine: w is taken as 1. Vertices that are not finite are skipped with the lines and
 * triangles that they belong to.
 */
std::unique_ptr<Device> MakeSoftwareDevice();

} // namespace vantoraudio::bgfx::device
