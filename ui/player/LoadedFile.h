#pragma once

#include "ui/player/FileLoad.h"
#include "ui/player/ProgressQueue.h"
#include "ui/player/SelectionSteps.h"

#include <vantorAudioEngine/WavFile.h>

#include <QtConcurrent/QtConcurrentRun>
#include <QtCore/QCoreApplication>
#include <QtCore/QFuture>
#include <QtCore/QFutureWatcher>
#include <QtCore/QObject>
#include <QtCore/QThread>
#include <QtCore/QThreadPool>

#include <atomic>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace vantoraudio::vantorAudioEngine::UI {

/**
 * A file with the progress of its tasks on the way to the GUI thread. Tasks share it with the player, so that a
 * player which is destroyed without waiting for them takes nothing away from them.
 */
class WorkingFile : public QObject
{
    Q_OBJECT

public:
    /** What stands in one line with the reports of progress. */
    enum Note
    {
        NewSamples,
        ReadingEnded,
        SnippetEnded,
        ChannelFilterEnded
    };

    /** The last owner may be on any thread; the file goes where it lives. */
    static std::shared_ptr<WorkingFile> Create();

    WavFile file;
    ProgressQueue progress;

private:
    WorkingFile();
};

/**
 * Tasks of one kind on a file, in the background, that can be stopped at any time. Used on one thread.
 *
 * An abort flag alone does not stop a task that still waits for its turn, since tasks clear it when they start;
 * such a task is told here to end as soon as it begins.
 */
template<typename Result>
class FileTasks
{
public:
    using Work = std::function<Result(WorkingFile&)>;
    using AbortFunction = void (WavFile::*)();

    explicit FileTasks(AbortFunction abort) : m_abort(abort) {}

    /** Runs `work` in the global thread pool. A task that is stopped before it began ends with Result(). */
    QFuture<Result> Start(const std::shared_ptr<WorkingFile>& file, Work work)
    {
        std::erase_if(m_tasks, [](const Task& task) { return task.future.isFinished(); });
        auto stage = std::make_shared<Stage>();
        auto run = [file, stage, work = std::move(work)] {
            stage->hasBegun = true;
            const ProgressQueue::Task task(file->progress);
            return stage->isStopped ? Result() : work(*file);
        };
        m_tasks.push_back({QtConcurrent::run(QThreadPool::globalInstance(), std::move(run)), file, stage});
        return m_tasks.back().future;
    }

    /** Waits until every task has ended; each ends after the block that it is at. */
    void Stop()
    {
        RequestStop();
        for (Task& task : std::exchange(m_tasks, {})) {
            WaitForEnd(task);
        }
    }

    /** Does not wait. */
    void RequestStop()
    {
        for (const Task& task : m_tasks) {
            task.stage->isStopped = true;
            (task.file->file.*m_abort)();
        }
    }

private:
    struct Stage
    {
        std::atomic<bool> hasBegun = false;
        std::atomic<bool> isStopped = false;
    };

    struct Task
    {
        QFuture<Result> future;
        std::shared_ptr<WorkingFile> file;
        std::shared_ptr<Stage> stage;
    };

    void WaitForEnd(Task& task)
    {
        if (!task.stage->hasBegun) {
            // Takes the task out of the pool's queue, where it might stand behind long ones, and ends it here.
            task.future.waitForFinished();
        }
        while (!task.future.isFinished()) {
            (task.file->file.*m_abort)();
            QThread::usleep(100);
        }
        // isFinished() alone does not make what the task has written visible here.
        task.future.waitForFinished();
    }

    AbortFunction m_abort;
    std::vector<Task> m_tasks;
};

/** The file that a player has loaded, where it came from, and what runs on it in the background. GUI thread. */
class LoadedFile
{
public:
    using Result = WavFile::AudioEngineReturnValue;

    LoadedFile() = default;
    /** Stops the tasks without waiting for them. */
    ~LoadedFile();
    Q_DISABLE_COPY_MOVE(LoadedFile)

    [[nodiscard]] WavFile& File() const { return m_file->file; }
    [[nodiscard]] ProgressQueue& Progress() const { return m_file->progress; }

    /** Ends what a slot has begun on the closed file first. */
    [[nodiscard]] Result Open(const QString& path);
    /** Stops what was read before. The end is told by the note ReadingEnded, that of samples by NewSamples. */
    [[nodiscard]] QFuture<void> Read(double startTime, double endTime, int stepSize);
    /** Also drops the news of samples that were read. */
    void StopReading();
    /** Nothing is left of one that is stopped before it is whole. */
    [[nodiscard]] QFuture<Result> WriteSnippet(const QString& path, const Selection& range);
    /** Stops all. Whether nothing is left of the latest one; otherwise it is whole. */
    [[nodiscard]] bool CancelSnippet();
    /** Nothing but a whole file is left of one that is stopped or fails. */
    [[nodiscard]] QFuture<Result> FilterInto(const QString& path);

    FileTasks<void> samples{&WavFile::AbortRead};
    FileTasks<Result> snippet{&WavFile::AbortWrite};
    FileTasks<Result> channelFilter{&WavFile::AbortChannelFilter};

    /** Where LoadFile() made it; otherwise empty. */
    WorkingCopy copy;

private:
    std::shared_ptr<WorkingFile> m_file = WorkingFile::Create();
    /** Of the latest one. Its task's own until that has ended. */
    std::shared_ptr<bool> m_isSnippetWhole;
};

/** Makes the watcher tell nothing more of its future, also not what is on its way already: a late report would be
 *  taken for one of the next future, whose result the slot would then wait for. */
template<typename Result>
void Forget(QFutureWatcher<Result>& watcher)
{
    watcher.setFuture(QFuture<Result>());
    QCoreApplication::removePostedEvents(&watcher, QEvent::FutureCallOut);
}

} // namespace vantoraudio::vantorAudioEngine::UI
