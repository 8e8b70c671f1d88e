#include "ui/player/FlexibleSizes.h"
#include "ui/player/Internals.h"
#include "ui/player/LibraryIcon.h"

#include <vantorAudioEngine/AudioPlayer.h>
#include <vantorAudioEngine/AudioPlayerWidget.h>
#include <vantorAudioEngine/BGFXWaveformWidget.h>

#include <QtWidgets/QPushButton>

using namespace Qt::Literals::StringLiterals;

namespace vantoraudio::vantorAudioEngine::UI {

void AudioPlayerWidget::SetAudioPositionIcon(const QString& fileName)
{
    m_waveformWidget->SetAudioPositionIcon(fileName);
}

void AudioPlayerWidget::SetAudioPositionMarkerColor(const QColor& color)
{
    m_waveformWidget->SetAudioPositionMarkerColor(color);
}

void AudioPlayerWidget::SetAudioSelectionColor(const QColor& color)
{
    m_waveformWidget->SetAudioSelectionColor(color);
}

void AudioPlayerWidget::SetBackgroundColor(const QColor& color)
{
    m_waveformWidget->SetBackgroundColor(color);
}

void AudioPlayerWidget::SetFrameColor(const QColor& color)
{
    m_waveformWidget->SetFrameColor(color);
}

void AudioPlayerWidget::SetGridColor(const QColor& color)
{
    m_waveformWidget->SetGridColor(color);
}

void AudioPlayerWidget::SetScaleColor(const QColor& color)
{
    m_waveformWidget->SetScaleColor(color);
}

void AudioPlayerWidget::SetWaveformColor(const QColor& color)
{
    m_waveformWidget->SetWaveformColor(color);
}

void AudioPlayerWidget::UseFlexibleSizes()
{
    if (!findChild<FlexibleSizes*>()) {
        new FlexibleSizes(*this, m_internals->controls);
    }
}

double AudioPlayerWidget::GetTimeAt(const QPoint& position) const
{
    return m_waveformWidget->GetTimeAt(m_waveformWidget->mapFrom(this, position));
}

std::pair<double, double> AudioPlayerWidget::GetLevelAt(const QPoint& position) const
{
    return m_waveformWidget->GetLevelAt(m_waveformWidget->mapFrom(this, position));
}

void AudioPlayerWidget::SetFollowsPosition(bool follows)
{
    m_waveformWidget->SetFollowsPosition(follows);
}

void AudioPlayerWidget::SetShowsPositionAtOnce(bool atOnce)
{
    m_waveformWidget->SetShowsPositionAtOnce(atOnce);
}

void AudioPlayerWidget::SetKeepsViewFilled(bool filled)
{
    m_waveformWidget->SetKeepsViewFilled(filled);
}

void AudioPlayerWidget::SetWheelZoomFactor(double factor)
{
    m_waveformWidget->SetWheelZoomFactor(factor);
}

void AudioPlayerWidget::SetLabelsFit(bool fit)
{
    m_waveformWidget->SetLabelsFit(fit);
}

void AudioPlayerWidget::SetColorsFollowPalette(bool follow)
{
    m_waveformWidget->SetColorsFollowPalette(follow);
}

void AudioPlayerWidget::SetWaveformTakesFocus(bool takesFocus)
{
    m_waveformWidget->SetTakesFocus(takesFocus);
    if (takesFocus) {
        // Where the focus shows.
        setFocusProxy(m_waveformWidget);
    } else if (focusProxy() == m_waveformWidget) {
        setFocusProxy(nullptr);
    }
}

void AudioPlayerWidget::SetNightIcons(bool night)
{
    const auto icon = [night](QLatin1StringView name) { return LibraryIcon(name, night); };
    SetIconPlay(icon("PlayerPlay"_L1));
    SetIconPause(icon("PlayerPause"_L1));
    SetIconStop(icon("PlayerStop"_L1));
    SetIconLoop(icon("PlayerLoop"_L1));
    SetIconSettings(icon("Preferences"_L1));
    SetIconMute(icon("Mute"_L1));
    SetIconUnmute(icon("Unmute"_L1));
    SetIconLoad(icon("LoadAudio"_L1));
    SetIconIncrement(icon("DigitalPlus"_L1));
    SetIconDecrement(icon("DigitalMinus"_L1));
}

void AudioPlayerWidget::SetIconPlay(const QIcon& icon)
{
    m_playIcon = icon;
    m_internals->ShowPlayIcon(m_internals->controls.btnPlayPause->isChecked());
}

void AudioPlayerWidget::SetIconPause(const QIcon& icon)
{
    m_pauseIcon = icon;
    m_internals->ShowPlayIcon(m_internals->controls.btnPlayPause->isChecked());
}

void AudioPlayerWidget::SetIconStop(const QIcon& icon)
{
    m_stopIcon = icon;
    m_internals->controls.btnStop->setIcon(icon);
}

void AudioPlayerWidget::SetIconLoop(const QIcon& icon)
{
    m_loopIcon = icon;
    m_internals->controls.btnLoop->setIcon(icon);
}

void AudioPlayerWidget::SetIconSettings(const QIcon& icon)
{
    m_settingsIcon = icon;
    m_internals->controls.btnSettings->setIcon(icon);
}

void AudioPlayerWidget::SetIconMute(const QIcon& icon)
{
    m_muteIcon = icon;
    m_internals->ShowMuteIcon(m_internals->controls.btnMute->isChecked());
}

void AudioPlayerWidget::SetIconUnmute(const QIcon& icon)
{
    m_unmuteIcon = icon;
    m_internals->ShowMuteIcon(m_internals->controls.btnMute->isChecked());
}

void AudioPlayerWidget::SetIconLoad(const QIcon& icon)
{
    m_loadIcon = icon;
    m_internals->controls.btnLoadFile->setIcon(icon);
}

void AudioPlayerWidget::SetIconIncrement(const QIcon& icon)
{
    m_internals->controls.btnIncSelectionStart->setIcon(icon);
    m_internals->controls.btnIncSelectionEnd->setIcon(icon);
}

void AudioPlayerWidget::SetIconDecrement(const QIcon& icon)
{
    m_internals->controls.btnDecSelectionStart->setIcon(icon);
    m_internals->controls.btnDecSelectionEnd->setIcon(icon);
}

} // namespace vantoraudio::vantorAudioEngine::UI
