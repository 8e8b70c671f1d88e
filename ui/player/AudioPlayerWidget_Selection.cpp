#include "ui/player/Internals.h"
#include "ui/player/SelectionSteps.h"
#include "ui/player/TimeText.h"

#include <vantorAudioEngine/AudioPlayer.h>
#include <vantorAudioEngine/AudioPlayerWidget.h>
#include <vantorAudioEngine/BGFXWaveformWidget.h>

#include <QtCore/QPointer>
#include <QtCore/QSignalBlocker>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLineEdit>

#include <cmath>

namespace vantoraudio::vantorAudioEngine::UI {
namespace {

Selection SelectionOf(const BGFXWaveformWidget& waveform)
{
    return {waveform.GetSelectionStartTime(), waveform.GetSelectionEndTime()};
}

double StepOfThisClick()
{
    return SelectionStep(QApplication::keyboardModifiers().testFlag(Qt::ControlModifier));
}

} // namespace

// Buttons and fields change the selection of the waveform only; fields, player and host follow when it tells of
// that.

std::pair<double, double> AudioPlayerWidget::GetSelectedSnippet() const
{
    return m_waveformWidget->GetSelectedSnippet();
}

void AudioPlayerWidget::SetSelectedSnippet(std::pair<double, double> snippet)
{
    if (std::isfinite(snippet.first) && std::isfinite(snippet.second)) {
        m_waveformWidget->SetSelectedSnippet(snippet);
    }
}

void AudioPlayerWidget::ClearSelection()
{
    m_waveformWidget->ClearSelection();
}

QString AudioPlayerWidget::ConvertToDisplayTimeFormat(double seconds)
{
    return TimeText(seconds);
}

double AudioPlayerWidget::ConvertFromDisplayTimeFormat(const QString& text)
{
    return SecondsOf(text);
}

void AudioPlayerWidget::OnBtnDecSelectionStartClicked()
{
    if (const auto start = StartMovedBack(SelectionOf(*m_waveformWidget), StepOfThisClick())) {
        m_waveformWidget->SetSelectionStartTime(*start);
    }
}

void AudioPlayerWidget::OnBtnIncSelectionStartClicked()
{
    if (const auto start = StartMovedOn(SelectionOf(*m_waveformWidget), StepOfThisClick())) {
        m_waveformWidget->SetSelectionStartTime(*start);
    }
}

void AudioPlayerWidget::OnBtnDecSelectionEndClicked()
{
    if (const auto end = EndMovedBack(SelectionOf(*m_waveformWidget), StepOfThisClick())) {
        m_waveformWidget->SetSelectionEndTime(*end);
    }
}

void AudioPlayerWidget::OnBtnIncSelectionEndClicked()
{
    if (const auto end = EndMovedOn(SelectionOf(*m_waveformWidget), StepOfThisClick(), GetAudioDuration())) {
        m_waveformWidget->SetSelectionEndTime(*end);
    }
}

void AudioPlayerWidget::OnSelectionStartEditingFinished()
{
    if (m_internals->IsLeftUntyped(*m_internals->controls.edSelectionStart)) {
        return;
    }
    const Internals::Telling telling(*this, m_internals->controls.edSelectionStart);
    const double start = ConvertFromDisplayTimeFormat(m_internals->controls.edSelectionStart->text());
    if (!LiesInFile(start, GetAudioDuration())) {
        const QSignalBlocker blocker(m_internals->controls.edSelectionStart);
        m_internals->controls.edSelectionStart->setText(
            ConvertToDisplayTimeFormat(m_waveformWidget->GetSelectionStartTime()));
        return;
    }
    // A receiver of the signals may destroy the widget.
    const QPointer<AudioPlayerWidget> self(this);
    if (start > m_waveformWidget->GetSelectionEndTime()) {
        m_waveformWidget->SetSelectionEndTime(start);
    }
    if (self) {
        m_waveformWidget->SetSelectionStartTime(start);
    }
    if (self) {
        m_internals->SeekToLine();
    }
}

void AudioPlayerWidget::OnSelectionEndEditingFinished()
{
    if (m_internals->IsLeftUntyped(*m_internals->controls.edSelectionEnd)) {
        return;
    }
    const Internals::Telling telling(*this, m_internals->controls.edSelectionEnd);
    const double end = ConvertFromDisplayTimeFormat(m_internals->controls.edSelectionEnd->text());
    if (!LiesInFile(end, GetAudioDuration())) {
        const QSignalBlocker blocker(m_internals->controls.edSelectionEnd);
        m_internals->controls.edSelectionEnd->setText(
            ConvertToDisplayTimeFormat(m_waveformWidget->GetSelectionEndTime()));
        return;
    }
    const QPointer<AudioPlayerWidget> self(this);
    if (m_waveformWidget->GetSelectionStartTime() > end) {
        m_waveformWidget->SetSelectionStartTime(end);
    }
    if (self) {
        m_waveformWidget->SetSelectionEndTime(end);
    }
}

void AudioPlayerWidget::Internals::PlaySelection(const Selection& selection)
{
    // A receiver of the signals may destroy the widget.
    const QPointer<AudioPlayerWidget> self(&widget);
    AudioPlayer& player = *widget.m_audioPlayer;
    ++selectionChanges;
    bool stays = false;
    if (selectionChangeKeepsPlace && widget.IsPlaying()) {
        stays = player.ChangeSelection(selection.start, selection.end);
    } else {
        player.SetSelection(selection.start, selection.end);
    }
    if (!self) {
        return;
    }
    --selectionChanges;
    if (stays) {
        // The waveform takes the start of a new selection for the position.
        widget.m_waveformWidget->SetAudioPositionKeepingView(widget.GetAudioPosition());
    }
}

void AudioPlayerWidget::OnWaveformSelectionChanged(const std::pair<double, double>& selection)
{
    const auto [start, end] = selection;
    m_hasSelection = !(LengthOf({start, end}) < shortestSelection);
    // A receiver of the signals may destroy the widget or select something else, which is the latest then.
    const QPointer<AudioPlayerWidget> self(this);
    const int change = ++m_internals->selectionCount;
    if (m_hasSelection) {
        m_internals->PlaySelection({start, end});
    } else {
        m_audioPlayer->ClearSelection();
    }
    if (!self || m_internals->selectionCount != change) {
        return;
    }
    {
        const QSignalBlocker startBlocker(m_internals->controls.edSelectionStart);
        const QSignalBlocker endBlocker(m_internals->controls.edSelectionEnd);
        m_internals->controls.edSelectionStart->setText(ConvertToDisplayTimeFormat(start));
        m_internals->controls.edSelectionEnd->setText(ConvertToDisplayTimeFormat(end));
    }
    Q_EMIT WaveFormSelectionChanged(selection);
}

} // namespace vantoraudio::vantorAudioEngine::UI
