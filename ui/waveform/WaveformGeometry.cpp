#include "ui/waveform/WaveformGeometry.h"

#include "render/vantor3DQt/BGFXRenderer.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace vantoraudio::vantorAudioEngine::UI {
namespace {

using vantor3D::Vertex::Pos2f;
using vantor3DQt::BGFXRenderer;

/** Memory is measured in 32 bits; what lies beyond that is not drawn. */
std::uint32_t ByteCount(std::size_t vertexCount, std::uint32_t stride)
{
    const std::size_t most = std::numeric_limits<std::uint32_t>::max() / stride;
    return static_cast<std::uint32_t>(std::min(vertexCount, most)) * stride;
}

} // namespace

WaveformGeometry::~WaveformGeometry()
{
    if (bgfx::isValid(m_indexBuffer)) {
        bgfx::destroy(m_indexBuffer);
    }
    if (bgfx::isValid(m_vertexBuffer)) {
        bgfx::destroy(m_vertexBuffer);
    }
}

double WaveformGeometry::SetSamples(std::span<const float> samples, double delay, const SampleSpacing& spacing)
{
    const std::int32_t count = VertexCount(samples.size(), delay, spacing.sampleRate);
    std::vector<Pos2f> vertices = BuildVertices(samples, count, spacing);
    // The device still reads the old vertices until it was given the new ones, which moving leaves in place.
    Upload(vertices);
    m_vertices = std::move(vertices);
    return BufferLength(count, spacing);
}

void WaveformGeometry::Upload(const std::vector<Pos2f>& vertices)
{
    m_layout = Pos2f::Layout();
    const bgfx::Memory* memory = bgfx::makeRef(vertices.data(), ByteCount(vertices.size(), m_layout.getStride()));
    if (bgfx::isValid(m_vertexBuffer)) {
        bgfx::update(m_vertexBuffer, 0, memory);
    } else {
        m_vertexBuffer = bgfx::createDynamicVertexBuffer(memory, m_layout, bgfx::BGFX_BUFFER_ALLOW_RESIZE);
    }
}

void WaveformGeometry::Draw(bgfx::ViewId view, bgfx::ProgramHandle program, float left, float right) const
{
    const VertexRange range = VisibleVertices(m_vertices, left, right);
    bgfx::setVertexBuffer(0, m_vertexBuffer, range.first, range.count);
    bgfx::setState(BGFXRenderer::STATE_LINESTRIP, 0);
    bgfx::submit(view, program, 0, bgfx::BGFX_DISCARD_ALL);
}

} // namespace vantoraudio::vantorAudioEngine::UI
