#pragma once

#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QTimer>
#include <QtMultimedia/QAudioDevice>
#include <QtMultimedia/QMediaDevices>

class QAudioOutput;
class QMediaPlayer;

namespace vantoraudio::AudioEngine {

/**
 * Keeps a media player on an output device that exists.
 *
 * While there is no device at all the player plays into no output: with Qt 6.4.2 it would crash, with 6.8.2 its
 * sound thread would wait for good. When one appears the player gets its output back and goes on where it was.
 * When its device has gone it moves to another one. Volume and mute belong to the output and survive all of that.
 * Player and output must outlive the follower.
 */
class DeviceFollower
{
public:
    DeviceFollower(QMediaPlayer& player, QAudioOutput& output);
    /** Takes the output away from the player. */
    ~DeviceFollower();

    DeviceFollower(const DeviceFollower&) = delete;
    DeviceFollower& operator=(const DeviceFollower&) = delete;

    /** The device to return to whenever it is there. */
    void Prefer(const QAudioDevice& device);

    /** Brings player and output in line with the devices that exist now. Call it before playing. */
    void Refresh();

private:
    void ListenToTheSoundServer();
    void RefreshForAWhile(int checks);
    void OnSourceChanged();
    void FollowDevices();
    void TellIfSoundIsLost();
    void TellWhetherInUse(bool isInUse);
    bool HasMedia() const;
    QAudioDevice ChooseDevice(const QList<QAudioDevice>& available) const;
    void Detach();
    void Attach();

    QMediaPlayer& m_player;
    QAudioOutput& m_output;
    QAudioDevice m_preferred;
    bool m_isDetached = false;
    /** That the source will not sound. */
    bool m_hasTold = false;
    qreal m_playbackRate = 1.0;
    /** What is connected to it ends with this object. */
    QObject m_context;
    QMediaDevices m_devices;
    QTimer m_catchingUp;
    int m_checksLeft = 0;
    bool m_isInUse = false;
};

/** Makes a playing player play on from its position in a way that its new output hears. */
void PlayAgain(QMediaPlayer& player);

} // namespace vantoraudio::AudioEngine
