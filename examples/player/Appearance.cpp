#include "Appearance.h"

#include <QtCore/QSettings>
#include <QtGui/QPalette>
#include <QtWidgets/QApplication>
#include <QtWidgets/QStyle>
#include <QtWidgets/QStyleFactory>

#include <memory>

using namespace Qt::Literals::StringLiterals;

namespace {

using Player = Appearance::Player;

constexpr std::array<Appearance::Role, Appearance::roleCount> roles{{
    {"background", QT_TRANSLATE_NOOP("Appearance", "Background"), 0xfffafafa, 0xff1c1c1c,
     &Player::SetBackgroundColor},
    {"waveform", QT_TRANSLATE_NOOP("Appearance", "Waveform"), 0xff2b6ea8, 0xff9a9a9a, &Player::SetWaveformColor},
    {"selection", QT_TRANSLATE_NOOP("Appearance", "Selection"), 0xff4a90c8, 0xff7390a0,
     &Player::SetAudioSelectionColor},
    {"position", QT_TRANSLATE_NOOP("Appearance", "Position"), 0xffb03a2e, 0xff738cc8,
     &Player::SetAudioPositionMarkerColor},
    {"grid", QT_TRANSLATE_NOOP("Appearance", "Grid"), 0xffc4c4c4, 0xff7d7d7d, &Player::SetGridColor},
    {"frame", QT_TRANSLATE_NOOP("Appearance", "Frame"), 0xff9a9a9a, 0xff7d7d7d, &Player::SetFrameColor},
    {"scale", QT_TRANSLATE_NOOP("Appearance", "Scale"), 0xff5a5a5a, 0xff969696, &Player::SetScaleColor},
}};

QString ColorKey(const Appearance::Role& role)
{
    return u"colors/"_s + QLatin1StringView(role.key);
}

QPalette DarkPalette()
{
    const QColor window(0x2b, 0x2b, 0x2b);
    const QColor text(0xe6, 0xe6, 0xe6);
    const QColor faint(0x80, 0x80, 0x80);
    QPalette palette(QColor(0x3a, 0x3a, 0x3a), window);
    palette.setColor(QPalette::Base, QColor(0x20, 0x20, 0x20));
    palette.setColor(QPalette::AlternateBase, window);
    palette.setColor(QPalette::Highlight, QColor(0x35, 0x89, 0xcd));
    palette.setColor(QPalette::ToolTipBase, window);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText,
                            QPalette::HighlightedText}) {
        palette.setColor(role, text);
        palette.setColor(QPalette::Disabled, role, faint);
    }
    palette.setColor(QPalette::PlaceholderText, faint);
    return palette;
}

QPalette LightPalette()
{
    const std::unique_ptr<QStyle> style(QStyleFactory::create(u"Fusion"_s));
    return style->standardPalette();
}

void ApplyTheme(Appearance::Theme theme)
{
    static const QPalette system = QApplication::palette();
    if (theme != Appearance::Theme::System) {
        QApplication::setStyle(u"Fusion"_s);
    }
    QApplication::setPalette(theme == Appearance::Theme::System ? system
                             : theme == Appearance::Theme::Dark ? DarkPalette()
                                                                : LightPalette());
}

} // namespace

std::span<const Appearance::Role> Appearance::Roles()
{
    return roles;
}

Appearance Appearance::Load()
{
    const QSettings settings;
    Appearance appearance;
    const int theme = settings.value(u"theme"_s).toInt();
    appearance.theme = theme == 1 ? Theme::Light : theme == 2 ? Theme::Dark : Theme::System;
    appearance.scrollBackToZoomOut = settings.value(u"scrollBackToZoomOut"_s, true).toBool();
    for (std::size_t i = 0; i < roleCount; ++i) {
        appearance.colors[i] = settings.value(ColorKey(roles[i])).value<QColor>();
    }
    return appearance;
}

void Appearance::Save() const
{
    QSettings settings;
    settings.setValue(u"theme"_s, static_cast<int>(theme));
    settings.setValue(u"scrollBackToZoomOut"_s, scrollBackToZoomOut);
    for (std::size_t i = 0; i < roleCount; ++i) {
        if (colors[i].isValid()) {
            settings.setValue(ColorKey(roles[i]), colors[i]);
        } else {
            settings.remove(ColorKey(roles[i]));
        }
    }
}

bool Appearance::IsDark() const
{
    return theme == Theme::System ? QApplication::palette().color(QPalette::Window).lightness() < 128
                                  : theme == Theme::Dark;
}

QColor Appearance::ColorOf(std::size_t role) const
{
    return colors[role].isValid() ? colors[role] : QColor(IsDark() ? roles[role].onDark : roles[role].onLight);
}

void Appearance::ApplyTo(Player& player) const
{
    ApplyTheme(theme);
    player.SetScrollBackToZoomOut(scrollBackToZoomOut);
    ApplyColorsTo(player);
}

void Appearance::ApplyColorsTo(Player& player) const
{
    player.SetNightIcons(IsDark());
    for (std::size_t i = 0; i < roleCount; ++i) {
        (player.*roles[i].apply)(ColorOf(i));
    }
}
