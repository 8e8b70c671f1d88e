#pragma once

#include <cstddef>

namespace vantoraudio::vantorAudioEngine::UI {

/** The first number from `low` on for which `holds` is false, at most `high`. For numbers as
 * std::partition_point() is for elements: once false, it must stay false. */
template<typename Predicate>
[[nodiscard]] std::size_t PartitionPoint(std::size_t low, std::size_t high, Predicate holds)
{
    while (low < high) {
        const std::size_t middle = low + (high - low) / 2;
        if (holds(middle)) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    return low;
}

} // namespace vantoraudio::vantorAudioEngine::UI
