#include "ScreenshotJob.h"

#include "Failures.h"

#include <QtGui/QPixmap>

#include <algorithm>
#include <cmath>

ScreenshotJob::ScreenshotJob(PlayerWindow& window, QString filePath, bool playing,
                             std::chrono::milliseconds patience)
    : QObject(&window), m_window(window), m_filePath(std::move(filePath)), m_waitingForSound(playing)
{
    connect(&window, &PlayerWindow::PictureCompleted, this, &ScreenshotJob::TryNow);
    connect(&window, &PlayerWindow::PositionChanged, this, &ScreenshotJob::OnPositionChanged);
    m_patience.setSingleShot(true);
    m_patience.callOnTimeout(this, &ScreenshotJob::OnPatienceEnded);
    m_patience.start(patience);
    QTimer::singleShot(0, this, &ScreenshotJob::TryNow);
}

void ScreenshotJob::OnPositionChanged(double seconds)
{
    // Positions arrive in steps of up to a third of a second, so a short file may never report its very end.
    const double first = m_firstPosition.value_or(seconds);
    m_firstPosition = first;
    if (std::abs(seconds - first) >= std::min(1.0, m_window.Duration() * 0.3)) {
        m_waitingForSound = false;
        TryNow();
    }
}

void ScreenshotJob::TryNow()
{
    if (m_window.IsPictureComplete() && !m_waitingForSound) {
        Save();
    }
}

void ScreenshotJob::OnPatienceEnded()
{
    if (m_window.IsPictureComplete()) {
        Save();
    } else {
        End(tr("No picture was saved: the waveform was not complete in time."));
    }
}

void ScreenshotJob::Save()
{
    if (!m_done) {
        End(m_window.grab().save(m_filePath) ? QString() : DescribeExportFailure(m_filePath));
    }
}

void ScreenshotJob::End(const QString& failure)
{
    if (!m_done) {
        m_done = true;
        Q_EMIT Done(failure);
    }
}
