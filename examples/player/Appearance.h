#pragma once

#include <vantorAudioEngine/AudioPlayerWidget.h>

#include <QtCore/QCoreApplication>
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
        Dark
    };

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
    /** One for each role; an invalid one means that of the theme. */
    std::array<QColor, roleCount> colors;

    static Appearance Load();
    void Save() const;

    bool IsDark() const;
    QColor ColorOf(std::size_t role) const;
    void ApplyTo(Player& player) const;
    /** All but the theme: what follows a palette that changes while the program runs. */
    void ApplyColorsTo(Player& player) const;
};
