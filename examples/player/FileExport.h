#pragma once

#include <vantorAudioEngine/WavFile.h>

#include <QtCore/QFutureWatcher>
#include <QtCore/QObject>
#include <QtCore/QTimer>

#include <atomic>
#include <functional>
#include <memory>

/** Writes one file at a time in the background, from a source of its own, beside whatever the player does. */
class FileExport : public QObject
{
    Q_OBJECT

public:
    /** Writes the file; false on failure. Runs on a worker thread. */
    using Task = std::function<bool(WavFile& source)>;

    explicit FileExport(QObject* parent = nullptr);
    /** Cancels and waits. */
    ~FileExport() override;

    bool IsRunning() const;
    /** Runs `task`, which writes `outPath`, on the file `sourcePath`, which may be removed as soon as this
     * returns. Not while another one runs. */
    void Start(const QString& sourcePath, WavFile::ChannelFormat channel, const QString& outPath, Task task);
    /** Stops as soon as the task allows it, and removes what it wrote. */
    void Cancel();

Q_SIGNALS:
    void Progressed(int progress, int min, int max, const QString& text);
    void Saved(const QString& path);
    void Failed(const QString& path);
    void Cancelled(const QString& path);

private:
    void AbortIfCancelled();
    void OnFinished();

    std::unique_ptr<WavFile> m_source;
    QString m_outPath;
    QFutureWatcher<bool> m_watcher;
    std::atomic<int> m_percent = 0;
    bool m_isRunning = false;
    bool m_isCancelled = false;
    QTimer m_refresh;
};
