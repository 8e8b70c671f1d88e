#pragma once

#include "render/bgfx/bgfx.h"
#include "render/vantor3D/Vertex.h"
#include "ui/waveform/drawing/DrawnVertices.h"
#include "ui/waveform/drawing/LevelRange.h"
#include "ui/waveform/drawing/SampleExtremes.h"
#include "ui/waveform/drawing/WaveformVertices.h"

#include <QtCore/QList>

#include <optional>
#include <vector>

namespace vantoraudio::vantorAudioEngine::UI {

/** What a picture shows of the strip. */
struct StripView
{
    /** Times in seconds from the first vertex. */
    float left = 0.0F;
    float right = 0.0F;
    bgfx::PixelColumns columns;

    friend bool operator==(const StripView&, const StripView&) = default;
};

/**
 * The waveform's line strip: its samples and what the drawing device holds of it. GUI thread only.
 *
 * The device gets only the vertices that show in the picture, a few for each pixel column, and reads them where
 * they lie, without a copy. So a frame costs about the same whatever it shows, and only the
 * drawing when it shows the same as the one before.
 */
class WaveformGeometry
{
public:
    WaveformGeometry() = default;
    ~WaveformGeometry();
    WaveformGeometry(const WaveformGeometry&) = delete;
    WaveformGeometry& operator=(const WaveformGeometry&) = delete;

    /** Replaces the strip by `samples`, which are shared, and `delay` seconds of silence behind them. Gives the
     *  strip's length in seconds. */
    double SetSamples(const QList<float>& samples, double delay, const SampleSpacing& spacing);

    [[nodiscard]] bool IsEmpty() const { return m_strip.IsEmpty(); }
    /** The greatest magnitude of the samples; those that are infinite or not-a-number do not count. */
    [[nodiscard]] float Peak() const { return m_extremes.Peak(); }

    /** See LevelsWithin(); the times count from the first vertex. */
    [[nodiscard]] std::optional<LevelRange> LevelsBetween(float left, float right) const
    {
        return LevelsWithin(m_strip, m_extremes, left, right);
    }

    /** Submits to a bgfx view what shows of the strip; uniforms are the caller's. */
    void Draw(bgfx::ViewId view, bgfx::ProgramHandle program, const StripView& visible);

private:
    friend class WaveformTestAccess;

    void Upload(std::vector<vantor3D::Vertex::Pos2f> vertices);

    WaveformStrip m_strip;
    SampleExtremes m_extremes;

    bgfx::DynamicVertexBufferHandle m_vertexBuffer;
    /** What the vertex buffer refers to. */
    std::vector<vantor3D::Vertex::Pos2f> m_vertices;
    /** What the vertices were chosen for; absent when they are outdated. */
    std::optional<StripView> m_uploaded;
};

} // namespace vantoraudio::vantorAudioEngine::UI
