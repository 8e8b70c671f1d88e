#include "Appearance.h"

#include "ThemePalettes.h"
#include "ThemeStyle.h"

#include <QtCore/QSettings>
#include <QtGui/QPalette>
#include <QtWidgets/QApplication>
#include <QtWidgets/QStyle>

#include <algorithm>
#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace {

using Player = Appearance::Player;

constexpr std::array<Appearance::Role, Appearance::roleCount> roles{{
    {"background", QT_TRANSLATE_NOOP("Appearance", "Background"), 0xfffafafa, 0xff1c1c1c,
     &Player::SetBackgroundColor},
    {"waveform", QT_TRANSLATE_NOOP("Appearance", "Waveform"), 0xff2b6ea8, 0xffc0ccd4, &Player::SetWaveformColor},
    {"selection", QT_TRANSLATE_NOOP("Appearance", "Selection"), 0xff4a90c8, 0xff7390a0,
     &Player::SetAudioSelectionColor},
    {"position", QT_TRANSLATE_NOOP("Appearance", "Position"), 0xffb03a2e, 0xff346ed1,
     &Player::SetAudioPositionMarkerColor},
    {"grid", QT_TRANSLATE_NOOP("Appearance", "Grid"), 0xffc4c4c4, 0xff7d7d7d, &Player::SetGridColor},
    {"frame", QT_TRANSLATE_NOOP("Appearance", "Frame"), 0xff9a9a9a, 0xff7d7d7d, &Player::SetFrameColor},
    {"scale", QT_TRANSLATE_NOOP("Appearance", "Scale"), 0xff5a5a5a, 0xff969696, &Player::SetScaleColor},
}};

constexpr std::array themeNames{QT_TRANSLATE_NOOP("Appearance", "As the system"),
                                QT_TRANSLATE_NOOP("Appearance", "Light"), QT_TRANSLATE_NOOP("Appearance", "Dark"),
                                QT_TRANSLATE_NOOP("Appearance", "High contrast")};

QString ColorKey(const Appearance::Role& role)
{
    return u"colors/"_s + QLatin1StringView(role.key);
}

QPalette PaletteOf(Appearance::Theme theme, const QPalette& system)
{
    switch (theme) {
    case Appearance::Theme::System:
        return system;
    case Appearance::Theme::Light:
        return ThemePalettes::Light();
    case Appearance::Theme::Dark:
        return ThemePalettes::Dark();
    case Appearance::Theme::HighContrast:
        return ThemePalettes::HighContrast();
    }
    return system;
}

void ApplyStyle(Appearance::Theme theme)
{
    static const QString systemStyle = QApplication::style()->name();
    const auto* current = qobject_cast<const ThemeStyle*>(QApplication::style());
    const bool hasOutlines = theme == Appearance::Theme::HighContrast;
    if (theme == Appearance::Theme::System) {
        if (current) {
            QApplication::setStyle(systemStyle);
        }
    } else if (!current || current->HasOutlines() != hasOutlines) {
        QApplication::setStyle(new ThemeStyle(hasOutlines));
    }
}

void ApplyTheme(Appearance::Theme theme)
{
    static const QPalette system = QApplication::palette();
    // On the bar of the chosen entry no colour of theirs would stand out.
    QCoreApplication::setAttribute(Qt::AA_DontShowIconsInMenus);
    ApplyStyle(theme);
    QApplication::setPalette(PaletteOf(theme, system));
}

} // namespace

std::span<const Appearance::Role> Appearance::Roles()
{
    return roles;
}

QStringList Appearance::ThemeNames()
{
    QStringList names;
    for (const char* name : themeNames) {
        names.append(QCoreApplication::translate("Appearance", name));
    }
    return names;
}

Appearance Appearance::Load()
{
    const QSettings settings;
    Appearance appearance;
    const int theme = settings.value(u"theme"_s).toInt();
    appearance.theme = theme > 0 && theme < int(themeNames.size()) ? Theme(theme) : Theme::System;
    appearance.scrollBackToZoomOut = settings.value(u"scrollBackToZoomOut"_s, true).toBool();
    const int notches = settings.value(u"zoomNotches"_s, appearance.zoomNotches).toInt();
    appearance.zoomNotches = std::clamp(notches, 1, mostZoomNotches);
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
    settings.setValue(u"zoomNotches"_s, zoomNotches);
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
                                  : theme == Theme::Dark || theme == Theme::HighContrast;
}

bool Appearance::IsHighContrast() const
{
    // Qt does not tell it of the system's theme. Few other themes have windows of pure black or white.
    const QColor window = QApplication::palette().color(QPalette::Window);
    return theme == Theme::HighContrast ||
           (theme == Theme::System && (window == QColor(Qt::black) || window == QColor(Qt::white)));
}

QColor Appearance::ColorOf(std::size_t role) const
{
    return colors[role].isValid() ? colors[role] : QColor(IsDark() ? roles[role].onDark : roles[role].onLight);
}

void Appearance::ApplyTo(Player& player) const
{
    ApplyTheme(theme);
    player.SetScrollBackToZoomOut(scrollBackToZoomOut);
    player.SetWheelZoomFactor(std::pow(2.0, 1.0 / zoomNotches));
    ApplyColorsTo(player);
}

void Appearance::ApplyColorsTo(Player& player) const
{
    player.SetNightIcons(IsDark());
    // The library's own marker is too light for a light window.
    player.SetAudioPositionIcon(IsDark() ? u":/Resources/vantoraudioArrowDownLightBlue.svg"_s
                                         : u":/Resources/vantoraudioArrowDown_day.svg"_s);
    player.SetColorsFollowPalette(IsHighContrast());
    for (std::size_t i = 0; i < roleCount; ++i) {
        (player.*roles[i].apply)(ColorOf(i));
    }
}
