#pragma once

#include "ui/player/WorkingFile.h"

#include <QtConcurrent/QtConcurrentRun>
#include <QtCore/QFuture>
#include <QtCore/QThread>
#include <QtCore/QThreadPool>

#include <atomic>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace vantoraudio::vantorAudioEngine::UI {

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
    /** Works on the file; the flag tells whether it was stopped, which it may have to clear up after. */
    using Work = std::function<Result(WorkingFile&, const std::atomic<bool>& isStopped)>;
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
            return stage->isStopped ? Result() : work(*file, stage->isStopped);
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
    }

    AbortFunction m_abort;
    std::vector<Task> m_tasks;
};

} // namespace vantoraudio::vantorAudioEngine::UI
