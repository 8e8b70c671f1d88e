#include "ui/player/FileLoad.h"

#include "engine/files/Leftovers.h"
#include "engine/files/RegularFile.h"
#include "ui/player/FileCopy.h"
#include "ui/player/HiddenFolder.h"
#include "ui/player/LoadThreads.h"

#include <vantorAudioEngine/AudioImporter.h>
#include <vantorAudioEngine/WavFile.h>

#include <QtConcurrent/QtConcurrentRun>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QPromise>

#include <cmath>
#include <utility>

namespace vantoraudio::vantorAudioEngine::UI {

namespace {

using AudioEngine::AudioFileInfo;
using AudioEngine::AudioImporter;
using AudioEngine::ImportResult;
using Problem = AudioFileInfo::Problem;

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
        , m_directory(QDir(directory).absolutePath())
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
        const std::shared_ptr<HiddenFolder> folder = HiddenFolder::Make(m_directory, QStringLiteral("loaded"));
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
