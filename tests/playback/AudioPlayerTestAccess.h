#pragma once

#include "playback/DeviceFollower.h"
#include "playback/StandstillWatch.h"

#include <vantorAudioEngine/AudioPlayer.h>

#include <chrono>
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
    static bool HoldsASourceFile(const AudioPlayer& player) { return player.m_sourceFile != nullptr; }
};

namespace vantoraudio::AudioEngine {

class StandstillWatchTestAccess
{
public:
    /** As if nothing had been played for so long that the watch takes notice. */
    static void LetProgressBeDue(StandstillWatch& watch) { watch.m_progressIsDue.setRemainingTime(0); }
    static bool IsProgressDue(const StandstillWatch& watch) { return watch.m_progressIsDue.hasExpired(); }
    static void NoteProgress(StandstillWatch& watch, qint64 position) { watch.NoteProgress(position); }
    static bool IsLooking(const StandstillWatch& watch) { return watch.m_timer.isActive(); }
    static std::chrono::milliseconds TimeBetweenLooks(const StandstillWatch& watch)
    {
        return watch.m_timer.intervalAsDuration();
    }
    static void EndStandstill(StandstillWatch& watch) { watch.EndStandstill(); }
};

} // namespace vantoraudio::AudioEngine
