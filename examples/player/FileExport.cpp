#include "FileExport.h"

#include <QtConcurrent/QtConcurrentRun>
#include <QtCore/QFileInfo>

#include <chrono>

using namespace std::chrono_literals;

FileExport::Task FileExport::WriteRange(const QString& outPath, std::pair<double, double> range)
{
    return [=](ExportSource& source) {
        const auto [start, end] = range;
        source.SetKeepBothChannels(true);
        source.SetPartToRead((end - start) / source.GetDuration());
        return source.CreateSnippet(outPath, start, end) == WavFile::Success;
    };
}

FileExport::FileExport(QObject* parent) : QObject(parent)
{
    connect(&m_watcher, &QFutureWatcher<bool>::finished, this, &FileExport::OnFinished);
    m_refresh.setInterval(50ms);
    m_refresh.callOnTimeout(this, [this] { Q_EMIT Progressed(m_source->Percent(), 0, 100, tr("Exporting")); });
}

FileExport::~FileExport()
{
    m_watcher.disconnect(this);
    Cancel();
    if (IsRunning()) {
        m_watcher.waitForFinished();
        static_cast<void>(KeepsResult());
    }
}

bool FileExport::IsRunning() const
{
    return m_isRunning;
}

void FileExport::Start(const QString& sourcePath, WavFile::ChannelFormat channel, const QString& outPath,
                       WavFile::ExistingFile existing, Task task)
{
    m_source = std::make_unique<ExportSource>();
    m_source->SetLargeFiles(true);
    m_source->SetKeepParts(false);
    m_source->SetExistingFile(existing);
    m_source->SetSelectedChannel(channel);
    m_outPath = outPath;
    m_isRunning = true;
    m_isCancelled = false;
    m_isNew = !QFileInfo::exists(outPath);
    // Opened at once: the file may have gone before a thread is free, because another one was loaded.
    const bool isOpen = m_source->Open(sourcePath) == WavFile::Success;
    m_watcher.setFuture(QtConcurrent::run(
        &m_pool, [isOpen, source = m_source.get(), task = std::move(task)] { return isOpen && task(*source); }));
    m_refresh.start();
}

void FileExport::Cancel()
{
    if (IsRunning()) {
        m_isCancelled = true;
        m_source->Cancel();
    }
}

/** Whether there is a new file that stays. The user may cancel in the moment in which it is finished. */
bool FileExport::KeepsResult() const
{
    if (!m_watcher.result()) {
        return false;
    }
    return !m_isCancelled || !m_isNew || !QFile::remove(m_outPath);
}

void FileExport::OnFinished()
{
    m_isRunning = false;
    m_refresh.stop();
    if (KeepsResult()) {
        Q_EMIT Saved(m_outPath);
    } else if (m_isCancelled) {
        Q_EMIT Cancelled(m_outPath);
    } else {
        Q_EMIT Failed(m_outPath);
    }
}
