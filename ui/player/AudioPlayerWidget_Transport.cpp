#include "playback/PlayableFile.h"
#include "ui/player/Internals.h"
#include "ui/player/SelectionSteps.h"
#include "ui/player/TimeText.h"

#include <vantorAudioEngine/AudioPlayer.h>
#include <vantorAudioEngine/AudioPlayerWidget.h>
#include <vantorAudioEngine/BGFXWaveformWidget.h>

#include <QtCore/QPointer>
#include <QtCore/QSignalBlocker>
#include <QtCore/QUrl>
#include <QtGui/QContextMenuEvent>
#include <QtGui/QKeyEvent>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QSlider>

#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace vantoraudio::vantorAudioEngine::UI {

void AudioPlayerWidget::Play()
{
    m_internals->PlayOnWithCopy(true);
    if (m_internals->CanPlayOn() && m_internals->GoToWherePlayingBegins()) {
        m_audioPlayer->play();
    }
}

void AudioPlayerWidget::Pause()
{
    m_internals->PlayOnWithCopy(false);
    if (IsPlaying()) {
        m_audioPlayer->pause();
    }
}

bool AudioPlayerWidget::IsPlaying() const
{
    return m_audioPlayer->playbackState() == QMediaPlayer::PlayingState;
}

void AudioPlayerWidget::Internals::SetPlayedFile(const QString& path, const Selection& selection)
{
    playableCopy.reset();
    playsOnWithCopy.reset();
    if (AudioEngine::CanBePlayed(path)) {
        LetPlay(path, selection);
        return;
    }
    playableCopy = std::make_unique<PlayableCopy>(path, widget.m_writableDirectoryPath);
    connect(playableCopy.get(), &PlayableCopy::Ended, &widget, [this] { PlayCopy(); });
    widget.m_audioPlayer->setSource(QUrl());
}

void AudioPlayerWidget::Internals::PlayCopy()
{
    const std::optional<bool> playsOn = std::exchange(playsOnWithCopy, std::nullopt);
    const Place place{widget.GetVisibleRange(), widget.m_waveformWidget->GetAudioPosition(),
                      playsOn.value_or(false)};
    const auto [start, end] = widget.m_waveformWidget->GetSelectedSnippet();
    // A receiver of the signals may load another file or destroy the widget.
    const QPointer<PlayableCopy> copy(playableCopy.get());
    LetPlay(copy->GetPath(), {start, end});
    if (copy && playsOn) {
        GoBackTo(place);
    }
}

bool AudioPlayerWidget::Internals::AwaitsCopy() const
{
    return playableCopy && widget.m_audioPlayer->source().isEmpty();
}

void AudioPlayerWidget::Internals::PlayOnWithCopy(bool plays)
{
    if (playsOnWithCopy) {
        playsOnWithCopy = plays;
    }
}

void AudioPlayerWidget::Internals::LetPlay(const QString& path, const Selection& selection)
{
    const SameFile isSame(*this);
    widget.m_audioPlayer->SetAudio(path, loaded.File().GetDuration());
    if (isSame && LengthOf(selection) > shortestSelection) {
        widget.m_audioPlayer->SetSelection(selection.start, selection.end);
    }
}

/** Later: Qt goes on with a player after it has told of its error. Another file may be there by then. */
void AudioPlayerWidget::Internals::TellOfPlaybackFailure(const QString& reason)
{
    const auto tell = [this, reason, source = widget.m_audioPlayer->source(), load = loadCount] {
        if (widget.m_audioPlayer->source() == source && loadCount == load) {
            Q_EMIT widget.PlaybackFailed(reason);
        }
    };
    QMetaObject::invokeMethod(&widget, tell, Qt::QueuedConnection);
}

bool AudioPlayerWidget::Internals::CanPlayOn() const
{
    return controls.btnPlayPause->isEnabledTo(&widget) && !widget.IsPlaying();
}

/** False when a receiver of the signals has destroyed the widget. */
bool AudioPlayerWidget::Internals::GoToWherePlayingBegins()
{
    // A player that has played to an end may stand a few milliseconds before it.
    constexpr double closeToEnd = 0.01;
    constexpr double millisecond = 0.001;
    const bool hasSelection = widget.m_hasSelection;
    const auto [start, end] =
        hasSelection ? widget.GetSelectedSnippet() : std::pair(0.0, widget.GetAudioDuration());
    const double position = widget.GetAudioPosition();
    const bool isOutside = position < start - millisecond || position > end - closeToEnd;
    // While a file is being loaded the player is at 0, wherever it goes then.
    const bool isLoaded = !AwaitsCopy() && widget.m_audioPlayer->mediaStatus() != QMediaPlayer::LoadingMedia;
    const QPointer<AudioPlayerWidget> self(&widget);
    if (playReturnsToStart && isOutside && isLoaded && start < end) {
        // Another output device has cleared the player's selection.
        widget.m_audioPlayer->SetSelection(start, end);
        if (self) {
            widget.m_waveformWidget->SetAudioPosition(start);
        }
    }
    return !self.isNull();
}

void AudioPlayerWidget::OnBtnPlayPauseClicked()
{
    const bool isPlaying = IsPlaying();
    if (!isPlaying && !m_internals->GoToWherePlayingBegins()) {
        return;
    }
    const QPointer<AudioPlayerWidget> self(this);
    // A receiver of the signals may play already.
    if (IsPlaying() == isPlaying) {
        m_audioPlayer->PauseResume();
    }
    if (self) {
        m_internals->ShowPlayIcon(m_internals->controls.btnPlayPause->isChecked());
    }
}

void AudioPlayerWidget::OnAudioStateChanged(QMediaPlayer::PlaybackState state)
{
    m_internals->ShowAsPlaying(state == QMediaPlayer::PlayingState);
    m_internals->LetPositionMove();
}

void AudioPlayerWidget::Internals::ShowAsPlaying(bool isPlaying)
{
    const QSignalBlocker blocker(controls.btnPlayPause);
    controls.btnPlayPause->setChecked(isPlaying);
    ShowPlayIcon(isPlaying);
}

void AudioPlayerWidget::Internals::ShowPlayIcon(bool isPlaying)
{
    controls.btnPlayPause->setIcon(isPlaying ? widget.m_pauseIcon : widget.m_playIcon);
}

void AudioPlayerWidget::OnBtnStopClicked()
{
    m_internals->PlayOnWithCopy(false);
    m_internals->ShowAsPlaying(false);
    // A receiver of the signals may destroy the widget or select something else.
    const QPointer<AudioPlayerWidget> self(this);
    const int selection = m_internals->selectionCount;
    const bool toSelection = m_hasSelection;
    toSelection ? m_audioPlayer->pause() : m_audioPlayer->stop();
    if (!self || m_internals->selectionCount != selection) {
        return;
    }
    const double start = toSelection ? m_waveformWidget->GetSelectionStartTime() : 0.0;
    const double end =
        toSelection ? m_waveformWidget->GetSelectionEndTime() : m_internals->loaded.File().GetDuration();
    m_audioPlayer->SetSelection(start, end);
    if (self) {
        m_waveformWidget->SetAudioPosition(start);
    }
}

void AudioPlayerWidget::StopPlayback()
{
    m_internals->PlayOnWithCopy(false);
    m_internals->ShowAsPlaying(false);
    const QPointer<AudioPlayerWidget> self(this);
    m_audioPlayer->stop();
    if (self) {
        m_audioPlayer->SetAudioOutputDevice(m_audioOutputDevice);
    }
    if (self) {
        m_waveformWidget->SetAudioPosition(0.0);
    }
}

void AudioPlayerWidget::OnBtnLoopClicked()
{
    const bool loop = m_internals->controls.btnLoop->isChecked();
    m_audioPlayer->LoopPlayback(loop);
    Q_EMIT LoopChanged(loop);
}

void AudioPlayerWidget::SetLoop(bool loop)
{
    if (GetLoop() != loop) {
        m_internals->controls.btnLoop->setChecked(loop);
        OnBtnLoopClicked();
    }
}

bool AudioPlayerWidget::GetLoop() const
{
    return m_internals->controls.btnLoop->isChecked();
}

void AudioPlayerWidget::OnBtnMuteClicked()
{
    const bool isMuted = m_internals->controls.btnMute->isChecked();
    if (m_audioPlayer->IsMuted() == isMuted) {
        return;
    }
    m_audioPlayer->SetMuted(isMuted);
    m_internals->ShowMuteIcon(isMuted);
    Q_EMIT AudioPlayBackMuteChanged(isMuted);
}

void AudioPlayerWidget::SetAudioPlayBackMute(bool mute)
{
    if (m_audioPlayer->IsMuted() == mute) {
        return;
    }
    m_audioPlayer->SetMuted(mute);
    const QSignalBlocker blocker(m_internals->controls.btnMute);
    m_internals->controls.btnMute->setChecked(mute);
    m_internals->ShowMuteIcon(mute);
}

bool AudioPlayerWidget::GetAudioPlayBackMute() const
{
    return m_audioPlayer->IsMuted();
}

void AudioPlayerWidget::Internals::ShowMuteIcon(bool isMuted)
{
    controls.btnMute->setIcon(isMuted ? widget.m_muteIcon : widget.m_unmuteIcon);
}

void AudioPlayerWidget::OnHSliderVolumeValueChanged(int volume)
{
    if (m_audioPlayer->Volume() == volume) {
        return;
    }
    const Internals::Telling telling(*this, m_internals->controls.hSliderVolume);
    m_audioPlayer->SetVolume(volume);
    m_internals->volume = volume;
    Q_EMIT AudioPlayBackVolumeChanged(volume);
}

void AudioPlayerWidget::SetAudioPlayBackVolume(int volume)
{
    if (m_audioPlayer->Volume() == volume) {
        return;
    }
    m_audioPlayer->SetVolume(volume);
    m_internals->volume = qBound(0, volume, 100);
    // The slider ends at 99 and the player truncates what it holds: what comes back from either is not always what
    // was set here, and would pass for a move of the user.
    const QSignalBlocker blocker(m_internals->controls.hSliderVolume);
    m_internals->controls.hSliderVolume->setValue(volume);
}

int AudioPlayerWidget::GetAudioPlayBackVolume() const
{
    // The player truncates what it holds.
    const int truncated = m_audioPlayer->Volume();
    return m_internals->volume == truncated + 1 ? m_internals->volume : truncated;
}

void AudioPlayerWidget::SetAudioOutputDevice(const QAudioDevice& chosenDevice)
{
    // A receiver of the signals may change or delete what the caller keeps.
    const QAudioDevice device = chosenDevice; // NOLINT(performance-unnecessary-copy-initialization)
    const QPointer<AudioPlayerWidget> self(this);
    if (!m_internals->deviceChangeKeepsPlace) {
        m_internals->PlayOnWithCopy(false);
        m_audioPlayer->ClearSelection();
        m_audioPlayer->stop();
    }
    if (self) {
        m_audioOutputDevice = device;
        m_audioPlayer->SetAudioOutputDevice(device);
    }
}

void AudioPlayerWidget::SetPlaybackRate(double rate)
{
    // A receiver of the signals may destroy the widget.
    const QPointer<AudioPlayerWidget> self(this);
    m_audioPlayer->SetPlaybackRate(rate);
    // Not every version of Qt tells of it.
    if (self) {
        m_internals->LetPositionMove();
    }
}

double AudioPlayerWidget::GetPlaybackRate() const
{
    return m_audioPlayer->GetPlaybackRate();
}

void AudioPlayerWidget::SetPositionMovesSmoothly(bool smoothly)
{
    if (m_internals->positionMovesSmoothly && !smoothly) {
        m_waveformWidget->SetPositionRate(0.0);
    }
    m_internals->positionMovesSmoothly = smoothly;
    m_internals->LetPositionMove();
}

/** Without this setting the rate of the line is the program's. */
void AudioPlayerWidget::Internals::LetPositionMove() const
{
    if (positionMovesSmoothly) {
        widget.m_waveformWidget->SetPositionRate(widget.IsPlaying() ? widget.m_audioPlayer->playbackRate() : 0.0);
    }
}

void AudioPlayerWidget::OnAudioPositionChanged(qint64 milliseconds)
{
    const double seconds = static_cast<double>(milliseconds) / 1000.0;
    if (!m_internals->IsPositionEdited()) {
        QLineEdit& field = *m_internals->controls.edCurrentPosition;
        const QSignalBlocker blocker(field);
        const int cursor = field.cursorPosition();
        field.setText(ConvertToDisplayTimeFormat(seconds));
        if (m_internals->editedPositionStays) {
            field.setCursorPosition(cursor);
        }
    }
    // A receiver of the signals may destroy this widget.
    const QPointer<AudioPlayerWidget> self(this);
    ++m_internals->positionReports;
    // Whoever looks at an edge of the selection while changing it is not to be led away from it.
    const bool keepsView = m_internals->selectionChanges > 0 && m_waveformWidget->GetShowsPositionAtOnce();
    keepsView ? m_waveformWidget->SetAudioPositionKeepingView(seconds)
              : m_waveformWidget->SetAudioPosition(seconds);
    if (self) {
        m_internals->CorrectLateReport(milliseconds);
        Q_EMIT AudioPositionChanged(seconds);
    }
    if (self) {
        --m_internals->positionReports;
    }
}

bool AudioPlayerWidget::Internals::IsPositionEdited() const
{
    const QLineEdit& field = *controls.edCurrentPosition;
    return editedPositionStays && field.hasFocus() && (field.isModified() || field.hasSelectedText());
}

/** At the end of a selection the player goes back to the start and pauses while it reports the end, so that the
 *  report of the end comes here behind that of the start. */
void AudioPlayerWidget::Internals::CorrectLateReport(qint64 milliseconds)
{
    if (widget.m_audioPlayer->playbackState() == QMediaPlayer::PausedState &&
        widget.m_audioPlayer->position() != milliseconds) {
        const auto showPosition = [this] { widget.OnAudioPositionChanged(widget.m_audioPlayer->position()); };
        QMetaObject::invokeMethod(&widget, showPosition, Qt::QueuedConnection);
    }
}

void AudioPlayerWidget::UpdateAudioPosition(double seconds)
{
    // A receiver of the signals may destroy this widget.
    const QPointer<AudioPlayerWidget> self(this);
    m_audioPlayer->setPosition(MillisecondsOf(seconds));
    if (self) {
        m_waveformWidget->SetAudioPosition(seconds);
    }
}

/** False when a receiver of the signals has destroyed the widget. */
bool AudioPlayerWidget::Internals::GoToTyped(double time)
{
    const QPointer<AudioPlayerWidget> self(&widget);
    BGFXWaveformWidget& waveform = *widget.m_waveformWidget;
    for (const auto set : {&BGFXWaveformWidget::SetSelectionStartTime, &BGFXWaveformWidget::SetSelectionEndTime}) {
        (waveform.*set)(0.0);
        if (!self) {
            return false;
        }
    }
    waveform.SetAudioPosition(time);
    if (self) {
        SeekToLine();
    }
    if (self) {
        // Without that the player stays where it is: the host is told the time and decides whether playback
        // follows.
        Q_EMIT widget.AudioPositionChanged(time);
    }
    return !self.isNull();
}

bool AudioPlayerWidget::Internals::IsLeftUntyped(const QLineEdit& field) const
{
    return typedPositionSeeks && !field.isModified();
}

void AudioPlayerWidget::Internals::SeekToLine() const
{
    if (!typedPositionSeeks) {
        return;
    }
    const double position = widget.m_waveformWidget->GetAudioPosition();
    // A receiver of the signals may destroy the widget.
    const QPointer<AudioPlayerWidget> self(&widget);
    widget.m_waveformWidget->SetAudioPosition(position);
    if (self) {
        widget.m_audioPlayer->setPosition(MillisecondsOf(position));
    }
}

double AudioPlayerWidget::GetAudioPosition() const
{
    return static_cast<double>(m_audioPlayer->position()) / 1000.0;
}

void AudioPlayerWidget::OnCurrentPositionEditingFinished()
{
    const Internals::Telling telling(*this, m_internals->controls.edCurrentPosition);
    const bool isTyped = !m_internals->IsLeftUntyped(*m_internals->controls.edCurrentPosition);
    const double time = ConvertFromDisplayTimeFormat(m_internals->controls.edCurrentPosition->text());
    if (isTyped && 0.0 <= time && time <= GetAudioDuration() && !m_internals->GoToTyped(time)) {
        return;
    }
    // In every case: an entry outside the file snaps back.
    const QSignalBlocker blocker(m_internals->controls.edCurrentPosition);
    m_internals->controls.edCurrentPosition->setText(
        ConvertToDisplayTimeFormat(m_waveformWidget->GetAudioPosition()));
}

void AudioPlayerWidget::OnWaveformAudioPositionChanged(double seconds)
{
    m_hasSelection = false;
    // A receiver of the signals may destroy the widget or select something else, which is the latest then.
    const QPointer<AudioPlayerWidget> self(this);
    const int change = ++m_internals->selectionCount;
    m_audioPlayer->ClearSelection();
    m_audioPlayer->setPosition(MillisecondsOf(seconds));
    if (!self || m_internals->selectionCount != change) {
        return;
    }
    {
        const QSignalBlocker startBlocker(m_internals->controls.edSelectionStart);
        const QSignalBlocker endBlocker(m_internals->controls.edSelectionEnd);
        // The comma is meant, as in the other reset texts; the mask of these fields shows its own point.
        m_internals->controls.edSelectionStart->setText(u"00:00:00,000"_s);
        m_internals->controls.edSelectionEnd->setText(u"00:00:00,000"_s);
    }
    Q_EMIT WaveFormSelectionChanged({0.0, 0.0});
}

void AudioPlayerWidget::keyPressEvent(QKeyEvent* event)
{
    if (event->matches(QKeySequence::SelectAll)) {
        SetSelectedSnippet({0.0, GetAudioDuration()});
    } else if (event->key() == Qt::Key_Space) {
        m_internals->PlayOnWithCopy(true);
        OnBtnPlayPauseClicked();
    } else {
        event->ignore();
    }
}

void AudioPlayerWidget::contextMenuEvent(QContextMenuEvent* event)
{
    const QPoint onWaveform = m_waveformWidget->mapFrom(this, event->pos());
    const bool isWanted = m_waveformWidget->GetInteractions() & BGFXWaveformWidget::Interaction::LeftButtonOnly;
    event->setAccepted(isWanted && m_waveformWidget->rect().contains(onWaveform) && GetAudioDuration() > 0.0);
    if (event->isAccepted()) {
        Q_EMIT ContextMenuRequested(event->globalPos(), m_waveformWidget->GetTimeAt(onWaveform));
    }
}

void AudioPlayerWidget::SetInteractions(BGFXWaveformWidget::Interactions interactions)
{
    m_waveformWidget->SetInteractions(interactions);
}

void AudioPlayerWidget::SetTypedPositionSeeks(bool seeks)
{
    m_internals->typedPositionSeeks = seeks;
}

void AudioPlayerWidget::SetPlayReturnsToStart(bool returns)
{
    m_internals->playReturnsToStart = returns;
}

void AudioPlayerWidget::SetEditedPositionStays(bool stays)
{
    m_internals->editedPositionStays = stays;
}

void AudioPlayerWidget::SetChannelChangeKeepsPlace(bool keeps)
{
    m_internals->channelChangeKeepsPlace = keeps;
}

void AudioPlayerWidget::SetSelectionChangeKeepsPlace(bool keeps)
{
    m_internals->selectionChangeKeepsPlace = keeps;
}

void AudioPlayerWidget::SetDeviceChangeKeepsPlace(bool keeps)
{
    m_internals->deviceChangeKeepsPlace = keeps;
}

void AudioPlayerWidget::SetScrollBackToZoomOut(bool scrollBackToZoomOut)
{
    m_waveformWidget->SetScrollBackToZoomOut(scrollBackToZoomOut);
}

} // namespace vantoraudio::vantorAudioEngine::UI
