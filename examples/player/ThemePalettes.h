#pragma once

#include <QtGui/QPalette>

/** The palettes of the themes. Texts stand out from what is behind them 4.5 to 1, also where they are chosen. */
namespace ThemePalettes {

QPalette Light();
QPalette Dark();
/** White on black, what is chosen in yellow. */
QPalette HighContrast();

} // namespace ThemePalettes
