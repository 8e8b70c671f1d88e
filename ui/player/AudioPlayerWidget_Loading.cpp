#include "ui/player/Background.h"
#include "ui/player/Controls.h"
#include "ui/player/GuardedSignalBlocker.h"

#include <vantorAudioEngine/AudioImporter.h>
#include <vantorAudioEngine/AudioPlayerWidget.h>

#include <QtCore/QPointer>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QLineEdit>

#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace vantoraudio::vantorAudioEngine::UI {

using AudioEngine::AudioFileInfo;
using AudioEngine::ImportResult;
using Problem = AudioFileInfo::Problem;

void AudioPlayerWidget::LoadFile(const QString& path)
{
    if (path.isEmpty()) {
        Reset();
        return;
    }
    const int load = ++m_loadCount;
    const QPointer<AudioPlayerWidget> self(this);
    DropLoadAndTell();
    if (!self || load != m_loadCount) {
        // Upon that signal the program destroyed this widget, or loaded another file.
        return;
    }
    m_background->load = std::make_unique<FileLoad>(path, m_writableDirectoryPath, m_background->copy);
    const QPointer<FileLoad> started = m_background->load.get();
    connect(started, &FileLoad::Progressed, this,
            [this](int permille) { Q_EMIT ProgressChanged(permille, 0, 1000, tr("Loading...")); });
    connect(started, &FileLoad::Ended, this, &AudioPlayerWidget::OnLoadEnded);
    Q_EMIT LoadStarted(path);
    if (started) {
        started->Start();
    }
}

void AudioPlayerWidget::CancelLoad()
{
    ++m_loadCount;
    DropLoadAndTell();
}

void AudioPlayerWidget::DropLoadAndTell()
{
    const QString path = DropLoad();
    if (!path.isEmpty()) {
        Q_EMIT LoadCancelled(path);
    }
}

/** The path of the load that is given up, which is heard of no more; empty without one. */
QString AudioPlayerWidget::DropLoad()
{
    const std::unique_ptr<FileLoad> load = std::move(m_background->load);
    return load ? load->GetPath() : QString();
}

bool AudioPlayerWidget::IsLoading() const
{
    return m_background->load != nullptr;
}

void AudioPlayerWidget::OnLoadEnded()
{
    const std::unique_ptr<FileLoad> load = std::move(m_background->load);
    const Problem problem = load->GetProblem();
    if (problem != Problem::None) {
        FailLoad(load->GetPath(), problem, ImportResult{.problem = problem}.Code());
    } else if (File().isOpen() && File().fileName() == load->GetCopy().path) {
        Q_EMIT LoadFinished(load->GetPath());
    } else {
        ShowCopy(load->GetPath(), load->GetCopy());
    }
}

void AudioPlayerWidget::FailLoad(const QString& path, Problem problem, WavFile::AudioEngineReturnValue code)
{
    const QPointer<AudioPlayerWidget> self(this);
    ErrorHandler(code);
    if (self) {
        Q_EMIT LoadFailed(path, problem, AudioFileInfo::TextOf(problem, path));
    }
}

void AudioPlayerWidget::ShowCopy(const QString& path, const WorkingCopy& copy)
{
    const GuardedSignalBlocker blocker(m_controls->edTotalDuration);
    const QPointer<AudioPlayerWidget> self(this);
    const int closing = m_loadCount + 1;
    Reset();
    if (self && m_loadCount != closing) {
        // When the program heard of the end of the busy time it cancelled, closed or loaded another file.
        Q_EMIT LoadCancelled(path);
    } else if (self) {
        OpenCopy(path, copy);
    }
}

void AudioPlayerWidget::OpenCopy(const QString& path, const WorkingCopy& copy)
{
    File().SetLargeFiles(true);
    const WavFile::AudioEngineReturnValue result = File().Open(copy.path);
    if (result != WavFile::Success) {
        File().close();
        FailLoad(path, Problem::CannotBeRead, result);
        return;
    }
    // Kept until the player has left it.
    const WorkingCopy former = std::exchange(m_background->copy, copy);
    m_originalAudioFilePath = path;
    const QPointer<AudioPlayerWidget> self(this);
    ShowLoadedFile(copy.path);
    if (self) {
        Q_EMIT LoadFinished(path);
    }
}

bool AudioPlayerWidget::GetLoadInBackground() const
{
    return m_loadsInBackground;
}

void AudioPlayerWidget::SetLoadInBackground(bool loadInBackground)
{
    m_loadsInBackground = loadInBackground;
}

QString AudioPlayerWidget::GetLoadableFiles()
{
    return tr("Audio files") +
           u" (*.wav *.mp3 *.flac *.ogg *.oga *.opus *.m4a *.m4b *.aac *.mp4 *.wma *.aif *.aiff *.aifc *.au *.caf "
           "*.rf64 *.w64 *.wv *.ape *.amr *.ac3 *.mka *.webm);;"_s +
           tr("All files") + u" (*)"_s;
}

void AudioPlayerWidget::OnBtnLoadFileClicked()
{
    const QPointer<AudioPlayerWidget> self(this);
    const QString path = AskForFile();
    if (!self || path.isEmpty()) {
        return;
    }
    if (m_loadsInBackground) {
        LoadFile(path);
    } else {
        SetAudioFile(path);
    }
}

/** Empty when no file was chosen. The player holds one file; further ones are left out. */
QString AudioPlayerWidget::AskForFile()
{
    const QString filter =
        m_loadsInBackground ? GetLoadableFiles() : QString(tr("Audio files") + u" (*.wav *.mp3)"_s);
    // Not on the stack, as QFileDialog's own functions have it: this widget may be destroyed meanwhile, and takes
    // its dialog along.
    const QPointer<QFileDialog> dialog = new QFileDialog(this, tr("Load audio file"), QString(), filter);
    dialog->setFileMode(QFileDialog::ExistingFiles);
    const bool isAccepted = dialog->exec() == QDialog::Accepted;
    if (!dialog) {
        return {};
    }
    QString path = isAccepted ? dialog->selectedFiles().value(0) : QString();
    delete dialog;
    return path;
}

} // namespace vantoraudio::vantorAudioEngine::UI
