#include "engine/files/RegularFile.h"
#include "ui/player/Background.h"
#include "ui/player/Controls.h"
#include "ui/player/ForgottenFuture.h"
#include "ui/player/GuardedSignalBlocker.h"
#include "ui/player/TimeText.h"

#include <vantorAudioEngine/AudioPlayer.h>
#include <vantorAudioEngine/AudioPlayerWidget.h>
#include <vantorAudioEngine/BGFXWaveformWidget.h>
#include <vantorAudioEngine/Decoder.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QPointer>
#include <QtGui/QRegularExpressionValidator>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QFrame>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>

#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace vantoraudio::vantorAudioEngine::UI {
namespace {

constexpr int decodedSampleRate = 96000;

/** A copy that is there already is used as it is, whatever the file has become since. */
bool ProvideWorkingCopy(const QString& path, const QString& workingPath)
{
    if (QFile::exists(workingPath)) {
        return true;
    }
    if (!AudioEngine::IsRegularFile(path) || !QFile::copy(path, workingPath)) {
        return false;
    }
    // The copy of a read-only file is read-only as well, and could not be decoded over.
    QFile::setPermissions(workingPath, QFile::permissions(workingPath) | QFile::WriteOwner);
    return true;
}

/** Everything after the first dot counts, and its case, so that take.WAV and a.b.wav are decoded, too. */
bool IsWavName(const QString& path)
{
    return QFileInfo(path).completeSuffix() == u"wav"_s;
}

} // namespace

AudioPlayerWidget::AudioPlayerWidget(QWidget* parent)
    : QWidget(parent), m_controls(std::make_unique<Controls>()), m_background(std::make_unique<Background>())
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
}

void AudioPlayerWidget::SetAudioFile(const QString& path)
{
    if (path.isEmpty()) {
        Reset();
        return;
    }
    const QPointer<AudioPlayerWidget> self(this);
    CancelLoad();
    if (!self) {
        return;
    }
    // Decoding runs an event loop, in which this widget may be destroyed.
    const GuardedSignalBlocker blocker(m_controls->edTotalDuration);
    const QString workingPath = WorkingPathOf(path);
    if (!ProvideWorkingCopy(path, workingPath)) {
        // The code of a header that cannot be written stands for every failed copy; hosts know it as that.
        ErrorHandler(WavFile::ErrorWriteHeader);
        return;
    }
    m_originalAudioFilePath = path;
    if (File().fileName() != workingPath) {
        Reset();
    }
    if (!self || File().isOpen() || workingPath.isEmpty()) {
        return;
    }
    const int load = ++m_loadCount;
    const WavFile::AudioEngineReturnValue result = IsWavName(path) ? WavFile::Success : Decode(path, workingPath);
    if (!self || load != m_loadCount) {
        return;
    }
    OpenWorkingFile(result, workingPath);
}

WavFile::AudioEngineReturnValue AudioPlayerWidget::Decode(const QString& path, const QString& workingPath) const
{
    return m_decodesToFloat ? Decoder::ConvertToFloat(path, workingPath, decodedSampleRate)
                            : Decoder::Convert(path, workingPath, decodedSampleRate);
}

void AudioPlayerWidget::OpenWorkingFile(WavFile::AudioEngineReturnValue resultSoFar, const QString& workingPath)
{
    File().SetLargeFiles(false);
    const WavFile::AudioEngineReturnValue result =
        resultSoFar == WavFile::Success ? File().Open(workingPath) : resultSoFar;
    if (result == WavFile::Success) {
        // Kept until the player has left it.
        const WorkingCopy former = std::exchange(m_background->copy, WorkingCopy());
        ShowLoadedFile(workingPath);
        return;
    }
    // A file with a bad header stays open; kept so, it would count as loaded when it is loaded again.
    File().close();
    ErrorHandler(result);
}

void AudioPlayerWidget::ShowLoadedFile(const QString& workingPath)
{
    EnableAudioControls(true);
    FillChannelSelector();
    const double duration = File().GetDuration();
    ShowWaveform(duration);
    m_audioPlayer->SetAudio(workingPath, duration);
    m_controls->edTotalDuration->setText(ConvertToDisplayTimeFormat(duration));
    Q_EMIT AudioFileChanged(workingPath);
}

void AudioPlayerWidget::ShowWaveform(double duration)
{
    if (m_waveformWidget->GetDelay() != 0.0) {
        // Otherwise the samples would be asked for as sparsely as the former silence needs, and drawn as densely
        // as the file without it.
        m_waveformWidget->SetDelay(0.0);
    }
    m_waveformWidget->Initilize(File().GetFileFormat(), duration);
}

/** The copy keeps the caller's file name also when it is decoded: a name in .mp3 then holds WAV data, and loading
 *  the same file again finds its copy. */
QString AudioPlayerWidget::WorkingPathOf(const QString& path) const
{
    return QDir(m_writableDirectoryPath).path() + u'/' + QFileInfo(path).fileName();
}

void AudioPlayerWidget::Reset()
{
    const QPointer<AudioPlayerWidget> self(this);
    StopPlayback();
    Close();
    if (!self || File().isOpen()) {
        // When the program heard of the end of the busy time it destroyed this widget, or loaded another file,
        // which is to be seen.
        return;
    }
    EnableAudioControls(false);
    m_waveformWidget->Reset();
    // With a comma, although times are shown with a point: hosts tell an empty player by this text.
    m_controls->edTotalDuration->setText(u"00:00:00,000"_s);
}

void AudioPlayerWidget::Close()
{
    ++m_loadCount;
    const QString loadingPath = DropLoad();
    m_background->samples.Stop();
    DropFiltering();
    const bool isWriting = m_snippetWatcher.isRunning();
    m_background->snippet.Stop();
    File().close();
    ForgetReading();
    // A snippet that was written whole is still announced.
    if (isWriting) {
        Forget(m_snippetWatcher);
    }
    const QPointer<AudioPlayerWidget> self(this);
    if (m_busy) {
        Progress().PassOnAll();
    }
    if (self && m_busy) {
        SetBusy(false);
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
    return File().isOpen() ? File().GetDuration() : 0.0;
}

QAudioFormat AudioPlayerWidget::GetAudioFileFormat() const
{
    return File().GetFileFormat();
}

QString AudioPlayerWidget::GetAudioFileName() const
{
    return File().isOpen() ? File().fileName() : QString();
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
    return m_decodesToFloat;
}

void AudioPlayerWidget::SetDecodeToFloat(bool decodeToFloat)
{
    m_decodesToFloat = decodeToFloat;
}

bool AudioPlayerWidget::IsBusy() const
{
    return m_busy;
}

bool AudioPlayerWidget::IsReadingSamples() const
{
    return m_samplesWatcher.isRunning() || Progress().Holds(WorkingFile::NewSamples) ||
           Progress().Holds(WorkingFile::ReadingEnded);
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
    m_waveformWidget->SetEditMode(isEditing);
    m_controls->frmEditingControls->setVisible(isEditing);
}

void AudioPlayerWidget::SetHint(const QString& text)
{
    m_controls->lblAudioPlayerHint->setText(text);
    m_controls->frmAudioPlayerHint->setVisible(!text.isEmpty());
}

void AudioPlayerWidget::ErrorHandler(WavFile::AudioEngineReturnValue /*error*/)
{
    // Left to the program: this widget shows no messages of its own.
}

void AudioPlayerWidget::GetSamples(double startTime, double endTime, int stepSize)
{
    m_background->samples.Stop();
    ForgetReading();
    const auto read = [=](WorkingFile& file, const auto&) {
        file.file.ReadData(startTime, endTime, stepSize);
        file.progress.Leave(WorkingFile::ReadingEnded);
    };
    m_samplesWatcher.setFuture(m_background->samples.Start(m_background->workingFile, read));
}

/** The news of samples may still be on its way when others are asked for. */
void AudioPlayerWidget::ForgetReading()
{
    Progress().Forget(WorkingFile::NewSamples);
    Progress().Forget(WorkingFile::ReadingEnded);
}

void AudioPlayerWidget::OnNewSamples()
{
    m_waveformWidget->UpdateAudioSampleBuffer(File().GetSamples());
}

/** Every task of the pool gives one result. */
void AudioPlayerWidget::OnNote(int note)
{
    constexpr int onlyResult = 0;
    switch (note) {
    case WorkingFile::NewSamples:
        OnNewSamples();
        break;
    case WorkingFile::SnippetEnded:
        OnSnippetCreateFinished(onlyResult);
        break;
    case WorkingFile::ChannelFilterEnded:
        OnChannelSelectionFinished(onlyResult);
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
    m_controls->btnPlayPause->setEnabled(canPlay);
    m_controls->cmbboxChannelSelector->setEnabled(canEdit);
    m_controls->frmSelectionStart->setEnabled(canEdit);
    m_controls->frmSelectionEnd->setEnabled(canEdit);
}

/** Playing stays possible. The end of a busy time enables the controls also outside edit mode, where they are
 *  hidden. */
void AudioPlayerWidget::SetBusy(bool busy)
{
    m_busy = busy;
    m_waveformWidget->setEnabled(!busy);
    m_controls->btnLoadFile->setEnabled(!busy);
    m_controls->frmSelectionStart->setEnabled(!busy);
    m_controls->frmSelectionEnd->setEnabled(!busy);
    m_controls->cmbboxChannelSelector->setEnabled(!busy);
    Q_EMIT BusyChanged(busy);
}

WavFile& AudioPlayerWidget::File() const
{
    return m_background->workingFile->file;
}

ProgressQueue& AudioPlayerWidget::Progress() const
{
    return m_background->workingFile->progress;
}

} // namespace vantoraudio::vantorAudioEngine::UI
