#pragma once

#include <QtCore/QString>

namespace vantoraudio::AudioEngine {

/** The highest rate in Hz that PulseAudio plays. */
inline constexpr int highestPlayableRate = 384000;

/**
 * Whether an output can play the file: not with a higher rate or with more than 64 channels. Qt 6.4.2 crashes when
 * it plays such a rate, and 6.8.2 plays it without sound; both crash with so many channels.
 *
 * Looks at the first bytes of WAV, FLAC and MP3 files, and into any other file with AudioFileInfo::Probe(), which
 * mostly takes a few milliseconds, but as long as it takes to read pictures that the file may hold. What cannot be
 * read counts as playable: the player tells of that itself.
 */
bool CanBePlayed(const QString& path);

} // namespace vantoraudio::AudioEngine
