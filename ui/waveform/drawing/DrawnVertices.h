#pragma once

#include "ui/waveform/drawing/SampleExtremes.h"
#include "ui/waveform/drawing/WaveformVertices.h"

#include <QtGui/QMatrix4x4>

#include <vector>

/** What of a waveform's strip has to be drawn for one picture. */
namespace vantoraudio::vantorAudioEngine::UI {

/** The pixel columns of a picture, numbered from 0 at its left edge, and the times that they show. */
class PixelColumns
{
public:
    PixelColumns() = default;
    /** `width` in device pixels. Times are those that `projection` takes. */
    PixelColumns(const QMatrix4x4& projection, int width);

    [[nodiscard]] int Width() const { return m_width; }
    /** Whether nothing shows: there is no column, or all times lie in one place. */
    [[nodiscard]] bool IsEmpty() const;
    /** The column of a time, the share of the column that lies behind it included. Reckoned as the drawing device
     *  does, so that both agree on which column a vertex lies in. */
    [[nodiscard]] double At(float time) const;

    friend bool operator==(const PixelColumns&, const PixelColumns&) = default;

private:
    double m_scale = 0.0;
    double m_offset = 0.0;
    int m_width = 0;
};

/** More vertices than these on average in a pixel column are not all drawn. */
inline constexpr std::size_t MostVerticesPerColumn = 4;

/**
 * The vertices whose strip covers the same pixels as that of all vertices in `range`: all of them where they are
 * few, otherwise each column's first, lowest, highest and last one, in the order of time. What a strip does within
 * a column between these does not show; it leaves for the next column where it did.
 */
[[nodiscard]] std::vector<vantor3D::Vertex::Pos2f> DrawnVertices(const WaveformStrip& strip,
                                                                 const SampleExtremes& extremes,
                                                                 const VertexRange& range,
                                                                 const PixelColumns& columns);

} // namespace vantoraudio::vantorAudioEngine::UI
