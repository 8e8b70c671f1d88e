#pragma once

#include <vantorAudioEngine/WavFile.h>

#include <functional>
#include <semaphore>
#include <thread>

/** Runs a task of `file` on another thread and `abort` on this one, while the task is held up in its first report
 * of progress. Returns how many reports the task made in all. */
inline int AbortDuringFirstReport(WavFile& file, const std::function<void()>& task,
                                  const std::function<void()>& abort)
{
    std::binary_semaphore isRunning(0);
    std::binary_semaphore isAborted(0);
    int count = 0;
    const auto connection = QObject::connect(
        &file, &WavFile::ProgressChanged, &file,
        [&] {
            if (++count == 1) {
                isRunning.release();
                isAborted.acquire();
            }
        },
        Qt::DirectConnection);
    std::thread worker(task);
    isRunning.acquire();
    abort();
    isAborted.release();
    worker.join();
    QObject::disconnect(connection);
    return count;
}
