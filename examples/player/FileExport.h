#pragma once

#include <vantorAudioEngine/WavFile.h>

#include <QtCore/QFutureWatcher>
#include <QtCore/QTimer>
#include <QtWidgets/QWidget>

#include <atomic>
#include <functional>
#include <memory>

class QProgressBar;

/**
 * Writes one file at a time in the background and shows how far that is, with a button to cancel. Hidden while
 * there is nothing to do.
 */
class ExportBar : public QWidget
{
    Q_OBJECT

public:
    /** Writes the file; false on failure. Runs on a worker thread, with a source of its own. */
    using Task = std::function<bool(WavFile& source)>;

    explicit ExportBar(QWidget* parent = nullptr);
    /** Cancels and waits. */
    ~ExportBar() override;

    bool IsRunning() const;
    /** Runs `task`, which writes `outPath`, on the file `sourcePath`. Not while another one runs. */
    void Start(const QString& sourcePath, WavFile::ChannelFormat channel, const QString& outPath, Task task);
    /** Stops as soon as the task allows it, and removes what it wrote. */
    void Cancel();

Q_SIGNALS:
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
    QProgressBar* m_progress;
};
