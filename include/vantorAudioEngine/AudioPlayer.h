#pragma once

#include <vantorAudioEngine/Export.h>

#include <QtCore/QString>
#include <QtMultimedia/QAudioDevice>
#include <QtMultimedia/QMediaPlayer>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

class QAudioOutput;
class QIODevice;

namespace vantoraudio::AudioEngine {
class DeviceFollower;
class StandstillWatch;
} // namespace vantoraudio::AudioEngine

/**
 * Plays one audio file and keeps playback inside a stretch of it, the selection.
 *
 * The player is a QMediaPlayer: play(), pause(), stop(), setPosition(), playbackState() and all its signals are
 * there to be used. When playback reaches the selection's end or the end of the file it goes back to the
 * selection's start and stays paused there, or plays on from there when looping.
 *
 * Times are seconds from the start of the file, positions and durations of the base class milliseconds. Seconds
 * that no position can hold become the nearest position, not-a-number becomes 0.
 *
 * Later versions of Qt (6.8 for one) load a source in the background: until mediaStatus() is LoadedMedia,
 * playbackState() stays stopped, and position() and duration() are 0. What is asked of this class until then
 * happens in the same order once the source is there; a second PauseResume() does not take back the first. Seeks
 * that reach the base class through a QMediaPlayer are lost then.
 *
 * Nothing here reports failures: listen to errorOccurred() of the base class. While the machine has no output
 * device at all, a player that has a source runs without an audio output, so that play() is safe then; playback
 * stands still and goes on by itself when a device appears. When the device in use disappears, another one takes
 * over. Where the sound server offers none at all, that works only while the event loop comes round every few
 * milliseconds; otherwise Qt's sound thread, and this player's destructor with it, may wait for ever.
 *
 * The same holds while the sound server is away. Where that lasts for more than three seconds, only devices come
 * back that were there before. With Qt 6.4 the connection may be lost for good. A program that begins without a
 * server never gets sound. errorOccurred() tells of both once a server is there.
 *
 * A file with a rate above 384,000 Hz or with more than 64 channels is refused like one that cannot be read: no
 * output plays it, and Qt would crash. So are pipes, devices and empty files. To find out, SetAudio() looks into
 * each file, which mostly takes a few milliseconds; files that are neither WAV nor FLAC nor MP3 and hold large
 * pictures may take seconds.
 *
 * At the end of the file the way back to the selection's start is taken in the next round of the event loop; until
 * then the player is stopped. A selection that starts at or behind the end of the file, or a file without audio,
 * ends as soon as it is played and is not looped: the player stays paused.
 *
 * The audio output belongs to the player: it may be watched and its volume set, but not deleted. Its device is the
 * player's to choose, by SetAudioOutputDevice(); another one set on the output itself does not last.
 *
 * Threads: use the player on the thread that created it, which must run an event loop.
 */
class VANTORAUDIOENGINE_EXPORT AudioPlayer : public QMediaPlayer
{
    Q_OBJECT

public:
    /** A player without a source, not looping, with an empty selection at 0, on the system's default device. */
    explicit AudioPlayer(QObject* parent = nullptr);
    ~AudioPlayer() override;

    /** Takes filePath as the source, loading it again if it is the current one, and selects the whole file:
     * 0 to duration (seconds, stored unchecked). Playback stops. A file that cannot be opened is reported by
     * errorOccurred(); source() and the selection are the new ones then, too. */
    void SetAudio(const QString& filePath, double duration);

    /** The base class's play(), made safe for the moment in which the device in use has just disappeared. */
    void play();

    /** The base class's stop(), which goes back to 0, also in a source that is being loaded. */
    void stop();

    /** The base class's setPosition(), in milliseconds, but kept while the source is being loaded and followed
     * then. */
    void setPosition(qint64 position);

    /** Pauses while playing, plays from the current position otherwise. */
    void PauseResume();

    /** Selects a stretch and moves the position to its start; the playback state stays. The times are stored as
     * they are: an end before the start makes playback return to the start at its next position report, and a
     * start behind the end of the file means the end of the file. */
    void SetSelection(double start, double end);

    /** SetSelection(), but a position in the new selection, before its end, stays. Returns whether it has stayed.
     */
    bool ChangeSelection(double start, double end);

    /** Selects 0 to duration() of the base class, which is 0 before a source is known. The position stays. */
    void ClearSelection();

    /** Whether the selection's end, or the file's, leads back into playing. Takes effect when it is reached. */
    void LoopPlayback(bool loop);

    /** The volume in percent of the linear amplitude, passed on as it is: the output brings what is below 0 or
     * above 100 into that range. */
    void SetVolume(int volume);

    /** The volume in percent, truncated. It can be one less than what SetVolume() was given, because the output
     * holds a float: 57 reads back as 56. */
    int Volume() const;

    /** Muting leaves the volume as it is. */
    void SetMuted(bool muted);
    bool IsMuted() const;

    /** How fast the file plays, from 0.25 to 4; anything else is ignored. 1 at first. Holds for every source until
     * another rate is set; use it instead of the base class's setPlaybackRate(), which does not with Qt 6.4. The
     * pitch rises and falls with the rate: Qt 6.4 to 6.8 play the samples faster or slower. Positions come as
     * often as otherwise, so that playback may run past the selection's end by four times as much at a rate
     * of 4. With Qt 6.4 a change while the file plays goes back to the latest reported position.
     *
     * While there is no output device the base class's playbackRate() may be another one. */
    void SetPlaybackRate(double rate);
    [[nodiscard]] double GetPlaybackRate() const;

    /** Plays on device from now on, also in the middle of playing. A device that QMediaDevices::audioOutputs()
     * does not list, or that has gone, is ignored. */
    void SetAudioOutputDevice(const QAudioDevice& device);

    /** The device that SetAudioOutputDevice() accepted last, or a null device. It stays the answer while that
     * device is away and another one stands in for it. */
    QAudioDevice GetAudioOutputDevice();

private Q_SLOTS:
    void PlaybackLoop(qint64 currentPosition);
    void OnMediaStatusChanged(QMediaPlayer::MediaStatus mediaStatus);

private:
    friend class AudioPlayerTestAccess;

    void RestartPlayback();
    void RestartAfterReport();
    void PauseAtEndOfMedia();
    void WhenLoaded(std::function<void()> request);
    void FollowRequests();
    void SeekTo(qint64 wanted);
    void SeekAgainIfLost(qint64 wanted);
    bool IsAtEndOfMedia() const;
    qint64 PositionAt(double seconds) const;
    void LoadSource(const QString& filePath);
    void DropUnusedSourceFile();
    void ApplyPlaybackRate();

    QAudioDevice m_audioOutputDevice;
    QAudioOutput* m_audioOutput;
    bool m_loop = false;
    double m_selectionStart = 0.0;
    double m_selectionEnd = 0.0;
    /** Empty until it is set: the base class's rate is not touched then. */
    std::optional<double> m_playbackRate;

    bool m_restarting = false;
    std::unique_ptr<QIODevice> m_sourceFile;
    /** What was asked for while the source was being loaded, in its order. */
    std::vector<std::function<void()>> m_whenLoaded;
    std::unique_ptr<vantoraudio::AudioEngine::DeviceFollower> m_deviceFollower;
    /** Only where seeks get lost. */
    std::unique_ptr<vantoraudio::AudioEngine::StandstillWatch> m_standstillWatch;
};
