#include "ScreenshotJob.h"

#include <QtGui/QPixmap>

#include <algorithm>
#include <chrono>
#include <cmath>

using namespace std::chrono_literals;

ScreenshotJob::ScreenshotJob(PlayerWindow& window, QString filePath, bool playing)
    : QObject(&window), m_window(window), m_filePath(std::move(filePath)), m_waitingForSound(playing)
{
    connect(&window, &PlayerWindow::PictureCompleted, this, &ScreenshotJob::TryNow);
    connect(&window, &PlayerWindow::PositionChanged, this, &ScreenshotJob::OnPositionChanged);
    m_patience.setSingleShot(true);
    m_patience.callOnTimeout(this, &ScreenshotJob::Save);
    m_patience.start(30s);
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

void ScreenshotJob::Save()
{
    if (m_done) {
        return;
    }
    m_done = true;
    Q_EMIT Done(m_window.grab().save(m_filePath));
}
