#pragma once

#include "ExportSource.h"

#include <QtCore/QFutureWatcher>
#include <QtCore/QObject>
#include <QtCore/QThreadPool>
#include <QtCore/QTimer>

#include <functional>
#include <memory>
#include <utility>

/** Writes one file at a time in the background, from a source of its own, beside whatever the player does. A
 *  failed or cancelled export leaves nothing behind, and an older file of that name as it was. */
class FileExport : public QObject
{
    Q_OBJECT

public:
    /** Writes the file; false on failure, which leaves nothing behind. Runs on a worker thread. */
    using Task = std::function<bool(ExportSource& source)>;

    /** Writes the audio of a range, in seconds; in stereo where the channel is not one of two. */
    static Task WriteRange(const QString& outPath, std::pair<double, double> range);

    explicit FileExport(QObject* parent = nullptr);
    /** Cancels and waits. */
    ~FileExport() override;

    bool IsRunning() const;
    /** Runs `task`, which writes `outPath`, on the file `sourcePath`, which may be removed as soon as this
     * returns. Not while another one runs. */
    void Start(const QString& sourcePath, WavFile::ChannelFormat channel, const QString& outPath,
               WavFile::ExistingFile existing, Task task);
    /** Returns at once; Cancelled() follows. Saved() when the new file has taken the place of an older one
     *  already. */
    void Cancel();

Q_SIGNALS:
    void Progressed(int progress, int min, int max, const QString& text);
    void Saved(const QString& path);
    void Failed(const QString& path);
    void Cancelled(const QString& path);

private:
    bool KeepsResult() const;
    void OnFinished();

    /** Of its own: Qt 6.4 also paints with the global one, and waits for it. */
    QThreadPool m_pool;
    std::unique_ptr<ExportSource> m_source;
    QString m_outPath;
    QFutureWatcher<bool> m_watcher;
    bool m_isRunning = false;
    bool m_isCancelled = false;
    bool m_isNew = false;
    QTimer m_refresh;
};
