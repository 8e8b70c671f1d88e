#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace vantoraudio::vantorAudioEngine::UI {

/** How low and how high a stretch of samples goes, and the first sample of each kind. */
struct Extremes
{
    float low = 0.0F;
    float high = 0.0F;
    std::size_t lowest = 0;
    std::size_t highest = 0;

    friend bool operator==(const Extremes&, const Extremes&) = default;
};

/**
 * A pyramid over some samples: the extremes of each block of them, of each group of blocks, and so on up to a
 * single group. It is built in one pass; the extremes of any stretch then cost about as much, however long it is.
 * Levels are those that are drawn, see DrawnLevel().
 */
class SampleExtremes
{
public:
    /** Samples in a block: so many that the pyramid is small beside them. */
    static constexpr std::size_t BlockLength = 128;
    /** Blocks in a group, and groups in the next one. */
    static constexpr std::size_t GroupLength = 16;

    SampleExtremes() = default;
    explicit SampleExtremes(std::span<const float> samples);

    /** The greatest magnitude; 0 without samples. */
    [[nodiscard]] float Peak() const;
    /** For the samples from `first` up to and without `last`, which are at least one. `samples` are those that
     *  this was made of. */
    [[nodiscard]] Extremes Within(std::span<const float> samples, std::size_t first, std::size_t last) const;

private:
    [[nodiscard]] bool IsTop(std::size_t level) const { return level + 1 == m_levels.size(); }
    void AddGroups(Extremes& found, std::size_t level, std::size_t first, std::size_t last) const;

    /** Blocks first. */
    std::vector<std::vector<Extremes>> m_levels;
};

} // namespace vantoraudio::vantorAudioEngine::UI
