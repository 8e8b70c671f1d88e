#pragma once

#include "render/bgfx/Frame.h"

#include <QtCore/QRect>
#include <QtGui/QMatrix4x4>

#include <cstdint>

namespace vantoraudio::vantor3DQt {

/** One of the three views of a frame: an ordered layer with its own clearing, transform and viewport. What is set
 *  lasts for the frame at hand. */
class BGFXViewContext
{
public:
    explicit BGFXViewContext(bgfx::ViewId id) noexcept : m_id(id) {}

    [[nodiscard]] bgfx::ViewId Id() const noexcept { return m_id; }

    void SetClear(std::uint16_t flags, std::uint32_t rgba, float depth, std::uint8_t stencil) const
    {
        bgfx::setViewClear(m_id, flags, rgba, depth, stencil);
    }
    /** `view` is the model-view transform, `projection` maps to -1..1. */
    void SetTransform(const QMatrix4x4& view, const QMatrix4x4& projection) const
    {
        bgfx::RecordedView(m_id).transform = projection * view;
    }
    /** `viewport` is in device pixels of the frame buffer. */
    void SetViewport(const QRect& viewport) const { bgfx::RecordedView(m_id).viewport = viewport; }

private:
    bgfx::ViewId m_id;
};

} // namespace vantoraudio::vantor3DQt
