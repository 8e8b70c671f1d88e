#pragma once

#include <QtCore/QMutex>
#include <QtCore/QObject>
#include <QtCore/QString>

#include <optional>

namespace vantoraudio::vantorAudioEngine::UI {

/**
 * Brings the progress of a task to the thread of this object without flooding it: a task that reports faster than
 * that thread listens is heard with its latest report. The last one always arrives.
 */
class ProgressRelay : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /** Any thread; on the thread of this object the report is passed on at once. */
    void Report(int progress, int min, int max, const QString& text);

Q_SIGNALS:
    void Reported(int progress, int min, int max, const QString& text);

private:
    struct Progress
    {
        int progress;
        int min;
        int max;
        QString text;
    };

    void PassOn();

    QMutex m_mutex;
    /** What waits to be passed on. */
    std::optional<Progress> m_latest;
};

} // namespace vantoraudio::vantorAudioEngine::UI
