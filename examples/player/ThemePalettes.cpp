#include "ThemePalettes.h"

#include <QtWidgets/QStyle>
#include <QtWidgets/QStyleFactory>

#include <memory>

using namespace Qt::Literals::StringLiterals;

QPalette ThemePalettes::Light()
{
    const std::unique_ptr<QStyle> style(QStyleFactory::create(u"Fusion"_s));
    QPalette palette = style->standardPalette();
    // The style's own leaves chosen texts at 3.7 to 1.
    palette.setColor(QPalette::Highlight, QColor(0x2a, 0x6e, 0xa6));
    return palette;
}

QPalette ThemePalettes::Dark()
{
    const QColor window(0x2b, 0x2b, 0x2b);
    const QColor text(0xe6, 0xe6, 0xe6);
    const QColor faint(0x80, 0x80, 0x80);
    QPalette palette(QColor(0x3a, 0x3a, 0x3a), window);
    palette.setColor(QPalette::Base, QColor(0x20, 0x20, 0x20));
    palette.setColor(QPalette::AlternateBase, window);
    palette.setColor(QPalette::Highlight, QColor(0x2f, 0x7a, 0xb8));
    palette.setColor(QPalette::ToolTipBase, window);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
        palette.setColor(role, text);
        palette.setColor(QPalette::Disabled, role, faint);
    }
    palette.setColor(QPalette::HighlightedText, QColor(0xff, 0xff, 0xff));
    palette.setColor(QPalette::PlaceholderText, faint);
    return palette;
}

QPalette ThemePalettes::HighContrast()
{
    const QColor black(0, 0, 0);
    const QColor white(255, 255, 255);
    const QColor yellow(255, 255, 0);
    const QColor faint(0xa6, 0xa6, 0xa6);
    QPalette palette(QColor(0x30, 0x30, 0x30), black);
    for (const auto role : {QPalette::Base, QPalette::AlternateBase, QPalette::ToolTipBase}) {
        palette.setColor(role, black);
    }
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
        palette.setColor(role, white);
        palette.setColor(QPalette::Disabled, role, faint);
    }
    for (const auto role : {QPalette::Highlight, QPalette::Link, QPalette::LinkVisited}) {
        palette.setColor(role, yellow);
    }
    palette.setColor(QPalette::Disabled, QPalette::Highlight, faint);
    palette.setColor(QPalette::HighlightedText, black);
    palette.setColor(QPalette::PlaceholderText, faint);
    return palette;
}
