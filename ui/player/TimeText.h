#pragma once

#include <QtCore/QString>

/** The times of day that the player's fields show for places in a file. */
namespace vantoraudio::vantorAudioEngine::UI {

/** The time as "hh:mm:ss.zzz", rounded to whole milliseconds, halves away from zero. Times wrap after 24 hours;
 *  not-a-number counts as 0. */
[[nodiscard]] QString TimeText(double seconds);

/** The seconds that a text of that form stands for. Any other text counts as the start of the file. */
[[nodiscard]] double SecondsOf(const QString& text);

/** The place in seconds as a player counts it, in whole milliseconds. */
[[nodiscard]] qint64 MillisecondsOf(double seconds);

} // namespace vantoraudio::vantorAudioEngine::UI
