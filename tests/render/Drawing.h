#pragma once

#include "render/bgfx/DrawingDevice.h"
#include "render/vantor3D/ProgramFactory.h"
#include "render/vantor3DQt/BGFXRenderer.h"

#include <QtGui/QColor>
#include <QtGui/QImage>

#include <algorithm>
#include <array>
#include <deque>
#include <functional>
#include <utility>
#include <vector>

/** What the tests of this folder draw with: a device for the length of a scope, and pictures without a widget. */
namespace drawing {

using namespace vantoraudio;
using vantor3D::Color;
using vantor3D::Line;
using vantor3D::Vertex::Pos2f;
using vantor3D::Vertex::Pos3fColorRGBA;
using vantor3DQt::BGFXRenderer;
using vantor3DQt::BGFXViewContext;

inline constexpr std::uint32_t Black = 0x000000ff;
inline constexpr Color White{1.0F, 1.0F, 1.0F, 1.0F};

class DeviceScope
{
public:
    explicit DeviceScope(bgfx::device::Kind type) { m_made = bgfx::DrawingDevice::Get().Use(type); }
    DeviceScope(const DeviceScope&) = delete;
    DeviceScope& operator=(const DeviceScope&) = delete;
    ~DeviceScope() { bgfx::DrawingDevice::Get().Shutdown(); }

    [[nodiscard]] bool IsMade() const { return m_made; }

private:
    bool m_made = false;
};

/** (0, 0) is the top left corner of the top left pixel, y grows downwards. */
inline QMatrix4x4 PixelProjection(QSize size)
{
    QMatrix4x4 projection;
    projection.ortho(0.0F, float(size.width()), float(size.height()), 0.0F, -1.0F, 1.0F);
    return projection;
}

/** The vertices that a frame's strips are made of. */
inline std::deque<std::vector<Pos2f>>& StripsOfFrame()
{
    static std::deque<std::vector<Pos2f>> strips;
    return strips;
}

/** Draws one frame of view 0 with the projection in pixels, cleared to `clear`. */
inline QImage Picture(QSize size, const std::function<void(BGFXRenderer&, const BGFXViewContext&)>& draw,
                      std::uint32_t clear = Black)
{
    QImage picture(size, QImage::Format_RGBA8888);
    picture.fill(Qt::transparent);
    BGFXRenderer renderer;
    if (renderer.StartFrame(&picture)) {
        const BGFXViewContext view(0);
        view.SetTransform({}, PixelProjection(size));
        view.SetViewport(QRect(QPoint(0, 0), size));
        view.SetClear(bgfx::BGFX_CLEAR_COLOR, clear, 1.0F, 0);
        draw(renderer, view);
        renderer.PresentSubmittedFrame(false);
    }
    StripsOfFrame().clear();
    return picture;
}

/** Submits vertices that stay until the frame is presented. */
inline void SubmitVertices(const BGFXViewContext& view, const void* vertices, std::size_t size,
                           const bgfx::VertexLayout& layout, std::uint64_t state, bgfx::ProgramHandle program)
{
    const auto buffer =
        bgfx::createDynamicVertexBuffer(bgfx::makeRef(vertices, static_cast<std::uint32_t>(size)), layout, 0);
    bgfx::setVertexBuffer(0, buffer);
    bgfx::setState(state);
    bgfx::submit(view.Id(), program);
    bgfx::destroy(buffer);
}

inline void DrawStrip(const BGFXViewContext& view, std::vector<Pos2f> points,
                      const std::array<float, 4>& color = {1.0F, 1.0F, 1.0F, 1.0F})
{
    const auto program =
        vantor3D::ProgramFactory::Get().CreateProgram("vs_waveform_basic_2d", "fs_waveform_samples").value();
    const auto uniform = bgfx::createUniform("u_waveformColor", bgfx::UniformType::Vec4);
    bgfx::setUniform(uniform, color.data());
    const std::vector<Pos2f>& kept = StripsOfFrame().emplace_back(std::move(points));
    SubmitVertices(view, kept.data(), kept.size() * sizeof(Pos2f), Pos2f::Layout(), BGFXRenderer::STATE_LINESTRIP,
                   program);
    bgfx::destroy(uniform);
}

inline std::vector<QPoint> LitPixels(const QImage& picture)
{
    std::vector<QPoint> lit;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (qGreen(picture.pixel(x, y)) > 127)
                lit.emplace_back(x, y);
        }
    }
    return lit;
}

/** How many lit pixels of `picture` have no lit pixel of `other` among themselves and their eight neighbours. */
inline int StrayPixels(const QImage& picture, const QImage& other)
{
    const auto lit = LitPixels(picture);
    return int(std::ranges::count_if(lit, [&](QPoint at) {
        for (int dy = -1; dy <= 1; ++dy) {
            for (int dx = -1; dx <= 1; ++dx) {
                const QPoint near = at + QPoint(dx, dy);
                if (other.rect().contains(near) && qGreen(other.pixel(near)) > 127)
                    return false;
            }
        }
        return true;
    }));
}

} // namespace drawing
