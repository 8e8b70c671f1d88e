#include "ui/player/Internals.h"
#include "ui/player/SelectionSteps.h"

#include <vantorAudioEngine/AudioPlayer.h>
#include <vantorAudioEngine/AudioPlayerWidget.h>
#include <vantorAudioEngine/BGFXWaveformWidget.h>

#include <QtCore/QFileInfo>
#include <QtCore/QPointer>
#include <QtCore/QSignalBlocker>
#include <QtWidgets/QComboBox>

using namespace Qt::Literals::StringLiterals;

namespace vantoraudio::vantorAudioEngine::UI {

using Result = WavFile::AudioEngineReturnValue;

void AudioPlayerWidget::Internals::FillChannelSelector()
{
    QComboBox* selector = controls.cmbboxChannelSelector;
    const QSignalBlocker blocker(selector);
    const auto add = [selector](const QString& text, WavFile::ChannelFormat channel) {
        selector->addItem(text, QVariant::fromValue(channel));
    };
    selector->clear();
    if (loaded.File().GetFileFormat().channelCount() != 2) {
        loaded.File().SetSelectedChannel(WavFile::ChannelMono);
        add(AudioPlayerWidget::tr("Mono"), WavFile::ChannelMono);
        return;
    }
    loaded.File().SetSelectedChannel(WavFile::ChannelLeftRight);
    add(AudioPlayerWidget::tr("Channel L + R"), WavFile::ChannelLeftRight);
    add(AudioPlayerWidget::tr("Channel L"), WavFile::ChannelLeft);
    add(AudioPlayerWidget::tr("Channel R"), WavFile::ChannelRight);
}

WavFile::ChannelFormat AudioPlayerWidget::GetSelectedChannel() const
{
    return m_internals->loaded.File().GetSelectedChannel();
}

void AudioPlayerWidget::SetSelectedChannel(WavFile::ChannelFormat channel)
{
    QComboBox* selector = m_internals->controls.cmbboxChannelSelector;
    const int index = selector->findData(QVariant::fromValue(channel), Qt::UserRole, Qt::MatchExactly);
    if (index >= 0 && index != selector->currentIndex()) {
        selector->setCurrentIndex(index);
    }
}

void AudioPlayerWidget::OnCmbboxChannelSelectorCurrentIndexChanged(int /*index*/)
{
    const Internals::Telling telling(*this, m_internals->controls.cmbboxChannelSelector);
    const auto channel =
        m_internals->controls.cmbboxChannelSelector->currentData().value<WavFile::ChannelFormat>();
    m_previousChannel = m_internals->loaded.File().GetSelectedChannel();
    if (channel == m_previousChannel) {
        return;
    }
    // Of a closed file only a header would be written, which the next filtering would take for the channel.
    if (!m_internals->loaded.File().isOpen()) {
        m_internals->ShowChannel(m_previousChannel);
        return;
    }
    m_internals->loaded.samples.Stop();
    m_internals->DropFiltering();
    m_internals->isGoingBack = false;
    m_internals->loaded.File().SetSelectedChannel(channel);
    m_filteredFilePath = m_internals->FilteredPathOf(channel);
    m_channelFilterWatcher.setFuture(m_internals->loaded.FilterInto(m_filteredFilePath));
    SetBusy(true);
}

void AudioPlayerWidget::Internals::ShowChannel(WavFile::ChannelFormat channel)
{
    QComboBox* selector = controls.cmbboxChannelSelector;
    const QSignalBlocker blocker(selector);
    selector->setCurrentIndex(selector->findData(QVariant::fromValue(channel), Qt::UserRole, Qt::MatchExactly));
}

/** Only the latest filtering counts, and only while its file is open. */
void AudioPlayerWidget::Internals::DropFiltering()
{
    loaded.channelFilter.Stop();
    Forget(widget.m_channelFilterWatcher);
    loaded.Progress().Forget(WorkingFile::ChannelFilterEnded);
    ++filteringCount;
}

QString AudioPlayerWidget::Internals::FilteredPathOf(WavFile::ChannelFormat channel) const
{
    const QFileInfo file(loaded.File().fileName());
    const bool isStereo = loaded.File().GetFileFormat().channelCount() == 2;
    if (isStereo && channel == WavFile::ChannelLeft) {
        return file.path() + u'/' + file.completeBaseName() + u"_Left."_s + file.suffix();
    }
    if (isStereo && channel == WavFile::ChannelRight) {
        return file.path() + u'/' + file.completeBaseName() + u"_Right."_s + file.suffix();
    }
    return file.path() + u'/' + file.fileName();
}

void AudioPlayerWidget::OnChannelSelectionFinished(int index)
{
    const Result result = m_channelFilterWatcher.resultAt(index);
    const int filtering = m_internals->filteringCount;
    const QPointer<AudioPlayerWidget> self(this);
    SetBusy(false);
    if (!self || filtering != m_internals->filteringCount) {
        // The signal made the program destroy this widget, or choose another channel or file.
        return;
    }
    if (result == WavFile::Success && QFile::exists(m_filteredFilePath)) {
        m_internals->PlayFilteredFile();
        return;
    }
    m_filteredFilePath.clear();
    m_internals->GoBackToPreviousChannel();
    if (self) {
        ErrorHandler(result);
    }
}

void AudioPlayerWidget::Internals::PlayFilteredFile()
{
    const Place place = PlaceOfUser();
    // A receiver of the signals may destroy the widget, or choose another channel or file.
    const QPointer<AudioPlayerWidget> self(&widget);
    const auto isLatest = [&, filtering = filteringCount] { return self && filteringCount == filtering; };
    widget.StopPlayback();
    if (!isLatest()) {
        return;
    }
    const auto [start, end] = widget.m_waveformWidget->GetSelectedSnippet();
    ShowWaveform(loaded.File().GetDuration());
    if (isLatest()) {
        widget.m_waveformWidget->SetSelectedSnippet({start, end});
    }
    if (isLatest()) {
        // The view does not take a selection of less than a millisecond back; the player does.
        SetPlayedFile(widget.m_filteredFilePath, {start, end});
    }
    if (isLatest() && channelChangeKeepsPlace) {
        GoBackTo(place);
    }
}

/** A player that still waits for what it is to play knows nothing of it. */
AudioPlayerWidget::Internals::Place AudioPlayerWidget::Internals::PlaceOfUser() const
{
    const auto range = widget.GetVisibleRange();
    return playsOnWithCopy ? Place{range, widget.m_waveformWidget->GetAudioPosition(), *playsOnWithCopy}
                           : Place{range, widget.GetAudioPosition(), widget.IsPlaying()};
}

void AudioPlayerWidget::Internals::GoBackTo(const Place& place)
{
    const QPointer<AudioPlayerWidget> self(&widget);
    widget.UpdateAudioPosition(place.position);
    if (self) {
        widget.ShowRange(place.visibleRange.first, place.visibleRange.second);
    }
    if (self && AwaitsCopy()) {
        playsOnWithCopy = place.isPlaying;
    } else if (self && place.isPlaying && CanPlayOn()) {
        widget.m_audioPlayer->play();
    }
}

/** Filters for the previous channel, which is chosen as a user would choose it. When that fails too, the box
 *  stays where it is: going back from there would never end. */
void AudioPlayerWidget::Internals::GoBackToPreviousChannel()
{
    if (!isGoingBack) {
        const QPointer<AudioPlayerWidget> self(&widget);
        const int wayBack = filteringCount + 1;
        widget.SetSelectedChannel(widget.m_previousChannel);
        if (self && filteringCount == wayBack) {
            isGoingBack = true;
        }
    }
}

void AudioPlayerWidget::CreateSnippet(const QString& filePath)
{
    // The request is dropped: while the view changes its selection is not settled.
    if (m_samplesWatcher.isRunning()) {
        return;
    }
    m_snippetFilePath = filePath;
    const auto [start, end] = m_waveformWidget->GetSelectedSnippet();
    m_internals->ForgetSnippet();
    m_snippetWatcher.setFuture(m_internals->loaded.WriteSnippet(filePath, {start, end}));
    SetBusy(true);
}

/** Its end, too, which may wait to be told although the task has not quite ended. */
void AudioPlayerWidget::Internals::ForgetSnippet()
{
    Forget(widget.m_snippetWatcher);
    loaded.Progress().Forget(WorkingFile::SnippetEnded);
}

void AudioPlayerWidget::SetKeepBothChannels(bool keep)
{
    m_internals->loaded.File().SetKeepBothChannels(keep);
}

void AudioPlayerWidget::SetKeepPeaks(bool keep)
{
    m_internals->loaded.File().SetKeepPeaks(keep);
}

void AudioPlayerWidget::SetKeepExistingFiles(bool keep)
{
    using Existing = WavFile::ExistingFile;
    m_internals->loaded.File().SetExistingFile(keep ? Existing::Refuse : Existing::Customary);
}

bool AudioPlayerWidget::CancelSnippet()
{
    if (!m_snippetWatcher.isRunning() || !m_internals->loaded.CancelSnippet()) {
        return false;
    }
    m_internals->ForgetSnippet();
    if (m_internals->TellAllReports()) {
        SetBusy(m_channelFilterWatcher.isRunning());
    }
    return true;
}

bool AudioPlayerWidget::Internals::TellAllReports()
{
    // A slot may begin another busy time and end that, too.
    busyCountToEnd = busyCount;
    if (isTellingAll) {
        return false;
    }
    const QPointer<AudioPlayerWidget> self(&widget);
    isTellingAll = true;
    loaded.Progress().PassOnAll();
    if (!self) {
        return false;
    }
    isTellingAll = false;
    return busyCount == busyCountToEnd;
}

void AudioPlayerWidget::OnSnippetCreateFinished(int index)
{
    // All of this before the signal: a program may start its next snippet from there.
    const Result result = m_snippetWatcher.resultAt(index);
    const QString path = m_snippetFilePath;
    const bool isWritten = result == WavFile::Success && QFile::exists(path);
    if (!isWritten) {
        m_snippetFilePath.clear();
    }
    const QPointer<AudioPlayerWidget> self(this);
    SetBusy(false);
    if (!self) {
        return;
    }
    if (isWritten) {
        Q_EMIT CreateSnippetFinished(path);
    } else {
        ErrorHandler(result);
    }
}

} // namespace vantoraudio::vantorAudioEngine::UI
