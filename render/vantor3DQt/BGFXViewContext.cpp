#include "render/vantor3DQt/BGFXViewContext.h"

#include "render/vantor3DQt/ViewState.h"

#include <algorithm>
#include <map>

namespace vantoraudio::vantor3DQt {
namespace {

std::uint16_t ToPixels(int value)
{
    return static_cast<std::uint16_t>(std::clamp(value, 0, 65535));
}

} // namespace

ViewState& StateOfView(bgfx::ViewId id)
{
    static std::map<bgfx::ViewId, ViewState> states;
    return states[id];
}

BGFXViewContext::BGFXViewContext(bgfx::ViewId id) noexcept : m_id(id) {}

bgfx::ViewId BGFXViewContext::Id() const noexcept
{
    return m_id;
}

void BGFXViewContext::SetClear(std::uint16_t flags, std::uint32_t rgba, float depth, std::uint8_t stencil) const
{
    bgfx::setViewClear(m_id, flags, rgba, depth, stencil);
}

void BGFXViewContext::SetTransform(const QMatrix4x4& view, const QMatrix4x4& projection) const
{
    StateOfView(m_id).transform = projection * view;
    bgfx::setViewTransform(m_id, view.constData(), projection.constData());
}

void BGFXViewContext::SetViewport(const QRect& viewport) const
{
    StateOfView(m_id).viewport = viewport;
    bgfx::setViewRect(m_id, ToPixels(viewport.x()), ToPixels(viewport.y()), ToPixels(viewport.width()),
                      ToPixels(viewport.height()));
}

void BGFXViewContext::Submit(bgfx::FrameBufferHandle frameBuffer, const QRect& viewport) const
{
    SetViewport(viewport);
    bgfx::setViewFrameBuffer(m_id, frameBuffer);
    bgfx::setViewMode(m_id, bgfx::ViewMode::Sequential);
    bgfx::touch(m_id);
}

} // namespace vantoraudio::vantor3DQt
