#include "render/vantor3DQt/BGFXRenderer.h"

#include "render/bgfx/DeviceLifetime.h"
#include "render/vantor3D/ProgramFactory.h"
#include "render/vantor3D/ShaderTexts.h"
#include "render/vantor3DQt/Stipple.h"
#include "render/vantor3DQt/ViewState.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <vector>

namespace vantoraudio::vantor3DQt {
namespace {

using ColorVertex = vantor3D::Vertex::Pos3fColorRGBA;

/** Colours as BGFX_STATE_BLEND_ALPHA has them; alpha as the coverage of both, so that what is translucent on an
 *  opaque picture leaves it opaque. */
constexpr std::uint64_t BlendOver =
    bgfx::BGFX_STATE_BLEND_FUNC_SEPARATE(bgfx::BGFX_STATE_BLEND_SRC_ALPHA, bgfx::BGFX_STATE_BLEND_INV_SRC_ALPHA,
                                         bgfx::BGFX_STATE_BLEND_ONE, bgfx::BGFX_STATE_BLEND_INV_SRC_ALPHA);
constexpr std::uint64_t WriteAll = bgfx::BGFX_STATE_WRITE_RGB | bgfx::BGFX_STATE_WRITE_A;

std::optional<bgfx::ProgramHandle> ColorProgram()
{
    return vantor3D::ProgramFactory::Get().CreateProgram(vantor3D::ColorVertexShader,
                                                         vantor3D::ColorFragmentShader);
}

void Append(std::vector<ColorVertex>& vertices, const vantor3D::Line& line)
{
    const std::uint32_t color = line.color.ToVertexColor();
    for (const auto& point : {line.start, line.end}) {
        vertices.push_back({point[0], point[1], point[2], color});
    }
}

std::vector<ColorVertex> ToVertices(std::span<const vantor3D::Line> lines,
                                    const std::optional<LineStipple>& stipple, const ViewState& view)
{
    std::vector<ColorVertex> vertices;
    for (const vantor3D::Line& line : lines) {
        if (stipple) {
            for (const vantor3D::Line& dash : CutDashes(line, *stipple, view)) {
                Append(vertices, dash);
            }
        } else if (IsFinite(line)) {
            Append(vertices, line);
        }
    }
    return vertices;
}

bool IsFinite(const ColorVertex& vertex)
{
    return std::isfinite(vertex.x) && std::isfinite(vertex.y) && std::isfinite(vertex.z);
}

std::vector<std::uint16_t> DrawableTriangles(std::span<const ColorVertex> vertices,
                                             std::span<const std::uint16_t> indices)
{
    const auto drawable = [&](std::uint16_t index) {
        return index < vertices.size() && IsFinite(vertices[index]);
    };
    std::vector<std::uint16_t> kept;
    for (std::size_t i = 0; i + 2 < indices.size(); i += 3) {
        const auto triangle = indices.subspan(i, 3);
        if (std::ranges::all_of(triangle, drawable)) {
            kept.insert(kept.end(), triangle.begin(), triangle.end());
        }
    }
    return kept;
}

/** Sets the vertices for the next submit; what the frame has no room for is left out. */
void SetVertices(std::span<const ColorVertex> vertices)
{
    const auto& layout = ColorVertex::Layout();
    bgfx::TransientVertexBuffer buffer;
    bgfx::allocTransientVertexBuffer(
        &buffer, bgfx::getAvailTransientVertexBuffer(static_cast<std::uint32_t>(vertices.size()), layout), layout);
    if (buffer.size > 0) {
        std::memcpy(buffer.data, vertices.data(), buffer.size);
    }
    bgfx::setVertexBuffer(0, &buffer);
}

} // namespace

const std::uint64_t BGFXRenderer::STATE_LINES = bgfx::BGFX_STATE_PT_LINES | WriteAll | BlendOver;
const std::uint64_t BGFXRenderer::STATE_LINESTRIP = bgfx::BGFX_STATE_PT_LINESTRIP | WriteAll | BlendOver;
const std::uint64_t BGFXRenderer::STATE_TRANSPARENT = WriteAll | BlendOver;

BGFXRenderer::~BGFXRenderer()
{
    bgfx::destroy(m_readBack);
}

void BGFXRenderer::SetFrameSize(const QSize& size)
{
    if (size == m_size) {
        return;
    }
    bgfx::destroy(m_readBack);
    m_readBack = {};
    m_size = size;
    if (size.isEmpty()) {
        return;
    }
    m_readBack = bgfx::createTexture2D(
        static_cast<std::uint16_t>(size.width()), static_cast<std::uint16_t>(size.height()), false, 1,
        bgfx::TextureFormat::RGBA8, bgfx::BGFX_TEXTURE_BLIT_DST | bgfx::BGFX_TEXTURE_READ_BACK);
}

bool BGFXRenderer::StartFrame(bgfx::FrameBufferHandle frameBuffer)
{
    if (!bgfx::isValid(frameBuffer) || !bgfx::isValid(m_readBack) || !bgfx::DeviceLifetime::Ensure()) {
        return false;
    }
    m_frameBuffer = frameBuffer;
    // A frame that an exception ended would turn up in this one, and so would the views of another widget.
    bgfx::frame(bgfx::BGFX_FRAME_DISCARD);
    for (std::uint32_t id = 0; id < bgfx::getCaps()->limits.maxViews; ++id) {
        bgfx::resetView(static_cast<bgfx::ViewId>(id));
    }
    return true;
}

void BGFXRenderer::DrawLines(const BGFXViewContext& view, std::span<const vantor3D::Line> lines,
                             std::optional<LineStipple> stipple)
{
    const auto program = ColorProgram();
    const std::vector<ColorVertex> vertices = ToVertices(lines, stipple, StateOfView(view.Id()));
    if (!program || vertices.empty()) {
        return;
    }
    SetVertices(vertices);
    bgfx::setState(STATE_LINES);
    bgfx::submit(view.Id(), *program);
}

void BGFXRenderer::DrawTriangles(const BGFXViewContext& view, std::span<const ColorVertex> vertices,
                                 std::span<const std::uint16_t> indices, std::uint64_t state)
{
    const auto program = ColorProgram();
    const std::vector<std::uint16_t> kept = DrawableTriangles(vertices, indices);
    if (!program || kept.empty()) {
        return;
    }
    SetVertices(vertices);
    bgfx::TransientIndexBuffer buffer;
    bgfx::allocTransientIndexBuffer(&buffer,
                                    bgfx::getAvailTransientIndexBuffer(static_cast<std::uint32_t>(kept.size())));
    std::memcpy(buffer.data, kept.data(), buffer.size);
    bgfx::setIndexBuffer(&buffer);
    bgfx::setState(state);
    bgfx::submit(view.Id(), *program);
}

void BGFXRenderer::PresentSubmittedFrame(bool)
{
    // Behind all views that draw: a view copies before it draws.
    const auto lastView = static_cast<bgfx::ViewId>(bgfx::getCaps()->limits.maxViews - 1);
    QImage rows(m_size, QImage::Format_RGBA8888);
    if (rows.isNull()) {
        return;
    }
    bgfx::blit(lastView, m_readBack, 0, 0, bgfx::getTexture(m_frameBuffer));
    const std::uint32_t available = bgfx::readTexture(m_readBack, rows.bits());
    while (bgfx::frame() < available) {
    }
    // Then nothing was written into the rows.
    if (bgfx::DeviceLifetime::IsLost()) {
        return;
    }
    m_picture = bgfx::getCaps()->originBottomLeft ? rows.mirrored() : rows;
}

} // namespace vantoraudio::vantor3DQt
