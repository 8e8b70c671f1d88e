#include "ThemePalettes.h"

namespace {

void SetTexts(QPalette& palette, const QColor& color, const QColor& faint)
{
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
        palette.setColor(role, color);
        palette.setColor(QPalette::Disabled, role, faint);
    }
    palette.setColor(QPalette::PlaceholderText, faint);
}

void SetChosen(QPalette& palette, const QColor& background, const QColor& text)
{
    palette.setColor(QPalette::Highlight, background);
    palette.setColor(QPalette::HighlightedText, text);
}

} // namespace

// Not the style's own, which is dark where the system is.
QPalette ThemePalettes::Light()
{
    const QColor window(0xef, 0xef, 0xef);
    QPalette palette(window, window);
    palette.setColor(QPalette::Base, QColor(0xff, 0xff, 0xff));
    palette.setColor(QPalette::AlternateBase, QColor(0xf7, 0xf7, 0xf7));
    palette.setColor(QPalette::ToolTipBase, QColor(0xff, 0xff, 0xdc));
    SetTexts(palette, QColor(0x00, 0x00, 0x00), QColor(0x8c, 0x8c, 0x8c));
    SetChosen(palette, QColor(0x2a, 0x6e, 0xa6), QColor(0xff, 0xff, 0xff));
    return palette;
}

QPalette ThemePalettes::Dark()
{
    const QColor window(0x2b, 0x2b, 0x2b);
    QPalette palette(QColor(0x3a, 0x3a, 0x3a), window);
    palette.setColor(QPalette::Base, QColor(0x20, 0x20, 0x20));
    palette.setColor(QPalette::AlternateBase, window);
    palette.setColor(QPalette::ToolTipBase, window);
    SetTexts(palette, QColor(0xe6, 0xe6, 0xe6), QColor(0x80, 0x80, 0x80));
    SetChosen(palette, QColor(0x2f, 0x7a, 0xb8), QColor(0xff, 0xff, 0xff));
    return palette;
}

QPalette ThemePalettes::HighContrast()
{
    const QColor black(0x00, 0x00, 0x00);
    const QColor faint(0xa6, 0xa6, 0xa6);
    QPalette palette(QColor(0x30, 0x30, 0x30), black);
    for (const auto role : {QPalette::Base, QPalette::AlternateBase, QPalette::ToolTipBase}) {
        palette.setColor(role, black);
    }
    SetTexts(palette, QColor(0xff, 0xff, 0xff), faint);
    SetChosen(palette, QColor(0xff, 0xff, 0x00), black);
    palette.setColor(QPalette::Disabled, QPalette::Highlight, faint);
    return palette;
}
