#pragma once

#include <cmath>

/** Of full scale, for the amount of a sample. Minus infinity for silence. */
inline double DecibelsOf(double level)
{
    return 20.0 * std::log10(level);
}
