#include "ui/waveform/drawing/WaveformGeometry.h"

#include "render/vantor3DQt/BGFXRenderer.h"

#include <utility>

namespace vantoraudio::vantorAudioEngine::UI {

using vantor3D::Vertex::Pos2f;
using vantor3DQt::BGFXRenderer;

WaveformGeometry::~WaveformGeometry()
{
    bgfx::destroy(m_vertexBuffer);
}

double WaveformGeometry::SetSamples(const QList<float>& samples, double delay, const SampleSpacing& spacing)
{
    const auto sampleCount = static_cast<std::size_t>(samples.size());
    const std::int32_t count = VertexCount(sampleCount, delay, spacing.sampleRate);
    // What may run out of memory comes first: the strip and its extremes belong together.
    SampleExtremes extremes(samples);
    m_strip = WaveformStrip(samples, count, spacing);
    m_extremes = std::move(extremes);
    m_uploaded.reset();
    return BufferLength(count, spacing);
}

void WaveformGeometry::Draw(bgfx::ViewId view, bgfx::ProgramHandle program, const StripView& visible)
{
    if (m_uploaded != visible) {
        Upload(DrawnVertices(m_strip, m_extremes, VisibleVertices(m_strip, visible.left, visible.right),
                             visible.columns));
        m_uploaded = visible;
    }
    bgfx::setVertexBuffer(0, m_vertexBuffer);
    bgfx::setState(BGFXRenderer::STATE_LINESTRIP, 0);
    bgfx::submit(view, program, 0, bgfx::BGFX_DISCARD_ALL);
}

void WaveformGeometry::Upload(std::vector<Pos2f> vertices)
{
    const auto size = static_cast<std::uint32_t>(vertices.size()) * Pos2f::Layout().getStride();
    const bgfx::Memory* memory = bgfx::makeRef(vertices.data(), size);
    if (bgfx::isValid(m_vertexBuffer)) {
        bgfx::update(m_vertexBuffer, 0, memory);
    } else {
        m_vertexBuffer = bgfx::createDynamicVertexBuffer(memory, Pos2f::Layout(), bgfx::BGFX_BUFFER_ALLOW_RESIZE);
    }
    // The device read the old vertices until now; moving leaves the new ones in place.
    m_vertices = std::move(vertices);
}

} // namespace vantoraudio::vantorAudioEngine::UI
