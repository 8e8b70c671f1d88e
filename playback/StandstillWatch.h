#pragma once

#include <QtCore/QDeadlineTimer>
#include <QtCore/QTimer>

class QMediaPlayer;

namespace vantoraudio::AudioEngine {

/**
 * Sets a player going again that stands still though it should sound, as it does where Qt loses a seek. The player
 * must outlive it.
 */
class StandstillWatch
{
public:
    explicit StandstillWatch(QMediaPlayer& player);

    StandstillWatch(const StandstillWatch&) = delete;
    StandstillWatch& operator=(const StandstillWatch&) = delete;

private:
    friend class StandstillWatchTestAccess;

    void OnStateChanged();
    void NoteProgress(qint64 position);
    void ExpectProgress();
    void EndStandstill();

    QMediaPlayer& m_player;
    qint64 m_lastPosition = 0;
    QDeadlineTimer m_progressIsDue;
    QTimer m_timer;
};

} // namespace vantoraudio::AudioEngine
