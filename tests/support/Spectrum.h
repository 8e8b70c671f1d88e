#pragma once

#include <QtCore/QList>

/** What is in a signal beside a sine. It shares no code with the library. */
namespace Spectrum {

/**
 * The power of everything from 0 Hz to `limit` but the sine of `frequency`, in dB below that sine. Taken from the
 * middle of the signal, which must hold at least 8192 samples.
 */
double ResidueBelow(double limit, const QList<float>& signal, int rate, double frequency);

} // namespace Spectrum
