#pragma once

#include "render/bgfx/bgfx.h"
#include "render/vantor3D/Vertex.h"
#include "ui/waveform/WaveformVertices.h"

#include <cstdint>
#include <span>
#include <vector>

namespace vantoraudio::vantorAudioEngine::UI {

/**
 * The waveform's line strip: its vertices and what the drawing device holds of them. GUI thread only.
 *
 * The device reads the vertices where they lie, without a copy, until the next SetSamples() or the end of this
 * object.
 */
class WaveformGeometry
{
public:
    WaveformGeometry() = default;
    ~WaveformGeometry();
    WaveformGeometry(const WaveformGeometry&) = delete;
    WaveformGeometry& operator=(const WaveformGeometry&) = delete;

    /** Replaces the strip by `samples` and `delay` seconds of silence behind them. Gives the strip's length in
     *  seconds. */
    double SetSamples(std::span<const float> samples, double delay, const SampleSpacing& spacing);

    [[nodiscard]] bool IsEmpty() const { return m_vertices.empty(); }
    /** False as long as the device never took the vertices. */
    [[nodiscard]] bool IsUploaded() const { return bgfx::isValid(m_vertexBuffer); }

    /** Submits to a view what lies between two times, in seconds from the first vertex; uniforms are the
     *  caller's. */
    void Draw(bgfx::ViewId view, bgfx::ProgramHandle program, float left, float right) const;

private:
    friend class WaveformTestAccess;

    void Upload(const std::vector<vantor3D::Vertex::Pos2f>& vertices);

    bgfx::IndexBufferHandle m_indexBuffer;
    bgfx::DynamicVertexBufferHandle m_vertexBuffer;
    /** A strip needs no indices. */
    std::vector<std::uint16_t> m_indices;
    std::vector<vantor3D::Vertex::Pos2f> m_vertices;
    vantor3D::VertexLayout m_layout;
};

} // namespace vantoraudio::vantorAudioEngine::UI
