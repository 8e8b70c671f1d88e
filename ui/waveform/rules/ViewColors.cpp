#include "ui/waveform/rules/ViewColors.h"

#include <QtGui/QPalette>

#include <algorithm>
#include <cmath>

namespace vantoraudio::vantorAudioEngine::UI {
namespace {

constexpr double ContrastOfText = 4.5;
constexpr double ContrastOfGraphics = 3.0;
/** Of the position line to the waveform: with less it cannot be seen there. */
constexpr double ContrastOfLine = 2.0;
/** Grid and frame stay in the background. */
constexpr float FaintShare = 0.35F;

double Linear(double channel)
{
    return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double Luminance(const QColor& color)
{
    const QColor rgb = color.toRgb();
    return 0.2126 * Linear(double(rgb.redF())) + 0.7152 * Linear(double(rgb.greenF())) +
           0.0722 * Linear(double(rgb.blueF()));
}

/** Not that of the widget's state: a view keeps its colours while its window is in the background. */
QColor ActiveColor(const QPalette& palette, QPalette::ColorRole role)
{
    QColor color = palette.color(QPalette::Active, role);
    color.setAlpha(255);
    return color;
}

QColor Mixed(const QColor& a, const QColor& b, float share)
{
    const auto mixed = [share](float x, float y) { return x * share + y * (1.0F - share); };
    return QColor::fromRgbF(mixed(a.redF(), b.redF()), mixed(a.greenF(), b.greenF()), mixed(a.blueF(), b.blueF()));
}

/** The position line crosses the waveform, too. No colour stands out from both where they differ too little. */
QColor ReadableOver(const QColor& color, const QColor& waveform, const QColor& background)
{
    if (ContrastBetween(color, waveform) >= ContrastOfLine) {
        return color;
    }
    for (const float share : {0.9F, 0.8F, 0.7F, 0.6F, 0.5F}) {
        const QColor mixed = Mixed(color, background, share);
        if (ContrastBetween(mixed, waveform) >= ContrastOfLine &&
            ContrastBetween(mixed, background) >= ContrastOfGraphics) {
            return mixed;
        }
    }
    return color;
}

} // namespace

double ContrastBetween(const QColor& a, const QColor& b)
{
    const auto [darker, lighter] = std::minmax({Luminance(a), Luminance(b)});
    return (lighter + 0.05) / (darker + 0.05);
}

QColor Readable(const QColor& color, const QColor& background, double contrast)
{
    if (ContrastBetween(color, background) >= contrast) {
        return color;
    }
    const QColor black(0, 0, 0);
    const QColor white(255, 255, 255);
    return ContrastBetween(black, background) > ContrastBetween(white, background) ? black : white;
}

QColor AccentOf(const QPalette& palette)
{
    return Readable(ActiveColor(palette, QPalette::Highlight), ActiveColor(palette, QPalette::Window),
                    ContrastOfGraphics);
}

ViewColors ColorsOf(const QPalette& palette)
{
    const QColor window = ActiveColor(palette, QPalette::Window);
    const QColor base = ActiveColor(palette, QPalette::Base);
    const QColor label = Readable(ActiveColor(palette, QPalette::WindowText), window, ContrastOfText);
    const QColor waveform = Readable(ActiveColor(palette, QPalette::Text), base, ContrastOfGraphics);
    const QColor highlight = Readable(ActiveColor(palette, QPalette::Highlight), base, ContrastOfGraphics);
    return {.background = base,
            .grid = Mixed(waveform, base, FaintShare),
            .waveform = waveform,
            .selection = highlight,
            .positionLine = ReadableOver(highlight, waveform, base),
            .positionTick = AccentOf(palette),
            .frame = Mixed(label, window, FaintShare),
            .scale = label};
}

} // namespace vantoraudio::vantorAudioEngine::UI
