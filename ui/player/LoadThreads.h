#pragma once

#include <functional>

class QThreadPool;

/** The threads on which files are loaded and copied for the player, beside those of
 *  QThreadPool::globalInstance(). When the program ends it waits for them, but not for one that hangs. */
namespace vantoraudio::vantorAudioEngine::UI::LoadThreads {

[[nodiscard]] QThreadPool* Pool();

void Start(std::function<void()> task);

} // namespace vantoraudio::vantorAudioEngine::UI::LoadThreads
