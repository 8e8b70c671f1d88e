#include "ui/waveform/drawing/SampleExtremes.h"

#include "ui/waveform/drawing/WaveformVertices.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace vantoraudio::vantorAudioEngine::UI {
namespace {

/** `other` lies behind what was found so far: of equals the first one stays. */
void Add(Extremes& found, const Extremes& other)
{
    if (other.low < found.low) {
        found.low = other.low;
        found.lowest = other.lowest;
    }
    if (other.high > found.high) {
        found.high = other.high;
        found.highest = other.highest;
    }
}

void AddAll(Extremes& found, std::span<const Extremes> others)
{
    for (const Extremes& other : others) {
        Add(found, other);
    }
}

struct Levels
{
    float low = 0.0F;
    float high = 0.0F;
};

/** Of at least one sample. */
Levels LevelsOf(std::span<const float> samples)
{
    // Side by side in lanes, which compilers turn into vector instructions.
    constexpr std::size_t laneCount = 16;
    std::array<float, laneCount> low{};
    low.fill(DrawnLevel(samples.front()));
    std::array<float, laneCount> high = low;
    std::size_t i = 0;
    for (; i + laneCount <= samples.size(); i += laneCount) {
        for (std::size_t lane = 0; lane < laneCount; ++lane) {
            const float level = DrawnLevel(samples[i + lane]);
            low[lane] = level < low[lane] ? level : low[lane];
            high[lane] = level > high[lane] ? level : high[lane];
        }
    }
    for (; i < samples.size(); ++i) {
        const float level = DrawnLevel(samples[i]);
        low[0] = level < low[0] ? level : low[0];
        high[0] = level > high[0] ? level : high[0];
    }
    return {.low = std::ranges::min(low), .high = std::ranges::max(high)};
}

std::size_t Find(float level, std::span<const float> samples, std::size_t first)
{
    while (DrawnLevel(samples[first]) != level) {
        ++first;
    }
    return first;
}

/** Of at least one sample. The positions are not looked for yet: both are that of the first sample. */
Extremes RoughExtremesOf(std::span<const float> samples, std::size_t first, std::size_t last)
{
    const Levels levels = LevelsOf(samples.subspan(first, last - first));
    return {.low = levels.low, .high = levels.high, .lowest = first, .highest = first};
}

Extremes ExtremesOf(std::span<const float> samples, std::size_t first, std::size_t last)
{
    Extremes found = RoughExtremesOf(samples, first, last);
    found.lowest = Find(found.low, samples, first);
    found.highest = Find(found.high, samples, first);
    return found;
}

std::vector<Extremes> BlocksOf(std::span<const float> samples)
{
    std::vector<Extremes> blocks;
    blocks.reserve(samples.size() / SampleExtremes::BlockLength + 1);
    for (std::size_t first = 0; first < samples.size(); first += SampleExtremes::BlockLength) {
        blocks.push_back(
            ExtremesOf(samples, first, std::min(first + SampleExtremes::BlockLength, samples.size())));
    }
    return blocks;
}

std::vector<Extremes> GroupsOf(std::span<const Extremes> parts)
{
    std::vector<Extremes> groups;
    for (std::size_t first = 0; first < parts.size(); first += SampleExtremes::GroupLength) {
        Extremes group = parts[first];
        AddAll(group, parts.subspan(first, std::min(SampleExtremes::GroupLength, parts.size() - first)));
        groups.push_back(group);
    }
    return groups;
}

} // namespace

SampleExtremes::SampleExtremes(std::span<const float> samples) : m_levels{BlocksOf(samples)}
{
    while (m_levels.back().size() > 1) {
        m_levels.push_back(GroupsOf(m_levels.back()));
    }
}

float SampleExtremes::Peak() const
{
    if (m_levels.empty() || m_levels.back().empty()) {
        return 0.0F;
    }
    const Extremes& all = m_levels.back().front();
    return std::max(-all.low, all.high);
}

Extremes SampleExtremes::Within(std::span<const float> samples, std::size_t first, std::size_t last) const
{
    const std::size_t firstBlock = (first + BlockLength - 1) / BlockLength;
    const std::size_t lastBlock = std::max(firstBlock, last / BlockLength);
    const std::size_t rest = lastBlock * BlockLength;
    // The first sample counts in any case.
    Extremes found = RoughExtremesOf(samples, first, std::clamp(firstBlock * BlockLength, first + 1, last));
    AddGroups(found, 0, firstBlock, lastBlock);
    if (rest < last) {
        Add(found, RoughExtremesOf(samples, rest, last));
    }
    // They are seldom in the partial blocks at the ends, so those are seldom searched.
    if (found.lowest == first || found.lowest == rest) {
        found.lowest = Find(found.low, samples, found.lowest);
    }
    if (found.highest == first || found.highest == rest) {
        found.highest = Find(found.high, samples, found.highest);
    }
    return found;
}

void SampleExtremes::AddGroups(Extremes& found, std::size_t level, std::size_t first, std::size_t last) const
{
    const std::span<const Extremes> parts = m_levels[level];
    const std::size_t firstGroup = (first + GroupLength - 1) / GroupLength;
    const std::size_t lastGroup = last / GroupLength;
    if (IsTop(level) || firstGroup >= lastGroup) {
        AddAll(found, parts.subspan(first, last - first));
        return;
    }
    AddAll(found, parts.subspan(first, firstGroup * GroupLength - first));
    AddGroups(found, level + 1, firstGroup, lastGroup);
    AddAll(found, parts.subspan(lastGroup * GroupLength, last - lastGroup * GroupLength));
}

} // namespace vantoraudio::vantorAudioEngine::UI
