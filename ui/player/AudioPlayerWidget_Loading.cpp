#include "ui/player/GuardedSignalBlocker.h"
#include "ui/player/Internals.h"

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

void AudioPlayerWidget::LoadFile(const QString& filePath)
{
    if (filePath.isEmpty()) {
        Reset();
        return;
    }
    // A receiver of the signals may change or delete what the caller keeps.
    const QString path = filePath; // NOLINT(performance-unnecessary-copy-initialization)
    const int load = ++m_internals->loadCount;
    const QPointer<AudioPlayerWidget> self(this);
    m_internals->DropLoadAndTell();
    if (!self || load != m_internals->loadCount) {
        // The signal made the program destroy this widget or load another file.
        return;
    }
    m_internals->loading = std::make_unique<FileLoad>(path, m_writableDirectoryPath, m_internals->loaded.copy);
    const QPointer<FileLoad> started = m_internals->loading.get();
    connect(started, &FileLoad::Progressed, this,
            [this](int permille) { Q_EMIT ProgressChanged(permille, 0, 1000, tr("Loading...")); });
    connect(started, &FileLoad::Ended, this, [this] { m_internals->OnLoadEnded(); });
    Q_EMIT LoadStarted(path);
    if (started) {
        started->Start();
    }
}

void AudioPlayerWidget::CancelLoad()
{
    ++m_internals->loadCount;
    m_internals->DropLoadAndTell();
}

void AudioPlayerWidget::Internals::DropLoadAndTell()
{
    const QString path = DropLoad();
    if (!path.isEmpty()) {
        Q_EMIT widget.LoadCancelled(path);
    }
}

/** Gives up the load, silently, and returns its path; empty without a load. */
QString AudioPlayerWidget::Internals::DropLoad()
{
    const std::unique_ptr<FileLoad> load = std::move(loading);
    return load ? load->GetPath() : QString();
}

bool AudioPlayerWidget::IsLoading() const
{
    return m_internals->loading != nullptr;
}

void AudioPlayerWidget::Internals::OnLoadEnded()
{
    const std::unique_ptr<FileLoad> load = std::move(loading);
    const Problem problem = load->GetProblem();
    if (problem != Problem::None) {
        FailLoad(load->GetPath(), problem, ImportResult{.problem = problem}.Code());
    } else if (loaded.File().isOpen() && loaded.File().fileName() == load->GetCopy().path) {
        Q_EMIT widget.LoadFinished(load->GetPath());
    } else {
        ShowCopy(load->GetPath(), load->GetCopy());
    }
}

void AudioPlayerWidget::Internals::FailLoad(const QString& path, Problem problem,
                                            WavFile::AudioEngineReturnValue code)
{
    const QPointer<AudioPlayerWidget> self(&widget);
    widget.ErrorHandler(code);
    if (self) {
        Q_EMIT widget.LoadFailed(path, problem, AudioFileInfo::TextOf(problem, path));
    }
}

void AudioPlayerWidget::Internals::ShowCopy(const QString& path, const WorkingCopy& copy)
{
    const GuardedSignalBlocker blocker(controls.edTotalDuration);
    const QPointer<AudioPlayerWidget> self(&widget);
    const int closing = loadCount + 1;
    const bool isEmpty = Empty();
    if (self && (!isEmpty || loadCount != closing)) {
        // A signal made the program cancel, close or load another file.
        Q_EMIT widget.LoadCancelled(path);
    } else if (self) {
        OpenCopy(path, copy);
    }
}

void AudioPlayerWidget::Internals::OpenCopy(const QString& path, const WorkingCopy& copy)
{
    loaded.File().SetLargeFiles(true);
    ++fileCount;
    const WavFile::AudioEngineReturnValue result = loaded.Open(copy.path);
    if (result != WavFile::Success) {
        loaded.File().close();
        FailLoad(path, Problem::CannotBeRead, result);
        return;
    }
    // Kept until the player has left it.
    const WorkingCopy former = std::exchange(loaded.copy, copy);
    widget.m_originalAudioFilePath = path;
    const QPointer<AudioPlayerWidget> self(&widget);
    const bool isShown = ShowLoadedFile(copy.path);
    if (self) {
        isShown ? Q_EMIT widget.LoadFinished(path) : Q_EMIT widget.LoadCancelled(path);
    }
}

bool AudioPlayerWidget::GetLoadInBackground() const
{
    return m_internals->loadsInBackground;
}

void AudioPlayerWidget::SetLoadInBackground(bool loadInBackground)
{
    m_internals->loadsInBackground = loadInBackground;
}

void AudioPlayerWidget::SetProgramChoosesFiles(bool programChooses)
{
    m_internals->programChoosesFiles = programChooses;
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
    if (m_internals->programChoosesFiles) {
        Q_EMIT LoadRequested();
        return;
    }
    const QPointer<AudioPlayerWidget> self(this);
    const QString path = m_internals->AskForFile();
    if (!self || path.isEmpty()) {
        return;
    }
    if (m_internals->loadsInBackground) {
        LoadFile(path);
    } else {
        SetAudioFile(path);
    }
}

/** Empty when no file was chosen. The player holds one file; further ones are left out. */
QString AudioPlayerWidget::Internals::AskForFile()
{
    const QString filter = loadsInBackground ? GetLoadableFiles()
                                             : QString(AudioPlayerWidget::tr("Audio files") + u" (*.wav *.mp3)"_s);
    // On the heap: this widget may be destroyed while the dialog is open, and destroys its child then.
    const QPointer<QFileDialog> dialog =
        new QFileDialog(&widget, AudioPlayerWidget::tr("Load audio file"), QString(), filter);
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
