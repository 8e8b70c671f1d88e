#pragma once

#include <QtGui/QColor>

class QPalette;

/** The colours of the waveform view, and how a palette becomes such colours. */
namespace vantoraudio::vantorAudioEngine::UI {

struct ViewColors
{
    QColor background;
    QColor grid;
    QColor waveform;
    QColor selection;
    QColor positionLine;
    QColor positionTick;
    QColor frame;
    QColor scale;

    friend bool operator==(const ViewColors&, const ViewColors&) = default;
};

/** How much two colours stand out from each other, as the web's guidelines for accessible content reckon it: from
 * 1 for equal ones to 21 for black and white. Transparency does not count. */
[[nodiscard]] double ContrastBetween(const QColor& a, const QColor& b);

/** The colour itself if it stands out from the background that much, otherwise black or white, whichever does
 * more. One of these always reaches 4.5. */
[[nodiscard]] QColor Readable(const QColor& color, const QColor& background, double contrast);

/** What stands out from a window of this palette enough to be found: 3 to 1. */
[[nodiscard]] QColor AccentOf(const QPalette& palette);

/** The view in the colours of a palette's active windows: labels stand out from the window 4.5 to 1; waveform,
 *  selection and position from the background 3 to 1, and the position line from the waveform 2 to 1,
 *  where those two leave room for that. */
[[nodiscard]] ViewColors ColorsOf(const QPalette& palette);

} // namespace vantoraudio::vantorAudioEngine::UI
