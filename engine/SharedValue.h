#pragma once

#include <atomic>

/**
 * A plain member that one thread may write while another reads it, without a lock. Writers that also hold the
 * owner's mutex order their writes by it; these functions only keep a single read or write whole.
 */
namespace vantoraudio::AudioEngine {

template<typename Value>
[[nodiscard]] inline Value LoadShared(const Value& value) noexcept
{
    // C++20 has no atomic reference to a constant. Loading changes nothing.
    return std::atomic_ref<Value>(const_cast<Value&>(value)).load(std::memory_order_relaxed);
}

template<typename Value>
inline void StoreShared(Value& value, Value newValue) noexcept
{
    std::atomic_ref<Value>(value).store(newValue, std::memory_order_relaxed);
}

} // namespace vantoraudio::AudioEngine
