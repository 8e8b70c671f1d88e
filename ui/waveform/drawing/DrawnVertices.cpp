#include "ui/waveform/drawing/DrawnVertices.h"

#include <algorithm>
#include <cmath>

namespace vantoraudio::vantorAudioEngine::UI {
namespace {

using bgfx::PixelColumns;
using vantor3D::Vertex::Pos2f;

struct Sample
{
    std::size_t index = 0;
    float level = 0.0F;
};

class VertexChoice
{
public:
    VertexChoice(const WaveformStrip& strip, const SampleExtremes& extremes, const PixelColumns& columns)
        : m_strip(strip), m_extremes(extremes), m_columns(columns)
    {
        m_chosen.reserve((static_cast<std::size_t>(columns.Width()) + 2) * MostVerticesPerColumn);
    }

    void AddAll(std::size_t first, std::size_t last)
    {
        for (std::size_t i = first; i < last; ++i) {
            m_chosen.push_back(m_strip[i]);
        }
    }

    void AddByColumns(std::size_t first, std::size_t last)
    {
        while (first < last) {
            const std::size_t next = EndOfColumn(first, last);
            AddColumn(first, next);
            m_columnLength = next - first;
            first = next;
        }
    }

    [[nodiscard]] std::vector<Pos2f> Take() { return std::move(m_chosen); }

private:
    /** The search begins where the column before suggests: columns differ by a vertex or two. */
    [[nodiscard]] std::size_t EndOfColumn(std::size_t first, std::size_t last) const
    {
        const auto columnOf = [&](std::size_t i) { return std::floor(m_columns.At(m_strip.TimeAt(i))); };
        const auto isInside = [&, column = columnOf(first)](std::size_t i) { return columnOf(i) == column; };
        const std::size_t expected = std::min(last, first + m_columnLength);
        for (std::size_t margin = 2;; margin *= 4) {
            const std::size_t low = expected - first > margin ? expected - margin : first + 1;
            const std::size_t high = last - expected > margin ? expected + margin : last;
            if ((low == first + 1 || isInside(low - 1)) && (high == last || !isInside(high))) {
                return PartitionPoint(low, high, isInside);
            }
        }
    }

    void AddColumn(std::size_t first, std::size_t last)
    {
        if (last - first <= MostVerticesPerColumn) {
            AddAll(first, last);
            return;
        }
        // Their levels are known: reading the samples once more would take longer, they lie far apart in memory.
        const Extremes found = m_extremes.Within(m_strip.Samples(), first, last);
        const Sample low{found.lowest, found.low};
        const Sample high{found.highest, found.high};
        const bool isLowFirst = low.index < high.index;
        std::size_t previous = last;
        for (const Sample& sample :
             {SampleAt(first), isLowFirst ? low : high, isLowFirst ? high : low, SampleAt(last - 1)}) {
            if (sample.index != previous) {
                m_chosen.push_back({.x = m_strip.TimeAt(sample.index), .y = sample.level});
            }
            previous = sample.index;
        }
    }

    [[nodiscard]] Sample SampleAt(std::size_t index) const { return {index, m_strip[index].y}; }

    const WaveformStrip& m_strip;
    const SampleExtremes& m_extremes;
    const PixelColumns& m_columns;
    std::size_t m_columnLength = 0;
    std::vector<Pos2f> m_chosen;
};

} // namespace

std::vector<Pos2f> DrawnVertices(const WaveformStrip& strip, const SampleExtremes& extremes,
                                 const VertexRange& range, const PixelColumns& columns)
{
    if (columns.IsEmpty()) {
        return {};
    }
    const std::size_t end = range.first + range.count;
    // Silence has no samples to search, but so few vertices that they are always drawn.
    const std::size_t endOfSamples = std::clamp(strip.SampleCount(), range.first, end);
    VertexChoice choice(strip, extremes, columns);
    if (range.count <= MostVerticesPerColumn * static_cast<std::size_t>(columns.Width())) {
        choice.AddAll(range.first, end);
    } else {
        choice.AddByColumns(range.first, endOfSamples);
        choice.AddAll(endOfSamples, end);
    }
    return choice.Take();
}

} // namespace vantoraudio::vantorAudioEngine::UI
