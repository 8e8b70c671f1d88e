#include "ui/player/ProgressRelay.h"

#include <QtCore/QThread>

#include <utility>

namespace vantoraudio::vantorAudioEngine::UI {

void ProgressRelay::Report(int progress, int min, int max, const QString& text)
{
    bool isOnItsWay = false;
    {
        const QMutexLocker lock(&m_mutex);
        isOnItsWay = m_latest.has_value();
        m_latest = {progress, min, max, text};
    }
    if (thread() == QThread::currentThread()) {
        PassOn();
    } else if (!isOnItsWay) {
        QMetaObject::invokeMethod(this, &ProgressRelay::PassOn, Qt::QueuedConnection);
    }
}

void ProgressRelay::PassOn()
{
    QMutexLocker lock(&m_mutex);
    const std::optional<Progress> latest = std::exchange(m_latest, std::nullopt);
    lock.unlock();
    if (latest) {
        Q_EMIT Reported(latest->progress, latest->min, latest->max, latest->text);
    }
}

} // namespace vantoraudio::vantorAudioEngine::UI
