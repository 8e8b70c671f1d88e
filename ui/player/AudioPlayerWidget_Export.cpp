#include "ui/player/Background.h"
#include "ui/player/Controls.h"
#include "ui/player/ForgottenFuture.h"
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
namespace {

using Result = WavFile::AudioEngineReturnValue;
using Work = FileTasks<Result>::Work;

// The header of an output states its full size, so that one which ended half-way would pass for whole.

/** Also what a failure leaves is removed: the next filtering would take it for the channel. */
Work FilterInto(const QString& path)
{
    return [path](WorkingFile& working, const std::atomic<bool>& isStopped) {
        const bool isNew = !QFile::exists(path);
        const Result result = working.file.FilterChannel(path);
        if (isNew && (isStopped || result != WavFile::Success) && QFile::exists(path)) {
            QFile::remove(path);
        }
        return result;
    };
}

/** What a failure leaves stays: it may be a file that was not to be touched. */
Work WriteSnippet(const QString& path, const Selection& range)
{
    return [=](WorkingFile& working, const std::atomic<bool>& isStopped) {
        WavFile& file = working.file;
        // Of a closed file only a header would be written, over what is there.
        const Result result =
            file.isOpen() ? file.CreateSnippet(path, range.start, range.end) : WavFile::ErrorCreateSnippet;
        if (isStopped && result == WavFile::Success) {
            QFile::remove(path);
        }
        return result;
    };
}

} // namespace

void AudioPlayerWidget::FillChannelSelector()
{
    QComboBox* selector = m_controls->cmbboxChannelSelector;
    const QSignalBlocker blocker(selector);
    const auto add = [selector](const QString& text, WavFile::ChannelFormat channel) {
        selector->addItem(text, QVariant::fromValue(channel));
    };
    selector->clear();
    if (File().GetFileFormat().channelCount() != 2) {
        File().SetSelectedChannel(WavFile::ChannelMono);
        add(tr("Mono"), WavFile::ChannelMono);
        return;
    }
    File().SetSelectedChannel(WavFile::ChannelLeftRight);
    add(tr("Channel L + R"), WavFile::ChannelLeftRight);
    add(tr("Channel L"), WavFile::ChannelLeft);
    add(tr("Channel R"), WavFile::ChannelRight);
}

WavFile::ChannelFormat AudioPlayerWidget::GetSelectedChannel() const
{
    return File().GetSelectedChannel();
}

void AudioPlayerWidget::SetSelectedChannel(WavFile::ChannelFormat channel)
{
    QComboBox* selector = m_controls->cmbboxChannelSelector;
    const int index = selector->findData(QVariant::fromValue(channel), Qt::UserRole, Qt::MatchExactly);
    if (index >= 0 && index != selector->currentIndex()) {
        selector->setCurrentIndex(index);
    }
}

void AudioPlayerWidget::OnCmbboxChannelSelectorCurrentIndexChanged(int /*index*/)
{
    const auto channel = m_controls->cmbboxChannelSelector->currentData().value<WavFile::ChannelFormat>();
    m_previousChannel = File().GetSelectedChannel();
    // Of a closed file only a header would be written, which the next filtering would take for the channel.
    if (channel == m_previousChannel || !File().isOpen()) {
        return;
    }
    m_background->samples.Stop();
    DropFiltering();
    m_isGoingBack = false;
    File().SetSelectedChannel(channel);
    m_filteredFilePath = FilteredPathOf(channel);
    m_channelFilterWatcher.setFuture(
        m_background->channelFilter.Start(m_background->workingFile, FilterInto(m_filteredFilePath)));
    SetBusy(true);
}

/** Only the latest filtering counts, and only while its file is open. */
void AudioPlayerWidget::DropFiltering()
{
    m_background->channelFilter.Stop();
    Forget(m_channelFilterWatcher);
    Progress().Forget(WorkingFile::ChannelFilterEnded);
    ++m_filteringCount;
}

QString AudioPlayerWidget::FilteredPathOf(WavFile::ChannelFormat channel) const
{
    const QFileInfo file(File().fileName());
    const bool isStereo = File().GetFileFormat().channelCount() == 2;
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
    const int filtering = m_filteringCount;
    const QPointer<AudioPlayerWidget> self(this);
    SetBusy(false);
    if (!self || filtering != m_filteringCount) {
        // Upon that signal the program destroyed this widget, or chose another channel or file.
        return;
    }
    if (result == WavFile::Success && QFile::exists(m_filteredFilePath)) {
        PlayFilteredFile();
        return;
    }
    m_filteredFilePath.clear();
    GoBackToPreviousChannel();
    ErrorHandler(result);
}

void AudioPlayerWidget::PlayFilteredFile()
{
    StopPlayback();
    const auto [start, end] = m_waveformWidget->GetSelectedSnippet();
    const double duration = File().GetDuration();
    ShowWaveform(duration);
    m_waveformWidget->SetSelectedSnippet({start, end});
    m_audioPlayer->SetAudio(m_filteredFilePath, duration);
    if (LengthOf({start, end}) > shortestSelection) {
        m_audioPlayer->SetSelection(start, end);
    }
}

/** Filters for the previous channel, which is chosen as a user would choose it. When that fails as well, the box
 *  stays where it is: going back from there would never end. */
void AudioPlayerWidget::GoBackToPreviousChannel()
{
    if (!m_isGoingBack) {
        SetSelectedChannel(m_previousChannel);
        m_isGoingBack = true;
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
    Forget(m_snippetWatcher);
    Progress().Forget(WorkingFile::SnippetEnded);
    m_snippetWatcher.setFuture(
        m_background->snippet.Start(m_background->workingFile, WriteSnippet(filePath, {start, end})));
    SetBusy(true);
}

void AudioPlayerWidget::CancelSnippet()
{
    if (!m_snippetWatcher.isRunning()) {
        return;
    }
    m_background->snippet.Stop();
    Forget(m_snippetWatcher);
    const QPointer<AudioPlayerWidget> self(this);
    Progress().PassOnAll();
    if (self) {
        SetBusy(m_channelFilterWatcher.isRunning());
    }
}

void AudioPlayerWidget::OnSnippetCreateFinished(int index)
{
    // All of it ahead of the signal, upon which a program may start its next snippet.
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
