#include "engine/QtDefects.h"
#include "engine/files/RegularFile.h"
#include "engine/samples/Truncation.h"
#include "playback/DeviceFollower.h"
#include "playback/OutputDevices.h"
#include "playback/PlayableFile.h"
#include "playback/SoundSettling.h"
#include "playback/StandstillWatch.h"

#include <vantorAudioEngine/AudioPlayer.h>

#include <QtCore/QBuffer>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QPointer>
#include <QtCore/QSignalBlocker>
#include <QtCore/QUrl>
#include <QtMultimedia/QAudioOutput>

#include <algorithm>
#include <utility>

using namespace vantoraudio::AudioEngine;

namespace {

// Hosts connect to signals with these types across threads and by name, before any player exists.
[[maybe_unused]] const int mediaStatusType =
    qRegisterMetaType<QMediaPlayer::MediaStatus>("QMediaPlayer::MediaStatus");
[[maybe_unused]] const int playbackStateType =
    qRegisterMetaType<QMediaPlayer::PlaybackState>("QMediaPlayer::PlaybackState");

constexpr double millisecondsPerSecond = 1000.0;
constexpr double slowestRate = 0.25;
constexpr double fastestRate = 4.0;

// Where names are garbled the backend opens the name that this encoding of the URL gives, and what stands before a
// colon in a relative name is taken for a protocol.
bool OpensByUrl(const QUrl& url)
{
    if (!QtDefects::GarblesNames()) {
        return true;
    }
    const QString path = url.toLocalFile();
    const bool seemsToNameAProtocol = QDir::isRelativePath(path) && path.contains(u':');
    return !seemsToNameAProtocol && url.toEncoded(QUrl::PreferLocalFile) == QFile::encodeName(path);
}

/** Something is there that must not be opened. Of what is missing the base class tells. */
bool IsNotToBeOpened(const QString& path)
{
    return IsFolderPipeOrDevice(path) || (IsRegularFile(path) && IsEmptyFile(path));
}

/** An open device to read the file from, or null where the base class can read it by its URL. */
std::unique_ptr<QIODevice> DeviceFor(const QString& path, const QUrl& url)
{
    std::unique_ptr<QIODevice> device;
    if (IsNotToBeOpened(path) || !CanBePlayed(path)) {
        // Empty, so that it is reported as something that cannot be played.
        device = std::make_unique<QBuffer>();
    } else if (!OpensByUrl(url)) {
        device = std::make_unique<QFile>(path);
    }
    return device && device->open(QIODevice::ReadOnly) ? std::move(device) : nullptr;
}

} // namespace

AudioPlayer::AudioPlayer(QObject* parent) : QMediaPlayer(parent), m_audioOutput(new QAudioOutput(this))
{
    setAudioOutput(m_audioOutput);
    m_deviceFollower = std::make_unique<DeviceFollower>(*this, *m_audioOutput);
    if (QtDefects::LosesSeeks()) {
        m_standstillWatch = std::make_unique<StandstillWatch>(*this);
    }
    connect(this, &QMediaPlayer::positionChanged, this, &AudioPlayer::PlaybackLoop);
    connect(this, &QMediaPlayer::mediaStatusChanged, this, &AudioPlayer::OnMediaStatusChanged);
    connect(this, &QMediaPlayer::sourceChanged, this, [this] {
        m_whenLoaded.clear();
        DropUnusedSourceFile();
        // Whoever set the source of the base class did not ask whether it can be played.
        if (!sourceDevice() && source().isLocalFile() && !CanBePlayed(source().toLocalFile())) {
            LoadSource(source().toLocalFile());
        }
    });
    if (QtDefects::LosesThePlaybackRate()) {
        connect(this, &QMediaPlayer::sourceChanged, this, [this] {
            if (m_playbackRate) {
                // The former source's rate would count as no change.
                setPlaybackRate(1.0);
                ApplyPlaybackRate();
            }
        });
    }
    connect(this, &QMediaPlayer::audioOutputChanged, this, &AudioPlayer::ApplyPlaybackRate);
}

AudioPlayer::~AudioPlayer()
{
    // The base class reports its last changes when this part of the object no longer exists.
    disconnect(this, nullptr, this, nullptr);
    m_standstillWatch.reset();
    if (!source().isEmpty() || sourceDevice()) {
        LetSoundSettleBeforeTheEnd();
    }
    const QSignalBlocker quiet(this);
    m_deviceFollower.reset();
    if (m_sourceFile) {
        // The base class reads from the file on a thread of its own until it has another source.
        setSource(QUrl());
    }
}

void AudioPlayer::SetAudio(const QString& filePath, double duration)
{
    // A receiver of the signals may delete the player, or whoever the path belongs to, or load another file.
    const QPointer<AudioPlayer> self(this);
    const QString path = filePath; // NOLINT(performance-unnecessary-copy-initialization)
    const QUrl url = QUrl::fromLocalFile(path);
    // The base class takes an unchanged URL for an unchanged file, but a working copy is rewritten in place.
    if (source() == url) {
        setSource(QUrl());
        if (!self || !source().isEmpty()) {
            return;
        }
    }
    LoadSource(path);
    if (!self || source() != url) {
        return;
    }
    m_selectionStart = 0.0;
    m_selectionEnd = duration;
}

void AudioPlayer::LoadSource(const QString& filePath)
{
    const QUrl url = QUrl::fromLocalFile(filePath);
    std::unique_ptr<QIODevice> device = DeviceFor(filePath, url);
    if (!device) {
        setSource(url);
        return;
    }
    // The previous file lives until the base class has let go of it.
    const std::unique_ptr<QIODevice> previous = std::exchange(m_sourceFile, std::move(device));
    setSourceDevice(m_sourceFile.get(), url);
}

void AudioPlayer::DropUnusedSourceFile()
{
    if (m_sourceFile && sourceDevice() != m_sourceFile.get()) {
        m_sourceFile.reset();
    }
}

void AudioPlayer::play()
{
    const QPointer<AudioPlayer> self(this);
    m_deviceFollower->Refresh();
    if (self) {
        QMediaPlayer::play();
    }
}

void AudioPlayer::stop()
{
    const QPointer<AudioPlayer> self(this);
    QMediaPlayer::stop();
    if (self && mediaStatus() == LoadingMedia) {
        setPosition(0);
    }
}

void AudioPlayer::setPosition(qint64 position)
{
    WhenLoaded([this, position] { QMediaPlayer::setPosition(position); });
}

void AudioPlayer::WhenLoaded(std::function<void()> request)
{
    if (QtDefects::LosesSeeksWhileLoading() && mediaStatus() == LoadingMedia) {
        m_whenLoaded.push_back(std::move(request));
    } else {
        request();
    }
}

void AudioPlayer::FollowRequests()
{
    // A receiver of the signals may load another file or delete the player.
    const QPointer<AudioPlayer> self(this);
    while (self && !m_whenLoaded.empty() && mediaStatus() != LoadingMedia) {
        const auto request = std::move(m_whenLoaded.front());
        m_whenLoaded.erase(m_whenLoaded.begin());
        request();
    }
}

void AudioPlayer::PauseResume()
{
    if (playbackState() == PlayingState) {
        pause();
    } else {
        play();
    }
}

void AudioPlayer::SetSelection(double start, double end)
{
    m_selectionStart = start;
    m_selectionEnd = end;
    // This one counts, whatever else was asked for while the source was being loaded.
    m_whenLoaded.clear();
    WhenLoaded([this, start] { SeekTo(PositionAt(start)); });
}

bool AudioPlayer::ChangeSelection(double start, double end)
{
    const bool stays =
        mediaStatus() != LoadingMedia && PositionAt(start) <= position() && position() < PositionAt(end);
    if (stays) {
        m_selectionStart = start;
        m_selectionEnd = end;
    } else {
        SetSelection(start, end);
    }
    return stays;
}

void AudioPlayer::SeekTo(qint64 wanted)
{
    const QPointer<AudioPlayer> self(this);
    setPosition(wanted);
    if (self) {
        SeekAgainIfLost(wanted);
    }
}

void AudioPlayer::SeekAgainIfLost(qint64 wanted)
{
    if (QtDefects::LosesSeeks() && position() != wanted) {
        setPosition(wanted);
    }
}

// Qt 6.4 stands still for minutes after a seek far behind the end of the file.
qint64 AudioPlayer::PositionAt(double seconds) const
{
    const qint64 position = TruncateToInt64(seconds * millisecondsPerSecond);
    return duration() > 0 ? std::min(position, duration()) : position;
}

void AudioPlayer::ClearSelection()
{
    m_selectionStart = 0.0;
    WhenLoaded([this] { m_selectionEnd = static_cast<double>(duration()) / millisecondsPerSecond; });
}

void AudioPlayer::LoopPlayback(bool loop)
{
    m_loop = loop;
}

void AudioPlayer::SetVolume(int volume)
{
    if (!m_audioOutput) {
        return;
    }
    // Compared as double: most percentages are no float, so setting the same one again counts as a change.
    const double fraction = volume / 100.0;
    if (static_cast<double>(m_audioOutput->volume()) != fraction) {
        m_audioOutput->setVolume(static_cast<float>(fraction));
    }
}

int AudioPlayer::Volume() const
{
    return m_audioOutput ? TruncateToInt32(static_cast<double>(m_audioOutput->volume()) * 100.0) : 0;
}

void AudioPlayer::SetMuted(bool muted)
{
    if (m_audioOutput) {
        m_audioOutput->setMuted(muted);
    }
}

bool AudioPlayer::IsMuted() const
{
    return m_audioOutput && m_audioOutput->isMuted();
}

void AudioPlayer::SetPlaybackRate(double rate)
{
    if (rate >= slowestRate && rate <= fastestRate) {
        m_playbackRate = rate;
        ApplyPlaybackRate();
    }
}

double AudioPlayer::GetPlaybackRate() const
{
    return m_playbackRate.value_or(1.0);
}

void AudioPlayer::ApplyPlaybackRate()
{
    // The base class holds a float. Without an output the follower of devices sets a rate of its own.
    const auto isThatOf = [this](double rate) {
        return static_cast<float>(rate) == static_cast<float>(*m_playbackRate);
    };
    if (!m_playbackRate || !audioOutput() || isThatOf(playbackRate())) {
        return;
    }
    const qint64 place = position();
    const QPointer<AudioPlayer> self(this);
    setPlaybackRate(*m_playbackRate);
    if (self && QtDefects::LosesThePlaybackRate() && playbackState() != StoppedState) {
        SeekTo(place);
    }
}

void AudioPlayer::SetAudioOutputDevice(const QAudioDevice& device)
{
    if (!m_audioOutput) {
        return;
    }
    const QList<QAudioDevice> available = PresentOutputs();
    const auto entry = std::find(available.cbegin(), available.cend(), device);
    if (entry == available.cend()) {
        return;
    }
    m_audioOutputDevice = device;
    const QPointer<AudioPlayer> self(this);
    m_audioOutput->setDevice(*entry);
    if (self) {
        m_deviceFollower->Prefer(*entry);
    }
}

QAudioDevice AudioPlayer::GetAudioOutputDevice()
{
    return m_audioOutputDevice;
}

void AudioPlayer::PlaybackLoop(qint64 currentPosition)
{
    if (playbackState() != PlayingState) {
        return;
    }
    const double remaining = m_selectionEnd * millisecondsPerSecond - static_cast<double>(currentPosition);
    // A seek reports its position at once, so a restart at or behind the selection's end would call itself
    // for ever.
    if (remaining <= 0.0 && !m_restarting && !IsAtEndOfMedia()) {
        RestartPlayback();
    }
}

void AudioPlayer::OnMediaStatusChanged(QMediaPlayer::MediaStatus mediaStatus)
{
    if (mediaStatus == LoadedMedia) {
        FollowRequests();
    }
    if (mediaStatus != EndOfMedia) {
        return;
    }
    if (this->mediaStatus() == EndOfMedia) {
        RestartAfterReport();
    } else {
        RestartPlayback();
    }
}

// Qt's FFmpeg backend reports the last position, the stopped state and the end of the media in one go. A player
// that is restarted in the middle of that is stopped again by the rest, reports the end again without having
// played anything, and so on.
void AudioPlayer::RestartAfterReport()
{
    const auto restart = [this] {
        // Whoever stopped, sought, played or loaded something since then knows better.
        if (mediaStatus() != EndOfMedia || playbackState() != StoppedState) {
            return;
        }
        if (PositionAt(m_selectionStart) >= duration()) {
            PauseAtEndOfMedia();
        } else {
            RestartPlayback();
        }
    };
    QMetaObject::invokeMethod(this, restart, Qt::QueuedConnection);
}

// Looping over a file without audio, or over a selection that starts at the very end, would report one end after
// the other at full speed.
void AudioPlayer::PauseAtEndOfMedia()
{
    const QPointer<AudioPlayer> self(this);
    setPosition(PositionAt(m_selectionStart));
    if (self) {
        pause();
    }
    if (self && QtDefects::ReportsTheEndTwice()) {
        // An output that is set again has nothing to report.
        QAudioOutput* const output = audioOutput();
        setAudioOutput(nullptr);
        if (self) {
            setAudioOutput(output);
        }
    }
}

// The end of the media is reported right behind its last position, see RestartAfterReport(), unless there is no
// device to play it to.
bool AudioPlayer::IsAtEndOfMedia() const
{
    return audioOutput() && duration() > 0 && position() >= duration();
}

void AudioPlayer::RestartPlayback()
{
    const QPointer<AudioPlayer> self(this);
    const bool wasRestarting = std::exchange(m_restarting, true);
    const qint64 start = PositionAt(m_selectionStart);
    setPosition(start);
    if (self) {
        pause();
    }
    if (self) {
        SeekAgainIfLost(start);
    }
    if (self && m_loop) {
        play();
    }
    if (self) {
        m_restarting = wasRestarting;
    }
}
