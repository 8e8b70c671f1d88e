#pragma once

namespace vantoraudio::AudioEngine {

/**
 * To be called just before a player that had something to play is destroyed, on any thread: should the program end
 * within the next moment, its application object's destructor waits for that moment to pass.
 *
 * Up to Qt 6.7 the connection to PulseAudio is freed at the program's end without stopping the thread that
 * receives the server's answers. About one program in a hundred that ends right after its last sound crashes
 * because of it.
 */
void LetSoundSettleBeforeTheEnd();

} // namespace vantoraudio::AudioEngine
