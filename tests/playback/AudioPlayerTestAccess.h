#pragma once

#include "playback/OutputGuard.h"

#include <vantorAudioEngine/AudioPlayer.h>

#include <utility>

/** What the tests see of a player beyond its public side. */
class AudioPlayerTestAccess
{
public:
    static void PlaybackLoop(AudioPlayer& player, qint64 position) { player.PlaybackLoop(position); }
    static void OnMediaStatusChanged(AudioPlayer& player, QMediaPlayer::MediaStatus status)
    {
        player.OnMediaStatusChanged(status);
    }
    static void RestartPlayback(AudioPlayer& player) { player.RestartPlayback(); }
    static double SelectionStart(const AudioPlayer& player) { return player.m_selectionStart; }
    static double SelectionEnd(const AudioPlayer& player) { return player.m_selectionEnd; }
    static bool IsLooping(const AudioPlayer& player) { return player.m_loop; }
    static QAudioOutput* Output(const AudioPlayer& player) { return player.m_audioOutput; }
    static QAudioOutput* TakeOutput(AudioPlayer& player) { return std::exchange(player.m_audioOutput, nullptr); }
    static vantoraudio::AudioEngine::OutputGuard& Guard(AudioPlayer& player) { return *player.m_outputGuard; }
    static bool HoldsASourceFile(const AudioPlayer& player) { return player.m_sourceFile != nullptr; }
};

namespace vantoraudio::AudioEngine {

class OutputGuardTestAccess
{
public:
    /** As if nothing had been played for so long that the guard takes notice. */
    static void LetProgressBeDue(OutputGuard& guard) { guard.m_progressIsDue.setRemainingTime(0); }
    static bool IsProgressDue(const OutputGuard& guard) { return guard.m_progressIsDue.hasExpired(); }
    static void NoteProgress(OutputGuard& guard, qint64 position) { guard.NoteProgress(position); }
    static void EndStandstill(OutputGuard& guard) { guard.EndStandstill(); }
};

} // namespace vantoraudio::AudioEngine
