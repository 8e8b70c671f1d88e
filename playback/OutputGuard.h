#pragma once

#include <QtCore/QDeadlineTimer>
#include <QtCore/QList>
#include <QtCore/QTimer>
#include <QtMultimedia/QAudioDevice>
#include <QtMultimedia/QMediaDevices>

class QAudioOutput;
class QMediaPlayer;

namespace vantoraudio::AudioEngine {

/**
 * Keeps a media player from opening an output device that does not exist.
 *
 * The FFmpeg backend of Qt 6.4 does not survive that: without any device its audio thread writes through a null
 * pointer, and with a device that has gone it waits for ever, and the player's destructor with it. So the guard
 * takes the output away from the player while there is no device and gives it back when there is one, and moves
 * it to another device when its own has gone. Volume and mute belong to the output and survive all of that.
 *
 * That backend does not tell of devices that come and go either, so the guard looks for itself while the player
 * has something to play. It also sets a player going again that stands still while it should play. Player and
 * output must outlive it.
 */
class OutputGuard
{
public:
    OutputGuard(QMediaPlayer& player, QAudioOutput& output);

    /** The player is about to go, too: its last sound is given the time to end safely. */
    ~OutputGuard();

    OutputGuard(const OutputGuard&) = delete;
    OutputGuard& operator=(const OutputGuard&) = delete;

    /** The device to return to whenever it is there. */
    void Prefer(const QAudioDevice& device);

    /** Brings player and output in line with the devices that exist now. Call it before playing. */
    void Refresh();

private:
    friend class OutputGuardTestAccess;

    void MatchDevices();
    bool HasMedia() const;
    QAudioDevice ChooseDevice(const QList<QAudioDevice>& available) const;
    void AdjustWatch();
    void Detach();
    void Attach();
    void PlayAnew();
    void NoteProgress(qint64 position);
    void ExpectProgress();
    void EndStandstill();

    QMediaPlayer& m_player;
    QAudioOutput& m_output;
    QAudioDevice m_preferred;
    bool m_detached = false;
    qint64 m_lastPosition = 0;
    QDeadlineTimer m_progressIsDue;
    QTimer m_watch;
    QMediaDevices m_devices;
};

} // namespace vantoraudio::AudioEngine
