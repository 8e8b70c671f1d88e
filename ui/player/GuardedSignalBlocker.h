#pragma once

#include <QtCore/QObject>
#include <QtCore/QPointer>

namespace vantoraudio::vantorAudioEngine::UI {

/** A QSignalBlocker for an object that may be destroyed before the end of the scope. */
class GuardedSignalBlocker
{
public:
    explicit GuardedSignalBlocker(QObject* object) : m_object(object), m_wasBlocked(object->blockSignals(true)) {}
    ~GuardedSignalBlocker()
    {
        if (m_object) {
            m_object->blockSignals(m_wasBlocked);
        }
    }
    GuardedSignalBlocker(const GuardedSignalBlocker&) = delete;
    GuardedSignalBlocker& operator=(const GuardedSignalBlocker&) = delete;

private:
    QPointer<QObject> m_object;
    bool m_wasBlocked;
};

} // namespace vantoraudio::vantorAudioEngine::UI
