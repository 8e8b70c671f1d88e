#pragma once

#include "render/bgfx/bgfx.h"

#include <QtCore/QRect>
#include <QtGui/QMatrix4x4>

#include <cstdint>

namespace vantoraudio::vantor3DQt {

/** One of the drawing device's views: an ordered layer of a frame with its own clearing, transform and viewport.
 */
class BGFXViewContext
{
public:
    explicit BGFXViewContext(bgfx::ViewId id) noexcept;

    [[nodiscard]] bgfx::ViewId Id() const noexcept;

    void SetClear(std::uint16_t flags, std::uint32_t rgba, float depth, std::uint8_t stencil) const;
    /** `view` is the model-view transform, `projection` maps to normalised device coordinates. */
    void SetTransform(const QMatrix4x4& view, const QMatrix4x4& projection) const;
    /** `viewport` is in device pixels. */
    void SetViewport(const QRect& viewport) const;
    /** Makes the view draw into `frameBuffer`, inside `viewport` (device pixels), and clears it there even when
     *  nothing else is drawn in this frame. */
    void Submit(bgfx::FrameBufferHandle frameBuffer, const QRect& viewport) const;

private:
    bgfx::ViewId m_id;
};

} // namespace vantoraudio::vantor3DQt
