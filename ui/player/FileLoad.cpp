#include "ui/player/FileLoad.h"

#include "ui/player/FileCopy.h"

#include <vantorAudioEngine/WavFile.h>

#include <QtConcurrent/QtConcurrentRun>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QPromise>
#include <QtCore/QThreadPool>

#include <algorithm>
#include <cmath>

namespace vantoraudio::vantorAudioEngine::UI {
namespace {

using AudioEngine::AudioFileInfo;
using AudioEngine::AudioImporter;
using AudioEngine::ImportResult;
using Problem = AudioFileInfo::Problem;

class Threads : public QThreadPool
{
public:
    /** More than one on every machine: a load that was given up may hang on a slow disk. */
    Threads() { setMaxThreadCount(std::max(maxThreadCount(), 4)); }
};

/** Ends with the program, when the last folder has been removed. */
QThreadPool& LoadThreads()
{
    static Threads threads;
    return threads;
}

/** Removing a long file takes its time. Without the warnings of QTemporaryDir: a program that closes may remove
 * the folder around this one at the same moment. Only for valid folders: an empty path would mean the current one.
 */
void RemoveInBackground(QTemporaryDir* folder)
{
    folder->setAutoRemove(false);
    LoadThreads().start([folder] {
        QDir(folder->path()).removeRecursively();
        delete folder;
    });
}

/** Null when there can be none. */
std::shared_ptr<QTemporaryDir> MakeFolder(const QString& directory)
{
    auto folder = std::make_unique<QTemporaryDir>(QDir(directory).filePath(QStringLiteral(".loaded-XXXXXX")));
    if (!folder->isValid()) {
        return nullptr;
    }
    return {folder.release(), &RemoveInBackground};
}

/** Also that the file holds all that its header promises: of others only what is there is to be shown. */
bool IsSoundWavFile(const QString& path)
{
    WavFile file;
    file.SetLargeFiles(true);
    const bool isOpen = file.Open(path) == WavFile::Success;
    return isOpen && std::isfinite(file.GetDuration()) && file.GetDuration() > 0.0 &&
           file.GetDataLength() <= file.size() - file.GetDataOffset();
}

} // namespace

FileState FileState::Of(const QString& path)
{
    const QFileInfo info(path);
    return {info.canonicalFilePath(), info.size(), info.lastModified()};
}

/** The first part of a load, on a thread of its own. It owns all that it works with. */
class FileLoad::Preparation
{
public:
    Preparation(const QString& path, const QString& directory, WorkingCopy former)
        : m_path(QFileInfo(path).absoluteFilePath())
        , m_directory(QFileInfo(directory).absoluteFilePath())
        , m_former(std::move(former))
    {
    }

    void operator()(QPromise<Prepared>& promise)
    {
        promise.setProgressRange(0, 1000);
        m_source = FileState::Of(m_path);
        promise.addResult(CanKeepFormer() ? Prepared{Problem::None, m_former, false} : Prepare(promise));
    }

private:
    bool CanKeepFormer() const
    {
        return m_former.folder && m_former.source == m_source && QFileInfo(m_former.path).isFile();
    }

    Prepared Prepare(QPromise<Prepared>& promise) const
    {
        const std::shared_ptr<QTemporaryDir> folder = MakeFolder(m_directory);
        if (!folder) {
            const Problem ofSource = AudioFileInfo::Probe(m_path).GetProblem();
            return {ofSource == Problem::None ? Problem::CannotBeCreated : ofSource, {}, false};
        }
        const WorkingCopy copy{folder, folder->filePath(QFileInfo(m_path).fileName()), m_source};
        if (!IsSoundWavFile(m_path)) {
            return {Problem::None, copy, true};
        }
        const auto goesOn = [&promise](int permille) {
            promise.setProgressValue(permille);
            return !promise.isCanceled();
        };
        return {CopyFile(m_path, copy.path, goesOn), copy, false};
    }

    QString m_path;
    QString m_directory;
    WorkingCopy m_former;
    FileState m_source;
};

FileLoad::FileLoad(const QString& path, const QString& directory, const WorkingCopy& former)
    : m_path(path), m_directory(directory), m_prepared{Problem::None, former, false}
{
    Follow(m_preparing, &FileLoad::OnPrepared);
    Follow(m_importing, &FileLoad::OnImported);
}

FileLoad::~FileLoad()
{
    m_preparing.cancel();
    QFuture<ImportResult> import = m_importing.future();
    if (!import.isFinished()) {
        import.cancel();
        // It has its folder to its end.
        LoadThreads().start([import, folder = m_prepared.copy.folder]() mutable { import.waitForFinished(); });
    }
}

/** Queued, so that the watcher is not at work when this object is destroyed. */
void FileLoad::Follow(QFutureWatcherBase& watcher, void (FileLoad::*onFinished)())
{
    connect(&watcher, &QFutureWatcherBase::progressValueChanged, this, &FileLoad::Progressed,
            Qt::QueuedConnection);
    connect(&watcher, &QFutureWatcherBase::finished, this, onFinished, Qt::QueuedConnection);
}

void FileLoad::Start()
{
    m_preparing.setFuture(QtConcurrent::run(&LoadThreads(), Preparation(m_path, m_directory, m_prepared.copy)));
    Q_EMIT Progressed(0);
}

void FileLoad::OnPrepared()
{
    m_prepared = m_preparing.result();
    if (m_prepared.isToBeImported) {
        Import();
    } else {
        Q_EMIT Ended();
    }
}

void FileLoad::Import()
{
    const WorkingCopy& copy = m_prepared.copy;
    m_importing.setFuture(
        AudioImporter::Import(QFileInfo(m_path).absoluteFilePath(), copy.path, {}, &LoadThreads()));
}

void FileLoad::OnImported()
{
    const ImportResult result = m_importing.result();
    m_prepared.problem = result.IsSuccess() && result.frameCount == 0 ? Problem::NoAudio : result.problem;
    Q_EMIT Ended();
}

} // namespace vantoraudio::vantorAudioEngine::UI
