#include "FileExport.h"

#include <QtConcurrent/QtConcurrentRun>
#include <QtCore/QFileInfo>
#include <QtCore/QThread>

#include <chrono>

using namespace std::chrono_literals;

FileExport::FileExport(QObject* parent) : QObject(parent)
{
    connect(&m_watcher, &QFutureWatcher<bool>::finished, this, &FileExport::OnFinished);
    m_refresh.setInterval(50ms);
    m_refresh.callOnTimeout(this, [this] {
        Q_EMIT Progressed(m_percent, 0, 100, tr("Exporting"));
        AbortIfCancelled();
    });
}

FileExport::~FileExport()
{
    m_watcher.disconnect(this);
    Cancel();
    while (m_watcher.isRunning()) {
        AbortIfCancelled();
        QThread::yieldCurrentThread();
    }
    if (m_isCancelled) {
        QFile::remove(m_outPath);
    }
}

bool FileExport::IsRunning() const
{
    return m_isRunning;
}

void FileExport::Start(const QString& sourcePath, WavFile::ChannelFormat channel, const QString& outPath,
                       Task task)
{
    m_source = std::make_unique<WavFile>();
    m_source->SetLargeFiles(true);
    m_outPath = outPath;
    m_isRunning = true;
    m_isCancelled = false;
    m_percent = 0;
    m_source->SetSelectedChannel(channel);
    // Kept as a number and shown by the timer: a long file reports hundreds of thousands of blocks, which as
    // events would keep the window busy for longer than the export takes.
    const auto keepPercent = [this](int progress) { m_percent = progress; };
    connect(m_source.get(), &WavFile::ProgressChanged, this, keepPercent, Qt::DirectConnection);
    // Opened at once: the file may have gone before a thread is free, because another one was loaded.
    const bool isOpen = m_source->Open(sourcePath) == WavFile::Success;
    m_watcher.setFuture(QtConcurrent::run(
        [isOpen, source = m_source.get(), task = std::move(task)] { return isOpen && task(*source); }));
    m_refresh.start();
}

void FileExport::Cancel()
{
    if (!IsRunning()) {
        return;
    }
    m_isCancelled = true;
    AbortIfCancelled();
}

/** A task that is still queued clears the flags when it starts, so they are set again and again. */
void FileExport::AbortIfCancelled()
{
    if (m_isCancelled) {
        m_source->AbortWrite();
        m_source->AbortChannelFilter();
    }
}

void FileExport::OnFinished()
{
    m_isRunning = false;
    m_refresh.stop();
    if (m_isCancelled) {
        QFile::remove(m_outPath);
        Q_EMIT Cancelled(m_outPath);
    } else if (m_watcher.result()) {
        Q_EMIT Saved(m_outPath);
    } else {
        Q_EMIT Failed(m_outPath);
    }
}
