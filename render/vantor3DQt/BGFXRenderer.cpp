#include "render/vantor3DQt/BGFXRenderer.h"

#include "render/bgfx/DrawingDevice.h"
#include "render/bgfx/Pixels.h"

#include <algorithm>
#include <utility>

namespace vantoraudio::vantor3DQt {
namespace {

using ColorVertex = vantor3D::Vertex::Pos3fColorRGBA;

constexpr std::uint64_t DrawOver =
    bgfx::BGFX_STATE_WRITE_RGB | bgfx::BGFX_STATE_WRITE_A | bgfx::BGFX_STATE_BLEND_OVER;

void Append(std::vector<ColorVertex>& vertices, const vantor3D::Line& line)
{
    const std::uint32_t color = line.color.ToVertexColor();
    for (const auto& point : {line.start, line.end}) {
        vertices.push_back({point[0], point[1], point[2], color});
    }
}

} // namespace

const std::uint64_t BGFXRenderer::STATE_LINES = bgfx::BGFX_STATE_PT_LINES | DrawOver;
const std::uint64_t BGFXRenderer::STATE_LINESTRIP = bgfx::BGFX_STATE_PT_LINESTRIP | DrawOver;
const std::uint64_t BGFXRenderer::STATE_TRANSPARENT = DrawOver;

BGFXRenderer::~BGFXRenderer()
{
    bgfx::DrawingDevice::Get().Forget(m_frameBuffer);
}

bool BGFXRenderer::StartFrame(QImage* frameBuffer)
{
    // A frame that an exception ended would turn up in this one, and so would the views of another widget.
    bgfx::ClearFrame();
    m_vertices.clear();
    m_frameBuffer = frameBuffer;
    return frameBuffer != nullptr && !frameBuffer->isNull() && bgfx::DrawingDevice::Get().Ensure();
}

void BGFXRenderer::DrawLines(const BGFXViewContext& view, std::span<const vantor3D::Line> lines,
                             std::optional<LineStipple> stipple)
{
    std::vector<ColorVertex> vertices;
    for (const vantor3D::Line& line : lines) {
        if (!stipple) {
            Append(vertices, line);
            continue;
        }
        for (const vantor3D::Line& dash : CutDashes(line, *stipple, bgfx::RecordedView(view.Id()))) {
            Append(vertices, dash);
        }
    }
    Submit(view, std::move(vertices), STATE_LINES);
}

void BGFXRenderer::DrawTriangles(const BGFXViewContext& view, std::span<const ColorVertex> vertices,
                                 std::span<const std::uint16_t> indices, std::uint64_t state)
{
    const auto isDrawable = [&](std::uint16_t index) {
        return index < vertices.size() && bgfx::AreFinite(vertices[index].x, vertices[index].y, vertices[index].z);
    };
    std::vector<ColorVertex> corners;
    for (std::size_t i = 0; i + 2 < indices.size(); i += 3) {
        const auto triangle = indices.subspan(i, 3);
        if (std::ranges::all_of(triangle, isDrawable)) {
            std::ranges::transform(triangle, std::back_inserter(corners),
                                   [&](std::uint16_t index) { return vertices[index]; });
        }
    }
    Submit(view, std::move(corners), state);
}

void BGFXRenderer::Submit(const BGFXViewContext& view, std::vector<ColorVertex> vertices, std::uint64_t state)
{
    m_vertices.push_back(std::move(vertices));
    const auto size = static_cast<std::uint32_t>(m_vertices.back().size() * sizeof(ColorVertex));
    const auto buffer =
        bgfx::createDynamicVertexBuffer(bgfx::makeRef(m_vertices.back().data(), size), ColorVertex::Layout(), 0);
    bgfx::setVertexBuffer(0, buffer);
    bgfx::setState(state);
    bgfx::submit(view.Id(), bgfx::ColorProgramHandle);
    // The draw has taken the reference; only the vertices must stay.
    bgfx::destroy(buffer);
}

void BGFXRenderer::PresentSubmittedFrame(bool)
{
    bgfx::DrawingDevice::Get().DrawInto(*m_frameBuffer, m_mayLag);
    bgfx::ClearFrame();
    m_vertices.clear();
}

} // namespace vantoraudio::vantor3DQt
