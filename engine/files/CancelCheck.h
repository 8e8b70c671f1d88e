#pragma once

#include <functional>

namespace vantoraudio::AudioEngine {

/** Whether to give up what takes long. Asked often; empty where nobody cancels. */
using CancelCheck = std::function<bool()>;

[[nodiscard]] inline bool IsCancelled(const CancelCheck& check)
{
    return check && check();
}

} // namespace vantoraudio::AudioEngine
