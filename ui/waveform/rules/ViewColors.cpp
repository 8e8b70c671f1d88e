#include "ui/waveform/rules/ViewColors.h"

#include <QtGui/QPalette>

#include <algorithm>
#include <cmath>

namespace vantoraudio::vantorAudioEngine::UI {
namespace {

constexpr double ContrastOfText = 4.5;
constexpr double ContrastOfGraphics = 3.0;
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

QColor Faint(const QColor& color, const QColor& background)
{
    const auto mixed = [](float a, float b) { return a * FaintShare + b * (1.0F - FaintShare); };
    return QColor::fromRgbF(mixed(color.redF(), background.redF()), mixed(color.greenF(), background.greenF()),
                            mixed(color.blueF(), background.blueF()));
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
            .grid = Faint(waveform, base),
            .waveform = waveform,
            .selection = highlight,
            .positionLine = highlight,
            .positionTick = AccentOf(palette),
            .frame = Faint(label, window),
            .scale = label};
}

} // namespace vantoraudio::vantorAudioEngine::UI
