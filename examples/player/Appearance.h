#pragma once

#include <vantorAudioEngine/AudioPlayerWidget.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QStringList>
#include <QtGui/QColor>

#include <array>
#include <span>

/** How the program looks, kept from one start to the next. */
struct Appearance
{
    enum class Theme
    {
        System,
        Light,
        Dark,
        HighContrast
    };
    /** For the user, in their order. */
    static QStringList ThemeNames();

    using Player = vantoraudio::vantorAudioEngine::UI::AudioPlayerWidget;

    /** A colour of the waveform that the user may choose. */
    struct Role
    {
        const char* key;
        const char* label;
        QRgb onLight;
        QRgb onDark;
        void (Player::*apply)(const QColor&);
    };

    static std::span<const Role> Roles();
    static constexpr std::size_t roleCount = 7;

    Theme theme = Theme::System;
    bool scrollBackToZoomOut = true;
    /** So many notches of the wheel for twice the view, 1 to 10. */
    int zoomNotches = 3;
    static constexpr int mostZoomNotches = 10;
    /** One for each role; an invalid one means that of the theme. */
    std::array<QColor, roleCount> colors;

    static Appearance Load();
    void Save() const;

    bool IsDark() const;
    /** The waveform has the colours of the palette. The chosen ones are for the other themes. */
    bool IsHighContrast() const;
    QColor ColorOf(std::size_t role) const;
    void ApplyTo(Player& player) const;
    /** Colours and icons: what follows a palette that changes while the program runs. */
    void ApplyColorsTo(Player& player) const;
};
