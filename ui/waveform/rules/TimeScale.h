#pragma once

#include <QtCore/QString>

/** The time vocabulary of the waveform view: spacing of grid and ruler, and the text of a time. */
namespace vantoraudio::vantorAudioEngine::UI {

/**
 * The step of the time grid, in seconds, for a visible span of `span` seconds: a round number of hours, minutes,
 * seconds or decimal fractions of which the span holds about 3 to 10.
 *
 * 0.0, which means "no steps", for a span that is not above 0 and below 1,080,000 seconds (ten steps of 30 hours),
 * not-a-number included, and for the few spans so near to 0 that a double has no smaller step.
 */
[[nodiscard]] double CalculateScale(double span);

/**
 * A time in seconds as ruler label, in the largest unit that it fills: "1:02:03.500 hr", "1:15.250 min",
 * "5.100 sec", "045 msec". Times below 0 and from 24 hours on have no clock text: only the unit remains (" hr").
 * The unit is translated.
 */
[[nodiscard]] QString FormatToTime(double seconds);

} // namespace vantoraudio::vantorAudioEngine::UI
