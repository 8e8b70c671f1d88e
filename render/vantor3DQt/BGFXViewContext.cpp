#include "render/vantor3DQt/BGFXViewContext.h"

#include "render/bgfx/Frame.h"

namespace vantoraudio::vantor3DQt {

void BGFXViewContext::SetClear(std::uint16_t flags, std::uint32_t rgba, float depth, std::uint8_t stencil) const
{
    bgfx::setViewClear(m_id, flags, rgba, depth, stencil);
}

void BGFXViewContext::SetTransform(const QMatrix4x4& view, const QMatrix4x4& projection) const
{
    bgfx::RecordedView(m_id).transform = projection * view;
}

void BGFXViewContext::SetViewport(const QRect& viewport) const
{
    bgfx::RecordedView(m_id).viewport = viewport;
}

} // namespace vantoraudio::vantor3DQt
