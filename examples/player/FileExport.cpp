#include "ExportBar.h"

#include <QtConcurrent/QtConcurrentRun>
#include <QtCore/QFileInfo>
#include <QtCore/QThread>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QProgressBar>
#include <QtWidgets/QPushButton>

#include <chrono>

using namespace std::chrono_literals;

ExportBar::ExportBar(QWidget* parent) : QWidget(parent), m_progress(new QProgressBar(this))
{
    m_progress->setRange(0, 100);
    auto* cancel = new QPushButton(tr("Cancel"), this);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_progress);
    layout->addWidget(cancel);
    hide();

    connect(cancel, &QPushButton::clicked, this, &ExportBar::Cancel);
    connect(&m_watcher, &QFutureWatcher<bool>::finished, this, &ExportBar::OnFinished);
    m_refresh.setInterval(50ms);
    m_refresh.callOnTimeout(this, [this] {
        m_progress->setValue(m_percent);
        AbortIfCancelled();
    });
}

ExportBar::~ExportBar()
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

bool ExportBar::IsRunning() const
{
    return m_isRunning;
}

void ExportBar::Start(const QString& sourcePath, WavFile::ChannelFormat channel, const QString& outPath, Task task)
{
    m_source = std::make_unique<WavFile>();
    m_outPath = outPath;
    m_isRunning = true;
    m_isCancelled = false;
    m_percent = 0;
    m_source->SetSelectedChannel(channel);
    // Kept as a number and shown by the timer: a long file reports hundreds of thousands of blocks, which as
    // events would keep the window busy for longer than the export takes.
    const auto keepPercent = [this](int progress) { m_percent = progress; };
    connect(m_source.get(), &WavFile::ProgressChanged, this, keepPercent, Qt::DirectConnection);
    m_watcher.setFuture(QtConcurrent::run([source = m_source.get(), sourcePath, task = std::move(task)] {
        return source->Open(sourcePath) == WavFile::Success && task(*source);
    }));
    m_refresh.start();
    show();
}

void ExportBar::Cancel()
{
    if (!IsRunning()) {
        return;
    }
    m_isCancelled = true;
    AbortIfCancelled();
}

/** A task that is still queued clears the flags when it starts, so they are set again and again. */
void ExportBar::AbortIfCancelled()
{
    if (m_isCancelled) {
        m_source->AbortWrite();
        m_source->AbortChannelFilter();
    }
}

void ExportBar::OnFinished()
{
    m_isRunning = false;
    m_refresh.stop();
    hide();
    if (m_isCancelled) {
        QFile::remove(m_outPath);
        Q_EMIT Cancelled(m_outPath);
    } else if (m_watcher.result()) {
        Q_EMIT Saved(m_outPath);
    } else {
        Q_EMIT Failed(m_outPath);
    }
}
