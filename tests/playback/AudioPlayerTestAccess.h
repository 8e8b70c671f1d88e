#pragma once

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
    static bool HoldsASourceFile(const AudioPlayer& player) { return player.m_sourceFile != nullptr; }
};
