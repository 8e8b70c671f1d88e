#include "ui/player/FileLoad.h"

#include "engine/files/Leftovers.h"
#include "engine/files/RegularFile.h"
#include "ui/player/FileCopy.h"

#include <vantorAudioEngine/AudioImporter.h>
#include <vantorAudioEngine/WavFile.h>

#include <QtConcurrent/QtConcurrentRun>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QPromise>
#include <QtCore/QTemporaryDir>
#include <QtCore/QThreadPool>

#include <cmath>
#include <functional>
#include <utility>

namespace vantoraudio::vantorAudioEngine::UI {

/** A folder that nobody looks into, and that the next load into the same directory leaves alone. */
class HiddenFolder
{
public:
    explicit HiddenFolder(const QString& directory)
        : m_folder(AudioEngine::HiddenTemplate(directory, QStringLiteral("loaded"))), m_lock(m_folder.path())
    {
        // It is removed where there is time for it.
        m_folder.setAutoRemove(false);
    }

    bool IsValid() const { return m_folder.isValid(); }
    bool IsLocked() const { return m_lock.IsHeld(); }
    QString Path() const { return m_folder.path(); }
    QString FilePath(const QString& name) const { return m_folder.filePath(name); }

private:
    QTemporaryDir m_folder;
    AudioEngine::FolderLock m_lock;
};

namespace {

using AudioEngine::AudioFileInfo;
using AudioEngine::AudioImporter;
using AudioEngine::ImportResult;
using Problem = AudioFileInfo::Problem;

/** The threads on which files are loaded and their copies removed. */
class LoadThreads
{
public:
    static void Start(std::function<void()> task) { Instance().m_pool->start(std::move(task)); }
    static QThreadPool* Pool() { return Instance().m_pool.get(); }

private:
    /** Loads that were given up may hang on a disk that does not answer, and the next one is not to wait for them.
     */
    static constexpr int mostThreads = 16;
    static constexpr int patienceAtTheEnd = 3000;

    LoadThreads() { m_pool->setMaxThreadCount(mostThreads); }
    /** The program ends when all is tidied up, but not for the sake of a thread that hangs. */
    ~LoadThreads()
    {
        if (!m_pool->waitForDone(patienceAtTheEnd)) {
            static_cast<void>(m_pool.release());
        }
    }
    Q_DISABLE_COPY_MOVE(LoadThreads)

    static LoadThreads& Instance()
    {
        static LoadThreads threads;
        return threads;
    }

    std::unique_ptr<QThreadPool> m_pool = std::make_unique<QThreadPool>();
};

/** Removing a long file takes its time. Without the warnings of QTemporaryDir: a program that closes may remove
 * the folder around this one at the same moment. Only for valid folders: an empty path would mean the current one.
 */
void RemoveInBackground(HiddenFolder* folder)
{
    LoadThreads::Start([folder] {
        QDir(folder->Path()).removeRecursively();
        delete folder;
    });
}

/** Null when there can be none. */
std::shared_ptr<HiddenFolder> MakeFolder(const QString& directory)
{
    // Another program that sweeps at this moment may take one away before it is locked.
    constexpr int mostTries = 10;
    auto folder = std::make_unique<HiddenFolder>(directory);
    for (int tries = 1; folder->IsValid() && !folder->IsLocked() && tries < mostTries; ++tries) {
        folder = std::make_unique<HiddenFolder>(directory);
    }
    if (!folder->IsValid()) {
        return nullptr;
    }
    return {folder.release(), &RemoveInBackground};
}

/** A file that is shorter than its header says is imported instead, so that only what is there is shown. */
bool IsSoundWavFile(const QString& path)
{
    WavFile file;
    file.SetLargeFiles(true);
    const bool isOpen = file.Open(path) == WavFile::Success;
    // Floats of 16 or 24 bits are opened, but not understood.
    const bool isKnown = file.GetFileFormat().sampleFormat() != QAudioFormat::Float || file.GetSampleSize() == 32;
    return isOpen && isKnown && std::isfinite(file.GetDuration()) && file.GetDuration() > 0.0 &&
           file.GetDataLength() <= file.size() - file.GetDataOffset();
}

} // namespace

LoadSource LoadSource::Of(const QString& path)
{
    return {QFileInfo(path).canonicalFilePath(), AudioEngine::FileState::Of(path)};
}

/** What a load does on its thread. It owns all that it works with. */
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
        m_source = LoadSource::Of(m_path);
        promise.addResult(CanKeepFormer() ? Prepared{Problem::None, m_former} : Prepare(promise));
    }

private:
    bool CanKeepFormer() const
    {
        return m_former.folder && m_former.source == m_source && AudioEngine::IsRegularFile(m_former.path);
    }

    Prepared Prepare(QPromise<Prepared>& promise) const
    {
        AudioEngine::RemoveLeftovers(m_directory);
        const std::shared_ptr<HiddenFolder> folder = MakeFolder(m_directory);
        if (!folder) {
            const Problem ofSource = AudioFileInfo::Probe(m_path).GetProblem();
            return {ofSource == Problem::None ? Problem::CannotBeCreated : ofSource, {}};
        }
        const WorkingCopy copy{folder, folder->FilePath(QFileInfo(m_path).fileName()), m_source};
        const auto goesOn = [&promise](int permille) {
            promise.setProgressValue(permille);
            return !promise.isCanceled();
        };
        return {IsSoundWavFile(m_path) ? CopyFile(m_path, copy.path, goesOn) : ImportFile(copy.path, goesOn),
                copy};
    }

    Problem ImportFile(const QString& to, const AudioImporter::Observer& goesOn) const
    {
        const ImportResult result = AudioImporter::ImportNow(m_path, to, {}, goesOn);
        return result.IsSuccess() && result.frameCount == 0 ? Problem::NoAudio : result.problem;
    }

    QString m_path;
    QString m_directory;
    WorkingCopy m_former;
    LoadSource m_source;
};

FileLoad::FileLoad(const QString& path, const QString& directory, const WorkingCopy& former)
    : m_path(path), m_directory(directory), m_prepared{Problem::None, former}
{
    // Queued, so that the watcher is not at work when this object is destroyed.
    connect(&m_preparing, &QFutureWatcherBase::progressValueChanged, this, &FileLoad::Progressed,
            Qt::QueuedConnection);
    connect(&m_preparing, &QFutureWatcherBase::finished, this, &FileLoad::OnPrepared, Qt::QueuedConnection);
}

FileLoad::~FileLoad()
{
    m_preparing.cancel();
}

void FileLoad::Start()
{
    m_preparing.setFuture(
        QtConcurrent::run(LoadThreads::Pool(), Preparation(m_path, m_directory, m_prepared.copy)));
    Q_EMIT Progressed(0);
}

void FileLoad::OnPrepared()
{
    m_prepared = m_preparing.result();
    Q_EMIT Ended();
}

} // namespace vantoraudio::vantorAudioEngine::UI
