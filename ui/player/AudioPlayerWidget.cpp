#include "engine/files/Leftovers.h"
#include "ui/player/FileCopy.h"
#include "ui/player/FlexibleSizes.h"
#include "ui/player/GuardedSignalBlocker.h"
#include "ui/player/Internals.h"
#include "ui/player/TimeText.h"

#include <vantorAudioEngine/AudioPlayer.h>
#include <vantorAudioEngine/AudioPlayerWidget.h>
#include <vantorAudioEngine/BGFXWaveformWidget.h>
#include <vantorAudioEngine/Decoder.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QPointer>
#include <QtCore/QSignalBlocker>
#include <QtGui/QRegularExpressionValidator>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QFrame>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>

#include <algorithm>
#include <cmath>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace vantoraudio::vantorAudioEngine::UI {
namespace {

constexpr int decodedSampleRate = 96000;

/** Everything after the first dot counts, and its case, so that take.WAV and a.b.wav are decoded, too. */
bool IsWavName(const QString& path)
{
    return QFileInfo(path).completeSuffix() == u"wav"_s;
}

} // namespace

AudioPlayerWidget::AudioPlayerWidget(QWidget* parent)
    : QWidget(parent), m_internals(std::make_unique<Internals>(*this))
{
    SetupUi();
    ConnectSignals();
    setFocusPolicy(Qt::StrongFocus);
}

AudioPlayerWidget::~AudioPlayerWidget()
{
    // They go after this part of the object and tell of what ends with them, such as the editing of a field.
    const QList<QObject*> children = findChildren<QObject*>();
    for (QObject* child : children) {
        child->disconnect(this);
    }
    if (m_internals->positionReports > 0) {
        // Qt 6.8 goes on with a player after it has reported a position.
        m_audioPlayer->setParent(nullptr);
        m_audioPlayer->deleteLater();
    }
    for (QWidget* control : std::as_const(m_internals->telling)) {
        control->setParent(nullptr);
        control->deleteLater();
    }
}

void AudioPlayerWidget::SetAudioFile(const QString& filePath)
{
    if (filePath.isEmpty()) {
        Reset();
        return;
    }
    // A receiver of the signals may change or delete what the caller keeps.
    const QString path = filePath; // NOLINT(performance-unnecessary-copy-initialization)
    const QPointer<AudioPlayerWidget> self(this);
    CancelLoad();
    if (!self) {
        return;
    }
    // Decoding runs an event loop, in which this widget may be destroyed.
    const GuardedSignalBlocker blocker(m_internals->controls.edTotalDuration);
    const QString workingPath = m_internals->WorkingPathOf(path);
    AudioEngine::RemoveLeftovers(m_writableDirectoryPath);
    if (!ProvideCopy(path, workingPath)) {
        // The code of a header that cannot be written stands for every failed copy; hosts know it as that.
        ErrorHandler(WavFile::ErrorWriteHeader);
        return;
    }
    m_originalAudioFilePath = path;
    if (m_internals->loaded.File().fileName() != workingPath && !m_internals->Empty()) {
        return;
    }
    if (m_internals->loaded.File().isOpen() || workingPath.isEmpty()) {
        return;
    }
    const int load = ++m_internals->loadCount;
    const WavFile::AudioEngineReturnValue result =
        IsWavName(path) ? WavFile::Success : m_internals->Decode(path, workingPath);
    if (!self || load != m_internals->loadCount) {
        return;
    }
    m_internals->OpenWorkingFile(result, workingPath);
}

WavFile::AudioEngineReturnValue AudioPlayerWidget::Internals::Decode(const QString& path,
                                                                     const QString& workingPath) const
{
    return decodesToFloat ? Decoder::ConvertToFloat(path, workingPath, decodedSampleRate)
                          : Decoder::Convert(path, workingPath, decodedSampleRate);
}

void AudioPlayerWidget::Internals::OpenWorkingFile(WavFile::AudioEngineReturnValue resultSoFar,
                                                   const QString& workingPath)
{
    loaded.File().SetLargeFiles(false);
    ++fileCount;
    const WavFile::AudioEngineReturnValue result =
        resultSoFar == WavFile::Success ? loaded.Open(workingPath) : resultSoFar;
    if (result == WavFile::Success) {
        // Kept until the player has left it.
        const WorkingCopy former = std::exchange(loaded.copy, WorkingCopy());
        static_cast<void>(ShowLoadedFile(workingPath));
        return;
    }
    // A file with a bad header stays open; kept so, it would count as loaded when it is loaded again.
    loaded.File().close();
    widget.ErrorHandler(result);
}

/** False when a receiver of the signals has destroyed the widget or opened or closed a file before all was shown.
 */
bool AudioPlayerWidget::Internals::ShowLoadedFile(const QString& workingPath)
{
    widget.EnableAudioControls(true);
    FillChannelSelector();
    if (auto* sizes = widget.findChild<FlexibleSizes*>()) {
        // The box may be wider now.
        sizes->BreakRows();
    }
    const double duration = loaded.File().GetDuration();
    const SameFile isSame(*this);
    ShowWaveform(duration);
    if (isSame) {
        const auto [start, end] = widget.GetSelectedSnippet();
        SetPlayedFile(workingPath, {start, end});
    }
    if (!isSame) {
        return false;
    }
    controls.edTotalDuration->setText(AudioPlayerWidget::ConvertToDisplayTimeFormat(duration));
    Q_EMIT widget.AudioFileChanged(workingPath);
    return true;
}

void AudioPlayerWidget::Internals::ShowWaveform(double duration)
{
    const SameFile isSame(*this);
    if (widget.m_waveformWidget->GetDelay() != 0.0) {
        // Otherwise the samples would be asked for as sparsely as the former silence needs, and drawn as densely
        // as the file without it.
        widget.m_waveformWidget->SetDelay(0.0);
    }
    if (isSame) {
        widget.m_waveformWidget->Initilize(loaded.File().GetFileFormat(), duration);
    }
}

/** The copy keeps the caller's file name also when it is decoded: a name in .mp3 then holds WAV data, and loading
 *  the same file again finds its copy. */
QString AudioPlayerWidget::Internals::WorkingPathOf(const QString& path) const
{
    return QDir(widget.m_writableDirectoryPath).path() + u'/' + QFileInfo(path).fileName();
}

void AudioPlayerWidget::Reset()
{
    static_cast<void>(m_internals->Empty());
}

/** False when a receiver of the signals has destroyed the widget or loads another file, which must stay. */
bool AudioPlayerWidget::Internals::Empty()
{
    const QPointer<AudioPlayerWidget> self(&widget);
    const int file = fileCount;
    const int load = loadCount;
    widget.StopPlayback();
    if (!self || (loaded.File().isOpen() && fileCount != file) || (loading && loadCount != load)) {
        return false;
    }
    widget.Close();
    if (!self || loaded.File().isOpen()) {
        return false;
    }
    widget.EnableAudioControls(false);
    widget.m_waveformWidget->Reset();
    if (!self || loaded.File().isOpen()) {
        return false;
    }
    const QSignalBlocker blocker(controls.edTotalDuration);
    // With a comma, although times are shown with a point: hosts tell an empty player by this text.
    controls.edTotalDuration->setText(u"00:00:00,000"_s);
    return !loading;
}

void AudioPlayerWidget::Close()
{
    ++m_internals->loadCount;
    const QString loadingPath = m_internals->DropLoad();
    m_internals->loaded.StopReading();
    m_internals->DropFiltering();
    m_internals->playableCopy.reset();
    // A snippet that was written whole is still announced.
    if (m_snippetWatcher.isRunning() && m_internals->loaded.CancelSnippet()) {
        m_internals->ForgetSnippet();
    }
    m_internals->loaded.snippet.Stop();
    m_internals->loaded.File().close();
    ++m_internals->fileCount;
    const QPointer<AudioPlayerWidget> self(this);
    if (m_busy && m_internals->TellAllReports()) {
        SetBusy(m_channelFilterWatcher.isRunning());
    }
    if (self && !loadingPath.isEmpty()) {
        Q_EMIT LoadCancelled(loadingPath);
    }
}

bool AudioPlayerWidget::Convert(const QString& path, const QAudioFormat& format)
{
    WavFile file;
    // What cannot be opened cannot be converted either, so that the one result tells of both.
    file.Open(path);
    return file.Convert(format, QString());
}

double AudioPlayerWidget::GetAudioDuration() const
{
    return m_internals->loaded.File().isOpen() ? m_internals->loaded.File().GetDuration() : 0.0;
}

QAudioFormat AudioPlayerWidget::GetAudioFileFormat() const
{
    return m_internals->loaded.File().GetFileFormat();
}

QString AudioPlayerWidget::GetAudioFileName() const
{
    return m_internals->loaded.File().isOpen() ? m_internals->loaded.File().fileName() : QString();
}

QString AudioPlayerWidget::GetOriginalAudioFilePath() const
{
    return m_originalAudioFilePath;
}

QString AudioPlayerWidget::GetWritableDirectoryPath() const
{
    return m_writableDirectoryPath;
}

void AudioPlayerWidget::SetWritableDirectoryPath(const QString& path)
{
    m_writableDirectoryPath = path;
}

bool AudioPlayerWidget::GetDecodeToFloat() const
{
    return m_internals->decodesToFloat;
}

void AudioPlayerWidget::SetDecodeToFloat(bool decodeToFloat)
{
    m_internals->decodesToFloat = decodeToFloat;
}

bool AudioPlayerWidget::IsBusy() const
{
    return m_busy;
}

bool AudioPlayerWidget::IsReadingSamples() const
{
    return m_samplesWatcher.isRunning() || m_internals->loaded.Progress().Holds(WorkingFile::NewSamples) ||
           m_internals->loaded.Progress().Holds(WorkingFile::ReadingEnded);
}

std::pair<double, double> AudioPlayerWidget::GetVisibleRange() const
{
    return m_waveformWidget->GetVisibleRange();
}

void AudioPlayerWidget::ShowRange(double start, double end)
{
    if (!std::isfinite(start) || !std::isfinite(end)) {
        return;
    }
    const double length = GetAudioDuration() + GetDelay();
    const double left = std::max(0.0, std::min(start, end));
    const double right = std::min(length, std::max(start, end));
    if (left < right) {
        m_waveformWidget->OnSceneRectChangeRequested(QRectF(left, 0.0, right - left, 1.0));
    }
}

double AudioPlayerWidget::GetDelay() const
{
    return m_waveformWidget->GetDelay();
}

void AudioPlayerWidget::SetDelay(double delay)
{
    m_waveformWidget->SetDelay(delay);
}

void AudioPlayerWidget::SetEditMode(bool isEditing)
{
    QFrame* const frame = m_internals->controls.frmEditingControls;
    QWidget* const focused = isEditing ? nullptr : Internals::FocusedIn({frame});
    if (focused) {
        // What is hidden loses the focus, of which a field tells, and Qt goes on with what it hides: the field
        // tells before. Hiding then gives the focus to the next control.
        const QPointer<AudioPlayerWidget> self(this);
        focused->clearFocus();
        if (!self) {
            return;
        }
        focused->setFocus();
    }
    const QSignalBlocker noEcho(focused);
    m_waveformWidget->SetEditMode(isEditing);
    frame->setVisible(isEditing);
}

void AudioPlayerWidget::SetHint(const QString& text)
{
    m_internals->controls.lblAudioPlayerHint->setText(text);
    m_internals->controls.frmAudioPlayerHint->setVisible(!text.isEmpty());
}

void AudioPlayerWidget::ErrorHandler(WavFile::AudioEngineReturnValue /*error*/)
{
    // Left to the program: this widget shows no messages of its own.
}

void AudioPlayerWidget::GetSamples(double startTime, double endTime, int stepSize)
{
    m_samplesWatcher.setFuture(m_internals->loaded.Read(startTime, endTime, stepSize));
}

void AudioPlayerWidget::OnNewSamples()
{
    m_waveformWidget->UpdateAudioSampleBuffer(m_internals->loaded.File().GetSamples());
}

/** Every task of the pool gives one result. */
void AudioPlayerWidget::Internals::OnNote(int note)
{
    constexpr int onlyResult = 0;
    switch (note) {
    case WorkingFile::NewSamples:
        widget.OnNewSamples();
        break;
    case WorkingFile::SnippetEnded:
        widget.OnSnippetCreateFinished(onlyResult);
        break;
    case WorkingFile::ChannelFilterEnded:
        widget.OnChannelSelectionFinished(onlyResult);
        break;
    default:
        break;
    }
}

void AudioPlayerWidget::OnProgressChanged(int progress, int min, int max, const QString& text)
{
    Q_EMIT ProgressChanged(progress, min, max, text);
}

/** The argument governs the play button alone: editing a file is possible whether or not it can be played. */
void AudioPlayerWidget::EnableAudioControls(bool canPlay)
{
    const bool canEdit = m_waveformWidget->GetEditMode();
    m_internals->controls.btnPlayPause->setEnabled(canPlay);
    m_internals->controls.cmbboxChannelSelector->setEnabled(canEdit);
    m_internals->controls.frmSelectionStart->setEnabled(canEdit);
    m_internals->controls.frmSelectionEnd->setEnabled(canEdit);
}

/** Playing stays possible. The end of a busy time enables the controls also outside edit mode, where they are
 *  hidden. */
void AudioPlayerWidget::SetBusy(bool busy)
{
    // A receiver of the signals may destroy the widget, or begin or end a busy time of its own.
    const QPointer<AudioPlayerWidget> self(this);
    m_busy = busy;
    const int change = ++m_internals->busyCount;
    const auto isLatest = [&] { return self && m_internals->busyCount == change; };
    const bool waveformHasFocus = window()->focusWidget() == m_waveformWidget;
    m_waveformWidget->setEnabled(!busy);
    m_internals->controls.btnLoadFile->setEnabled(!busy);
    const auto& controls = m_internals->controls;
    QWidget* const focused =
        busy ? Internals::FocusedIn({controls.frmSelectionStart, controls.frmSelectionEnd}) : nullptr;
    if (focused) {
        // A field tells of its text when it loses the focus, and Qt goes on with a frame that takes it away.
        focused->clearFocus();
    }
    if (!isLatest()) {
        return;
    }
    controls.frmSelectionStart->setEnabled(!busy);
    controls.frmSelectionEnd->setEnabled(!busy);
    controls.cmbboxChannelSelector->setEnabled(!busy);
    if (busy && waveformHasFocus) {
        m_internals->awaitsFocus = true;
        m_internals->focusStandIn = window()->focusWidget();
    } else if (!busy) {
        m_internals->TakeFocusBack();
    }
    if (isLatest()) {
        Q_EMIT BusyChanged(busy);
    }
}

/** The control with the focus if it is in one of the frames, otherwise null. */
QWidget* AudioPlayerWidget::Internals::FocusedIn(std::initializer_list<const QFrame*> frames)
{
    for (const QFrame* frame : frames) {
        QWidget* const focused = frame->window()->focusWidget();
        if (focused && frame->isAncestorOf(focused)) {
            return focused;
        }
    }
    return nullptr;
}

/** Unless the user or the program has moved it on. */
void AudioPlayerWidget::Internals::TakeFocusBack()
{
    QWidget* const focused = widget.window()->focusWidget();
    if (!std::exchange(awaitsFocus, false) || focused != focusStandIn) {
        return;
    }
    if (focused) {
        // A field tells of its text then, and a receiver may destroy the widget.
        const QPointer<AudioPlayerWidget> self(&widget);
        focused->clearFocus();
        if (!self) {
            return;
        }
    }
    widget.m_waveformWidget->setFocus();
}

} // namespace vantoraudio::vantorAudioEngine::UI
