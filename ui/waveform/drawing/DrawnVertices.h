#pragma once

#include "render/bgfx/Pixels.h"
#include "ui/waveform/drawing/SampleExtremes.h"
#include "ui/waveform/drawing/WaveformVertices.h"

#include <vector>

/** What of a waveform's strip has to be drawn for one picture. */
namespace vantoraudio::vantorAudioEngine::UI {

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
                                                                 const bgfx::PixelColumns& columns);

} // namespace vantoraudio::vantorAudioEngine::UI
